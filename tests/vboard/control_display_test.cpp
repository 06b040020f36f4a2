/* control_display_test.cpp - the control face's looks at the output: captures, loans, followers, pacing. */
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <thread>
#include <vector>

#include "control_board.h"
#include "vboard_devices.h"

using namespace rig;

namespace
{

TEST_F(Control, CapturesAreRefusedWithoutADeviceFormatOrImage)
{
    vboard_image image;
    EXPECT_EQ(vboard_display_capture(3, VBOARD_FORMAT_I420, &image), -1);
    EXPECT_EQ(image.bytes, nullptr);
    EXPECT_EQ(vboard_display_capture(0, 2, &image), -1);
    EXPECT_EQ(vboard_display_capture(0, VBOARD_FORMAT_I420, nullptr), -1);
    EXPECT_EQ(vboard_display_save_png(0, "/nonexistent/wall.png"), -1);
    vboard_image_free(&image);
    vboard_image_free(nullptr);
}

TEST_F(Control, AnRgbCaptureOfBlackIsBlackAndOfWhiteCellsIsWhite)
{
    const Stream stream = show("h264_640x360");
    send_and_settle(0, stream.frames[0]);
    vboard_image image;
    ASSERT_EQ(vboard_display_capture(0, VBOARD_FORMAT_RGB24, &image), 0);
    ASSERT_EQ(image.size, size_t{1920} * 1080 * 3);
    const auto pixel = [&](int x, int y) {
        return image.bytes + (static_cast<size_t>(y) * 1920 + static_cast<size_t>(x)) * 3;
    };
    for (int colour = 0; colour < 3; ++colour)
        EXPECT_EQ(pixel(1900, 1000)[colour], 0); // background
    EXPECT_GT(pixel(20, 15)[1], 200);            // the stamp's first guard is white
    EXPECT_LT(pixel(60, 15)[1], 60);             // high channel bit: black
    vboard_image_free(&image);
}

TEST_F(Control, APngHoldsTheSizeOfTheWall)
{
    power_up(kTiming720p50);
    const std::string path = scratch("wall.png");
    ASSERT_EQ(vboard_display_save_png(0, path.c_str()), 0);
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    ASSERT_GT(bytes.size(), 24u);
    EXPECT_EQ(bytes.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(bytes.substr(16, 8), std::string("\0\0\x05\0\0\0\x02\xd0", 8)); // 1280 x 720
    remove(path.c_str());
}

TEST_F(Control, ASettledPictureWaitsForTheDecoders)
{
    const Stream stream = show("h264_640x360");
    const std::string path = scratch("settled.png");
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    for (size_t frame = 0; frame < 3; ++frame) // more than the display takes before it is stepped
        ASSERT_EQ(send(0, stream.frames[frame]), MI_SUCCESS);
    EXPECT_EQ(vboard_monitor_save_settled(path.c_str(), 10), -1);
    EXPECT_EQ(last_refusal(), "board: decoder channel 0 is still at work");
    EXPECT_FALSE(std::ifstream(path).good());
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_REALTIME), 0);
    EXPECT_EQ(vboard_monitor_save_settled(path.c_str(), kPatience_ms), 0);
    EXPECT_TRUE(std::ifstream(path).good());
    EXPECT_EQ(counters(0).decoded, 3u);
    remove(path.c_str());
}

TEST_F(Control, ALentPictureStandsStill)
{
    const Stream stream = show("h264_640x360");
    send_and_settle(0, stream.frames[0]);
    vboard_picture picture;
    EXPECT_EQ(vboard_display_give_back(0), -1);
    ASSERT_EQ(vboard_display_borrow(0, &picture), 0);
    EXPECT_EQ(picture.width, 1920u);
    send_and_settle(0, stream.frames[1]);
    EXPECT_EQ(stamp::read(picture.plane[0], static_cast<int>(picture.stride[0]), 640, 360)->frame, 0u);
    ASSERT_EQ(vboard_display_give_back(0), 0);
    EXPECT_EQ(vboard_display_give_back(0), -1);
    EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 1u);
}

struct Followed {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<uint32_t> changed_ports;
    std::vector<int64_t> times_us;
};

void note_picture(const vboard_picture *picture, void *user)
{
    auto &followed = *static_cast<Followed *>(user);
    const std::lock_guard guard(followed.mutex);
    followed.changed_ports.push_back(picture->changed_ports);
    followed.times_us.push_back(picture->time_us);
    followed.changed.notify_all();
}

