/*
 * pixel_fill.h - solid rectangles in a linear pixel memory.
 *
 * A rectangle is a run of pixels a row, rows one stride apart; nothing clips it to the screen, so a
 * run that is too long goes on in the next row. Whatever lies outside the memory is left out.
 * Any thread; the caller keeps two writers apart.
 */
#pragma once

#include <cstddef>
#include <cstdint>

namespace nvrhal
{

struct PixelMemory {
    void *start;        // at least 4-byte aligned
    size_t size_bytes;  // what may be written
    uint32_t stride_px; // from one row to the next
};

struct PixelRect {
    int64_t column, row;   // of the first pixel; row * stride + column is its place in the memory
    int32_t width, height; // pixels; nothing is painted below 1
};

void fill_pixels_16(const PixelMemory &memory, const PixelRect &rect, uint16_t pixel);
void fill_pixels_32(const PixelMemory &memory, const PixelRect &rect, uint32_t pixel);

} // namespace nvrhal
