/* ext_device_quit: the display ports let go of their decoders, nothing else stops. */
#include "core_start.h"

using namespace core_test;
using recording::platform;
using recording::trace;

namespace
{

TEST(DeviceQuit, DetachesAndClearsEveryPort)
{
    g_vi_chn_num = 3;
    EXPECT_EQ(ext_device_quit(), 0u);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_SYS_UnBindChnPort {vdec,0,0,0} {disp,0,0,0}
        MI_DISP_ClearInputPortBuffer 0 0 1
        MI_SYS_UnBindChnPort {vdec,0,1,0} {disp,0,1,0}
        MI_DISP_ClearInputPortBuffer 0 1 1
        MI_SYS_UnBindChnPort {vdec,0,2,0} {disp,0,2,0}
        MI_DISP_ClearInputPortBuffer 0 2 1
    )"));
}

TEST(DeviceQuit, NamesAFailingClearAfterAnotherCallAndGoesOn)
{
    g_vi_chn_num = 3;
    platform.script("MI_DISP_ClearInputPortBuffer").nth(2).returns(-17);
    EXPECT_EQ(ext_device_quit(), 0u);
    EXPECT_EQ(platform.count("MI_DISP_ClearInputPortBuffer"), 3u);
    EXPECT_EQ(recording::times_printed("File:sdk3531Lib.c,Line:#    MI_VDEC_ReleaseUserData exe error [-17]"),
              1u);
}

TEST(DeviceQuit, TakesAPositiveResultForSuccess)
{
    g_vi_chn_num = 1;
    platform.script("MI_DISP_ClearInputPortBuffer").returns(5);
    EXPECT_EQ(ext_device_quit(), 0u);
    EXPECT_NOT_PRINTED("File:@,Line:#    MI_VDEC_ReleaseUserData exe error [5]");
}

TEST(DeviceQuit, GoesOnWhenAPortWasNotBound)
{
    g_vi_chn_num = 2;
    platform.script("MI_SYS_UnBindChnPort").returns(0xA0010005);
    EXPECT_EQ(ext_device_quit(), 0u);
    EXPECT_EQ(platform.count("MI_DISP_ClearInputPortBuffer"), 2u);
    EXPECT_EQ(recording::times_printed("failed with 0xa0010005!"), 2u);
}

TEST(DeviceQuit, WithoutCamerasDoesNothing)
{
    for (int32_t cameras : {0, -3}) {
        g_vi_chn_num = cameras;
        EXPECT_EQ(ext_device_quit(), 0u);
    }
    EXPECT_EQ(platform.calls(), "");
}

} // namespace
