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

constexpr size_t kMagic_bytes = 2;
constexpr size_t kRest_bytes = 12; // the file header behind its magic
constexpr size_t kInfo_bytes = 44; // the info header and the 4 bytes that follow it
constexpr size_t kNeeded_bytes = kMagic_bytes + kRest_bytes + 40; // both headers without those 4

struct RawHeaders {
    uint8_t magic[kMagic_bytes];
    uint8_t rest[kRest_bytes];
    uint8_t info[kInfo_bytes];
};
static_assert(sizeof(RawHeaders) == kMagic_bytes + kRest_bytes + kInfo_bytes);

uint32_t u16_at(const uint8_t *bytes)
{
    return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8;
}

uint32_t u32_at(const uint8_t *bytes)
{
    return u16_at(bytes) | u16_at(bytes + 2) << 16;
}

/** Open a file and read its headers, with zero bytes for what a short file lacks. Null after a message. */
FILE *open_and_read(const char *path, RawHeaders *headers)
{
    *headers = {};
    FILE *file = std::fopen(path, "rb");
    if (!file) {
        log_error(kBmpSource, "Open file faild:%s!\n", path);
        return nullptr;
    }
    std::setvbuf(file, nullptr, _IONBF, 0); // the reads are large: a buffer would only add a copy
    if (std::fread(headers, 1, sizeof *headers, file) >= kNeeded_bytes &&
        std::memcmp(headers->magic, "BM", kMagic_bytes) == 0)
        return file;
    log_error_line(kBmpSource, "not bitmap file");
    std::fclose(file);
    return nullptr;
}

} // namespace

FILE *open_bmp(const char *path, BmpHeader *header)
{
    RawHeaders raw;
    FILE *file = open_and_read(path, &raw);
    if (!file) return nullptr;
    header->pixel_offset = u32_at(raw.rest + 8);
    header->width = static_cast<int32_t>(u32_at(raw.info + 4));
    header->height = static_cast<int32_t>(u32_at(raw.info + 8));
    header->bits_per_pixel = u16_at(raw.info + 14);
    header->compression = u32_at(raw.info + 16);
    return file;
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
    RawHeaders raw;
    FILE *file = open_and_read(path, &raw);
    if (!file) return -1;
    std::fclose(file);
    std::memcpy(file_header_rest, raw.rest, sizeof raw.rest);
    std::memcpy(info, raw.info, sizeof raw.info);
    return 0;
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
