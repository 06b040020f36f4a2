/* aspect.cpp - see aspect.h. */
#include "wall/aspect.h"

#include <charconv>

namespace nvrec
{
namespace
{

constexpr int kThinnest = 100; /* bars of less than a 100th of the pane are not worth having */

int even(int64_t value)
{
    return static_cast<int>(value & ~int64_t{1});
}

} // namespace

Aspect AspectOptions::of(int channel) const
{
    const auto found = given.find(channel);
    return found == given.end() ? all : found->second;
}

DispAttrib fitted(const DispAttrib &pane, const PictureShape &shape)
{
    if (!shape.is_known()) return pane;
    const int64_t shape_w = shape.width, shape_h = shape.height;
    int width = pane.w, height = even(pane.w * shape_h / shape_w);
    if (height > pane.h) {
        height = pane.h;
        width = even(pane.h * shape_w / shape_h);
    }
    if (width < 2 || height < 2) return pane; /* no picture is of such a shape */
    if ((pane.w - width) * kThinnest <= pane.w && (pane.h - height) * kThinnest <= pane.h) return pane;

    DispAttrib inside = pane;
    inside.x = static_cast<uint16_t>(pane.x + even((pane.w - width) / 2));
    inside.y = static_cast<uint16_t>(pane.y + even((pane.h - height) / 2));
    inside.w = static_cast<uint16_t>(width);
    inside.h = static_cast<uint16_t>(height);
    return inside;
}

std::optional<Aspect> aspect_named(const std::string &name)
{
    if (name == "fit") return Aspect::kFit;
    if (name == "stretch") return Aspect::kStretch;
    return std::nullopt;
}

bool add_aspect(AspectOptions &options, const std::string &text)
{
    const size_t equals = text.find('=');
    const auto aspect = aspect_named(equals == std::string::npos ? text : text.substr(equals + 1));
    if (!aspect) return false;
    if (equals == std::string::npos) {
        options.all = *aspect;
        return true;
    }
    int channel = -1;
    const char *end = text.data() + equals;
    const auto [stop, error] = std::from_chars(text.data(), end, channel);
    if (error != std::errc() || stop != end || channel < 0 || channel >= NVRHAL_MAX_CAMERAS) return false;
    options.given[channel] = *aspect;
    return true;
}

} // namespace nvrec
