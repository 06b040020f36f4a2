/*
 * call_follow.cpp - the followers of platform calls and of refusals, and the rest of vboard_calls.h.
 * Each follower has a mutex of its own, held during a call, so that ending it waits for the call. It is
 * taken inside any lock of the board, and none is taken inside it.
 */
#include "media/call_follow.h"

#include <atomic>
#include <mutex>

#include "media/call.h"

namespace vboard
{
namespace
{

template <typename Follower> struct Followed {
    std::mutex mutex;
    Follower follower = nullptr;
    void *user = nullptr;

    bool set(Follower next, void *next_user)
    {
        const std::lock_guard guard(mutex);
        if (next != nullptr && follower != nullptr) return false;
        follower = next;
        user = next_user;
        return true;
    }

    template <typename Told> void tell(Told told)
    {
        const std::lock_guard guard(mutex);
        if (follower != nullptr) follower(told, user);
    }
};

Followed<vboard_call_follower> &call_follower()
{
    static auto *followed = new Followed<vboard_call_follower>;
    return *followed;
}

Followed<vboard_refusal_follower> &refusal_follower()
{
    static auto *followed = new Followed<vboard_refusal_follower>;
    return *followed;
}

} // namespace

uint32_t thread_number()
{
    static std::atomic<uint32_t> last{0};
    thread_local const uint32_t number = last.fetch_add(1, std::memory_order_relaxed) + 1;
    return number;
}

void tell_call_follower(const vboard_call &call)
{
    call_follower().tell(&call);
}

void tell_refusal_follower(const char *line)
{
    refusal_follower().tell(line);
}

} // namespace vboard

using namespace vboard;

extern "C" {

int vboard_calls_follow(vboard_call_follower follower, void *user)
{
    if (!call_follower().set(follower, user)) return refuse_plainly("the calls are followed already");
    call_detail::set_hook(call_detail::kFollow, follower != nullptr);
    return 0;
}

int vboard_refusals_follow(vboard_refusal_follower follower, void *user)
{
    if (!refusal_follower().set(follower, user)) return refuse_plainly("the refusals are followed already");
    return 0;
}

int vboard_trace_start_timed(const char *path)
{
    return trace_start(path, true);
}

size_t vboard_call_names(const char **names, size_t room)
{
    return call_names(names, room);
}

size_t vboard_faults(vboard_fault *faults, size_t room)
{
    return list_faults(faults, room);
}

} // extern "C"
