/* file_bytes.h - reads a file's structure: numbers at given positions, most significant byte first. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nvrec
{

/** A file that is read at any place. Nothing beyond its end is read. */
class ReadFile
{
public:
    explicit ReadFile(const std::string &path) : file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
        struct stat facts = {};
        if (file_ >= 0 && fstat(file_, &facts) == 0) size_ = facts.st_size;
    }
    ~ReadFile()
    {
        if (file_ >= 0) ::close(file_);
    }
    ReadFile(const ReadFile &) = delete;
    ReadFile &operator=(const ReadFile &) = delete;

    bool is_open() const { return file_ >= 0; }
    int64_t size() const { return size_; }

    /** Up to so many bytes from a place on; fewer when the file ends before. */
    std::vector<uint8_t> read(int64_t at, size_t count) const
    {
        std::vector<uint8_t> bytes(at >= 0 && at < size_ ? std::min<uint64_t>(count, size_ - at) : 0);
        size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t got =
                pread(file_, bytes.data() + done, bytes.size() - done, at + static_cast<int64_t>(done));
            if (got <= 0) break;
            done += static_cast<size_t>(got);
        }
        bytes.resize(done);
        return bytes;
    }

private:
    int file_;
    int64_t size_ = 0;
};

/** Four letters of an MP4 file, a box's name or another code, as the number that is read in their place. */
constexpr uint32_t box_name(const char (&name)[5])
{
    return uint32_t(uint8_t(name[0])) << 24 | uint32_t(uint8_t(name[1])) << 16 |
           uint32_t(uint8_t(name[2])) << 8 | uint8_t(name[3]);
}

/** Reads bytes in order. Beyond their end it gives zeros, and remembers that. */
class ByteReader
{
public:
    explicit ByteReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    uint64_t number(size_t count)
    {
        uint64_t value = 0;
        for (size_t i = 0; i < count; ++i)
            value = value << 8 | (at_ < bytes_.size() ? bytes_[at_] : 0), ++at_;
        return value;
    }
    void skip(size_t count) { at_ += count; }
    bool beyond() const { return at_ > bytes_.size(); }
    size_t at() const { return at_; }
    size_t left() const { return at_ < bytes_.size() ? bytes_.size() - at_ : 0; }

    /** The next bytes as a reader of their own; fewer when fewer are left. */
    std::span<const uint8_t> part(uint64_t count)
    {
        const auto taken = bytes_.subspan(std::min(at_, bytes_.size()), std::min<uint64_t>(count, left()));
        at_ += taken.size();
        return taken;
    }

private:
    std::span<const uint8_t> bytes_;
    size_t at_ = 0;
};

} // namespace nvrec
