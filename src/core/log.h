/*
 * log.h - what the library prints, and where: standard output, one call a text.
 *
 * log_line   a whole line without conversions; a line end is added.
 * log_text   a text with conversions, printed exactly as written.
 * log_error  the same behind the prefix "[source]-line: ". `source` is the C-style name of the
 *            subsystem's chief file ("vdec_venc.c"), under which field engineers search their logs.
 * log_error_line  a whole line behind that prefix.
 * log_entry  the entry trace of an exported call.
 *
 * checked_call.h has the forms of a call whose failure is printed.
 */
#pragma once

#include <cstdio>

namespace nvrhal
{

inline void log_line(const char *text)
{
    std::puts(text);
}

#define log_text(...) std::printf(__VA_ARGS__)

#define log_error(source, format, ...)                                                                       \
    std::printf("[%s]-%d: " format, (source), __LINE__ __VA_OPT__(, ) __VA_ARGS__)

#define log_error_line(source, text) log_error(source, "%s\n", (text))

#define log_entry(source)                                                                                    \
    std::printf("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEE%s,%s,%d\n", (source), __func__, __LINE__)

} // namespace nvrhal
