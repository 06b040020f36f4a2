/*
 * terminal.h - nvrec's own output, apart from the library's.
 *
 * The library prints every step to standard output, and the board what it refuses to standard
 * error. While a Terminal exists, both lead to a log file and nvrec writes to what they were
 * before, so that its progress line and table stay readable.
 */
#pragma once

#include <cstdio>
#include <mutex>
#include <string>

namespace nvrec
{

class Terminal
{
public:
    Terminal() = default;
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    /**
     * Lead the library's and the board's output to a file; "-" leaves it where it is. Before any
     * thread prints.
     * Missing directories are made. @return false when the file cannot be written.
     */
    bool send_log_to(const std::string &path);

    /** Print a whole line; it does not tear the progress line. Any thread. */
    void print(const std::string &line);

    /** Print a line to what standard error was, "nvrec: " in front. Any thread. */
    void error(const std::string &line);

    /** Replace the progress line: in place on a terminal, a line of its own elsewhere. Any thread. */
    void progress(const std::string &line);

    /** How often progress() is worth calling. */
    int progress_period_ms() const;

private:
    void wipe_progress();

    std::mutex lock_; /* guards the two streams and the width */
    FILE *own_ = stdout;
    FILE *own_error_ = stderr;
    bool in_place_ = false;     /* own_ is a terminal that nobody else writes to */
    size_t progress_width_ = 0; /* of the line that stands there now             */
};

} // namespace nvrec
