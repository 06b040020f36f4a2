/*
 * call.cpp - the sites of calls, the call trace and refusal lines. All state is behind one mutex; entry
 * points only come here when a hook is on or a call is refused.
 */
#include "media/call.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>

#include "media/call_follow.h"
#include "media/call_state.h"
#include "media/clock.h"

namespace vboard
{
namespace
{

// First of the list of all call sites; pushed to while the board is loaded, constant afterwards.
const CallSite *first_site = nullptr;

std::string format_text(const char *format, va_list arguments)
{
    char text[512];
    vsnprintf(text, sizeof text, format, arguments);
    return text;
}

const char *current_name()
{
    return call_detail::current_call != nullptr ? call_detail::current_call->name : "board";
}

void note_refusal(const std::string &text)
{
    const std::string line = std::string(current_name()) + ": " + text;
    CallState &calls = call_state();
    {
        const std::lock_guard guard(calls.mutex);
        ++calls.refusals;
        calls.last_refusal = line;
        if (calls.loud) print_line(line);
    }
    tell_refusal_follower(line.c_str());
}

} // namespace

CallState &call_state()
{
    static CallState *calls = new CallState;
    return *calls;
}

const CallSite *find_site(const char *name)
{
    for (const CallSite *site = first_site; site != nullptr; site = site->next)
        if (strcmp(site->name, name) == 0) return site;
    return nullptr;
}

void print_line(const std::string &line)
{
    fprintf(stderr, "vboard: %s\n", line.c_str());
}

CallSite::CallSite(const char *call_name) : name(call_name), next(first_site)
{
    first_site = this;
}

namespace call_detail
{

std::atomic<unsigned> hooks{0};

void set_hook(unsigned hook, bool on)
{
    if (on)
        hooks.fetch_or(hook, std::memory_order_relaxed);
    else
        hooks.fetch_and(~hook, std::memory_order_relaxed);
}

thread_local const CallSite *current_call = nullptr;
thread_local const char *declined = nullptr;

int64_t real_time_us()
{
    using std::chrono::steady_clock;
    const steady_clock::duration now = steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

void report(const EndedCall &call, unsigned active_hooks)
{
    const int caller_errno = errno;
    // A hook that came up during the call cannot tell its duration, and leaves it out.
    const bool has_duration = (active_hooks & (kTimed | kFollow)) != 0;
    const int64_t duration_us = has_duration ? real_time_us() - call.began_us : 0;
    const uint32_t thread = has_duration ? thread_number() : 0;
    std::string result = call.result;
    if (declined != nullptr) result += std::string(" (") + declined + ")";
    const int64_t now_us = clock_now_us();
    if ((active_hooks & kTrace) != 0) {
        CallState &calls = call_state();
        const std::lock_guard guard(calls.mutex);
        if (calls.trace != nullptr) {
            fprintf(calls.trace.get(), "%lld %s%s = %s", static_cast<long long>(now_us), call.site.name,
                    call.arguments.c_str(), result.c_str());
            if (calls.trace_is_timed && has_duration)
                fprintf(calls.trace.get(), " ; thread %u, %lld us", thread,
                        static_cast<long long>(duration_us));
            fputc('\n', calls.trace.get());
        }
    }
    if ((active_hooks & kFollow) != 0) {
        const char *arguments = call.arguments.empty() ? "" : call.arguments.c_str() + 1;
        tell_call_follower(
            {now_us, duration_us, thread, call.failed ? 1u : 0u, call.site.name, arguments, result.c_str()});
    }
    errno = caller_errno;
}

int32_t out_of_memory(const CallSite &)
{
    note_refusal("out of memory");
    return MI_ERROR(MI_MODULE_SYS, MI_REASON_NO_MEMORY);
}

} // namespace call_detail

int32_t refuse(MI_ModuleId module, MI_Reason reason, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_text(format, arguments);
    va_end(arguments);
    note_refusal(text + " (" + reason_text(reason) + ")");
    return MI_ERROR(module, reason);
}

void trace_event(const char *format, ...)
{
    if ((call_detail::hooks.load(std::memory_order_relaxed) & call_detail::kTrace) == 0) return;
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_text(format, arguments);
    va_end(arguments);
    CallState &calls = call_state();
    const int64_t now_us = clock_now_us();
    const std::lock_guard guard(calls.mutex);
    if (calls.trace == nullptr) return;
    fprintf(calls.trace.get(), "%lld event %s\n", static_cast<long long>(now_us), text.c_str());
}

int32_t decline(MI_ModuleId module, MI_Reason reason)
{
    call_detail::declined = reason_text(reason);
    return MI_ERROR(module, reason);
}

int refuse_plainly(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    note_refusal(format_text(format, arguments));
    va_end(arguments);
    return -1;
}

void warn(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_text(format, arguments);
    va_end(arguments);
    CallState &calls = call_state();
    const std::lock_guard guard(calls.mutex);
    if (calls.loud) print_line(std::string(current_name()) + ": " + text);
}

size_t call_names(const char **names, size_t room)
{
    size_t count = 0;
    for (const CallSite *site = first_site; site != nullptr; site = site->next) {
        if (count < room && names != nullptr) names[count] = site->name;
        ++count;
    }
    return count;
}

int trace_start(const char *path, bool timed)
{
    if (path == nullptr) return refuse_plainly("a trace needs a file name");
    std::unique_ptr<FILE, CloseFile> file(fopen(path, "w"));
    if (file == nullptr) return refuse_plainly("cannot write the trace to \"%s\"", path);
    CallState &calls = call_state();
    const std::lock_guard guard(calls.mutex);
    calls.trace = std::move(file);
    calls.trace_is_timed = timed;
    call_detail::set_hook(call_detail::kTimed, timed); // first, so that every line of the file has its times
    call_detail::set_hook(call_detail::kTrace, true);
    return 0;
}

void trace_stop()
{
    CallState &calls = call_state();
    const std::lock_guard guard(calls.mutex);
    call_detail::set_hook(call_detail::kTrace, false);
    call_detail::set_hook(call_detail::kTimed, false);
    calls.trace.reset();
}

uint64_t refusal_count()
{
    CallState &calls = call_state();
    const std::lock_guard guard(calls.mutex);
    return calls.refusals;
}

size_t last_refusal(char *text, size_t size)
{
    CallState &calls = call_state();
    const std::lock_guard guard(calls.mutex);
    if (text != nullptr && size > 0) snprintf(text, size, "%s", calls.last_refusal.c_str());
    return calls.last_refusal.size();
}

void set_loud(bool loud)
{
    CallState &calls = call_state();
    const std::lock_guard guard(calls.mutex);
    calls.loud = loud;
}

} // namespace vboard
