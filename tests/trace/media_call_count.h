/* media_call_count.h - the number of platform calls, where the calls themselves stand elsewhere. */
#pragma once

#include "recording_expect.h"

namespace recording
{

/** Recorded calls of the media interface. */
inline size_t media_calls()
{
    std::string calls = platform.calls({"MI_"});
    size_t lines = calls.empty() ? 0 : 1;
    for (char c : calls)
        lines += c == '\n' ? 1 : 0;
    return lines;
}

} // namespace recording
