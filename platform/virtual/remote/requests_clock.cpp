/* requests_clock.cpp - requests of the clock, of pacing, and those that wait. */
#include <chrono>

#include "board_functions.h"
#include "requests.h"

namespace vboard_remote
{
namespace
{

constexpr int64_t kLongestStep_us = int64_t{100} * 365 * 86400 * 1000000; // a hundred years
constexpr int64_t kLargestCount = 9007199254740991;                       // that JSON numbers hold everywhere

Answer take(const Parameters &, Context &)
{
    vboard_clock_take();
    return {};
}

Answer let_run(const Parameters &, Context &)
{
    vboard_clock_release();
    return {};
}

Answer step(const Parameters &with, Context &)
{
    const int64_t by_us = with.integer("by", 0, kLongestStep_us);
    checked([&] { return vboard_clock_step_us(by_us); });
    return {{{"us", vboard_clock_us()}}, {}};
}

Answer one_picture_on(const Parameters &with, Context &)
{
    const int ports = checked([&] { return vboard_display_step(with.device()); });
    return {{{"ports", ports}}, {}};
}

Answer set_pacing(const Parameters &with, Context &)
{
    const size_t mode = with.one_of("mode", {"realtime", "step"});
    checked([&] { return vboard_display_set_pacing(with.device(), static_cast<uint32_t>(mode)); });
    return {};
}

Answer mark(const Parameters &with, Context &)
{
    checked([&] { return vboard_display_mark(with.device()); });
    return {};
}

uint32_t ports_of(const Parameters &with)
{
    return static_cast<uint32_t>(with.integer("ports", 1, 0xffff));
}

// -1 of the call is a time-out unless the board said something.
template <typename Wait> Answer waited(Wait wait)
{
    checked(wait, "timed_out");
    return {};
}

Answer wait_idle(const Parameters &with, Context &)
{
    const auto channel = static_cast<uint32_t>(with.integer("channel", 0, VBOARD_DECODER_CHANNELS - 1));
    return waited([&] { return vboard_decoder_wait_idle(channel, with.timeout_ms()); });
}

Answer wait_taken(const Parameters &with, Context &)
{
    const uint32_t ports = ports_of(with);
    const auto pictures = static_cast<uint64_t>(with.integer("pictures", 0, kLargestCount));
    return waited(
        [&] { return vboard_display_wait_taken(with.device(), ports, pictures, with.timeout_ms()); });
}

Answer wait_queued(const Parameters &with, Context &)
{
    const uint32_t ports = ports_of(with);
    const auto pictures = static_cast<uint32_t>(with.integer_or("pictures", 0, 1, 1));
    return waited(
        [&] { return vboard_display_wait_queued(with.device(), ports, pictures, with.timeout_ms()); });
}

Answer wait_events(const Parameters &with, Context &)
{
    return waited([&] { return vboard_monitor_wait_events(with.timeout_ms()); });
}

Answer wait_sleepers(const Parameters &with, Context &)
{
    const auto count = static_cast<uint32_t>(with.integer("count", 0, 100000));
    return waited([&] { return vboard_clock_wait_sleepers(count, with.timeout_ms()); });
}

Answer wait_until_quiet(const Parameters &with, Context &)
{
    return waited([&] { return wait_quiet(with.timeout_ms()) ? 0 : -1; });
}

Answer wait_played(const Parameters &with, Context &)
{
    return waited([&] { return vboard_audio_wait_played(with.audio_device(), with.timeout_ms()); });
}

Answer wait_expired(const Parameters &with, Context &)
{
    return waited([&] { return vboard_watchdog_wait_expired(with.timeout_ms()); });
}

} // namespace

const Request kClockRequests[] = {
    {"clock.take", take, false},   {"clock.release", let_run, false},        {"clock.step", step, false},
    {"pacing", set_pacing, false}, {"clock.picture", one_picture_on, false}, {"mark", mark, false},
    {nullptr, nullptr, false}};

const Request kWaitRequests[] = {{"wait.idle", wait_idle, true},
                                 {"wait.taken", wait_taken, true},
                                 {"wait.queued", wait_queued, true},
                                 {"wait.events", wait_events, true},
                                 {"wait.sleepers", wait_sleepers, true},
                                 {"wait.quiet", wait_until_quiet, true},
                                 {"wait.played", wait_played, true},
                                 {"wait.expired", wait_expired, true},
                                 {nullptr, nullptr, false}};

} // namespace vboard_remote
