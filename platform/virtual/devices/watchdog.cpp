/*
 * watchdog.cpp - the hardware watchdog on the board clock. Whether it has expired is worked out
 * whenever somebody looks, so it needs no thread. Real hardware would reset then; this board
 * keeps the event, and the reason for the next vboard_reset.
 */
#include "watchdog_driver.h"

#include <algorithm>
#include <chrono>

#include "devices/peripheral_nodes.h"
#include "devices/request_node.h"
#include "media/clock.h"
#include "media/time_units.h"
#include "vboard_devices.h"

namespace vboard
{
namespace
{

constexpr uint32_t kPowerOnTimeout_s = 60;

class Watchdog : public RequestNode
{
public:
    Watchdog() : RequestNode(WATCHDOG_NODE) {}

    void reset() override
    {
        const std::lock_guard guard(shared_.mutex);
        settle();
        const uint32_t reason = stat_.expired != 0 ? VBOARD_BOOT_WATCHDOG : VBOARD_BOOT_POWER;
        stat_ = {};
        stat_.timeout_s = kPowerOnTimeout_s;
        stat_.boot_reason = reason;
    }

    vboard_watchdog_stat stat()
    {
        const std::lock_guard guard(shared_.mutex);
        settle();
        vboard_watchdog_stat now = stat_;
        now.remaining_us = stat_.enabled != 0 ? expiry_us() - clock_now_us() : 0;
        return now;
    }

    int wait_expired(int32_t timeout_ms)
    {
        using Steady = std::chrono::steady_clock;
        const Steady::time_point give_up = Steady::now() + std::chrono::milliseconds(timeout_ms);
        std::unique_lock lock(shared_.mutex);
        for (settle(); stat_.expired == 0; settle()) {
            if (timeout_ms >= 0 && Steady::now() >= give_up) return -1;
            Steady::time_point look = timeout_ms >= 0 ? give_up : Steady::now() + std::chrono::hours(1);
            if (stat_.enabled != 0 && !clock_is_taken())
                look =
                    std::min(look, Steady::now() + std::chrono::microseconds(expiry_us() - clock_now_us()));
            shared_.changed.wait_until(lock, look);
        }
        return 0;
    }

    void set_boot_reason(uint32_t reason)
    {
        const std::lock_guard guard(shared_.mutex);
        stat_.boot_reason = reason;
    }

protected:
    int request(unsigned long code, void *argument) override
    {
        const std::lock_guard guard(shared_.mutex);
        settle();
        shared_.changed.notify_all();
        switch (static_cast<uint32_t>(code)) {
        case WDIOC_KEEPALIVE:
            fed_us_ = clock_now_us();
            ++stat_.feeds;
            return 0;
        case WDIOC_SETOPTIONS: return set_options(reinterpret_cast<uintptr_t>(argument));
        case WDIOC_SETTIMEOUT: return set_timeout(static_cast<const int32_t *>(argument));
        default: return refuse_request(code);
        }
    }

private:
    int64_t expiry_us() const { return fed_us_ + stat_.timeout_s * kSecond_us; }

    // The clock may have passed the expiry since the last look.
    void settle()
    {
        if (stat_.enabled == 0 || clock_now_us() < expiry_us()) return;
        stat_.enabled = 0;
        stat_.expired = 1;
        stat_.expired_at_us = expiry_us();
    }

    int set_options(uintptr_t options)
    {
        if (options != WDIOS_DISABLECARD && options != WDIOS_ENABLECARD)
            return refuse_argument("the options are 1 = disable or 2 = enable, by value");
        stat_.enabled = options == WDIOS_ENABLECARD;
        fed_us_ = clock_now_us();
        return 0;
    }

    int set_timeout(const int32_t *seconds)
    {
        if (seconds == nullptr || *seconds < 1) return refuse_argument("the time-out is 1 s or more");
        stat_.timeout_s = static_cast<uint32_t>(*seconds);
        fed_us_ = clock_now_us();
        return 0;
    }

    Waitable shared_; // guards all below
    vboard_watchdog_stat stat_ = {0, kPowerOnTimeout_s, 0, 0, 0, 0, VBOARD_BOOT_POWER};
    int64_t fed_us_ = 0;
};

Watchdog &watchdog()
{
    static auto *node = new Watchdog;
    return *node;
}

} // namespace

DeviceNode *watchdog_node()
{
    return &watchdog();
}

} // namespace vboard

using namespace vboard;

extern "C" {

int vboard_watchdog_get_stat(vboard_watchdog_stat *stat)
{
    if (stat == nullptr) return refuse_plainly("no record to fill");
    *stat = watchdog().stat();
    return 0;
}

int vboard_watchdog_wait_expired(int32_t timeout_ms)
{
    return watchdog().wait_expired(timeout_ms);
}

int vboard_watchdog_set_boot_reason(uint32_t reason)
{
    if (reason > VBOARD_BOOT_WATCHDOG) return refuse_plainly("no board starts for reason %u", reason);
    watchdog().set_boot_reason(reason);
    return 0;
}

} // extern "C"
