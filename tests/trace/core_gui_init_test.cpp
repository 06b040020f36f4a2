/* The display path for the GUI, and the probe for boot-logo layers. */
#include "start/lifecycle.h"

#include "core_start.h"
#include "gui_screen.h"

using namespace core_test;
using recording::platform;
using recording::trace;

namespace
{

TEST(GuiInit, RestartsDisplayAndHdmi)
{
    ASSERT_EQ(start_library(2, 1280, 1024), 0); // timing code 7, read as 720x576
    ASSERT_EQ(ext_gui_init(), 0);
    EXPECT_EQ(media_calls(), trace(R"(
        MI_DISP_DisableInputPort 0 0
        MI_DISP_DisableInputPort 0 1
        MI_DISP_DisableVideoLayer 0
        MI_DISP_Disable 0
        MI_DISP_SetPubAttr 0 {background 0x0 interface 7 timing 7 rate 0}
        MI_DISP_Enable 0
        MI_DISP_SetVideoLayerAttr 0 {window 0,0 720x576 size 720x576 format 11}
        MI_DISP_EnableVideoLayer 0
        MI_DISP_SetInputPortAttr 0 0 {window 0,0 360x288 source 0x0}
        MI_DISP_EnableInputPort 0 0
        MI_DISP_SetInputPortAttr 0 1 {window 360,0 360x288 source 0x0}
        MI_DISP_EnableInputPort 0 1
        MI_HDMI_Init {callback set user null}
        MI_HDMI_Open 0
    )"));
}

TEST(GuiInit, FailsAtFullHdBecauseTheTimingCodeIsNoOutputValue)
{
    ASSERT_EQ(start_library(2), 0); // timing code 4
    EXPECT_EQ(ext_gui_init(), -1);
    EXPECT_PRINTED_IN_ORDER(R"(
        vo enIntfSync not support!
        vo_start_devlayer failed!
        vo_start failed with ffffffff!
        gui init failed with -1!
    )");
    for (const char *text : {"vo enIntfSync not support!", "vo_start_devlayer failed!",
                             "vo_start failed with ffffffff!", "gui init failed with -1!"})
        EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", text);
    EXPECT_EQ(platform.calls({"MI_HDMI_"}), "");
}

TEST(GuiInit, GoesOnWhenHdmiIsThereAlready)
{
    ASSERT_EQ(start_library(1, 1440, 900), 0);
    platform.script("MI_HDMI_Init").returns(0xA00A0004);
    platform.script("MI_HDMI_Open").returns(0xA00A0004);
    EXPECT_EQ(ext_gui_init(), 0);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "MI_HDMI_Init fail =a00a0004");
}

TEST(GuiInit, FailsWithTheFramebuffer)
{
    ASSERT_EQ(start_library(1, 1440, 900), 0);
    platform.reset();
    platform.node("/dev/fb0").ioctl(0x4602).returns(-1);
    EXPECT_EQ(ext_gui_init(), -1);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "fb_init err -1!");
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "gui init failed with -1!");
}

TEST(GuiInit, UsesTheKeptBlockForTheInterface)
{
    ASSERT_EQ(start_library(1, 1440, 900), 0);
    DdvrInputParam.gui_width = 2560;
    EXPECT_EQ(nvrhal::vo_start_init(), 0);
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr 0 {background 0x0 interface 5 timing 6 rate 0}"), 1u);
}

/* Start-up takes the framebuffer's size from the block it is given, the GUI start from the kept one. */
TEST(GuiInit, SizesTheFramebufferAsTheGui)
{
    gui_test::plug_framebuffer();
    DeviceParams params = device_params(1, 1440, 900);
    DdvrInputParam = device_params(1, 800, 600);
    ASSERT_EQ(nvrhal::sdk_init(&params), 0);
    EXPECT_EQ(platform.count("board_ioctl /dev/fb0 0x40344669 {0 0 1440 900 1440 900 0 0 0 0 0 0 15}"), 1u);
    platform.forget();
    enNorm_vga = 6;
    ASSERT_EQ(nvrhal::vo_start_init(), 0);
    EXPECT_EQ(platform.count("board_ioctl /dev/fb0 0x40344669 {0 0 800 600 800 600 0 0 0 0 0 0 15}"), 1u);
}

TEST(GuiInit, ProbesTheLogoLayersAtItsEnd)
{
    ASSERT_EQ(start_library(1, 1440, 900), 0);
    EXPECT_EQ(ext_gui_init(), 0);
    EXPECT_EQ(platform.count("board_open /dev/fb1 rdwr"), 1u);
    EXPECT_EQ(platform.count("board_open /dev/fb3 rdwr"), 1u);
}

TEST(CloseLogo, OpensAndClosesEachFramebuffer)
{
    platform.node("/dev/fb1").fails_to_open();
    platform.node("/dev/fb2").opens_as(0); // a descriptor of 0 counts as none
    EXPECT_EQ(nvrhal::close_logo(), 0u);
    EXPECT_EQ(platform.calls(), trace(R"(
        board_open /dev/fb0 rdwr
        board_close /dev/fb0
        board_open /dev/fb1 rdwr
        board_open /dev/fb2 rdwr
        board_open /dev/fb3 rdwr
        board_close /dev/fb3
    )"));
    EXPECT_PRINTED_WITHOUT_PREFIX("###dev_fb _Open /dev/fb0 suecess");
    EXPECT_NOT_PRINTED("###dev_fb _Open /dev/fb1 suecess");
    EXPECT_NOT_PRINTED("###dev_fb _Open /dev/fb2 suecess");
    EXPECT_PRINTED_WITHOUT_PREFIX("###dev_fb _Open /dev/fb3 suecess");
}

} // namespace
