/* scaler.cpp - libyuv and libswscale behind scaler.h, and the rule that chooses between them. */
#include "host/scaler.h"

#include <libyuv.h>

#include "host/av_handles.h"

namespace vboard
{

struct Scaler::State {
    SwsPtr context;
};

ScaleMethod choose_scale_method(int source_width, int source_height, int width, int height)
{
    if (source_width == width && source_height == height) return ScaleMethod::copy;
    return ScaleMethod::libyuv;
}

Scaler::Scaler() : state_(std::make_unique<State>()) {}
Scaler::~Scaler() = default;

bool Scaler::scale(const PlanarView &from, const MutablePlanarView &to)
{
    if (from.width <= 0 || from.height <= 0 || to.width <= 0 || to.height <= 0) return false;
    switch (choose_scale_method(from.width, from.height, to.width, to.height)) {
    case ScaleMethod::copy: copy_picture(from, to); return true;
    case ScaleMethod::libyuv:
        return libyuv::I420Scale(from.plane[0], from.stride[0], from.plane[1], from.stride[1], from.plane[2],
                                 from.stride[2], from.width, from.height, to.plane[0], to.stride[0],
                                 to.plane[1], to.stride[1], to.plane[2], to.stride[2], to.width, to.height,
                                 libyuv::kFilterBox) == 0;
    case ScaleMethod::libswscale: break;
    }
    SwsPtr &context = state_->context;
    context.reset(sws_getCachedContext(context.release(), from.width, from.height, AV_PIX_FMT_YUV420P,
                                       to.width, to.height, AV_PIX_FMT_YUV420P, SWS_BILINEAR, nullptr,
                                       nullptr, nullptr));
    if (context == nullptr) return false;
    return sws_scale(context.get(), from.plane, from.stride, 0, from.height, to.plane, to.stride) ==
           to.height;
}

void fill_picture(const MutablePlanarView &to, uint8_t y, uint8_t u, uint8_t v)
{
    libyuv::I420Rect(to.plane[0], to.stride[0], to.plane[1], to.stride[1], to.plane[2], to.stride[2], 0, 0,
                     to.width, to.height, y, u, v);
}

bool convert_to_rgb24(const PlanarView &from, uint8_t *to, int stride)
{
    // libyuv names pixel layouts by the order in a little-endian word: its RAW is R, G, B in memory.
    return libyuv::I420ToRAW(from.plane[0], from.stride[0], from.plane[1], from.stride[1], from.plane[2],
                             from.stride[2], to, stride, from.width, from.height) == 0;
}

void copy_picture(const PlanarView &from, const MutablePlanarView &to)
{
    libyuv::I420Copy(from.plane[0], from.stride[0], from.plane[1], from.stride[1], from.plane[2],
                     from.stride[2], to.plane[0], to.stride[0], to.plane[1], to.stride[1], to.plane[2],
                     to.stride[2], from.width, from.height);
}

} // namespace vboard
