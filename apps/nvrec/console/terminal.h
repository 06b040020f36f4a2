/*
 * terminal.h - nvrec's own output, apart from the library's.
 *
 * The library prints every step to standard output, and the board what it refuses to standard
 * error. While a Terminal exists, both lead to a log file, and nvrec itself writes to the original output, so
 * that its progress line and table stay readable.
 *
 * What nvrec says itself goes into the log too, a line each, with time and level:
 *
 *   2026-11-22T14:05:03.125+0100 warning: channel 2: its video is lost
 *
 * A log that has grown too large is renamed LOG.1, the one before becomes LOG.2 and so on, and a new log is
 * begun.
 * When a service manager reads standard error, each line begins with its level in the form that the manager
 * expects.
 */
#pragma once

#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>

namespace nvrec
{

enum class LogLevel { kError, kWarning, kInfo, kDebug };

struct LogOptions {
    LogLevel level = LogLevel::kInfo; /* what is less than that is not said                */
    bool quiet = false;               /* the terminal gets warnings and errors alone        */
    int64_t size_bytes = 10'000'000;  /* then the next file is begun; 0 = never             */
    int keep = 4;                     /* of those before it                                 */
    bool append = false;              /* to a log that is there; false = it is begun anew   */
};

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
    bool send_log_to(const std::string &path, const LogOptions &options = {});

    /** Another level, size and number of logs from now on; file and quietness stay. Any thread. */
    void set_log(const LogOptions &options);

    /** Print a whole line; it does not tear the progress line. Any thread. */
    void print(const std::string &line);

    /** Print a line to what standard error was, "nvrec: " in front. Any thread. */
    void error(const std::string &line) { say(LogLevel::kError, line); }
    void warning(const std::string &line) { say(LogLevel::kWarning, line); }

    /** To what standard output was. */
    void info(const std::string &line) { say(LogLevel::kInfo, line); }

    /** Replace the progress line: in place on a terminal, a line of its own elsewhere. Any thread. */
    void progress(const std::string &line);

    /** How often progress() is worth calling. */
    int progress_period_ms() const;

private:
    void say(LogLevel level, const std::string &line);
    void wipe_progress();
    void write_log(LogLevel level, const std::string &line);
    void begin_next_log();
    int open_log(int further_flags) const;

    std::mutex lock_; /* guards all that follows */
    LogOptions options_;
    std::string log_path_; /* empty = the log goes where the output does */
    FILE *own_ = stdout;
    FILE *own_error_ = stderr;
    bool in_place_ = false;     /* own_ is a terminal that nobody else writes to */
    bool in_journal_ = false;   /* own_error_ is read by the service manager     */
    size_t progress_width_ = 0; /* of the line that stands there now             */
};

} // namespace nvrec
