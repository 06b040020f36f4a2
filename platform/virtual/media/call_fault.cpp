/* call_fault.cpp - faults: platform calls that are made to fail, by the number of the call. */
#include <mutex>
#include <string>

#include "media/call.h"
#include "media/call_state.h"

namespace vboard
{
namespace
{

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

bool call_detail::take_fault(const CallSite &site, int32_t &code)
{
    CallState &calls = call_state();
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

int fault_set(const char *call, uint32_t nth, uint32_t count, int32_t code)
{
    CallState &calls = call_state();
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
    CallState &calls = call_state();
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
    CallState &calls = call_state();
    const std::lock_guard guard(calls.mutex);
    *stat = calls.fault_stat;
    for (const auto &[site, fault] : calls.faults)
        stat->waiting += fault.fired == 0 ? 1 : 0;
    return 0;
}

size_t list_faults(vboard_fault *faults, size_t room)
{
    CallState &calls = call_state();
    const std::lock_guard guard(calls.mutex);
    size_t count = 0;
    for (const auto &[site, fault] : calls.faults) {
        if (count < room && faults != nullptr)
            faults[count] = {site->name, fault.nth, fault.count, fault.code, fault.seen, fault.fired};
        ++count;
    }
    return count;
}

} // namespace vboard
