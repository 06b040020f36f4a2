/* ext_change_display_format: panes applied to the main display, call by call. */
#include <cerrno>
#include <cstring>

#include "view_frame.h"

using namespace view_test;
using recording::platform;
using recording::trace;

namespace
{

bool holds(const PaneRect &rect, uint32_t x, uint32_t y, uint32_t w, uint32_t h)
{
    return rect.x == x && rect.y == y && rect.w == w && rect.h == h;
}

TEST(Layout, TakesEveryChannelOffFlushesThePanesAndShowsThem)
{
    create_decoders(2);
    MI_VDEC_OutputPortAttr half = {960, 540};
    MI_VDEC_SetOutputPortAttr(1, &half);
    platform.forget();
    DispAttrib panes[] = {pane(1, 0, 0, 960, 540), pane(0, 960, 0, 960, 540)};
    EXPECT_EQ(ext_change_display_format(panes, 2), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_SYS_UnBindChnPort {vdec,0,0,0} {disp,0,0,0}
        MI_DISP_ClearInputPortBuffer 0 0 1
        MI_DISP_DisableInputPort 0 0
        MI_SYS_UnBindChnPort {vdec,0,1,0} {disp,0,1,0}
        MI_DISP_ClearInputPortBuffer 0 1 1
        MI_DISP_DisableInputPort 0 1

        MI_VDEC_GetOutputPortAttr 0
        MI_VDEC_StopChn 0
        MI_SYS_UnBindChnPort {vdec,0,0,0} {disp,0,0,0}
        MI_VDEC_GetChnAttr 0
        MI_VDEC_DestroyChn 0
        MI_VDEC_CreateChn 0 {h265 buffer 1048576 priority 0 max 1920x1080 mode 1 references 2 buffers 2}
        MI_VDEC_SetOutputPortAttr 0 {0x0}
        MI_SYS_BindChnPort {vdec,0,0,0} {disp,0,0,0} 15 15
        MI_VDEC_StartChn 0
        MI_SYS_UnBindChnPort {vdec,0,0,0} {disp,0,0,0}
        MI_VDEC_GetOutputPortAttr 0
        MI_VDEC_GetChnAttr 0
        MI_VDEC_SetOutputPortAttr 0 {960x540}
        board_sleep_us 100000

        MI_VDEC_GetOutputPortAttr 1
        MI_VDEC_StopChn 1
        MI_SYS_UnBindChnPort {vdec,0,1,0} {disp,0,1,0}
        MI_VDEC_GetChnAttr 1
        MI_VDEC_DestroyChn 1
        MI_VDEC_CreateChn 1 {h265 buffer 1048576 priority 0 max 1920x1080 mode 1 references 2 buffers 2}
        MI_VDEC_SetOutputPortAttr 1 {960x540}
        MI_SYS_BindChnPort {vdec,0,1,0} {disp,0,1,0} 15 15
        MI_VDEC_StartChn 1
        MI_SYS_UnBindChnPort {vdec,0,1,0} {disp,0,1,0}
        MI_VDEC_GetOutputPortAttr 1
        MI_VDEC_GetChnAttr 1
        MI_VDEC_SetOutputPortAttr 1 {960x540}
        board_sleep_us 100000

        MI_DISP_GetInputPortAttr 0 0
        MI_DISP_SetInputPortAttr 0 0 {window 960,0 960x540 source 960x540}
        MI_DISP_EnableInputPort 0 0
        MI_SYS_BindChnPort {vdec,0,0,0} {disp,0,0,0} 15 15
        MI_DISP_GetInputPortAttr 0 1
        MI_DISP_SetInputPortAttr 0 1 {window 0,0 960x540 source 960x540}
        MI_DISP_EnableInputPort 0 1
        MI_SYS_BindChnPort {vdec,0,1,0} {disp,0,1,0} 15 15
    )"));
    EXPECT_EQ(platform.time_us(), 200000);
    EXPECT_PRINTED_IN_ORDER(R"(
        ChnnNum=2
        DevBind.bind_status[i]=1
        cur_display_chnn=0x3
        SHOW TYPE1
        DISENABLE 0
        VoChnAttr.u16Width=960, VoChnAttr.u16Hidth=540
        DISENABLE 1
    )");
    EXPECT_PRINTED_WITHOUT_PREFIX(" VoChnAttr.u16Width=960, VoChnAttr.u16Hidth=540");
}

TEST(Layout, AppliesFourPanesAsTheGoldenTraceSays)
{
    create_decoders(8);
    DispAttrib panes[] = {pane(0, 0, 0, 960, 540), pane(1, 960, 0, 960, 540), pane(2, 0, 540, 960, 540),
                          pane(3, 960, 540, 960, 540)};
    EXPECT_EQ(ext_change_display_format(panes, 4), 0);
    EXPECT_GOLDEN("layout_4_of_8", platform.calls());
    EXPECT_EQ(cur_display_chnn, 0x0F);
}

TEST(Layout, RoundsEveryPaneDownToEven)
{
    create_decoders(2);
    DispAttrib panes[] = {pane(0, 641, 361, 959, 539), pane(1, 1, 3, 5, 7)};
    EXPECT_EQ(ext_change_display_format(panes, 2), 0);
    EXPECT_TRUE(holds(set_bind_para[1][0], 640, 360, 958, 538));
    EXPECT_TRUE(holds(set_bind_para[1][1], 0, 2, 4, 6));
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr 0 0 {window 640,360 958x538 source 958x538}"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 0 {958x538}"), 1u);
}

