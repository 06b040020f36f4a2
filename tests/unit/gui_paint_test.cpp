/*
 * The painters against a plain reference, pixel by pixel, in a memory with guards on both sides.
 * The memory stands where fb_init would have mapped it.
 */
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <vector>

#include "nvrhal.h"
#include "recording_expect.h"

namespace
{

constexpr uint8_t kGuard = 0xC3;
constexpr uint8_t kOld = 0x3C;
constexpr size_t kGuard_bytes = 4096;

struct Painter {
    const char *name;
    void (*paint)(int32_t, int32_t, int32_t, int32_t, uint32_t);
    uint32_t pixel_bytes;
    uint32_t (*pack)(uint32_t red, uint32_t green, uint32_t blue, uint32_t colour);
};

const Painter kPainters[] = {
    {"rgb16", drawRect_rgb16, 2,
     [](uint32_t r, uint32_t g, uint32_t b, uint32_t) { return r / 8 * 2048 + g / 4 * 32 + b / 8; }},
    {"rgb12", drawRect_rgb12, 2,
     [](uint32_t r, uint32_t g, uint32_t b, uint32_t) {
         return 0xF000 + r / 16 * 256 + g / 16 * 16 + b / 16;
     }},
    {"rgb15", drawRect_rgb15, 2,
     [](uint32_t r, uint32_t g, uint32_t b, uint32_t colour) {
         return (colour >> 24 != 0 ? 0x8000 : 0) + r / 8 * 1024 + g / 8 * 32 + b / 8;
     }},
    {"rgb32", drawRect_rgb32, 4, [](uint32_t, uint32_t, uint32_t, uint32_t colour) { return colour; }},
};

void PrintTo(const Painter &painter, std::ostream *out)
{
    *out << painter.name;
}

uint32_t packed(const Painter &painter, uint32_t colour)
{
    return painter.pack(colour >> 16 & 255, colour >> 8 & 255, colour & 255, colour);
}

/* A framebuffer of plain memory; what is painted and what should be painted, side by side. */
class PaintedMemory
{
public:
    PaintedMemory(size_t bytes, uint32_t line_length)
        : storage_(bytes + 2 * kGuard_bytes, kGuard), expected_(bytes, kOld), bytes_(bytes),
          line_length_(line_length)
    {
        std::memset(memory(), kOld, bytes);
        g_osd_info.mapped_address = memory();
        g_osd_info.mapped_length = static_cast<uint32_t>(bytes);
        g_osd_info.fixed.line_length = line_length;
        g_osd_info.variable.xoffset = 0;
        g_osd_info.variable.yoffset = 0;
    }
    ~PaintedMemory() { g_osd_info.mapped_address = nullptr; }
    PaintedMemory(const PaintedMemory &) = delete;
    PaintedMemory &operator=(const PaintedMemory &) = delete;

    void pan(uint32_t x, uint32_t y)
    {
        g_osd_info.variable.xoffset = x;
        g_osd_info.variable.yoffset = y;
    }

    /* Pixel by pixel, in the widest arithmetic there is. */
    void expect(const Painter &painter, int64_t x, int64_t y, int64_t width, int64_t height, uint32_t colour)
    {
        const int64_t stride = line_length_ / painter.pixel_bytes;
        const int64_t total = static_cast<int64_t>(bytes_ / painter.pixel_bytes);
        const uint32_t pixel = packed(painter, colour);
        for (int64_t row = 0; row < height; ++row) {
            for (int64_t column = 0; column < width; ++column) {
                const int64_t at = (y + g_osd_info.variable.yoffset + row) * stride + x +
                                   g_osd_info.variable.xoffset + column;
                if (at < 0 || at >= total) continue;
                std::memcpy(&expected_[static_cast<size_t>(at) * painter.pixel_bytes], &pixel,
                            painter.pixel_bytes);
            }
        }
    }

    testing::AssertionResult matches() const
    {
        for (size_t i = 0; i < bytes_; ++i)
            if (storage_[kGuard_bytes + i] != expected_[i])
                return testing::AssertionFailure() << "byte " << i << ", row " << i / line_length_;
        return guards_stand();
    }

    testing::AssertionResult guards_stand() const
    {
        for (size_t i = 0; i < kGuard_bytes; ++i)
            if (storage_[i] != kGuard || storage_[kGuard_bytes + bytes_ + i] != kGuard)
                return testing::AssertionFailure() << "written outside, guard byte " << i;
        return testing::AssertionSuccess();
    }

    bool untouched() const { return std::memcmp(&storage_[kGuard_bytes], expected_.data(), bytes_) == 0; }

private:
    uint8_t *memory() { return &storage_[kGuard_bytes]; }

    std::vector<uint8_t> storage_;
    std::vector<uint8_t> expected_;
    size_t bytes_;
    uint32_t line_length_;
};

class Painting : public testing::TestWithParam<Painter>
{
};

} // namespace

TEST_P(Painting, PacksEveryComponentValue)
{
    const Painter &painter = GetParam();
    PaintedMemory memory(256, 64);
    auto check = [&](uint32_t colour) {
        painter.paint(1, 1, 1, 1, colour);
        memory.expect(painter, 1, 1, 1, 1, colour);
        EXPECT_TRUE(memory.matches()) << std::hex << colour;
    };
    for (uint32_t value = 0; value < 256; ++value)
        for (int shift : {0, 8, 16, 24})
            check(value << shift);
    for (uint32_t colour : {0x00FFFFFFu, 0x01000000u, 0x01FFFFFFu, 0x80FF0000u, 0xFFFFFFFFu})
        check(colour);
}

