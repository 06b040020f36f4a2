/*
 * Child processes of a test. The child sends its outcome through a pipe as a list of fields, each
 * a decimal length, a blank and that many bytes: result, failed call, calls, printed lines.
 */
#include "fresh_process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "recording_platform.h"

namespace recording
{

namespace
{

void append_field(std::string &message, const std::string &field)
{
    message += std::to_string(field.size()) + " " + field;
}

std::string take_field(const std::string &message, size_t &at)
{
    size_t blank = message.find(' ', at);
    if (blank == std::string::npos) return "";
    size_t size = std::strtoul(message.c_str() + at, nullptr, 10);
    at = blank + 1 + size;
    return message.substr(blank + 1, size);
}

std::vector<std::string> split_lines(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

[[noreturn]] void run_child(int pipe_end, const std::function<int64_t()> &body, unsigned timeout_s)
{
    alarm(timeout_s); // a body that hangs dies of SIGALRM, and the parent says so
    platform.reset();
    start_capture();
    int64_t result = body();

    std::string message, lines;
    append_field(message, std::to_string(result));
    append_field(message, platform.failed_call());
    append_field(message, platform.calls());
    for (const std::string &line : printed_lines())
        lines += line + "\n";
    append_field(message, lines);
    for (size_t at = 0; at < message.size();) {
        ssize_t written = write(pipe_end, message.data() + at, message.size() - at);
        if (written <= 0) _exit(2);
        at += static_cast<size_t>(written);
    }
    _exit(0);
}

} // namespace

Outcome in_fresh_process(const std::function<int64_t()> &body, unsigned timeout_s)
{
    Outcome outcome;
    int ends[2];
    if (pipe(ends) != 0) {
        outcome.death = "no pipe";
        return outcome;
    }
    std::fflush(stdout);
    pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        run_child(ends[1], body, timeout_s);
    }
    close(ends[1]);
    std::string message;
    char piece[4096];
    for (ssize_t got; (got = read(ends[0], piece, sizeof piece)) > 0;)
        message.append(piece, static_cast<size_t>(got));
    close(ends[0]);

    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        outcome.death = "no child";
    else if (WIFSIGNALED(status))
        outcome.death = std::string("signal ") + strsignal(WTERMSIG(status));
    else if (WEXITSTATUS(status) != 0 || message.empty())
        outcome.death = "exit " + std::to_string(WEXITSTATUS(status));
    if (!outcome.death.empty()) return outcome;

    size_t at = 0;
    outcome.finished = true;
    outcome.result = std::strtoll(take_field(message, at).c_str(), nullptr, 10);
    outcome.failed_call = take_field(message, at);
    outcome.calls = split_lines(take_field(message, at));
    outcome.printed = split_lines(take_field(message, at));
    return outcome;
}

} // namespace recording
