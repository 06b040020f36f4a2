/* layout.cpp - see layout.h. A layout is a grid side and the side, in cells, of its first pane. */
#include "wall/layout.h"

#include <algorithm>

namespace nvrec
{
namespace
{

constexpr uint16_t kShow = 1; /* DispAttrib::bind_status */

struct LayoutRow {
    Layout layout;
    std::string_view name;
    int side;       /* cells across and down        */
    int large_side; /* cells of the first pane's side */
};

constexpr LayoutRow kLayouts[] = {
    {Layout::kSingle, "1", 1, 1},  {Layout::kGrid2, "2x2", 2, 1},      {Layout::kGrid3, "3x3", 3, 1},
    {Layout::kGrid4, "4x4", 4, 1}, {Layout::kOneAndFive, "1+5", 3, 2}, {Layout::kOneAndSeven, "1+7", 4, 3},
};

constexpr bool rows_are_in_order()
{
    int expected = 0;
    for (const LayoutRow &row : kLayouts) {
        if (static_cast<int>(row.layout) != expected++) return false;
    }
    return true;
}
static_assert(rows_are_in_order(), "row_of() finds a layout by its position");

const LayoutRow &row_of(Layout layout)
{
    return kLayouts[static_cast<int>(layout)];
}

int grid_line(int size_px, int line, int side)
{
    return (size_px * line / side) & ~1;
}

} // namespace

std::optional<Layout> layout_named(std::string_view name)
{
    for (const LayoutRow &row : kLayouts) {
        if (row.name == name) return row.layout;
    }
    return std::nullopt;
}

std::vector<std::string> layout_names()
{
    std::vector<std::string> names;
    for (const LayoutRow &row : kLayouts)
        names.emplace_back(row.name);
    return names;
}

Layout layout_for(int channels)
{
    for (Layout grid : {Layout::kSingle, Layout::kGrid2, Layout::kGrid3}) {
        if (channels <= pane_count(grid)) return grid;
    }
    return Layout::kGrid4;
}

int pane_count(Layout layout)
{
    const LayoutRow &row = row_of(layout);
    return row.side * row.side - row.large_side * row.large_side + 1;
}

std::vector<DispAttrib> make_panes(Layout layout, int width_px, int height_px, int channels)
{
    const LayoutRow &row = row_of(layout);
    std::vector<DispAttrib> panes;

    auto add = [&](int column, int line, int cells) {
        const int x = grid_line(width_px, column, row.side);
        const int y = grid_line(height_px, line, row.side);
        DispAttrib pane = {};
        pane.bind_status = kShow;
        pane.channel = static_cast<uint16_t>(panes.size());
        pane.x = static_cast<uint16_t>(x);
        pane.y = static_cast<uint16_t>(y);
        pane.w = static_cast<uint16_t>(grid_line(width_px, column + cells, row.side) - x);
        pane.h = static_cast<uint16_t>(grid_line(height_px, line + cells, row.side) - y);
        panes.push_back(pane);
    };

    add(0, 0, row.large_side);
    for (int line = 0; line < row.side; ++line) {
        for (int column = 0; column < row.side; ++column) {
            if (line < row.large_side && column < row.large_side) continue;
            add(column, line, 1);
        }
    }
    panes.resize(static_cast<size_t>(std::clamp(channels, 0, static_cast<int>(panes.size()))));
    return panes;
}

int channel_at(const std::vector<DispAttrib> &panes, int x, int y)
{
    const auto under = std::find_if(panes.begin(), panes.end(), [x, y](const DispAttrib &pane) {
        return x >= pane.x && x < pane.x + pane.w && y >= pane.y && y < pane.y + pane.h;
    });
    return under == panes.end() ? -1 : under->channel;
}

} // namespace nvrec