TEST(Layout, ScalesPicturesDownToThePaneButNeverUp)
{
    create_decoders(2, 704, 576);
    DispAttrib panes[] = {pane(0, 0, 0, 960, 540), pane(1, 960, 0, 600, 900)};
    EXPECT_EQ(ext_change_display_format(panes, 2), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 0 {704x540}"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 1 {600x576}"), 1u);
    // The window and the source it speaks of remain the pane's.
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr 0 0 {window 0,0 960x540 source 960x540}"), 1u);
}

TEST(Layout, SinglePaneShowsThePictureAtItsOwnSize)
{
    create_decoders(3, 704, 576);
    DispAttrib single = pane(2, 101, 51, 1920, 1080);
    EXPECT_EQ(ext_change_display_format(&single, 1), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 2 {704x576}"), 1u);
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr 0 2 {window 100,50 704x576 source 704x576}"), 1u);
    EXPECT_TRUE(holds(set_bind_para[1][2], 100, 50, 704, 576));
    EXPECT_EQ(zoom_channel, 2u);
    EXPECT_EQ(cur_display_chnn, 0x04);
    EXPECT_PRINTED_WITHOUT_PREFIX("File:vdec_venc.c, zoom_channel:2");
}

TEST(Layout, SeveralPanesLeaveTheZoomChannelAlone)
{
    create_decoders(2);
    zoom_channel = 77;
    DispAttrib panes[] = {pane(0, 0, 0, 960, 540), pane(1, 960, 0, 960, 540)};
    EXPECT_EQ(ext_change_display_format(panes, 2), 0);
    EXPECT_EQ(zoom_channel, 77u);
    EXPECT_NOT_PRINTED("File:@, zoom_channel:#");
}

TEST(Layout, SavesTheRecordInTheSlotOfTheDevice)
{
    create_decoders(4);
    DispAttrib panes[] = {pane(3, 0, 0, 960, 540, 2), pane(1, 960, 0, 960, 540, 5)};
    EXPECT_EQ(ext_change_display_format(panes, 2), 0);
    BindArgs expected = {};
    expected.chn[1] = 1;
    expected.chn[3] = 3;
    expected.chn_num = 4;
    expected.bind_status[1] = 5;
    expected.bind_status[3] = 2;
    EXPECT_EQ(std::memcmp(&old_global_bindarg[0], &expected, sizeof expected), 0);
    static const BindArgs zero = {};
    EXPECT_EQ(std::memcmp(&global_bindarg, &zero, sizeof zero), 0);
    EXPECT_EQ(pthread_mutex_trylock(&global_bindargLock), 0) << "the lock is free again";
    pthread_mutex_unlock(&global_bindargLock);
}

/* Decoders are rebuilt without the lock, ports are changed under it. */
TEST(Layout, ShowsThePanesUnderTheLock)
{
    create_decoders(2);
    unsigned held = 0, open = 0;
    const auto look = [&](recording::Args &) {
        if (pthread_mutex_trylock(&global_bindargLock) == EBUSY) {
            ++held;
        } else {
            ++open;
            pthread_mutex_unlock(&global_bindargLock);
        }
    };
    platform.script("MI_VDEC_CreateChn").fills(look);
    platform.script("board_sleep_us").fills(look);
    DispAttrib panes[] = {pane(0, 0, 0, 960, 540), pane(1, 960, 0, 960, 540)};
    ASSERT_EQ(ext_change_display_format(panes, 2), 0);
    EXPECT_EQ(open, 4u);
    EXPECT_EQ(held, 0u);
    for (const char *call : {"MI_DISP_GetInputPortAttr", "MI_DISP_EnableInputPort"})
        platform.script(call).fills(look);
    ASSERT_EQ(ext_change_display_format(panes, 2), 0);
    EXPECT_EQ(held, 4u);
    EXPECT_EQ(open, 8u);
}

TEST(Layout, RecordsAHiddenPaneWithoutShowingIt)
{
    for (uint16_t status : {0, 3, 65535}) {
        SCOPED_TRACE(status);
        platform.reset();
        create_decoders(2);
        DispAttrib panes[] = {pane(0, 0, 0, 960, 540, status), pane(1, 960, 0, 960, 540, 2)};
        EXPECT_EQ(ext_change_display_format(panes, 2), 0);
        EXPECT_EQ(platform.count("MI_VDEC_CreateChn 0"), 1u) << "its decoder is flushed all the same";
        EXPECT_EQ(platform.count("MI_DISP_EnableInputPort 0 0"), 0u);
        EXPECT_EQ(platform.count("MI_DISP_EnableInputPort 0 1"), 1u);
        EXPECT_PRINTED_WITHOUT_PREFIX("SHOW TYPE2");
        EXPECT_EQ(cur_display_chnn, 0x03);
        EXPECT_EQ(old_global_bindarg[0].bind_status[0], status);
    }
}

TEST(Layout, LetsTheLaterOfTwoPanesOfOneChannelWin)
{
    create_decoders(3);
    DispAttrib panes[] = {pane(1, 0, 0, 400, 300, 3), pane(1, 480, 270, 600, 500, 1),
                          pane(0, 0, 0, 100, 100)};
    EXPECT_EQ(ext_change_display_format(panes, 3), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn 1"), 2u) << "each is applied";
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 1 {400x300}"), 2u)
        << "set, then restored by the flush";
    EXPECT_TRUE(holds(set_bind_para[1][1], 480, 270, 600, 500));
    EXPECT_EQ(old_global_bindarg[0].bind_status[1], 1u);
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr 0 1"), 1u);
    EXPECT_EQ(platform.time_us(), 300000);
}

TEST(Layout, LeavesThePanesOfUnknownChannelsDark)
{
    create_decoders(4);
    DispAttrib panes[] = {pane(4, 0, 0, 960, 540), pane(65535, 960, 0, 960, 540), pane(2, 0, 540, 960, 540)};
    EXPECT_EQ(ext_change_display_format(panes, 3), 0);
    EXPECT_EQ(cur_display_chnn, 0x04);
    EXPECT_EQ(platform.count("MI_DISP_EnableInputPort"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 1u);
}

TEST(Layout, KnowsNoBitForChannelsBeyondTheMask)
{
    create_decoders(16);
    DispAttrib panes[] = {pane(8, 0, 0, 960, 540), pane(15, 960, 0, 960, 540)};
    EXPECT_EQ(ext_change_display_format(panes, 2), 0);
    EXPECT_EQ(cur_display_chnn, 0);
    EXPECT_EQ(platform.count("MI_DISP_EnableInputPort 0 15"), 1u);
    EXPECT_EQ(old_global_bindarg[0].chn[15], 15u);
}

/* On further devices only the pane loop is left out. */
TEST(Layout, GoesDarkOnFurtherDevices)
{
    for (int32_t device : {1, 2}) {
        SCOPED_TRACE(device);
        platform.reset();
        create_decoders(2);
        globalVoDev = device;
        std::memset(&old_global_bindarg[device], 0x55, sizeof(BindArgs));
        DispAttrib panes[] = {pane(0, 0, 0, 960, 540), pane(1, 960, 0, 960, 540)};
        EXPECT_EQ(ext_change_display_format(panes, 2), 0);
        std::string d = std::to_string(device);
        EXPECT_EQ(platform.calls(), trace("MI_SYS_UnBindChnPort {vdec,0,0,0} {disp,0,0,0}\n"
                                          "MI_DISP_ClearInputPortBuffer " +
                                          d +
                                          " 0 1\n"
                                          "MI_DISP_DisableInputPort " +
                                          d +
                                          " 0\n"
                                          "MI_SYS_UnBindChnPort {vdec,0,1,0} {disp,0,1,0}\n"
                                          "MI_DISP_ClearInputPortBuffer " +
                                          d +
                                          " 1 1\n"
                                          "MI_DISP_DisableInputPort " +
                                          d + " 1"));
        EXPECT_EQ(cur_display_chnn, 0);
        BindArgs expected = {};
        expected.vo_dev = static_cast<uint32_t>(device);
        expected.chn_num = 2;
        EXPECT_EQ(std::memcmp(&old_global_bindarg[device], &expected, sizeof expected), 0);
    }
}

TEST(Layout, SurvivesADeviceWithoutASlot)
{
    create_decoders(1);
    for (int32_t device : {3, 16, INT32_MAX, -2, INT32_MIN}) {
        SCOPED_TRACE(device);
        globalVoDev = device;
        DispAttrib single = pane(0, 0, 0, 960, 540);
        ext_change_display_format(&single, 1);
        ext_change_display_slave(&single, 1);
        EXPECT_EQ(pthread_mutex_trylock(&global_bindargLock), 0);
        pthread_mutex_unlock(&global_bindargLock);
    }
}

TEST(Layout, SurvivesMoreCamerasThanPorts)
{
    create_decoders(40, 352, 288);
    DispAttrib panes[40];
    for (uint16_t channel = 0; channel < 40; ++channel)
        panes[channel] = pane(channel, channel, channel, 64, 64);
    int32_t result = ext_change_display_format(panes, 40);
    EXPECT_TRUE(result == 0 || result == -1);
    EXPECT_GE(platform.count("MI_DISP_EnableInputPort"), 16u);
    globalVoDev = -1;
    result = ext_change_display_slave(panes, 40);
    EXPECT_TRUE(result == 0 || result == -1);
}

} // namespace
