/*
 * qr_image.cpp - a text as a QR code in an 8-bit grey BMP file.
 *
 * The file: a 14-byte header, a 40-byte header, 256 greys of 4 bytes, then the pixels, rows from
 * bottom to top, each padded to 4 bytes. A module is 6 x 6 pixels of index 1 (dark) or 255
 * (light), with two light modules on every side.
 *
 * Nothing is returned to the caller: every failure ends the process.
 * Thread: any.
 */
#include "nvrhal.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <qrencode.h>

#include "core/log.h"

namespace
{

constexpr int kSmallestVersion = 3; // longer texts grow the symbol
constexpr int kCaseSensitive = 1;

constexpr size_t kModule_px = 6;
constexpr size_t kQuiet_modules = 2;
constexpr uint8_t kLight = 255;
constexpr uint8_t kDark = 1;

constexpr size_t kFileHeader_bytes = 14;
constexpr size_t kInfoHeader_bytes = 40;
constexpr size_t kPalette_bytes = 256 * 4;
constexpr size_t kPixelOffset = kFileHeader_bytes + kInfoHeader_bytes + kPalette_bytes;
static_assert(kPixelOffset == 1078);

constexpr int kOutOfMemory = -1;

struct Geometry {
    size_t modules; // symbol width
    size_t side_px; // image width and height
    size_t stride_bytes;
    size_t pixel_bytes;
};

Geometry geometry_of(size_t modules)
{
    const size_t side = kModule_px * (modules + 2 * kQuiet_modules);
    const size_t stride = (side + 3) & ~size_t{3};
    return {modules, side, stride, side * stride};
}

void put_u16(uint8_t *at, uint32_t value)
{
    at[0] = static_cast<uint8_t>(value);
    at[1] = static_cast<uint8_t>(value >> 8);
}

void put_u32(uint8_t *at, size_t value)
{
    put_u16(at, static_cast<uint32_t>(value & 0xFFFF));
    put_u16(at + 2, static_cast<uint32_t>(value >> 16 & 0xFFFF));
}

void make_headers(uint8_t (&headers)[kFileHeader_bytes + kInfoHeader_bytes], const Geometry &image)
{
    std::memset(headers, 0, sizeof headers);
    std::memcpy(headers, "BM", 2);
    put_u32(headers + 2, image.pixel_bytes + kPixelOffset);
    put_u32(headers + 10, kPixelOffset);
    uint8_t *info = headers + kFileHeader_bytes;
    put_u32(info, kInfoHeader_bytes);
    put_u32(info + 4, image.side_px);
    put_u32(info + 8, image.side_px); // positive: rows from bottom to top
    put_u16(info + 12, 1);            // planes
    put_u16(info + 14, 8);            // bits a pixel
    put_u32(info + 20, image.pixel_bytes);
}

void make_grey_palette(uint8_t *palette)
{
    for (size_t grey = 0; grey < 256; ++grey, palette += 4) {
        std::memset(palette, static_cast<int>(grey), 3);
        palette[3] = 0;
    }
}

// One module row is drawn into its lowest pixel row and copied to the others.
void draw_modules(uint8_t *pixels, const Geometry &image, const uint8_t *modules)
{
    std::memset(pixels, kLight, image.pixel_bytes);
    for (size_t row = 0; row < image.modules; ++row) {
        const size_t lowest = kModule_px * (image.modules + kQuiet_modules - 1 - row);
        uint8_t *line = pixels + lowest * image.stride_bytes;
        for (size_t column = 0; column < image.modules; ++column) {
            if ((modules[row * image.modules + column] & 1) == 0) continue;
            std::memset(line + kModule_px * (kQuiet_modules + column), kDark, kModule_px);
        }
        for (size_t copy = 1; copy < kModule_px; ++copy)
            std::memcpy(line + copy * image.stride_bytes, line, image.stride_bytes);
    }
}

[[noreturn]] void fail_to_create(const char *file_name)
{
    nvrhal::log_to_standard_error("Failed to create file: %s\n", file_name);
    std::exit(EXIT_FAILURE);
}

FILE *open_output(const char *file_name)
{
    if (std::strcmp(file_name, "-") == 0) return stdout;
    FILE *file = std::fopen(file_name, "wb");
    if (!file) fail_to_create(file_name);
    return file;
}

uint8_t *allocate_or_exit(size_t size)
{
    auto *bytes = static_cast<uint8_t *>(std::malloc(size));
    if (!bytes) std::exit(kOutOfMemory);
    return bytes;
}

bool put_bytes(FILE *file, const uint8_t *bytes, size_t size)
{
    return std::fwrite(bytes, 1, size, file) == size;
}

} // namespace

void qrencode(const char *text, const char *file_name)
{
    if (!text || !file_name) std::exit(EXIT_FAILURE);
    nvrhal::log_text("intext=%s\n", text);

    QRcode *code = QRcode_encodeString(text, kSmallestVersion, QR_ECLEVEL_L, QR_MODE_8, kCaseSensitive);
    if (!code) std::exit(EXIT_FAILURE);
    const Geometry image = geometry_of(static_cast<size_t>(code->width));

    FILE *file = open_output(file_name);
    uint8_t *pixels = allocate_or_exit(image.pixel_bytes);
    uint8_t *palette = allocate_or_exit(kPalette_bytes);
    uint8_t headers[kFileHeader_bytes + kInfoHeader_bytes];
    make_headers(headers, image);
    make_grey_palette(palette);
    draw_modules(pixels, image, code->data);

    const bool written = put_bytes(file, headers, sizeof headers) &&
                         put_bytes(file, palette, kPalette_bytes) &&
                         put_bytes(file, pixels, image.pixel_bytes);
    const bool closed = std::fclose(file) == 0; // standard output too: the image ends it
    if (!written || !closed) fail_to_create(file_name);

    std::free(palette);
    std::free(pixels);
    QRcode_free(code);
}
