/*
 * The framebuffer of the board over video, through the library and through the driver's requests,
 * to the exact value of every pixel. The video is a plain colour: the background of a display
 * without panes.
 */
#include <gtest/gtest.h>

#include <linux/fb.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>

#include "board_io.h"
#include "fb_driver.h"
#include "gui_reference.h"
#include "mi_disp.h"
#include "nvrhal.h"
#include "vboard.h"

using gui_test::Colour;
using gui_test::covered;
using gui_test::Video;

namespace
{

constexpr int kWidth = 1280, kHeight = 720; // what timing value 8 gives
constexpr uint32_t kTiming720p = 8;
constexpr uint32_t kVideoColour = 0x00306090;

std::vector<uint8_t> captured()
{
    vboard_image image = {};
    EXPECT_EQ(vboard_display_capture(0, VBOARD_FORMAT_I420, &image), 0);
    EXPECT_EQ(image.width, static_cast<uint32_t>(kWidth));
    EXPECT_EQ(image.height, static_cast<uint32_t>(kHeight));
    std::vector<uint8_t> bytes(image.bytes, image.bytes + image.size);
    vboard_image_free(&image);
    return bytes;
}

/* The first byte that differs, or nothing. */
testing::AssertionResult same_picture(const std::vector<uint8_t> &seen, const std::vector<uint8_t> &expected)
{
    if (seen.size() != expected.size()) return testing::AssertionFailure() << "sizes differ";
    for (size_t i = 0; i < seen.size(); ++i)
        if (seen[i] != expected[i])
            return testing::AssertionFailure()
                   << "byte " << i << " (column " << i % kWidth << ", row " << i / kWidth
                   << "): " << int{seen[i]} << " instead of " << int{expected[i]};
    return testing::AssertionSuccess();
}

class FramebufferOnTheBoard : public testing::Test
{
protected:
    void SetUp() override
    {
        const MI_DISP_PubAttr attr = {kVideoColour, MI_DISP_INTERFACE_HDMI, kTiming720p, 0};
        ASSERT_EQ(MI_DISP_SetPubAttr(0, &attr), 0);
        ASSERT_EQ(MI_DISP_Enable(0), 0);
        plain_ = captured();
        video_ = {plain_.front(), plain_[kWidth * kHeight], plain_.back()};
        ASSERT_NE(video_.u, 128) << "a colour that would show if it was lost";
    }

    /* The library's set-up, and a descriptor of the test's own. */
    void start(int32_t width = kWidth, int32_t height = kHeight)
    {
        ASSERT_EQ(fb_init(0, width, height), 0);
        descriptor_ = board_open("/dev/fb0", O_RDWR);
        ASSERT_GE(descriptor_, 0);
    }

    int request(unsigned long number, void *record) { return board_ioctl(descriptor_, number, record); }

    /* Another depth than the library chooses; the library learns it as it would at its own set-up. */
    void use_format(uint32_t bits, uint32_t alpha_bits)
    {
        fb_var_screeninfo screen = g_osd_info.variable;
        screen.bits_per_pixel = bits;
        screen.transp.length = alpha_bits;
        ASSERT_EQ(request(FBIOPUT_VSCREENINFO, &screen), 0);
        ASSERT_EQ(request(FBIOGET_VSCREENINFO, &g_osd_info.variable), 0);
        ASSERT_EQ(request(FBIOGET_FSCREENINFO, &g_osd_info.fixed), 0);
    }

    void use_alpha(uint8_t enabled, uint8_t per_pixel, uint8_t global, uint8_t zero_bit)
    {
        FbGlobalAlpha alpha = {enabled, per_pixel, global, zero_bit, {0, 0}, 1};
        ASSERT_EQ(request(FBIOSET_GLOBAL_ALPHA, &alpha), 0);
    }

    template <typename Pixel> Pixel &pixel(uint32_t x, uint32_t y)
    {
        auto *row = static_cast<uint8_t *>(g_osd_info.mapped_address) + y * g_osd_info.fixed.line_length;
        return reinterpret_cast<Pixel *>(row)[x];
    }

    /* One colour in a rectangle and video elsewhere. */
    std::vector<uint8_t> with_rectangle(int x, int y, int width, int height, const Colour &colour)
    {
        return covered(kWidth, kHeight, video_, [=](int at_x, int at_y) {
            const bool inside = at_x >= x && at_x < x + width && at_y >= y && at_y < y + height;
            return inside ? colour : Colour{};
        });
    }

