/* The recorder's eye on its decoders: pictures that never come of what they are sent. */
#include <chrono>
#include <cstdint>

#include <gtest/gtest.h>

#include "camera/decoder_watch.h"

namespace
{

using namespace std::chrono_literals;
using nvrec::Clock;

class NvrecDecoderWatch : public testing::Test
{
protected:
    bool is_barren(uint64_t decoded, Clock::duration at) const
    {
        return watch_.barren_since(decoded, start_ + at).has_value();
    }

    const Clock::time_point start_ = Clock::time_point(1h);
    nvrec::DecoderWatch watch_;
};

TEST_F(NvrecDecoderWatch, PicturesThatComeAreNoTrouble)
{
    for (int second = 0; second < 20; second += 2) {
        watch_.key_sent(static_cast<uint64_t>(second) * 25, start_ + second * 1s);
        EXPECT_FALSE(is_barren(static_cast<uint64_t>(second) * 25 + 1, second * 1s + 1900ms));
    }
}

TEST_F(NvrecDecoderWatch, TwoKeyFramesWithoutAPictureForThreeSecondsAre)
{
    watch_.key_sent(7, start_);
    EXPECT_FALSE(is_barren(7, 10s)) << "the first picture may come any time";
    watch_.key_sent(7, start_ + 2s);
    EXPECT_FALSE(is_barren(7, 2900ms)) << "a decoder may be slow";
    EXPECT_TRUE(is_barren(7, 3s));
    watch_.key_sent(7, start_ + 4s);
    EXPECT_EQ(watch_.barren_since(7, start_ + 4s), start_);
}

TEST_F(NvrecDecoderWatch, OnePictureEndsIt)
{
    watch_.key_sent(7, start_);
    watch_.key_sent(7, start_ + 4s);
    ASSERT_TRUE(is_barren(7, 4s));
    EXPECT_FALSE(is_barren(8, 5s));
    watch_.key_sent(8, start_ + 6s);
    EXPECT_FALSE(is_barren(8, 20s)) << "it counts from the picture on";
}

TEST_F(NvrecDecoderWatch, WhatWasMendedIsWellFromThenOn)
{
    watch_.key_sent(7, start_);
    watch_.key_sent(7, start_ + 2s);
    EXPECT_FALSE(is_barren(7, 2s));
    EXPECT_FALSE(is_barren(8, 2500ms));
    EXPECT_EQ(watch_.well_since(), std::nullopt) << "nobody was told of a trouble";
    watch_.key_sent(8, start_ + 4s);
    watch_.key_sent(8, start_ + 6s);
    ASSERT_TRUE(is_barren(8, 8s));
    watch_.begin_again();
    EXPECT_FALSE(is_barren(8, 9s));
    EXPECT_EQ(watch_.well_since(), std::nullopt) << "a layout mends nothing";
    EXPECT_FALSE(is_barren(9, 10s));
    EXPECT_FALSE(is_barren(20, 15s));
    EXPECT_EQ(watch_.well_since(), start_ + 10s);
}

/* Many key frames a second, the first of which is still being decoded. */
TEST_F(NvrecDecoderWatch, KeyFramesAloneHaveThreeSecondsAsWell)
{
    for (int frame = 0; frame < 50; ++frame)
        watch_.key_sent(0, start_ + frame * 40ms);
    EXPECT_FALSE(is_barren(0, 2s));
    EXPECT_TRUE(is_barren(0, 3s));
}

TEST_F(NvrecDecoderWatch, WhatALayoutThrewAwayIsNotHeldAgainstTheDecoder)
{
    watch_.key_sent(7, start_);
    watch_.begin_again();
    watch_.key_sent(7, start_ + 8s);
    EXPECT_FALSE(is_barren(7, 10s));
    watch_.key_sent(7, start_ + 16s);
    EXPECT_TRUE(is_barren(7, 16s));
}

} // namespace
