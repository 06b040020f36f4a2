/*
 * clock.h - the time that the recorder lives in. All waiting with a limit, and every reading of a
 * clock, goes through here, so that a recorder on the board in software lives in the board's time: a
 * test that takes the board's clock and steps it steps the recorder with it. On a real board it is
 * the system's monotonic clock and wall clock.
 *
 * Threads: any.
 */
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

struct pollfd;

namespace nvrec
{

/** Monotonic time, as a clock of <chrono>. */
class Clock
{
public:
    using duration = std::chrono::microseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<Clock>;
    static constexpr bool is_steady = true;

    static time_point now();
};

/** The longest time that a user may name, in seconds: what the clocks can count. */
constexpr double kLongest_s = 1e9;

/** Time of day. */
using WallTime = std::chrono::system_clock::time_point;
WallTime wall_time();

/** A condition variable that waits on Clock. */
class Condition
{
public:
    Condition();
    ~Condition();
    Condition(const Condition &) = delete;
    Condition &operator=(const Condition &) = delete;

    /** Wake all who wait. What they wait for has been changed before, under their mutex or not. */
    void notify();

    /** Wait until it is done. */
    template <typename Done> void wait(std::unique_lock<std::mutex> &lock, Done done)
    {
        wait_until(lock, Clock::time_point::max(), done);
    }

    /** Wait until it is done (true), or the time has come before that (false). */
    template <typename Done>
    bool wait_until(std::unique_lock<std::mutex> &lock, Clock::time_point when, Done done)
    {
        for (;;) {
            /* First: a wake after this ends the wait below, so none is missed. */
            const uint64_t seen = wake_count();
            if (done()) return true;
            if (Clock::now() >= when) return false;
            wait_once(lock, seen, when);
        }
    }

    template <typename Done>
    bool wait_for(std::unique_lock<std::mutex> &lock, Clock::duration limit, Done done)
    {
        return wait_until(lock, Clock::now() + limit, done);
    }

    struct State;

private:
    uint64_t wake_count() const;

    /* Until there were more wakes than `seen`, the time has come, or for no reason. */
    void wait_once(std::unique_lock<std::mutex> &lock, uint64_t seen, Clock::time_point when);

    std::unique_ptr<State> state_;
};

/**
 * Wait until a descriptor can be read, or has been closed at its other end.
 * @return false = the time came first, or a signal
 */
bool wait_readable(int descriptor, Clock::time_point when);

/**
 * Waits for several descriptors, as poll(2) does, with a limit on Clock. It has what it needs from its
 * making on, so that it waits in a process that is out of descriptors, too. One thread at a time.
 */
class DescriptorWait
{
public:
    DescriptorWait();
    ~DescriptorWait();
    DescriptorWait(const DescriptorWait &) = delete;
    DescriptorWait &operator=(const DescriptorWait &) = delete;

    /** @return how many have something, 0 = the time came first, or a signal */
    int wait(pollfd *sources, size_t count, Clock::time_point when);

    struct State;

private:
    std::unique_ptr<State> state_;
};

} // namespace nvrec
