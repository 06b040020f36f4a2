/* canvas.cpp - see canvas.h. */
#include "screen/canvas.h"

#include <algorithm>
#include <cstddef>

#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr int32_t kPaint1555 = 6; /* of getFBColorFmt                      */
constexpr size_t kInfo1555 = 4;   /* row of s_OSDCompInfo                  */
constexpr uint32_t kOpaque = 0xFF000000;
constexpr Colour kAlmostBlack = 0x080808; /* one step of 5 bits above the colour key */

/* Black is the colour key: a hole for the video. */
Colour off_the_key(Colour colour)
{
    constexpr Colour kSeenIn5Bits = 0xF8F8F8;
    return (colour & kSeenIn5Bits) == 0 ? kAlmostBlack : colour & 0xFFFFFF;
}

} // namespace

Rect intersection(const Rect &a, const Rect &b)
{
    const int x = std::max(a.x, b.x), y = std::max(a.y, b.y);
    const Rect common = {x, y, std::min(a.right(), b.right()) - x, std::min(a.bottom(), b.bottom()) - y};
    return common.empty() ? Rect{} : common;
}

Rect around(const Rect &a, const Rect &b)
{
    if (a.empty()) return b;
    if (b.empty()) return a;
    const int x = std::min(a.x, b.x), y = std::min(a.y, b.y);
    return {x, y, std::max(a.right(), b.right()) - x, std::max(a.bottom(), b.bottom()) - y};
}

uint16_t pixel_of(Colour colour)
{
    const OsdCompInfo &bits = s_OSDCompInfo[kInfo1555];
    const Colour seen = off_the_key(colour);
    return OSD_MAKECOLOR_U16(seen & 0xFF, seen >> 8 & 0xFF, seen >> 16 & 0xFF, bits.alpha_bits, bits.low_bits,
                             bits.middle_bits, bits.high_bits);
}

Colour mixed(Colour under, Colour over, int share)
{
    constexpr int kWhole = 255;
    Colour result = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        const int low = static_cast<int>(under >> shift & 0xFF),
                  high = static_cast<int>(over >> shift & 0xFF);
        const int value = (low * (kWhole - share) + high * share + kWhole / 2) / kWhole;
        result |= static_cast<Colour>(value) << shift;
    }
    return result;
}

std::string Canvas::open()
{
    if (!g_osd_info.mapped_address) return "the board has no framebuffer";
    const int32_t format = getFBColorFmt(&g_osd_info.variable);
    if (format != kPaint1555)
        return "the framebuffer's pixels are of format " + std::to_string(format) + ", not 1-5-5-5";
    take_geometry();
    return "";
}

/* The address comes from the record: the word of ext_get_fb_info holds 32 bits of it. */
void Canvas::take_geometry()
{
    uint32_t info[6] = {};
    ext_get_fb_info(0, info);
    width_ = static_cast<int>(info[0]);
    height_ = static_cast<int>(info[1]);
    pitch_bytes_ = info[2];
    mapped_ = g_osd_info.mapped_address;
}

bool Canvas::begin()
{
    if (g_osd_info.mapped_address != mapped_) take_geometry(); /* another output: set up anew */
    clip_ = whole();
    return mapped_ && ext_tde_begin_job() == 0;
}

void Canvas::end()
{
    ext_tde_end_job(); /* its failure is in the library's log; the next job tries again */
}

uint16_t *Canvas::row(int x, int y) const
{
    auto *memory = static_cast<uint8_t *>(g_osd_info.mapped_address);
    const size_t line = static_cast<size_t>(y) + g_osd_info.variable.yoffset;
    return reinterpret_cast<uint16_t *>(memory + line * pitch_bytes_) + x + g_osd_info.variable.xoffset;
}

void Canvas::paint(const Rect &rect, uint32_t colour)
{
    const Rect seen = intersection(rect, clip_);
    if (!seen.empty()) drawRect(seen.x, seen.y, seen.w, seen.h, colour);
}

void Canvas::clear(const Rect &rect)
{
    paint(rect, 0);
}

void Canvas::fill(const Rect &rect, Colour colour)
{
    paint(rect, kOpaque | off_the_key(colour));
}

void Canvas::frame(const Rect &rect, int thickness_px, Colour colour)
{
    const int t = std::min({thickness_px, rect.w / 2, rect.h / 2});
    fill({rect.x, rect.y, rect.w, t}, colour);
    fill({rect.x, rect.bottom() - t, rect.w, t}, colour);
    fill({rect.x, rect.y + t, t, rect.h - 2 * t}, colour);
    fill({rect.right() - t, rect.y + t, t, rect.h - 2 * t}, colour);
}

void Canvas::veil(const Rect &rect)
{
    const uint16_t dark = pixel_of(kAlmostBlack);
    const Rect seen = intersection(rect, clip_);
    for (int y = seen.y; y < seen.bottom(); ++y) {
        uint16_t *to = row(0, y);
        const bool closed = (y & 1) != 0; /* by rows of the screen: parts that are drawn alone fit together */
        for (int x = seen.x; x < seen.right(); ++x) {
            if (closed || (x & 1) != 0) to[x] = dark;
        }
    }
}

/* write(destination, source, count) for every row of the tile inside the clip. */
template <typename Write> void Canvas::each_visible(const Tile &tile, int x, int y, Write write)
{
    const Rect seen = intersection({x, y, tile.width, tile.height}, clip_);
    for (int line = seen.y; line < seen.bottom(); ++line) {
        const uint16_t *from = tile.pixels.data() +
                               static_cast<size_t>(line - y) * static_cast<size_t>(tile.width) + (seen.x - x);
        write(row(seen.x, line), from, seen.w);
    }
}

void Canvas::draw(const Tile &tile, int x, int y)
{
    each_visible(tile, x, y, [](uint16_t *to, const uint16_t *from, int count) {
        for (int i = 0; i < count; ++i) {
            if (from[i] != 0) to[i] = from[i];
        }
    });
}

Tile Canvas::save(const Rect &rect) const
{
    Tile tile = {rect.w, rect.h, {}};
    tile.pixels.resize(static_cast<size_t>(rect.w) * static_cast<size_t>(rect.h));
    const Rect seen = intersection(rect, whole());
    for (int line = seen.y; line < seen.bottom(); ++line) {
        const size_t at = static_cast<size_t>(line - rect.y) * static_cast<size_t>(rect.w) +
                          static_cast<size_t>(seen.x - rect.x);
        std::copy_n(row(seen.x, line), seen.w, tile.pixels.begin() + static_cast<std::ptrdiff_t>(at));
    }
    return tile;
}

void Canvas::restore(const Tile &tile, int x, int y)
{
    each_visible(tile, x, y,
                 [](uint16_t *to, const uint16_t *from, int count) { std::copy_n(from, count, to); });
}

} // namespace nvrec
