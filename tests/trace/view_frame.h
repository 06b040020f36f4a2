/* view_frame.h - frames and panes for the trace tests of the live view. */
#pragma once

#include <vector>

#include "nvrhal.h"
#include "recording_expect.h"

namespace view_test
{

/** A display's refusal. */
inline constexpr int32_t kDisplayRefused = static_cast<int32_t>(0xA00F0003);

/** A record that points into `bytes`, which must outlive it. */
inline FrameInfo frame_of(uint32_t media, uint32_t channel, std::vector<uint8_t> &bytes)
{
    FrameInfo frame = {};
    frame.media = media;
    frame.length = static_cast<uint32_t>(bytes.size());
    frame.width = 1280;
    frame.height = 720;
    frame.data = bytes.data();
    frame.channel = channel;
    frame.pts = 0x1122334455667788ull;
    return frame;
}

/** Send a small video frame of codec code 1. */
inline int32_t send_video(uint32_t channel, int32_t link_quality = 0, int32_t rate_class = 0)
{
    static std::vector<uint8_t> bytes(100, 0x42);
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, channel, bytes);
    return ext_send_stream(&frame, 1, link_quality, rate_class);
}

inline std::string decoder_calls()
{
    return recording::platform.calls({"MI_VDEC_"});
}

/** A shown pane. */
inline DispAttrib pane(uint16_t channel, uint16_t x, uint16_t y, uint16_t w, uint16_t h,
                       uint16_t bind_status = 1)
{
    return {bind_status, channel, x, y, w, h, {0xDEAD, 0xBEEF}};
}

/** A library whose decoders run, as many as there can be; nothing was recorded yet. */
class RunningDecoders : public testing::Test
{
protected:
    RunningDecoders() { recording::platform.have_decoders(17); }
};

/** Create the decoders of `cameras` channels for streams of that size, unrecorded. */
inline void create_decoders(int32_t cameras, uint16_t width = 1920, uint16_t height = 1080)
{
    g_vi_chn_num = cameras;
    for (int32_t channel = 0; channel <= cameras; ++channel)
        vdec_open_chn(static_cast<uint32_t>(channel), &width, &height, 1, 1);
    recording::platform.forget();
}

} // namespace view_test
