/*
 * edit_list.cpp - see edit_list.h.
 *
 *   moov { mvhd  trak { tkhd  edts { elst }  mdia } }
 *
 * Lengths stand in mvhd, tkhd and elst in ticks of the movie's clock, in four bytes or, in boxes of
 * version 1, in eight. A track that begins later than the movie has an empty edit in front of its own.
 */
#include "archive/edit_list.h"

#include <cerrno>
#include <cmath>
#include <cstring>

#include "archive/file_bytes.h"

namespace nvrec
{
namespace
{

constexpr int64_t kBoxHead_bytes = 8;
constexpr double kEditMicroseconds = 1e6;

class Patcher
{
public:
    Patcher(const std::string &path, int64_t length_us)
        : file_(path), out_(::open(path.c_str(), O_WRONLY | O_CLOEXEC)), length_us_(length_us)
    {
    }
    ~Patcher()
    {
        if (out_ >= 0) ::close(out_);
    }
    Patcher(const Patcher &) = delete;
    Patcher &operator=(const Patcher &) = delete;

    bool run()
    {
        if (!file_.is_open() || out_ < 0) return false;
        walk(0, file_.size());
        return !failed_ && edits_ > 0;
    }

private:
    uint64_t number(int64_t at, size_t count) const
    {
        return ByteReader(file_.read(at, count)).number(count);
    }

    void write(int64_t at, uint64_t value, size_t count)
    {
        uint8_t bytes[8];
        for (size_t i = 0; i < count; ++i)
            bytes[i] = static_cast<uint8_t>(value >> (8 * (count - 1 - i)));
        failed_ |= pwrite(out_, bytes, count, at) != static_cast<ssize_t>(count);
    }

    void walk(int64_t at, int64_t end)
    {
        while (end - at >= kBoxHead_bytes) {
            auto size = static_cast<int64_t>(number(at, 4));
            const auto name = static_cast<uint32_t>(number(at + 4, 4));
            const int64_t head = size == 1 ? 2 * kBoxHead_bytes : kBoxHead_bytes;
            if (size == 1) size = static_cast<int64_t>(number(at + kBoxHead_bytes, 8));
            if (size < head || size > end - at) return;
            box(name, at + head, at + size);
            at += size;
        }
    }

    void box(uint32_t name, int64_t body, int64_t end)
    {
        const bool wide = number(body, 1) == 1;
        const size_t width = wide ? 8 : 4;
        const int64_t times = body + 4 + 2 * static_cast<int64_t>(width); /* behind creation and change */
        if (name == box_name("moov") || name == box_name("trak") || name == box_name("edts")) {
            walk(body, end);
        } else if (name == box_name("mvhd")) {
            ticks_ = static_cast<uint32_t>(number(times, 4));
            write(times + 4, in_ticks(), width);
        } else if (name == box_name("tkhd")) {
            write(times + 8, in_ticks(), width);
        } else if (name == box_name("elst")) {
            edit(body, end, wide);
        }
    }

    void edit(int64_t body, int64_t end, bool wide)
    {
        const uint64_t count = number(body + 4, 4);
        const auto width = static_cast<int64_t>(wide ? 8 : 4);
        const int64_t row_bytes = 2 * width + 4;
        uint64_t left = in_ticks();
        int64_t at = body + 8;
        for (uint64_t i = 0; i < count && at + row_bytes <= end; ++i, at += row_bytes) {
            const uint64_t length = number(at, static_cast<size_t>(width));
            const bool last = i + 1 == count;
            const uint64_t taken = last ? std::min(left, length) : std::min(length, left);
            if (taken != length) write(at, taken, static_cast<size_t>(width));
            left -= taken;
            edits_ += last;
        }
    }

    uint64_t in_ticks() const
    {
        return static_cast<uint64_t>(
            std::llround(static_cast<double>(length_us_) * ticks_ / kEditMicroseconds));
    }

    const ReadFile file_;
    const int out_;
    const int64_t length_us_;
    uint32_t ticks_ = 0;
    int edits_ = 0;
    bool failed_ = false;
};

} // namespace

std::string set_shown_length(const std::string &path, int64_t length_us)
{
    errno = 0;
    Patcher patcher(path, length_us);
    if (patcher.run()) return {};
    return path + ": its edit list cannot be set" +
           (errno != 0 ? std::string(": ") + std::strerror(errno) : "");
}

} // namespace nvrec
