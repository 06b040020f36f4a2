/* parameter_sets.h - what a decoder must know before the first picture, out of a key frame. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "camera/codec.h"

namespace nvrec
{

/**
 * The parameter sets of an Annex B access unit, each behind a start code, in the order in which
 * they stand: sequence and picture (H.264), video, sequence and picture (H.265). One that a camera
 * and its session description both sent comes once. Empty when the unit carries none.
 */
std::vector<uint8_t> parameter_sets_of(std::span<const uint8_t> unit, Codec codec);

} // namespace nvrec
