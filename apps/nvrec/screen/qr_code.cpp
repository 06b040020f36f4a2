/*
 * qr_code.cpp - see qr_code.h. The library's image files of QR codes have 8 bits a pixel, and its
 * loaders take 16 and more: the headers come from the library, the grey rows are read here.
 */
#include "screen/qr_code.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "camera/address.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr Colour kLight = 0xFFFFFF, kDark = 0x000000;
constexpr uint8_t kHalfGrey = 128;

uint32_t word_at(const uint8_t *bytes)
{
    return static_cast<uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16) | static_cast<uint32_t>(bytes[3])
                                                                                  << 24;
}

/* A temporary file, removed at the end. */
class ScratchFile
{
public:
    ScratchFile()
    {
        char name[] = "/tmp/nvrec-qr-XXXXXX";
        const int descriptor = mkstemp(name);
        if (descriptor < 0) return;
        close(descriptor);
        path_ = name;
    }
    ~ScratchFile()
    {
        if (!path_.empty()) unlink(path_.c_str());
    }
    ScratchFile(const ScratchFile &) = delete;
    ScratchFile &operator=(const ScratchFile &) = delete;
    const std::string &path() const { return path_; }

private:
    std::string path_;
};

/* Rows in the file stand from bottom to top, each padded to 4 bytes. */
Tile grey_image(const std::string &path)
{
    constexpr int kLargestSide = 4096;
    uint8_t file_header[12] = {}, info[44] = {};
    if (GetBmpInfo(path.c_str(), file_header, info) != 0) return {};
    const auto width = static_cast<int>(word_at(info + 4)), height = static_cast<int>(word_at(info + 8));
    if (width < 1 || height < 1 || width > kLargestSide || height > kLargestSide || info[14] != 8) return {};

    Tile tile = {width, height, {}};
    tile.pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
    std::vector<char> line((static_cast<size_t>(width) + 3) & ~size_t{3});
    std::ifstream file(path, std::ios::binary);
    file.seekg(word_at(file_header + 8));
    for (int row = height - 1; row >= 0; --row) {
        if (!file.read(line.data(), static_cast<std::streamsize>(line.size()))) return {};
        for (int x = 0; x < width; ++x) {
            const bool light = static_cast<uint8_t>(line[static_cast<size_t>(x)]) >= kHalfGrey;
            tile.pixels[static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(x)] =
                pixel_of(light ? kLight : kDark);
        }
    }
    return tile;
}

/*
 * The library prints the text of a code. While an object of this class lives, the log gets the text as it may
 * be shown, without the token of a status page's address.
 */
class GuardedLog
{
public:
    explicit GuardedLog(std::string text) : text_(std::move(text)), shown_(shown_text(text_))
    {
        nvrhal_set_log(write, this);
    }
    ~GuardedLog() { nvrhal_set_log(nullptr, nullptr); }
    GuardedLog(const GuardedLog &) = delete;
    GuardedLog &operator=(const GuardedLog &) = delete;

private:
    static void write(const char *text, size_t length, void *user)
    {
        const auto &self = *static_cast<const GuardedLog *>(user);
        std::string line(text, length);
        for (size_t at = 0; (at = line.find(self.text_, at)) != std::string::npos; at += self.shown_.size())
            line.replace(at, self.text_.size(), self.shown_);
        std::fwrite(line.data(), 1, line.size(), stdout);
    }

    const std::string text_, shown_;
};

} // namespace

Tile qr_tile(const std::string &text)
{
    if (text.empty() || text.size() > kLongestQrText) return {};
    const ScratchFile file; /* made first: the library ends the process over a file that it cannot make */
    if (file.path().empty()) return {};
    const GuardedLog log(text);
    qrencode(text.c_str(), file.path().c_str());
    return grey_image(file.path());
}

} // namespace nvrec
