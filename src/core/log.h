/*
 * log.h - what the library prints, and where: standard output, one call a text, or the application's
 * function instead (nvrhal_set_log in nvrhal/log.h).
 *
 * log_line   a whole line without conversions; a line end is added.
 * log_text   a text with conversions, printed exactly as written.
 * log_error  the same behind the prefix "[source]-line: ". `source` is the C-style name of the
 *            subsystem's chief file ("vdec_venc.c"), under which field engineers search their logs.
 * log_error_line  a whole line behind that prefix.
 * log_entry  the entry trace of an exported call.
 * log_to_standard_error  a text that goes to standard error as long as the application has not set
 *            a function; the application's function gets it like any other.
 * log_errno  what perror would print behind that text, to the same places. errno stays as it was.
 *
 * checked_call.h has the forms of a call whose failure is printed.
 */
#pragma once

#define LOG_FORMAT __attribute__((format(printf, 1, 2)))

namespace nvrhal
{

/** The length in bytes, as printf counts, or a negative number. */
LOG_FORMAT int log_text(const char *format, ...);

LOG_FORMAT int log_to_standard_error(const char *format, ...);

/** @param text  not empty */
void log_errno(const char *text);

inline void log_line(const char *text)
{
    log_text("%s\n", text);
}

#define log_error(source, format, ...)                                                                       \
    ::nvrhal::log_text("[%s]-%d: " format, (source), __LINE__ __VA_OPT__(, ) __VA_ARGS__)

#define log_error_line(source, text) log_error(source, "%s\n", (text))

#define log_entry(source)                                                                                    \
    ::nvrhal::log_text("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEE%s,%s,%d\n", (source), __func__, __LINE__)

} // namespace nvrhal
