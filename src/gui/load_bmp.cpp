/*
 * load_bmp.cpp - uncompressed, bottom-up BMP files into a caller's surface, top row first.
 *
 * LoadBMP copies pixels as they are; LoadBMPEx converts 24-bit files to the surface's colour
 * format. The file's pixel area is read whole. A file that ends early fills the rows that it has,
 * which are the lower ones; no pixel is written that was not read, and no row beyond its pitch.
 * Thread: any; the surface is the caller's.
 */
#include "nvrhal.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

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

struct Bitmap {
    FILE *file;
    BmpHeader header;
    uint32_t pixel_bytes; // of a file pixel
    uint32_t height;      // the header's, cut to 16 bits
};

// The pixel area as read; `size` bytes of it are there.
struct PixelArea {
    uint8_t *bytes;
    size_t size;
    uint32_t stride; // bytes from one file row to the next
};

int32_t refuse(const char *text)
{
    log_error_line(kBmpSource, text);
    return -1;
}

// The checks that both loaders make; on success the file is open and the surface has its size.
int32_t open_bitmap(const char *path, OsdSurface *surface, Bitmap *bitmap)
{
    if (!path) return refuse("OSD_LoadBMP: filename=NULL");
    if (!surface || !surface->pixels) return -1;
    BmpHeader &header = bitmap->header;
    if (!read_bmp_header(path, &header)) return -1;

    bitmap->pixel_bytes = header.bits_per_pixel / 8;
    if (bitmap->pixel_bytes < 2) return refuse("bitmap format not supported!");
    if (header.compression != 0) return refuse("not support compressed bitmap file!");
    if (header.height < 0) return refuse("bmpInfo.bmiHeader.biHeight < 0");

    bitmap->file = std::fopen(path, "rb");
    if (!bitmap->file) {
        log_error(kBmpSource, "Open file faild:%s!\n", path);
        return -1;
    }
    bitmap->height = static_cast<uint32_t>(header.height) & 0xFFFFu;
    surface->width = static_cast<uint32_t>(header.width);
    surface->height = bitmap->height;
    return 0;
}

uint64_t row_bytes(const Bitmap &bitmap)
{
    return static_cast<uint64_t>(bitmap.header.width) * bitmap.pixel_bytes;
}

bool allocate_area(const Bitmap &bitmap, uint64_t stride, PixelArea *area)
{
    const uint64_t size = stride * bitmap.height;
    *area = {nullptr, static_cast<size_t>(size), static_cast<uint32_t>(stride)};
    if (bitmap.header.width >= 1 && size <= kLargestArea_bytes)
        area->bytes = static_cast<uint8_t *>(std::malloc(size > 0 ? area->size : 1));
    if (area->bytes) return true;
    log_error_line(kBmpSource, "not enough memory to malloc!");
    return false;
}

// Whether all was there; what was not is left out of the area.
bool read_area(const Bitmap &bitmap, PixelArea *area)
{
    const bool found = std::fseek(bitmap.file, static_cast<long>(bitmap.header.pixel_offset), SEEK_SET) == 0;
    const size_t wanted = area->size;
    area->size = found ? std::fread(area->bytes, 1, wanted, bitmap.file) : 0;
    return area->size == wanted;
}

size_t smaller(uint64_t a, uint64_t b)
{
    return static_cast<size_t>(a < b ? a : b);
}

// Surface row `row` and the bytes of it that the file has: file rows stand from bottom to top.
struct Row {
    const uint8_t *from;
    size_t bytes;
    uint8_t *to;
};

Row row_of(const Bitmap &bitmap, const PixelArea &area, const OsdSurface &surface, uint32_t row)
{
    const size_t offset = static_cast<size_t>(bitmap.height - 1 - row) * area.stride;
    if (offset >= area.size) return {nullptr, 0, nullptr};
    return {area.bytes + offset, smaller(row_bytes(bitmap), area.size - offset),
            static_cast<uint8_t *>(surface.pixels) + static_cast<size_t>(row) * surface.pitch};
}

