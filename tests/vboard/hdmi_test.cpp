/* board_hdmi_test.cpp - the transmitter's states, the monitor's plug, and what the monitor sees. */
#include <atomic>
#include <mutex>
#include <thread>

#include "board_rig.h"

using namespace rig;

namespace
{

struct Events {
    std::mutex mutex;
    std::vector<std::pair<uint32_t, uint32_t>> seen; // event, device that event_param points at
    std::thread::id thread;
    std::atomic<int> inside{0};
    bool overlapped = false;
    int32_t deinit_result = 0;
};

int32_t note_event(uint32_t device, uint32_t event, void *event_param, void *user)
{
    auto &events = *static_cast<Events *>(user);
    if (events.inside.fetch_add(1) != 0) events.overlapped = true;
    {
        const std::lock_guard guard(events.mutex);
        EXPECT_EQ(device, 0u);
        events.seen.emplace_back(event, *static_cast<uint32_t *>(event_param));
        events.thread = std::this_thread::get_id();
    }
    // As the library's handler does.
    MI_HDMI_Attr attr = {};
    if (event == MI_HDMI_EVENT_PLUGGED && MI_HDMI_GetAttr(0, &attr) == MI_SUCCESS) {
        MI_HDMI_SetAttr(0, &attr);
        MI_HDMI_Start(0);
    } else if (event == MI_HDMI_EVENT_UNPLUGGED) {
        MI_HDMI_Stop(0);
    }
    events.deinit_result = MI_HDMI_DeInit();
    events.inside.fetch_sub(1);
    return 0;
}

MI_HDMI_Attr attr_1080p60()
{
    MI_HDMI_Attr attr = {};
    attr.video_enabled = 1;
    attr.video_timing = 9;
    attr.audio_enabled = 1;
    attr.audio_sample_rate = 3;
    attr.audio_bit_depth = 16;
    return attr;
}

class Hdmi : public Board
{
protected:
    void start_transmitter()
    {
        const MI_HDMI_InitParam param = {note_event, &events_};
        const MI_HDMI_Attr attr = attr_1080p60();
        ASSERT_EQ(MI_HDMI_Init(&param), MI_SUCCESS);
        ASSERT_EQ(MI_HDMI_Open(0), MI_SUCCESS);
        ASSERT_EQ(MI_HDMI_SetAvMute(0, 1), MI_SUCCESS);
        ASSERT_EQ(MI_HDMI_SetAttr(0, &attr), MI_SUCCESS);
        ASSERT_EQ(MI_HDMI_Start(0), MI_SUCCESS);
        ASSERT_EQ(MI_HDMI_SetAvMute(0, 0), MI_SUCCESS);
    }

    void TearDown() override
    {
        vboard_reset(); // ends the event thread, which uses events_
        Board::TearDown();
    }

