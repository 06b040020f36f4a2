/* vo_start, vo_enable and vo_disable: the display device started from outside start_disp. */
#include <string>

#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

constexpr uint32_t kFailed = static_cast<uint32_t>(-1);

TEST(VoStart, FirstTimeEnablesDeviceLayerAndPorts)
{
    enNorm_vga = 6; // as an output value: 720x480
    EXPECT_EQ(vo_start(0, 0, 30, 11, 4), 0u);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_DisableInputPort 0 0
        MI_DISP_DisableInputPort 0 1
        MI_DISP_DisableInputPort 0 2
        MI_DISP_DisableInputPort 0 3
        MI_DISP_DisableVideoLayer 0
        MI_DISP_Disable 0
        MI_DISP_SetPubAttr 0 {background 0x0 interface 7 timing 6 rate 0}
        MI_DISP_Enable 0
        MI_DISP_SetVideoLayerAttr 0 {window 0,0 720x480 size 720x480 format 11}
        MI_DISP_EnableVideoLayer 0
        MI_DISP_SetInputPortAttr 0 0 {window 0,0 360x240 source 0x0}
        MI_DISP_EnableInputPort 0 0
        MI_DISP_SetInputPortAttr 0 1 {window 360,0 360x240 source 0x0}
        MI_DISP_EnableInputPort 0 1
        MI_DISP_SetInputPortAttr 0 2 {window 0,240 360x240 source 0x0}
        MI_DISP_EnableInputPort 0 2
        MI_DISP_SetInputPortAttr 0 3 {window 360,240 360x240 source 0x0}
        MI_DISP_EnableInputPort 0 3
    )"));
    EXPECT_PRINTED_IN_ORDER(R"(
        DISENABLE
        DHD0 the vo dev is 0 
        the vo dev is 0 ,vo layer is 0!!!!!!!!!!!!!!
        the vo sync is 6   u32Width:720  32Height:480  u32Frm:60 !
        ENABLE
    )");
}

TEST(VoStart, LaterOnlyLaysThePortsOutAgain)
{
    enNorm_vga = 7;
    ASSERT_EQ(vo_start(0, 0, 30, 11, 1), 0u);
    platform.forget();
    EXPECT_EQ(vo_start(0, 0, 30, 11, 1), 0u);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_DisableInputPort 0 0
        MI_DISP_SetInputPortAttr 0 0 {window 0,0 720x576 source 0x0}
        MI_DISP_EnableInputPort 0 0
    )"));
}

TEST(VoStart, DrivesHdmiOnlyForTheWidestGui)
{
    enNorm_vga = 8;
    DdvrInputParam.gui_width = 2560;
    EXPECT_EQ(vo_start(0, 0, 30, 11, 1), 0u);
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr 0 {background 0x0 interface 5 timing 8 rate 0}"), 1u);
    EXPECT_EQ(platform.count("MI_DISP_SetVideoLayerAttr 0 {window 0,0 1280x720 size 1280x720 format 11}"),
              1u);
}

TEST(VoStart, DrivesVgaTooForEveryOtherGui)
{
    for (int32_t width : {2559, 2561, 3840, INT32_MAX, 0, -2560}) {
        recording::Outcome outcome = recording::in_fresh_process([width]() -> int64_t {
            enNorm_vga = 8;
            DdvrInputParam.gui_width = width;
            if (vo_start(0, 0, 30, 11, 1) != 0) return -1;
            return platform.count("MI_DISP_SetPubAttr 0 {background 0x0 interface 7 timing 8 rate 0}");
        });
        EXPECT_EQ(outcome.result, 1) << width << " pixels; " << outcome.death;
    }
}

TEST(VoStart, FailsForATimingCodeThatIsNoOutputValue)
{
    enNorm_vga = 4;
    EXPECT_EQ(vo_start(0, 0, 30, 11, 2), kFailed);
    EXPECT_PRINTED_IN_ORDER(R"(
        vo enIntfSync not support!
        the vo sync is 4   u32Width:0  32Height:0  u32Frm:0 !
        vo_start_devlayer failed!
    )");
    EXPECT_EQ(platform.count("MI_DISP_Enable"), 1u) << "what was enabled stays enabled";
    EXPECT_EQ(platform.count("MI_DISP_SetVideoLayerAttr"), 0u);
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr"), 0u);
}

