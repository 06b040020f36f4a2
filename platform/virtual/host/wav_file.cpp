/*
 * wav_file.cpp - the file is a RIFF header of 44 bytes and the samples, all little-endian:
 *
 *    0 "RIFF"  4 bytes behind this word   8 "WAVE"
 *   12 "fmt "  16 16   20 u16 1 = PCM   22 u16 channels   24 rate   28 bytes a second
 *   32 u16 bytes a sample   34 u16 bits a sample
 *   36 "data"  40 bytes of samples   44 samples
 */
#include "host/wav_file.h"

#include <cstdio>
#include <cstring>
#include <vector>

namespace vboard
{
namespace
{

constexpr uint32_t kWavHeaderBytes = 44;
constexpr uint32_t kRiffHeadBytes = 8; // not counted by the RIFF size
constexpr long kRiffSizeAt = 4;
constexpr long kDataSizeAt = 40;
constexpr uint32_t kSampleBytes = 2;
constexpr uint32_t kMostDataBytes = UINT32_MAX - kWavHeaderBytes;

struct FileClose {
    void operator()(FILE *file) const { fclose(file); }
};
using FilePtr = std::unique_ptr<FILE, FileClose>;

void put(std::vector<uint8_t> &bytes, uint32_t value, int size)
{
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void put(std::vector<uint8_t> &bytes, const char *tag)
{
    for (int i = 0; i < 4; ++i)
        bytes.push_back(static_cast<uint8_t>(tag[i]));
}

std::vector<uint8_t> header(uint32_t rate_hz)
{
    std::vector<uint8_t> bytes;
    put(bytes, "RIFF");
    put(bytes, kWavHeaderBytes - kRiffHeadBytes, 4);
    put(bytes, "WAVE");
    put(bytes, "fmt ");
    put(bytes, 16, 4);
    put(bytes, 1, 2);
    put(bytes, 1, 2);
    put(bytes, rate_hz, 4);
    put(bytes, rate_hz * kSampleBytes, 4);
    put(bytes, kSampleBytes, 2);
    put(bytes, 8 * kSampleBytes, 2);
    put(bytes, "data");
    put(bytes, 0, 4);
    return bytes;
}

class WavFile final : public SoundSink
{
public:
    explicit WavFile(FilePtr file) : file_(std::move(file)) {}

    bool play(const int16_t *samples, size_t count) override
    {
        if (count > (kMostDataBytes - data_bytes_) / kSampleBytes) return false;
        std::vector<uint8_t> bytes;
        bytes.reserve(count * kSampleBytes);
        for (size_t i = 0; i < count; ++i)
            put(bytes, static_cast<uint16_t>(samples[i]), kSampleBytes);
        if (fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) return false;
        data_bytes_ += static_cast<uint32_t>(bytes.size());
        return write_size(kRiffSizeAt, kWavHeaderBytes - kRiffHeadBytes + data_bytes_) &&
               write_size(kDataSizeAt, data_bytes_) && fseek(file_.get(), 0, SEEK_END) == 0 &&
               fflush(file_.get()) == 0;
    }

private:
    bool write_size(long at, uint32_t size)
    {
        std::vector<uint8_t> bytes;
        put(bytes, size, 4);
        return fseek(file_.get(), at, SEEK_SET) == 0 && fwrite(bytes.data(), 1, 4, file_.get()) == 4;
    }

    FilePtr file_;
    uint32_t data_bytes_ = 0;
};

} // namespace

std::unique_ptr<SoundSink> open_wav_file(const char *path, uint32_t rate_hz)
{
    FilePtr file(fopen(path, "wbe"));
    if (file == nullptr) return nullptr;
    const std::vector<uint8_t> head = header(rate_hz);
    if (fwrite(head.data(), 1, head.size(), file.get()) != head.size()) return nullptr;
    if (fflush(file.get()) != 0) return nullptr;
    return std::make_unique<WavFile>(std::move(file));
}

} // namespace vboard
