/* trace_reader.cpp - a file of calls, line by line. */
#include "trace/trace_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace vboard_app
{
namespace
{

constexpr size_t kChunk_bytes = 256 * 1024;
constexpr size_t kLongestLine_bytes = 64 * 1024; // the board's own are below 1 KiB, but for a command
constexpr uint64_t kJudged_lines = 20;           // without a single call among them it is no trace
constexpr size_t kComplaints = 10;

} // namespace

TraceReader::TraceReader(const std::string &path) : path_(path == "-" ? "standard input" : path)
{
    file_.reset(path == "-" ? fdopen(0, "rb") : fopen(path.c_str(), "rb"));
    if (file_ == nullptr) throw TraceError(path_ + ": " + strerror(errno));
    setvbuf(file_.get(), nullptr, _IONBF, 0); // chunks are large already
}

// More behind what is there; what was given out makes room.
void TraceReader::fill()
{
    if (begin_ > 0) memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
    if (buffer_.size() < end_ + kChunk_bytes) buffer_.resize(end_ + kChunk_bytes);
    const size_t got = fread(buffer_.data() + end_, 1, kChunk_bytes, file_.get());
    if (got == 0 && ferror(file_.get()) != 0) throw TraceError(path_ + ": " + strerror(errno));
    at_end_ = got == 0;
    end_ += got;
}

// The next line of the file; one that is too long is given out as its beginning, and is not whole.
bool TraceReader::read_line()
{
    bool too_long = false;
    size_t searched = 0;
    uint64_t dropped = 0; // bytes of a line that is too long
    offset_ = next_offset_;
    for (;;) {
        const char *from = buffer_.data() + begin_;
        const size_t there = end_ - begin_;
        const void *newline = there > searched ? memchr(from + searched, '\n', there - searched) : nullptr;
        if (newline != nullptr || at_end_) {
            const size_t size =
                newline != nullptr ? static_cast<size_t>(static_cast<const char *>(newline) - from) : there;
            if (newline == nullptr && size == 0 && dropped == 0) return false;
            cut_off_ = newline == nullptr;
            too_long = too_long || size > kLongestLine_bytes;
            line_ = {from, too_long ? std::min(size, kLongestLine_bytes) : size};
            whole_ = !too_long && !cut_off_;
            begin_ += size + (newline != nullptr ? 1 : 0);
            next_offset_ = offset_ + dropped + size + 1;
            ++number_;
            return true;
        }
        searched = there;
        if (there > kLongestLine_bytes) {
            too_long = true;
            dropped += there;
            begin_ = end_;
            searched = 0;
        }
        fill();
    }
}

void TraceReader::note_broken(std::string_view why)
{
    ++broken_;
    if (complaints_.size() < kComplaints)
        complaints_.push_back(path_ + ": line " + std::to_string(number_) + ": " + std::string(why));
    if (calls_ == 0 && broken_ >= kJudged_lines)
        throw TraceError(path_ + " is no call trace: " + complaints_[0].substr(path_.size() + 2));
}

TraceReader::Found TraceReader::next(CallLine &call)
{
    if (!read_line()) {
        if (calls_ == 0 && broken_ > 0)
            throw TraceError(path_ + " is no call trace: " + complaints_[0].substr(path_.size() + 2));
        return Found::kEnd;
    }
    std::string_view wrong = cut_off_ ? "cut off, the line has no end" : "the line is too long";
    if (whole_) wrong = parse_call(line_, call);
    if (!wrong.empty()) {
        note_broken(wrong);
        return Found::kBroken;
    }
    ++calls_;
    return Found::kCall;
}

std::vector<std::string> TraceReader::complaints() const
{
    std::vector<std::string> all = complaints_;
    if (broken_ > all.size())
        all.push_back(path_ + ": " + std::to_string(broken_ - all.size()) + " further lines are broken");
    return all;
}

} // namespace vboard_app
