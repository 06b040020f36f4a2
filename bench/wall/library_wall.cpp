/*
 * The library and the board in software: frames through ext_send_stream, a layout applied as a
 * recorder applies it, and the composed output stepped frame by frame.
 */
#include "walls.h"

#include <atomic>
#include <cstdio>
#include <thread>

#include "nvrhal.h"
#include "vboard.h"

namespace wallbench
{

namespace
{

constexpr uint32_t kLead = 3; // frames that each camera may be ahead of the wall
constexpr int kPictureTimeoutMs = 20000;
constexpr int32_t kLinkNotMeasured = 0;

bool send(const Clip &clip, uint32_t channel, size_t index)
{
    const std::vector<uint8_t> &bytes = clip.frames[index];
    FrameInfo frame = {};
    frame.frame_type = 0;
    frame.media = FRAME_MEDIA_VIDEO;
    frame.length = static_cast<uint32_t>(bytes.size());
    frame.width = static_cast<uint32_t>(clip.width);
    frame.height = static_cast<uint32_t>(clip.height);
    frame.data = const_cast<uint8_t *>(bytes.data());
    frame.channel = channel;
    frame.pts = index;
    return ext_send_stream(&frame, clip.h265 ? 1 : 0, kLinkNotMeasured, 0) == 0;
}

bool start_library(int32_t cameras)
{
    DeviceParams params = {};
    params.vi_chn_num = cameras;
    params.gui_width = kOutputWidth;
    params.gui_height = kOutputHeight;
    return ext_device_init(&params) == 0;
}

bool lay_out(const Mix &mix)
{
    std::vector<DispAttrib> panes;
    for (int pane = 0; pane < mix.panes(); ++pane) {
        DispAttrib attrib = {};
        attrib.bind_status = 1;
        attrib.channel = static_cast<uint16_t>(pane);
        attrib.x = static_cast<uint16_t>(mix.pane_x(pane));
        attrib.y = static_cast<uint16_t>(mix.pane_y(pane));
        attrib.w = static_cast<uint16_t>(mix.pane_width());
        attrib.h = static_cast<uint16_t>(mix.pane_height());
        panes.push_back(attrib);
    }
    return ext_change_display_format(panes.data(), mix.panes()) == 0;
}

/**
 * The layout waits 100 ms a pane for its decoder. The wall's speed does not depend on that wait, so
 * it passes on the board's clock, stepped, while this object lives.
 */
class SteppedWaits
{
public:
    SteppedWaits()
    {
        vboard_clock_take();
        stepper_ = std::thread([this] {
            while (!done_.load())
                if (vboard_clock_wait_sleepers(1, 20) == 0) vboard_clock_step_us(100000);
        });
    }
    ~SteppedWaits()
    {
        done_.store(true);
        stepper_.join();
        vboard_clock_release();
    }
    SteppedWaits(const SteppedWaits &) = delete;
    SteppedWaits &operator=(const SteppedWaits &) = delete;

private:
    std::atomic<bool> done_{false};
    std::thread stepper_;
};

bool lay_out_at_once(const Mix &mix)
{
    const SteppedWaits waits;
    return lay_out(mix);
}

int fail(const char *what)
{
    std::fprintf(stderr, "bench_wall: the library's wall: %s\n", what);
    return 1;
}

} // namespace

int run_library_wall(const Mix &mix)
{
    const LoadedClips clips(mix);
    const uint32_t cameras = static_cast<uint32_t>(mix.panes());
    if (!start_library(mix.panes())) return fail("start-up failed");
    // Each camera's first frame settles its decoder's codec; the layout then sizes the decoders.
    for (uint32_t channel = 0; channel < cameras; ++channel)
        if (!send(clips.of_pane(static_cast<int>(channel)), channel, 0)) return fail("first frame refused");
    if (!lay_out_at_once(mix)) return fail("layout refused");

    if (vboard_display_set_pacing(0, VBOARD_PACING_STEP) != 0) return fail("step pacing refused");
    const size_t frames = clips.of_pane(0).frames.size();
    const uint32_t all_ports = (1u << cameras) - 1;
    size_t sent = 0;
    // A decoder that takes a byte stream gives a picture when the next frame begins, so the last
    // one of each clip stays inside.
    for (size_t shown = 0; shown + 1 < frames; ++shown) {
        for (; sent < frames && sent < shown + kLead; ++sent)
            for (uint32_t channel = 0; channel < cameras; ++channel)
                if (!send(clips.of_pane(static_cast<int>(channel)), channel, sent))
                    return fail("frame refused");
        if (vboard_display_wait_queued(0, all_ports, 1, kPictureTimeoutMs) != 0)
            return fail("a picture is missing");
        if (vboard_display_step(0) != mix.panes()) return fail("a pane stood still");
    }
    return 0;
}

} // namespace wallbench
