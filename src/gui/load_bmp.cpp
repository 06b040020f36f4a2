/*
 * load_bmp.cpp - uncompressed, bottom-up BMP files into a caller's surface, top row first.
 *
 * LoadBMP copies pixels as they are; LoadBMPEx converts 24-bit files to the surface's colour
 * format. The pixel area is read in blocks of rows, from the bottom row up, or straight into the
 * surface's rows where nothing is converted. A file that ends early fills the rows that it has; no
 * pixel is written that was not read, and no row beyond its pitch. Headers may state any size: the
 * memory that a load takes is bounded by what the file holds.
 * Thread: any; the surface is the caller's.
 */
#include "nvrhal.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/uio.h>
#include <unistd.h>

#include "core/abi.h"
#include "core/log.h"
#include "gui/bmp_convert.h"
#include "gui/bmp_file.h"

namespace nvrhal
{
namespace
{

ABI32_SIZE(OsdSurface, 16);
ABI_AT(OsdSurface, pitch, 8);
ABI32_AT(OsdSurface, pixels, 12);

constexpr char kBmpExtension[] = "bmp";
constexpr uint32_t kFirst32BitFormat = 6; // format codes from here on have 4-byte pixels
constexpr uint8_t kHalfTransparent = 128;

// What the address space of the 32-bit target can hold in one piece.
constexpr uint64_t kLargestArea_bytes = INT32_MAX;

// Blocks stay in the processor's cache between reading and converting.
constexpr uint64_t kBlock_bytes = 64 * 1024;

constexpr size_t kRowsARead = 64; // straight into the surface

struct Bitmap {
    FILE *file;
    BmpHeader header;
    uint32_t pixel_bytes;  // of a file pixel
    uint32_t height;       // the header's, cut to 16 bits
    uint64_t row_bytes;    // the pixels of a row
    uint64_t stride_bytes; // from one file row to the next
    uint64_t held_bytes;   // what the file has, from the first pixel to its end
};

// File rows first to end - 1, as many bytes of them as the file has.
struct PixelBlock {
    uint8_t *bytes;
    size_t size;
    uint32_t first, end;
};

// One row: what the file has of it, and where it goes.
struct Row {
    const uint8_t *from;
    size_t bytes;
    uint8_t *to;
};

int32_t refuse(const char *text)
{
    log_error_line(kBmpSource, text);
    return -1;
}

size_t smaller(uint64_t a, uint64_t b)
{
    return static_cast<size_t>(a < b ? a : b);
}

// Depth, compression and order of the rows, as far as both loaders read them.
int32_t check_header(const BmpHeader &header)
{
    if (header.bits_per_pixel / 8 < 2) return refuse("bitmap format not supported!");
    if (header.compression != 0) return refuse("not support compressed bitmap file!");
    if (header.height < 0) return refuse("bmpInfo.bmiHeader.biHeight < 0");
    return 0;
}

// Rows a block holds. When the row length was cut, rows overlap: they are read as one block.
uint32_t rows_a_block(const Bitmap &bitmap)
{
    if (bitmap.stride_bytes < bitmap.row_bytes) return bitmap.height;
    const uint64_t rows = kBlock_bytes / bitmap.stride_bytes;
    if (rows < 1) return 1;
    return rows < bitmap.height ? static_cast<uint32_t>(rows) : bitmap.height;
}

uint8_t *allocate_block(const Bitmap &bitmap, uint32_t rows)
{
    const size_t size = smaller(rows * bitmap.stride_bytes, bitmap.held_bytes);
    return static_cast<uint8_t *>(std::malloc(size > 0 ? size : 1));
}

// How many bytes a file has from an offset to its end; none when it cannot be positioned.
uint64_t bytes_from(FILE *file, uint32_t offset)
{
    if (std::fseek(file, 0, SEEK_END) != 0) return 0;
    const long size = std::ftell(file);
    return size > 0 && static_cast<uint64_t>(size) > offset ? static_cast<uint64_t>(size) - offset : 0;
}

// Where a file row goes: file rows stand from bottom to top.
uint8_t *surface_row(const Bitmap &bitmap, const OsdSurface &surface, uint32_t file_row)
{
    return static_cast<uint8_t *>(surface.pixels) +
           static_cast<size_t>(bitmap.height - 1 - file_row) * surface.pitch;
}

Row row_of(const Bitmap &bitmap, const PixelBlock &block, const OsdSurface &surface, uint32_t file_row)
{
    const size_t offset = static_cast<size_t>((file_row - block.first) * bitmap.stride_bytes);
    if (offset >= block.size) return {nullptr, 0, nullptr};
    return {block.bytes + offset, smaller(bitmap.row_bytes, block.size - offset),
            surface_row(bitmap, surface, file_row)};
}

enum class Reading { kComplete, kShort, kNoMemory };

// The area counts in whole rows, also where file rows stand closer together.
bool is_too_large(const Bitmap &bitmap)
{
    return bitmap.header.width < 1 || bitmap.row_bytes * bitmap.height > kLargestArea_bytes;
}

/** Rows that follow one another in the file and fit in the surface need no block in between. */
Reading read_rows_in_place(const Bitmap &bitmap, const OsdSurface &surface)
{
    if (is_too_large(bitmap)) return Reading::kNoMemory;
    const int descriptor = fileno(bitmap.file); // nothing is buffered
    if (lseek(descriptor, static_cast<off_t>(bitmap.header.pixel_offset), SEEK_SET) < 0)
        return Reading::kShort;

    const auto row_bytes = static_cast<size_t>(bitmap.row_bytes);
    const size_t total = row_bytes * bitmap.height;
    for (size_t done = 0; done < total;) {
        auto row = static_cast<uint32_t>(done / row_bytes);
        const size_t begun = done % row_bytes; // bytes that a short read left of the row
        iovec rows[kRowsARead];
        int count = 0;
        for (; count < static_cast<int>(kRowsARead) && row < bitmap.height; ++count, ++row)
            rows[count] = {surface_row(bitmap, surface, row), row_bytes};
        rows[0] = {static_cast<uint8_t *>(rows[0].iov_base) + begun, row_bytes - begun};
        const ssize_t got = readv(descriptor, rows, count);
        if (got <= 0) return Reading::kShort;
        done += static_cast<size_t>(got);
    }
    return Reading::kComplete;
}

// Read the pixel area block by block and hand every row that is there to `take`.
template <typename Take> Reading read_rows(const Bitmap &bitmap, const OsdSurface &surface, Take take)
{
    if (is_too_large(bitmap)) return Reading::kNoMemory;
    const uint32_t rows = rows_a_block(bitmap);
    PixelBlock block = {allocate_block(bitmap, rows), 0, 0, 0};
    if (!block.bytes) return Reading::kNoMemory;

    const uint64_t area = bitmap.stride_bytes * bitmap.height;
    uint64_t left = smaller(area, bitmap.held_bytes);
    bool complete = left == area;
    if (std::fseek(bitmap.file, static_cast<long>(bitmap.header.pixel_offset), SEEK_SET) != 0) {
        complete = false;
        left = 0;
    }
    while (left > 0) {
        block.first = block.end;
        block.end = bitmap.height - block.first < rows ? bitmap.height : block.first + rows;
        const size_t wanted = smaller((block.end - block.first) * bitmap.stride_bytes, left);
        block.size = std::fread(block.bytes, 1, wanted, bitmap.file);
        for (uint32_t row = block.first; row < block.end; ++row)
            if (const Row line = row_of(bitmap, block, surface, row); line.bytes > 0) take(line);
        left -= wanted;
        if (block.size == wanted) continue;
        complete = false;
        left = 0;
    }
    std::free(block.bytes);
    return complete ? Reading::kComplete : Reading::kShort;
}

int32_t load_plain(Bitmap &bitmap, OsdSurface *surface)
{
    // This loader knows no padding: a row is followed by the next one at once.
    bitmap.stride_bytes = bitmap.row_bytes;
    if (bitmap.header.width >= 1 && bitmap.stride_bytes % 4 != 0)
        return refuse("bitmap format not supported!");

    const bool is_16_bit = bitmap.header.bits_per_pixel == 16;
    const uint32_t to_bytes = is_16_bit ? 2 : 4;
    const uint32_t copied = bitmap.pixel_bytes < to_bytes ? bitmap.pixel_bytes : to_bytes;
    if (surface->pitch == 0) surface->pitch = surface->width * to_bytes;
    if (bitmap.height == 0) return 0;

    const Reading reading = read_rows(bitmap, *surface, [&](Row line) {
        size_t pixels = smaller(line.bytes / bitmap.pixel_bytes, surface->pitch / to_bytes);
        for (; pixels > 0; --pixels, line.from += bitmap.pixel_bytes, line.to += to_bytes) {
            std::memcpy(line.to, line.from, copied);
            if (!is_16_bit) line.to[3] = kHalfTransparent;
        }
    });
    if (reading == Reading::kNoMemory) return refuse("not enough memory to malloc!");
    if (reading == Reading::kShort) {
        log_error(kBmpSource, "fread error!line:%d\n", __LINE__);
        log_errno("fread:");
    }
    return 0;
}

bool is_32_bit_format(uint32_t color_format)
{
    return color_format == 6 || color_format == 7;
}

bool is_16_bit_format(uint32_t color_format)
{
    return color_format == 0 || color_format == 2 || color_format == 3 || color_format == 4;
}

// 24-bit pixels into a row of the surface; a format without conversion leaves it as it is.
void convert_row_24(const Row &line, uint32_t pitch, uint32_t color_format)
{
    const size_t pixels = line.bytes / 3;
    if (is_32_bit_format(color_format))
        convert_bgr24_to_32(line.from, line.to, smaller(pixels, pitch / 4));
    else if (is_16_bit_format(color_format))
        convert_bgr24_to_16(line.from, line.to, smaller(pixels, pitch / 2), color_format);
}

// Printed for every pixel of the picture, including those that a short file does not hold.
void report_missing_conversion(const Bitmap &bitmap, uint32_t color_format)
{
    if (bitmap.header.bits_per_pixel != 24) return; // the other depths need none
    if (is_32_bit_format(color_format) || is_16_bit_format(color_format)) return;
    const uint64_t pixels = static_cast<uint64_t>(bitmap.header.width) * bitmap.height;
    for (uint64_t pixel = 0; pixel < pixels; ++pixel)
        log_error(kBmpSource, "file(%s), line(%d), no such format!\n", kBmpSource, __LINE__);
}

Reading read_converted(const Bitmap &bitmap, const OsdSurface &surface, uint32_t color_format)
{
    const bool is_copied = bitmap.header.bits_per_pixel == 16 || bitmap.header.bits_per_pixel == 32;
    if (is_copied && bitmap.stride_bytes == bitmap.row_bytes && bitmap.row_bytes <= surface.pitch)
        return read_rows_in_place(bitmap, surface);
    return read_rows(bitmap, surface, [&](const Row &line) {
        if (is_copied) std::memcpy(line.to, line.from, smaller(line.bytes, surface.pitch));
        // No other depth has a conversion: the surface stays as it is.
        if (bitmap.header.bits_per_pixel == 24) convert_row_24(line, surface.pitch, color_format);
    });
}

int32_t load_converted(Bitmap &bitmap, OsdSurface *surface, uint32_t color_format)
{
    // Only 16 bits of the row length count, on purpose.
    bitmap.stride_bytes = ((bitmap.row_bytes & 0xFFFFu) + 3) & ~uint64_t{3};
    surface->pitch = surface->width * (color_format < kFirst32BitFormat ? 2 : 4);
    if (bitmap.height == 0) return 0;

    const Reading reading = read_converted(bitmap, *surface, color_format);
    if (reading == Reading::kNoMemory) return refuse("not enough memory to malloc!");
    if (reading == Reading::kShort) {
        log_error(kBmpSource, "fread (%d*%d)error!line:%d\n", static_cast<int>(bitmap.height),
                  static_cast<int>(bitmap.stride_bytes), __LINE__);
        log_errno("fread:");
    }
    report_missing_conversion(bitmap, color_format);
    return 0;
}

// What both loaders do around their own part: the checks, in this order, and the surface's size.
template <typename Load> int32_t load_file(const char *path, OsdSurface *surface, Load load)
{
    if (!path) return refuse("OSD_LoadBMP: filename=NULL");
    if (!surface || !surface->pixels) return -1;
    Bitmap bitmap = {};
    bitmap.file = open_bmp(path, &bitmap.header);
    if (!bitmap.file) return -1;

    int32_t result = check_header(bitmap.header);
    if (result == 0) {
        bitmap.pixel_bytes = bitmap.header.bits_per_pixel / 8;
        bitmap.height = static_cast<uint32_t>(bitmap.header.height) & 0xFFFFu;
        bitmap.row_bytes = static_cast<uint64_t>(bitmap.header.width) * bitmap.pixel_bytes;
        bitmap.held_bytes = bytes_from(bitmap.file, bitmap.header.pixel_offset);
        surface->width = static_cast<uint32_t>(bitmap.header.width);
        surface->height = bitmap.height;
        result = load(bitmap);
    }
    std::fclose(bitmap.file);
    return result;
}

bool has_bmp_extension(const char *path)
{
    const char *extension = GetExtName(path);
    if (extension && std::strcmp(extension, kBmpExtension) == 0) return true; // in lower case only
    log_error_line(kBmpSource, "not supported image file!");
    return false;
}

} // namespace
} // namespace nvrhal

