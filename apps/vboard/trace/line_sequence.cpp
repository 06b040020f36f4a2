/* line_sequence.cpp - a trace as a sequence of numbers. */
#include "trace/line_sequence.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "trace/tracks.h"

namespace vboard_app
{
namespace
{

constexpr uint32_t kOffsetStride = 32;

// FNV-1a over 64 bits: two different lines of a trace get the same number once in some billions of traces.
class Mark
{
public:
    void add(std::string_view text)
    {
        for (const char byte : text)
            add_byte(static_cast<uint8_t>(byte));
        add_byte(0); // "ab" "c" is not "a" "bc"
    }
    uint64_t value() const { return value_; }

private:
    void add_byte(uint8_t byte) { value_ = (value_ ^ byte) * 0x100000001b3ull; }

    uint64_t value_ = 0xcbf29ce484222325ull;
};

/*
 * By channel the calls of a device node are known by its path: which number its descriptor got depends on
 * the threads that open other nodes at the same time.
 */
uint64_t mark_of(const CallLine &call, const SameLine &same, bool by_channel)
{
    const bool on_node = by_channel && call.name.starts_with("board_");
    Mark mark;
    mark.add(call.event ? "event" : "call");
    mark.add(call.name);
    for (const CallField &argument : call.arguments) {
        mark.add(argument.name);
        if (!same.counts(argument.name) || (on_node && argument.name == "descriptor")) continue;
        if (argument.member_count == 0) mark.add(argument.text);
        for (const CallField &member : call.members(argument)) {
            mark.add(member.name);
            if (same.counts(member.name, argument.name)) mark.add(member.text);
        }
    }
    mark.add(on_node && call.name == "board_open" && !call.failed ? "a descriptor" : call.result);
    mark.add(call.reason);
    return mark.value();
}

bool begins_with_one_of(std::string_view name, const std::vector<std::string> &beginnings)
{
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](const std::string &beginning) { return name.starts_with(beginning); });
}

} // namespace

bool SameLine::counts(const CallLine &call) const
{
    const std::string name = (call.event ? "event " : "") + std::string(call.name);
    return (only.empty() || begins_with_one_of(name, only)) && !begins_with_one_of(name, without);
}

bool SameLine::counts(std::string_view field, std::string_view argument) const
{
    if (!pts && (field == "pts" || field == "base")) return false;
    return std::none_of(ignored.begin(), ignored.end(), [&](const std::string &name) {
        const size_t dot = name.find('.');
        if (dot == std::string::npos) return name == field;
        return std::string_view(name).substr(0, dot) == argument &&
               std::string_view(name).substr(dot + 1) == field;
    });
}

TraceFile::TraceFile(const std::string &path, const SameLine &same, bool by_channel) : path_(path)
{
    if (path == "-") throw TraceError("traces to compare must be files: their lines are read a second time");
    TraceReader reader(path);
    Tracks tracks;
    CallLine call;
    std::string of;
    for (TraceReader::Found found; (found = reader.next(call)) != TraceReader::Found::kEnd;) {
        if (reader.line_number() > std::numeric_limits<uint32_t>::max())
            throw TraceError(path + ": too many lines");
        const uint32_t line = static_cast<uint32_t>(reader.line_number());
        if (line % kOffsetStride == 1) offsets_.push_back(reader.offset());
        Mark broken; // what is no call is compared as it stands
        if (found == TraceReader::Found::kBroken) broken.add(reader.line());
        if (found == TraceReader::Found::kCall) {
            if (by_channel)
                of = tracks.of(call); // keeps account of descriptors: also of calls that are left out
            if (!same.counts(call)) continue;
        }
        LineSequence &sequence =
            sequences_[by_channel && found == TraceReader::Found::kBroken ? "events" : of];
        sequence.marks.push_back(found == TraceReader::Found::kBroken ? broken.value()
                                                                      : mark_of(call, same, by_channel));
        sequence.lines.push_back(line);
    }
    complaints_ = reader.complaints();
    file_.reset(fopen(path.c_str(), "rb"));
    if (file_ == nullptr) throw TraceError(path + ": " + strerror(errno));
}

std::string TraceFile::text(uint32_t line) const
{
    const uint64_t offset = offsets_.at((line - 1) / kOffsetStride);
    if (fseeko(file_.get(), static_cast<off_t>(offset), SEEK_SET) != 0)
        throw TraceError(path_ + ": " + strerror(errno));
    char *text = nullptr;
    size_t room = 0;
    ssize_t size = 0;
    for (uint32_t skipped = 0; skipped <= (line - 1) % kOffsetStride && size >= 0; ++skipped)
        size = getline(&text, &room, file_.get());
    std::string found = size > 0 ? std::string(text, static_cast<size_t>(size)) : "";
    free(text);
    if (size < 0) throw TraceError(path_ + " has become shorter meanwhile");
    while (!found.empty() && (found.back() == '\n' || found.back() == '\r'))
        found.pop_back();
    return found;
}

} // namespace vboard_app
