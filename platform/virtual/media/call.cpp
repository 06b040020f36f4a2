/*
 * call.cpp - faults, the call trace and refusal lines. All state is behind one mutex; entry points
 * only come here when a hook is on or a call is refused.
 */
#include "media/call.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>

#include "media/call_follow.h"
#include "media/clock.h"

namespace vboard
{
namespace
{

struct Fault {
    uint32_t nth;   // first call that fails, from 1
    uint32_t count; // how many; 0 = all that follow
    int32_t code;
    uint64_t seen = 0;  // calls since the fault was set
    uint64_t fired = 0; // of these, made to fail
};

struct CloseFile {
    void operator()(FILE *file) const { fclose(file); }
};

struct CallState {
    std::mutex mutex;
    std::map<const CallSite *, Fault> faults;
    vboard_fault_stat fault_stat = {}; // but for `waiting`, which is counted when asked for
    std::unique_ptr<FILE, CloseFile> trace;
    bool trace_is_timed = false;
    std::string last_refusal;
    uint64_t refusals = 0;
    bool loud = true;
};

// First of the list of all call sites; pushed to while the board is loaded, constant afterwards.
const CallSite *first_site = nullptr;

CallState &state()
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

void print_line(const std::string &line)
{
    fprintf(stderr, "vboard: %s\n", line.c_str());
}

void note_refusal(const std::string &text)
{
    const std::string line = std::string(current_name()) + ": " + text;
    CallState &calls = state();
    {
        const std::lock_guard guard(calls.mutex);
        ++calls.refusals;
        calls.last_refusal = line;
        if (calls.loud) print_line(line);
    }
    tell_refusal_follower(line.c_str());
}

// Take a fault out, if the call has one; the caller holds the mutex. A fault that was set for a call
// that never came is most often a test that proves nothing.
void end_fault(CallState &calls, const CallSite *site)
{
    const auto found = calls.faults.find(site);
    if (found == calls.faults.end()) return;
    if (found->second.fired == 0) {
        ++calls.fault_stat.unused;
        if (calls.loud)
            print_line(std::string(site->name) + ": the fault set for its call number " +
                       std::to_string(found->second.nth) + " made no call fail: there were " +
                       std::to_string(found->second.seen));
    }
    calls.faults.erase(found);
}

void note_wrong_fault(CallState &calls)
{
    const std::lock_guard guard(calls.mutex);
    ++calls.fault_stat.refused;
}

} // namespace

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

bool take_fault(const CallSite &site, int32_t &code)
{
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    const auto found = calls.faults.find(&site);
    if (found == calls.faults.end()) return false;
    Fault &fault = found->second;
    ++fault.seen;
    if (fault.seen < fault.nth) return false;
    if (fault.count != 0 && fault.seen >= uint64_t{fault.nth} + fault.count) return false;
    code = fault.code;
    ++fault.fired;
    ++calls.fault_stat.fired;
    return true;
}

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
        CallState &calls = state();
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
    CallState &calls = state();
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
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    if (calls.loud) print_line(std::string(current_name()) + ": " + text);
}

int fault_set(const char *call, uint32_t nth, uint32_t count, int32_t code)
{
    CallState &calls = state();
    const CallSite *site = call != nullptr && nth != 0 ? find_site(call) : nullptr;
    if (site == nullptr) {
        note_wrong_fault(calls);
        if (call == nullptr || nth == 0)
            return refuse_plainly("a fault needs a call name and a count from 1");
        return refuse_plainly("no platform call is named \"%s\"", call);
    }
    const std::lock_guard guard(calls.mutex);
    ++calls.fault_stat.set;
    end_fault(calls, site);
    calls.faults.emplace(site, Fault{nth, count, code});
    call_detail::set_hook(call_detail::kFault, true);
    return 0;
}

void fault_clear(const char *call)
{
    CallState &calls = state();
    const CallSite *site = call != nullptr ? find_site(call) : nullptr;
    if (call != nullptr && site == nullptr) {
        note_wrong_fault(calls);
        refuse_plainly("no platform call is named \"%s\"", call);
        return;
    }
    const std::lock_guard guard(calls.mutex);
    if (site != nullptr) end_fault(calls, site);
    while (call == nullptr && !calls.faults.empty())
        end_fault(calls, calls.faults.begin()->first);
    call_detail::set_hook(call_detail::kFault, !calls.faults.empty());
}

int fault_get_stat(vboard_fault_stat *stat)
{
    if (stat == nullptr) return refuse_plainly("no record to fill");
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    *stat = calls.fault_stat;
    for (const auto &[site, fault] : calls.faults)
        stat->waiting += fault.fired == 0 ? 1 : 0;
    return 0;
}

size_t list_faults(vboard_fault *faults, size_t room)
{
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    size_t count = 0;
    for (const auto &[site, fault] : calls.faults) {
        if (count < room && faults != nullptr)
            faults[count] = {site->name, fault.nth, fault.count, fault.code, fault.seen, fault.fired};
        ++count;
    }
    return count;
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
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    calls.trace = std::move(file);
    calls.trace_is_timed = timed;
    call_detail::set_hook(call_detail::kTimed, timed); // first, so that every line of the file has its times
    call_detail::set_hook(call_detail::kTrace, true);
    return 0;
}

void trace_stop()
{
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    call_detail::set_hook(call_detail::kTrace, false);
    call_detail::set_hook(call_detail::kTimed, false);
    calls.trace.reset();
}

uint64_t refusal_count()
{
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    return calls.refusals;
}

size_t last_refusal(char *text, size_t size)
{
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    if (text != nullptr && size > 0) snprintf(text, size, "%s", calls.last_refusal.c_str());
    return calls.last_refusal.size();
}

void set_loud(bool loud)
{
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    calls.loud = loud;
}

} // namespace vboard
