/*
 * overlay_mode.h - tells whether something is drawn over the video, and how large its letters are. Main
 * thread.
 */
#pragma once

namespace nvrec
{

class WallControl;

enum class OverlayMode { kAuto, kOn, kOff };

/** Whether to draw; auto = when there is a window or a monitor of the board's own to look at. */
bool is_drawn(OverlayMode mode, const WallControl &wall);

/** Size in pixels of letters outside of panes, in proportion to the screen's height. */
int screen_text_size_px(int screen_height_px);

} // namespace nvrec
