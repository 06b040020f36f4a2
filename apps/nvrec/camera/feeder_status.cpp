/* feeder_status.cpp - see feeder.h: the status of a camera's thread. */
#include "camera/feeder.h"

#include <cstdlib>

#include "camera/shown_channels.h"
#include "console/text.h"
#include "host/host.h"

namespace nvrec
{
namespace
{

constexpr const char *kUndecodable = "its pictures cannot be decoded";

int64_t wall_us_of(Clock::time_point when)
{
    const auto now_us = std::chrono::duration_cast<std::chrono::microseconds>(wall_time().time_since_epoch());
    return now_us.count() - (Clock::now() - when).count();
}

bool keeps_main(const FeedOptions &options, int channel)
{
    return channel < 32 && (options.main_channels >> channel & 1) != 0;
}

} // namespace

/* A stream that never came gets as long to come as a stream that stopped gets to go on. */
bool CameraStatus::main_is_lost(Clock::time_point now) const
{
    return main_state == CameraState::kSilent ||
           (main_state == CameraState::kConnecting && now - main_since >= kSilentAfter);
}

void Feeder::note_facts()
{
    const std::scoped_lock guard(lock_);
    facts_ = input_.facts();
    if (const auto epoch_us = input_.epoch_us()) input_epoch_us_ = *epoch_us;
}

void Feeder::count(const AccessUnit &unit, bool accepted)
{
    const std::scoped_lock guard(lock_);
    counters_.sent += accepted;
    counters_.refused += !accepted;
    counters_.bytes += accepted ? unit.bytes.size() : 0;
}

/* Count only frames that are wanted: those that come while a recording has the screen are not. */
void Feeder::note_handed_on(const AccessUnit &unit, bool accepted)
{
    meter_.handed_on(unit.key, accepted);
    if (accepted && unit.key && is_decoded(channel_)) waits_for_key_.store(false, std::memory_order_relaxed);
    if (unit.key) tell_undecodable();
}

/*
 * Report it once. The lock of the decoder is not held meanwhile, since the receiver of the message may take
 * long.
 */
void Feeder::tell_undecodable()
{
    const bool undecodable = undecodable_since(Clock::now()).has_value();
    if (undecodable && !undecodable_told_.exchange(true)) report(kUndecodable);
    if (undecodable || !undecodable_told_.exchange(false)) return;
    const std::scoped_lock guard(lock_);
    if (trouble_ == kUndecodable) trouble_.clear();
}

std::optional<Clock::time_point> Feeder::undecodable_since(Clock::time_point now) const
{
    const auto decoder = host::decoder_counters(channel_);
    if (!decoder || !is_decoded(channel_)) return std::nullopt;
    return decoder_watch_.barren_since(decoder->decoded, now);
}

std::string Feeder::label() const
{
    return channel_label(channel_, source_.name);
}

/* Any text of libavformat may contain the address that it was given. */
void Feeder::report(const std::string &line)
{
    const std::string shown = shown_text(line);
    {
        const std::scoped_lock guard(lock_);
        trouble_ = shown;
    }
    if (events_.trouble) events_.trouble(channel_, shown);
}

/* Pictures keep their right times; it is told for those who look at the camera's own clock. */
void Feeder::note_jump(int64_t jumped_us)
{
    if (jumped_us == 0) return;
    meter_.begin_again();
    constexpr int64_t kWorthALine_us = 2'000'000;
    {
        const std::scoped_lock guard(lock_);
        ++clock_jumps_;
    }
    if (std::llabs(jumped_us) >= kWorthALine_us)
        report(text("its clock was set %s by %.1f s", jumped_us > 0 ? "forward" : "back",
                    static_cast<double>(std::llabs(jumped_us)) / 1e6));
}

StreamFacts Feeder::facts() const
{
    const auto second = sub();
    if (second && sub_is_shown_.load(std::memory_order_relaxed)) return second->facts();
    const std::scoped_lock guard(lock_);
    return facts_;
}

FeedCounters Feeder::counters() const
{
    const std::scoped_lock guard(lock_);
    return counters_;
}

std::string Feeder::trouble() const
{
    const std::scoped_lock guard(lock_);
    return trouble_;
}

CameraStatus Feeder::status(Clock::time_point *at) const
{
    Clock::time_point now = Clock::now();
    {
        const std::scoped_lock guard(lock_);
        now = std::min(now, stopped_at_.value_or(now));
    }
    if (at) *at = now;
    CameraStatus status;
    meter_.tell(&status, now);
    /* A file is fed in real time, so it is silent only when it broke or when its thread is stuck. */
    if (!input_.live() && status.state == CameraState::kSilent && !broken() && heartbeat_deadline() > now)
        status.state = CameraState::kLive;
    if (!input_.live() && status.state == CameraState::kLive && broken()) status.state = CameraState::kSilent;
    status.since_wall_us = wall_us_of(status.since);
    const auto second = sub();
    if (second && sub_is_shown_.load(std::memory_order_relaxed)) {
        const CameraStatus main = status;
        status = second->status();
        status.sub_stream = true;
        if (main.state == CameraState::kEnded) status.state = main.state;
        if (keeps_main(options_, channel_)) {
            /* The decoder's refusals belong to the past: the stream goes to no decoder now. */
            status.main_state = main.state == CameraState::kRefused ? CameraState::kLive : main.state;
            status.main_since = main.since;
        }
    }
    status.waits_for_key = waits_for_key_.load(std::memory_order_relaxed) || shows_nothing_yet();
    const auto undecodable = undecodable_since(now);
    status.undecodable = status.state == CameraState::kLive && undecodable.has_value();
    if (status.undecodable) {
        status.state = CameraState::kRefused;
        status.since = *undecodable;
        status.since_wall_us = wall_us_of(status.since);
    }
    const auto well_since = decoder_watch_.well_since();
    if (status.state == CameraState::kLive && well_since && *well_since > status.since) {
        status.since = *well_since;
        status.since_wall_us = wall_us_of(status.since);
    }
    const std::scoped_lock guard(lock_);
    if (!status.sub_stream) status.facts = facts_;
    status.reconnects = counters_.reconnects;
    status.refused = counters_.refused;
    status.clock_jumps = clock_jumps_;
    status.last_error = status.undecodable ? kUndecodable : trouble_;
    return status;
}

} // namespace nvrec
