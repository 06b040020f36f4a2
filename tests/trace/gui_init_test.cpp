/* The framebuffer's set-up: the driver requests in their order, and what is printed on the way. */
#include <gtest/gtest.h>

#include <algorithm>

#include "gui_screen.h"

using gui_test::plug_framebuffer;
using gui_test::Screen;
using recording::platform;
using recording::trace;

TEST(FramebufferInit, AsksMapsPlacesAndShowsInThisOrder)
{
    plug_framebuffer();
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        board_open /dev/fb0 rdwr
        board_ioctl /dev/fb0 0x4600
        board_ioctl /dev/fb0 0x4602
        board_map /dev/fb0 1843200
        board_ioctl /dev/fb0 0x40344669 {0 0 1280 720 1280 720 0 0 0 0 0 0 15}
        board_ioctl /dev/fb0 0x4602
        board_ioctl /dev/fb0 0x4600
        board_ioctl /dev/fb0 0x4606 {0 0}
        board_ioctl /dev/fb0 0x80344668
        board_ioctl /dev/fb0 0x40344669 {0 0 0 0 0 0 0 0 0 6 0 0 32}
        board_ioctl /dev/fb0 0x4600
        board_ioctl /dev/fb0 0x40014663 {1}
        board_ioctl /dev/fb0 0x80044666
        board_ioctl /dev/fb0 0x40044667 {1 0 0 0}
        board_ioctl /dev/fb0 0x80074664
        board_ioctl /dev/fb0 0x40074665 {1 1 255 0 0 0 1}
    )"));
}

TEST(FramebufferInit, PrintsSizesAndAttributes)
{
    Screen screen;
    screen.width = 1024;
    screen.bits = 16;
    plug_framebuffer(screen);
    platform.node("/dev/fb0").ioctl(FBIOGET_DISPLAYLAYER_ATTRIBUTES).fills([](recording::Args &call) {
        call.record<FbDisplayLayer>(2) = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
    });
    EXPECT_EQ(fb_init(7, 1280, 720), 0);
    EXPECT_PRINTED_IN_ORDER(R"(
fb.c, #, width=1280, height=720
fb.c, #, xres=1024, bits=16
fb.c, #, line_length=2560, smem_len=1843200
fb.c, #, xres=1024, bits=16
fb_init #, u32Xpos:1,u32YPos:2,u32dstWidth:3,u32dstHeight:4,u32DisplayWidth:5,u32DisplayHeight:6,u32ScreenWidth:7,u32ScreenHeight:8
fb init done!)");
    EXPECT_PRINTED_WITHOUT_PREFIX("fb init done!");
}

// The colour format is written into the record as it was read: only the mask decides what applies.
TEST(FramebufferInit, ChangesOnlyTheFormatOfTheAttributesRead)
{
    plug_framebuffer();
    platform.node("/dev/fb0").ioctl(FBIOGET_DISPLAYLAYER_ATTRIBUTES).fills([](recording::Args &call) {
        call.record<FbDisplayLayer>(2) = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
    });
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_EQ(platform.count("board_ioctl /dev/fb0 0x40344669 {1 2 3 4 5 6 7 8 9 6 11 12 32}"), 1u);
}

TEST(FramebufferInit, ReadsRecordsIntoClearedOnes)
{
    plug_framebuffer();
    auto all_zero = [](const void *record, size_t size) {
        const auto *bytes = static_cast<const uint8_t *>(record);
        return std::all_of(bytes, bytes + size, [](uint8_t byte) { return byte == 0; });
    };
    bool layer_cleared = false, alpha_cleared = false;
    platform.node("/dev/fb0").ioctl(FBIOGET_DISPLAYLAYER_ATTRIBUTES).fills([&](recording::Args &call) {
        layer_cleared = all_zero(call.pointer(2), sizeof(FbDisplayLayer));
    });
    platform.node("/dev/fb0").ioctl(FBIOGET_GLOBAL_ALPHA).fills([&](recording::Args &call) {
        alpha_cleared = all_zero(call.pointer(2), sizeof(FbGlobalAlpha));
    });
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_TRUE(layer_cleared);
    EXPECT_TRUE(alpha_cleared);
}

TEST(FramebufferInit, KeepsTheDriversOwnAlphaFields)
{
    plug_framebuffer();
    platform.node("/dev/fb0").ioctl(FBIOGET_GLOBAL_ALPHA).fills([](recording::Args &call) {
        call.record<FbGlobalAlpha>(2) = {9, 9, 9, 9, {41, 42}, 9};
    });
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_EQ(platform.count("board_ioctl /dev/fb0 0x40074665 {1 1 255 0 41 42 1}"), 1u);
}

TEST(FramebufferInit, ReplacesTheWholeColourKey)
{
    plug_framebuffer();
    platform.node("/dev/fb0").ioctl(FBIOGET_COLORKEY).fills([](recording::Args &call) {
        call.record<FbColorKey>(2) = {0, 10, 20, 30};
    });
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_EQ(platform.count("board_ioctl /dev/fb0 0x40044667 {1 0 0 0}"), 1u);
}

