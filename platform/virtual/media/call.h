/*
 * call.h - what every entry point of the device face goes through: fault injection, the trace, and
 * refusals with one line that says why.
 *
 * An entry point is a CallSite and a body:
 *
 *     CallSite site{"MI_VDEC_StartChn"};
 *     int32_t MI_VDEC_StartChn(uint32_t channel)
 *     {
 *         return platform_call(site, [&] { return vdec_start(channel); }, channel);
 *     }
 *
 * With no fault set, no trace running and no follower the cost is one relaxed load and a thread-local store.
 */
#ifndef VBOARD_CALL_H
#define VBOARD_CALL_H

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <exception>
#include <string>
#include <type_traits>

#include "media/call_text.h"
#include "mi_common.h"
#include "vboard.h"
#include "vboard_calls.h"

namespace vboard
{

/* One platform call by name. Static storage only: sites are linked into a list at load. */
class CallSite
{
public:
    explicit CallSite(const char *call_name);
    CallSite(const CallSite &) = delete;
    CallSite &operator=(const CallSite &) = delete;

    const char *const name;
    const CallSite *const next;
};

namespace call_detail
{
enum Hook : unsigned { kTrace = 1, kFault = 2, kTimed = 4, kFollow = 8 };

extern std::atomic<unsigned> hooks;               // Hook bits that are on
extern thread_local const CallSite *current_call; // for refusal lines
extern thread_local const char *declined;         // why the current call was declined, or null
void set_hook(unsigned hook, bool on);
bool take_fault(const CallSite &site, int32_t &code); // counts the call
int64_t real_time_us();                               // monotonic

/* A call that has ended, for the trace and the follower. */
struct EndedCall {
    const CallSite &site;
    const std::string &arguments; // each with a space before it
    std::string result;
    bool failed;
    int64_t began_us; // real_time_us(), when a hook wants durations
};
void report(const EndedCall &call, unsigned active_hooks);
int32_t out_of_memory(const CallSite &site);

template <typename Result> Result as_result(int32_t code)
{
    if constexpr (std::is_pointer_v<Result>)
        return nullptr;
    else
        return static_cast<Result>(code);
}

template <typename Result> bool is_success(Result result)
{
    if constexpr (std::is_pointer_v<Result>)
        return result != nullptr;
    else
        return result >= 0;
}

template <typename Result> std::string result_text(Result result)
{
    if constexpr (std::is_pointer_v<Result>)
        return result != nullptr ? "address" : "null";
    else
        return code_text(result);
}

class Scope
{
public:
    explicit Scope(const CallSite &site) : outer_(current_call)
    {
        current_call = &site;
        declined = nullptr;
    }
    ~Scope() { current_call = outer_; }
    Scope(const Scope &) = delete;
    Scope &operator=(const Scope &) = delete;

private:
    const CallSite *outer_;
};
} // namespace call_detail

template <typename Body, typename... Arguments>
auto platform_call(const CallSite &site, Body body, const Arguments &...arguments) -> decltype(body())
{
    using namespace call_detail;
    using Result = decltype(body());
    const Scope scope(site);
    try {
        const unsigned active = hooks.load(std::memory_order_relaxed);
        if (active == 0) [[likely]]
            return body();
        const int64_t began_us = (active & (kTimed | kFollow)) != 0 ? real_time_us() : 0;
        int32_t code = 0;
        const bool faulted = (active & kFault) != 0 && take_fault(site, code);
        const Result result = faulted ? as_result<Result>(code) : body();
        if ((active & (kTrace | kFollow)) != 0) {
            std::string text;
            [[maybe_unused]] const bool filled = !faulted && is_success(result);
            ((text += ' ', describe(text, arguments, filled)), ...);
            report({site, text, result_text(result), !is_success(result), began_us}, active);
        }
        return result;
    } catch (const std::exception &) {
        return as_result<Result>(out_of_memory(site));
    }
}

/*
 * Refuse the current call: count it, print "vboard: <call>: <text>", and give the result code.
 * To be used as `return refuse(MI_MODULE_VDEC, MI_REASON_ABSENT, "channel %u is not created", c);`.
 */
[[gnu::format(printf, 3, 4)]] int32_t refuse(MI_ModuleId module, MI_Reason reason, const char *format, ...);

/*
 * Give the current call a failure code without counting or printing it, for a request that finds
 * nothing to do and that a sound application makes as a matter of course. The trace line says why.
 */
int32_t decline(MI_ModuleId module, MI_Reason reason);

/* As refuse, for calls whose failure is a plain -1. */
[[gnu::format(printf, 1, 2)]] int refuse_plainly(const char *format, ...);

/* A line of the trace for something that comes up from a device, while a trace runs. */
[[gnu::format(printf, 1, 2)]] void trace_event(const char *format, ...);

/* A line on standard error that is no refusal, e.g. a limit of the board. */
[[gnu::format(printf, 1, 2)]] void warn(const char *format, ...);

/* Behind the control face. */
int fault_set(const char *call, uint32_t nth, uint32_t count, int32_t code);
void fault_clear(const char *call);
int fault_get_stat(vboard_fault_stat *stat);
size_t list_faults(vboard_fault *faults, size_t room);
size_t call_names(const char **names, size_t room);
int trace_start(const char *path, bool timed);
void trace_stop();
uint64_t refusal_count();
size_t last_refusal(char *text, size_t size);
void set_loud(bool loud);

} // namespace vboard

#endif
