/*
 * The framebuffer of the board over video, through the library and through the driver's requests: when it
 * is shown, its size and place, its memory, and what it refuses.
 */
#include <gtest/gtest.h>

#include <linux/fb.h>

#include <algorithm>
#include <cstring>
#include <fcntl.h>

#include "framebuffer_on_board.h"

using namespace gui_test;

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
