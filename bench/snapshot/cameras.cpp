/* cameras.cpp - see cameras.h. */
#include "cameras.h"

#include <chrono>
#include <cmath>
#include <cstdio>

#include "nvrhal.h"
#include "vboard.h"

namespace snapbench
{

namespace
{

constexpr int kWallWidth = 1920, kWallHeight = 1080;

bool fail(const char *what)
{
    std::fprintf(stderr, "bench_snapshot: %s\n", what);
    return false;
}

} // namespace

bool send_frame(const wallbench::Clip &clip, uint32_t channel, size_t index)
{
    const std::vector<uint8_t> &bytes = clip.frames[index % clip.frames.size()];
    FrameInfo frame = {};
    frame.media = FRAME_MEDIA_VIDEO;
    frame.length = static_cast<uint32_t>(bytes.size());
    frame.data = const_cast<uint8_t *>(bytes.data());
    frame.channel = channel;
    return ext_send_stream(&frame, clip.h265 ? 1 : 0, 0, 0) == 0;
}

bool start_wall(const wallbench::Clip &clip, int cameras)
{
    DeviceParams params = {};
    params.vi_chn_num = cameras;
    params.gui_width = kWallWidth;
    params.gui_height = kWallHeight;
    vboard_set_loud(0); // the first layout unbinds what is not bound yet
    if (ext_device_init(&params) != 0) return fail("start-up failed");
    ext_set_snap_channel_enable();
    const int side = static_cast<int>(std::ceil(std::sqrt(cameras)));
    std::vector<DispAttrib> panes;
    for (int i = 0; i < cameras; ++i) {
        // The first frame settles the decoder's codec; the layout then sizes the decoder.
        if (!send_frame(clip, static_cast<uint32_t>(i), 0)) return fail("first frame refused");
        panes.push_back({1,
                         static_cast<uint16_t>(i),
                         static_cast<uint16_t>(i % side * (kWallWidth / side)),
                         static_cast<uint16_t>(i / side * (kWallHeight / side)),
                         static_cast<uint16_t>(kWallWidth / side),
                         static_cast<uint16_t>(kWallHeight / side),
                         {0, 0}});
    }
    if (ext_change_display_format(panes.data(), cameras) != 0) return fail("layout refused");
    return true;
}

uint32_t take_snapshot(uint32_t channel)
{
    FrameInfo frame = {};
    frame.channel = channel;
    const bool taken = ext_get_jpeg_stream(&frame) == 0 && frame.data != nullptr;
    const uint32_t bytes = taken ? frame.length : 0;
    if (taken) ext_release_jpeg_buf(&frame);
    return bytes;
}

RunningCameras::RunningCameras(const wallbench::Clip &clip, int cameras)
{
    sender_ = std::thread([this, &clip, cameras] {
        const auto interval = std::chrono::microseconds(static_cast<int64_t>(kFrameInterval_ms * 1000));
        auto next = std::chrono::steady_clock::now();
        for (size_t index = 0; !done_.load(); ++index) {
            for (int channel = 0; channel < cameras; ++channel)
                if (!send_frame(clip, static_cast<uint32_t>(channel), index)) refused_.fetch_add(1);
            next += interval;
            std::this_thread::sleep_until(next);
        }
    });
}

RunningCameras::~RunningCameras()
{
    done_.store(true);
    sender_.join();
}

WallCount count_wall(int cameras)
{
    WallCount count;
    for (int port = 0; port < cameras; ++port) {
        vboard_port_stat stat = {};
        if (vboard_port_get_stat(0, static_cast<uint32_t>(port), &stat) != 0) continue;
        count.taken += stat.taken;
        count.dropped += stat.dropped;
    }
    return count;
}

} // namespace snapbench
