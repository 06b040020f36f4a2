/*
 * jpeg_encoder.cpp - libjpeg behind jpeg_encoder.h.
 *
 * Planes are handed over as raw data, 16 luma rows at a time, from a strip that is padded to whole
 * blocks by repeating the picture's edge. libjpeg reports errors by longjmp: between setjmp and the
 * end of the encoding no object with a destructor is made.
 */
#include "host/jpeg_encoder.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <algorithm>
#include <array>
#include <vector>

#include <jpeglib.h>

namespace vboard
{
namespace
{

constexpr int kBlock = 8;
constexpr int kLumaRows = 2 * kBlock; // of a strip
constexpr int kMaxSide = 65535;
constexpr unsigned long kHeaderBytes = 4096;
constexpr unsigned long kMaxBytesPerPixel = 4;

using RangeTable = std::array<uint8_t, 256>;

/* Levels from `black` to `white` stretched to the whole byte around `centre`. */
constexpr RangeTable stretch(int black, int white, int centre_from, int centre_to)
{
    RangeTable table = {};
    for (int level = 0; level < 256; ++level) {
        const int span = white - black;
        const int scaled = (level - centre_from) * 255 * 2;
        const int rounded = (scaled + (scaled >= 0 ? span : -span)) / (2 * span);
        table[static_cast<size_t>(level)] = static_cast<uint8_t>(std::clamp(rounded + centre_to, 0, 255));
    }
    return table;
}

constexpr RangeTable kLuma = stretch(16, 235, 16, 0);
constexpr RangeTable kChroma = stretch(16, 240, 128, 128);
static_assert(kLuma[16] == 0 && kLuma[235] == 255 && kLuma[0] == 0 && kLuma[255] == 255);
static_assert(kChroma[128] == 128 && kChroma[16] == 0 && kChroma[240] == 255);

struct ErrorExit {
    jpeg_error_mgr manager; // first: libjpeg hands its address back
    std::jmp_buf back;
};

[[noreturn]] void leave(j_common_ptr common)
{
    std::longjmp(reinterpret_cast<ErrorExit *>(common->err)->back, 1);
}

void say_nothing(j_common_ptr) {}

/* Rows of one plane, padded to whole blocks. */
struct Strip {
    std::vector<uint8_t> bytes;
    std::array<JSAMPROW, kLumaRows> rows = {};

    Strip(int width, int row_count)
    {
        const size_t padded = (static_cast<size_t>(width) + kLumaRows - 1) / kLumaRows * kLumaRows;
        bytes.resize(padded * static_cast<size_t>(row_count));
        for (int row = 0; row < row_count; ++row)
            rows[static_cast<size_t>(row)] = bytes.data() + padded * static_cast<size_t>(row);
        padded_width_ = padded;
    }

    /* Fill `row_count` rows from row `first` of a plane on. */
    void fill(const uint8_t *plane, int stride, int width, int height, int first, int row_count,
              const RangeTable &range)
    {
        for (int row = 0; row < row_count; ++row) {
            const int from = std::min(first + row, height - 1);
            const uint8_t *source = plane + static_cast<ptrdiff_t>(from) * stride;
            uint8_t *target = rows[static_cast<size_t>(row)];
            for (int x = 0; x < width; ++x)
                target[x] = range[source[x]];
            memset(target + width, target[width - 1], padded_width_ - static_cast<size_t>(width));
        }
    }

private:
    size_t padded_width_ = 0;
};

struct Strips {
    Strip y, u, v;
};

void describe(jpeg_compress_struct &jpeg, const PlanarView &picture, int quality, int restart_rows)
{
    jpeg.image_width = static_cast<JDIMENSION>(picture.width);
    jpeg.image_height = static_cast<JDIMENSION>(picture.height);
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_YCbCr;
    jpeg_set_defaults(&jpeg); // 4:2:0
    jpeg_set_quality(&jpeg, quality, TRUE);
    jpeg.raw_data_in = TRUE;
    jpeg.restart_in_rows = restart_rows;
}

void write_rows(jpeg_compress_struct &jpeg, const PlanarView &picture, Strips &strips)
{
    const int chroma_width = (picture.width + 1) / 2;
    const int chroma_height = (picture.height + 1) / 2;
    JSAMPARRAY planes[3] = {strips.y.rows.data(), strips.u.rows.data(), strips.v.rows.data()};
    while (jpeg.next_scanline < jpeg.image_height) {
        const int row = static_cast<int>(jpeg.next_scanline);
        strips.y.fill(picture.plane[0], picture.stride[0], picture.width, picture.height, row, kLumaRows,
                      kLuma);
        strips.u.fill(picture.plane[1], picture.stride[1], chroma_width, chroma_height, row / 2, kBlock,
                      kChroma);
        strips.v.fill(picture.plane[2], picture.stride[2], chroma_width, chroma_height, row / 2, kBlock,
                      kChroma);
        jpeg_write_raw_data(&jpeg, planes, kLumaRows);
    }
}

} // namespace

void JpegImage::Free::operator()(uint8_t *bytes) const
{
    free(bytes);
}

JpegImage encode_jpeg(const PlanarView &picture, int quality, int restart_rows)
{
    if (picture.width <= 0 || picture.height <= 0) return {};
    if (picture.width > kMaxSide || picture.height > kMaxSide) return {};
    Strips strips = {
        {picture.width, kLumaRows}, {(picture.width + 1) / 2, kBlock}, {(picture.width + 1) / 2, kBlock}};

    // Large enough for any picture in practice; should libjpeg need more, it takes a buffer of its own.
    unsigned long size = kHeaderBytes + static_cast<unsigned long>(picture.width) *
                                            static_cast<unsigned long>(picture.height) * kMaxBytesPerPixel;
    auto *const room = static_cast<unsigned char *>(malloc(size));
    if (room == nullptr) return {};
    unsigned char *bytes = room;
    ErrorExit error;
    jpeg_compress_struct jpeg = {};
    jpeg.err = jpeg_std_error(&error.manager);
    error.manager.error_exit = leave;
    error.manager.output_message = say_nothing;
    if (setjmp(error.back) != 0) {
        jpeg_destroy_compress(&jpeg);
        free(room);
        return {};
    }
    jpeg_create_compress(&jpeg);
    jpeg_mem_dest(&jpeg, &bytes, &size);
    describe(jpeg, picture, quality, restart_rows);
    jpeg_start_compress(&jpeg, TRUE);
    write_rows(jpeg, picture, strips);
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    if (bytes != room) free(room);
    return {bytes, size};
}

} // namespace vboard
