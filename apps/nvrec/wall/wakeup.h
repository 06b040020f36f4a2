/*
 * wakeup.h - what ends the main thread's sleep: Ctrl-C, a call of wake(), or time.
 *
 * Made before any other thread, so that every thread inherits the blocked signals and only this
 * object receives them, on a thread of its own.
 */
#pragma once

#include <atomic>
#include <mutex>
#include <thread>

#include "host/clock.h"

namespace nvrec
{

class Wakeup
{
public:
    Wakeup();
    ~Wakeup();
    Wakeup(const Wakeup &) = delete;
    Wakeup &operator=(const Wakeup &) = delete;

    /** Sleep until someone calls wake(), the user wants to end, or the time has come. */
    void wait_until(Clock::time_point when);

    /** End the sleep, or the next one. Any thread. */
    void wake();

    /** True from the first SIGINT or SIGTERM on. A second one ends the process as usual. */
    bool end_wanted() const { return end_wanted_; }

private:
    void take_signals();

    int signals_ = -1; /* signalfd of SIGINT and SIGTERM     */
    int closing_ = -1; /* eventfd: the thread is to end       */
    std::thread signal_thread_;
    std::atomic<bool> end_wanted_ = false;

    std::mutex lock_; /* guards wake_asked_ */
    Condition woken_;
    bool wake_asked_ = false;
};

} // namespace nvrec
