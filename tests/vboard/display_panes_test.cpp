/* display_panes_test.cpp - what the display shows: windows, zoom, hiding, clearing, and composition. */
#include "display_board.h"

using namespace rig;

namespace
{

TEST_F(Display, ShowsNothingUntilDeviceLayerAndPortAreOn)
{
    power_up();
    const Stream stream = show("h264_640x360", 0, 0, 640, 360);
    send_and_settle(0, stream.frames[0]);
    EXPECT_FALSE(look().is_black());
    ASSERT_EQ(MI_DISP_DisableVideoLayer(0), MI_SUCCESS);
    EXPECT_TRUE(look().is_black());
    ASSERT_EQ(MI_DISP_EnableVideoLayer(0), MI_SUCCESS);
    EXPECT_FALSE(look().is_black());
    ASSERT_EQ(MI_DISP_Disable(0), MI_SUCCESS);
    EXPECT_TRUE(look().is_black());
    ASSERT_EQ(MI_DISP_Enable(0), MI_SUCCESS);
    EXPECT_FALSE(look().is_black());
    ASSERT_EQ(MI_DISP_DisableInputPort(0, 0), MI_SUCCESS);
    EXPECT_TRUE(look().is_black());
}

TEST_F(Display, BackgroundsOf800080AndOf0AreBlack)
{
    power_up();
    EXPECT_TRUE(look().is_black());
    MI_DISP_PubAttr attr = {};
    ASSERT_EQ(MI_DISP_GetPubAttr(0, &attr), MI_SUCCESS);
    attr.background = 0;
    ASSERT_EQ(MI_DISP_SetPubAttr(0, &attr), MI_SUCCESS);
    EXPECT_TRUE(look().is_black());
    attr.background = 0x5a51f0; // V 0x5a, Y 0x51, U 0xf0: blue
    ASSERT_EQ(MI_DISP_SetPubAttr(0, &attr), MI_SUCCESS);
    const Picture blue = look();
    EXPECT_EQ(blue.luma()[0], 0x51);
    EXPECT_EQ(blue.chroma(1)[0], 0xf0);
    EXPECT_EQ(blue.chroma(2)[0], 0x5a);
}

TEST_F(Display, AHiddenPortGoesOnTakingPictures)
{
    power_up();
    const Stream stream = show("h264_640x360", 0, 0, 640, 360);
    send_and_settle(0, stream.frames[0]);
    ASSERT_EQ(MI_DISP_HideInputPort(0, 0), MI_SUCCESS);
    EXPECT_TRUE(look().is_black());
    send_and_settle(0, stream.frames[1]);
    EXPECT_TRUE(look().is_black());
    ASSERT_EQ(MI_DISP_ShowInputPort(0, 0), MI_SUCCESS);
    EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 1u);
}

TEST_F(Display, ADisabledPortDropsPictures)
{
    power_up();
    const Stream stream = show("h264_640x360", 0, 0, 640, 360);
    ASSERT_EQ(MI_DISP_DisableInputPort(0, 0), MI_SUCCESS);
    send_and_settle(0, stream.frames[0]);
    ASSERT_EQ(MI_DISP_EnableInputPort(0, 0), MI_SUCCESS);
    EXPECT_TRUE(look().is_black());
    EXPECT_EQ(port_state(0).taken, 0u);
    send_and_settle(0, stream.frames[1]);
    EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 1u);
}

TEST_F(Display, AClearedPortShowsNothingUntilANewPictureComes)
{
    power_up();
    const Stream stream = show("h264_640x360", 0, 0, 640, 360);
    send_and_settle(0, stream.frames[0]);
    ASSERT_EQ(MI_DISP_ClearInputPortBuffer(0, 0, 0), MI_SUCCESS); // only what waits behind it
    EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 0u);
    ASSERT_EQ(MI_DISP_ClearInputPortBuffer(0, 0, 1), MI_SUCCESS);
    EXPECT_TRUE(look().is_black());
    send_and_settle(0, stream.frames[1]);
    EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 1u);
}

TEST_F(Display, AMovedWindowLeavesNothingBehind)
{
    power_up();
    const Stream stream = show("h264_640x360", 0, 0, 640, 360);
    send_and_settle(0, stream.frames[0]);
    const Picture before = look().part(0, 0, 640, 360);
    open_window(0, 300, 200, 640, 360);
    const Picture wall = look();
    EXPECT_TRUE(wall.part(300, 200, 640, 360) == before);
    EXPECT_TRUE(wall.part(0, 0, 1920, 200).is_black());
    EXPECT_TRUE(wall.part(0, 200, 300, 880).is_black());
    EXPECT_TRUE(wall.part(940, 200, 980, 880).is_black());
    EXPECT_TRUE(wall.part(0, 560, 1920, 520).is_black());
}

