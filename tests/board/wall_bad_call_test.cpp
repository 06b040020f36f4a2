/*
 * wall_bad_call_test.cpp - arguments that make no sense, on a running wall: a defined result, and not
 * a pixel changes.
 */
#include <climits>

#include "wall_session.h"

using namespace wall;
using rig::look;
using rig::Picture;

namespace
{

class BadCalls : public Wall
{
protected:
    void SetUp() override
    {
        start(4);
        ASSERT_EQ(lay_out(grid(2, 4)), 0);
        for (uint32_t channel = 0; channel < 4; ++channel)
            send(channel, camera_.stream.frames[0], session::kH265);
        wall_ = look();
        ASSERT_FALSE(wall_.is_black());
        vboard_set_loud(0);
    }

    FrameInfo frame(uint32_t channel, uint32_t media = FRAME_MEDIA_VIDEO) const
    {
        const rig::Bytes &bytes = camera_.stream.frames[1];
        FrameInfo info = {};
        info.media = media;
        info.length = static_cast<uint32_t>(bytes.size());
        info.data = const_cast<uint8_t *>(bytes.data());
        info.channel = channel;
        return info;
    }

    const Camera camera_{"session_live_0_h265"};
    Picture wall_;
};

TEST_F(BadCalls, ChannelsThatDoNotExistAreDroppedOrRefused)
{
    for (const uint32_t codec : {0u, 1u, 9u})
        for (const uint32_t channel : {8u, 9u, 15u, 16u, 17u, 18u, 31u, 63u, 64u, 255u, 65535u, 0x7fffffffu,
                                       0x80000000u, 0xffffffffu}) {
            FrameInfo info = frame(channel);
            // Those of decoders may exist elsewhere: not shown, so dropped. Beyond, they never do.
            EXPECT_EQ(ext_send_stream(&info, codec, 0, 0), channel < NVRHAL_MAX_DECODERS ? 0 : -1) << channel;
            info.media = 3;
            EXPECT_EQ(ext_send_stream(&info, codec, 0, 0), 0) << channel;
        }
    EXPECT_TRUE(look() == wall_);
}

TEST_F(BadCalls, MissingRecordsAndPayloadsAreRefused)
{
    EXPECT_EQ(ext_send_stream(nullptr, 1, 0, 0), -1);
    FrameInfo info = frame(2);
    info.data = nullptr;
    EXPECT_EQ(ext_send_stream(&info, 1, 0, 0), -1);
    for (const uint32_t length : {0u, NVRHAL_MAX_SEND_BYTES + 1u, 0x80000000u, 0xffffffffu}) {
        info = frame(2);
        info.length = length; // refused before a byte is read
        EXPECT_EQ(ext_send_stream(&info, 1, 0, 0), -1) << length;
    }
    EXPECT_TRUE(look() == wall_);
}

TEST_F(BadCalls, LayoutsOfAnyCountLeaveTheWallAsItIs)
{
    const std::vector<DispAttrib> panes = grid(2, 4);
    for (const int32_t count : {0, -1, 5, 16, 17, 100, INT_MAX, INT_MIN})
        EXPECT_EQ(ext_change_display_format(panes.data(), count), -1) << count;
    for (const int32_t count : {1, 4})
        EXPECT_EQ(ext_change_display_format(nullptr, count), -1) << count;
    EXPECT_EQ(ext_change_display_slave(nullptr, 4), 0) << "the main output is current";
    EXPECT_TRUE(look() == wall_);

    // Even so nothing counts as shown until a layout succeeds.
    FrameInfo info = frame(0);
    const uint64_t sent = rig::counters(0).frames_sent;
    EXPECT_EQ(ext_send_stream(&info, 1, 0, 0), 0);
    EXPECT_EQ(rig::counters(0).frames_sent, sent);
    ASSERT_EQ(lay_out(panes), 0);
    send(0, camera_.stream.frames[0], session::kH265);
    EXPECT_EQ(stamp_in(look(), grid_place(2, 0)), (stamp::Stamp{0, 0}));
}

TEST_F(BadCalls, PanesOfAbsentChannelsStayDark)
{
    std::vector<DispAttrib> panes = grid(2, 4);
    panes[1].channel = 4; // the spare decoder's number
    panes[2].channel = 200;
    panes[3].channel = 65535;
    ASSERT_EQ(lay_out(panes), 0);
    send(0, camera_.stream.frames[0], session::kH265);
    const Picture picture = look();
    EXPECT_EQ(stamp_in(picture, grid_place(2, 0)), (stamp::Stamp{0, 0}));
    EXPECT_TRUE(picture.part(960, 0, 960, 1080).is_black());
    EXPECT_TRUE(picture.part(0, 540, 1920, 540).is_black());
}

TEST_F(BadCalls, SmallestPanesAndEmptyOnesHarmNobody)
{
    const std::vector<DispAttrib> panes = {pane(0, grid_place(2, 0)), pane(1, {960, 0, 2, 2}),
                                           pane(2, {0, 540, 0, 0}), pane(3, {1919, 1079, 1, 1})};
    ASSERT_EQ(lay_out(panes), 0);
    for (uint32_t channel = 0; channel < 4; ++channel)
        send(channel, camera_.stream.frames[0], session::kH265);
    const Picture picture = look();
    EXPECT_EQ(stamp_in(picture, grid_place(2, 0)), (stamp::Stamp{0, 0}));
    EXPECT_TRUE(picture.part(962, 0, 958, 1080).is_black());
    EXPECT_TRUE(picture.part(0, 540, 1920, 540).is_black());
}

} // namespace
