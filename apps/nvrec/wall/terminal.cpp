/* terminal.cpp - see terminal.h. */
#include "wall/terminal.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace nvrec
{
namespace
{

constexpr int kLogMode = 0644;
constexpr int kInPlacePeriod_ms = 500;
constexpr int kLinePeriod_ms = 5000;

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

} // namespace

Terminal::~Terminal()
{
    wipe_progress();
    std::fflush(stdout);
    if (own_ != stdout) std::fclose(own_);
    if (own_error_ != stderr) std::fclose(own_error_);
}

bool Terminal::send_log_to(const std::string &path)
{
    if (path == "-") return true;

    std::error_code ignored; /* the open below tells whether it worked */
    const std::filesystem::path directory = std::filesystem::path(path).parent_path();
    if (!directory.empty()) std::filesystem::create_directories(directory, ignored);

    const int log = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, kLogMode);
    if (log < 0) {
        error("cannot write the log " + path + ": " + error_text());
        return false;
    }
    std::fflush(stdout);
    FILE *own = another_stream_to(STDOUT_FILENO);
    FILE *own_error = another_stream_to(STDERR_FILENO);
    if (!own || !own_error || dup2(log, STDOUT_FILENO) < 0 || dup2(log, STDERR_FILENO) < 0) {
        error("cannot part the log from the terminal: " + error_text());
        close(log);
        return false;
    }
    close(log);
    own_ = own;
    own_error_ = own_error;
    in_place_ = isatty(fileno(own)) != 0;
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); /* a recorder that dies leaves its last line */
    return true;
}

void Terminal::wipe_progress()
{
    if (progress_width_ == 0) return;
    std::fprintf(own_, "\r%*s\r", static_cast<int>(progress_width_), "");
    progress_width_ = 0;
}

void Terminal::print(const std::string &line)
{
    const std::scoped_lock guard(lock_);
    wipe_progress();
    std::fprintf(own_, "%s\n", line.c_str());
    std::fflush(own_);
}

void Terminal::error(const std::string &line)
{
    const std::scoped_lock guard(lock_);
    wipe_progress();
    std::fflush(own_);
    std::fprintf(own_error_, "nvrec: %s\n", line.c_str());
    std::fflush(own_error_);
}

void Terminal::progress(const std::string &line)
{
    const std::scoped_lock guard(lock_);
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
