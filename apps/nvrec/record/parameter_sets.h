/*
 * parameter_sets.h - gets the parameter sets out of a key frame: what a decoder must know before the first
 * picture.
 */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "camera/codec.h"

namespace nvrec
{

/**
 * The parameter sets of an Annex B access unit, each behind a start code, in the order in which
 * they stand: sequence and picture (H.264), video, sequence and picture (H.265). A set that came twice, from
 * the camera and in its session description, is given once. Empty when the unit carries none.
 */
std::vector<uint8_t> parameter_sets_of(std::span<const uint8_t> unit, Codec codec);

} // namespace nvrec
