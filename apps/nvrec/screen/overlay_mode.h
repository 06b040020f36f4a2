/* overlay_mode.h - whether something is drawn over the video, and how large its letters are. Main thread. */
#pragma once

namespace nvrec
{

class WallControl;

enum class OverlayMode { kAuto, kOn, kOff };

/** Whether to draw; auto = where somebody looks, in a window or at a monitor of the board's own. */
bool is_drawn(OverlayMode mode, const WallControl &wall);

/** Size of letters that stand beside no picture, in proportion to the screen's height; pixels. */
int screen_text_size_px(int screen_height_px);

} // namespace nvrec
