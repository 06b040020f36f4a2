/* board_control_test.cpp - the control face: captures, followers, pacing, faults, traces, the clock. */
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include "board_io.h"
#include "board_rig.h"
#include "vboard_devices.h"

using namespace rig;

namespace
{

class Control : public Board
{
protected:
    Stream show(const char *name, int w = 640, int h = 360)
    {
        Stream stream = load_stream(name);
        power_up();
        start_channel(0, stream.codec);
        open_window(0, 0, 0, w, h);
        EXPECT_EQ(bind(0, 0), MI_SUCCESS);
        return stream;
    }

    static std::string scratch(const char *name)
    {
        return testing::TempDir() + "vboard_" + std::to_string(getpid()) + "_" + name;
    }
};

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

TEST_F(Control, AFaultFailsTheNthCallAsOftenAsAsked)
{
    EXPECT_EQ(vboard_fault_set("MI_SYS_Nothing", 1, 1, -5), -1);
    EXPECT_EQ(vboard_fault_set("MI_SYS_Init", 0, 1, -5), -1);
    EXPECT_EQ(vboard_fault_set(nullptr, 1, 1, -5), -1);
    ASSERT_EQ(vboard_fault_set("MI_SYS_Init", 2, 2, -5), 0);
    EXPECT_EQ(MI_SYS_Init(), 0);
    EXPECT_EQ(MI_SYS_Init(), -5);
    EXPECT_EQ(MI_SYS_Init(), -5);
    EXPECT_EQ(MI_SYS_Init(), 0);
    ASSERT_EQ(vboard_fault_set("MI_SYS_Init", 1, 0, -6), 0);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(MI_SYS_Init(), -6);
    vboard_fault_clear("MI_SYS_Init");
    EXPECT_EQ(MI_SYS_Init(), 0);
}

TEST_F(Control, AFaultedCallIsNotCarriedOut)
{
    power_up();
    ASSERT_EQ(vboard_fault_set("MI_VDEC_CreateChn", 1, 1, 77), 0);
    const MI_VDEC_ChnAttr attr = channel_attr(MI_VDEC_CODEC_H264);
    EXPECT_EQ(MI_VDEC_CreateChn(0, &attr), 77);
    EXPECT_EQ(counters(0).created, 0u);
    ASSERT_EQ(vboard_fault_set("board_run_command", 1, 1, -1), 0);
    EXPECT_EQ(board_run_command("insmod ms_gpio.ko"), -1);
    vboard_fault_clear(nullptr);
    EXPECT_EQ(board_run_command("insmod ms_gpio.ko"), 0);
}

vboard_fault_stat fault_counts()
{
    vboard_fault_stat stat = {};
    EXPECT_EQ(vboard_fault_get_stat(&stat), 0);
    return stat;
}

TEST_F(Control, FaultsThatCatchNothingAndNamesThatAreNoneAreSaidAndCounted)
{
    EXPECT_EQ(vboard_fault_get_stat(nullptr), -1);
    const vboard_fault_stat before = fault_counts();
    testing::internal::CaptureStderr();
    EXPECT_EQ(vboard_fault_set("MI_SYS_Innit", 1, 1, -5), -1);
    ASSERT_EQ(vboard_fault_set("MI_SYS_Init", 1, 2, -5), 0);
    ASSERT_EQ(vboard_fault_set("MI_VDEC_StartChn", 3, 1, -5), 0);
    EXPECT_EQ(fault_counts().waiting, 2u);
    EXPECT_EQ(MI_SYS_Init(), -5);
    EXPECT_EQ(MI_SYS_Init(), -5);
    MI_VDEC_StopChn(99);
    EXPECT_EQ(fault_counts().waiting, 1u);
    vboard_fault_clear("MI_VDEC_StrtChn");
    EXPECT_EQ(fault_counts().waiting, 1u);
    vboard_fault_clear("MI_VDEC_StopChn"); // has no fault: accepted
    vboard_fault_clear(nullptr);
    const vboard_fault_stat stat = fault_counts();
    EXPECT_EQ(stat.refused - before.refused, 2u);
    EXPECT_EQ(stat.set - before.set, 2u);
    EXPECT_EQ(stat.fired - before.fired, 2u);
    EXPECT_EQ(stat.unused - before.unused, 1u);
    EXPECT_EQ(stat.waiting, 0u);
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "vboard: board: no platform call is named \"MI_SYS_Innit\"\n"
        "vboard: MI_VDEC_StopChn: decoder channel 99 (no such channel)\n"
        "vboard: board: no platform call is named \"MI_VDEC_StrtChn\"\n"
        "vboard: MI_VDEC_StartChn: the fault set for its call number 3 made no call fail: there were 0\n");
    ASSERT_EQ(vboard_fault_set("MI_VDEC_StartChn", 1, 1, -5), 0);
    vboard_reset(); // ends a fault as well
    EXPECT_EQ(fault_counts().unused - before.unused, 2u);
}

