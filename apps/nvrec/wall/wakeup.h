/*
 * wakeup.h - what ends the main thread's sleep: a signal, a call of wake(), or time.
 *
 * It is made before any other thread, so that every thread inherits the blocked signals and only this object
 * receives them, on a thread of its own.
 */
#pragma once

#include <atomic>
#include <mutex>
#include <thread>

#include "host/clock.h"

namespace nvrec
{

/** What SIGHUP asks for. */
enum class Hangup { kEnds, kReloads };

class Wakeup
{
public:
    explicit Wakeup(Hangup hangup = Hangup::kEnds);
    ~Wakeup();
    Wakeup(const Wakeup &) = delete;
    Wakeup &operator=(const Wakeup &) = delete;

    /** Sleep until someone calls wake(), the user wants to end, or the time has come. */
    void wait_until(Clock::time_point when);

    /** End the sleep, or the next one. Any thread. */
    void wake();

    /**
     * True from the first SIGINT or SIGTERM on, or SIGHUP where that ends. A second SIGINT or SIGTERM
     * ends the process as usual.
     */
    bool end_wanted() const { return end_wanted_; }

    /** Whether SIGHUP came since the last call, where it reloads. */
    bool take_reload() { return reload_wanted_.exchange(false); }

private:
    void take_signals();
    void read_signals();

    const Hangup hangup_;
    int signals_ = -1; /* signalfd of what ends and reloads  */
    int closing_ = -1; /* eventfd: the thread is to end       */
    std::thread signal_thread_;
    std::atomic<bool> end_wanted_ = false;
    std::atomic<bool> reload_wanted_ = false;

    std::mutex lock_; /* guards wake_asked_ */
    Condition woken_;
    bool wake_asked_ = false;
};

} // namespace nvrec
