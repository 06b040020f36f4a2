/*
 * scaler.h - pictures to other sizes. The method depends on nothing but the four sizes, so that a
 * reference which calls the same function gets the same bytes.
 */
#ifndef VBOARD_SCALER_H
#define VBOARD_SCALER_H

#include <memory>

#include "host/picture.h"

namespace vboard
{

enum class ScaleMethod {
    copy,       // sizes are equal
    libyuv,     // libyuv's box filter: averages over source pixels where a side at least halves
    libswscale, // libswscale's bilinear filter
};

/* The method for a pair of sizes: the faster of those whose quality will do (see scaler.cpp). */
ScaleMethod choose_scale_method(int source_width, int source_height, int width, int height);

/* Scales pictures; keeps what can be kept between pictures of the same sizes. One thread at a time. */
class Scaler
{
public:
    Scaler();
    ~Scaler();
    Scaler(const Scaler &) = delete;
    Scaler &operator=(const Scaler &) = delete;

    /* Fill `to` with `from`. False: a size is 0, or no memory. */
    bool scale(const PlanarView &from, const MutablePlanarView &to);

private:
    bool scale_with_libswscale(const PlanarView &from, const MutablePlanarView &to);

    struct State;
    std::unique_ptr<State> state_;
};

/* Black, or any colour, over a part of a picture. Limited-range Y, U and V. */
void fill_picture(const MutablePlanarView &to, uint8_t y, uint8_t u, uint8_t v);

/* I420 to R, G, B bytes, BT.601 limited range. */
bool convert_to_rgb24(const PlanarView &from, uint8_t *to, int stride);

/* Copy without scaling; sizes must be equal. */
void copy_picture(const PlanarView &from, const MutablePlanarView &to);

} // namespace vboard

#endif
