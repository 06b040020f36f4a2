/* snap_pictures.h - JPEG images seen by a decoder that shares nothing with the board's encoder. */
#ifndef SNAP_PICTURES_H
#define SNAP_PICTURES_H

#include "board_rig.h"

namespace snap_test
{

/* A full-range picture, as JPEG images are. */
rig::Picture decode_jpeg(const void *bytes, size_t size);

/* A limited-range picture of the board with its levels spread over the whole byte. */
rig::Picture full_range(const rig::Picture &picture);

/* Peak signal-to-noise ratio over all planes, dB; 99 for equal pictures. */
double psnr_db(const rig::Picture &a, const rig::Picture &b);

/* The first luma step of the image's quantisation table; 0 = none found. */
unsigned first_luma_step(const void *bytes, size_t size);

} // namespace snap_test

#endif
