/* host_none_clock.cpp - clock.h on the system's own clocks. */
#include <algorithm>

#include <poll.h>

#include "host/clock.h"

namespace nvrec
{
namespace
{

using Steady = std::chrono::steady_clock;

/* A wait may end early, so an hour is as good as for ever. */
Clock::duration time_until(Clock::time_point when)
{
    constexpr Clock::duration kLongest = std::chrono::hours(1);
    if (when == Clock::time_point::max()) return kLongest;
    return std::clamp(when - Clock::now(), Clock::duration::zero(), kLongest);
}

} // namespace

Clock::time_point Clock::now()
{
    return time_point(std::chrono::duration_cast<duration>(Steady::now().time_since_epoch()));
}

WallTime wall_time()
{
    return std::chrono::system_clock::now();
}

struct Condition::State {
    std::mutex mutex; /* guards what follows; taken behind the caller's */
    std::condition_variable changed;
    uint64_t wakes = 0;
};

Condition::Condition() : state_(std::make_unique<State>()) {}
Condition::~Condition() = default;

uint64_t Condition::wake_count() const
{
    const std::scoped_lock guard(state_->mutex);
    return state_->wakes;
}

void Condition::notify()
{
    const std::scoped_lock guard(state_->mutex);
    ++state_->wakes;
    state_->changed.notify_all();
}

void Condition::wait_once(std::unique_lock<std::mutex> &lock, uint64_t seen, Clock::time_point when)
{
    std::unique_lock guard(state_->mutex);
    if (state_->wakes != seen) return;
    lock.unlock();
    state_->changed.wait_for(guard, time_until(when), [&] { return state_->wakes != seen; });
    guard.unlock();
    lock.lock();
}

bool wait_readable(int descriptor, Clock::time_point when)
{
    pollfd source = {descriptor, POLLIN, 0};
    const auto left_ms = std::chrono::ceil<std::chrono::milliseconds>(time_until(when)).count();
    return poll(&source, 1, static_cast<int>(left_ms)) > 0;
}

struct DescriptorWait::State {
};

DescriptorWait::DescriptorWait() = default;
DescriptorWait::~DescriptorWait() = default;

int DescriptorWait::wait(pollfd *sources, size_t count, Clock::time_point when)
{
    const auto left_ms = std::chrono::ceil<std::chrono::milliseconds>(time_until(when)).count();
    return std::max(poll(sources, count, static_cast<int>(left_ms)), 0);
}

} // namespace nvrec
