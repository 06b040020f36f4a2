/* selection_state.h - the values that selection words take, beside channel numbers. */
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

} // namespace nvrhal
