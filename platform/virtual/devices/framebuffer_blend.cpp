/* framebuffer_blend.cpp - pixels to colours, and colours over video. One thread at a time for each
 * OverlayColours. */
#include "devices/framebuffer_blend.h"

#include <algorithm>
#include <cstring>

namespace vboard
{
namespace
{

constexpr PixelFormat kFormats[] = {
    {FB_COLOR_RGB565, 16, {11, 5}, {5, 6}, {0, 5}, {0, 0}},
    {FB_COLOR_ARGB4444, 16, {8, 4}, {4, 4}, {0, 4}, {12, 4}},
    {FB_COLOR_ARGB1555, 16, {10, 5}, {5, 5}, {0, 5}, {15, 1}},
    {FB_COLOR_ARGB8888, 32, {16, 8}, {8, 8}, {0, 8}, {24, 8}},
    {FB_COLOR_UNKNOWN, 24, {16, 8}, {8, 8}, {0, 8}, {0, 0}}, // the driver's code space has none for it
};

uint32_t field_of(uint32_t pixel, const PixelField &field)
{
    return pixel >> field.offset & ((1u << field.length) - 1);
}

// 4 bits and more, widened by their own upper bits.
uint32_t widened(uint32_t value, uint32_t bits)
{
    const uint32_t wide = value << (8 - bits);
    return wide | wide >> bits;
}

uint32_t divided(uint32_t value, uint32_t by)
{
    return (value + by / 2) / by;
}

bool same_key(const FbColorKey &a, const FbColorKey &b)
{
    return memcmp(&a, &b, sizeof a) == 0;
}

bool same_alpha(const FbGlobalAlpha &a, const FbGlobalAlpha &b)
{
    return memcmp(&a, &b, sizeof a) == 0;
}

uint32_t load_pixel(const uint8_t *at, uint32_t bytes)
{
    uint32_t pixel = 0;
    memcpy(&pixel, at, bytes);
    return pixel;
}

// Where the layer lies on the picture, and which framebuffer column each picture column shows.
struct Placement {
    int left, right, top, bottom; // picture pixels, right and bottom excluded
    uint64_t scale_x, scale_y;    // picture pixels of the whole layer, before it is cut

    Placement(const FbDisplayLayer &layer, int width, int height)
    {
        const uint64_t screen_width =
            layer.screen_width ? layer.screen_width : uint64_t{layer.x} + layer.dst_width;
        const uint64_t screen_height =
            layer.screen_height ? layer.screen_height : uint64_t{layer.y} + layer.dst_height;
        const auto across = [&](uint64_t x) {
            return screen_width ? x * static_cast<uint64_t>(width) / screen_width : 0;
        };
        const auto down = [&](uint64_t y) {
            return screen_height ? y * static_cast<uint64_t>(height) / screen_height : 0;
        };
        const uint64_t first_x = across(layer.x), end_x = across(uint64_t{layer.x} + layer.dst_width);
        const uint64_t first_y = down(layer.y), end_y = down(uint64_t{layer.y} + layer.dst_height);
        scale_x = end_x - first_x;
        scale_y = end_y - first_y;
        left = static_cast<int>(std::min<uint64_t>(first_x, static_cast<uint64_t>(width)));
        right = static_cast<int>(std::min<uint64_t>(end_x, static_cast<uint64_t>(width)));
        top = static_cast<int>(std::min<uint64_t>(first_y, static_cast<uint64_t>(height)));
        bottom = static_cast<int>(std::min<uint64_t>(end_y, static_cast<uint64_t>(height)));
    }
};

// The framebuffer rows of one picture, and the chroma sums of a pair of its rows.
class Blender
{
public:
    Blender(const FramebufferView &view, const OverlayColours &colours, const MutablePlanarView &picture)
        : view_(view), colours_(colours), picture_(picture),
          place_(view.layer, picture.width, picture.height), pixel_bytes_(view.format->bits / 8),
          zero_is_clear_(colours(0).alpha == 0), sums_(static_cast<size_t>(picture.width / 2))
    {
        for (int x = place_.left; x < place_.right; ++x)
            columns_.push_back(source(static_cast<uint64_t>(x - place_.left), place_.scale_x,
                                      view.layer.display_width, view.x_offset) *
                               pixel_bytes_);
    }

    bool has_visible_pixels() const
    {
        size_t bytes = 0;
        for (int y = place_.top; y < place_.bottom; ++y)
            if (source_row(y, &bytes) != nullptr) return true;
        return false;
    }

    void draw()
    {
        for (int y = place_.top & ~1; y < place_.bottom; y += 2) {
            bool drawn = false;
            for (int row = y; row < y + 2; ++row)
                if (row >= place_.top && row < place_.bottom) drawn |= draw_luma(row);
            if (drawn) draw_chroma(y / 2);
        }
    }

private:
    struct Sums {
        uint32_t alpha, u, v; // over up to four pixels
    };

    static size_t source(uint64_t at, uint64_t scale, uint32_t size, uint32_t offset)
    {
        return static_cast<size_t>(at * size / scale + offset);
    }

    // The framebuffer row that a picture row shows; null when nothing of it can be seen.
    const uint8_t *source_row(int y, size_t *bytes) const
    {
        const size_t row = source(static_cast<uint64_t>(y - place_.top), place_.scale_y,
                                  view_.layer.display_height, view_.y_offset);
        const size_t start = row * view_.stride;
        if (start >= view_.size || columns_.empty()) return nullptr;
        *bytes = std::min(view_.stride, view_.size - start);
        const uint8_t *at = view_.memory + start;
        const bool cleared = at[0] == 0 && memcmp(at, at + 1, *bytes - 1) == 0;
        return cleared && zero_is_clear_ ? nullptr : at;
    }

