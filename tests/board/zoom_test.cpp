/* zoom_test.cpp - the zoom window, zoom layouts and the picture in picture, pixel by pixel. */
#include "playback_session.h"

using namespace session;
using rig::look;
using rig::Picture;

namespace
{

struct Zoom {
    int x, y, w, h; // as the application asks for it
};

class ZoomOnTheBoard : public Session
{
protected:
    /* A single pane of camera 0 that shows the last frame of a stream. */
    Picture show_single(const rig::Stream &stream)
    {
        EXPECT_EQ(lay_out_single(0), 0);
        for (const rig::Bytes &frame : stream.frames)
            EXPECT_EQ(send_live(0, frame), 0);
        settle(0);
        vo_for_ezoom = 1;
        return rig::reference_decode(stream).back();
    }
};

/* The application speaks of the decoder's largest picture, which is the screen's size here. */
TEST_F(ZoomOnTheBoard, ShowsExactlyTheChosenPartOfThePicture)
{
    const Picture picture = show_single(rig::load_stream("session_large_h265"));
    ASSERT_EQ(picture.width, kWallWidth);
    EXPECT_EQ(look(), picture);
    for (const Zoom &zoom : {Zoom{480, 270, 960, 540}, Zoom{100, 50, 640, 360}, Zoom{1280, 720, 640, 360},
                             Zoom{0, 0, 1920, 1080}, Zoom{2, 4, 64, 36}}) {
        ASSERT_EQ(ext_vidoe_image_zoom(0, zoom.x, zoom.y, zoom.w, zoom.h), 0);
        EXPECT_EQ(look(), rig::scaled(picture.part(zoom.x, zoom.y, zoom.w, zoom.h), kWallWidth, kWallHeight))
            << zoom.x << "," << zoom.y << " " << zoom.w << "x" << zoom.h;
    }
    ASSERT_EQ(ext_vidoe_image_zoom(0, 101, 51, 641, 361), 0); // rounded down to even
    EXPECT_EQ(look(), rig::scaled(picture.part(100, 50, 640, 360), kWallWidth, kWallHeight));
}

/* A picture that is delivered smaller than the port's source: the part is mapped in proportion. */
TEST_F(ZoomOnTheBoard, MapsThePartOntoSmallerPicturesInProportion)
{
    const Picture picture = show_single(live_stream(0)); // 640 x 360, a third of the source
    ASSERT_EQ(ext_vidoe_image_zoom(0, 480, 270, 960, 540), 0);
    EXPECT_EQ(look(), rig::scaled(picture.part(160, 90, 320, 180), kWallWidth, kWallHeight));
    const auto stamp_before = rig::stamp_at(look(), 0, 0, kWallWidth, kWallHeight);
    EXPECT_FALSE(stamp_before.has_value()) << "the stamp lies in the quarter that is out of sight";
    ASSERT_EQ(ext_vidoe_image_zoom(0, 0, 0, 0, 0), 0); // the whole again
    EXPECT_EQ(rig::stamp_at(look(), 0, 0, kWallWidth, kWallHeight), (stamp::Stamp{0, 29}));
}

TEST_F(ZoomOnTheBoard, LetsOnlyTheZoomedChannelsFramesIn)
{
    show_single(live_stream(0));
    EXPECT_EQ(send_live(1, live_stream(1).frames[0]), -1);
    EXPECT_EQ(send_live(0, live_stream(0).frames[0]), 0);
}

TEST_F(ZoomOnTheBoard, WindowOutsideThePictureIsRefusedAndNothingChanges)
{
    const Picture picture = show_single(rig::load_stream("session_large_h265"));
    EXPECT_EQ(ext_vidoe_image_zoom(0, 1000, 0, 1000, 1080), 1);
    EXPECT_EQ(look(), picture);
}

TEST_F(ZoomOnTheBoard, ZoomLayoutMovesPanesAndTouchesNoDecoder)
{
    show_live(3);
    const uint64_t recreations = rig::counters(0).recreations + rig::counters(1).recreations;
    DispAttrib panes[] = {{1, 3, 0, 0, 1440, 810, {0, 0}}, {1, 3, 1440, 0, 480, 270, {0, 0}}};
    ASSERT_EQ(ext_change_zoom_format(panes, 2), 0);
    const Picture wall = look();
    EXPECT_EQ(rig::stamp_at(wall, 0, 0, 1440, 810), (stamp::Stamp{0, 2}));
    EXPECT_EQ(rig::stamp_at(wall, 1440, 0, 480, 270), (stamp::Stamp{1, 2}));
    EXPECT_TRUE(wall.part(0, 810, 1920, 270).is_black());
    EXPECT_EQ(rig::counters(0).recreations + rig::counters(1).recreations, recreations);
    EXPECT_EQ(rig::port_state(2).hidden, 1u);
    ASSERT_EQ(ext_change_zoom_format(panes, 0), 0);
    EXPECT_TRUE(look().is_black());
}

/* Layer 1 carries the ports of device 1: they are set up and fed as a display device's. */
TEST_F(ZoomOnTheBoard, PictureInPictureLiesOverTheMainPicture)
{
    show_live(3);
    const Picture before = look();
    const MI_DISP_PubAttr pip = {0, MI_DISP_INTERFACE_DEFAULT, rig::kTiming1080p60, 0};
    ASSERT_EQ(vo_start_chn(1, &pip, 1), 0);
    ASSERT_EQ(vo_bind_vpss(1, 0, 2, 0), 0);
    ASSERT_EQ(local_bind_pip(0, 640, 360, 640, 360), 0);
    EXPECT_EQ(look(), before) << "a layer without a picture covers nothing";

    ASSERT_EQ(send_live(2, live_stream(2).frames[3]), 0);
    settle(2);
    Picture wall = look();
    const Picture picture = rig::reference_decode(live_stream(2))[3];
    EXPECT_EQ(wall.part(640, 360, 640, 360), picture);
    EXPECT_EQ(rig::stamp_at(wall, 640, 360, 640, 360), (stamp::Stamp{2, 3}));
    EXPECT_EQ(stamp_of(wall, 0), (stamp::Stamp{0, 2}));
    EXPECT_EQ(wall.part(1280, 0, 640, 1080), before.part(1280, 0, 640, 1080));
}

TEST_F(ZoomOnTheBoard, PictureInPictureGoesWithoutATrace)
{
    show_live(3);
    const Picture before = look();
    const MI_DISP_PubAttr pip = {0, MI_DISP_INTERFACE_DEFAULT, rig::kTiming1080p60, 0};
    ASSERT_EQ(vo_start_chn(1, &pip, 1), 0);
    ASSERT_EQ(vo_bind_vpss(1, 0, 4, 0), 0); // the spare decoder, whose pictures no pane shows
    ASSERT_EQ(local_bind_pip(1, 100, 100, 480, 270), 0);
    ASSERT_EQ(play(0, live_stream(0).frames[0]), 0); // a frame for a pane below
    ASSERT_EQ(rig::send(4, live_stream(3).frames[0]), 0);
    settle(4);
    settle(0);
    EXPECT_EQ(rig::stamp_at(look(), 100, 100, 480, 270), (stamp::Stamp{3, 0}));
    EXPECT_EQ(local_unbind_pip(1), -1) << "it was bound to device 0";
    EXPECT_EQ(stamp_of(look(), 0), (stamp::Stamp{0, 0})) << "switched off all the same";
    EXPECT_EQ(local_bind_pip(0, 0, 0, 64, 64), -1) << "it is still on device 0";
    EXPECT_EQ(local_unbind_pip(0), 0);
    EXPECT_EQ(stamp_of(look(), 0), (stamp::Stamp{0, 0}));
    EXPECT_EQ(look().part(960, 0, 960, 1080), before.part(960, 0, 960, 1080));
}

} // namespace