TEST(VoStart, IsNotStartedByAFailure)
{
    enNorm_vga = 4;
    ASSERT_EQ(vo_start(0, 0, 30, 11, 2), kFailed);
    platform.forget();
    enNorm_vga = 8;
    EXPECT_EQ(vo_start(0, 0, 30, 11, 2), 0u);
    EXPECT_EQ(platform.count("MI_DISP_Enable"), 1u);
}

TEST(VoStart, GoesOnWhenAPortWillNotStop)
{
    enNorm_vga = 6;
    platform.script("MI_DISP_DisableInputPort").returns(0xA00F0002);
    EXPECT_EQ(vo_start(0, 0, 30, 11, 1), 0u);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "vo_stop_chn failed!");
    EXPECT_EQ(vo_start(0, 0, 30, 11, 1), 0u);
    EXPECT_EQ(recording::times_printed("vo_stop_chn failed!"), 2u);
}

TEST(VoStart, FailsWithItsPorts)
{
    enNorm_vga = 6;
    platform.script("MI_DISP_EnableInputPort").once().returns(0xA00F0002);
    EXPECT_EQ(vo_start(0, 0, 30, 11, 1), kFailed);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "vo_start_chn failed!");
    ASSERT_EQ(vo_start(0, 0, 30, 11, 1), 0u);
    platform.script("MI_DISP_EnableInputPort").once().returns(0xA00F0002);
    EXPECT_EQ(vo_start(0, 0, 30, 11, 1), kFailed);
    EXPECT_EQ(recording::times_printed("vo_start_chn failed!"), 2u);
}

TEST(VoStart, TakesThePortsOfDeviceZeroWhateverTheDevice)
{
    EXPECT_EQ(vo_start(2, 0, 30, 11, 1), 0u);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_DisableInputPort 0 0
        MI_DISP_DisableVideoLayer 3
        MI_DISP_Disable 2
        MI_DISP_SetPubAttr 2 {background 0x0 interface 0 timing 0 rate 0}
        MI_DISP_Enable 2
        MI_DISP_SetVideoLayerAttr 3 {window 0,0 720x576 size 720x576 format 11}
        MI_DISP_EnableVideoLayer 3
        MI_DISP_SetInputPortAttr 0 0 {window 0,0 720x576 source 0x0}
        MI_DISP_EnableInputPort 0 0
    )"));
    EXPECT_PRINTED_WITHOUT_PREFIX("DSD0 the vo dev is 2 ");
    EXPECT_PRINTED_WITHOUT_PREFIX("the vo dev is 2 ,vo layer is 3!!!!!!!!!!!!!!");
}

TEST(VoStart, RemembersTheSecondaryDeviceInASlotOfItsOwn)
{
    EXPECT_EQ(vo_start(-1, 0, 30, 11, 1), 0u);
    platform.forget();
    EXPECT_EQ(vo_start(-1, 0, 30, 11, 1), 0u);
    EXPECT_EQ(platform.count("MI_DISP_Enable"), 0u);
    EXPECT_EQ(vo_start(0, 0, 30, 11, 1), kFailed) << "device 0 is not started, and code 4 is no output value";
    EXPECT_EQ(platform.count("MI_DISP_Enable 0"), 1u);
}

TEST(VoStart, NeverCountsADeviceWithoutASlotAsStarted)
{
    for (int32_t device : {16, 17, 1000, INT32_MAX, -2, INT32_MIN}) {
        SCOPED_TRACE(device);
        platform.forget();
        EXPECT_EQ(vo_start(device, 0, 30, 11, 1), 0u);
        EXPECT_EQ(vo_start(device, 0, 30, 11, 1), 0u);
        EXPECT_EQ(platform.count("MI_DISP_Enable " + std::to_string(device)), 2u);
    }
}

