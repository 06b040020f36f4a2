/*
 * checked_call.h - the bring-up's convention for a platform call that must succeed.
 *
 * Each call is announced with its text, then either reported as failed with its code or as passed.
 * The "AUDIO_TEST" wording is the convention's own, in display code too.
 */
#pragma once

#include <cstdint>

#include "core/log.h"

namespace nvrhal
{

/** Make the call and log it. True when it failed; the caller then stops. */
template <typename Call> bool failed_test(const char *text, Call call, int line = __builtin_LINE())
{
    log_text("%d Start test: %s\n", line, text);
    const int32_t result = call();
    if (result != 0) {
        log_text("AUDIO_TEST [%d] %s exec function failed, result:0x%x\n", line, text,
                 static_cast<unsigned>(result));
        return true;
    }
    log_text("AUDIO_TEST [%d] %s  exec function pass\n", line, text);
    log_text("%d End test: %s\n", line, text);
    return false;
}

} // namespace nvrhal