using namespace nvrhal;

int32_t LoadBMP(const char *path, OsdSurface *surface)
{
    return load_file(path, surface, [&](Bitmap &bitmap) { return load_plain(bitmap, surface); });
}

int32_t LoadBMPEx(const char *path, OsdSurface *surface, uint32_t color_format)
{
    return load_file(path, surface,
                     [&](Bitmap &bitmap) { return load_converted(bitmap, surface, color_format); });
}

int32_t LoadImage(const char *path, OsdSurface *surface)
{
    if (!has_bmp_extension(path)) return -1;
    return LoadBMP(path, surface) == 0 ? 0 : refuse("OSD_LoadBMP error!");
}

int32_t LoadImageEx(const char *path, OsdSurface *surface, uint32_t color_format)
{
    if (!has_bmp_extension(path)) return -1;
    return LoadBMPEx(path, surface, color_format) == 0 ? 0 : refuse("OSD_LoadBMP error!");
}

int32_t LoadBitMap2Surface(const char *path, const OsdSurface *, void *buffer)
{
    OsdSurface surface = {0, 0, 0, buffer}; // pitch 0: computed from the file
    return LoadImage(path, &surface);
}

int32_t CreateSurfaceByBitMap(const char *path, OsdSurface *surface, uint32_t color_format)
{
    return LoadImageEx(path, surface, color_format) == 0 ? 0 : refuse("load bmp error!");
}
