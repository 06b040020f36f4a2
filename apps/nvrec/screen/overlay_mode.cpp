/* overlay_mode.cpp - see overlay_mode.h. */
#include "screen/overlay_mode.h"

#include <algorithm>

#include "host/host.h"
#include "wall/module.h"

namespace nvrec
{

bool is_drawn(OverlayMode mode, const WallControl &wall)
{
    switch (mode) {
    case OverlayMode::kOn: return true;
    case OverlayMode::kOff: return false;
    case OverlayMode::kAuto: break;
    }
    return wall.window_is_open() || host::has_own_monitor();
}

int screen_text_size_px(int screen_height_px)
{
    constexpr int kScreenToText = 42, kSmallest_px = 16, kLargest_px = 40;
    return std::clamp(screen_height_px / kScreenToText, kSmallest_px, kLargest_px);
}

} // namespace nvrec
