/* start_disp: device, layer, HDMI, and the even grid of ports. */
#include <string>

#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

TEST(StartDisplay, WithoutPortsSetsDeviceLayerAndHdmiUp)
{
    enNorm_vga = 10;
    EXPECT_EQ(start_disp(0), 0u);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_SetPubAttr 0 {background 0x800080 interface 2 timing 21 rate 0}
        MI_DISP_Enable 0
        MI_DISP_BindVideoLayer 0 0
        MI_DISP_SetVideoLayerAttr 0 {window 0,0 1366x768 size 1366x768 format 12}
        MI_DISP_GetVideoLayerAttr 0
        MI_DISP_EnableVideoLayer 0
        MI_HDMI_SetAvMute 0 1
        MI_HDMI_SetAttr 0 {connected 0 video 1 timing 41 mode 0 colour 0 deep 0 audio 1 multichannel 0 rate 3 depth 16 coding 0 infoframes 0,0,0}
        MI_HDMI_Start 0
        MI_HDMI_SetAvMute 0 0
    )"));
    EXPECT_PRINTED_WITHOUT_PREFIX("E_MI_DISP_OUTPUT_1366x768_60");
    EXPECT_PRINTED_WITHOUT_PREFIX("InputPortNum=0");
    EXPECT_PRINTED_WITHOUT_PREFIX("[start_disp #]Get Video Layer Size [1366, 768] !!!");
    EXPECT_PRINTED_WITHOUT_PREFIX("[start_disp #]Get Video Layer DispWin [0, 0, 1366, 768] !!!");
}

TEST(StartDisplay, PrintsTheLayerAsThePlatformHasIt)
{
    platform.script("MI_DISP_GetVideoLayerAttr").fills([](recording::Args &args) {
        auto &layer = args.record<MI_DISP_VideoLayerAttr>(1);
        layer.window = {1, 2, 3, 4};
        layer.width = 5;
        layer.height = 6;
    });
    ASSERT_EQ(start_disp(0), 0u);
    EXPECT_PRINTED_IN_ORDER(R"(
        [start_disp #]Get Video Layer Size [5, 6] !!!
        [start_disp #]Get Video Layer DispWin [1, 2, 3, 4] !!!
    )");
}

struct CodeRow {
    uint32_t code, display;
    const char *name;
};

/* The 60 Hz codes 2 and 4 print the 50 Hz names; what is set is the table's value all the same. */
TEST(StartDisplay, PrintsTheNameOfEveryCode)
{
    constexpr CodeRow kRows[] = {
        {1, 8, "E_MI_DISP_OUTPUT_720P50"},         {2, 9, "E_MI_DISP_OUTPUT_720P50"},
        {3, 15, "E_MI_DISP_OUTPUT_1080P50"},       {4, 16, "E_MI_DISP_OUTPUT_1080P50"},
        {5, 26, "E_MI_DISP_OUTPUT_1600x1200_60"},  {6, 22, "E_MI_DISP_OUTPUT_1440x900_60"},
        {7, 20, "E_MI_DISP_OUTPUT_1280x1024_60"},  {8, 19, "E_MI_DISP_OUTPUT_1024x768_60"},
        {9, 23, "E_MI_DISP_OUTPUT_1280x800_60"},   {10, 21, "E_MI_DISP_OUTPUT_1366x768_60"},
        {11, 24, "E_MI_DISP_OUTPUT_1680x1050_60"}, {13, 30, "E_MI_DISP_OUTPUT_3840x2160_30"},
    };
    for (const CodeRow &row : kRows) {
        SCOPED_TRACE(row.code);
        platform.forget();
        enNorm_vga = row.code;
        EXPECT_EQ(start_disp(0), 0u);
        EXPECT_PRINTED_WITHOUT_PREFIX(row.name);
        EXPECT_EQ(platform.count("MI_DISP_SetPubAttr 0 {background 0x800080 interface 2 timing " +
                                 std::to_string(row.display) + " rate 0}"),
                  1u);
    }
}

TEST(StartDisplay, RefusesTheTimingThatTheTableKnowsButTheDisplayDoesNot)
{
    enNorm_vga = 12;
    EXPECT_EQ(start_disp(4), static_cast<uint32_t>(-1));
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "Unsupported timing!");
    EXPECT_EQ(platform.calls(), "");
}

TEST(StartDisplay, RefusesAnUnknownCode)
{
    enNorm_vga = 0;
    EXPECT_EQ(start_disp(4), static_cast<uint32_t>(-1));
    EXPECT_PRINTED_WITHOUT_PREFIX("Unspport Ap timing (0)");
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "Unsupported timing!");
    EXPECT_EQ(platform.calls(), "");
}

