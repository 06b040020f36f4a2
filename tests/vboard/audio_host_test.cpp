/* The decoder and the resampler by themselves. */
#include <gtest/gtest.h>

#include "audio_tone.h"
#include "host/a_law.h"
#include "host/resampler.h"

namespace
{

TEST(ALaw, IsDecodedAsItIsDefined)
{
    const vboard::ALawTable *table = vboard::a_law_table();
    ASSERT_NE(table, nullptr);
    for (unsigned byte = 0; byte < 256; ++byte)
        EXPECT_EQ((*table)[byte], tone::expand(static_cast<uint8_t>(byte))) << byte;
    EXPECT_EQ((*table)[0xD5], 8);
    EXPECT_EQ((*table)[0xAA], 32256);
    EXPECT_EQ((*table)[0x2A], -32256);
}

TEST(Resampler, GivesSixSamplesForOneFromTheFirstBlockOn)
{
    for (size_t block : {1u, 7u, 320u, 1000u}) {
        const auto resampler = vboard::Resampler::create(8000, 48000);
        ASSERT_NE(resampler, nullptr);
        const tone::Samples in(block, 1000);
        std::vector<float> out;
        for (size_t n = 1; n <= 20; ++n) {
            ASSERT_TRUE(resampler->convert(in.data(), in.size(), out));
            ASSERT_EQ(out.size(), 6 * block * n) << "block " << n << " of " << block;
        }
    }
}

TEST(Resampler, DoesNotCareWhereBlocksEnd)
{
    const tone::Samples in = tone::expanded(tone::sine(1013, 20000, 1600));
    const auto whole = vboard::Resampler::create(8000, 48000);
    const auto pieces = vboard::Resampler::create(8000, 48000);
    std::vector<float> expected;
    std::vector<float> out;
    ASSERT_TRUE(whole->convert(in.data(), in.size(), expected));
    for (size_t at = 0; at < in.size(); at += 320)
        ASSERT_TRUE(pieces->convert(in.data() + at, 320, out));
    EXPECT_EQ(out, expected);
}

TEST(Resampler, ForgetsTheOldSound)
{
    const auto resampler = vboard::Resampler::create(8000, 48000);
    const tone::Samples loud(320, 30000);
    const tone::Samples silence(320, 0);
    std::vector<float> out;
    ASSERT_TRUE(resampler->convert(loud.data(), loud.size(), out));
    ASSERT_TRUE(resampler->restart());
    out.clear();
    ASSERT_TRUE(resampler->convert(silence.data(), silence.size(), out));
    EXPECT_EQ(out, std::vector<float>(1920, 0.0F));
}

TEST(Resampler, RefusesNoRate)
{
    EXPECT_EQ(vboard::Resampler::create(0, 48000), nullptr);
    EXPECT_EQ(vboard::Resampler::create(8000, 0), nullptr);
}

} // namespace
