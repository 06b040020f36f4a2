/* health.cpp - see health.h. */
#include "controls/health.h"

#include <utility>

#include "console/terminal.h"
#include "host/host.h"
#include "host/service.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

using namespace std::chrono_literals;

constexpr auto kLookPeriod = 250ms;
constexpr auto kMainPeriod = 5s;    /* the main thread has a turn at least so often */
constexpr auto kMainDeadline = 30s; /* sixteen panes, pictures, menus: all in one turn */
constexpr auto kFeederEnds = 4s;    /* the library's thread looks whether it is to end every 3 s */

} // namespace

void Health::watch(std::string name, HeartbeatDeadline deadline, Clock::duration patience)
{
    watched_.push_back({std::move(name), std::move(deadline), patience});
}

bool Health::start(WallControl &wall)
{
    wall_ = &wall;
    service_period_ = host::service_watchdog();
    if (watchdog_s_ == 0) ext_wdg_set(0);
    if (watchdog_s_ == 0 && service_period_.count() == 0) return true;
    for (const auto &camera : wall.cameras()) {
        watch(
            "the thread of " + camera->label(),
            [feeder = camera.get()] { return feeder->heartbeat_deadline(); }, patience_);
    }
    take_turn(Clock::now());
    watch(
        "the main thread", [this] { return Clock::time_point(Clock::duration(main_deadline_.load())); },
        Clock::duration::zero());
    if (watchdog_s_ > 0 && local_wdg_set_timeout(watchdog_s_) < 0)
        wall.terminal().error("watchdog: it refused its time-out");
    feed();
    stop_ = false;
    thread_ = std::thread([this] { run(); });
    return true;
}

void Health::feed()
{
    feeding_ = true;
    if (watchdog_s_ == 0) return; /* the service manager's alone */
    Set_Wdt_Fing(1);
    feeding_ = wdt_feed_pt() == 0;
    if (!feeding_) wall_->terminal().error("watchdog: there is no thread to feed it");
}

Clock::time_point Health::take_turn(Clock::time_point now)
{
    main_deadline_.store((now + kMainDeadline).time_since_epoch().count());
    return thread_.joinable() || watchdog_s_ > 0 ? now + kMainPeriod : Clock::time_point::max();
}

std::optional<std::string> Health::late_thread(Clock::time_point now) const
{
    for (const Watched &one : watched_) {
        const Clock::time_point deadline = one.deadline();
        if (deadline < now && now - deadline > one.patience) return one.name;
    }
    for (const WatchedThread &one : wall_->watched_threads()) {
        const Clock::time_point deadline = one.heartbeat_deadline();
        if (deadline < now && now - deadline > patience_) return one.name;
    }
    return std::nullopt;
}

void Health::look(Clock::time_point now)
{
    const std::scoped_lock guard(looking_);
    const std::optional<std::string> late = late_thread(now);
    if (late && feeding_) {
        if (watchdog_s_ > 0) Set_Wdt_Fing(0);
        feeding_ = false;
        starved_at_ = now;
        wall_->terminal().error("watchdog: " + *late + " hangs; it is fed no more");
    } else if (!late && !feeding_ && now - starved_at_ >= kFeederEnds) {
        feed(); /* not earlier: the thread that was told to end would go on beside the new one */
        if (feeding_) wall_->terminal().error("watchdog: all threads run again; it is fed");
    }
    if (!late) feed_service_manager(now);
    tell_expiry();
}

/* Tell it four times as often as it wants to be told. */
void Health::feed_service_manager(Clock::time_point now)
{
    if (service_period_.count() == 0 || now < service_at_) return;
    service_at_ = now + service_period_ / 4;
    host::tell_service_manager("WATCHDOG=1");
}

void Health::tell_expiry()
{
    if (expiry_told_ || !host::watchdog_has_expired()) return;
    expiry_told_ = true;
    wall_->terminal().error("watchdog: it has expired; hardware would reset now");
}

void Health::run()
{
    std::unique_lock guard(lock_);
    while (!changed_.wait_for(guard, kLookPeriod, [this] { return stop_; })) {
        guard.unlock();
        look(Clock::now());
        guard.lock();
    }
}

/* An orderly end must not lead to a reset. */
void Health::stop()
{
    if (!thread_.joinable()) return;
    {
        const std::scoped_lock guard(lock_);
        stop_ = true;
        changed_.notify();
    }
    thread_.join();
    if (watchdog_s_ > 0) ext_wdg_set(0);
}

} // namespace nvrec
