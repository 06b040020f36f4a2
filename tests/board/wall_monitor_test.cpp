/* wall_monitor_test.cpp - the monitor's plug under a live wall: the library brings the picture back. */
#include <cstring>

#include "wall_session.h"

using namespace wall;

namespace
{

class MonitorOfTheWall : public Wall
{
protected:
    void SetUp() override
    {
        start(4);
        ASSERT_EQ(lay_out(grid(2, 4)), 0);
        show(0);
    }

    /* A frame of every camera. */
    void show(size_t frame)
    {
        for (uint32_t channel = 0; channel < 4; ++channel)
            send(channel, cameras_[channel].stream.frames[frame], cameras_[channel].codec());
    }

    static void expect_frame_on_monitor(uint32_t frame)
    {
        bool blank = true;
        const rig::Picture picture = rig::look_at_monitor(&blank);
        EXPECT_FALSE(blank);
        for (uint32_t channel = 0; channel < 4; ++channel)
            EXPECT_EQ(stamp_in(picture, grid_place(2, channel)), (stamp::Stamp{channel, frame}));
    }

    const std::vector<Camera> cameras_ = {Camera("session_live_0_h265"), Camera("session_live_1_h265"),
                                          Camera("session_live_2_h265"), Camera("session_live_3_h265")};
};

TEST_F(MonitorOfTheWall, ShowsNothingWhileUnpluggedAndTheNewestFramesAfterwards)
{
    expect_frame_on_monitor(0);
    for (uint32_t frame = 1; frame < 6; frame += 2) {
        ASSERT_EQ(vboard_monitor_unplug(), 0);
        ASSERT_EQ(vboard_monitor_wait_events(rig::kPatience_ms), 0);
        EXPECT_EQ(vboard_monitor_has_signal(), 0);
        show(frame);
        bool blank = false;
        EXPECT_TRUE(rig::look_at_monitor(&blank).is_black());
        EXPECT_TRUE(blank);
        show(frame + 1); // the wall goes on behind the dark monitor
        EXPECT_EQ(stamp_in(rig::look(), grid_place(2, 3)), (stamp::Stamp{3, frame + 1}));

        ASSERT_EQ(vboard_monitor_plug(), 0);
        ASSERT_EQ(vboard_monitor_wait_events(rig::kPatience_ms), 0);
        EXPECT_EQ(vboard_monitor_has_signal(), 1);
        expect_frame_on_monitor(frame + 1);
    }
}

TEST_F(MonitorOfTheWall, KeepsTheTimingOfTheStartAcrossAPlug)
{
    MI_HDMI_Attr before = {}, after = {};
    ASSERT_EQ(MI_HDMI_GetAttr(0, &before), MI_SUCCESS);
    vboard_monitor_unplug();
    vboard_monitor_plug();
    ASSERT_EQ(vboard_monitor_wait_events(rig::kPatience_ms), 0);
    ASSERT_EQ(MI_HDMI_GetAttr(0, &after), MI_SUCCESS);
    EXPECT_EQ(after.video_timing, 9u); // 1080p at 60 Hz
    EXPECT_EQ(memcmp(&before, &after, sizeof before), 0);
    expect_frame_on_monitor(0);
}

TEST_F(MonitorOfTheWall, StaysDarkWhenItsAttributesCannotBeWrittenBack)
{
    vboard_monitor_unplug();
    ASSERT_EQ(vboard_monitor_wait_events(rig::kPatience_ms), 0);
    ASSERT_EQ(vboard_fault_set("MI_HDMI_SetAttr", 1, 1, -7), 0);
    vboard_monitor_plug();
    ASSERT_EQ(vboard_monitor_wait_events(rig::kPatience_ms), 0);
    EXPECT_EQ(vboard_monitor_has_signal(), 0);
    vboard_monitor_unplug();
    vboard_monitor_plug(); // the fault is over
    ASSERT_EQ(vboard_monitor_wait_events(rig::kPatience_ms), 0);
    expect_frame_on_monitor(0);
}

/* The plug moves while frames and looks go on: nobody waits for anybody. */
TEST_F(MonitorOfTheWall, PlugsAndPullsWhileTheWallRuns)
{
    std::thread plug([] {
        for (int round = 0; round < 20; ++round) {
            vboard_monitor_unplug();
            vboard_monitor_plug();
        }
    });
    for (size_t frame = 1; frame < 10; ++frame) {
        show(frame);
        rig::look_at_monitor();
    }
    plug.join();
    ASSERT_EQ(vboard_monitor_wait_events(rig::kPatience_ms), 0);
    expect_frame_on_monitor(9);
}

} // namespace
