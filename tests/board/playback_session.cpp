/* playback_session.cpp - see playback_session.h. */
#include "playback_session.h"

#include <cstring>

static_assert(VBOARD_DECODER_CHANNELS >= NVRHAL_MAX_DECODERS,
              "every camera, and the spare one, has a decoder");

namespace session
{
namespace
{

constexpr uint16_t kPaneWidth = kWallWidth / 2, kPaneHeight = kWallHeight / 2;
constexpr int kLookIntervalMs = 20; // how often the hurried clock looks whether it is to end

DispAttrib pane(uint32_t channel, int x, int y, int w, int h)
{
    return {1,
            static_cast<uint16_t>(channel),
            static_cast<uint16_t>(x),
            static_cast<uint16_t>(y),
            static_cast<uint16_t>(w),
            static_cast<uint16_t>(h),
            {0, 0}};
}

int pane_x(uint32_t channel)
{
    return static_cast<int>(channel % 2) * kPaneWidth;
}

int pane_y(uint32_t channel)
{
    return static_cast<int>(channel / 2) * kPaneHeight;
}

} // namespace

rig::Picture pane_of(const rig::Picture &wall, uint32_t channel)
{
    return wall.part(pane_x(channel), pane_y(channel), kPaneWidth, kPaneHeight);
}

std::optional<stamp::Stamp> stamp_of(const rig::Picture &wall, uint32_t channel)
{
    return rig::stamp_at(wall, pane_x(channel), pane_y(channel), kPaneWidth, kPaneHeight);
}

rig::Stream live_stream(uint32_t channel)
{
    return rig::load_stream("session_live_" + std::to_string(channel) + "_h265");
}

rig::Stream recording(uint32_t channel)
{
    return rig::load_stream("session_recording_" + std::to_string(channel) + "_h265");
}

int32_t send_live(uint32_t channel, const rig::Bytes &bytes, uint32_t codec)
{
    FrameInfo frame = {};
    frame.media = FRAME_MEDIA_VIDEO;
    frame.length = static_cast<uint32_t>(bytes.size());
    frame.data = const_cast<uint8_t *>(bytes.data());
    frame.channel = channel;
    return ext_send_stream(&frame, codec, 0, 0);
}

int32_t play(uint32_t channel, const rig::Bytes &bytes, uint32_t display_rate, uint64_t pts)
{
    FrameInfo rec = {};
    EXPECT_EQ(ext_playback_get_buf(&rec), 0);
    EXPECT_LE(bytes.size(), rec.length);
    memcpy(rec.data, bytes.data(), bytes.size());
    rec.length = static_cast<uint32_t>(bytes.size());
    rec.media = FRAME_MEDIA_VIDEO;
    rec.channel = channel;
    rec.display_rate = display_rate;
    rec.pts = pts;
    const int32_t result = ext_playback_set_buf(&rec);
    EXPECT_EQ(rec.data, nullptr);
    return result;
}

void settle(uint32_t channel)
{
    ASSERT_EQ(vboard_decoder_wait_idle(channel, rig::kPatience_ms), 0);
}

HurriedClock::HurriedClock()
{
    vboard_clock_take();
    hurrier_ = std::thread([this] {
        while (!done_.load())
            if (vboard_clock_wait_sleepers(1, kLookIntervalMs) == 0) vboard_clock_step_us(10000);
    });
}

HurriedClock::~HurriedClock()
{
    done_.store(true);
    hurrier_.join();
    vboard_clock_release();
}

int32_t lay_out_four()
{
    const HurriedClock hurried;
    DispAttrib panes[kCameras];
    for (uint32_t channel = 0; channel < kCameras; ++channel)
        panes[channel] = pane(channel, pane_x(channel), pane_y(channel), kPaneWidth, kPaneHeight);
    return ext_change_display_format(panes, kCameras);
}

int32_t lay_out_single(uint32_t channel)
{
    const HurriedClock hurried;
    const DispAttrib single = pane(channel, 0, 0, kWallWidth, kWallHeight);
    return ext_change_display_format(&single, 1);
}

void Session::SetUp()
{
    DeviceParams params = {};
    params.vi_chn_num = kCameras;
    params.gui_width = kWallWidth;
    params.gui_height = kWallHeight;
    ASSERT_EQ(ext_device_init(&params), 0);
}

void Session::show_live(size_t frames)
{
    ASSERT_EQ(lay_out_four(), 0);
    for (uint32_t channel = 0; channel < kCameras; ++channel) {
        const rig::Stream stream = live_stream(channel);
        for (size_t i = 0; i < frames; ++i)
            ASSERT_EQ(send_live(channel, stream.frames[i]), 0);
        settle(channel);
    }
}

} // namespace session
