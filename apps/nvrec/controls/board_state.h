/* board_state.h - the state of the board and of the wall on it, as "nvrec board" prints it. */
#pragma once

#include <string>
#include <vector>

namespace nvrec
{

class WallControl;

/** One line of the table. */
struct BoardRow {
    std::string device; /* "line", "watchdog", ... */
    std::string item;   /* "28 buzzer", "state"    */
    std::string state;
};

/** Lines, lamps, watchdog, clock, chips, screen. Any thread, while the library is up. */
std::vector<BoardRow> board_rows();

/** Layout and selection. Main thread. */
std::vector<BoardRow> wall_rows(const WallControl &wall);

/** The rows as lines of text in columns. */
std::string board_text(const std::vector<BoardRow> &rows);

} // namespace nvrec