TEST(FramebufferInit, ClearsTheWholeMapping)
{
    plug_framebuffer();
    // What is in the memory before comes from the driver: fill it when the attributes are set for
    // the first time, and it is no longer clear at the end; fill it before, and it is.
    bool clear_when_placed = false;
    platform.node("/dev/fb0").ioctl(FBIOSET_DISPLAYLAYER_ATTRIBUTES).once().fills([&](recording::Args &) {
        auto [memory, size] = platform.node("/dev/fb0").memory();
        clear_when_placed = memory && size == 1843200 &&
                            std::all_of(memory, memory + size, [](uint8_t byte) { return byte == 0; });
        std::memset(memory, 0x5A, size);
    });
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_TRUE(clear_when_placed);
    EXPECT_EQ(*static_cast<uint8_t *>(g_osd_info.mapped_address), 0x5A) << "cleared only before it is placed";
}

TEST(FramebufferInit, FillsTheRecord)
{
    plug_framebuffer();
    platform.node("/dev/fb0").opens_as(17);
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    auto [memory, size] = platform.node("/dev/fb0").memory();
    EXPECT_EQ(g_osd_info.mapped_address, memory);
    EXPECT_EQ(g_osd_info.mapped_length, size);
    EXPECT_EQ(g_osd_info.descriptor, 17);
    EXPECT_STREQ(g_osd_info.path, "/dev/fb0");
    EXPECT_EQ(g_osd_info.fixed.line_length, 2560u);
    EXPECT_EQ(g_osd_info.variable.xres, 1280u);
    EXPECT_EQ(g_osd_info.app_buffer_first, 0u);
    EXPECT_EQ(g_osd_info.app_buffer_second, 0u);
    EXPECT_EQ(g_osd_info.app_buffer_third, 0u);
}

// A driver may answer the layer's size with another stride and depth.
TEST(FramebufferInit, KeepsTheInformationReadLast)
{
    plug_framebuffer();
    platform.node("/dev/fb0").ioctl(FBIOGET_FSCREENINFO).nth(2).fills([](recording::Args &call) {
        call.record<fb_fix_screeninfo>(2).line_length = 4096;
    });
    platform.node("/dev/fb0").ioctl(FBIOGET_VSCREENINFO).nth(3).fills([](recording::Args &call) {
        call.record<fb_var_screeninfo>(2).transp.length = 4;
    });
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_EQ(g_osd_info.fixed.line_length, 4096u);
    EXPECT_EQ(g_osd_info.variable.transp.length, 4u);
}

TEST(FramebufferInit, PansWithTheInformationAsRead)
{
    Screen screen;
    screen.x_offset = 12;
    screen.y_offset = 34;
    plug_framebuffer(screen);
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_EQ(platform.count("board_ioctl /dev/fb0 0x4606 {12 34}"), 1u);
}

TEST(FramebufferInit, HalvesTheWidthThatIsReadOnlyAboveFullHdInBothDirections)
{
    struct Case {
        int32_t width, height;
        const char *attributes;
    };
    const Case cases[] = {
        {800, 600, "{0 0 800 600 800 600 0 0 0 0 0 0 15}"},
        {1920, 1080, "{0 0 1920 1080 1920 1080 0 0 0 0 0 0 15}"},
        {1920, 2160, "{0 0 1920 2160 1920 2160 0 0 0 0 0 0 15}"},
        {3840, 1080, "{0 0 3840 1080 3840 1080 0 0 0 0 0 0 15}"},
        {1921, 1081, "{0 0 1921 1081 960 1081 0 0 0 0 0 0 15}"},
        {2560, 1440, "{0 0 2560 1440 1280 1440 0 0 0 0 0 0 15}"},
        {3840, 2160, "{0 0 3840 2160 1920 2160 0 0 0 0 0 0 15}"},
    };
    plug_framebuffer();
    for (const Case &gui : cases) {
        EXPECT_EQ(fb_init(0, gui.width, gui.height), 0);
        EXPECT_EQ(platform.count(std::string("board_ioctl /dev/fb0 0x40344669 ") + gui.attributes), 1u)
            << gui.width << " x " << gui.height;
        platform.forget();
    }
}

TEST(FramebufferInit, OpensAndMapsOnceMoreOverTheOldState)
{
    plug_framebuffer();
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    const int32_t first_descriptor = g_osd_info.descriptor;
    void *const first_address = g_osd_info.mapped_address;
    platform.forget();

    EXPECT_EQ(fb_uninit(), 0);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(fb_init(0, 1280, 720), 0);
    EXPECT_EQ(platform.count("board_open"), 1u);
    EXPECT_EQ(platform.count("board_map"), 1u);
    EXPECT_EQ(platform.count("board_close"), 0u);
    EXPECT_EQ(platform.count("board_unmap"), 0u);
    EXPECT_EQ(platform.node("/dev/fb0").open_count(), 2u);
    EXPECT_NE(g_osd_info.descriptor, first_descriptor);
    EXPECT_NE(g_osd_info.mapped_address, first_address);
}
