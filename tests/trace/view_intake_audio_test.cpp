/* Audio blocks through ext_send_stream: a 4-byte header, then frames of 320 bytes. */
#include <algorithm>
#include <numeric>

#include "view_frame.h"

using namespace view_test;
using recording::platform;

namespace
{

int32_t send_audio(std::vector<uint8_t> &bytes, uint32_t channel = 0)
{
    FrameInfo frame = frame_of(FRAME_MEDIA_AUDIO, channel, bytes);
    return ext_send_stream(&frame, 0, 0, 0);
}

struct BlockRow {
    size_t length;
    unsigned frames;
};

TEST(AudioIntake, CutsABlockIntoWholeFrames)
{
    constexpr BlockRow kRows[] = {{1, 0},   {2, 0},   {3, 0},   {4, 0},   {5, 0},    {323, 0},
                                  {324, 1}, {643, 1}, {644, 2}, {645, 2}, {3204, 10}};
    for (const BlockRow &row : kRows) {
        SCOPED_TRACE(row.length);
        platform.forget();
        std::vector<uint8_t> bytes(row.length, 0xD5);
        EXPECT_EQ(send_audio(bytes), 0);
        EXPECT_EQ(platform.count("MI_AO_SendFrame 3 0 {320 bytes} -1"), row.frames);
        EXPECT_EQ(platform.count("MI_AO_SendFrame"), row.frames);
    }
    EXPECT_EQ(platform.calls({"MI_VDEC_"}), "");
}

TEST(AudioIntake, SkipsTheHeader)
{
    std::vector<uint8_t> bytes(644);
    std::iota(bytes.begin(), bytes.end(), 0);
    ASSERT_EQ(send_audio(bytes), 0);
    auto sent = platform.bytes_sent("MI_AO_SendFrame");
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_TRUE(std::equal(sent[0].begin(), sent[0].end(), bytes.begin() + 4));
    EXPECT_TRUE(std::equal(sent[1].begin(), sent[1].end(), bytes.begin() + 324));
}

TEST(AudioIntake, GoesOnAfterAFailingFrame)
{
    std::vector<uint8_t> bytes(4 + 3 * 320);
    platform.script("MI_AO_SendFrame").nth(2).returns(0xA005000F);
    EXPECT_EQ(send_audio(bytes), 0);
    EXPECT_EQ(platform.count("MI_AO_SendFrame"), 3u);
    EXPECT_EQ(recording::times_printed("MI_AO_SendFrame fail=0xa005000f"), 1u);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "MI_AO_SendFrame fail=0xa005000f");
}

TEST(AudioIntake, LooksAtNeitherChannelNorPlaybackNorMask)
{
    cur_display_chnn = 0;
    playback_status = 1;
    std::vector<uint8_t> bytes(324);
    EXPECT_EQ(send_audio(bytes, 99), 0);
    EXPECT_EQ(send_audio(bytes, UINT32_MAX), 0);
    EXPECT_EQ(platform.count("MI_AO_SendFrame"), 2u);
    EXPECT_EQ(major_stream[0].width, 0u);
}

TEST(AudioIntake, SendsNothingOfABlockWithoutBytes)
{
    std::vector<uint8_t> bytes(324);
    FrameInfo frame = frame_of(FRAME_MEDIA_AUDIO, 0, bytes);
    frame.data = nullptr;
    ext_send_stream(&frame, 0, 0, 0);
    EXPECT_EQ(platform.count("MI_AO_SendFrame"), 0u);
}

} // namespace
