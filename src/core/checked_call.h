/*
 * checked_call.h - calls whose failure is printed: call, test, report and way out stand in one line.
 *
 * failed_call(call, report)    any call that answers 0 for success. Otherwise the report is made, in
 *                              which failed_code is the code. The value is the code, 0 for success:
 *                                  if (failed_call(...)) return -1;    the sequence ends here
 *                                  return failed_call(...);            the caller gets the code
 * log_failure(call, report)    the same where the sequence goes on.
 * log_negative(call, report)   where only a negative code counts as a failure; the sequence goes on.
 * failed_test(text, call)      bring-up of display and HDMI: the call is announced with its text, then
 *                              reported as failed with its code or as passed. True when it failed.
 * failed_exec(call)            start of the media system: a call that failed is made again, and the
 *                              code of that second attempt is printed. True when it failed.
 * log_exec_failure(code)       the line that failed_exec prints, where other code follows its habit.
 *
 * A report is one of log.h's forms: log_error for a text behind the prefix of its source, log_text
 * for one that names its own place; or
 *
 * log_code(source, text)       log_error of a text whose one conversion is the code.
 *
 * All of these are macros, so that source lines in the texts are those of the call. A report is a
 * statement of its own, which stands without parentheses.
 */
#pragma once

#include <cstdint>

#include "core/log.h"

#define failed_call(call, report)                                                                            \
    __extension__({                                                                                          \
        const int32_t failed_code = static_cast<int32_t>(call);                                              \
        if (failed_code != 0) report; /* NOLINT(bugprone-macro-parentheses) */                               \
        failed_code;                                                                                         \
    })

#define log_failure(call, report) static_cast<void>(failed_call(call, report))

#define log_negative(call, report)                                                                           \
    do {                                                                                                     \
        const int32_t failed_code = (call);                                                                  \
        if (failed_code < 0) report; /* NOLINT(bugprone-macro-parentheses) */                                \
    } while (false)

#define log_code(source, text) log_error(source, text, failed_code)

// The "AUDIO_TEST" wording is the convention's own, in display code too.
#define failed_test(text, call)                                                                              \
    __extension__({                                                                                          \
        ::nvrhal::log_text("%d Start test: %s\n", __LINE__, text);                                           \
        const int32_t failed_code = (call);                                                                  \
        if (failed_code != 0) {                                                                              \
            ::nvrhal::log_text("AUDIO_TEST [%d] %s exec function failed, result:0x%x\n", __LINE__, text,     \
                               failed_code);                                                                 \
        } else {                                                                                             \
            ::nvrhal::log_text("AUDIO_TEST [%d] %s  exec function pass\n", __LINE__, text);                  \
            ::nvrhal::log_text("%d End test: %s\n", __LINE__, text);                                         \
        }                                                                                                    \
        failed_code != 0;                                                                                    \
    })

#define log_exec_failure(code)                                                                               \
    ::nvrhal::log_text("[%s %d %d]exec function failed\n", __func__, __LINE__, (code))

#define failed_exec(call)                                                                                    \
    __extension__({                                                                                          \
        const bool failed_at_first = (call) != 0;                                                            \
        if (failed_at_first)                                                                                 \
            log_exec_failure(call);                                                                          \
        else                                                                                                 \
            ::nvrhal::log_text("(%s %d)exec function pass\n", __func__, __LINE__);                           \
        failed_at_first;                                                                                     \
    })
