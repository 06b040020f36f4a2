/*
 * framebuffer_blend.h - how framebuffer pixels become video and mix with it.
 *
 * A pixel's components are widened to 8 bits by repeating their upper bits and turned into BT.601
 * limited range with the integers that the board's pictures use elsewhere:
 *
 *   Y = (66 R + 129 G + 25 B + 4224) >> 8
 *   U = (112 B - 74 G - 38 R + 32896) >> 8        V = (112 R - 94 G - 18 B + 32896) >> 8
 *
 * With a = 0 to 255, rounded to the nearest: Y' = (Y (255 - a) + Yp a) / 255, and in chroma, where
 * four pixels share a sample, U' = (U (1020 - sum of a) + sum of Up a) / 1020.
 *
 * What a is: 0 for the colour key, compared at the format's own width without alpha; 255 when
 * blending is off; the global value when blending is not by pixel or the format has no alpha; for a
 * one-bit alpha the global value when it is set and the zero-bit value when it is clear; else the
 * pixel's own alpha times the global value / 255, rounded to the nearest.
 */
#ifndef VBOARD_FRAMEBUFFER_BLEND_H
#define VBOARD_FRAMEBUFFER_BLEND_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fb_driver.h"
#include "host/picture.h"

namespace vboard
{

struct PixelField {
    uint32_t offset, length; // bits; length 0 = the format has none
};

struct PixelFormat {
    uint32_t code; // enum FbColorFormat
    uint32_t bits;
    PixelField red, green, blue, alpha;
};

/* By the driver's code, or by depth and alpha bits. Null: the device has no such format. */
const PixelFormat *find_pixel_format(uint32_t code);
const PixelFormat *find_pixel_format(uint32_t bits, uint32_t alpha_bits);

/* What the display reads at a refresh. */
struct FramebufferView {
    const uint8_t *memory;
    size_t size;   // bytes
    size_t stride; // bytes
    const PixelFormat *format;
    uint32_t x_offset, y_offset; // panning, pixels
    FbDisplayLayer layer;
    FbColorKey key;
    FbGlobalAlpha alpha;
};

/* One framebuffer pixel as video. */
struct OverlayColour {
    uint8_t y, u, v, alpha;
};

/* Pixel words to colours. 16-bit formats get a table, worked out anew when a setting has changed. */
class OverlayColours
{
public:
    void prepare(const FramebufferView &view);
    OverlayColour operator()(uint32_t pixel) const { return table_.empty() ? mix(pixel) : table_[pixel]; }

private:
    OverlayColour mix(uint32_t pixel) const;

    const PixelFormat *format_ = nullptr;
    FbColorKey key_ = {};
    FbGlobalAlpha alpha_ = {};
    std::vector<OverlayColour> table_;
};

/* Whether any row of the view can be seen on a picture of this size. */
bool framebuffer_has_visible_pixels(const FramebufferView &view, OverlayColours &colours, int width,
                                    int height);

/* Draw the view over a picture whose width and height are even. */
void blend_framebuffer(const FramebufferView &view, OverlayColours &colours,
                       const MutablePlanarView &picture);

} // namespace vboard

#endif
