/*
 * line_sequence.h - a trace as a sequence of numbers: lines that say the same have the same number. Times,
 * durations and threads do not count. A line takes 12 bytes, so that traces of many millions of lines can be
 * compared.
 */
#ifndef VBOARD_APP_LINE_SEQUENCE_H
#define VBOARD_APP_LINE_SEQUENCE_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "trace/trace_reader.h"

namespace vboard_app
{

/* What counts when two lines are compared. */
struct SameLine {
    bool pts = false;                 // time stamps: fields "pts" and "base"
    std::vector<std::string> ignored; // further fields that do not count: "crc32", "stream.length"
    std::vector<std::string> only;    // beginnings of names: other calls are left out; empty: none is
    std::vector<std::string> without; // beginnings of names that are left out

    bool counts(const CallLine &call) const;                                   // the call itself
    bool counts(std::string_view field, std::string_view argument = {}) const; // a member of `argument`
};

struct LineSequence {
    std::vector<uint64_t> marks; // equal for lines that say the same
    std::vector<uint32_t> lines; // where they stand in the file, from 1
};

/* A whole trace, in one sequence or in one for each channel. */
class TraceFile
{
public:
    /* @throws TraceError */
    TraceFile(const std::string &path, const SameLine &same, bool by_channel);

    /* By channel's name; the whole trace has the name "". */
    const std::map<std::string, LineSequence> &sequences() const { return sequences_; }
    const std::string &path() const { return path_; }
    const std::vector<std::string> &complaints() const { return complaints_; }

    /* The text of a line, from 1, without its end. @throws TraceError  when the file has gone meanwhile */
    std::string text(uint32_t line) const;

private:
    struct CloseFile {
        void operator()(FILE *file) const { fclose(file); }
    };

    std::string path_;
    std::map<std::string, LineSequence> sequences_;
    std::vector<uint64_t> offsets_; // of every kOffsetStride-th line
    std::vector<std::string> complaints_;
    std::unique_ptr<FILE, CloseFile> file_;
};

} // namespace vboard_app

#endif