TEST_F(Control, EveryPlatformCallCanBeMadeToFail)
{
    std::ifstream names(PLATFORM_CALLS);
    std::string name;
    int count = 0;
    while (names >> name) {
        EXPECT_EQ(vboard_fault_set(name.c_str(), 1, 1, -1), 0) << name;
        ++count;
    }
    EXPECT_GT(count, 70);
}

TEST_F(Control, TheTraceHoldsEveryCallWithArgumentsAndResult)
{
    const std::string path = scratch("trace.txt");
    EXPECT_EQ(vboard_trace_start("/nonexistent/trace.txt"), -1);
    vboard_clock_take();
    ASSERT_EQ(vboard_trace_start(path.c_str()), 0);
    power_up();
    start_channel(0, MI_VDEC_CODEC_H264);
    unbind(0, 3);
    bind(0, 3);
    bind(0, 3);
    MI_VDEC_ChnStat stat;
    MI_VDEC_GetChnStat(0, &stat);
    MI_VDEC_GetChnStat(9, &stat);
    MI_VDEC_GetChnAttr(0, nullptr);
    board_open("/dev/nothing", 2);
    board_sleep_us(0);
    const Bytes digits = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    send(0, digits);
    send(9, digits);
    vboard_monitor_unplug();
    vboard_monitor_unplug(); // not plugged in any more: nothing happens
    vboard_monitor_plug();
    vboard_mouse_move(3, -4);
    vboard_panel_press_named("menu");
    vboard_ir_send(0x12345678, 2);
    vboard_trace_stop();
    MI_SYS_Init();

    std::ifstream file(path);
    std::stringstream text;
    for (std::string line; std::getline(file, line);)
        text << line.substr(line.find(' ') + 1) << '\n';
    EXPECT_EQ(text.str(), R"(MI_SYS_Init = 0
MI_DISP_SetPubAttr 0 {background=8388736 interface=2 timing=16 rate=0} = 0
MI_DISP_Enable 0 = 0
MI_DISP_BindVideoLayer 0 0 = 0
MI_DISP_SetVideoLayerAttr 0 {x=0 y=0 w=1920 h=1080 width=1920 height=1080 format=12} = 0
MI_DISP_EnableVideoLayer 0 = 0
MI_VDEC_CreateChn 0 {codec=0 buffer=1048576 priority=0 max_width=1920 max_height=1080 mode=1 references=2 buffers=2} = 0
MI_VDEC_StartChn 0 = 0
MI_SYS_UnBindChnPort {module=8 device=0 channel=0 port=0} {module=15 device=0 channel=3 port=0} = 0xa0010005 (absent)
MI_SYS_BindChnPort {module=8 device=0 channel=0 port=0} {module=15 device=0 channel=3 port=0} 15 15 = 0
MI_SYS_BindChnPort {module=8 device=0 channel=0 port=0} {module=15 device=0 channel=3 port=0} 15 15 = 0xa0010004
MI_VDEC_GetChnStat 0 {bytes=0 frames=0 pictures=0} = 0
MI_VDEC_GetChnStat 9 - = 0xa0080005
MI_VDEC_GetChnAttr 0 null = 0xa0080006
board_open "/dev/nothing" 2 = -1
board_sleep_us 0 = 0
MI_VDEC_SendStream 0 {length=9 pts=0 end_of_frame=0 end_of_stream=0 crc32=cbf43926} -1 = 0
MI_VDEC_SendStream 9 {length=9 pts=0 end_of_frame=0 end_of_stream=0 crc32=-} -1 = 0xa0080005
event plug {plugged=0}
event plug {plugged=1}
event mouse {type=1 buttons=0 x=3 y=-4 wheel=0}
event panel {code=109}
event remote {code=0x12345678 state=2}
)");
    remove(path.c_str());
}

TEST_F(Control, TheClockStandsStillWhenTakenAndMovesByStepsOnly)
{
    EXPECT_EQ(vboard_clock_step_us(1), -1);
    vboard_clock_take();
    const int64_t before = vboard_clock_us();
    const int64_t wall = board_time_us();
    EXPECT_EQ(vboard_clock_us(), before);
    EXPECT_EQ(vboard_clock_step_us(-1), -1);
    ASSERT_EQ(vboard_clock_step_us(1234567), 0);
    EXPECT_EQ(vboard_clock_us(), before + 1234567);
    EXPECT_EQ(board_time_us(), wall + 1234567);
    vboard_clock_release();
    EXPECT_GE(vboard_clock_us(), before + 1234567);
}

