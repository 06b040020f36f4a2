/*
 * clock.h - the board clock, real by default, taken and stepped by tests.
 *
 * Whoever waits with a time limit waits on a Waitable through wait_until. Moving the clock locks
 * and wakes every Waitable, so that no waiter misses its time. Lock order: the list of Waitables,
 * then a Waitable's own mutex, then the clock's state.
 */
#ifndef VBOARD_CLOCK_H
#define VBOARD_CLOCK_H

#include <condition_variable>
#include <cstdint>
#include <limits>
#include <mutex>

namespace vboard
{

constexpr int64_t kForever_us = std::numeric_limits<int64_t>::max();

/* A mutex with its condition, known to the clock. Lives as long as the board. */
class Waitable
{
public:
    Waitable();
    ~Waitable();
    Waitable(const Waitable &) = delete;
    Waitable &operator=(const Waitable &) = delete;

    std::mutex mutex;
    std::condition_variable changed;
};

/* Monotonic board time and board wall clock, microseconds. */
int64_t clock_now_us();
int64_t clock_wall_us();

/* The board time `timeout_ms` from now; negative = for ever. */
int64_t clock_deadline_us(int32_t timeout_ms);

bool clock_is_taken();
void clock_take();

/*
 * Take the clock and set both times. False when it is taken, when somebody waits on it, or when a
 * time is negative or beyond a thousand years.
 */
bool clock_take_at(int64_t board_us, int64_t wall_us);
void clock_release();
int clock_step_us(int64_t microseconds);
int clock_wait_sleepers(uint32_t count, int32_t timeout_ms);

/* Told of every take, step and release, by the thread that did it; null ends it. -1 = there is one. */
using ClockFollower = void (*)(void *user);
int clock_follow(ClockFollower follower, void *user);

/* A thread waits until a deadline, for clock_wait_sleepers; and waits no more. */
void clock_add_sleeper(int64_t deadline_us);
void clock_remove_sleeper(int64_t deadline_us);

/* The same for as long as it lives. */
class SleeperMark
{
public:
    explicit SleeperMark(int64_t deadline_us);
    ~SleeperMark();
    SleeperMark(const SleeperMark &) = delete;
    SleeperMark &operator=(const SleeperMark &) = delete;

private:
    int64_t deadline_us_;
};

/* One wait: ends when notified, when the deadline has passed, or for no reason. */
void clock_wait_once(Waitable &waitable, std::unique_lock<std::mutex> &lock, int64_t deadline_us);

/* Wait until `done()` holds (true) or the board clock passes the deadline (false). */
template <typename Done>
bool wait_until(Waitable &waitable, std::unique_lock<std::mutex> &lock, int64_t deadline_us, Done done)
{
    if (done()) return true;
    const SleeperMark mark(deadline_us);
    while (clock_now_us() < deadline_us) {
        clock_wait_once(waitable, lock, deadline_us);
        if (done()) return true;
    }
    return false;
}

/*
 * Wait on real time, whatever the board clock does: for the control face, whose time-outs end a
 * hanging test. `timeout_ms` negative = for ever.
 */
template <typename Done>
bool wait_real(std::condition_variable &condition, std::unique_lock<std::mutex> &lock, int32_t timeout_ms,
               Done done)
{
    if (timeout_ms < 0) {
        condition.wait(lock, done);
        return true;
    }
    return condition.wait_for(lock, std::chrono::milliseconds(timeout_ms), done);
}

} // namespace vboard

#endif
