/* scaler_test.cpp - the scaler that composition uses: where it writes, what it keeps, when it refuses. */
#include <gtest/gtest.h>

#include <vector>

#include "board_rig.h"
#include "host/scaler.h"

namespace
{

using rig::Bytes;
using rig::Picture;

Picture flat(int width, int height, uint8_t y, uint8_t u, uint8_t v)
{
    Picture picture{width, height, Bytes(static_cast<size_t>(width) * static_cast<size_t>(height), y)};
    const size_t chroma = static_cast<size_t>((width + 1) / 2) * static_cast<size_t>((height + 1) / 2);
    picture.bytes.insert(picture.bytes.end(), chroma, u);
    picture.bytes.insert(picture.bytes.end(), chroma, v);
    return picture;
}

struct Sizes {
    int from_width, from_height, width, height;
};

constexpr Sizes kSizes[] = {
    {704, 576, 480, 270},  {704, 576, 640, 360}, {704, 576, 704, 540},   {704, 576, 98, 74},
    {640, 360, 638, 358},  {640, 360, 960, 540}, {1280, 720, 1366, 768}, {1280, 720, 454, 256},
    {641, 361, 480, 270},  {33, 17, 480, 270},   {2, 2, 64, 64},         {640, 360, 2, 2},
    {1920, 1080, 18, 600}, {640, 360, 320, 180}, {320, 180, 640, 360},
};

TEST(Scaler, WritesItsPlaceAndNothingBesideIt)
{
    constexpr int kLeft = 34;
    constexpr int kTop = 10;
    for (const Sizes &size : kSizes) {
        const Picture source = flat(size.from_width, size.from_height, 200, 90, 40);
        const int wall_width = size.width + 120;
        const int wall_height = size.height + 20;
        Picture wall = flat(wall_width, wall_height, 1, 2, 3);
        vboard::PlanarView from;
        vboard::MutablePlanarView canvas;
        for (int plane = 0; plane < 3; ++plane) {
            from.plane[plane] = plane == 0 ? source.luma() : source.chroma(plane);
            from.stride[plane] = plane == 0 ? source.width : (source.width + 1) / 2;
            canvas.plane[plane] = const_cast<uint8_t *>(plane == 0 ? wall.luma() : wall.chroma(plane));
            canvas.stride[plane] = plane == 0 ? wall_width : wall_width / 2;
        }
        from.width = source.width;
        from.height = source.height;
        canvas.width = wall_width;
        canvas.height = wall_height;
        vboard::Scaler scaler;
        ASSERT_TRUE(scaler.scale(from, vboard::part_of(canvas, kLeft, kTop, size.width, size.height)));

        const auto name = [&] {
            return std::to_string(size.from_width) + "x" + std::to_string(size.from_height) + " to " +
                   std::to_string(size.width) + "x" + std::to_string(size.height);
        };
        const uint8_t inside[] = {200, 90, 40};
        for (int plane = 0; plane < 3; ++plane) {
            const int shift = plane == 0 ? 0 : 1;
            const uint8_t *row = plane == 0 ? wall.luma() : wall.chroma(plane);
            for (int y = 0; y < wall_height >> shift; ++y, row += wall_width >> shift)
                for (int x = 0; x < wall_width >> shift; ++x) {
                    const bool within = x >= kLeft >> shift && x < (kLeft + size.width) >> shift &&
                                        y >= kTop >> shift && y < (kTop + size.height) >> shift;
                    const int wanted = within ? inside[plane] : plane + 1;
                    // Filters may be off by one on flat areas; outside nothing may change at all.
                    ASSERT_NEAR(row[x], wanted, within ? 1 : 0)
                        << name() << " plane " << plane << " at " << x << "," << y;
                }
        }
    }
}

TEST(Scaler, EqualSizesAreCopied)
{
    EXPECT_EQ(vboard::choose_scale_method(640, 360, 640, 360), vboard::ScaleMethod::copy);
    const Picture source = rig::reference_decode(rig::load_stream("h264_640x360"))[0];
    EXPECT_TRUE(rig::scaled(source, 640, 360) == source);
}

TEST(Scaler, ChoosesByTheSizesAlone)
{
    using vboard::choose_scale_method;
    using vboard::ScaleMethod;
    EXPECT_EQ(choose_scale_method(1920, 1080, 960, 540), ScaleMethod::libyuv);
    EXPECT_EQ(choose_scale_method(1280, 720, 960, 540), ScaleMethod::libyuv);
    EXPECT_EQ(choose_scale_method(704, 576, 704, 540), ScaleMethod::libyuv);
    EXPECT_EQ(choose_scale_method(704, 576, 480, 270), ScaleMethod::libyuv);
    EXPECT_EQ(choose_scale_method(704, 576, 640, 360), ScaleMethod::libswscale);
    EXPECT_EQ(choose_scale_method(640, 360, 960, 540), ScaleMethod::libswscale);
    EXPECT_EQ(choose_scale_method(1920, 1080, 1366, 768), ScaleMethod::libswscale);
    EXPECT_EQ(choose_scale_method(1920, 1080, 100, 60), ScaleMethod::libswscale);
}

TEST(Scaler, RefusesEmptySizes)
{
    vboard::Scaler scaler;
    uint8_t byte = 0;
    vboard::PlanarView from;
    vboard::MutablePlanarView to;
    for (int plane = 0; plane < 3; ++plane) {
        from.plane[plane] = &byte;
        to.plane[plane] = &byte;
    }
    EXPECT_FALSE(scaler.scale(from, to));
    from.width = from.height = 1;
    EXPECT_FALSE(scaler.scale(from, to));
    to.width = 1;
    EXPECT_FALSE(scaler.scale(from, to));
    EXPECT_EQ(byte, 0);
}

} // namespace
