/* bmp_file.cpp - read the headers of BMP files, and tell files by their extension. Any thread. */
#include "gui/bmp_file.h"

#include <cstdio>
#include <cstring>

#include "core/log.h"
#include "nvrhal.h"

namespace nvrhal
{
namespace
{

constexpr size_t kRest_bytes = 12; // the file header behind its magic
constexpr size_t kInfo_bytes = 44; // the info header and the 4 bytes that follow it

uint32_t u16_at(const uint8_t *bytes)
{
    return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8;
}

uint32_t u32_at(const uint8_t *bytes)
{
    return u16_at(bytes) | u16_at(bytes + 2) << 16;
}

bool read_bytes(FILE *file, uint8_t *bytes, size_t size)
{
    return std::fread(bytes, 1, size, file) == size;
}

} // namespace

bool read_bmp_header(const char *path, BmpHeader *header)
{
    uint8_t rest[kRest_bytes];
    uint8_t info[kInfo_bytes];
    if (GetBmpInfo(path, rest, info) != 0) return false;
    header->pixel_offset = u32_at(rest + 8);
    header->width = static_cast<int32_t>(u32_at(info + 4));
    header->height = static_cast<int32_t>(u32_at(info + 8));
    header->bits_per_pixel = u16_at(info + 14);
    header->compression = u32_at(info + 16);
    return true;
}

} // namespace nvrhal

using namespace nvrhal;

int32_t GetBmpInfo(const char *path, uint8_t file_header_rest[12], uint8_t info[44])
{
    if (!path) {
        log_error_line(kBmpSource, "OSD_LoadBMP: filename=NULL");
        return -1;
    }
    if (!file_header_rest || !info) return -1;
    FILE *file = std::fopen(path, "rb");
    if (!file) {
        log_error(kBmpSource, "Open file faild:%s!\n", path);
        return -1;
    }
    uint8_t magic[2];
    const bool is_bitmap =
        read_bytes(file, magic, sizeof magic) && std::memcmp(magic, "BM", sizeof magic) == 0 &&
        read_bytes(file, file_header_rest, kRest_bytes) && read_bytes(file, info, kInfo_bytes);
    std::fclose(file);
    if (is_bitmap) return 0;
    log_error_line(kBmpSource, "not bitmap file");
    return -1;
}

const char *GetExtName(const char *name)
{
    if (!name) {
        log_error_line(kBmpSource, "filename can't be null!");
        return nullptr;
    }
    const char *dot = std::strrchr(name, '.');
    return dot ? dot + 1 : name + std::strlen(name);
}
