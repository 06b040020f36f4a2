/* playback_audio_test.cpp - recorded sound through the playback buffer: whole, paced, beside pictures. */
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "audio_speaker.h"
#include "playback_session.h"

using namespace session;
using speaker::kCapacity;
using speaker::kDevice;
using speaker::kFrame_us;
using speaker::kFrameBytes;
using speaker::kFrameSamples;

namespace
{

/* Four cameras in the wall, playback begun, the clock taken. */
class PlaybackSound : public Session
{
protected:
    void SetUp() override
    {
        Session::SetUp();
        show_live(1);
        ASSERT_EQ(deliver(speaker::block_of(tone::Bytes(kFrameBytes, 0x2A))), -1) << "off after start-up";
        ASSERT_EQ(ext_playback_start(0xF, 0), 0);
        vboard_clock_take();
    }
    void TearDown() override { vboard_clock_release(); }

    static int32_t deliver(const tone::Bytes &block)
    {
        FrameInfo rec = {};
        EXPECT_EQ(ext_playback_get_buf(&rec), 0);
        memcpy(rec.data, block.data(), block.size());
        rec.length = static_cast<uint32_t>(block.size());
        rec.media = FRAME_MEDIA_AUDIO;
        const int32_t result = ext_playback_set_buf(&rec);
        EXPECT_EQ(rec.data, nullptr);
        return result;
    }

    static void make_room()
    {
        while (speaker::stat().queued + kFrameSamples > kCapacity)
            ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
    }
};

TEST_F(PlaybackSound, IsHeardWholeBesideTheRecordedPictures)
{
    constexpr double kTone_hz = 1000, kAmplitude = 8000;
    constexpr size_t kFrames = 60;
    const rig::Stream pictures = recording(0);
    const tone::Bytes sound = tone::sine(kTone_hz, kAmplitude, kFrames * kFrameBytes);
    for (size_t i = 0; i < kFrames; ++i) {
        const auto begin = sound.begin() + static_cast<std::ptrdiff_t>(i * kFrameBytes);
        make_room();
        ASSERT_EQ(deliver(speaker::block_of({begin, begin + kFrameBytes})), 0);
        if (i % 2 != 0) continue;
        ASSERT_EQ(play(0, pictures.frames[i / 2]), 0);
    }
    speaker::play_out();
    settle(0);
    EXPECT_EQ(stamp_of(rig::look(), 0), (stamp::Stamp{kFirstRecording, 1029}));

    EXPECT_EQ(speaker::stat().blocks, kFrames);
    EXPECT_EQ(speaker::stat().played, kFrames * kFrameSamples);
    const tone::Samples heard = speaker::heard(kFrameSamples); // the resampler has settled by then
    EXPECT_NEAR(tone::frequency_hz(heard, tone::kOutputRate_hz), kTone_hz, 1);
    const tone::Fit fit = tone::fit(heard, kTone_hz, tone::kOutputRate_hz);
    EXPECT_NEAR(tone::decibels(fit.amplitude / kAmplitude), 0, 0.5);
    EXPECT_LT(fit.rest_peak, kAmplitude / 10) << "no click, gap or repetition at any block's edge";
}

/* The count of frames is that of 324 bytes each, so a block of several loses its last one. */
TEST_F(PlaybackSound, HoldsAFrameForEvery324Bytes)
{
    const struct {
        uint32_t bytes, frames;
    } rows[] = {{4, 0}, {323, 0}, {324, 1}, {644, 1}, {647, 1}, {648, 2}, {964, 2}, {1604, 4}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.bytes);
        const vboard_audio_stat before = speaker::stat();
        tone::Bytes block(row.bytes, 0xD5);  // A-law's silence
        std::fill_n(block.begin(), 4, 0x2A); // behind a header that would be loud
        EXPECT_EQ(deliver(block), 0);
        EXPECT_EQ(speaker::stat().blocks - before.blocks, row.frames);
        speaker::play_out();
        EXPECT_EQ(speaker::stat().played - before.played, row.frames * kFrameSamples);
        if (row.frames == 0) continue;
        for (const int16_t sample : speaker::heard(before.played))
            ASSERT_LT(std::abs(sample), 64);
    }
}

TEST_F(PlaybackSound, WaitsForRoomAndGoesOnWithTheClock)
{
    const tone::Bytes block = speaker::block_of(tone::Bytes(kFrameBytes, 0x2A));
    for (uint32_t i = 0; i < speaker::kFramesThatFit; ++i)
        ASSERT_EQ(deliver(block), 0);
    std::atomic<bool> delivered{false};
    std::thread player([&] {
        EXPECT_EQ(deliver(block), 0);
        delivered.store(true);
    });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0);
    EXPECT_FALSE(delivered.load());
    ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
    player.join();
    EXPECT_EQ(speaker::stat().blocks, speaker::kFramesThatFit + 1);
}

TEST_F(PlaybackSound, PlaysOnAfterStopAndEndsWithTheOutputSwitchedOff)
{
    const tone::Bytes block = speaker::block_of(tone::Bytes(kFrameBytes, 0x2A));
    ASSERT_EQ(ext_playback_stop(), 0);
    EXPECT_EQ(deliver(block), 0) << "the output serves live sound now, and is open";
    ASSERT_EQ(ext_playback_exit(), 0);
    EXPECT_EQ(deliver(block), 0);
    ASSERT_EQ(ext_set_audio_live_channel(0, 0), 0);
    EXPECT_EQ(deliver(block), -1);
    EXPECT_EQ(speaker::stat().blocks, 2u);
}

} // namespace