TEST_P(Painting, FillsEveryOffsetAndSize)
{
    const Painter &painter = GetParam();
    for (int32_t width = 0; width <= 40; ++width) {
        for (int32_t x = 0; x < 9; ++x) {
            PaintedMemory memory(12 * 256, 256);
            painter.paint(x, 2, width, width % 9, 0xA05A3C77);
            memory.expect(painter, x, 2, width, width % 9, 0xA05A3C77);
            ASSERT_TRUE(memory.matches()) << "x " << x << ", width " << width;
        }
    }
}

// Rows that are longer than a stride run on in the next one, those before the first row are cut.
TEST_P(Painting, IsNotClippedToTheScreenButToTheMemory)
{
    struct Rect {
        int32_t x, y, width, height;
    };
    const Rect rects[] = {
        {-5, 3, 10, 4},   {60, 3, 30, 4},   {0, 0, 64, 12},  {0, 0, 65, 12},  {3, -4, 20, 8},
        {3, 8, 20, 80},   {-70, 2, 100, 3}, {0, 12, 10, 10}, {0, 11, 200, 1}, {-300, 0, 400, 9},
        {10, -2, 200, 9}, {63, 11, 2, 2},   {-64, 1, 64, 1}, {0, -1, 64, 1},  {0, -1, 65, 1},
        {127, -2, 3, 40}, {-1, 0, 1, 12},
    };
    const Painter &painter = GetParam();
    for (const Rect &rect : rects) {
        PaintedMemory memory(12 * 128, 128);
        painter.paint(rect.x, rect.y, rect.width, rect.height, 0x805A3C77);
        memory.expect(painter, rect.x, rect.y, rect.width, rect.height, 0x805A3C77);
        EXPECT_TRUE(memory.matches()) << rect.x << "," << rect.y << " " << rect.width << "x" << rect.height;
    }
}

TEST_P(Painting, StandsUpToAnyRandomRectangle)
{
    const Painter &painter = GetParam();
    std::mt19937 random(20240611);
    auto number = [&](int32_t low, int32_t high) {
        return std::uniform_int_distribution<int32_t>(low, high)(random);
    };
    for (int round = 0; round < 3000; ++round) {
        const uint32_t line_length = static_cast<uint32_t>(number(0, 200));
        PaintedMemory memory(static_cast<size_t>(number(0, 3000)) & ~size_t{3}, line_length);
        memory.pan(static_cast<uint32_t>(number(0, 30)), static_cast<uint32_t>(number(0, 20)));
        const int32_t x = number(-250, 250), y = number(-40, 40), width = number(-5, 300),
                      height = number(-5, 60);
        const uint32_t colour = random();
        painter.paint(x, y, width, height, colour);
        memory.expect(painter, x, y, width, height, colour);
        ASSERT_TRUE(memory.matches()) << "round " << round << ": " << x << "," << y << " " << width << "x"
                                      << height << " stride " << line_length;
    }
}

TEST_P(Painting, ExtremeValuesEndAtOnceAndInside)
{
    const Painter &painter = GetParam();
    const int32_t extremes[] = {INT_MIN, INT_MIN + 1, -1, 0, 1, INT_MAX - 1, INT_MAX};
    for (uint32_t line_length : {0u, 1u, 2u, 4u, 128u, 0x7FFFFFFCu, UINT_MAX}) {
        PaintedMemory memory(12 * 128, line_length);
        for (uint32_t pan : {0u, UINT_MAX}) {
            memory.pan(pan, pan);
            for (int32_t x : extremes)
                for (int32_t y : extremes)
                    for (int32_t width : extremes)
                        for (int32_t height : extremes)
                            painter.paint(x, y, width, height, 0x12345678);
        }
        EXPECT_TRUE(memory.guards_stand()) << line_length;
    }
}

TEST_P(Painting, TheLargestRectangleCoversTheWholeMemory)
{
    const Painter &painter = GetParam();
    PaintedMemory memory(12 * 128, 128);
    painter.paint(INT_MAX, INT_MAX, INT_MAX, INT_MAX, 0xFF405060);
    painter.paint(INT_MIN, INT_MIN, INT_MAX, INT_MAX, 0xFF405060);
    EXPECT_TRUE(memory.untouched()) << "neither comes near it";
    painter.paint(INT_MIN / 2, INT_MIN / 2, INT_MAX, INT_MAX, 0xFF405060);
    memory.expect(painter, 0, 0, 12 * 128, 1, 0xFF405060);
    EXPECT_TRUE(memory.matches());
}

INSTANTIATE_TEST_SUITE_P(Formats, Painting, testing::ValuesIn(kPainters),
                         [](const auto &tested) { return tested.param.name; });

TEST(PaintedPixel, KeepsTheEdgesOfAlpha)
{
    PaintedMemory memory(64, 64);
    const auto *pixel = static_cast<const uint16_t *>(g_osd_info.mapped_address);
    drawRect_rgb15(0, 0, 1, 1, 0x00FFFFFF);
    EXPECT_EQ(*pixel, 0x7FFF);
    drawRect_rgb15(0, 0, 1, 1, 0x01FFFFFF);
    EXPECT_EQ(*pixel, 0xFFFF);
    drawRect_rgb12(0, 0, 1, 1, 0x00000000);
    EXPECT_EQ(*pixel, 0xF000);
    drawRect_rgb16(0, 0, 1, 1, 0xFFFFFFFF);
    EXPECT_EQ(*pixel, 0xFFFF);
}
