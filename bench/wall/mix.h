/* mix.h - what a wall of the benchmark is made of. */
#pragma once

#include <string>
#include <vector>

namespace wallbench
{

constexpr int kOutputWidth = 1920;
constexpr int kOutputHeight = 1080;

struct Mix {
    std::string name;
    int side = 1;                   // panes in a row, and rows
    std::vector<std::string> clips; // one path a pane

    int panes() const { return side * side; }
    int pane_width() const { return kOutputWidth / side; }
    int pane_height() const { return kOutputHeight / side; }
    int pane_x(int pane) const { return pane % side * pane_width(); }
    int pane_y(int pane) const { return pane / side * pane_height(); }
};

} // namespace wallbench
