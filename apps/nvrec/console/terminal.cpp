/* terminal.cpp - see terminal.h. */
#include "console/terminal.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/clock.h"

namespace nvrec
{
namespace
{

constexpr int kLogMode = 0640;
constexpr int kInPlacePeriod_ms = 500;
constexpr int kLinePeriod_ms = 5000;

struct LevelRow {
    const char *name;
    const char *journal; /* a syslog priority, as the service manager takes it in front of a line */
};

constexpr std::array<LevelRow, 4> kLevels = {
    {{"error", "<3>"}, {"warning", "<4>"}, {"info", "<6>"}, {"debug", "<7>"}}};

const LevelRow &row_of(LogLevel level)
{
    return kLevels.at(static_cast<size_t>(level));
}

std::string error_text()
{
    return std::system_category().message(errno);
}

/* A stream of one's own to where a descriptor leads now. */
FILE *another_stream_to(int descriptor)
{
    const int own = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    return own < 0 ? nullptr : fdopen(own, "w");
}

/* The service manager names the device and the number of what it reads. */
bool is_journal(int descriptor)
{
    const char *stream = std::getenv("JOURNAL_STREAM"); // NOLINT(concurrency-mt-unsafe): nobody writes it
    struct stat found;
    if (!stream || fstat(descriptor, &found) != 0) return false;
    return std::to_string(found.st_dev) + ":" + std::to_string(found.st_ino) == stream;
}

/* "2026-11-22T14:05:03.125+0100" */
std::string time_now()
{
    constexpr auto kSecond_ms = 1000;
    const WallTime now = wall_time();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto since_epoch = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
    std::tm local = {};
    localtime_r(&seconds, &local);
    std::array<char, 32> date = {};
    std::array<char, 8> zone = {};
    std::array<char, 8> fraction = {};
    std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local);
    std::strftime(zone.data(), zone.size(), "%z", &local);
    std::snprintf(fraction.data(), fraction.size(), ".%03d",
                  static_cast<int>((since_epoch.count() % kSecond_ms + kSecond_ms) % kSecond_ms));
    return std::string(date.data()) + fraction.data() + zone.data();
}

} // namespace

Terminal::~Terminal()
{
    wipe_progress();
    std::fflush(stdout);
    if (own_ != stdout) std::fclose(own_);
    if (own_error_ != stderr) std::fclose(own_error_);
}

int Terminal::open_log(int further_flags) const
{
    return open(log_path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | further_flags, kLogMode);
}

bool Terminal::send_log_to(const std::string &path, const LogOptions &options)
{
    const std::scoped_lock guard(lock_);
    options_ = options;
    in_journal_ = is_journal(STDERR_FILENO);
    if (path == "-") return true;

    std::error_code ignored; /* the open below tells whether it worked */
    const std::filesystem::path directory = std::filesystem::path(path).parent_path();
    if (!directory.empty()) std::filesystem::create_directories(directory, ignored);

    log_path_ = path;
    const int log = open_log(options.append ? 0 : O_TRUNC);
    if (log < 0) {
        std::fprintf(stderr, "nvrec: cannot write the log %s: %s\n", path.c_str(), error_text().c_str());
        log_path_.clear();
        return false;
    }
    std::fflush(stdout);
    FILE *own = another_stream_to(STDOUT_FILENO);
    FILE *own_error = another_stream_to(STDERR_FILENO);
    if (!own || !own_error || dup2(log, STDOUT_FILENO) < 0 || dup2(log, STDERR_FILENO) < 0) {
        std::fprintf(stderr, "nvrec: cannot part the log from the terminal: %s\n", error_text().c_str());
        close(log);
        log_path_.clear();
        return false;
    }
    close(log);
    own_ = own;
    own_error_ = own_error;
    in_place_ = isatty(fileno(own)) != 0;
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); /* a recorder that dies leaves its last line */
    return true;
}

void Terminal::set_log(const LogOptions &options)
{
    const std::scoped_lock guard(lock_);
    options_.level = options.level;
    options_.size_bytes = options.size_bytes;
    options_.keep = options.keep;
}

void Terminal::wipe_progress()
{
    if (progress_width_ == 0) return;
    std::fprintf(own_, "\r%*s\r", static_cast<int>(progress_width_), "");
    progress_width_ = 0;
}

/* By one write(2): the library's lines come from other threads. */
void Terminal::write_log(LogLevel level, const std::string &line)
{
    if (log_path_.empty()) return;
    begin_next_log();
    const std::string entry = time_now() + " " + row_of(level).name + ": " + line + "\n";
    std::fflush(stdout);
    if (write(STDOUT_FILENO, entry.data(), entry.size()) < 0) return; /* the terminal has it */
}

/* The library goes on printing to descriptor 1, which leads to the new file from one write to the next. */
void Terminal::begin_next_log()
{
    struct stat found;
    if (log_path_.empty() || options_.size_bytes <= 0 || fstat(STDOUT_FILENO, &found) != 0 ||
        found.st_size < options_.size_bytes)
        return;
    const auto numbered = [this](int number) { return log_path_ + "." + std::to_string(number); };
    for (int number = options_.keep; number > 0; --number)
        std::rename((number == 1 ? log_path_ : numbered(number - 1)).c_str(), numbered(number).c_str());
    const int log = open_log(options_.keep > 0 ? 0 : O_TRUNC);
    if (log < 0) return; /* it goes on in the old one */
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    close(log);
}

void Terminal::print(const std::string &line)
{
    const std::scoped_lock guard(lock_);
    if (options_.quiet) return;
    wipe_progress();
    std::fprintf(own_, "%s\n", line.c_str());
    std::fflush(own_);
}

void Terminal::say(LogLevel level, const std::string &line)
{
    const std::scoped_lock guard(lock_);
    if (level > options_.level) return;
    write_log(level, line);
    const bool to_error = level <= LogLevel::kWarning;
    if (options_.quiet && !to_error) return;
    wipe_progress();
    std::fflush(own_);
    FILE *to = to_error ? own_error_ : own_;
    std::fprintf(to, "%snvrec: %s\n", in_journal_ ? row_of(level).journal : "", line.c_str());
    std::fflush(to);
}

void Terminal::progress(const std::string &line)
{
    const std::scoped_lock guard(lock_);
    begin_next_log();
    if (options_.quiet || in_journal_) return;
    wipe_progress();
    if (in_place_) {
        std::fprintf(own_, "%s", line.c_str());
        progress_width_ = line.size();
    } else {
        std::fprintf(own_, "%s\n", line.c_str());
    }
    std::fflush(own_);
}

int Terminal::progress_period_ms() const
{
    return in_place_ ? kInPlacePeriod_ms : kLinePeriod_ms;
}

} // namespace nvrec
