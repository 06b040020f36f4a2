/*
 * selection_state.h - the values that selection words take, beside channel numbers, and which bank of
 * set_bind_para holds a display device's panes.
 */
#pragma once

#include "core/shared_word.h"
#include "nvrhal.h"

namespace nvrhal
{

constexpr uint8_t kAllChannelsShown = 255;               // cur_display_chnn
constexpr int32_t kNoSnapChannel = 255;                  // cur_snap_chnn
constexpr uint32_t kMaskChannels = NVRHAL_MASK_CHANNELS; // channels that have a bit in cur_display_chnn
constexpr uint32_t kPaneChannels =
    NVRHAL_MAX_CAMERAS; // channels that have a pane rectangle and a layout entry

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
