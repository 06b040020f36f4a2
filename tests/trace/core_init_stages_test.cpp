/* Start-up stage by stage: a failing stage says so, ends start-up, and rolls nothing back. */
#include "start/lifecycle.h"

#include "core_start.h"

using namespace core_test;
using recording::platform;

namespace
{

int32_t init_two_cameras()
{
    DeviceParams params = device_params(2);
    return ext_device_init(&params);
}

TEST(InitStage, SystemFailureEndsStartUp)
{
    platform.script("MI_SYS_Init").returns(-7);
    EXPECT_EQ(init_two_cameras(), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "system init failed with 1!");
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "system init failed with -1!");
    EXPECT_EQ(platform.calls({"MI_"}), "MI_SYS_Init\nMI_SYS_Init");
    EXPECT_NOT_PRINTED("init done!");
}

TEST(InitStage, HdmiFailureDoesNotEndStartUp)
{
    platform.script("MI_HDMI_Init").returns(0xA00A0004);
    platform.script("MI_HDMI_Open").returns(0xA00A0004);
    EXPECT_EQ(init_two_cameras(), 0);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "MI_HDMI_Init fail =a00a0004");
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "MI_HDMI_Open fail =a00a0004");
    EXPECT_PRINTED_WITHOUT_PREFIX("HDMI start success.");
}

TEST(InitStage, DecoderFailureEndsStartUpUnderTheNameOfTheStart)
{
    platform.script("MI_VDEC_CreateChn").nth(2).returns(0xA0080003);
    EXPECT_EQ(init_two_cameras(), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "vdec_start failed with -1!");
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr"), 0u);
    EXPECT_EQ(platform.count("MI_VDEC_StopChn"), 0u) << "nothing is rolled back";
}

TEST(InitStage, DisplayFailureEndsStartUp)
{
    platform.script("MI_DISP_Enable").returns(0xA00F0001);
    EXPECT_EQ(init_two_cameras(), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "disp_create failed with 1!");
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "system init failed with -1!");
    EXPECT_EQ(platform.calls({"MI_AO_"}), "");
    EXPECT_NOT_PRINTED("vdec bind");
}

TEST(InitStage, UnsupportedTimingEndsStartUp)
{
    enNorm_vga = 12;
    DeviceParams params = device_params(1);
    params.vo_dev_type = 3; // leaves the timing code as it is
    EXPECT_EQ(ext_device_init(&params), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "Unsupported timing!");
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "disp_create failed with -1!");
}

TEST(InitStage, FramebufferFailureEndsStartUp)
{
    constexpr unsigned long kGetFixedInfo = 0x4602;
    platform.node("/dev/fb0").ioctl(kGetFixedInfo).returns(-1);
    DeviceParams params = device_params(2);
    EXPECT_EQ(ext_device_init(&params), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "fb_init err -1!");
    EXPECT_EQ(platform.calls({"MI_AO_"}), "");
}

TEST(InitStage, AudioFailureEndsStartUp)
{
    platform.script("MI_AO_Enable").returns(0xA0050003);
    EXPECT_EQ(init_two_cameras(), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "audio init err -#!");
    EXPECT_EQ(platform.count("board_run_command"), 0u);
}

TEST(InitStage, GpioFailureEndsStartUp)
{
    platform.node("/dev/ms_gpio").fails_to_open();
    EXPECT_EQ(init_two_cameras(), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "local_gpio_init err -1!");
    EXPECT_EQ(platform.count("board_open /dev/watchdog"), 0u);
    EXPECT_NOT_PRINTED("init done!");
}

TEST(InitStage, WatchdogFailureIsOnlyReported)
{
    platform.node("/dev/watchdog").fails_to_open();
    EXPECT_EQ(init_two_cameras(), 0);
    EXPECT_PRINTED_IN_ORDER("wacthdog init error!!!\ninit done!");
    EXPECT_NOT_PRINTED("wacthdog init success!!!");
}

TEST(InitStage, SdkInitReadsTheBlockThatItIsGiven)
{
    DeviceParams params = device_params(3);
    DdvrInputParam = device_params(7);
    ASSERT_EQ(nvrhal::sdk_init(&params), 0);
    EXPECT_EQ(g_vi_chn_num, 3);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 4u);
}

} // namespace
