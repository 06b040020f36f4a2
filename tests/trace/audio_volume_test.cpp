/* The volume: its level in dB, and what it opens and closes. */
#include <vector>

#include "audio_words.h"

using namespace audio_test;
using recording::platform;

namespace
{

struct VolumeRow {
    uint32_t volume;
    int32_t level_db;
};
/* Above 100 nothing is limited; from 47721859 on, 90 times the volume no longer fits 32 bits and wraps. */
constexpr VolumeRow kVolumes[] = {
    {0, -60},
    {1, -60},
    {2, -59},
    {3, -58},
    {4, -57},
    {10, -51},
    {11, -51},
    {33, -31},
    {49, -16},
    {50, -15},
    {51, -15},
    {66, -1},
    {67, 0},
    {99, 29},
    {100, 30},
    {101, 30},
    {200, 120},
    {65536, 58922},
    {47721858, 42949612},
    {47721859, -60},
    {0x40000000, 21474776},
    {0x80000000, -60},
    {UINT32_MAX, 42949612},
};

TEST(AudioVolume, IsALevelInWholeDecibels)
{
    for (const VolumeRow &row : kVolumes) {
        SCOPED_TRACE(row.volume);
        platform.forget();
        audio_ctrl.mode = 77;
        EXPECT_EQ(ext_set_audio_output_volume(row.volume), 0);
        EXPECT_EQ(platform.calls(), "MI_AO_SetVolume 3 " + std::to_string(row.level_db));
        EXPECT_PRINTED_WITHOUT_PREFIX("readvolume=" + std::to_string(row.level_db));
        EXPECT_PRINTED_IN_ORDER(entry_of("ext_set_audio_output_volume") +
                                "\nreadvolume=" + std::to_string(row.level_db));
        EXPECT_EQ(audio_ctrl.mode, row.volume == 0 ? 0u : 1u);
    }
}

TEST(AudioVolume, PrintsTheLevelBeforeItIsSet)
{
    std::string before;
    platform.script("MI_AO_SetVolume").fills([&](recording::Args &) { before = recording::printed_text(); });
    EXPECT_EQ(ext_set_audio_output_volume(50), 0);
    EXPECT_NE(before.find("readvolume=-15\n"), std::string::npos);
}

TEST(AudioVolume, WritesTheModeAndNothingElse)
{
    for (uint32_t volume : {0u, 1u}) {
        fill_audio_words();
        EXPECT_EQ(ext_set_audio_output_volume(volume), 0);
        Words expected;
        expected.fill(kPattern);
        expected[0] = volume;
        EXPECT_EQ(audio_words(), expected);
    }
}

TEST(AudioVolume, LeavesTheModeAloneWhenThePlatformRefuses)
{
    platform.script("MI_AO_SetVolume").returns(kRefused);
    for (uint32_t volume : {0u, 1u, 100u, UINT32_MAX}) {
        platform.forget();
        fill_audio_words();
        EXPECT_EQ(ext_set_audio_output_volume(volume), -1);
        Words untouched;
        untouched.fill(kPattern);
        EXPECT_EQ(audio_words(), untouched);
        EXPECT_EQ(recording::times_printed("MI_AO_SetVolume] err 0xa0050007"), 1u);
        EXPECT_PRINTED_AS_ERROR("audio.c", "MI_AO_SetVolume] err 0xa0050007"); // one bracket on purpose
    }
}

/* Hand playback one audio block. */
int32_t play_block()
{
    static std::vector<uint8_t> bytes(324, 0xD5);
    FrameInfo rec = {};
    rec.media = FRAME_MEDIA_AUDIO;
    rec.length = static_cast<uint32_t>(bytes.size());
    rec.data = bytes.data();
    return ext_playback_set_buf(&rec);
}

/* Volume 0 and volume 1 are equally loud; only the first closes the output. */
TEST(AudioVolume, ZeroStopsPlaybackAndOneDoesNot)
{
    ASSERT_EQ(audio_init(), 0);
    EXPECT_EQ(ext_set_audio_output_volume(1), 0);
    EXPECT_EQ(play_block(), 0);
    EXPECT_EQ(platform.count("MI_AO_SendFrame"), 1u);
    EXPECT_EQ(ext_set_audio_output_volume(0), 0);
    EXPECT_EQ(play_block(), -1);
    EXPECT_EQ(platform.count("MI_AO_SendFrame"), 1u);
    EXPECT_EQ(ext_set_audio_live_channel(1, 0), 0);
    EXPECT_EQ(play_block(), 0);
    EXPECT_EQ(platform.count("MI_AO_SendFrame"), 2u);
    EXPECT_EQ(platform.count("MI_AO_SetVolume 3 -60"), 2u);
}

/* The live road asks nobody. */
TEST(AudioVolume, ZeroDoesNotStopLiveBlocks)
{
    ASSERT_EQ(audio_init(), 0);
    ASSERT_EQ(ext_set_audio_output_volume(0), 0);
    std::vector<uint8_t> bytes(644, 0xD5);
    FrameInfo frame = {};
    frame.media = FRAME_MEDIA_AUDIO;
    frame.data = bytes.data();
    for (uint32_t length : {0u, 1u, 2u, 3u}) {
        frame.length = length;
        EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), length == 0 ? -1 : 0);
    }
    EXPECT_EQ(platform.count("MI_AO_SendFrame"), 0u) << "no frame in a piece of a header";
    frame.length = 644;
    EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), 0);
    EXPECT_EQ(platform.count("MI_AO_SendFrame 3 0 {320 bytes} -1"), 2u);
}

} // namespace
