/* Sound of network cameras that waits for its pictures, while the camera's clock is set. */
#include <cstdint>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "camera/sound.h"
#include "camera/waiting_sound.h"

namespace
{

using nvrec::SoundBlock;
using nvrec::SoundPlace;

class NvrecWaitingSound : public testing::Test
{
protected:
    static constexpr int64_t kSecond_us = 1'000'000;
    static constexpr int64_t kHour_us = 3600 * kSecond_us;
    using Times = std::vector<int64_t>;

    void add(const Times &times_us, const std::optional<SoundPlace> &place)
    {
        std::vector<SoundBlock> blocks;
        for (const int64_t time_us : times_us)
            blocks.emplace_back().pts_us = time_us;
        sound_.add(blocks, offset_us_, place ? &*place : nullptr);
    }

    Times take(int64_t until_us)
    {
        Times times_us;
        for (const SoundBlock &block : sound_.take(until_us))
            times_us.push_back(block.pts_us);
        return times_us;
    }

    /* Pictures 40 ms apart, the last one at that time. */
    static SoundPlace at(int64_t last_us) { return {.before_us = last_us - 40'000, .last_us = last_us}; }

    nvrec::WaitingSound<SoundBlock> sound_;
    int64_t offset_us_ = 0;
};

TEST_F(NvrecWaitingSound, IsTakenUpToATime)
{
    offset_us_ = kSecond_us;
    add({0, 40'000, 80'000}, at(kSecond_us));
    EXPECT_EQ(take(kSecond_us + 40'000), (Times{kSecond_us, kSecond_us + 40'000}));
    EXPECT_EQ(sound_.first_us(), kSecond_us + 80'000);
    EXPECT_EQ(take(INT64_MAX), Times{kSecond_us + 80'000});
    EXPECT_EQ(sound_.first_us(), std::nullopt);
}

TEST_F(NvrecWaitingSound, OfAClockThatIsSetByAnHourIsLeftOut)
{
    for (const int64_t set_by_us : {kHour_us, -kHour_us}) {
        const int64_t now_us = 2 * kHour_us;
        offset_us_ = set_by_us; /* until the pictures have told of it */
        add({now_us, now_us + 40'000}, at(now_us));
        EXPECT_EQ(sound_.first_us(), std::nullopt) << set_by_us;
        offset_us_ = 0;
        add({now_us + 80'000}, at(now_us + 80'000));
        EXPECT_EQ(take(now_us + 80'000), Times{now_us + 80'000}) << set_by_us;
    }
}

TEST_F(NvrecWaitingSound, OfAClockThatIsSetByASecondKeepsNoOtherSoundWaiting)
{
    const int64_t now_us = kHour_us;
    add({now_us + kSecond_us}, at(now_us));
    add({now_us + 40'000}, at(now_us + 40'000));
    EXPECT_EQ(take(now_us + 40'000), Times{now_us + 40'000});
    EXPECT_EQ(sound_.first_us(), std::nullopt);
}

TEST_F(NvrecWaitingSound, OfALongPauseBetweenTwoPicturesIsKept)
{
    const int64_t now_us = kHour_us;
    add({now_us - 9 * kSecond_us, now_us - kSecond_us},
        SoundPlace{.before_us = now_us - 10 * kSecond_us, .last_us = now_us});
    EXPECT_EQ(take(now_us).size(), 2u);
}

TEST_F(NvrecWaitingSound, OfAFileIsKeptHoweverFarItGoesOn)
{
    add({kHour_us, 2 * kHour_us}, std::nullopt);
    EXPECT_EQ(take(INT64_MAX).size(), 2u);
}

} // namespace
