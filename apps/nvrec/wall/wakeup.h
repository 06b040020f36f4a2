/*
 * wakeup.h - what ends the main thread's sleep: Ctrl-C, a call of ring(), or time.
 *
 * Made before any other thread, so that every thread inherits the blocked signals and only this
 * object receives them.
 */
#pragma once

#include <chrono>

namespace nvrec
{

class Wakeup
{
public:
    Wakeup();
    ~Wakeup();
    Wakeup(const Wakeup &) = delete;
    Wakeup &operator=(const Wakeup &) = delete;

    /** Sleep until someone rings, the user wants to end, or the time has come. */
    void wait_until(std::chrono::steady_clock::time_point when);

    /** End the sleep, or the next one. Any thread. */
    void ring();

    /** True from the first SIGINT or SIGTERM on. A second one ends the process as usual. */
    bool end_wanted() const { return end_wanted_; }

private:
    int signals_ = -1; /* signalfd of SIGINT and SIGTERM */
    int bell_ = -1;    /* eventfd                        */
    bool end_wanted_ = false;
};

} // namespace nvrec
