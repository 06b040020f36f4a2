/*
 * call.cpp - faults, the call trace and refusal lines. All state is behind one mutex; entry points
 * only come here when a hook is on or a call is refused.
 */
#include "media/call.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>

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
    bool fired = false; // one of them was made to fail
};

struct CloseFile {
    void operator()(FILE *file) const { fclose(file); }
};

struct CallState {
    std::mutex mutex;
    std::map<const CallSite *, Fault> faults;
    vboard_fault_stat fault_stat = {}; // but for `waiting`, which is counted when asked for
    std::unique_ptr<FILE, CloseFile> trace;
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
    const std::lock_guard guard(calls.mutex);
    ++calls.refusals;
    calls.last_refusal = line;
    if (calls.loud) print_line(line);
}

// Take a fault out, if the call has one; the caller holds the mutex. A fault that was set for a call
// that never came is most often a test that proves nothing.
void end_fault(CallState &calls, const CallSite *site)
{
    const auto found = calls.faults.find(site);
    if (found == calls.faults.end()) return;
    if (!found->second.fired) {
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

void set_hook(unsigned hook, bool on)
{
    if (on)
        call_detail::hooks.fetch_or(hook, std::memory_order_relaxed);
    else
        call_detail::hooks.fetch_and(~hook, std::memory_order_relaxed);
}

} // namespace

CallSite::CallSite(const char *call_name) : name(call_name), next(first_site)
{
    first_site = this;
}

namespace call_detail
{

std::atomic<unsigned> hooks{0};
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
    fault.fired = true;
    ++calls.fault_stat.fired;
    return true;
}

void trace_line(const CallSite &site, const std::string &arguments, const std::string &result)
{
    CallState &calls = state();
    const int64_t now_us = clock_now_us();
    const std::lock_guard guard(calls.mutex);
    if (calls.trace == nullptr) return;
    const std::string reason = declined != nullptr ? std::string(" (") + declined + ")" : "";
    fprintf(calls.trace.get(), "%lld %s%s = %s%s\n", static_cast<long long>(now_us), site.name,
            arguments.c_str(), result.c_str(), reason.c_str());
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
    set_hook(call_detail::kFault, true);
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
    set_hook(call_detail::kFault, !calls.faults.empty());
}

int fault_get_stat(vboard_fault_stat *stat)
{
    if (stat == nullptr) return refuse_plainly("no record to fill");
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    *stat = calls.fault_stat;
    for (const auto &[site, fault] : calls.faults)
        stat->waiting += fault.fired ? 0 : 1;
    return 0;
}

int trace_start(const char *path)
{
    if (path == nullptr) return refuse_plainly("a trace needs a file name");
    std::unique_ptr<FILE, CloseFile> file(fopen(path, "w"));
    if (file == nullptr) return refuse_plainly("cannot write the trace to \"%s\"", path);
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    calls.trace = std::move(file);
    set_hook(call_detail::kTrace, true);
    return 0;
}

void trace_stop()
{
    CallState &calls = state();
    const std::lock_guard guard(calls.mutex);
    set_hook(call_detail::kTrace, false);
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