TEST(VoStart, NeedsBetweenOneAndSixteenPorts)
{
    enNorm_vga = 6;
    for (int32_t ports : {0, -1, 17, INT32_MIN}) {
        SCOPED_TRACE(ports);
        EXPECT_EQ(vo_start(0, 0, 30, 11, ports), kFailed);
    }
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr"), 0u);
    EXPECT_EQ(recording::times_printed("failed with 0!"), 4u);
}

MI_DISP_PubAttr attr_with_timing(uint32_t timing)
{
    MI_DISP_PubAttr attr = {};
    attr.timing = timing;
    return attr;
}

TEST(VoEnable, RefusesAFrameRateOfZero)
{
    MI_DISP_PubAttr attr = attr_with_timing(16);
    EXPECT_EQ(vo_enable(0, &attr, 0, 11), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "vo u32SrcFrmRate invaild! 0!");
    EXPECT_EQ(platform.calls(), "");
}

TEST(VoEnable, RefusesMissingAttributes)
{
    EXPECT_EQ(vo_enable(0, nullptr, 30, 11), -1);
    EXPECT_EQ(platform.count("MI_DISP_Enable"), 0u);
}

TEST(VoEnable, UsesLayerZeroForOtherDevices)
{
    MI_DISP_PubAttr attr = attr_with_timing(16);
    EXPECT_EQ(vo_enable(1, &attr, 30, 12), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_DisableVideoLayer 0
        MI_DISP_Disable 1
        MI_DISP_SetPubAttr 1 {background 0x0 interface 0 timing 16 rate 0}
        MI_DISP_Enable 1
        MI_DISP_SetVideoLayerAttr 0 {window 0,0 1920x1080 size 1920x1080 format 12}
        MI_DISP_EnableVideoLayer 0
    )"));
    EXPECT_NOT_PRINTED("DHD0 the vo dev is 1 ");
    EXPECT_PRINTED_WITHOUT_PREFIX("the vo dev is 1 ,vo layer is 0!!!!!!!!!!!!!!");
    EXPECT_PRINTED_WITHOUT_PREFIX("the vo sync is 16   u32Width:1920  32Height:1080  u32Frm:60 !");
}

TEST(VoEnable, StopsAtTheFirstFailure)
{
    constexpr const char *kCalls[] = {"MI_DISP_DisableVideoLayer", "MI_DISP_Disable",
                                      "MI_DISP_SetPubAttr",        "MI_DISP_Enable",
                                      "MI_DISP_SetVideoLayerAttr", "MI_DISP_EnableVideoLayer"};
    MI_DISP_PubAttr attr = attr_with_timing(8);
    for (const char *call : kCalls) {
        SCOPED_TRACE(call);
        platform.reset();
        recording::forget_printed();
        platform.script(call).returns(0xA00F0001);
        EXPECT_EQ(vo_enable(0, &attr, 30, 11), -1);
        std::string since = platform.calls_since(call);
        EXPECT_EQ(since.find('\n'), std::string::npos) << since;
        if (std::string(call) == "MI_DISP_SetVideoLayerAttr") {
            EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "failed with 0xa00f0001 50,1280,720,0 !");
        } else if (std::string(call) != "MI_DISP_EnableVideoLayer") {
            EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "failed with 0xa00f0001!");
        }
    }
}

TEST(VoDisable, TakesTheLayerOffBeforeTheDevice)
{
    EXPECT_EQ(vo_disable(2, 3), 0);
    EXPECT_EQ(platform.calls(), "MI_DISP_DisableVideoLayer 3\nMI_DISP_Disable 2");
}

TEST(VoDisable, StopsAtTheFirstFailure)
{
    platform.script("MI_DISP_DisableVideoLayer").once().returns(0xA00F0002);
    EXPECT_EQ(vo_disable(0, 0), -1);
    EXPECT_EQ(platform.calls(), "MI_DISP_DisableVideoLayer 0");
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "failed with 0xa00f0002!");
    platform.script("MI_DISP_Disable").once().returns(0xA00F0009);
    EXPECT_EQ(vo_disable(0, 0), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "failed with 0xa00f0009!");
}

} // namespace