TEST_F(Control, AClockTakenAtATimeStandsThere)
{
    EXPECT_EQ(vboard_clock_take_at(-1, 0), -1);
    EXPECT_EQ(vboard_clock_take_at(0, INT64_MAX), -1);
    ASSERT_EQ(vboard_clock_take_at(5000000, 1700000000000000), 0);
    EXPECT_EQ(vboard_clock_us(), 5000000);
    EXPECT_EQ(board_time_us(), 1700000000000000);
    EXPECT_EQ(vboard_clock_take_at(0, 0), -1); // taken
    ASSERT_EQ(vboard_clock_step_us(7), 0);
    EXPECT_EQ(vboard_clock_us(), 5000007);
    EXPECT_EQ(board_time_us(), 1700000000000007);
    vboard_clock_release();
    EXPECT_GE(vboard_clock_us(), 5000007);
    EXPECT_LT(vboard_clock_us(), 5000007 + 60000000);
    std::atomic<bool> woke = false;
    std::thread sleeper([&] {
        board_sleep_us(4000000);
        woke = true;
    });
    while (vboard_clock_wait_sleepers(1, 1) != 0)
        ASSERT_FALSE(woke);
    EXPECT_EQ(vboard_clock_take_at(0, 0), -1); // it would sleep for another time than it asked for
    vboard_clock_take();
    ASSERT_EQ(vboard_clock_step_us(4000000), 0);
    sleeper.join();
}

TEST_F(Control, ASleepEndsWhenTheClockIsSteppedPastIt)
{
    vboard_clock_take();
    const int64_t start = vboard_clock_us();
    int64_t woke = 0;
    std::thread sleeper([&] {
        board_sleep_us(100000);
        woke = vboard_clock_us();
    });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    ASSERT_EQ(vboard_clock_step_us(99999), 0);
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0); // still asleep
    ASSERT_EQ(vboard_clock_step_us(1), 0);
    sleeper.join();
    EXPECT_EQ(woke, start + 100000);
}

TEST_F(Control, ASleeperWakesWhenTheClockIsReleased)
{
    vboard_clock_take();
    std::thread sleeper([] { board_sleep_us(1000); });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    vboard_clock_release();
    sleeper.join();
}

TEST_F(Control, AFollowerIsToldOfEveryJumpOfTheClock)
{
    std::vector<int64_t> told;
    const auto follower = [](void *user) {
        static_cast<std::vector<int64_t> *>(user)->push_back(vboard_clock_us());
    };
    EXPECT_EQ(vboard_clock_is_taken(), 0);
    ASSERT_EQ(vboard_clock_follow(follower, &told), 0);
    EXPECT_EQ(vboard_clock_follow(follower, &told), -1);
    vboard_clock_take();
    EXPECT_EQ(vboard_clock_is_taken(), 1);
    const int64_t taken_at = vboard_clock_us();
    const int64_t wall = vboard_clock_wall_us();
    ASSERT_EQ(vboard_clock_step_us(40000), 0);
    EXPECT_EQ(vboard_clock_wall_us(), wall + 40000);
    EXPECT_EQ(told, (std::vector<int64_t>{taken_at, taken_at + 40000}));
    vboard_clock_release();
    EXPECT_EQ(told.size(), 3u);
    ASSERT_EQ(vboard_clock_follow(nullptr, nullptr), 0);
    vboard_clock_take();
    EXPECT_EQ(told.size(), 3u);
    vboard_clock_release();
    ASSERT_EQ(vboard_clock_follow(follower, &told), 0);
    ASSERT_EQ(vboard_clock_take_at(5, 6), 0);
    EXPECT_EQ(told.back(), 5);
    ASSERT_EQ(vboard_clock_follow(nullptr, nullptr), 0);
    vboard_clock_release();
}

