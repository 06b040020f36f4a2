/*
 * wall_stamp_test.cpp - what the panes of a live wall show: each its own channel, every frame in
 * order, and to the pixel what a reference decoder and the scaler make of it.
 */
#include "wall_session.h"

using namespace wall;
using rig::look;
using rig::Picture;

namespace
{

std::vector<Camera> sixteen_cameras()
{
    std::vector<Camera> cameras;
    for (uint32_t channel = 0; channel < NVRHAL_MAX_CAMERAS; ++channel)
        cameras.emplace_back("wall_" + std::to_string(channel) + (channel % 2 != 0 ? "_h265" : "_h264"));
    return cameras;
}

class LiveWall : public Wall
{
protected:
    /* Frame after frame through every pane of an even grid; the wall is looked at after each. */
    void expect_every_frame(const std::vector<Camera> &cameras, int32_t side)
    {
        const auto count = static_cast<uint32_t>(cameras.size());
        ASSERT_EQ(lay_out(grid(side, count)), 0);
        for (size_t frame = 0; frame < cameras[0].stream.frames.size(); ++frame) {
            for (uint32_t channel = 0; channel < count; ++channel)
                send(channel, cameras[channel].stream.frames[frame], cameras[channel].codec());
            const Picture picture = look();
            for (uint32_t channel = 0; channel < count; ++channel) {
                const Camera &camera = cameras[channel];
                const Place place = grid_place(side, channel);
                if (frame < camera.lag()) {
                    ASSERT_TRUE(part_of(picture, place).is_black());
                    continue;
                }
                const size_t shown = frame - camera.lag();
                ASSERT_EQ(stamp_in(picture, place), (stamp::Stamp{channel, static_cast<uint32_t>(shown)}));
                ASSERT_TRUE(part_of(picture, place) == shown_in(camera.pictures[shown], place))
                    << "channel " << channel << " frame " << shown;
            }
        }
    }
};

TEST_F(LiveWall, SixteenPanesShowTheirOwnChannelsFrameByFrame)
{
    const std::vector<Camera> cameras = sixteen_cameras();
    start(NVRHAL_MAX_CAMERAS);
    meet(cameras);
    expect_every_frame(cameras, 4);
}

TEST_F(LiveWall, NinePanesLeaveTheirSurroundingsBlack)
{
    std::vector<Camera> cameras = sixteen_cameras();
    cameras.erase(cameras.begin() + 9, cameras.end());
    start(9);
    meet(cameras);
    // Eight panes of nine: the mask of shown channels has no bit for the ninth.
    std::vector<Camera> shown(cameras.begin(), cameras.begin() + 8);
    expect_every_frame(shown, 3);
    EXPECT_TRUE(part_of(look(), grid_place(3, 8)).is_black());
}

TEST_F(LiveWall, FourSizesAndBothCodecsMatchTheReferenceToThePixel)
{
    // Stamps carry the number of the stream here, not of the channel.
    std::vector<Camera> cameras;
    for (const char *name : {"h264_1920x1080", "h264_704x576", "h265_1280x720", "h265_640x360"})
        cameras.emplace_back(name);
    start(4);
    meet(cameras);
    ASSERT_EQ(lay_out(grid(2, 4)), 0);
    for (size_t frame = 0; frame < 6; ++frame) {
        for (uint32_t channel = 0; channel < 4; ++channel)
            send(channel, cameras[channel].stream.frames[frame], cameras[channel].codec());
        const Picture picture = look();
        for (uint32_t channel = 0; channel < 4; ++channel) {
            if (frame < cameras[channel].lag()) continue;
            const size_t shown = frame - cameras[channel].lag();
            const Place place = grid_place(2, channel);
            ASSERT_TRUE(part_of(picture, place) == shown_in(cameras[channel].pictures[shown], place))
                << "channel " << channel << " frame " << shown;
        }
    }
}

/* Cameras on threads of their own against a wall that shows every picture once: none is lost or turned. */
TEST_F(LiveWall, FramesAdvanceByOneAndNeverGoBack)
{
    const std::vector<Camera> cameras = sixteen_cameras();
    start(NVRHAL_MAX_CAMERAS);
    meet(cameras);
    ASSERT_EQ(lay_out(grid(4, NVRHAL_MAX_CAMERAS)), 0);
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    std::vector<std::thread> senders;
    for (uint32_t channel = 0; channel < NVRHAL_MAX_CAMERAS; ++channel)
        senders.emplace_back([&, channel] {
            for (const rig::Bytes &frame : cameras[channel].stream.frames)
                EXPECT_EQ(session::send_live(channel, frame, cameras[channel].codec()), 0);
        });
    const auto frames = static_cast<uint32_t>(cameras[0].stream.frames.size());
    for (uint32_t frame = 0; frame + 1 < frames; ++frame) {
        ASSERT_EQ(vboard_display_wait_queued(0, 0xffff, 1, rig::kPatience_ms), 0);
        ASSERT_EQ(vboard_display_step(0), NVRHAL_MAX_CAMERAS);
        const Picture picture = look();
        for (uint32_t channel = 0; channel < NVRHAL_MAX_CAMERAS; ++channel)
            ASSERT_EQ(stamp_in(picture, grid_place(4, channel)), (stamp::Stamp{channel, frame}));
    }
    for (std::thread &sender : senders)
        sender.join();
    EXPECT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_REALTIME), 0);
}

/* A single pane shows the picture over the whole screen, whatever rectangle was asked for. */
TEST_F(LiveWall, ASinglePaneFillsTheScreen)
{
    const Camera camera("wall_1_h265");
    start(4);
    ASSERT_EQ(lay_out({pane(1, {0, 0, 640, 360})}), 0);
    send(1, camera.stream.frames[0], camera.codec());
    EXPECT_TRUE(look() == rig::scaled(camera.pictures[0], session::kWallWidth, session::kWallHeight));
}

} // namespace
