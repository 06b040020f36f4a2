/* gui_bmp_file.h - BMP files made by the tests, and surfaces with guards to load them into. */
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "nvrhal.h"

namespace gui_test
{

/** The fields of a file's headers, and its pixel bytes row by row in file order. */
struct BmpFile {
    int32_t width = 0, height = 0;
    uint16_t bits = 24;
    uint32_t compression = 0;
    uint32_t pixel_offset = 54;
    std::string magic = "BM";
    std::vector<uint8_t> pixels;

    std::vector<uint8_t> bytes() const
    {
        std::vector<uint8_t> file(magic.begin(), magic.end());
        auto put = [&](uint32_t value, int size) {
            for (int i = 0; i < size; ++i)
                file.push_back(i < 4 ? static_cast<uint8_t>(value >> (8 * i)) : 0);
        };
        put(static_cast<uint32_t>(pixel_offset + pixels.size()), 4);
        put(0, 4);
        put(pixel_offset, 4);
        put(40, 4);
        put(static_cast<uint32_t>(width), 4);
        put(static_cast<uint32_t>(height), 4);
        put(1, 2);
        put(bits, 2);
        put(compression, 4);
        put(static_cast<uint32_t>(pixels.size()), 4);
        put(0, 16);
        while (file.size() < pixel_offset)
            file.push_back(0xEE);
        file.insert(file.end(), pixels.begin(), pixels.end());
        return file;
    }
};

/** Byte `i` of the pixel at column x of file row y: every pixel of a small file differs. */
inline uint8_t test_byte(int32_t x, int32_t y, uint32_t i)
{
    return static_cast<uint8_t>(x * 37 + y * 101 + static_cast<int32_t>(i) * 59 + (x * y) % 7 + 11);
}

/** A complete file with rows padded to 4 bytes; the padding bytes are 0xDD. */
inline BmpFile test_bitmap(int32_t width, int32_t height, uint16_t bits)
{
    BmpFile file;
    file.width = width;
    file.height = height;
    file.bits = bits;
    const uint32_t pixel_bytes = bits / 8;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x)
            for (uint32_t i = 0; i < pixel_bytes; ++i)
                file.pixels.push_back(test_byte(x, y, i));
        while (file.pixels.size() % 4 != 0)
            file.pixels.push_back(0xDD);
    }
    return file;
}

/** A file on disk for the time of a test. */
class FileOnDisk
{
public:
    explicit FileOnDisk(const std::vector<uint8_t> &bytes, const char *extension = ".bmp")
    {
        char name[] = "/tmp/nvrhal_gui_XXXXXX";
        const int descriptor = mkstemp(name);
        if (descriptor >= 0) close(descriptor);
        unlink(name);
        path_ = std::string(name) + extension;
        FILE *file = std::fopen(path_.c_str(), "wb");
        if (!file) std::abort();
        if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) std::abort();
        std::fclose(file);
    }
    explicit FileOnDisk(const BmpFile &file) : FileOnDisk(file.bytes()) {}
    ~FileOnDisk() { unlink(path_.c_str()); }
    FileOnDisk(const FileOnDisk &) = delete;
    FileOnDisk &operator=(const FileOnDisk &) = delete;

    const char *path() const { return path_.c_str(); }

private:
    std::string path_;
};

/** Pixel memory of exactly `size` bytes, on the heap so that the address sanitizer guards its ends. */
class Surface
{
public:
    explicit Surface(size_t size, uint32_t pitch = 0)
        : bytes_(size, kOld), record{0xFFFF, 0xFFFF, pitch, bytes_.data()}
    {
    }

    static constexpr uint8_t kOld = 0xA7;

private:
    std::vector<uint8_t> bytes_;

public:
    OsdSurface record;
    const std::vector<uint8_t> &bytes() const { return bytes_; }
    bool untouched() const
    {
        for (uint8_t byte : bytes_)
            if (byte != kOld) return false;
        return true;
    }
};

} // namespace gui_test
