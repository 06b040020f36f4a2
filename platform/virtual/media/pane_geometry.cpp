/* pane_geometry.cpp - windows and zoom windows in pixels. */
#include "media/pane_geometry.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace vboard
{

Rect output_window(const MI_Rect &window, const MI_DISP_VideoLayerAttr &layer, int output_width,
                   int output_height)
{
    const int width = std::min(output_width, layer.window.x + layer.window.width);
    const int height = std::min(output_height, layer.window.y + layer.window.height);
    // Sizes are the application's own, up to 65535: their products need 64 bits.
    const auto across = [&](int64_t x) {
        const int64_t at = layer.window.x + x * layer.window.width / static_cast<int64_t>(layer.width);
        return static_cast<int>(std::min<int64_t>(width, at)) & ~1;
    };
    const auto down = [&](int64_t y) {
        const int64_t at = layer.window.y + y * layer.window.height / static_cast<int64_t>(layer.height);
        return static_cast<int>(std::min<int64_t>(height, at)) & ~1;
    };
    const int left = across(window.x);
    const int top = down(window.y);
    const int right = across(int64_t{window.x} + window.width);
    const int bottom = down(int64_t{window.y} + window.height);
    return {left, top, right - left, bottom - top};
}

Rect picture_crop(const MI_Rect &zoom, const MI_DISP_InputPortAttr &attr, int width, int height)
{
    if (zoom.width == 0 || zoom.height == 0) return {0, 0, width, height};
    const int source_width = attr.source_width != 0 ? attr.source_width : width;
    const int source_height = attr.source_height != 0 ? attr.source_height : height;
    const auto part = [](int start, int length, int source, int delivered) {
        const int64_t from = int64_t{start} * delivered / source & ~int64_t{1};
        const int first = static_cast<int>(std::clamp<int64_t>(from, 0, std::max(0, (delivered - 2) & ~1)));
        const int64_t size = int64_t{length} * delivered / source & ~int64_t{1};
        return std::pair(first, static_cast<int>(std::clamp<int64_t>(size, 2, delivered - first)));
    };
    if (width < 2 || height < 2) return {0, 0, width, height};
    const auto [x, crop_width] = part(zoom.x, zoom.width, source_width, width);
    const auto [y, crop_height] = part(zoom.y, zoom.height, source_height, height);
    return {x, y, crop_width, crop_height};
}

bool overlap(const Rect &a, const Rect &b)
{
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

} // namespace vboard
