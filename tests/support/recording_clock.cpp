/* The stepped clock of the recorder, and the threads that sleep on it. */
#include "recording_platform.h"

#include <chrono>
#include <cstddef>
#include <iterator>
#include <thread>

namespace recording
{

int64_t Platform::time_us()
{
    std::lock_guard lock(mutex);
    return now_us_;
}

void Platform::set_time_us(int64_t now_us)
{
    std::lock_guard lock(mutex);
    now_us_ = now_us;
    clock_moved_.notify_all();
}

void Platform::step_us(int64_t microseconds)
{
    std::lock_guard lock(mutex);
    now_us_ += microseconds;
    clock_moved_.notify_all();
}

void Platform::sleep_us(uint32_t microseconds)
{
    std::unique_lock lock(mutex);
    if (all_sleeps_advance_ || std::this_thread::get_id() == test_thread_) {
        now_us_ += microseconds;
        clock_moved_.notify_all();
        return;
    }
    struct Bed { // left by waking up and by being cancelled alike
        explicit Bed(std::multiset<int64_t> &ends, int64_t end_us) : ends_us(ends), place(ends.insert(end_us))
        {
        }
        ~Bed() { ends_us.erase(place); }
        std::multiset<int64_t> &ends_us;
        std::multiset<int64_t>::iterator place;
    };
    int64_t end_us = now_us_ + microseconds;
    Bed bed(sleep_ends_us_, end_us);
    clock_moved_.notify_all();
    clock_moved_.wait(lock, [&] { return now_us_ >= end_us || all_sleeps_advance_; });
}

bool Platform::wait_for_sleepers(unsigned threads)
{
    std::unique_lock lock(mutex);
    // Those whose time has come are awake already, even if they have not run yet.
    return clock_moved_.wait_for(lock, std::chrono::seconds(10), [&] {
        auto asleep = std::distance(sleep_ends_us_.upper_bound(now_us_), sleep_ends_us_.end());
        return asleep >= static_cast<std::ptrdiff_t>(threads);
    });
}

void Platform::let_all_sleeps_advance(bool yes)
{
    std::lock_guard lock(mutex);
    all_sleeps_advance_ = yes;
    clock_moved_.notify_all();
}

} // namespace recording
