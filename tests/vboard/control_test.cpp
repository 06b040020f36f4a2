/* control_test.cpp - the control face: faults, traces, refusals, and the way back to the start. */
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "board_io.h"
#include "control_board.h"
#include "vboard_devices.h"

using namespace rig;

namespace
{

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
