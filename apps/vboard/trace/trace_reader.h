/*
 * trace_reader.h - a file of calls, line by line, with little memory however long it is. Lines that are
 * no calls are passed over and told with their numbers; a last line without its end was cut off while it
 * was written.
 */
#ifndef VBOARD_APP_TRACE_READER_H
#define VBOARD_APP_TRACE_READER_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "trace/call_line.h"

namespace vboard_app
{

/* A file that cannot be read or written, or that holds no trace: the line says which, and why. */
class TraceError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class TraceReader
{
public:
    /* "-" is the standard input. @throws TraceError */
    explicit TraceReader(const std::string &path);

    enum class Found { kCall, kBroken, kEnd };
    /*
     * The next line. `call` points into it, until the next one is read.
     * @throws TraceError  the file cannot be read on, or its first lines are no calls at all
     */
    Found next(CallLine &call);

    const std::string &path() const { return path_; }
    std::string_view line() const { return line_; }
    uint64_t line_number() const { return number_; } // from 1
    uint64_t offset() const { return offset_; }      // of the line, bytes

    /* What was passed over, one sentence each with the file and the line: the first ten, and how many more.
     */
    std::vector<std::string> complaints() const;

private:
    bool read_line();
    void fill();
    void note_broken(std::string_view why);

    struct CloseFile {
        void operator()(FILE *file) const { fclose(file); }
    };

    std::string path_;
    std::unique_ptr<FILE, CloseFile> file_;
    std::vector<char> buffer_;
    size_t begin_ = 0, end_ = 0; // what was read and not given out yet
    bool at_end_ = false;
    std::string_view line_;
    bool whole_ = true; // the line has its end and a sensible length
    uint64_t number_ = 0, offset_ = 0, next_offset_ = 0;
    uint64_t calls_ = 0, broken_ = 0;
    std::vector<std::string> complaints_;
    bool cut_off_ = false;
};

} // namespace vboard_app

#endif
