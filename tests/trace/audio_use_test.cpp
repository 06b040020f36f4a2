/* What the output serves: live audio, playback, talkback. */
#include <algorithm>
#include <numeric>
#include <vector>

#include "audio/audio.h"
#include "audio_words.h"

using namespace audio_test;
using recording::platform;

namespace
{

struct OpenRow {
    int32_t open;
    const char *call;
    uint32_t mode;
};
constexpr OpenRow kOpens[] = {
    {0, "MI_AO_SetMute 3 1", AUDIO_USE_OFF},    {1, "MI_AO_SetMute 3 0", AUDIO_USE_LIVE},
    {2, "MI_AO_SetMute 3 0", AUDIO_USE_LIVE},   {-1, "MI_AO_SetMute 3 0", AUDIO_USE_LIVE},
    {256, "MI_AO_SetMute 3 0", AUDIO_USE_LIVE}, {INT32_MIN, "MI_AO_SetMute 3 0", AUDIO_USE_LIVE},
};

TEST(AudioFrames, AreCutFromTheBlockBehindItsHeader)
{
    std::vector<uint8_t> block(4 + 2 * 320);
    std::iota(block.begin(), block.end(), 0);
    nvrhal::send_audio_frames(block.data(), 2, "vdec_venc.c");
    const auto sent = platform.bytes_sent("MI_AO_SendFrame");
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_TRUE(std::equal(sent[0].begin(), sent[0].end(), block.begin() + 4, block.begin() + 324));
    EXPECT_TRUE(std::equal(sent[1].begin(), sent[1].end(), block.begin() + 324, block.end()));
}

TEST(LiveAudio, OpensWithAnythingButZero)
{
    for (const OpenRow &row : kOpens) {
        SCOPED_TRACE(row.open);
        platform.forget();
        fill_audio_words();
        EXPECT_EQ(ext_set_audio_live_channel(row.open, 6), 0);
        EXPECT_EQ(platform.calls(), row.call);
        EXPECT_EQ(audio_words(), words_in_use(row.mode));
        EXPECT_PRINTED_WITHOUT_PREFIX("ipc_audio_debug:ext_set_audio_live_channel # iChl=6 bOpen=" +
                                      std::to_string(row.open));
        EXPECT_PRINTED_IN_ORDER(
            entry_of("ext_set_audio_live_channel") +
            "\nipc_audio_debug:ext_set_audio_live_channel # iChl=6 bOpen=" + std::to_string(row.open));
    }
}

TEST(LiveAudio, OnlyPrintsTheChannel)
{
    for (int32_t channel : {-1, 0, 16, INT32_MAX, INT32_MIN}) {
        platform.forget();
        EXPECT_EQ(ext_set_audio_live_channel(1, channel), 0);
        EXPECT_EQ(platform.calls(), "MI_AO_SetMute 3 0");
        EXPECT_PRINTED("ipc_audio_debug:ext_set_audio_live_channel # iChl=" + std::to_string(channel) +
                       " bOpen=1");
    }
}

/* The words are reset first, the mode changes when the mute has been set. */
TEST(LiveAudio, ChangesTheModeAfterTheMute)
{
    for (int32_t open : {0, 1}) {
        fill_audio_words();
        Words during = {};
        std::string printed_before;
        platform.script("MI_AO_SetMute").fills([&](recording::Args &) {
            during = audio_words();
            printed_before = recording::printed_text();
        });
        EXPECT_EQ(ext_set_audio_live_channel(open, 0), 0);
        EXPECT_EQ(during, words_in_use(kPattern));
        EXPECT_NE(printed_before.find("ipc_audio_debug:"), std::string::npos);
    }
}

TEST(LiveAudio, DoesNotMindAFailingMute)
{
    platform.script("MI_AO_SetMute").returns(kRefused);
    EXPECT_EQ(ext_set_audio_live_channel(1, 0), 0);
    EXPECT_EQ(audio_ctrl.mode, AUDIO_USE_LIVE);
    EXPECT_EQ(ext_set_audio_live_channel(0, 0), 0);
    EXPECT_EQ(audio_ctrl.mode, AUDIO_USE_OFF);
    EXPECT_EQ(recording::printed_text().find("a0050007"), std::string::npos);
}

TEST(Talkback, StartsWithoutACall)
{
    fill_audio_words();
    EXPECT_EQ(ext_audio_speek_start(), 0);
    EXPECT_EQ(speak_flag, 1u);
    EXPECT_EQ(audio_words(), words_in_use(AUDIO_USE_TALKBACK));
    EXPECT_EQ(platform.calls(), "");
    EXPECT_PRINTED_WITHOUT_PREFIX(entry_of("ext_audio_speek_start"));
}

TEST(Talkback, StopsAfterOneSecond)
{
    ext_audio_speek_start();
    platform.forget();
    const int64_t before_us = platform.time_us();
    uint32_t flag = 99, mode = 99;
    platform.script("board_sleep_us").fills([&](recording::Args &) {
        flag = speak_flag;
        mode = audio_ctrl.mode;
    });
    EXPECT_EQ(ext_audio_speek_stop(), 0);
    EXPECT_EQ(platform.calls(), "board_sleep_us 1000000");
    EXPECT_EQ(platform.time_us() - before_us, 1000000);
    EXPECT_EQ(flag, 0u) << "the flag falls before the wait";
    EXPECT_EQ(mode, static_cast<uint32_t>(AUDIO_USE_TALKBACK)) << "the mode after it";
    EXPECT_EQ(audio_ctrl.mode, AUDIO_USE_OFF);
    EXPECT_PRINTED_WITHOUT_PREFIX(entry_of("ext_audio_speek_stop"));
}

TEST(Talkback, ReturnsFromItsStopOnlyWhenTheSecondIsOver)
{
    ext_audio_speek_start();
    std::thread caller([] { EXPECT_EQ(ext_audio_speek_stop(), 0); });
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    platform.step_us(999999);
    ASSERT_TRUE(platform.wait_for_sleepers(1)) << "still asleep a microsecond before";
    EXPECT_EQ(__atomic_load_n(&audio_ctrl.mode, __ATOMIC_RELAXED), AUDIO_USE_TALKBACK);
    platform.step_us(1);
    caller.join();
    EXPECT_EQ(audio_ctrl.mode, AUDIO_USE_OFF);
}

TEST(Talkback, StopsWithoutHavingBeenStarted)
{
    fill_audio_words();
    EXPECT_EQ(ext_audio_speek_stop(), 0);
    Words expected;
    expected.fill(kPattern);
    expected[0] = AUDIO_USE_OFF;
    EXPECT_EQ(audio_words(), expected) << "the mode alone";
    EXPECT_EQ(speak_flag, 0u);
}

/* Every way from one use to another. */
TEST(AudioUse, MovesAsItsCallersSay)
{
    const auto mode = [] { return audio_ctrl.mode; };
    ASSERT_EQ(audio_init(), 0);
    EXPECT_EQ(mode(), AUDIO_USE_OFF);
    ext_set_audio_live_channel(1, 0);
    EXPECT_EQ(mode(), AUDIO_USE_LIVE);
    ext_playback_start(1, 0);
    EXPECT_EQ(mode(), AUDIO_USE_PLAYBACK);
    ext_playback_stop();
    EXPECT_EQ(mode(), AUDIO_USE_LIVE);
    ext_audio_speek_start();
    EXPECT_EQ(mode(), AUDIO_USE_TALKBACK);
    ext_set_audio_output_volume(70);
    EXPECT_EQ(mode(), AUDIO_USE_LIVE) << "talkback does not protect its mode";
    EXPECT_EQ(speak_flag, 1u);
    ext_audio_speek_stop();
    EXPECT_EQ(mode(), AUDIO_USE_OFF);
    ext_set_audio_output_volume(1);
    EXPECT_EQ(mode(), AUDIO_USE_LIVE);
    ext_set_audio_live_channel(0, 0);
    EXPECT_EQ(mode(), AUDIO_USE_OFF);
}

} // namespace
