/* Capture of standard output, and the texts that tests expect in it. */
#include "printed.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <sstream>

namespace recording
{

namespace
{

constexpr char kNoLineEnd[] = "<no line end>";

int real_stdout = -1; // descriptor 1 as it was, while a capture runs
int capture_file = -1;
off_t forgotten = 0; // where the text that still counts begins

/* The captured text lives in memory: code that prints without end dies of SIGXFSZ here. */
constexpr rlim_t kLargestFileBytes = 64u << 20;

void bound_files()
{
    rlimit limit;
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur <= kLargestFileBytes) return;
    limit.rlim_cur = kLargestFileBytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

bool is_digit(char c)
{
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

/* Length of "[file.c]-123: " (or with '#') at the start of a line; 0 = no prefix. */
size_t prefix_length(const std::string &line)
{
    if (line.empty() || line[0] != '[') return 0;
    size_t end = line.find("]-");
    if (end == std::string::npos) return 0;
    size_t at = end + 2, first = at;
    while (at < line.size() && (is_digit(line[at]) || line[at] == '#'))
        ++at;
    return at > first && line.compare(at, 2, ": ") == 0 ? at + 2 : 0;
}

bool is_name_character(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.';
}

/* `#` in the pattern takes a run of digits, `@` a run of name characters; both also themselves. */
bool fits(const char *pattern, const char *text)
{
    for (; *pattern != '\0'; ++pattern, ++text) {
        bool digits = *pattern == '#' && is_digit(*text);
        bool name = *pattern == '@' && is_name_character(*text);
        if (!digits && !name && *pattern != *text) return false;
        while (digits ? is_digit(text[1]) : name && is_name_character(text[1]))
            ++text;
    }
    return *text == '\0';
}

bool line_fits(const std::string &wanted, const std::string &line)
{
    return fits(wanted.c_str(), line.c_str()) || fits(wanted.c_str(), line.c_str() + prefix_length(line));
}

std::string all_lines()
{
    std::string text;
    for (const std::string &line : printed_lines())
        text += "  |" + line + "\n";
    return text;
}

std::string without_leading_blanks(const std::string &line)
{
    size_t first = line.find_first_not_of(' ');
    return first == std::string::npos ? "" : line.substr(first);
}

/* An expected line may carry the line end that the library's text carries. */
std::string without_line_end(const std::string &line)
{
    return !line.empty() && line.back() == '\n' ? line.substr(0, line.size() - 1) : line;
}

} // namespace

void pause_capture()
{
    if (real_stdout < 0) return;
    std::fflush(stdout);
    dup2(real_stdout, STDOUT_FILENO);
}

void resume_capture()
{
    if (real_stdout < 0) return;
    std::fflush(stdout);
    dup2(capture_file, STDOUT_FILENO);
}

void start_capture()
{
    std::fflush(stdout);
    if (real_stdout < 0) real_stdout = dup(STDOUT_FILENO);
    if (capture_file >= 0) close(capture_file);
    bound_files();
    capture_file = memfd_create("printed", MFD_CLOEXEC);
    forgotten = 0;
    dup2(capture_file, STDOUT_FILENO);
}

void stop_capture()
{
    pause_capture();
    if (real_stdout >= 0) close(real_stdout);
    real_stdout = -1;
}

void forget_printed()
{
    std::fflush(stdout);
    if (capture_file >= 0) forgotten = lseek(capture_file, 0, SEEK_END);
}

std::string printed_text()
{
    std::fflush(stdout);
    std::string text;
    char piece[4096];
    off_t at = forgotten;
    for (ssize_t got; (got = pread(capture_file, piece, sizeof piece, at)) > 0; at += got)
        text.append(piece, static_cast<size_t>(got));
    return text;
}

std::vector<std::string> printed_lines()
{
    std::vector<std::string> lines;
    std::istringstream in(printed_text());
    for (std::string line; std::getline(in, line);) {
        if (in.eof()) line += kNoLineEnd; // nothing followed: a text lost its line end, or never had one
        size_t prefix = prefix_length(line);
        if (prefix > 0) line = line.substr(0, line.find("]-") + 2) + "#: " + line.substr(prefix);
        lines.push_back(line);
    }
    return lines;
}

unsigned times_printed(const std::string &line)
{
    std::string wanted = without_line_end(line);
    unsigned times = 0;
    for (const std::string &have : printed_lines())
        times += line_fits(wanted, have);
    return times;
}

Finding printed(const std::string &line)
{
    if (times_printed(line) > 0) return {true, ""};
    return {false, "not printed: |" + line + "\nprinted:\n" + all_lines()};
}

Finding not_printed(const std::string &line)
{
    if (times_printed(line) == 0) return {true, ""};
    return {false, "printed although it should not be: |" + line};
}

Finding printed_as_error(const std::string &source, const std::string &line)
{
    std::string wanted = "[" + source + "]-#: " + without_line_end(line);
    for (const std::string &have : printed_lines())
        if (fits(wanted.c_str(), have.c_str())) return {true, ""};
    return {false, "not printed: |" + wanted + "\nprinted:\n" + all_lines()};
}

Finding printed_without_prefix(const std::string &line)
{
    std::string wanted = without_line_end(line);
    unsigned bare = 0;
    for (const std::string &have : printed_lines())
        bare += fits(wanted.c_str(), have.c_str());
    if (bare > 0 && bare == times_printed(line)) return {true, ""};
    return {false, "not printed, or printed behind a prefix: |" + line + "\nprinted:\n" + all_lines()};
}

Finding printed_in_order(const std::string &lines)
{
    std::vector<std::string> have = printed_lines();
    size_t at = 0;
    std::istringstream in(lines);
    for (std::string wanted; std::getline(in, wanted);) {
        wanted = without_leading_blanks(wanted);
        if (wanted.empty()) continue;
        while (at < have.size() && !line_fits(wanted, without_leading_blanks(have[at])))
            ++at;
        if (at == have.size())
            return {false, "not printed, or out of order: |" + wanted + "\nprinted:\n" + all_lines()};
        ++at;
    }
    return {true, ""};
}

} // namespace recording