TEST_F(Control, AFollowerIsCalledAtTheRefreshRateOnTheBoardClock)
{
    const Stream stream = show("h264_640x360");
    MI_DISP_PubAttr attr = {};
    ASSERT_EQ(MI_DISP_GetPubAttr(0, &attr), MI_SUCCESS);
    attr.frame_rate = 25;
    ASSERT_EQ(MI_DISP_SetPubAttr(0, &attr), MI_SUCCESS);
    vboard_clock_take();
    Followed followed;
    ASSERT_EQ(vboard_display_follow(0, note_picture, &followed), 0);
    EXPECT_EQ(vboard_display_follow(0, note_picture, &followed), -1);
    for (size_t frame = 0; frame < 4; ++frame) {
        send_and_settle(0, stream.frames[frame]);
        ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
        ASSERT_EQ(vboard_clock_step_us(40000), 0);
        std::unique_lock lock(followed.mutex);
        ASSERT_TRUE(followed.changed.wait_for(lock, std::chrono::milliseconds(kPatience_ms),
                                              [&] { return followed.times_us.size() == frame + 1; }));
        EXPECT_EQ(followed.changed_ports.back(), 1u);
    }
    // Ten refreshes in one step: all are made, with nothing new in them.
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    ASSERT_EQ(vboard_clock_step_us(400000), 0);
    {
        std::unique_lock lock(followed.mutex);
        ASSERT_TRUE(followed.changed.wait_for(lock, std::chrono::milliseconds(kPatience_ms),
                                              [&] { return followed.times_us.size() == 14; }));
        EXPECT_EQ(followed.changed_ports.back(), 0u);
    }
    ASSERT_EQ(vboard_display_follow(0, nullptr, nullptr), 0);
    ASSERT_EQ(vboard_clock_step_us(400000), 0);
    EXPECT_EQ(followed.times_us.size(), 14u);
}

TEST_F(Control, UnderStepPacingEveryPictureIsShownOnceAndInOrder)
{
    const Stream stream = show("h264_640x360");
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    Followed followed;
    ASSERT_EQ(vboard_display_follow(0, note_picture, &followed), 0);
    std::thread sender([&] {
        for (const Bytes &frame : stream.frames)
            EXPECT_EQ(send(0, frame), MI_SUCCESS);
    });
    for (size_t frame = 0; frame < stream.frames.size(); ++frame) {
        EXPECT_EQ(vboard_display_wait_queued(0, 1, 1, kPatience_ms), 0);
        EXPECT_EQ(vboard_display_step(0), 1);
        EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, frame);
    }
    sender.join();
    EXPECT_EQ(vboard_display_step(0), 0);
    EXPECT_EQ(counters(0).shown, stream.frames.size());
    EXPECT_EQ(counters(0).dropped, 0u);
    EXPECT_EQ(followed.times_us.size(), stream.frames.size() + 1);
    ASSERT_EQ(vboard_display_follow(0, nullptr, nullptr), 0);
}

TEST_F(Control, StepAndWaitQueuedNeedStepPacing)
{
    EXPECT_EQ(vboard_display_step(0), -1);
    EXPECT_EQ(vboard_display_wait_queued(0, 1, 1, 0), -1);
    EXPECT_EQ(vboard_display_set_pacing(0, 2), -1);
    EXPECT_EQ(vboard_display_set_pacing(5, 1), -1);
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    EXPECT_EQ(vboard_display_wait_queued(0, 1, 2, 0), -1);
    EXPECT_EQ(vboard_display_wait_queued(0, 1, 1, 0), -1); // time-out
}

TEST_F(Control, WaitTakenCountsFromTheMark)
{
    const Stream stream = show("h264_640x360");
    send_and_settle(0, stream.frames[0]);
    EXPECT_EQ(vboard_display_wait_taken(0, 1, 1, 0), 0);
    ASSERT_EQ(vboard_display_mark(0), 0);
    EXPECT_EQ(vboard_display_wait_taken(0, 1, 1, 0), -1);
    ASSERT_EQ(send(0, stream.frames[1]), MI_SUCCESS);
    EXPECT_EQ(vboard_display_wait_taken(0, 1, 1, kPatience_ms), 0);
}

} // namespace
