/*
 * rectangle.cpp - solid rectangles in the framebuffer, in the format that the driver reports.
 *
 * Colours come as 0xAARRGGBB. A rectangle follows the panned view and is not clipped to the screen;
 * what would lie outside the mapped memory is left out.
 * Thread: the application's GUI thread.
 */
#include "gui/framebuffer_state.h"

#include "core/log.h"
#include "gui/pixel_fill.h"

namespace nvrhal
{
namespace
{

// Format codes of the painters. The driver's codes and those of s_OSDCompInfo number them differently.
enum PaintFormat : int32_t {
    kPaintRgb565 = 1,
    kPaintArgb4444 = 2,
    kPaintArgb8888 = 5,
    kPaintArgb1555 = 6,
    kPaintUnknown = 12,
};

struct Components {
    uint32_t red, green, blue;
};

constexpr Components components(uint32_t colour)
{
    return {colour >> 16 & 0xFFu, colour >> 8 & 0xFFu, colour & 0xFFu};
}

constexpr uint16_t to_rgb565(uint32_t colour)
{
    const Components c = components(colour);
    return static_cast<uint16_t>((c.red >> 3) << 11 | (c.green >> 2) << 5 | c.blue >> 3);
}

// Opaque whatever the colour's alpha, on purpose.
constexpr uint16_t to_argb4444(uint32_t colour)
{
    const Components c = components(colour);
    return static_cast<uint16_t>(0xF000u | (c.red >> 4) << 8 | (c.green >> 4) << 4 | c.blue >> 4);
}

constexpr uint16_t to_argb1555(uint32_t colour)
{
    const Components c = components(colour);
    const uint32_t alpha = colour > 0x00FFFFFFu ? 0x8000u : 0; // any alpha bit
    return static_cast<uint16_t>(alpha | (c.red >> 3) << 10 | (c.green >> 3) << 5 | c.blue >> 3);
}

bool mapped_or_logged()
{
    if (g_osd_info.mapped_address) return true;
    log_error_line(kFbSource, "fb init fail");
    return false;
}

PixelMemory mapped_memory(uint32_t pixel_shift)
{
    return {g_osd_info.mapped_address, g_osd_info.mapped_length, g_osd_info.fixed.line_length >> pixel_shift};
}

PixelRect panned(int32_t x, int32_t y, int32_t width, int32_t height)
{
    return {int64_t{x} + g_osd_info.variable.xoffset, int64_t{y} + g_osd_info.variable.yoffset, width,
            height};
}

constexpr uint32_t kShift16 = 1; // log2 of the bytes of a pixel
constexpr uint32_t kShift32 = 2;

constexpr uint16_t kSquare_px = 200;

int32_t paint_square(uint16_t x, uint16_t y, uint32_t colour)
{
    const uint16_t rect[4] = {x, y, kSquare_px, kSquare_px};
    return ST_Fb_FillRect(rect, colour);
}

} // namespace
} // namespace nvrhal

using namespace nvrhal;

int32_t getFBColorFmt(const struct fb_var_screeninfo *screen)
{
    if (!screen) return kPaintUnknown;
    if (screen->bits_per_pixel == 32) return kPaintArgb8888;
    if (screen->bits_per_pixel != 16) return kPaintUnknown;
    switch (screen->transp.length) {
    case 0: return kPaintRgb565;
    case 1: return kPaintArgb1555;
    case 4: return kPaintArgb4444;
    default: return kPaintUnknown;
    }
}

void drawRect_rgb16(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour)
{
    if (!mapped_or_logged()) return;
    fill_pixels_16(mapped_memory(kShift16), panned(x, y, width, height), to_rgb565(colour));
}

// Says nothing when nothing is mapped, unlike the others, on purpose: it is only selected by a
// depth that fb_init has read.
void drawRect_rgb12(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour)
{
    fill_pixels_16(mapped_memory(kShift16), panned(x, y, width, height), to_argb4444(colour));
}

void drawRect_rgb15(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour)
{
    if (!mapped_or_logged()) return;
    fill_pixels_16(mapped_memory(kShift16), panned(x, y, width, height), to_argb1555(colour));
}

void drawRect_rgb32(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour)
{
    if (!mapped_or_logged()) return;
    fill_pixels_32(mapped_memory(kShift32), panned(x, y, width, height), colour);
}

void drawRect(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour)
{
    const int32_t format = getFBColorFmt(&g_osd_info.variable);
    log_text("%s[%d]: Fmt = %d, xywh[%d,%d,%d,%d] !!!!!!!!!!!!!\n", __func__, __LINE__, format, x, y, width,
             height);
    switch (format) {
    case kPaintRgb565: return drawRect_rgb16(x, y, width, height, colour);
    case kPaintArgb4444: return drawRect_rgb12(x, y, width, height, colour);
    case kPaintArgb8888: return drawRect_rgb32(x, y, width, height, colour);
    case kPaintArgb1555: return drawRect_rgb15(x, y, width, height, colour);
    default: log_text("%s[%d]: drawRect() not implemented for color Fmt %d\n", __func__, __LINE__, format);
    }
}

int32_t ST_Fb_FillRect(const uint16_t rect[4], uint32_t colour)
{
    if (rect) drawRect(rect[0], rect[1], rect[2], rect[3], colour);
    return 0;
}

int32_t ST_FBDrawRect(void)
{
    log_text("1 R:%X,G:%X,B:%X\n", 0xFFu, 0u, 0u);
    paint_square(100, 100, 0x80FF0000);
    log_text("2 R:%X,G:%X,B:%X\n", 0u, 0xFFu, 0u);
    paint_square(400, 100, 0x8000FF00);
    log_text("3 R:%X,G:%X,B:%X\n", 0u, 0u, 0xFFu);
    paint_square(800, 100, 0x800000FF);
    // The trace names blue and the square is red, on purpose: bring-up logs are compared with those
    // of older boards.
    log_text("4 R:%X,G:%X,B:%X\n", 0u, 0u, 0xFFu);
    return paint_square(800, 400, 0x80FF0000);
}