void copy_rows(const Bitmap &bitmap, const PixelArea &area, const OsdSurface &surface)
{
    const bool is_16_bit = bitmap.header.bits_per_pixel == 16;
    const uint32_t to_bytes = is_16_bit ? 2 : 4;
    const uint32_t copied = bitmap.pixel_bytes < to_bytes ? bitmap.pixel_bytes : to_bytes;
    for (uint32_t row = 0; row < bitmap.height; ++row) {
        Row line = row_of(bitmap, area, surface, row);
        size_t pixels = smaller(line.bytes / bitmap.pixel_bytes, surface.pitch / to_bytes);
        for (; pixels > 0; --pixels, line.from += bitmap.pixel_bytes, line.to += to_bytes) {
            std::memcpy(line.to, line.from, copied);
            if (!is_16_bit) line.to[3] = kHalfTransparent;
        }
    }
}

void convert_row_24(const Row &line, uint32_t pitch, uint32_t color_format)
{
    const size_t pixels = line.bytes / 3;
    switch (color_format) {
    case 6:
    case 7: return convert_bgr24_to_32(line.from, line.to, smaller(pixels, pitch / 4));
    case 0:
    case 2:
    case 3:
    case 4: return convert_bgr24_to_16(line.from, line.to, smaller(pixels, pitch / 2), color_format);
    default:
        for (size_t pixel = 0; pixel < pixels; ++pixel)
            log_error(kBmpSource, "file(%s), line(%d), no such format!\n", kBmpSource, __LINE__);
    }
}

void convert_rows(const Bitmap &bitmap, const PixelArea &area, const OsdSurface &surface,
                  uint32_t color_format)
{
    for (uint32_t row = 0; row < bitmap.height; ++row) {
        const Row line = row_of(bitmap, area, surface, row);
        switch (bitmap.header.bits_per_pixel) {
        case 16:
        case 32:
            if (line.bytes > 0) std::memcpy(line.to, line.from, smaller(line.bytes, surface.pitch));
            break;
        case 24: convert_row_24(line, surface.pitch, color_format); break;
        default: break; // no other depth has a conversion: the surface stays as it is
        }
    }
}

int32_t load_plain(const Bitmap &bitmap, OsdSurface *surface)
{
    // Padded rows are not this loader's business: a row is followed by the next one at once.
    const uint64_t stride = row_bytes(bitmap);
    if (bitmap.header.width >= 1 && stride % 4 != 0) return refuse("bitmap format not supported!");

    PixelArea area;
    if (!allocate_area(bitmap, stride, &area)) return -1;
    if (!read_area(bitmap, &area)) {
        log_error(kBmpSource, "fread error!line:%d\n", __LINE__);
        std::perror("fread:");
    }
    const uint32_t to_bytes = bitmap.header.bits_per_pixel == 16 ? 2 : 4;
    if (surface->pitch == 0) surface->pitch = surface->width * to_bytes;
    copy_rows(bitmap, area, *surface);
    std::free(area.bytes);
    return 0;
}

int32_t load_converted(const Bitmap &bitmap, OsdSurface *surface, uint32_t color_format)
{
    // Only 16 bits of the row length count, on purpose.
    const uint64_t stride = ((row_bytes(bitmap) & 0xFFFFu) + 3) & ~uint64_t{3};
    PixelArea area;
    if (!allocate_area(bitmap, stride, &area)) return -1;
    if (!read_area(bitmap, &area)) {
        log_error(kBmpSource, "fread (%d*%d)error!line:%d\n", static_cast<int>(bitmap.height),
                  static_cast<int>(area.stride), __LINE__);
        std::perror("fread:");
    }
    surface->pitch = surface->width * (color_format < kFirst32BitFormat ? 2 : 4);
    convert_rows(bitmap, area, *surface, color_format);
    std::free(area.bytes);
    return 0;
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
    Bitmap bitmap;
    if (open_bitmap(path, surface, &bitmap) != 0) return -1;
    const int32_t result = load_plain(bitmap, surface);
    std::fclose(bitmap.file);
    return result;
}

int32_t LoadBMPEx(const char *path, OsdSurface *surface, uint32_t color_format)
{
    Bitmap bitmap;
    if (open_bitmap(path, surface, &bitmap) != 0) return -1;
    const int32_t result = load_converted(bitmap, surface, color_format);
    std::fclose(bitmap.file);
    return result;
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
