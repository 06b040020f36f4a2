/* Which frames ext_send_stream passes on: zoom, playback, the mask of shown channels, snapshots. */
#include "view_frame.h"

using namespace view_test;
using recording::platform;

namespace
{

class IntakeFilter : public RunningDecoders
{
};

constexpr const char *kSent = "MI_VDEC_SendStream";

TEST_F(IntakeFilter, WhileZoomedRefusesAllOtherChannelsBeforeAnythingElse)
{
    vo_for_ezoom = 1;
    zoom_channel = 2;
    EXPECT_EQ(send_video(1), -1);
    std::vector<uint8_t> bytes(700);
    for (uint32_t media : {0u, 2u, 3u}) {
        FrameInfo frame = frame_of(media, 1, bytes);
        EXPECT_EQ(ext_send_stream(&frame, 1, 0, 0), -1);
    }
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(recording::printed_text(), "");
    EXPECT_EQ(major_stream[1].width, 0u);
    EXPECT_EQ(send_video(2), 0);
    EXPECT_EQ(platform.count(kSent), 1u);
}

TEST_F(IntakeFilter, OnlyOneMeansZoomed)
{
    vo_for_ezoom = 2;
    zoom_channel = 2;
    EXPECT_EQ(send_video(1), 0);
    EXPECT_EQ(platform.count(kSent), 1u);
}

TEST_F(IntakeFilter, DecodesTheChannelsOfTheMask)
{
    cur_display_chnn = 0x05;
    for (uint32_t channel = 0; channel < 8; ++channel) {
        SCOPED_TRACE(channel);
        platform.forget();
        EXPECT_EQ(send_video(channel), 0);
        EXPECT_EQ(platform.count(kSent), channel == 0 || channel == 2 ? 1u : 0u);
    }
}

TEST_F(IntakeFilter, DecodesAHiddenChannelThatIsBeingSnapped)
{
    cur_display_chnn = 0x05;
    cur_snap_chnn = 1;
    EXPECT_EQ(send_video(1), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 1"), 1u);
    cur_snap_chnn = 255;
    EXPECT_EQ(send_video(1), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 1"), 1u);
}

TEST_F(IntakeFilter, NeverShowsChannelsBeyondTheMask)
{
    g_vi_chn_num = 16;
    cur_display_chnn = 0xFE; // every bit but bit 0, and not the value that means all
    for (uint32_t channel : {8u, 9u, 15u, 16u})
        EXPECT_EQ(send_video(channel), 0);
    EXPECT_EQ(platform.count(kSent), 0u);
    cur_display_chnn = 255;
    for (uint32_t channel : {8u, 9u, 15u, 16u})
        EXPECT_EQ(send_video(channel), 0);
    EXPECT_EQ(platform.count(kSent), 4u);
    cur_display_chnn = 0;
    cur_snap_chnn = 12;
    EXPECT_EQ(send_video(12), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 12"), 1u);
}

TEST_F(IntakeFilter, PlaybackRefusesEveryChannelThatIsNotBeingSnapped)
{
    playback_status = 1;
    for (uint32_t channel = 0; channel < 8; ++channel)
        EXPECT_EQ(send_video(channel), -1);
    EXPECT_EQ(platform.count(kSent), 0u);
}

TEST_F(IntakeFilter, PlaybackSendsTheSnappedChannelToTheSpareDecoder)
{
    g_vi_chn_num = 6;
    playback_status = 1;
    cur_display_chnn = 0;
    cur_snap_chnn = 3;
    EXPECT_EQ(send_video(3), 0);
    EXPECT_EQ(send_video(2), -1);
    EXPECT_EQ(platform.calls({kSent}),
              "MI_VDEC_SendStream 6 {100 bytes pts 1234605616436508552 eof 0 eos 0} 20");
    EXPECT_EQ(platform.count("MI_VDEC_GetChnStat 3"), 1u) << "the backlog asked for is the live channel's";
}

TEST_F(IntakeFilter, OnlyOneMeansPlayback)
{
    playback_status = 2;
    EXPECT_EQ(send_video(1), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 1"), 1u);
}

TEST_F(IntakeFilter, AFailingSpareDecoderIsResetItself)
{
    g_vi_chn_num = 6;
    playback_status = 1;
    cur_snap_chnn = 3;
    platform.script(kSent).returns(0xA008000F);
    EXPECT_EQ(send_video(3), -1);
    EXPECT_EQ(platform.count("MI_VDEC_StopChn 6"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_StopChn 3"), 0u);
}

} // namespace
