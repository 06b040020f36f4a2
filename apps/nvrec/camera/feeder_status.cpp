/* feeder_status.cpp - see feeder.h: what a camera's thread tells of itself. */
#include "camera/feeder.h"

#include "nvrhal.h"

namespace nvrec
{

void Feeder::note_facts()
{
    const std::scoped_lock guard(lock_);
    facts_ = input_.facts();
}

/* Frames that are wanted: those that come while a recording has the screen are not. */
void Feeder::note_handed_on(const AccessUnit &unit, bool accepted)
{
    meter_.handed_on(unit.key, accepted);
    if (accepted && unit.key) waits_for_key_.store(false, std::memory_order_relaxed);
}

/* Whatever libavformat says may hold the address that it was given. */
void Feeder::report(const std::string &line)
{
    const std::string shown = shown_text(line);
    {
        const std::scoped_lock guard(lock_);
        trouble_ = shown;
    }
    if (events_.trouble) events_.trouble(channel_, shown);
}

StreamFacts Feeder::facts() const
{
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

CameraStatus Feeder::status() const
{
    const Clock::time_point now = Clock::now();
    CameraStatus status;
    meter_.tell(&status, now);
    /* A file is fed in its own time: it is silent when it broke, or when its thread stands still. */
    if (!input_.live() && status.state == CameraState::kSilent && !broken() && heartbeat_deadline() > now)
        status.state = CameraState::kLive;
    if (!input_.live() && status.state == CameraState::kLive && broken()) status.state = CameraState::kSilent;
    status.since_wall_us =
        std::chrono::duration_cast<std::chrono::microseconds>(wall_time().time_since_epoch()).count() -
        (now - status.since).count();
    status.waits_for_key = waits_for_key_.load(std::memory_order_relaxed);
    const std::scoped_lock guard(lock_);
    status.facts = facts_;
    status.reconnects = counters_.reconnects;
    status.refused = counters_.refused;
    status.last_error = trouble_;
    return status;
}

} // namespace nvrec
