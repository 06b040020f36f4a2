/*
 * aspect.h - places a picture whose shape differs from its pane's: in the middle of the pane in its own
 * shape, or stretched over the whole pane.
 */
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "nvrhal.h"

namespace nvrec
{

enum class Aspect { kFit, kStretch };

/** The mode of all cameras, and of single channels that have another one. */
struct AspectOptions {
    Aspect all = Aspect::kFit;
    std::map<int, Aspect> given; /* by channel */

    Aspect of(int channel) const;
};

/** A picture's width and height, in any unit; zeros = not known. */
struct PictureShape {
    uint32_t width = 0, height = 0;

    bool is_known() const { return width > 0 && height > 0; }
    bool operator==(const PictureShape &) const = default;
};

/**
 * The largest rectangle with even numbers and the picture's shape in the middle of a pane. The whole pane if
 * the shape is not known, or so near to the pane's that the bars would be thinner than a hundredth of it.
 */
DispAttrib fitted(const DispAttrib &pane, const PictureShape &shape);

/** "fit" or "stretch". */
std::optional<Aspect> aspect_named(const std::string &name);

/** Take "fit", "stretch" or "CH=fit" into the options. @return false = it is none of them. */
bool add_aspect(AspectOptions &options, const std::string &text);

} // namespace nvrec
