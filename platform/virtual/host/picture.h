/*
 * picture.h - decoded pictures as the rest of the board sees them: three planes of 4:2:0, 8 bits,
 * limited range, kept alive by reference count and never written to after the decoder is done.
 */
#ifndef VBOARD_PICTURE_H
#define VBOARD_PICTURE_H

#include <cstddef>
#include <cstdint>
#include <memory>

namespace vboard
{

/* Planes to read. Chroma is (width + 1) / 2 by (height + 1) / 2. */
struct PlanarView {
    const uint8_t *plane[3] = {};
    int stride[3] = {};
    int width = 0;
    int height = 0;
};

/* Planes to write. */
struct MutablePlanarView {
    uint8_t *plane[3] = {};
    int stride[3] = {};
    int width = 0;
    int height = 0;
};

/* A part of a picture. x and y must be even. */
template <typename View> View part_of(const View &whole, int x, int y, int width, int height)
{
    View part = whole;
    part.plane[0] += static_cast<ptrdiff_t>(y) * whole.stride[0] + x;
    for (int chroma = 1; chroma < 3; ++chroma)
        part.plane[chroma] += static_cast<ptrdiff_t>(y / 2) * whole.stride[chroma] + x / 2;
    part.width = width;
    part.height = height;
    return part;
}

inline PlanarView read_only(const MutablePlanarView &view)
{
    PlanarView result;
    for (int plane = 0; plane < 3; ++plane) {
        result.plane[plane] = view.plane[plane];
        result.stride[plane] = view.stride[plane];
    }
    result.width = view.width;
    result.height = view.height;
    return result;
}

/* One decoded picture. */
class Picture
{
public:
    virtual ~Picture() = default;

    PlanarView view;
    uint64_t pts = 0; // as it was sent
};

using PicturePtr = std::shared_ptr<const Picture>;

} // namespace vboard

#endif