TEST_F(Display, ALaterPortLiesOverAnEarlierOne)
{
    power_up();
    const Stream stream = show("h264_640x360", 0, 0, 640, 360);
    const Stream above = load_stream("h265_640x360");
    const Picture over = reference_decode(above)[0];
    start_channel(1, above.codec);
    open_window(1, 320, 180, 640, 360);
    ASSERT_EQ(bind(1, 1), MI_SUCCESS);
    send_and_settle(1, above.frames[0]);
    for (size_t frame = 0; frame < 3; ++frame) {
        send_and_settle(0, stream.frames[frame]); // drawn anew below, every time
        const Picture wall = look();
        EXPECT_TRUE(wall.part(320, 180, 640, 360) == over);
        EXPECT_EQ(wall.part(0, 0, 320, 360), reference_decode(stream)[frame].part(0, 0, 320, 360));
    }
    ASSERT_EQ(MI_DISP_HideInputPort(0, 1), MI_SUCCESS);
    EXPECT_TRUE(look().part(0, 0, 640, 360) == reference_decode(stream)[2]);
}

TEST_F(Display, OnlyWhatChangedIsDrawnAnew)
{
    power_up();
    const Stream stream = show("h264_640x360", 0, 0, 640, 360);
    start_channel(1, stream.codec);
    open_window(1, 640, 0, 640, 360);
    ASSERT_EQ(bind(1, 1), MI_SUCCESS);
    const auto changed = [] {
        vboard_picture picture;
        EXPECT_EQ(vboard_display_borrow(0, &picture), 0);
        EXPECT_EQ(vboard_display_give_back(0), 0);
        return picture.changed_ports;
    };
    send_and_settle(0, stream.frames[0]);
    send_and_settle(1, stream.frames[0]);
    EXPECT_EQ(changed(), 3u);
    EXPECT_EQ(changed(), 0u);
    send_and_settle(1, stream.frames[1]);
    EXPECT_EQ(changed(), 2u);
    ASSERT_EQ(MI_DISP_HideInputPort(0, 0), MI_SUCCESS);
    EXPECT_EQ(changed(), 0u);
}

TEST_F(Display, TheZoomWindowSpeaksSourceCoordinates)
{
    power_up();
    const Stream stream = show("h264_704x576", 0, 0, 960, 540);
    const Picture whole = reference_decode(stream)[0];
    send_and_settle(0, stream.frames[0]);
    MI_DISP_InputPortAttr attr = {};
    ASSERT_EQ(MI_DISP_GetInputPortAttr(0, 0, &attr), MI_SUCCESS);
    attr.source_width = 1920;
    attr.source_height = 1080;
    ASSERT_EQ(MI_DISP_SetInputPortAttr(0, 0, &attr), MI_SUCCESS);

    // The top left quarter in source coordinates is that of the picture.
    MI_Rect zoom = {0, 0, 960, 540};
    ASSERT_EQ(MI_DISP_SetZoomInWindow(0, 0, &zoom), MI_SUCCESS);
    EXPECT_TRUE(look().part(0, 0, 960, 540) == scaled(whole.part(0, 0, 352, 288), 960, 540));
    zoom = {960, 540, 480, 270};
    ASSERT_EQ(MI_DISP_SetZoomInWindow(0, 0, &zoom), MI_SUCCESS);
    EXPECT_TRUE(look().part(0, 0, 960, 540) == scaled(whole.part(352, 288, 176, 144), 960, 540));

    zoom = {1000, 0, 960, 540};
    EXPECT_EQ(MI_DISP_SetZoomInWindow(0, 0, &zoom), code(MI_MODULE_DISP, MI_REASON_BAD_VALUE));
    zoom = {};
    ASSERT_EQ(MI_DISP_SetZoomInWindow(0, 0, &zoom), MI_SUCCESS);
    EXPECT_TRUE(look().part(0, 0, 960, 540) == scaled(whole, 960, 540));
}