TEST_F(Control, AnApplicationsOwnSleepersCountUntilTheirTimeOrTheirWaking)
{
    vboard_clock_take();
    const int64_t now = vboard_clock_us();
    EXPECT_EQ(vboard_clock_wait_sleepers(1, 0), -1);
    vboard_clock_add_sleeper(now + 10);
    vboard_clock_add_sleeper(now + 20);
    EXPECT_EQ(vboard_clock_wait_sleepers(2, 0), 0);
    ASSERT_EQ(vboard_clock_step_us(10), 0);
    EXPECT_EQ(vboard_clock_wait_sleepers(2, 0), -1) << "its time has come, so it is awake";
    EXPECT_EQ(vboard_clock_wait_sleepers(1, 0), 0);
    vboard_clock_remove_sleeper(now + 20);
    EXPECT_EQ(vboard_clock_wait_sleepers(1, 0), -1);
    vboard_clock_remove_sleeper(now + 10);
    vboard_clock_remove_sleeper(now + 10); // accepted
    vboard_clock_release();
}

TEST_F(Control, TheMediaClockRunsFromItsBaseAndNeverBackwards)
{
    uint64_t pts = 0;
    EXPECT_EQ(MI_SYS_GetCurPts(&pts), code(MI_MODULE_SYS, MI_REASON_NOT_READY));
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    vboard_clock_take();
    ASSERT_EQ(MI_SYS_InitPtsBase(0xF1237890F1237890ull), MI_SUCCESS);
    ASSERT_EQ(vboard_clock_step_us(5), 0);
    ASSERT_EQ(MI_SYS_SyncPts(0xE1237890E1237890ull), MI_SUCCESS); // behind: changes nothing
    ASSERT_EQ(MI_SYS_GetCurPts(&pts), MI_SUCCESS);
    EXPECT_EQ(pts, 0xF1237890F1237895ull);
    ASSERT_EQ(MI_SYS_SyncPts(0xF2237890F1237890ull), MI_SUCCESS);
    ASSERT_EQ(MI_SYS_GetCurPts(&pts), MI_SUCCESS);
    EXPECT_EQ(pts, 0xF2237890F1237890ull);
    MI_SYS_Version version = {};
    ASSERT_EQ(MI_SYS_GetVersion(&version), MI_SUCCESS);
    EXPECT_NE(version.text[0], '\0');
}

TEST_F(Control, NodesThatTheBoardLacksAreRefusedLoudlyAndNothingOfThePcIsOpened)
{
    const uint64_t refusals = vboard_refusal_count();
    for (const char *path : {"/dev/null", "/dev/fb7", "/etc/passwd", ""}) {
        errno = 0;
        EXPECT_EQ(board_open(path, 0), -1);
        EXPECT_EQ(errno, ENOENT);
    }
    EXPECT_EQ(board_open(nullptr, 0), -1);
    EXPECT_EQ(vboard_refusal_count(), refusals + 5);
    char byte = 0;
    EXPECT_EQ(board_close(1), -1);
    EXPECT_EQ(board_read(0, &byte, 1), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(board_ioctl(1, 0x5401, nullptr), -1);
    EXPECT_EQ(board_map(1, 4096), nullptr);
    EXPECT_EQ(board_unmap(&byte, 1), -1);
}

TEST_F(Control, NoCommandIsEverRun)
{
    const std::string path = scratch("touched");
    EXPECT_EQ(board_run_command(("touch " + path).c_str()), 127);
    EXPECT_EQ(board_run_command(("insmod x; touch " + path).c_str()), 0);
    EXPECT_FALSE(std::ifstream(path).good());
    EXPECT_EQ(board_run_command(nullptr), -1);
}

TEST_F(Control, AQuietBoardStillCountsItsRefusals)
{
    vboard_set_loud(0);
    testing::internal::CaptureStderr();
    const uint64_t refusals = vboard_refusal_count();
    EXPECT_LT(MI_VDEC_StartChn(99), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(vboard_refusal_count(), refusals + 1);
    EXPECT_EQ(last_refusal(), "MI_VDEC_StartChn: decoder channel 99 (no such channel)");
    vboard_set_loud(1);
    testing::internal::CaptureStderr();
    EXPECT_LT(MI_VDEC_StartChn(99), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "vboard: MI_VDEC_StartChn: decoder channel 99 (no such channel)\n");
}

TEST_F(Control, ResetBringsTheBoardBackToItsStart)
{
    const Stream stream = show("h264_640x360");
    send_and_settle(0, stream.frames[0]);
    vboard_monitor_unplug();
    vboard_reset();
    EXPECT_EQ(vboard_monitor_is_plugged(), 1);
    EXPECT_EQ(counters(0).frames_sent, 0u);
    EXPECT_EQ(counters(0).created, 0u);
    EXPECT_EQ(port_state(0).bound, 0u);
    EXPECT_TRUE(look().is_black());
    EXPECT_EQ(MI_DISP_Enable(0), code(MI_MODULE_DISP, MI_REASON_NOT_READY));
}

} // namespace
