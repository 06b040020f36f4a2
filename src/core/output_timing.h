/*
 * output_timing.h - output timing codes, display output values, and the even pane grid.
 *
 * Two number spaces meet here. A *timing code* (1..13) is the library's own and names display
 * output value, HDMI timing and size. A *display output value* is the platform's. enNorm_vga holds
 * a timing code from start-up and an output value after an output switch; nothing translates.
 */
#pragma once

#include <cstdint>

#include "nvrhal.h"

namespace nvrhal
{

constexpr int32_t kMostGridPanes = 36;

/** Lowest bit cleared: the scaler and the display work on even coordinates. */
constexpr uint32_t even(uint32_t value)
{
    return value & ~1u;
}

/** Side of the square grid that holds `panes` panes; 0 above 36. */
constexpr uint32_t grid_side(int32_t panes)
{
    if (panes > kMostGridPanes) return 0;
    uint32_t side = 1;
    while (static_cast<int32_t>(side * side) < panes)
        ++side;
    return side;
}
static_assert(grid_side(-1) == 1 && grid_side(1) == 1 && grid_side(2) == 2 && grid_side(4) == 2);
static_assert(grid_side(5) == 3 && grid_side(9) == 3 && grid_side(10) == 4 && grid_side(16) == 4);
static_assert(grid_side(17) == 5 && grid_side(26) == 6 && grid_side(36) == 6 && grid_side(37) == 0);

/** Pane `index` of a grid over a screen, every value even; all 0 for side 0. */
constexpr PaneRect grid_pane(uint32_t side, uint32_t index, uint32_t screen_width, uint32_t screen_height)
{
    if (side == 0) return {0, 0, 0, 0};
    const uint32_t width = screen_width / side;
    const uint32_t height = screen_height / side;
    return {even(width * (index % side)), even(height * (index / side)), even(width), even(height)};
}

/*
 * What the last successful look-up of enNorm_vga gave, 0 before: HDMI timing and display output
 * value. Written by the UI thread and by channel threads whose codec changes.
 */
extern uint32_t D_HdmiTiming;
extern uint32_t D_DispTiming;

/** Size of the output, pixels. */
struct ScreenSize {
    uint16_t width, height;
};

/** Look enNorm_vga up; a code without an entry leaves the last result standing. Any thread. */
ScreenSize look_up_output_timing();

/** Name under which a display output value is logged; null when the display cannot show it. */
const char *shown_timing_name(uint32_t disp_timing);

} // namespace nvrhal