    std::vector<uint8_t> plain_; // the video without anything over it
    Video video_ = {};
    int descriptor_ = -1;
};

} // namespace

TEST_F(FramebufferOnTheBoard, IsHiddenUntilItIsShown)
{
    const int descriptor = board_open("/dev/fb0", O_RDWR);
    ASSERT_GE(descriptor, 0);
    void *memory = board_map(descriptor, 4096);
    ASSERT_NE(memory, nullptr);
    std::memset(memory, 0xFF, 4096);
    EXPECT_TRUE(same_picture(captured(), plain_));
    uint8_t show = 1;
    EXPECT_EQ(board_ioctl(descriptor, FBIOSET_SHOW, &show), 0);
    EXPECT_FALSE(captured() == plain_);
    show = 0;
    EXPECT_EQ(board_ioctl(descriptor, FBIOSET_SHOW, &show), 0);
    EXPECT_TRUE(same_picture(captured(), plain_));
    EXPECT_EQ(board_unmap(memory, 4096), 0);
    EXPECT_EQ(board_close(descriptor), 0);
}

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

TEST_F(FramebufferOnTheBoard, AGuiOfAnotherSizeIsScaledToTheOutput)
{
    for (auto [width, height] : {std::pair(800, 600), std::pair(1920, 1080), std::pair(1024, 768)}) {
        start(width, height);
        uint32_t info[6];
        ASSERT_EQ(ext_get_fb_info(0, info), 0);
        EXPECT_EQ(info[0], static_cast<uint32_t>(width));
        EXPECT_EQ(info[1], static_cast<uint32_t>(height));
        EXPECT_EQ(info[2], static_cast<uint32_t>(width * 2));
        // Columns of changing colour with rows of video between them.
        auto word = [](int x, int y) { return y % 3 == 0 ? 0 : 0x8000 | (x * 7 + y) % 0x8000; };
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                pixel<uint16_t>(static_cast<uint32_t>(x), static_cast<uint32_t>(y)) =
                    static_cast<uint16_t>(word(x, y));
        EXPECT_TRUE(same_picture(captured(), covered(kWidth, kHeight, video_,
                                                     [&](int x, int y) -> Colour {
                                                         const int p =
                                                             word(x * width / kWidth, y * height / kHeight);
                                                         const Colour c = {(p >> 10 & 31) * 8 + (p >> 12 & 7),
                                                                           (p >> 5 & 31) * 8 + (p >> 7 & 7),
                                                                           (p & 31) * 8 + (p >> 2 & 7),
                                                                           p >> 15 ? 255 : 0};
                                                         return c.red + c.green + c.blue == 0 ? Colour{} : c;
                                                     })))
            << width << " x " << height;
    }
}

// A GUI above full HD has memory of half its width and covers the whole output all the same.
TEST_F(FramebufferOnTheBoard, AGuiAboveFullHdIsReadAtHalfItsWidth)
{
    start(3840, 2160);
    EXPECT_EQ(g_osd_info.variable.xres, 1920u);
    EXPECT_EQ(g_osd_info.variable.yres, 2160u);
    drawRect(0, 0, 960, 2160, 0xFF00FF00);
    EXPECT_TRUE(same_picture(captured(), with_rectangle(0, 0, kWidth / 2, kHeight, {0, 255, 0, 255})));
}

// The memory below the page is the PC's again when the size is set; the page itself stays.
TEST_F(FramebufferOnTheBoard, SettingTheSizeEmptiesTheMemoryBelowThePage)
{
    start();
    auto *bytes = static_cast<uint8_t *>(g_osd_info.mapped_address);
    const size_t page = size_t{g_osd_info.fixed.line_length} * g_osd_info.variable.yres;
    std::memset(bytes, 0xA5, g_osd_info.mapped_length);
    fb_var_screeninfo screen = g_osd_info.variable;
    ASSERT_EQ(request(FBIOPUT_VSCREENINFO, &screen), 0);
    EXPECT_EQ(std::count(bytes, bytes + page, 0xA5), static_cast<ptrdiff_t>(page));
    EXPECT_EQ(std::count(bytes + page, bytes + g_osd_info.mapped_length, 0),
              static_cast<ptrdiff_t>(g_osd_info.mapped_length - page));
    bytes[g_osd_info.mapped_length - 1] = 1; // still there to be written
    EXPECT_EQ(bytes[g_osd_info.mapped_length - 1], 1);
}

