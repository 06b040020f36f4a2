/* Rectangles through the interface: the chosen painter, its texts, the test pattern. */
#include <gtest/gtest.h>

#include "gui_screen.h"

using gui_test::plug_framebuffer;
using gui_test::Screen;

namespace
{

void start(uint32_t bits, uint32_t alpha_bits)
{
    Screen screen;
    screen.bits = bits;
    screen.alpha_bits = alpha_bits;
    screen.stride = 1280 * (bits / 8);
    screen.memory = screen.stride * 720;
    plug_framebuffer(screen);
    ASSERT_EQ(fb_init(0, 1280, 720), 0);
    recording::platform.forget();
}

uint16_t pixel_16(uint32_t x, uint32_t y)
{
    return static_cast<const uint16_t *>(g_osd_info.mapped_address)[y * 1280 + x];
}

} // namespace

TEST(DrawRect, PaintsInTheFormatOfTheDevice)
{
    struct Case {
        uint32_t bits, alpha_bits;
        int32_t code;
        uint32_t colour, pixel;
    };
    // A colour whose packed value differs in every format.
    const Case cases[] = {
        {16, 0, 1, 0x80F0C884, 0xF650},
        {16, 4, 2, 0x80F0C884, 0xFFC8},
        {16, 1, 6, 0x80F0C884, 0xFB30},
        {32, 8, 5, 0x80F0C884, 0x80F0C884},
    };
    for (const Case &format : cases) {
        start(format.bits, format.alpha_bits);
        drawRect(3, 2, 5, 4, format.colour);
        const std::string code = std::to_string(format.code);
        EXPECT_PRINTED("drawRect[#]: Fmt = " + code + ", xywh[3,2,5,4] !!!!!!!!!!!!!");
        const auto *memory = static_cast<const uint8_t *>(g_osd_info.mapped_address);
        uint32_t pixel = 0;
        std::memcpy(&pixel, memory + 2 * g_osd_info.fixed.line_length + 3 * (format.bits / 8),
                    format.bits / 8);
        EXPECT_EQ(pixel, format.pixel) << "code " << code;
    }
}

TEST(DrawRect, RefusesFormatsWithoutAPainter)
{
    for (auto [bits, alpha_bits] : {std::pair(24u, 0u), std::pair(16u, 2u), std::pair(8u, 0u)}) {
        start(bits, alpha_bits);
        drawRect(0, 0, 100, 100, 0xFFFFFFFF);
        EXPECT_PRINTED_IN_ORDER("drawRect[#]: Fmt = 12, xywh[0,0,100,100] !!!!!!!!!!!!!\n"
                                "drawRect[#]: drawRect() not implemented for color Fmt 12");
        EXPECT_EQ(*static_cast<uint32_t *>(g_osd_info.mapped_address), 0u);
    }
}

TEST(DrawRect, WithoutAMappingThreePaintersSaySo)
{
    drawRect_rgb16(0, 0, 10, 10, 0xFFFFFFFF);
    EXPECT_PRINTED_AS_ERROR("fb.c", "fb init fail");
    recording::forget_printed();
    drawRect_rgb15(0, 0, 10, 10, 0xFFFFFFFF);
    EXPECT_PRINTED_AS_ERROR("fb.c", "fb init fail");
    recording::forget_printed();
    drawRect_rgb32(0, 0, 10, 10, 0xFFFFFFFF);
    EXPECT_PRINTED_AS_ERROR("fb.c", "fb init fail");
}

TEST(DrawRect, WithoutAMappingTheFourBitPainterIsSilent)
{
    g_osd_info.mapped_length = 1 << 20;
    g_osd_info.fixed.line_length = 2560;
    drawRect_rgb12(0, 0, 10, 10, 0xFFFFFFFF);
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(DrawRect, AnEmptyRectangleOnlyPrintsItsTrace)
{
    start(16, 1);
    for (auto [width, height] : {std::pair(0, 5), std::pair(5, 0), std::pair(-3, 5), std::pair(5, -3)}) {
        recording::forget_printed();
        drawRect(0, 0, width, height, 0xFFFFFFFF);
        EXPECT_EQ(recording::printed_lines().size(), 1u);
        EXPECT_EQ(pixel_16(0, 0), 0);
    }
}

TEST(DrawRect, FollowsThePannedView)
{
    Screen screen;
    screen.x_offset = 7;
    screen.y_offset = 9;
    plug_framebuffer(screen);
    ASSERT_EQ(fb_init(0, 1280, 720), 0);
    drawRect(1, 2, 1, 1, 0xFFFFFFFF);
    EXPECT_EQ(pixel_16(8, 11), 0xFFFF);
    EXPECT_EQ(pixel_16(1, 2), 0);
}

TEST(FillRect, TakesFourShortWords)
{
    start(16, 1);
    const uint16_t rect[4] = {10, 20, 2, 1};
    EXPECT_EQ(ST_Fb_FillRect(rect, 0x01FFFFFF), 0);
    EXPECT_PRINTED("drawRect[#]: Fmt = 6, xywh[10,20,2,1] !!!!!!!!!!!!!");
    EXPECT_EQ(pixel_16(9, 20), 0);
    EXPECT_EQ(pixel_16(10, 20), 0xFFFF);
    EXPECT_EQ(pixel_16(11, 20), 0xFFFF);
    EXPECT_EQ(pixel_16(12, 20), 0);
    recording::forget_printed();
    EXPECT_EQ(ST_Fb_FillRect(nullptr, 0), 0);
    EXPECT_EQ(recording::printed_text(), "");
}

// The fourth trace names blue where red is painted.
TEST(TestPattern, PaintsFourSquaresAndNamesThem)
{
    start(16, 1);
    EXPECT_EQ(ST_FBDrawRect(), 0);
    EXPECT_PRINTED_IN_ORDER(R"(
1 R:FF,G:0,B:0
drawRect[#]: Fmt = 6, xywh[100,100,200,200] !!!!!!!!!!!!!
2 R:0,G:FF,B:0
drawRect[#]: Fmt = 6, xywh[400,100,200,200] !!!!!!!!!!!!!
3 R:0,G:0,B:FF
drawRect[#]: Fmt = 6, xywh[800,100,200,200] !!!!!!!!!!!!!
4 R:0,G:0,B:FF
drawRect[#]: Fmt = 6, xywh[800,400,200,200] !!!!!!!!!!!!!)");
    EXPECT_EQ(pixel_16(100, 100), 0xFC00);
    EXPECT_EQ(pixel_16(299, 299), 0xFC00);
    EXPECT_EQ(pixel_16(300, 300), 0);
    EXPECT_EQ(pixel_16(400, 100), 0x83E0);
    EXPECT_EQ(pixel_16(800, 100), 0x801F);
    EXPECT_EQ(pixel_16(800, 399), 0);
    EXPECT_EQ(pixel_16(800, 400), 0xFC00);
    EXPECT_EQ(pixel_16(999, 599), 0xFC00);
}

TEST(TestPattern, HasItsColoursWholeWhereTheDeviceShowsThem)
{
    start(32, 8);
    EXPECT_EQ(ST_FBDrawRect(), 0);
    const auto *pixels = static_cast<const uint32_t *>(g_osd_info.mapped_address);
    EXPECT_EQ(pixels[100 * 1280 + 100], 0x80FF0000u);
    EXPECT_EQ(pixels[100 * 1280 + 400], 0x8000FF00u);
    EXPECT_EQ(pixels[100 * 1280 + 800], 0x800000FFu);
    EXPECT_EQ(pixels[400 * 1280 + 800], 0x80FF0000u);
}
