/* The framebuffer's pixels over video, to the exact value: every depth, alpha, and transparent colours. */
#include <gtest/gtest.h>

#include <linux/fb.h>

#include <cstring>

#include "framebuffer_on_board.h"

using namespace gui_test;

TEST_F(FramebufferOnTheBoard, BlackLetsTheVideoThroughAndOthersCoverIt)
{
    start();
    EXPECT_TRUE(same_picture(captured(), plain_)) << "cleared to black by the set-up";
    ASSERT_EQ(ext_tde_begin_job(), 0);
    drawRect(100, 60, 200, 100, 0xFFFF0000);
    ASSERT_EQ(ext_tde_end_job(), 0);
    EXPECT_TRUE(same_picture(captured(), with_rectangle(100, 60, 200, 100, {255, 0, 0, 255})));
    drawRect(100, 60, 200, 100, 0xFF000000);
    EXPECT_TRUE(same_picture(captured(), plain_)) << "black with its alpha set is transparent as well";
}

// Chroma is shared by four pixels, of which a rectangle at an odd place covers one or two.
TEST_F(FramebufferOnTheBoard, EdgesAtOddPlacesMixTheirChroma)
{
    start();
    drawRect(101, 61, 33, 17, 0xFF20E040);
    // 0x20, 0xE0, 0x40 in five bits and back
    EXPECT_TRUE(same_picture(captured(), with_rectangle(101, 61, 33, 17, {0x21, 0xE7, 0x42, 255})));
}

TEST_F(FramebufferOnTheBoard, TheAlphaBitChoosesBetweenTwoValues)
{
    start();
    pixel<uint16_t>(8, 8) = 0xFC00;
    pixel<uint16_t>(12, 8) = 0x7C00;
    for (auto [set, clear] : {std::pair(255, 0), std::pair(128, 64), std::pair(0, 255), std::pair(1, 254)}) {
        use_alpha(1, 1, static_cast<uint8_t>(set), static_cast<uint8_t>(clear));
        EXPECT_TRUE(same_picture(captured(), covered(kWidth, kHeight, video_, [&](int x, int y) -> Colour {
                                     if (y == 8 && x == 8) return {255, 0, 0, set};
                                     if (y == 8 && x == 12) return {255, 0, 0, clear};
                                     return {};
                                 })));
    }
}

TEST_F(FramebufferOnTheBoard, AGlobalAlphaBlendsEveryPixel)
{
    start();
    pixel<uint16_t>(8, 8) = 0xFC00;
    pixel<uint16_t>(9, 8) = 0x7C00;
    for (int alpha = 0; alpha < 256; alpha += 15) {
        use_alpha(1, 0, static_cast<uint8_t>(alpha), 77);
        EXPECT_TRUE(same_picture(captured(), with_rectangle(8, 8, 2, 1, {255, 0, 0, alpha}))) << alpha;
    }
    use_alpha(0, 1, 100, 77);
    EXPECT_TRUE(same_picture(captured(), with_rectangle(8, 8, 2, 1, {255, 0, 0, 255}))) << "blending is off";
}

TEST_F(FramebufferOnTheBoard, EveryAlphaOfA32BitPixelBlends)
{
    start();
    use_format(32, 8);
    for (uint32_t alpha = 0; alpha < 256; ++alpha)
        drawRect(static_cast<int>(alpha * 4), 10, 4, 6, alpha << 24 | 0xE08030);
    for (int global : {255, 128}) {
        use_alpha(1, 1, static_cast<uint8_t>(global), 0);
        EXPECT_TRUE(same_picture(captured(), covered(kWidth, kHeight, video_, [&](int x, int y) -> Colour {
                                     if (y < 10 || y >= 16 || x >= 1024) return {};
                                     return {0xE0, 0x80, 0x30, (x / 4 * global + 127) / 255};
                                 })));
    }
}

TEST_F(FramebufferOnTheBoard, EveryPixelOfA16BitFormatIsShown)
{
    struct Case {
        uint32_t bits, alpha_bits;
        Colour (*colour)(int pixel);
    };
    const Case cases[] = {
        {16, 0,
         [](int p) -> Colour {
             return {(p >> 11) * 8 + (p >> 13), (p >> 5 & 63) * 4 + (p >> 9 & 3), (p & 31) * 8 + (p >> 2 & 7),
                     255};
         }},
        {16, 4,
         [](int p) -> Colour {
             return {(p >> 8 & 15) * 17, (p >> 4 & 15) * 17, (p & 15) * 17, (p >> 12) * 17};
         }},
        {16, 1,
         [](int p) -> Colour {
             return {(p >> 10 & 31) * 8 + (p >> 12 & 7), (p >> 5 & 31) * 8 + (p >> 7 & 7),
                     (p & 31) * 8 + (p >> 2 & 7), p >> 15 ? 255 : 0};
         }},
    };
    start();
    for (const Case &format : cases) {
        use_format(format.bits, format.alpha_bits);
        for (int i = 0; i < 65536; ++i)
            pixel<uint16_t>(static_cast<uint32_t>(i % kWidth), static_cast<uint32_t>(i / kWidth)) =
                static_cast<uint16_t>(i);
        EXPECT_TRUE(same_picture(captured(), covered(kWidth, kHeight, video_,
                                                     [&](int x, int y) {
                                                         const int i = y * kWidth + x;
                                                         if (i >= 65536) return Colour{};
                                                         Colour colour = format.colour(i);
                                                         if (colour.red + colour.green + colour.blue == 0)
                                                             colour.alpha = 0; // the key
                                                         return colour;
                                                     })))
            << format.alpha_bits << " alpha bits";
    }
}

TEST_F(FramebufferOnTheBoard, AnyColourCanBeTheTransparentOne)
{
    start();
    drawRect(10, 10, 20, 20, 0xFFFF00FF);
    FbColorKey colour_key = {1, 0xFA, 0x03, 0xFD}; // the same in five bits
    ASSERT_EQ(request(FBIOSET_COLORKEY, &colour_key), 0);
    use_alpha(1, 0, 255, 0); // so that black, no longer the key, covers
    EXPECT_TRUE(same_picture(captured(), covered(kWidth, kHeight, video_, [](int x, int y) -> Colour {
                                 const bool inside = x >= 10 && x < 30 && y >= 10 && y < 30;
                                 return inside ? Colour{} : Colour{0, 0, 0, 255};
                             })));
    colour_key.enabled = 0;
    ASSERT_EQ(request(FBIOSET_COLORKEY, &colour_key), 0);
    EXPECT_TRUE(same_picture(captured(), covered(kWidth, kHeight, video_, [](int x, int y) -> Colour {
                                 const bool inside = x >= 10 && x < 30 && y >= 10 && y < 30;
                                 return inside ? Colour{255, 0, 255, 255} : Colour{0, 0, 0, 255};
                             })));
}

TEST_F(FramebufferOnTheBoard, A24BitDepthIsShownButThePaintersRefuseIt)
{
    start();
    use_format(24, 0);
    EXPECT_EQ(getFBColorFmt(&g_osd_info.variable), 12);
    drawRect(0, 0, 100, 100, 0xFFFFFFFF);
    EXPECT_TRUE(same_picture(captured(), plain_));
    auto *bytes = static_cast<uint8_t *>(g_osd_info.mapped_address);
    for (int i = 0; i < 4; ++i)
        std::memcpy(bytes + i * 3, "\x30\x80\xE0", 3);
    EXPECT_TRUE(same_picture(captured(), with_rectangle(0, 0, 4, 1, {0xE0, 0x80, 0x30, 255})));
}
