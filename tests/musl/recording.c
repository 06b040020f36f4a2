/* recording.c - the list of calls, and the one call that fails. */
#include "recording.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { MOST_CALLS = 4096, LONGEST_CALL = 512 };

static char *calls[MOST_CALLS];
static size_t call_count;

static const char *failing_name;
static unsigned failing_in;
static int32_t failing_code;

static void stop(const char *why)
{
    fprintf(stderr, "recording platform: %s\n", why);
    abort();
}

int32_t record_call(const char *name, const char *format, ...)
{
    char text[LONGEST_CALL];
    const int head = snprintf(text, sizeof text, "%s ", name);
    va_list arguments;
    va_start(arguments, format);
    const int rest = vsnprintf(text + head, sizeof text - (size_t)head, format, arguments);
    va_end(arguments);
    if (rest < 0 || (size_t)(head + rest) >= sizeof text) stop("a call is too long for its line");
    if (rest == 0) text[head - 1] = '\0'; /* no arguments, no blank */
    if (call_count == MOST_CALLS) stop("too many calls");
    calls[call_count] = strdup(text);
    if (!calls[call_count++]) stop("no memory");
    if (failing_name && strcmp(name, failing_name) == 0 && --failing_in == 0) {
        failing_name = NULL;
        return failing_code;
    }
    return 0;
}

static int is_wanted(const char *call, const char *const *prefixes)
{
    if (!prefixes) return 1;
    for (; *prefixes; ++prefixes)
        if (strncmp(call, *prefixes, strlen(*prefixes)) == 0) return 1;
    return 0;
}

char *recorded_calls(const char *const *prefixes)
{
    size_t size = 1, at = 0;
    for (size_t i = 0; i < call_count; ++i)
        size += strlen(calls[i]) + 1;
    char *text = malloc(size);
    if (!text) stop("no memory");
    text[0] = '\0';
    for (size_t i = 0; i < call_count; ++i)
        if (is_wanted(calls[i], prefixes)) at += (size_t)sprintf(text + at, "%s%s", at ? "\n" : "", calls[i]);
    return text;
}

void recording_forget(void)
{
    while (call_count > 0)
        free(calls[--call_count]);
}

void recording_fail(const char *name, unsigned n, int32_t code)
{
    failing_name = name;
    failing_in = n;
    failing_code = code;
}