TEST_F(FramebufferOnTheBoard, PanningMovesTheViewInTheMemory)
{
    start();
    drawRect(0, 720, 64, 720, 0xFF0000FF); // below the view
    EXPECT_TRUE(same_picture(captured(), plain_));
    fb_var_screeninfo screen = g_osd_info.variable;
    screen.yoffset = 700;
    ASSERT_EQ(request(FBIOPAN_DISPLAY, &screen), 0);
    EXPECT_TRUE(same_picture(captured(), with_rectangle(0, 20, 64, 700, {0, 0, 255, 255})));
    ASSERT_EQ(ext_tde_end_job(), 0);
    EXPECT_TRUE(same_picture(captured(), plain_)) << "the end of a job goes back to the top";
}

TEST_F(FramebufferOnTheBoard, LiesWhereItsAttributesSay)
{
    start();
    drawRect(0, 0, 1280, 720, 0xFFFFFFFF);
    FbDisplayLayer layer = {};
    layer.x = 320;
    layer.y = 180;
    layer.dst_width = 640;
    layer.dst_height = 360;
    layer.screen_width = 1920;
    layer.screen_height = 1080;
    layer.mask = FB_LAYER_POSITION | FB_LAYER_DST_SIZE | FB_LAYER_SCREEN_SIZE;
    ASSERT_EQ(request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer), 0);
    EXPECT_TRUE(same_picture(captured(), covered(kWidth, kHeight, video_, [](int x, int y) -> Colour {
                                 const bool inside = x >= 213 && x < 640 && y >= 120 && y < 360;
                                 return inside ? Colour{255, 255, 255, 255} : Colour{};
                             })));
    FbDisplayLayer read = {};
    ASSERT_EQ(request(FBIOGET_DISPLAYLAYER_ATTRIBUTES, &read), 0);
    EXPECT_EQ(read.x, 320u);
    EXPECT_EQ(read.dst_width, 640u);
    EXPECT_EQ(read.display_width, 1280u) << "not in the mask: as it was";
    EXPECT_EQ(read.color_format, uint32_t{FB_COLOR_ARGB1555});
}

TEST_F(FramebufferOnTheBoard, ALayerBeyondTheOutputIsCut)
{
    start();
    drawRect(0, 0, 1280, 720, 0xFFFFFFFF);
    FbDisplayLayer layer = {};
    layer.x = 1000;
    layer.y = 700;
    layer.dst_width = 0xFFFFFFFF;
    layer.dst_height = 1280;
    layer.screen_width = 1280;
    layer.screen_height = 720;
    layer.mask = FB_LAYER_POSITION | FB_LAYER_DST_SIZE | FB_LAYER_SCREEN_SIZE;
    ASSERT_EQ(request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer), 0);
    EXPECT_TRUE(same_picture(captured(), with_rectangle(1000, 700, 280, 20, {255, 255, 255, 255})));
}

TEST_F(FramebufferOnTheBoard, LiesOverDeviceZeroOnly)
{
    const MI_DISP_PubAttr attr = {kVideoColour, MI_DISP_INTERFACE_HDMI, kTiming720p, 0};
    ASSERT_EQ(MI_DISP_SetPubAttr(1, &attr), 0);
    ASSERT_EQ(MI_DISP_Enable(1), 0);
    start();
    drawRect(0, 0, 1280, 720, 0xFFFFFFFF);
    vboard_image image = {};
    ASSERT_EQ(vboard_display_capture(1, VBOARD_FORMAT_I420, &image), 0);
    EXPECT_EQ(image.bytes[0], plain_[0]);
    vboard_image_free(&image);
    EXPECT_NE(captured()[0], plain_[0]);
}

TEST_F(FramebufferOnTheBoard, EveryMappingShowsTheSameMemoryBelow4GiB)
{
    start();
    void *second = board_map(descriptor_, g_osd_info.mapped_length);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, g_osd_info.mapped_address);
    drawRect(0, 0, 1, 1, 0xFFFFFFFF);
    EXPECT_EQ(*static_cast<uint16_t *>(second), 0xFFFF);
