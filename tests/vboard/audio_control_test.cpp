/* The control face of the audio output: state, level meter, samples. */
#include <cmath>

#include "audio_speaker.h"

using namespace speaker;

namespace
{

vboard_audio_level level(uint32_t window_ms)
{
    vboard_audio_level now = {};
    EXPECT_EQ(vboard_audio_get_level(kDevice, window_ms, &now), 0);
    return now;
}

TEST_F(Speaker, TellsItsStateAfterStartUp)
{
    const vboard_audio_stat now = stat();
    EXPECT_EQ(now.enabled, 1u);
    EXPECT_EQ(now.channel_enabled, 1u);
    EXPECT_EQ(now.decoding, 1u);
    EXPECT_EQ(now.muted, 0u);
    EXPECT_EQ(now.volume_db, 0);
    EXPECT_EQ(now.rate_hz, 48000u);
    EXPECT_EQ(now.input_rate_hz, 8000u);
    EXPECT_EQ(now.queued, 0u);
    EXPECT_EQ(now.capacity, kCapacity);
    EXPECT_EQ(now.blocks, 0u);
    EXPECT_EQ(now.played, 0u);
    EXPECT_EQ(now.ran_dry, 0u);
    EXPECT_EQ(stat(0).enabled, 0u) << "no other device is";
    EXPECT_EQ(stat(0).rate_hz, 0u);
}

TEST_F(Speaker, MeasuresTheLevelOfTheLastMilliseconds)
{
    EXPECT_EQ(level(100).peak_dbfs, VBOARD_AUDIO_SILENCE_DBFS) << "nothing was played yet";
    say(tone::sine(1000, 16384, 6 * kFrameBytes)); // -6.02 dBFS
    ASSERT_EQ(vboard_clock_step_us(6 * kFrame_us), 0);
    EXPECT_NEAR(level(200).peak_dbfs, -6.02, 0.3);
    EXPECT_NEAR(level(200).rms_dbfs, -9.03, 0.2); // A-law's steps, and 2 ms of the filter at the start

    // 240 ms of sound, then 240 ms of nothing: half the power, and the same peak.
    ASSERT_EQ(vboard_clock_step_us(6 * kFrame_us), 0);
    EXPECT_NEAR(level(480).rms_dbfs, -12.04, 0.2);
    EXPECT_NEAR(level(480).peak_dbfs, -6.02, 0.3);
    EXPECT_EQ(level(240).peak_dbfs, VBOARD_AUDIO_SILENCE_DBFS) << "the window holds the pause alone";
    EXPECT_EQ(level(240).rms_dbfs, VBOARD_AUDIO_SILENCE_DBFS);
    EXPECT_NEAR(level(10000).rms_dbfs, -9.03 + 10 * std::log10(0.024), 0.2);
}

/* Sounds with pauses between them are measured where they lie. */
TEST_F(Speaker, MeasuresAcrossPauses)
{
    for (int i = 0; i < 5; ++i) {
        say(tone::sine(1000, 16384, kFrameBytes));
        ASSERT_EQ(vboard_clock_step_us(2 * kFrame_us), 0);
    }
    EXPECT_NEAR(level(400).rms_dbfs, -9.03 - 3.01, 0.4) << "half of the time";
    EXPECT_EQ(level(40).rms_dbfs, VBOARD_AUDIO_SILENCE_DBFS);
    EXPECT_NEAR(level(80).rms_dbfs, -9.03 - 3.01, 0.4);
    EXPECT_EQ(stat().ran_dry, 5u);
}

TEST_F(Speaker, MeasuresBehindTheVolume)
{
    ASSERT_EQ(ext_set_audio_output_volume(50), 0);
    say(tone::sine(1000, 16384, 5 * kFrameBytes));
    ASSERT_EQ(vboard_clock_step_us(5 * kFrame_us), 0);
    EXPECT_NEAR(level(150).rms_dbfs, -9.03 - 15, 0.5);
}

TEST_F(Speaker, LendsTheLastTenSecondsOfSamples)
{
    constexpr uint64_t kKept = 480000;
    say(tone::sine(1013, 10000, 11 * 8000));
    play_out();
    ASSERT_EQ(stat().played, 11u * 48000);
    const uint64_t first_kept = stat().played - kKept;
    tone::Samples samples(kKept);
    EXPECT_EQ(vboard_audio_read(kDevice, first_kept, samples.data(), samples.size()), int64_t{kKept});
    EXPECT_LT(tone::fit(samples, 1013, tone::kOutputRate_hz).rest_peak, 500)
        << "in order, across the ring's end";
    EXPECT_EQ(vboard_audio_read(kDevice, stat().played - 3, samples.data(), 10), 3) << "what there is";
    EXPECT_EQ(vboard_audio_read(kDevice, stat().played, samples.data(), 10), 0);
    EXPECT_EQ(vboard_audio_read(kDevice, UINT64_MAX, samples.data(), 10), 0);
    vboard_set_loud(0);
    EXPECT_EQ(vboard_audio_read(kDevice, first_kept - 1, samples.data(), 10), -1);
}

TEST_F(Speaker, RefusesWhatMakesNoSense)
{
    vboard_set_loud(0);
    vboard_audio_stat now;
    vboard_audio_level loud;
    int16_t sample;
    EXPECT_EQ(vboard_audio_get_stat(8, &now), -1);
    EXPECT_EQ(vboard_audio_get_stat(kDevice, nullptr), -1);
    EXPECT_EQ(vboard_audio_get_level(8, 100, &loud), -1);
    EXPECT_EQ(vboard_audio_get_level(kDevice, 0, &loud), -1);
    EXPECT_EQ(vboard_audio_get_level(kDevice, 10001, &loud), -1);
    EXPECT_EQ(vboard_audio_get_level(kDevice, 100, nullptr), -1);
    EXPECT_EQ(vboard_audio_read(8, 0, &sample, 1), -1);
    EXPECT_EQ(vboard_audio_read(kDevice, 0, nullptr, 1), -1);
    EXPECT_EQ(vboard_audio_wait_played(8, 0), -1);
    EXPECT_EQ(vboard_audio_open_wav(8, "/dev/null"), -1);
    EXPECT_EQ(vboard_audio_open_sound(8), -1);
    EXPECT_EQ(vboard_audio_close(8), -1);
    constexpr uint32_t kOff = 0; // a device that is not enabled
    EXPECT_EQ(vboard_audio_get_level(kOff, 100, &loud), -1);
    EXPECT_EQ(vboard_audio_read(kOff, 0, &sample, 1), -1);
    EXPECT_EQ(vboard_audio_wait_played(kOff, 0), -1);
    EXPECT_EQ(vboard_audio_open_wav(kOff, "/dev/null"), -1);
    EXPECT_EQ(vboard_audio_open_sound(kOff), -1);
    EXPECT_EQ(vboard_audio_close(kOff), 0);
    EXPECT_EQ(vboard_audio_get_stat(kOff, &now), 0);
}

TEST_F(Speaker, ForgetsEverythingWithThePower)
{
    ASSERT_EQ(ext_set_audio_output_volume(50), 0);
    say(tone::sine(1000, 10000, kFrameBytes));
    play_out();
    vboard_reset();
    EXPECT_EQ(stat().enabled, 0u);
    EXPECT_EQ(stat().volume_db, 0);
    EXPECT_EQ(stat().blocks, 0u);
    ASSERT_EQ(audio_init(), 0);
    EXPECT_EQ(stat().played, 0u);
}

} // namespace