    // False: the row shows nothing of the framebuffer.
    bool draw_luma(int y)
    {
        size_t bytes = 0;
        const uint8_t *row = source_row(y, &bytes);
        if (row == nullptr) return false;
        uint8_t *luma = picture_.plane[0] + static_cast<ptrdiff_t>(y) * picture_.stride[0];
        for (size_t i = 0; i < columns_.size(); ++i) {
            if (columns_[i] + pixel_bytes_ > bytes) break; // columns only grow
            const OverlayColour colour = colours_(load_pixel(row + columns_[i], pixel_bytes_));
            if (colour.alpha == 0) continue;
            const size_t x = static_cast<size_t>(place_.left) + i;
            luma[x] = static_cast<uint8_t>(
                divided(luma[x] * (255u - colour.alpha) + uint32_t{colour.y} * colour.alpha, 255));
            Sums &sums = sums_[x / 2];
            sums.alpha += colour.alpha;
            sums.u += uint32_t{colour.u} * colour.alpha;
            sums.v += uint32_t{colour.v} * colour.alpha;
        }
        return true;
    }

    void draw_chroma(int y)
    {
        uint8_t *u = picture_.plane[1] + static_cast<ptrdiff_t>(y) * picture_.stride[1];
        uint8_t *v = picture_.plane[2] + static_cast<ptrdiff_t>(y) * picture_.stride[2];
        for (size_t x = 0; x < sums_.size(); ++x) {
            Sums &sums = sums_[x];
            if (sums.alpha == 0) continue;
            u[x] = static_cast<uint8_t>(divided(u[x] * (1020u - sums.alpha) + sums.u, 1020));
            v[x] = static_cast<uint8_t>(divided(v[x] * (1020u - sums.alpha) + sums.v, 1020));
            sums = {};
        }
    }

    const FramebufferView &view_;
    const OverlayColours &colours_;
    const MutablePlanarView &picture_;
    Placement place_;
    uint32_t pixel_bytes_;
    bool zero_is_clear_;
    std::vector<size_t> columns_; // byte in a framebuffer row, by picture column from `left`
    std::vector<Sums> sums_;      // by chroma column; all 0 between pairs of rows
};

} // namespace

const PixelFormat *find_pixel_format(uint32_t code)
{
    for (const PixelFormat &format : kFormats)
        if (format.code == code && code != FB_COLOR_UNKNOWN) return &format;
    return nullptr;
}

const PixelFormat *find_pixel_format(uint32_t bits, uint32_t alpha_bits)
{
    for (const PixelFormat &format : kFormats)
        if (format.bits == bits && (format.alpha.length == alpha_bits || bits == 32)) return &format;
    return nullptr;
}

void OverlayColours::prepare(const FramebufferView &view)
{
    if (format_ == view.format && same_key(key_, view.key) && same_alpha(alpha_, view.alpha)) return;
    format_ = view.format;
    key_ = view.key;
    alpha_ = view.alpha;
    table_.clear();
    if (format_->bits != 16) return;
    std::vector<OverlayColour> table(1u << 16);
    for (uint32_t pixel = 0; pixel < table.size(); ++pixel)
        table[pixel] = mix(pixel);
    table_ = std::move(table);
}

OverlayColour OverlayColours::mix(uint32_t pixel) const
{
    const PixelFormat &format = *format_;
    const auto is_keyed = [&](const PixelField &field, uint8_t key) {
        return field_of(pixel, field) == uint32_t{key} >> (8 - field.length);
    };
    if (key_.enabled && is_keyed(format.red, key_.red) && is_keyed(format.green, key_.green) &&
        is_keyed(format.blue, key_.blue))
        return {0, 0, 0, 0};

    uint32_t alpha = 255;
    if (alpha_.enabled && (!alpha_.per_pixel || format.alpha.length == 0))
        alpha = alpha_.global_alpha;
    else if (alpha_.enabled && format.alpha.length == 1)
        alpha = field_of(pixel, format.alpha) ? alpha_.global_alpha : alpha_.zero_bit_alpha;
    else if (alpha_.enabled)
        alpha =
            divided(widened(field_of(pixel, format.alpha), format.alpha.length) * alpha_.global_alpha, 255);

    const auto red = static_cast<int>(widened(field_of(pixel, format.red), format.red.length));
    const auto green = static_cast<int>(widened(field_of(pixel, format.green), format.green.length));
    const auto blue = static_cast<int>(widened(field_of(pixel, format.blue), format.blue.length));
    return {static_cast<uint8_t>((66 * red + 129 * green + 25 * blue + 4224) >> 8),
            static_cast<uint8_t>((112 * blue - 74 * green - 38 * red + 32896) >> 8),
            static_cast<uint8_t>((112 * red - 94 * green - 18 * blue + 32896) >> 8),
            static_cast<uint8_t>(alpha)};
}

bool framebuffer_has_visible_pixels(const FramebufferView &view, OverlayColours &colours, int width,
                                    int height)
{
    colours.prepare(view);
    MutablePlanarView size;
    size.width = width;
    size.height = height;
    return Blender(view, colours, size).has_visible_pixels();
}

void blend_framebuffer(const FramebufferView &view, OverlayColours &colours, const MutablePlanarView &picture)
{
    colours.prepare(view);
    Blender(view, colours, picture).draw();
}

} // namespace vboard
