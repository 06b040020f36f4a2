/*
 * bmp_convert.h - rows of 24-bit file pixels (blue, green, red) into a surface's pixels.
 * Pure functions; source and destination do not overlap.
 */
#pragma once

#include <cstddef>
#include <cstdint>

namespace nvrhal
{

/** Into 4-byte pixels: blue, green, red, 255. */
void convert_bgr24_to_32(const uint8_t *from, uint8_t *to, size_t pixels);

/** Into 16-bit pixels, packed as row `color_format` (0 to 7) of s_OSDCompInfo says. */
void convert_bgr24_to_16(const uint8_t *from, uint8_t *to, size_t pixels, uint32_t color_format);

} // namespace nvrhal
