/* scaler.cpp - libyuv and libswscale behind scaler.h, and the rule that chooses between them. */
#include "host/scaler.h"

#include <libyuv.h>

#include "host/av_handles.h"

namespace vboard
{

namespace
{

/* How many times wider and higher the result is, as a fraction. */
struct Ratio {
    int numerator, denominator;
};

// libyuv has code of its own for these, if both sides have the same one: 0.02 to 0.2 ns a source pixel.
constexpr Ratio kDirectRatios[] = {{2, 1}, {3, 4}, {1, 2}, {3, 8}, {1, 4}};

constexpr int64_t kLargestBox_px = 256; // source pixels in a result pixel

bool has_ratio(int from, int to, Ratio ratio)
{
    return int64_t{to} * ratio.denominator == int64_t{from} * ratio.numerator;
}

} // namespace

struct Scaler::State {
    SwsPtr context;
    FramePtr
        bounce; // where libswscale writes: its vector loops write past the right edge of what they are given
};

/*
 * Measured on one core of an x86-64 server with AVX2, ms a picture, libyuv (box) : libswscale
 * (bilinear), 4:2:0:
 *
 *     direct ratios    1920x1080 -> 960x540   0.06 : 0.67     640x360 -> 480x270    0.02 : 0.13
 *                      960x540 -> 1920x1080   0.22 : 0.74
 *     same width       704x576 -> 704x540     0.02 : 0.29
 *     rows halved      1920x1080 -> 640x360   0.50 : 0.67     704x576 -> 480x270    0.17 : 0.20
 *                      3840x2160 -> 480x270   0.86 : 2.01     1280x720 -> 480x360   0.22 : 0.34
 *     anything else    1920x1080 -> 1280x720  1.19 : 0.90     1920x1080 -> 1366x768 1.36 : 1.00
 *                      704x576 -> 640x360     0.29 : 0.25     704x576 -> 960x540    0.66 : 0.40
 *                      640x360 -> 960x540     0.44 : 0.25     1920x1080 -> 960x1080 1.23 : 0.66
 *
 * libyuv's general path works on the fewer of the source's and the result's rows, at 1.3 ns a result
 * column; libswscale's works on every source row, at 0.7 ns. Hence the rule of the halved rows.
 */
ScaleMethod choose_scale_method(int source_width, int source_height, int width, int height)
{
    if (source_width == width && source_height == height) return ScaleMethod::copy;
    if (source_width == width) return ScaleMethod::libyuv;
    // libyuv's box divides by a 16-bit fraction: beyond this area it darkens visibly.
    if (int64_t{source_width} * source_height > kLargestBox_px * width * height)
        return ScaleMethod::libswscale;
    for (const Ratio ratio : kDirectRatios)
        if (has_ratio(source_width, width, ratio) && has_ratio(source_height, height, ratio))
            return ScaleMethod::libyuv;
    return int64_t{height} * 2 <= source_height ? ScaleMethod::libyuv : ScaleMethod::libswscale;
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
    return scale_with_libswscale(from, to);
}

bool Scaler::scale_with_libswscale(const PlanarView &from, const MutablePlanarView &to)
{
    SwsPtr &context = state_->context;
    context.reset(sws_getCachedContext(context.release(), from.width, from.height, AV_PIX_FMT_YUV420P,
                                       to.width, to.height, AV_PIX_FMT_YUV420P, SWS_BILINEAR, nullptr,
                                       nullptr, nullptr));
    FramePtr &bounce = state_->bounce;
    if (bounce == nullptr || bounce->width != to.width || bounce->height != to.height) {
        bounce.reset(av_frame_alloc());
        if (bounce == nullptr) return false;
        bounce->format = AV_PIX_FMT_YUV420P;
        bounce->width = to.width;
        bounce->height = to.height;
        // Rows padded to whole vectors.
        if (av_frame_get_buffer(bounce.get(), 64) < 0) bounce.reset();
    }
    if (context == nullptr || bounce == nullptr) return false;
    if (sws_scale(context.get(), from.plane, from.stride, 0, from.height, bounce->data, bounce->linesize) !=
        to.height)
        return false;
    PlanarView scaled;
    for (int plane = 0; plane < 3; ++plane) {
        scaled.plane[plane] = bounce->data[plane];
        scaled.stride[plane] = bounce->linesize[plane];
    }
    scaled.width = to.width;
    scaled.height = to.height;
    copy_picture(scaled, to);
    return true;
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