TEST_F(Display, ASourceSizeOfZeroMeansAsDelivered)
{
    power_up();
    const Stream stream = show("h264_704x576", 0, 0, 704, 576);
    const Picture whole = reference_decode(stream)[0];
    send_and_settle(0, stream.frames[0]);
    MI_Rect zoom = {352, 288, 352, 288};
    ASSERT_EQ(MI_DISP_SetZoomInWindow(0, 0, &zoom), MI_SUCCESS);
    EXPECT_TRUE(look().part(0, 0, 704, 576) == scaled(whole.part(352, 288, 352, 288), 704, 576));
    // With no source size to check against, any window is taken and kept inside the picture.
    for (const MI_Rect wild :
         {MI_Rect{65535, 65535, 65535, 65535}, MI_Rect{703, 575, 1, 1}, MI_Rect{0, 0, 65535, 1}}) {
        ASSERT_EQ(MI_DISP_SetZoomInWindow(0, 0, &wild), MI_SUCCESS);
        EXPECT_FALSE(look().part(0, 0, 704, 576).is_black());
    }
}

// A layer that is set before it is bound is checked against no output.
TEST_F(Display, ALayerOfAnySizeKeepsPanesInsideTheOutput)
{
    power_up();
    const Stream stream = show("h264_640x360", 0, 0, 640, 360);
    send_and_settle(0, stream.frames[0]);
    ASSERT_EQ(MI_DISP_DisableVideoLayer(0), MI_SUCCESS);
    ASSERT_EQ(MI_DISP_UnBindVideoLayer(0, 0), MI_SUCCESS);
    MI_DISP_VideoLayerAttr layer = {};
    ASSERT_EQ(MI_DISP_GetVideoLayerAttr(0, &layer), MI_SUCCESS);
    layer.width = layer.height = 1;
    layer.window = {0, 0, 65535, 65535};
    ASSERT_EQ(MI_DISP_SetVideoLayerAttr(0, &layer), MI_SUCCESS);
    ASSERT_EQ(MI_DISP_BindVideoLayer(0, 0), MI_SUCCESS);
    ASSERT_EQ(MI_DISP_EnableVideoLayer(0), MI_SUCCESS);
    MI_DISP_InputPortAttr port = {};
    port.window = {0, 0, 65535, 65535};
    const bool taken = MI_DISP_SetInputPortAttr(0, 0, &port) == MI_SUCCESS;
    const Picture wall = look();
    EXPECT_EQ(wall.width, 1920);
    EXPECT_TRUE(!taken || !wall.is_black());
}

TEST_F(Display, OddWindowsAreRoundedToWholeChromaSamples)
{
    power_up();
    const Stream stream = show("h264_640x360", 101, 51, 639, 359);
    send_and_settle(0, stream.frames[0]);
    const Picture wall = look();
    EXPECT_TRUE(wall.part(100, 50, 640, 360) == reference_decode(stream)[0]);
}

TEST_F(Display, SixteenChannelsShowTheirOwnFramesInOrder)
{
    power_up();
    std::vector<Stream> streams;
    for (int channel = 0; channel < 16; ++channel) {
        streams.push_back(
            load_stream("wall_" + std::to_string(channel) + (channel % 2 != 0 ? "_h265" : "_h264")));
        const auto port = static_cast<uint32_t>(channel);
        start_channel(port, streams.back().codec);
        open_window(port, channel % 4 * 480, channel / 4 * 270, 480, 270);
        ASSERT_EQ(bind(port, port), MI_SUCCESS);
    }
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    std::vector<std::vector<Picture>> expected;
    for (const Stream &stream : streams)
        expected.push_back(reference_decode(stream));
    for (size_t frame = 0; frame < streams[0].frames.size(); ++frame) {
        for (uint32_t channel = 0; channel < 16; ++channel)
            ASSERT_EQ(send(channel, streams[channel].frames[frame]), MI_SUCCESS);
        ASSERT_EQ(vboard_display_wait_queued(0, 0xffff, 1, kPatience_ms), 0);
        ASSERT_EQ(vboard_display_step(0), 16);
        const Picture wall = look();
        for (int channel = 0; channel < 16; ++channel) {
            const int x = channel % 4 * 480;
            const int y = channel / 4 * 270;
            const stamp::Stamp wanted{static_cast<unsigned>(channel), static_cast<uint32_t>(frame)};
            ASSERT_EQ(stamp_at(wall, x, y, 480, 270), wanted);
            ASSERT_TRUE(wall.part(x, y, 480, 270) ==
                        scaled(expected[static_cast<size_t>(channel)][frame], 480, 270));
        }
    }
}

} // namespace
