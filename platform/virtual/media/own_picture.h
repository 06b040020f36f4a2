/* own_picture.h - an I420 picture in memory of the board's own, rows padded to whole cache lines. */
#ifndef VBOARD_OWN_PICTURE_H
#define VBOARD_OWN_PICTURE_H

#include <memory>
#include <new>

#include "host/picture.h"

namespace vboard
{

class OwnPicture
{
public:
    /* Contents are lost when the size changes. */
    void resize(int width, int height)
    {
        if (width == view_.width && height == view_.height) return;
        const int chroma_width = (width + 1) / 2;
        const int chroma_height = (height + 1) / 2;
        const size_t strides[3] = {padded(width), padded(chroma_width), padded(chroma_width)};
        const size_t rows[3] = {static_cast<size_t>(height), static_cast<size_t>(chroma_height),
                                static_cast<size_t>(chroma_height)};
        // 64 spare bytes: vector loops may read past the last row's end.
        bytes_.reset(static_cast<uint8_t *>(::operator new(
            strides[0] * rows[0] + strides[1] * rows[1] + strides[2] * rows[2] + 64, kAlignment)));
        uint8_t *at = bytes_.get();
        for (int plane = 0; plane < 3; ++plane) {
            view_.plane[plane] = at;
            view_.stride[plane] = static_cast<int>(strides[plane]);
            at += strides[plane] * rows[plane];
        }
        view_.width = width;
        view_.height = height;
    }

    const MutablePlanarView &view() const { return view_; }

private:
    static constexpr std::align_val_t kAlignment{64};
    struct Free {
        void operator()(uint8_t *bytes) const { ::operator delete(bytes, kAlignment); }
    };
    static size_t padded(int width) { return (static_cast<size_t>(width) + 63) & ~size_t{63}; }

    std::unique_ptr<uint8_t, Free> bytes_;
    MutablePlanarView view_;
};

} // namespace vboard

#endif
