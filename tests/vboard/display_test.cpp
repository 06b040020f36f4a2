/* display_test.cpp - display devices, layers and ports: settings, order and refusals. */
#include "display_board.h"

using namespace rig;

namespace
{

TEST_F(Display, RefusesDevicesLayersAndPortsItDoesNotHave)
{
    MI_DISP_PubAttr attr = {};
    attr.timing = kTiming1080p60;
    MI_DISP_InputPortAttr port_attr = {};
    MI_DISP_VideoLayerAttr layer_attr = {};
    for (const int32_t device : {-2, 3, 16, INT32_MAX, INT32_MIN}) {
        const int32_t bad = code(MI_MODULE_DISP, MI_REASON_BAD_DEVICE);
        EXPECT_EQ(MI_DISP_SetPubAttr(device, &attr), bad);
        EXPECT_EQ(MI_DISP_Enable(device), bad);
        EXPECT_EQ(MI_DISP_BindVideoLayer(0, device), bad);
        EXPECT_EQ(MI_DISP_GetInputPortAttr(device, 0, &port_attr), bad);
        EXPECT_EQ(MI_DISP_HideInputPort(device, 0), bad);
    }
    for (const int32_t device : {-1, 0, 1, 2}) {
        EXPECT_EQ(MI_DISP_SetPubAttr(device, &attr), MI_SUCCESS);
        EXPECT_EQ(MI_DISP_HideInputPort(device, 15), MI_SUCCESS);
        for (const uint32_t port : {16u, UINT32_MAX}) {
            const int32_t bad = code(MI_MODULE_DISP, MI_REASON_BAD_CHANNEL);
            EXPECT_EQ(MI_DISP_ClearInputPortBuffer(device, port, 1), bad);
            EXPECT_EQ(MI_DISP_SetInputPortAttr(device, port, &port_attr), bad);
        }
    }
    EXPECT_EQ(MI_DISP_EnableVideoLayer(4), code(MI_MODULE_DISP, MI_REASON_BAD_CHANNEL));
    EXPECT_EQ(MI_DISP_GetVideoLayerAttr(4, &layer_attr), code(MI_MODULE_DISP, MI_REASON_BAD_CHANNEL));
}

TEST_F(Display, RefusesNullRecords)
{
    const int32_t null = code(MI_MODULE_DISP, MI_REASON_NULL_POINTER);
    EXPECT_EQ(MI_DISP_SetPubAttr(0, nullptr), null);
    EXPECT_EQ(MI_DISP_GetPubAttr(0, nullptr), null);
    EXPECT_EQ(MI_DISP_SetVideoLayerAttr(0, nullptr), null);
    EXPECT_EQ(MI_DISP_GetVideoLayerAttr(0, nullptr), null);
    EXPECT_EQ(MI_DISP_SetInputPortAttr(0, 0, nullptr), null);
    EXPECT_EQ(MI_DISP_GetInputPortAttr(0, 0, nullptr), null);
    EXPECT_EQ(MI_DISP_SetZoomInWindow(0, 0, nullptr), null);
}

TEST_F(Display, EnablingNeedsAttributesDisablingNeedsNothing)
{
    const int32_t not_ready = code(MI_MODULE_DISP, MI_REASON_NOT_READY);
    MI_DISP_PubAttr attr = {};
    EXPECT_EQ(MI_DISP_Enable(0), not_ready);
    EXPECT_EQ(MI_DISP_GetPubAttr(0, &attr), not_ready);
    EXPECT_EQ(MI_DISP_EnableVideoLayer(0), not_ready);
    EXPECT_EQ(MI_DISP_DisableVideoLayer(0), MI_SUCCESS);
    EXPECT_EQ(MI_DISP_Disable(0), MI_SUCCESS);
    EXPECT_EQ(MI_DISP_DisableInputPort(0, 3), MI_SUCCESS);
}

TEST_F(Display, EveryOutputTimingHasItsSize)
{
    struct Case {
        uint32_t timing;
        int width, height;
    };
    const Case cases[] = {{0, 720, 576},    {1, 720, 480},    {6, 720, 480},    {7, 720, 576},
                          {8, 1280, 720},   {9, 1280, 720},   {10, 1920, 1080}, {11, 1920, 1080},
                          {12, 1920, 1080}, {13, 1920, 1080}, {14, 1920, 1080}, {15, 1920, 1080},
                          {16, 1920, 1080}, {18, 800, 600},   {19, 1024, 768},  {20, 1280, 1024},
                          {21, 1366, 768},  {22, 1440, 900},  {23, 1280, 800},  {24, 1680, 1050},
                          {26, 1600, 1200}, {27, 1920, 1200}, {28, 2560, 1440}, {30, 3840, 2160}};
    MI_DISP_PubAttr attr = {};
    for (const Case &one : cases) {
        attr.timing = one.timing;
        ASSERT_EQ(MI_DISP_SetPubAttr(1, &attr), MI_SUCCESS) << one.timing;
        const Picture wall = look(1);
        EXPECT_EQ(wall.width, one.width) << one.timing;
        EXPECT_EQ(wall.height, one.height) << one.timing;
    }
    for (const uint32_t timing : {2u, 5u, 17u, 25u, 29u, 31u, 0xffffffffu}) {
        attr.timing = timing;
        EXPECT_EQ(MI_DISP_SetPubAttr(1, &attr), code(MI_MODULE_DISP, MI_REASON_UNSUPPORTED)) << timing;
    }
}

TEST_F(Display, ARunningDeviceTakesANewRateButNoNewTiming)
{
    power_up();
    MI_DISP_PubAttr attr = {};
    ASSERT_EQ(MI_DISP_GetPubAttr(0, &attr), MI_SUCCESS);
    EXPECT_EQ(attr.timing, kTiming1080p60);
    attr.frame_rate = 50;
    EXPECT_EQ(MI_DISP_SetPubAttr(0, &attr), MI_SUCCESS);
    ASSERT_EQ(MI_DISP_GetPubAttr(0, &attr), MI_SUCCESS);
    EXPECT_EQ(attr.frame_rate, 50u);
    attr.timing = kTiming720p50;
    EXPECT_EQ(MI_DISP_SetPubAttr(0, &attr), code(MI_MODULE_DISP, MI_REASON_NOT_PERMITTED));
    ASSERT_EQ(MI_DISP_Disable(0), MI_SUCCESS);
    EXPECT_EQ(MI_DISP_SetPubAttr(0, &attr), MI_SUCCESS);
    attr.frame_rate = 241;
    EXPECT_EQ(MI_DISP_SetPubAttr(0, &attr), code(MI_MODULE_DISP, MI_REASON_BAD_VALUE));
}

TEST_F(Display, ALayerIsOnOneDeviceAtATime)
{
    EXPECT_EQ(MI_DISP_BindVideoLayer(0, 0), MI_SUCCESS);
    EXPECT_EQ(MI_DISP_BindVideoLayer(0, 0), code(MI_MODULE_DISP, MI_REASON_EXISTS));
    EXPECT_EQ(MI_DISP_BindVideoLayer(0, 1), code(MI_MODULE_DISP, MI_REASON_EXISTS));
    EXPECT_EQ(MI_DISP_UnBindVideoLayer(0, 1), code(MI_MODULE_DISP, MI_REASON_ABSENT));
    EXPECT_EQ(MI_DISP_UnBindVideoLayer(0, 0), MI_SUCCESS);
    EXPECT_EQ(MI_DISP_UnBindVideoLayer(0, 0), code(MI_MODULE_DISP, MI_REASON_ABSENT));
}

TEST_F(Display, RefusesLayersThatDoNotFit)
{
    power_up();
    MI_DISP_VideoLayerAttr attr = {};
    ASSERT_EQ(MI_DISP_GetVideoLayerAttr(0, &attr), MI_SUCCESS);
    MI_DISP_VideoLayerAttr wrong = attr;
    wrong.window.width = 1922;
    EXPECT_EQ(MI_DISP_SetVideoLayerAttr(0, &wrong), code(MI_MODULE_DISP, MI_REASON_BAD_VALUE));
    wrong = attr;
    wrong.height = 0;
    EXPECT_EQ(MI_DISP_SetVideoLayerAttr(0, &wrong), code(MI_MODULE_DISP, MI_REASON_BAD_VALUE));
    wrong = attr;
    wrong.pixel_format = 7;
    EXPECT_EQ(MI_DISP_SetVideoLayerAttr(0, &wrong), code(MI_MODULE_DISP, MI_REASON_UNSUPPORTED));
    attr.pixel_format = MI_PIXEL_YUV420_SEMIPLANAR;
    EXPECT_EQ(MI_DISP_SetVideoLayerAttr(0, &attr), MI_SUCCESS);
}

TEST_F(Display, AWindowOutsideTheLayerIsRefusedLoudly)
{
    power_up();
    MI_DISP_InputPortAttr attr = {};
    attr.window = {1000, 0, 960, 540};
    const uint64_t refusals = vboard_refusal_count();
    EXPECT_EQ(MI_DISP_SetInputPortAttr(0, 0, &attr), code(MI_MODULE_DISP, MI_REASON_BAD_VALUE));
    EXPECT_EQ(vboard_refusal_count(), refusals + 1);
    EXPECT_EQ(last_refusal(), "MI_DISP_SetInputPortAttr: window 1000,0 960 x 540 of port 0 leaves the 1920 x "
                              "1080 layer (bad value)");
    attr.window = {960, 540, 960, 540};
    EXPECT_EQ(MI_DISP_SetInputPortAttr(0, 0, &attr), MI_SUCCESS);
    attr.window = {65535, 0, 65535, 2};
    EXPECT_EQ(MI_DISP_SetInputPortAttr(0, 0, &attr), code(MI_MODULE_DISP, MI_REASON_BAD_VALUE));
    MI_DISP_InputPortAttr kept = {};
    ASSERT_EQ(MI_DISP_GetInputPortAttr(0, 0, &kept), MI_SUCCESS);
    EXPECT_EQ(kept.window.x, 960);
}

TEST_F(Display, AnEmptyWindowShowsNothing)
{
    power_up();
    const Stream stream = show("h264_640x360", 100, 100, 0, 0);
    send_and_settle(0, stream.frames[0]);
    EXPECT_TRUE(look().is_black());
    EXPECT_EQ(port_state(0).has_picture, 1u);
}

TEST_F(Display, OnlyFreeRunningPortsExist)
{
    EXPECT_EQ(MI_DISP_SetInputPortSyncMode(0, 0, E_MI_DISP_SYNC_MODE_FREE_RUN), MI_SUCCESS);
    EXPECT_EQ(MI_DISP_SetInputPortSyncMode(0, 0, 0), code(MI_MODULE_DISP, MI_REASON_UNSUPPORTED));
}

TEST_F(Display, SaysWhereAPortIsSeen)
{
    power_up();
    vboard_port_place place = {};
    ASSERT_EQ(vboard_port_get_place(0, 3, &place), 0);
    EXPECT_EQ(place.seen, 0u) << "a port that is not enabled";

    open_window(3, 101, 50, 641, 361);
    ASSERT_EQ(vboard_port_get_place(0, 3, &place), 0);
    EXPECT_EQ(place.seen, 1u);
    EXPECT_EQ(place.device, 0);
    EXPECT_EQ(place.x, 100u) << "even, as it is drawn";
    EXPECT_EQ(place.y, 50u);
    EXPECT_EQ(place.width, 642u) << "from 100 to 742";
    EXPECT_EQ(place.height, 360u);

    ASSERT_EQ(MI_DISP_HideInputPort(0, 3), MI_SUCCESS);
    ASSERT_EQ(vboard_port_get_place(0, 3, &place), 0);
    EXPECT_EQ(place.seen, 0u);
    EXPECT_EQ(place.width, 0u);
}

TEST_F(Display, HasNoPlaceOfPortsThatAreNotThere)
{
    vboard_port_place place = {};
    EXPECT_EQ(vboard_port_get_place(3, 0, &place), -1);
    EXPECT_EQ(vboard_port_get_place(0, 16, &place), -1);
    EXPECT_EQ(vboard_port_get_place(0, 0, nullptr), -1);
}

} // namespace
