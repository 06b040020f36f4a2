/*
 * clock.cpp - the board clock. While it runs it is the system's monotonic clock plus an offset;
 * while it is taken it is a number that only clock_step_us moves.
 */
#include "media/clock.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <vector>

namespace vboard
{
namespace
{

using Steady = std::chrono::steady_clock;
using Wall = std::chrono::system_clock;

constexpr int64_t kLongestStep_us = int64_t{100} * 365 * 86400 * 1000000; // a hundred years
constexpr int64_t kLatestTime_us = 10 * kLongestStep_us;

int64_t steady_us()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(Steady::now().time_since_epoch()).count();
}

int64_t system_wall_us()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(Wall::now().time_since_epoch()).count();
}

struct ClockState {
    std::mutex mutex;
    std::condition_variable sleepers_changed;
    bool taken = false;
    int64_t taken_now_us = 0;           // the time while taken
    int64_t taken_wall_us = 0;          // the wall clock while taken
    int64_t offset_us = 0;              // board time - steady time while running
    int64_t wall_offset_us = 0;         // board wall - system wall while running
    std::multiset<int64_t> sleepers_us; // deadlines of the threads inside wait_until
};

struct WaitableList {
    std::mutex mutex;
    std::vector<Waitable *> all;
};

// The mutex is held during a call, so that ending it waits for the call.
struct FollowState {
    std::mutex mutex;
    ClockFollower follower = nullptr;
    void *user = nullptr;
};

// Function-local so that they exist before any static Waitable and outlive them all.
ClockState &state()
{
    static ClockState *clock = new ClockState;
    return *clock;
}

WaitableList &waitables()
{
    static WaitableList *list = new WaitableList;
    return *list;
}

FollowState &follow()
{
    static FollowState *state = new FollowState;
    return *state;
}

int64_t now_locked(const ClockState &clock)
{
    return clock.taken ? clock.taken_now_us : steady_us() + clock.offset_us;
}

int64_t wall_locked(const ClockState &clock)
{
    return clock.taken ? clock.taken_wall_us : system_wall_us() + clock.wall_offset_us;
}

// Locking each mutex in between makes sure that a thread which has just looked at the clock is in
// its wait before it is woken.
void wake_everyone()
{
    WaitableList &list = waitables();
    const std::lock_guard guard(list.mutex);
    for (Waitable *waitable : list.all) {
        {
            const std::lock_guard settle(waitable->mutex);
        }
        waitable->changed.notify_all();
    }
}

void tell_follower()
{
    FollowState &state = follow();
    const std::lock_guard guard(state.mutex);
    if (state.follower != nullptr) state.follower(state.user);
}

// The clock has jumped.
void tell_everyone()
{
    wake_everyone();
    tell_follower();
}

} // namespace

Waitable::Waitable()
{
    WaitableList &list = waitables();
    const std::lock_guard guard(list.mutex);
    list.all.push_back(this);
}

Waitable::~Waitable()
{
    WaitableList &list = waitables();
    const std::lock_guard guard(list.mutex);
    std::erase(list.all, this);
}

int64_t clock_now_us()
{
    ClockState &clock = state();
    const std::lock_guard guard(clock.mutex);
    return now_locked(clock);
}

int64_t clock_wall_us()
{
    ClockState &clock = state();
    const std::lock_guard guard(clock.mutex);
    return wall_locked(clock);
}

int64_t clock_deadline_us(int32_t timeout_ms)
{
    return timeout_ms < 0 ? kForever_us : clock_now_us() + int64_t{timeout_ms} * 1000;
}

bool clock_is_taken()
{
    ClockState &clock = state();
    const std::lock_guard guard(clock.mutex);
    return clock.taken;
}

void clock_take()
{
    ClockState &clock = state();
    {
        const std::lock_guard guard(clock.mutex);
        if (clock.taken) return;
        clock.taken_now_us = now_locked(clock);
        clock.taken_wall_us = wall_locked(clock);
        clock.taken = true;
    }
    tell_everyone();
}

bool clock_take_at(int64_t board_us, int64_t wall_us)
{
    const auto is_sound = [](int64_t time_us) { return time_us >= 0 && time_us <= kLatestTime_us; };
    ClockState &clock = state();
    {
        const std::lock_guard guard(clock.mutex);
        if (clock.taken || !clock.sleepers_us.empty() || !is_sound(board_us) || !is_sound(wall_us))
            return false;
        clock.taken_now_us = board_us;
        clock.taken_wall_us = wall_us;
        clock.taken = true;
    }
    tell_everyone();
    return true;
}

void clock_release()
{
    ClockState &clock = state();
    {
        const std::lock_guard guard(clock.mutex);
        if (!clock.taken) return;
        clock.offset_us = clock.taken_now_us - steady_us();
        clock.wall_offset_us = clock.taken_wall_us - system_wall_us();
        clock.taken = false;
    }
    tell_everyone();
}

int clock_step_us(int64_t microseconds)
{
    ClockState &clock = state();
    {
        const std::lock_guard guard(clock.mutex);
        if (!clock.taken || microseconds < 0 || microseconds > kLongestStep_us) return -1;
        clock.taken_now_us += microseconds;
        clock.taken_wall_us += microseconds;
    }
    tell_everyone();
    return 0;
}

int clock_wait_sleepers(uint32_t count, int32_t timeout_ms)
{
    ClockState &clock = state();
    std::unique_lock lock(clock.mutex);
    // Those whose time has come are awake already, even if they have not run yet.
    const auto asleep = [&] {
        const auto first = clock.sleepers_us.upper_bound(now_locked(clock));
        return static_cast<uint32_t>(std::distance(first, clock.sleepers_us.end())) >= count;
    };
    return wait_real(clock.sleepers_changed, lock, timeout_ms, asleep) ? 0 : -1;
}

int clock_follow(ClockFollower follower, void *user)
{
    FollowState &state = follow();
    const std::lock_guard guard(state.mutex);
    if (follower != nullptr && state.follower != nullptr) return -1;
    state.follower = follower;
    state.user = user;
    return 0;
}

void clock_add_sleeper(int64_t deadline_us)
{
    if (deadline_us == kForever_us) return;
    ClockState &clock = state();
    const std::lock_guard guard(clock.mutex);
    clock.sleepers_us.insert(deadline_us);
    clock.sleepers_changed.notify_all();
}

void clock_remove_sleeper(int64_t deadline_us)
{
    ClockState &clock = state();
    const std::lock_guard guard(clock.mutex);
    const auto found = clock.sleepers_us.find(deadline_us);
    if (found != clock.sleepers_us.end()) clock.sleepers_us.erase(found);
}

SleeperMark::SleeperMark(int64_t deadline_us) : deadline_us_(deadline_us)
{
    clock_add_sleeper(deadline_us_);
}

SleeperMark::~SleeperMark()
{
    clock_remove_sleeper(deadline_us_);
}

void clock_wait_once(Waitable &waitable, std::unique_lock<std::mutex> &lock, int64_t deadline_us)
{
    ClockState &clock = state();
    bool taken = false;
    int64_t offset_us = 0;
    {
        const std::lock_guard guard(clock.mutex);
        taken = clock.taken;
        offset_us = clock.offset_us;
    }
    if (taken || deadline_us == kForever_us) {
        waitable.changed.wait(lock);
        return;
    }
    const Steady::time_point until{std::chrono::microseconds(deadline_us - offset_us)};
    waitable.changed.wait_until(lock, until);
}

} // namespace vboard
