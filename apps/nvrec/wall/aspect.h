/*
 * aspect.h - where a picture of another shape than its pane is shown: in the middle of it with its
 * own shape, or stretched over all of it.
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

/** One for all cameras, and what single channels have instead. */
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
 * The largest even rectangle of the picture's shape in the middle of a pane. The whole pane where the
 * shape is not known, or so near to the pane's that the bars would be thinner than a hundredth of it.
 */
DispAttrib fitted(const DispAttrib &pane, const PictureShape &shape);

/** "fit" or "stretch". */
std::optional<Aspect> aspect_named(const std::string &name);

/** Take "fit", "stretch" or "CH=fit" into the options. @return false = it is none of them. */
bool add_aspect(AspectOptions &options, const std::string &text);

} // namespace nvrec
