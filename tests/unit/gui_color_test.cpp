/* Colour packing, the table of component widths, the cursor image, the painters' format codes. */
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "nvrhal.h"

namespace
{

/* The packing written out bit by bit. */
uint16_t packed_by_bits(uint32_t low, uint32_t middle, uint32_t high, const OsdCompInfo &widths)
{
    uint32_t pixel = 0, at = 0;
    auto put = [&](uint32_t component, uint32_t bits) {
        for (uint32_t bit = 0; bit < bits; ++bit)
            pixel |= (component >> (8 - bits + bit) & 1) << at++;
    };
    put(low, widths.low_bits);
    put(middle, widths.middle_bits);
    put(high, widths.high_bits);
    for (uint32_t bit = 0; bit < widths.alpha_bits; ++bit)
        pixel |= 0x8000u >> bit;
    return static_cast<uint16_t>(pixel);
}

uint16_t pack(int32_t low, int32_t middle, int32_t high, const OsdCompInfo &widths)
{
    return OSD_MAKECOLOR_U16(low, middle, high, widths.alpha_bits, widths.low_bits, widths.middle_bits,
                             widths.high_bits);
}

} // namespace

TEST(ComponentTable, ListsEightFormats)
{
    const OsdCompInfo expected[8] = {{0, 4, 4, 4}, {4, 4, 4, 4}, {0, 5, 5, 5}, {0, 5, 6, 5},
                                     {1, 5, 5, 5}, {0, 0, 0, 0}, {0, 8, 8, 8}, {8, 8, 8, 8}};
    for (int code = 0; code < 8; ++code) {
        EXPECT_EQ(s_OSDCompInfo[code].alpha_bits, expected[code].alpha_bits) << code;
        EXPECT_EQ(s_OSDCompInfo[code].low_bits, expected[code].low_bits) << code;
        EXPECT_EQ(s_OSDCompInfo[code].middle_bits, expected[code].middle_bits) << code;
        EXPECT_EQ(s_OSDCompInfo[code].high_bits, expected[code].high_bits) << code;
    }
}

TEST(MakeColor, PacksEveryComponentOfThe16BitFormats)
{
    for (int code : {0, 1, 2, 3, 4}) {
        const OsdCompInfo &widths = s_OSDCompInfo[code];
        for (uint32_t value = 0; value < 256; ++value) {
            EXPECT_EQ(pack(value, 0, 0, widths), packed_by_bits(value, 0, 0, widths)) << code;
            EXPECT_EQ(pack(0, value, 0, widths), packed_by_bits(0, value, 0, widths)) << code;
            EXPECT_EQ(pack(0, 0, value, widths), packed_by_bits(0, 0, value, widths)) << code;
        }
    }
    EXPECT_EQ(pack(255, 255, 255, s_OSDCompInfo[3]), 0xFFFF);
    EXPECT_EQ(pack(0, 0, 255, s_OSDCompInfo[3]), 0xF800);
    EXPECT_EQ(pack(0, 0, 0, s_OSDCompInfo[4]), 0x8000);
    EXPECT_EQ(pack(0, 0, 0, s_OSDCompInfo[1]), 0xF000);
}

// With unequal widths the middle component does not land where the low one ends.
TEST(MakeColor, ShiftsTheMiddleByTheHighComponentsWidth)
{
    EXPECT_EQ(OSD_MAKECOLOR_U16(0, 0xFF, 0, 0, 3, 2, 6), 0x03 << 6);
    EXPECT_EQ(OSD_MAKECOLOR_U16(0, 0, 0xFF, 0, 3, 2, 6), 0x3F << 8);
    EXPECT_EQ(OSD_MAKECOLOR_U16(0xFF, 0, 0, 0, 3, 2, 6), 0x07);
}

TEST(MakeColor, CutsTheResultTo16Bits)
{
    EXPECT_EQ(pack(0x12, 0x34, 0x56, s_OSDCompInfo[6]), 0x3412);
    EXPECT_EQ(pack(0x12, 0x34, 0x56, s_OSDCompInfo[7]), 0xFF12 | 0x3400);
}

