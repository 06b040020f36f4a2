/*
 * record_call.h - one platform call: to text, past the scripts, to its default effect.
 *
 * Numbers are shown as numbers; a pointer to const is an input and shows its record; a pointer to
 * non-const is an output and shows only when it is null.
 */
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "describe.h"
#include "recording_platform.h"

namespace recording
{

template <class T> void append_argument(std::string &text, T argument)
{
    std::string piece;
    if constexpr (std::is_pointer_v<T>) {
        if (argument == nullptr)
            piece = "null";
        else if constexpr (std::is_const_v<std::remove_pointer_t<T>>)
            piece = describe(*argument);
        else
            return;
    } else {
        piece = std::to_string(argument);
    }
    if (!text.empty()) text += ' ';
    text += piece;
}

template <class T> Args::Argument argument_of(T argument)
{
    if constexpr (std::is_pointer_v<T>)
        return {0, const_cast<void *>(static_cast<const void *>(argument))};
    else
        return {static_cast<int64_t>(argument), nullptr};
}

/**
 * Record a call of the media interface. `refusal` says, under the lock, what a strict platform
 * refuses it with, if no script answers; `effect` runs, under the lock, when it is to succeed.
 */
template <class Refusal, class Effect, class... Arguments>
int32_t record_refusable_call(const char *name, Refusal refusal, Effect effect, Arguments... arguments)
{
    std::string text;
    (append_argument(text, arguments), ...);
    Platform::Verdict verdict = platform.record(name, text);
    Args args(std::vector<Args::Argument>{argument_of(arguments)...});
    if (verdict.seer) verdict.seer(args);
    {
        std::lock_guard lock(platform.mutex);
        if (verdict.value)
            args.result = *verdict.value;
        else if (platform.is_strict())
            args.result = refusal(platform.media);
        if (args.result == MI_SUCCESS) effect(platform.media);
    }
    if (verdict.filler) verdict.filler(args);
    return args.result;
}

/** A call that is never refused. */
template <class Effect, class... Arguments>
int32_t record_call(const char *name, Effect effect, Arguments... arguments)
{
    return record_refusable_call(
        name, [](const MediaState &) { return MI_SUCCESS; }, effect, arguments...);
}

/** A call that is never refused and changes nothing. */
template <class... Arguments> int32_t record_plain_call(const char *name, Arguments... arguments)
{
    return record_call(
        name, [](MediaState &) {}, arguments...);
}

} // namespace recording
