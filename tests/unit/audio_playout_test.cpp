/* The board's sound card at any rate: what is due when, and what is remembered. */
#include "media/ao_playout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>

using vboard::Playout;
using vboard::SoundHistory;

namespace
{

constexpr uint32_t kRates_hz[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
constexpr int64_t kStart_us = 123456789;

/* The waits that are worked out end when there is room, and not a microsecond earlier. */
TEST(Playout, HasRoomExactlyWhenItSays)
{
    std::mt19937 random(7);
    for (const uint32_t rate_hz : kRates_hz) {
        SCOPED_TRACE(rate_hz);
        constexpr size_t kCapacity = 4000;
        Playout playout(rate_hz, kCapacity);
        int64_t now_us = kStart_us;
        for (int i = 0; i < 300; ++i) {
            const size_t block = 1 + random() % kCapacity;
            playout.settle(now_us);
            if (!playout.has_room(block)) {
                const int64_t room_us = playout.room_at_us(block);
                ASSERT_GT(room_us, now_us);
                playout.settle(room_us - 1);
                EXPECT_FALSE(playout.has_room(block));
                playout.settle(room_us);
                EXPECT_TRUE(playout.has_room(block));
                now_us = room_us;
            }
            playout.queue(std::vector<float>(block), now_us);
            ASSERT_LE(playout.queued(), kCapacity);
        }
        const int64_t empty_us = playout.empty_at_us();
        playout.settle(empty_us - 1);
        EXPECT_GT(playout.queued(), 0u);
        playout.settle(empty_us);
        EXPECT_EQ(playout.queued(), 0u);
    }
}

/* Sounds spread over a day: each begins with its block and keeps time with the clock. */
TEST(Playout, KeepsTimeForADay)
{
    for (const uint32_t rate_hz : {11025u, 44100u, 48000u}) {
        Playout playout(rate_hz, rate_hz);
        int64_t now_us = kStart_us;
        uint64_t queued = 0;
        for (int i = 0; i < 200; ++i) { // seven minutes apart
            playout.queue(std::vector<float>(rate_hz / 2), now_us);
            queued += rate_hz / 2;
            now_us += 250001;
            const int64_t due = 250001 * int64_t{rate_hz} / 1000000;
            EXPECT_EQ(playout.settle(now_us).size(), static_cast<size_t>(due));
            now_us += 432000001;
            playout.settle(now_us);
        }
        EXPECT_EQ(playout.history().total(), queued);
        EXPECT_EQ(playout.ran_dry(), 200u);
    }
}

TEST(Playout, PlaysWhatItWasGivenInPiecesOfAnySize)
{
    std::mt19937 random(11);
    Playout playout(48000, 480000);
    std::vector<float> sound(480000);
    for (size_t i = 0; i < sound.size(); ++i)
        sound[i] = static_cast<float>(static_cast<int>(i % 65536) - 32768) / 32768;
    playout.queue(sound, kStart_us);
    std::vector<int16_t> out;
    for (int64_t now_us = kStart_us; playout.queued() > 0; now_us += random() % 100000) {
        const std::vector<int16_t> &played = playout.settle(now_us);
        out.insert(out.end(), played.begin(), played.end());
    }
    ASSERT_EQ(out.size(), sound.size());
    for (size_t i = 0; i < out.size(); ++i)
        ASSERT_EQ(out[i], static_cast<int>(i % 65536) - 32768) << i;
    EXPECT_EQ(playout.clipped(), 0u);
}

TEST(Playout, RoundsOnceAndHoldsAtFullScale)
{
    Playout playout(8000, 8000);
    playout.set_gain(10);
    playout.queue({0.5F, -0.5F, 0.1F, -0.1F, 1.0F / 32768 * 0.04F, 1.0F / 32768 * 0.06F, 3276.6F / 32768}, 0);
    EXPECT_EQ(playout.settle(1000000), (std::vector<int16_t>{32767, -32768, 32767, -32768, 0, 1, 32766}));
    EXPECT_EQ(playout.clipped(), 3u) << "-0.1 times 10 is full scale itself";
    playout.set_gain(0);
    playout.queue({0.5F, -1.0F}, 1000000);
    EXPECT_EQ(playout.settle(2000000), (std::vector<int16_t>{0, 0}));
}

TEST(Playout, ChangesTheGainBetweenTwoSamples)
{
    Playout playout(8000, 8000);
    playout.queue(std::vector<float>(8, 0.25F), 0);
    EXPECT_EQ(playout.settle(500), std::vector<int16_t>(4, 8192));
    playout.set_gain(0.5F);
    EXPECT_EQ(playout.settle(1000), std::vector<int16_t>(4, 4096));
}

TEST(SoundHistory, RemembersRunsWhereTheyLie)
{
    SoundHistory history(1000, 100); // 100 samples, one a millisecond
    const std::vector<int16_t> loud(10, 16384);
    history.begin_run(0);
    history.append(loud.data(), loud.size());
    history.begin_run(50000);
    history.append(loud.data(), loud.size());
    EXPECT_NEAR(history.level(60000, 10).rms, 0.5, 1e-9);
    EXPECT_NEAR(history.level(60000, 40).rms, 0.5 * std::sqrt(0.25), 1e-9);
    EXPECT_NEAR(history.level(60000, 60).rms, 0.5 * std::sqrt(20.0 / 60), 1e-9);
    EXPECT_NEAR(history.level(60000, 55).rms, 0.5 * std::sqrt(15.0 / 55), 1e-9);
    EXPECT_EQ(history.level(100000, 30).peak, 0);
}

TEST(SoundHistory, KeepsTheLastSamplesOnly)
{
    SoundHistory history(1000, 100);
    std::vector<int16_t> counted(250);
    std::iota(counted.begin(), counted.end(), int16_t{0});
    for (int piece = 0; piece < 25; ++piece) {
        history.begin_run(piece * 20000);
        history.append(counted.data() + piece * 10, 10);
    }
    EXPECT_EQ(history.total(), 250u);
    EXPECT_EQ(history.first_kept(), 150u);
    std::vector<int16_t> seen(100);
    EXPECT_EQ(history.read(150, seen.data(), 200), 100u);
    EXPECT_EQ(seen, std::vector<int16_t>(counted.begin() + 150, counted.end()));
    EXPECT_EQ(history.read(250, seen.data(), 1), 0u);
}

} // namespace
