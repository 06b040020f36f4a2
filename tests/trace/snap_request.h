/* snap_request.h - what the trace tests of the snapshot share. */
#pragma once

#include "nvrhal.h"
#include "recording_expect.h"

namespace snap_test
{

/** Four cameras with decoders for pictures of a size, snapshots enabled, nothing recorded yet. */
inline void prepare(uint16_t width = 1920, uint16_t height = 1080)
{
    g_vi_chn_num = 4;
    for (uint32_t channel = 0; channel <= 4; ++channel)
        vdec_open_chn(channel, &width, &height, 1, 1);
    ext_set_snap_channel_enable();
    recording::platform.forget();
}

inline FrameInfo request(uint32_t channel)
{
    FrameInfo frame = {};
    frame.channel = channel;
    return frame;
}

} // namespace snap_test
