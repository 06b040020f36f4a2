/* display_layout.h - which bank of set_bind_para holds a display device's panes. */
#pragma once

#include "core/selection_state.h"

namespace nvrhal
{

enum PaneBank : uint32_t {
    kFurtherDevicesBank = 0,
    kMainDeviceBank = 1,
    kSecondaryOutputBank = 2,
};

constexpr PaneBank pane_bank(int32_t dev)
{
    if (dev == 0) return kMainDeviceBank;
    if (dev == -1) return kSecondaryOutputBank;
    return kFurtherDevicesBank;
}

} // namespace nvrhal