    Events events_;
};

TEST_F(Hdmi, GoesThroughItsStatesInOrder)
{
    const int32_t not_ready = code(MI_MODULE_HDMI, MI_REASON_NOT_READY);
    const int32_t exists = code(MI_MODULE_HDMI, MI_REASON_EXISTS);
    const MI_HDMI_InitParam param = {nullptr, nullptr};
    MI_HDMI_Attr attr = attr_1080p60();
    EXPECT_EQ(MI_HDMI_Open(0), not_ready);
    EXPECT_EQ(MI_HDMI_DeInit(), not_ready);
    EXPECT_EQ(MI_HDMI_Init(nullptr), code(MI_MODULE_HDMI, MI_REASON_NULL_POINTER));
    EXPECT_EQ(MI_HDMI_Init(&param), MI_SUCCESS);
    EXPECT_EQ(MI_HDMI_Init(&param), exists);
    EXPECT_EQ(MI_HDMI_SetAvMute(0, 1), not_ready);
    EXPECT_EQ(MI_HDMI_SetAttr(0, &attr), not_ready);
    EXPECT_EQ(MI_HDMI_Open(1), code(MI_MODULE_HDMI, MI_REASON_BAD_DEVICE));
    EXPECT_EQ(MI_HDMI_Open(0), MI_SUCCESS);
    EXPECT_EQ(MI_HDMI_Open(0), exists);
    EXPECT_EQ(MI_HDMI_GetAttr(0, &attr), not_ready);
    EXPECT_EQ(MI_HDMI_Start(0), not_ready);
    EXPECT_EQ(MI_HDMI_SetAttr(0, nullptr), code(MI_MODULE_HDMI, MI_REASON_NULL_POINTER));
    attr.video_timing = 3;
    EXPECT_EQ(MI_HDMI_SetAttr(0, &attr), code(MI_MODULE_HDMI, MI_REASON_UNSUPPORTED));
    attr.video_timing = 42;
    EXPECT_EQ(MI_HDMI_SetAttr(0, &attr), MI_SUCCESS);
    MI_HDMI_Attr read = {};
    EXPECT_EQ(MI_HDMI_GetAttr(0, &read), MI_SUCCESS);
    EXPECT_EQ(read.video_timing, 42u);
    EXPECT_EQ(MI_HDMI_Start(0), MI_SUCCESS);
    EXPECT_EQ(MI_HDMI_Start(0), MI_SUCCESS);
    EXPECT_EQ(MI_HDMI_Close(0), code(MI_MODULE_HDMI, MI_REASON_NOT_PERMITTED));
    EXPECT_EQ(MI_HDMI_Stop(0), MI_SUCCESS);
    EXPECT_EQ(MI_HDMI_DeInit(), code(MI_MODULE_HDMI, MI_REASON_NOT_PERMITTED));
    EXPECT_EQ(MI_HDMI_Close(0), MI_SUCCESS);
    EXPECT_EQ(MI_HDMI_DeInit(), MI_SUCCESS);
    EXPECT_EQ(MI_HDMI_Init(&param), MI_SUCCESS);
}

TEST_F(Hdmi, PlugEventsComeOneAtATimeOnAThreadOfTheBoard)
{
    start_transmitter();
    EXPECT_EQ(vboard_monitor_is_plugged(), 1);
    vboard_monitor_plug(); // no change, no event
    vboard_monitor_unplug();
    vboard_monitor_unplug();
    vboard_monitor_plug();
    vboard_monitor_unplug();
    ASSERT_EQ(vboard_monitor_wait_events(kPatience_ms), 0);
    const std::lock_guard guard(events_.mutex);
    using Seen = std::vector<std::pair<uint32_t, uint32_t>>;
    EXPECT_EQ(events_.seen, (Seen{{1, 0}, {0, 0}, {1, 0}}));
    EXPECT_NE(events_.thread, std::this_thread::get_id());
    EXPECT_FALSE(events_.overlapped);
    EXPECT_EQ(events_.deinit_result, code(MI_MODULE_HDMI, MI_REASON_NOT_PERMITTED));
}

TEST_F(Hdmi, TheSinkIsThereOnlyWhilePlugged)
{
    start_transmitter();
    MI_HDMI_SinkInfo info = {};
    EXPECT_EQ(MI_HDMI_GetSinkInfo(0, &info), MI_SUCCESS);
    EXPECT_EQ(info.connected, 1u);
    vboard_monitor_unplug();
    EXPECT_EQ(MI_HDMI_GetSinkInfo(0, &info), code(MI_MODULE_HDMI, MI_REASON_ABSENT));
}

TEST_F(Hdmi, TheMonitorSeesThePictureOnlyWhenEverythingIsOn)
{
    const Stream stream = load_stream("h264_640x360");
    power_up();
    start_channel(0, stream.codec);
    open_window(0, 0, 0, 640, 360);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    send_and_settle(0, stream.frames[0]);
    const auto sees_wall = [] {
        bool blank = false;
        const Picture screen = look_at_monitor(&blank);
        EXPECT_EQ(blank, screen.is_black());
        EXPECT_EQ(blank, vboard_monitor_has_signal() == 0);
        if (!blank) {
            EXPECT_TRUE(screen == look());
        }
        return !blank;
    };
    EXPECT_FALSE(sees_wall()); // the device composes, the transmitter is off
    EXPECT_FALSE(look().is_black());
    start_transmitter();
    EXPECT_TRUE(sees_wall());
    ASSERT_EQ(MI_HDMI_SetAvMute(0, 1), MI_SUCCESS);
    EXPECT_FALSE(sees_wall());
    ASSERT_EQ(MI_HDMI_SetAvMute(0, 0), MI_SUCCESS);
    EXPECT_TRUE(sees_wall());
    ASSERT_EQ(MI_HDMI_Stop(0), MI_SUCCESS);
    EXPECT_FALSE(sees_wall());
    ASSERT_EQ(MI_HDMI_Start(0), MI_SUCCESS);
    EXPECT_TRUE(sees_wall());
    ASSERT_EQ(MI_DISP_Disable(0), MI_SUCCESS);
    EXPECT_FALSE(sees_wall());
    ASSERT_EQ(MI_DISP_Enable(0), MI_SUCCESS);

    vboard_monitor_unplug();
    ASSERT_EQ(vboard_monitor_wait_events(kPatience_ms), 0);
    EXPECT_FALSE(sees_wall());
    vboard_monitor_plug();
    ASSERT_EQ(vboard_monitor_wait_events(kPatience_ms), 0);
    EXPECT_TRUE(sees_wall()); // the handler has started the transmitter again
}

} // namespace