TEST(MakeColor, WidthsOutOfRangeCountAsTheLargest)
{
    EXPECT_EQ(OSD_MAKECOLOR_U16(0xAB, 0, 0, 0, 9, 8, 8), 0xAB);
    EXPECT_EQ(OSD_MAKECOLOR_U16(0xAB, 0, 0, 0, UINT32_MAX, 0, 0), 0xAB);
    EXPECT_EQ(OSD_MAKECOLOR_U16(0, 0xCD, 0, 0, 0, UINT32_MAX, 4), 0xCD << 4 & 0xFFFF);
    EXPECT_EQ(OSD_MAKECOLOR_U16(0, 0, 0, UINT32_MAX, 0, 0, 0), 0xFFFF);
    EXPECT_EQ(OSD_MAKECOLOR_U16(0, 0, 0, 16, 0, 0, 0), 0xFFFF);
    EXPECT_EQ(OSD_MAKECOLOR_U16(-1, 0, 0, 0, 5, 5, 5), 0xFF) << "only the low eight bits after the shift";
}

TEST(PainterFormat, FollowsDepthAndAlphaWidth)
{
    struct Case {
        uint32_t bits, alpha_bits;
        int32_t code;
    };
    const Case cases[] = {{16, 0, 1}, {16, 1, 6},  {16, 4, 2},  {16, 2, 12}, {16, 8, 12},
                          {32, 0, 5}, {32, 8, 5},  {32, 3, 5},  {24, 0, 12}, {24, 8, 12},
                          {8, 0, 12}, {15, 1, 12}, {12, 4, 12}, {0, 0, 12},  {64, 8, 12}};
    for (const Case &screen : cases) {
        fb_var_screeninfo variable = {};
        variable.bits_per_pixel = screen.bits;
        variable.transp.length = screen.alpha_bits;
        EXPECT_EQ(getFBColorFmt(&variable), screen.code) << screen.bits << " bits, " << screen.alpha_bits;
    }
    EXPECT_EQ(getFBColorFmt(nullptr), 12);
}

TEST(Cursor, IsAnArrowWithItsTipInTheCorner)
{
    ASSERT_EQ(MOUSE_IMAGE_WIDTH, 32);
    ASSERT_EQ(MOUSE_IMAGE_HEIGHT, 32);
    constexpr uint16_t kBackground = 0x001F, kBody = 0x7FFF;
    const std::set<uint16_t> allowed = {kBackground, kBody, 0x0C6B, 0x0C6C, 0x0000};
    int right = 0, bottom = 0;
    std::set<uint16_t> used;
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x) {
            const uint16_t pixel = CurseValue[y * 32 + x];
            used.insert(pixel);
            if (pixel == kBackground) continue;
            right = std::max(right, x + 1);
            bottom = std::max(bottom, y + 1);
        }
    }
    EXPECT_EQ(used, allowed);
    EXPECT_EQ(right, 11);
    EXPECT_EQ(bottom, 21);
    EXPECT_NE(CurseValue[0], kBackground) << "the tip";
    EXPECT_EQ(CurseValue[1], kBackground);
}

// Seen from the background, the body stands behind an outline everywhere.
TEST(Cursor, BodyNeverTouchesTheBackground)
{
    auto at = [](int x, int y) -> uint16_t {
        return x < 0 || y < 0 || x > 31 || y > 31 ? 0x001F : CurseValue[y * 32 + x];
    };
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x) {
            if (at(x, y) != 0x7FFF) continue;
            for (auto [dx, dy] : {std::pair(1, 0), std::pair(-1, 0), std::pair(0, 1), std::pair(0, -1)})
                EXPECT_NE(at(x + dx, y + dy), 0x001F) << x << ", " << y;
        }
    }
}

#if UINTPTR_MAX == UINT32_MAX
TEST(OsdRecord, HasTheLayoutOfThe32BitTarget)
{
    EXPECT_EQ(offsetof(OsdInfo, mapped_address), 24u);
    EXPECT_EQ(offsetof(OsdInfo, descriptor), 40u);
    EXPECT_EQ(offsetof(OsdInfo, fixed), 68u);
    EXPECT_EQ(sizeof(OsdSurface), 16u);
}
#endif
