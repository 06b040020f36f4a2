/*
 * framebuffer_on_board.h - the framebuffer of the board over plain video, the background of a display
 * without panes: set up through the library, and looked at pixel by pixel. For tests.
 */
#pragma once

#include <gtest/gtest.h>

#include <linux/fb.h>

#include <cstdint>
#include <fcntl.h>
#include <vector>

#include "board_io.h"
#include "fb_driver.h"
#include "gui_reference.h"
#include "mi_disp.h"
#include "nvrhal.h"
#include "vboard.h"

namespace gui_test
{

constexpr int kWidth = 1280, kHeight = 720; // what timing value 8 gives
constexpr uint32_t kTiming720p = 8;
constexpr uint32_t kVideoColour = 0x00306090;

inline std::vector<uint8_t> captured()
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
inline testing::AssertionResult same_picture(const std::vector<uint8_t> &seen,
                                             const std::vector<uint8_t> &expected)
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

} // namespace gui_test