TEST(StartDisplay, UsesTheLastKnownTimingForAnUnknownCode)
{
    enNorm_vga = 8;
    ASSERT_EQ(start_disp(0), 0u);
    platform.forget();
    enNorm_vga = 77;
    EXPECT_EQ(start_disp(1), 0u);
    EXPECT_PRINTED_WITHOUT_PREFIX("Unspport Ap timing (77)");
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr 0 {background 0x800080 interface 2 timing 19 rate 0}"), 1u);
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr 0 0 {window 0,0 1024x768 source 0x0}"), 1u);
}

TEST(StartDisplay, BringsAPortUpInOrder)
{
    enNorm_vga = 4;
    platform.have_decoders(1);
    platform.script("MI_VDEC_GetOutputPortAttr").fills([](recording::Args &args) {
        args.record<MI_VDEC_OutputPortAttr>(1) = {704, 576};
    });
    EXPECT_EQ(start_disp(1), 0u);
    EXPECT_EQ(platform.calls_since("MI_DISP_GetInputPortAttr"), trace(R"(
        MI_DISP_GetInputPortAttr 0 0
        MI_VDEC_GetOutputPortAttr 0
        MI_DISP_SetInputPortAttr 0 0 {window 0,0 1920x1080 source 704x576}
        MI_DISP_GetInputPortAttr 0 0
        MI_DISP_EnableInputPort 0 0
        MI_DISP_SetInputPortSyncMode 0 0 1
        MI_DISP_ClearInputPortBuffer 0 0 1
    )"));
    EXPECT_PRINTED_WITHOUT_PREFIX("InputPortNum=1");
    EXPECT_PRINTED_WITHOUT_PREFIX("ENABLE");
}

TEST(StartDisplay, TakesAnUnreadableDecoderSizeForZero)
{
    platform.script("MI_VDEC_GetOutputPortAttr").fills([](recording::Args &args) {
        args.record<MI_VDEC_OutputPortAttr>(1) = {77, 55}; // a failing call may leave anything behind
        args.result = -3;
    });
    EXPECT_EQ(start_disp(1), 0u);
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr 0 0 {window 0,0 1920x1080 source 0x0}"), 1u);
}

/* 1366 / 3 = 455, an odd pane: all four values go down to even. */
TEST(StartDisplay, KeepsPanesEven)
{
    enNorm_vga = 10;
    EXPECT_EQ(start_disp(9), 0u);
    EXPECT_EQ(platform.calls({"MI_DISP_SetInputPortAttr"}), trace(R"(
        MI_DISP_SetInputPortAttr 0 0 {window 0,0 454x256 source 0x0}
        MI_DISP_SetInputPortAttr 0 1 {window 454,0 454x256 source 0x0}
        MI_DISP_SetInputPortAttr 0 2 {window 910,0 454x256 source 0x0}
        MI_DISP_SetInputPortAttr 0 3 {window 0,256 454x256 source 0x0}
        MI_DISP_SetInputPortAttr 0 4 {window 454,256 454x256 source 0x0}
        MI_DISP_SetInputPortAttr 0 5 {window 910,256 454x256 source 0x0}
        MI_DISP_SetInputPortAttr 0 6 {window 0,512 454x256 source 0x0}
        MI_DISP_SetInputPortAttr 0 7 {window 454,512 454x256 source 0x0}
        MI_DISP_SetInputPortAttr 0 8 {window 910,512 454x256 source 0x0}
    )"));
}

struct GridRow {
    int32_t ports;
    const char *last_port; // its place and size at 1920x1080
};

TEST(StartDisplay, ChoosesTheGridSideByTheNumberOfPorts)
{
    constexpr GridRow kRows[] = {
        {1, "0,0 1920x1080"},     {2, "960,0 960x540"},    {4, "960,540 960x540"},   {5, "640,360 640x360"},
        {9, "1280,720 640x360"},  {10, "480,540 480x270"}, {16, "1440,810 480x270"}, {17, "384,648 384x216"},
        {25, "1536,864 384x216"}, {26, "320,720 320x180"}, {36, "1600,900 320x180"}, {37, "0,0 0x0"},
        {60, "0,0 0x0"},
    };
    for (const GridRow &row : kRows) {
        SCOPED_TRACE(row.ports);
        platform.forget();
        EXPECT_EQ(start_disp(row.ports), 0u);
        EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr"), static_cast<unsigned>(row.ports));
        EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr 0 " + std::to_string(row.ports - 1) + " {window " +
                                 row.last_port + " source 0x0}"),
                  1u);
    }
}

TEST(StartDisplay, TakesANegativePortCountAsNone)
{
    EXPECT_EQ(start_disp(-1), 0u);
    EXPECT_EQ(platform.count("MI_DISP_EnableVideoLayer"), 1u);
    EXPECT_EQ(platform.count("MI_DISP_GetInputPortAttr"), 0u);
}

TEST(StartDisplay, WrapsEveryCallInTheCheckingConvention)
{
    EXPECT_EQ(start_disp(1), 0u);
    EXPECT_PRINTED_IN_ORDER(R"(
        # Start test: MI_DISP_SetPubAttr(DispDev, &stPubAttr)
        AUDIO_TEST [#] MI_DISP_SetPubAttr(DispDev, &stPubAttr)  exec function pass
        # End test: MI_DISP_SetPubAttr(DispDev, &stPubAttr)
        # Start test: MI_DISP_SetInputPortSyncMode(0, u32InputPort, E_MI_DISP_SYNC_MODE_FREE_RUN)
        AUDIO_TEST [#] MI_DISP_SetInputPortSyncMode(0, u32InputPort, E_MI_DISP_SYNC_MODE_FREE_RUN)  exec function pass
        # End test: MI_DISP_SetInputPortSyncMode(0, u32InputPort, E_MI_DISP_SYNC_MODE_FREE_RUN)
    )");
    // Six calls of device and layer, two of HDMI, six of the port; the decoder's size is not wrapped.
    unsigned starts = 0, passes = 0, ends = 0;
    for (const std::string &line : recording::printed_lines()) {
        starts += line.find(" Start test: ") != std::string::npos;
        passes += line.find("  exec function pass") != std::string::npos;
        ends += line.find(" End test: ") != std::string::npos;
    }
    EXPECT_EQ(starts, 14u);
    EXPECT_EQ(passes, 14u);
    EXPECT_EQ(ends, 14u);
}

constexpr const char *kWrapped[] = {
    "MI_DISP_SetPubAttr",           "MI_DISP_Enable",
    "MI_DISP_BindVideoLayer",       "MI_DISP_SetVideoLayerAttr",
    "MI_DISP_GetVideoLayerAttr",    "MI_DISP_EnableVideoLayer",
    "MI_DISP_GetInputPortAttr",     "MI_DISP_SetInputPortAttr",
    "MI_DISP_EnableInputPort",      "MI_DISP_SetInputPortSyncMode",
    "MI_DISP_ClearInputPortBuffer",
};

TEST(StartDisplay, StopsAtTheFirstFailingCall)
{
    for (const char *call : kWrapped) {
        SCOPED_TRACE(call);
        platform.reset();
        recording::forget_printed();
        platform.script(call).once().returns(0xA00F0003);
        EXPECT_EQ(start_disp(2), 1u);
        std::string since = platform.calls_since(call);
        EXPECT_EQ(since.find('\n'), std::string::npos) << "called after the failure:\n" << since;
        unsigned failures = 0;
        for (const std::string &line : recording::printed_lines()) {
            bool failed = line.find(" exec function failed, result:0xa00f0003") != std::string::npos;
            failures += failed;
            if (!failed) continue;
            EXPECT_NE(line.find(std::string("] ") + call + "("), std::string::npos) << line;
        }
        EXPECT_EQ(failures, 1u);
    }
}

TEST(StartDisplay, RunsHdmiASecondTimeForTheCodeWhenItFails)
{
    platform.script("MI_HDMI_SetAttr").once().returns(0xA00A0001);
    EXPECT_EQ(start_disp(2), 1u);
    EXPECT_EQ(platform.calls_since("MI_HDMI_SetAvMute"), trace(R"(
        MI_HDMI_SetAvMute 0 1
        MI_HDMI_SetAttr 0 {connected 0 video 1 timing 9 mode 0 colour 0 deep 0 audio 1 multichannel 0 rate 3 depth 16 coding 0 infoframes 0,0,0}
        MI_HDMI_SetAvMute 0 1
        MI_HDMI_SetAttr 0 {connected 0 video 1 timing 9 mode 0 colour 0 deep 0 audio 1 multichannel 0 rate 3 depth 16 coding 0 infoframes 0,0,0}
        MI_HDMI_Start 0
        MI_HDMI_SetAvMute 0 0
    )"));
    EXPECT_PRINTED_WITHOUT_PREFIX("[start_disp # 0]exec function failed");
    EXPECT_NOT_PRINTED("InputPortNum=2");
}

TEST(StartDisplay, PrintsTheCodeOfTheSecondHdmiFailure)
{
    platform.script("MI_HDMI_Start").returns(0xA00A0011);
    EXPECT_EQ(start_disp(2), 1u);
    EXPECT_EQ(platform.count("MI_HDMI_Start"), 2u);
    EXPECT_PRINTED_WITHOUT_PREFIX("[start_disp # 1]exec function failed");
}

} // namespace
