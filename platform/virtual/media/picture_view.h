/* picture_view.h - pictures of the control face as the scaler and the window take them. */
#ifndef VBOARD_PICTURE_VIEW_H
#define VBOARD_PICTURE_VIEW_H

#include <cstddef>
#include <cstdint>

#include "host/picture.h"
#include "vboard.h"

namespace vboard
{

inline PlanarView view_of(const vboard_picture &picture)
{
    PlanarView view;
    for (int plane = 0; plane < 3; ++plane) {
        view.plane[plane] = picture.plane[plane];
        view.stride[plane] = static_cast<int>(picture.stride[plane]);
    }
    view.width = static_cast<int>(picture.width);
    view.height = static_cast<int>(picture.height);
    return view;
}

inline MutablePlanarView packed_view(uint8_t *bytes, int width, int height)
{
    MutablePlanarView view;
    const size_t luma = static_cast<size_t>(width) * static_cast<size_t>(height);
    view.plane[0] = bytes;
    view.plane[1] = bytes + luma;
    view.plane[2] = bytes + luma + luma / 4;
    view.stride[0] = width;
    view.stride[1] = view.stride[2] = width / 2;
    view.width = width;
    view.height = height;
    return view;
}

} // namespace vboard

#endif