#ifdef __x86_64__
    EXPECT_LT(reinterpret_cast<uintptr_t>(g_osd_info.mapped_address), uint64_t{1} << 32);
    EXPECT_LT(reinterpret_cast<uintptr_t>(second), uint64_t{1} << 32);
#endif
    uint32_t info[6];
    ASSERT_EQ(ext_get_fb_info(0, info), 0);
    EXPECT_EQ(info[4], reinterpret_cast<uintptr_t>(g_osd_info.mapped_address)) << "the whole address";
    EXPECT_EQ(board_unmap(second, g_osd_info.mapped_length), 0);
    EXPECT_EQ(board_map(descriptor_, 0), nullptr);
    EXPECT_EQ(board_map(descriptor_, g_osd_info.mapped_length + 1), nullptr);
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

TEST_F(FramebufferOnTheBoard, RefusesWhatTheHardwareCannot)
{
    start();
    vboard_set_loud(0);
    const uint64_t before = vboard_refusal_count();
    EXPECT_EQ(request(FBIOGET_VSCREENINFO, nullptr), -1);
    uint32_t word = 0;
    EXPECT_EQ(request(0x4646, &word), -1);

    const fb_var_screeninfo good = g_osd_info.variable;
    fb_var_screeninfo screen = good;
    screen.bits_per_pixel = 8;
    EXPECT_EQ(request(FBIOPUT_VSCREENINFO, &screen), -1);
    screen = good;
    screen.transp.length = 2;
    EXPECT_EQ(request(FBIOPUT_VSCREENINFO, &screen), -1);
    screen = good;
    screen.xres = 0;
    EXPECT_EQ(request(FBIOPUT_VSCREENINFO, &screen), -1);
    screen.xres = 3842;
    screen.yres = 2160;
    EXPECT_EQ(request(FBIOPUT_VSCREENINFO, &screen), -1);
    screen = good;
    screen.xoffset = 1;
    EXPECT_EQ(request(FBIOPAN_DISPLAY, &screen), -1);
    screen = good;
    screen.yoffset = 0xFFFFFFFF;
    EXPECT_EQ(request(FBIOPAN_DISPLAY, &screen), -1);

    FbDisplayLayer layer = {};
    layer.mask = FB_LAYER_COLOR_FORMAT;
    layer.color_format = FB_COLOR_UNKNOWN;
    EXPECT_EQ(request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer), -1);
    layer.mask = FB_LAYER_DISPLAY_SIZE;
    EXPECT_EQ(request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer), -1);
    layer.mask = FB_LAYER_DST_SIZE;
    EXPECT_EQ(request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer), -1);
    layer.mask = FB_LAYER_PREMULTIPLIED;
    layer.premultiplied = 1;
    EXPECT_EQ(request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer), -1);
    EXPECT_EQ(vboard_refusal_count() - before, 12u);

    // Nothing of it has stuck.
    ASSERT_EQ(request(FBIOGET_VSCREENINFO, &screen), 0);
    EXPECT_EQ(std::memcmp(&screen, &good, sizeof screen), 0);
    EXPECT_TRUE(same_picture(captured(), plain_));
}

TEST_F(FramebufferOnTheBoard, PowerOffClearsItAndHidesIt)
{
    start();
    drawRect(0, 0, 1280, 720, 0xFFFFFFFF);
    vboard_reset();
    EXPECT_EQ(pixel<uint16_t>(0, 0), 0) << "a mapping outlives its descriptor";
    EXPECT_EQ(request(FBIOGET_VSCREENINFO, &g_osd_info.variable), -1) << "which is closed";
    descriptor_ = board_open("/dev/fb0", O_RDWR);
    ASSERT_EQ(request(FBIOGET_VSCREENINFO, &g_osd_info.variable), 0);
    EXPECT_EQ(g_osd_info.variable.xres, 1920u);
    EXPECT_EQ(g_osd_info.variable.bits_per_pixel, 16u);
    EXPECT_EQ(g_osd_info.variable.transp.length, 1u);
    FbColorKey colour_key = {9, 9, 9, 9};
    ASSERT_EQ(request(FBIOGET_COLORKEY, &colour_key), 0);
    EXPECT_EQ(colour_key.enabled, 0);
}
