/* stamp_test.cpp - stamps survive scaling by odd ratios, and nothing else is taken for one. */
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "board_rig.h"

namespace
{

rig::Picture stamped(int width, int height, stamp::Stamp content)
{
    rig::Picture picture{width, height,
                         rig::Bytes(static_cast<size_t>(width) * static_cast<size_t>(height) * 3 / 2, 128)};
    stamp::draw(picture.bytes.data(), width, width, height, content);
    return picture;
}

TEST(Stamp, IsReadAfterScalingByAnyRatio)
{
    const stamp::Stamp content{42, 0xabcdef};
    const rig::Picture picture = stamped(704, 576, content);
    for (const auto &[width, height] :
         {std::pair(704, 576), {352, 288}, {176, 144}, {480, 270}, {1920, 1080}, {638, 358}, {100, 400}}) {
        const rig::Picture small = rig::scaled(picture, width, height);
        EXPECT_EQ(stamp::read(small.luma(), width, width, height), content) << width << " x " << height;
    }
}

TEST(Stamp, EveryChannelAndManyFramesComeBack)
{
    for (unsigned channel = 0; channel < 64; ++channel)
        for (const uint32_t frame : {0u, 1u, 0x555555u, 0xffffffu, channel * 4099u}) {
            const rig::Picture picture = stamped(160, 120, {channel, frame});
            EXPECT_EQ(stamp::read(picture.luma(), 160, 160, 120), (stamp::Stamp{channel, frame}));
        }
}

TEST(Stamp, IsNotFoundWhereNoneIs)
{
    rig::Picture picture = stamped(160, 120, {3, 77});
    EXPECT_FALSE(stamp::read(picture.luma() + 20, 160, 140, 120));
    EXPECT_FALSE(stamp::read(picture.luma(), 160, 80, 60));
    for (const uint8_t grey : {0, 16, 128, 235, 255}) {
        std::fill(picture.bytes.begin(), picture.bytes.end(), grey);
        EXPECT_FALSE(stamp::read(picture.luma(), 160, 160, 120)) << int{grey};
    }
    std::mt19937 generator(1);
    for (int round = 0; round < 1000; ++round) {
        picture =
            stamped(160, 120,
                    {static_cast<unsigned>(generator() % 64), static_cast<uint32_t>(generator() & 0xffffff)});
        const size_t cell = generator() % 48; // turn one cell over
        for (size_t y = cell / 8 * 10; y < cell / 8 * 10 + 10; ++y)
            for (size_t x = cell % 8 * 10; x < cell % 8 * 10 + 10; ++x)
                picture.bytes[y * 160 + x] = static_cast<uint8_t>(251 - picture.bytes[y * 160 + x]);
        EXPECT_FALSE(stamp::read(picture.luma(), 160, 160, 120));
    }
}

} // namespace
