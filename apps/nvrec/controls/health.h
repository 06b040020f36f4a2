/*
 * health.h - feeds the watchdog while the recorder is healthy.
 *
 *   feeding --a thread is late--> starving --it answers again--> feeding
 *                                    |
 *                                    +--the watchdog's time-out--> the board resets
 *
 * The service manager's watchdog, where it has one for this process, is fed and starved with it.
 *
 * Every camera's thread, and the main thread, tells when it gives its next sign of life at the latest. A
 * thread of the library feeds the watchdog; it is told to end when one of the others is late for too long.
 *
 * Threads: one of its own looks at the others; take_turn() is the main thread's sign of life.
 */
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "wall/module.h"

namespace nvrec
{

class Health final : public Module
{
public:
    /** When a thread gives its next sign of life at the latest; any thread. */
    using HeartbeatDeadline = std::function<Clock::time_point()>;

    /**
     * @param watchdog_s  the watchdog's time-out; 0 = it is switched off
     * @param patience  a camera's thread that is later than this counts as hung; the main thread's deadline
     * already includes its own margin
     */
    Health(int watchdog_s, Clock::duration patience) : watchdog_s_(watchdog_s), patience_(patience) {}
    ~Health() override { stop(); }

    /** Before start(): watch one more. @param patience  for how long it may be late */
    void watch(std::string name, HeartbeatDeadline deadline, Clock::duration patience);

    bool start(WallControl &wall) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    void stop() override;

    /**
     * Feed or starve the watchdog, depending on the threads' state now. Any thread; the thread of this class
     * does it all the time.
     */
    void look(Clock::time_point now);

private:
    struct Watched {
        std::string name;
        HeartbeatDeadline deadline;
        Clock::duration patience;
    };

    void feed();
    std::optional<std::string> late_thread(Clock::time_point now) const;
    void tell_expiry();
    void run();

    void feed_service_manager(Clock::time_point now);

    const int watchdog_s_;
    std::chrono::microseconds service_period_ = {}; /* the service manager's watchdog; zero = it has none */
    Clock::time_point service_at_; /* when it is told next that all is well; guarded by looking_ */
    const Clock::duration patience_;
    WallControl *wall_ = nullptr;
    std::vector<Watched> watched_;
    std::atomic<Clock::rep> main_deadline_ = 0;

    std::mutex looking_; /* guards what follows */
    bool feeding_ = false;
    bool expiry_told_ = false;
    Clock::time_point starved_at_;

    std::thread thread_;
    std::mutex lock_; /* guards stop_ */
    Condition changed_;
    bool stop_ = false;
};

} // namespace nvrec
