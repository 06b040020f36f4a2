/*
 * bmp_file.h - the two headers of a BMP file.
 *
 * "BM", 12 further bytes of the file header (size, two reserved words, offset of the pixels), then
 * the 40-byte info header. Little-endian. Rows stand from bottom to top when the height is positive.
 * Callers get 4 bytes more than the info header has; a file that ends within those is read as if it
 * went on with zero bytes.
 */
#pragma once

#include <cstdint>
#include <cstdio>

namespace nvrhal
{

constexpr char kBmpSource[] = "load_bmp.c";

struct BmpHeader {
    uint32_t pixel_offset; // bytes from the start of the file
    int32_t width, height; // pixels
    uint32_t bits_per_pixel;
    uint32_t compression; // 0 = none
};

/** Open a file and read the fields of its headers. Null after a message. The caller closes it. */
FILE *open_bmp(const char *path, BmpHeader *header);

} // namespace nvrhal
