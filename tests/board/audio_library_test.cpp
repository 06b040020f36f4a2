/* Sound through the library: level, mute, continuity, whole frames. */
#include <algorithm>
#include <cstring>

#include "audio_speaker.h"

using namespace speaker;

namespace
{

constexpr double kTone_hz = 1000;
constexpr size_t kSecond = 8000;          // of input samples
constexpr uint64_t kFilterSamples = 1920; // the resampler has settled by then

/* The level that the library sets, as its interface defines it. */
int32_t level_db(uint32_t volume)
{
    return static_cast<int32_t>(90 * volume) / 100 - 60;
}

struct LevelRow {
    uint32_t volume;
    double amplitude; // high enough to survive, low enough not to be cut at full scale
};
constexpr LevelRow kLevels[] = {{0, 30000}, {1, 30000}, {50, 12000}, {67, 12000}, {100, 900}};

TEST_F(Speaker, PlaysAToneAtItsFrequencyAndLevel)
{
    uint64_t first = 0;
    for (const LevelRow &row : kLevels) {
        SCOPED_TRACE(row.volume);
        ASSERT_EQ(vboard_clock_step_us(1000000), 0);
        ASSERT_EQ(ext_set_audio_output_volume(row.volume), 0);
        EXPECT_EQ(stat().volume_db, level_db(row.volume));
        const tone::Bytes sound = tone::sine(kTone_hz, row.amplitude, kSecond);
        say(sound);
        play_out();
        const tone::Samples out = heard(first + kFilterSamples);
        first = stat().played;
        EXPECT_NEAR(tone::frequency_hz(out, tone::kOutputRate_hz), kTone_hz, 1);
        const double sent = tone::fit(tone::expanded(sound), kTone_hz, tone::kInputRate_hz).amplitude;
        const tone::Fit came = tone::fit(out, kTone_hz, tone::kOutputRate_hz);
        EXPECT_NEAR(tone::decibels(came.amplitude / sent), level_db(row.volume), 0.5);
        EXPECT_LT(tone::decibels(came.rest_rms / came.amplitude), -25) << "and little else is heard";
    }
    EXPECT_EQ(stat().clipped, 0u);
}

TEST_F(Speaker, HoldsALoudToneAtFullScale)
{
    ASSERT_EQ(ext_set_audio_output_volume(100), 0);
    say(tone::sine(kTone_hz, 20000, kSecond / 4));
    play_out();
    const tone::Samples out = heard(kFilterSamples);
    EXPECT_EQ(*std::max_element(out.begin(), out.end()), 32767);
    EXPECT_EQ(*std::min_element(out.begin(), out.end()), -32768);
    EXPECT_GT(stat().clipped, out.size() / 2);
    EXPECT_NEAR(tone::frequency_hz(out, tone::kOutputRate_hz), kTone_hz, 1) << "held, not wrapped around";
}

/* The board has no such volume; the library passes the number on and says that it failed. */
TEST_F(Speaker, RefusesAVolumeBeyondItsRange)
{
    ASSERT_EQ(ext_set_audio_output_volume(50), 0);
    vboard_set_loud(0);
    for (uint32_t volume : {102u, 200u, 0x40000000u, UINT32_MAX}) {
        EXPECT_EQ(ext_set_audio_output_volume(volume), -1) << volume;
        EXPECT_EQ(stat().volume_db, -15);
        EXPECT_EQ(audio_ctrl.mode, AUDIO_USE_LIVE);
    }
    EXPECT_EQ(ext_set_audio_output_volume(101), 0) << "90.9 is cut to 90";
}

TEST_F(Speaker, IsSilentAndKeepsItsPaceWhileMuted)
{
    ASSERT_EQ(ext_set_audio_live_channel(0, 0), 0);
    EXPECT_EQ(stat().muted, 1u);
    say(tone::sine(kTone_hz, 20000, kSecond));
    play_out();
    const tone::Samples out = heard();
    EXPECT_EQ(out.size(), 48000u);
    EXPECT_TRUE(std::all_of(out.begin(), out.end(), [](int16_t sample) { return sample == 0; }));
    vboard_audio_level level;
    ASSERT_EQ(vboard_audio_get_level(kDevice, 500, &level), 0);
    EXPECT_EQ(level.peak_dbfs, VBOARD_AUDIO_SILENCE_DBFS);
    EXPECT_EQ(level.rms_dbfs, VBOARD_AUDIO_SILENCE_DBFS);

    ASSERT_EQ(ext_set_audio_live_channel(1, 0), 0);
    const uint64_t before = stat().played;
    say(tone::sine(kTone_hz, 20000, kSecond / 2));
    play_out();
    EXPECT_NEAR(tone::fit(heard(before + kFilterSamples), kTone_hz, tone::kOutputRate_hz).amplitude, 20000,
                500);
}

/* Queued sound is muted, too, from the moment of the call. */
TEST_F(Speaker, MutesAtOnce)
{
    say(tone::sine(kTone_hz, 20000, 2 * kFrameBytes));
    ASSERT_EQ(vboard_clock_step_us(20000), 0);
    ASSERT_EQ(ext_set_audio_live_channel(0, 0), 0);
    play_out();
    const tone::Samples out = heard();
    ASSERT_EQ(out.size(), 2 * kFrameSamples);
    constexpr size_t kMutedAt = 960; // 20 ms
    EXPECT_GT(tone::rms({out.begin() + 480, out.begin() + kMutedAt}), 10000);
    EXPECT_EQ(tone::rms({out.begin() + kMutedAt, out.end()}), 0);
}

/* 1013 Hz does not fit into a frame: every border cuts a wave. A lost or doubled sample would leave 13 %. */
TEST_F(Speaker, LeavesNoGapAndNoClickBetweenBlocks)
{
    constexpr double kOdd_hz = 1013;
    constexpr double kAmplitude = 20000;
    say(tone::sine(kOdd_hz, kAmplitude, 2 * kFrameBytes));
    EXPECT_EQ(stat().played, 0u) << "both are queued before the clock moves";
    play_out();
    const tone::Samples two = heard();
    ASSERT_EQ(two.size(), 2 * kFrameSamples);
    const tone::Samples settled(two.begin() + 480, two.end());
    EXPECT_LT(tone::fit(settled, kOdd_hz, tone::kOutputRate_hz).rest_peak, 0.05 * kAmplitude);
    EXPECT_EQ(stat().ran_dry, 1u) << "at the end";

    const uint64_t first = stat().played;
    say(tone::sine(kOdd_hz, kAmplitude, kSecond));
    play_out();
    const tone::Fit many = tone::fit(heard(first + 480), kOdd_hz, tone::kOutputRate_hz);
    EXPECT_LT(many.rest_peak, 0.05 * kAmplitude);
    EXPECT_NEAR(many.amplitude, kAmplitude, 0.02 * kAmplitude);
    EXPECT_EQ(stat().ran_dry, 2u);
}

/* A camera that sends each block when the one before ends, and one whose sound stops and begins anew. */
TEST_F(Speaker, GoesOnAfterALateBlockAndBeginsAnewAfterAPause)
{
    const tone::Bytes sound = tone::sine(1013, 20000, 10 * kFrameBytes);
    for (size_t at = 0; at < sound.size(); at += kFrameBytes) {
        const auto begin = sound.begin() + static_cast<std::ptrdiff_t>(at);
        ASSERT_EQ(send_block(block_of({begin, begin + kFrameBytes})), 0);
        ASSERT_EQ(vboard_clock_step_us(kFrame_us + 500), 0);
    }
    EXPECT_EQ(stat().ran_dry, 10u);
    EXPECT_LT(tone::fit(heard(480), 1013, tone::kOutputRate_hz).rest_peak, 1000);

    ASSERT_EQ(vboard_clock_step_us(1000000), 0);
    const uint64_t first = stat().played;
    ASSERT_EQ(send_block(block_of(tone::Bytes(kFrameBytes, tone::compress(0)))), 0);
    play_out();
    EXPECT_LT(tone::rms(heard(first)), 9) << "nothing of the old sound comes after the pause";
}

/* The same as between blocks, with the frames of one block. */
TEST_F(Speaker, LeavesNoClickBetweenTheFramesOfABlock)
{
    const tone::Bytes sound = tone::sine(1013, 20000, 5 * kFrameBytes);
    ASSERT_EQ(send_block(block_of(sound)), 0);
    play_out();
    const tone::Samples out = heard(480);
    EXPECT_LT(tone::fit(out, 1013, tone::kOutputRate_hz).rest_peak, 1000);
}

struct BlockRow {
    uint32_t bytes;
    uint64_t frames;
};
constexpr BlockRow kBlocks[] = {{1, 0},   {2, 0},   {3, 0},   {4, 0},   {5, 0},   {323, 0},
                                {324, 1}, {325, 1}, {643, 1}, {644, 2}, {645, 2}, {1604, 5}};

TEST_F(Speaker, PlaysExactlyTheWholeFramesOfABlock)
{
    for (const BlockRow &row : kBlocks) {
        SCOPED_TRACE(row.bytes);
        const vboard_audio_stat before = stat();
        EXPECT_EQ(send_block(tone::Bytes(row.bytes, 0x2A)), 0);
        EXPECT_EQ(stat().blocks - before.blocks, row.frames);
        play_out();
        EXPECT_EQ(stat().played - before.played, row.frames * kFrameSamples);
    }
    EXPECT_EQ(send_block({}), -1);
}

TEST_F(Speaker, PlaysRecordedBlocksWhileTheOutputIsOpen)
{
    FrameInfo rec = {};
    const auto play = [&](uint32_t bytes) {
        EXPECT_EQ(ext_playback_get_buf(&rec), 0);
        memset(rec.data, 0x2A, bytes);
        rec.media = FRAME_MEDIA_AUDIO;
        rec.length = bytes;
        return ext_playback_set_buf(&rec);
    };
    EXPECT_EQ(play(644), -1) << "off at start-up";
    ASSERT_EQ(ext_set_audio_output_volume(67), 0);
    EXPECT_EQ(play(644), 0);
    EXPECT_EQ(stat().blocks, 1u) << "playback counts 324 bytes a frame";
    EXPECT_EQ(play(648), 0);
    EXPECT_EQ(stat().blocks, 3u);
    ASSERT_EQ(ext_set_audio_output_volume(0), 0);
    EXPECT_EQ(play(648), -1);
    EXPECT_EQ(stat().blocks, 3u);
}

TEST_F(Speaker, IsSetUpAgainByASecondStart)
{
    say(tone::sine(kTone_hz, 20000, kFrameBytes));
    EXPECT_EQ(audio_init(), 0);
    EXPECT_EQ(audio_create_adec_chn(kDevice, 0, 0, 0), 0);
    play_out();
    EXPECT_EQ(stat().played, kFrameSamples) << "what plays, plays on";
}

TEST_F(Speaker, RefusesOtherDecoders)
{
    vboard_set_loud(0);
    EXPECT_EQ(audio_create_adec_chn(kDevice, 0, 1, 0), rig::code(MI_MODULE_AO, MI_REASON_UNSUPPORTED));
    EXPECT_EQ(audio_create_adec_chn(kDevice, 0, 2, 0), rig::code(MI_MODULE_AO, MI_REASON_UNSUPPORTED));
    EXPECT_EQ(audio_create_adec_chn(kDevice, 0, 0, 1), rig::code(MI_MODULE_AO, MI_REASON_UNSUPPORTED));
    EXPECT_EQ(audio_create_adec_chn(kDevice, 0, 3, 0), -1);
    EXPECT_EQ(audio_create_adec_chn(0, 0, 0, 0), rig::code(MI_MODULE_AO, MI_REASON_NOT_READY));
}

TEST_F(Speaker, StartsAnotherDevice)
{
    const MI_AO_PubAttr attr = {16000, 0, 0, 0, 4, 160, 1, 0};
    EXPECT_EQ(audio_start_ao(5, 0, &attr), 0);
    EXPECT_EQ(stat(5).rate_hz, 16000u);
    EXPECT_EQ(stat(5).capacity, 640u);
    vboard_set_loud(0);
    EXPECT_EQ(audio_start_ao(8, 0, &attr), -1);
    EXPECT_EQ(audio_start_ao(5, 0, nullptr), -1);
}

class NoOutput : public rig::Board
{
};

/* Before start-up nothing is there to play on, and everything says so. */
TEST_F(NoOutput, AnswersCallsBeforeStartUp)
{
    vboard_set_loud(0);
    EXPECT_EQ(ext_set_audio_output_volume(50), -1);
    EXPECT_EQ(rig::last_refusal(), "MI_AO_SetVolume: audio device 3 is not enabled (not ready)");
    EXPECT_EQ(audio_ctrl.mode, AUDIO_USE_OFF);
    EXPECT_EQ(ext_set_audio_live_channel(1, 0), 0);
    EXPECT_EQ(rig::last_refusal(), "MI_AO_SetMute: audio device 3 is not enabled (not ready)");
    const uint64_t refused = vboard_refusal_count();
    EXPECT_EQ(send_block(tone::Bytes(644, 0xD5)), 0) << "a failing frame does not fail the block";
    EXPECT_EQ(vboard_refusal_count() - refused, 2u);
}

TEST_F(NoOutput, IsSetUpByDeviceStart)
{
    DeviceParams params = {};
    params.vi_chn_num = 4;
    params.gui_width = 1920;
    params.gui_height = 1080;
    ASSERT_EQ(ext_device_init(&params), 0);
    EXPECT_EQ(audio_ctrl.chn_num, 4u);
    EXPECT_EQ(stat().rate_hz, 48000u);
    EXPECT_EQ(stat().input_rate_hz, 8000u);
    EXPECT_EQ(stat().decoding, 1u);
    EXPECT_EQ(send_block(tone::Bytes(644, 0xD5)), 0);
    EXPECT_EQ(stat().blocks, 2u);
    EXPECT_EQ(vboard_audio_wait_played(kDevice, rig::kPatience_ms), 0);
    EXPECT_EQ(stat().played, 2 * kFrameSamples);
}

/* Every call of the set-up refused once. */
TEST_F(NoOutput, FailsToStartWithEveryCallOfIts)
{
    vboard_set_loud(0);
    for (const char *call : {"MI_AO_SetPubAttr", "MI_AO_Enable", "MI_AO_EnableChn", "MI_AO_SetAdecAttr",
                             "MI_AO_EnableAdec", "MI_AO_EnableReSmp"}) {
        ASSERT_EQ(vboard_fault_set(call, 1, 1, rig::code(MI_MODULE_AO, MI_REASON_FAULT)), 0);
        EXPECT_EQ(audio_init(), -1) << call;
    }
    EXPECT_EQ(audio_init(), 0) << "and starts when nothing fails any more";
}

} // namespace
