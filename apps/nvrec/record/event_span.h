/*
 * event_span.h - tells until when pictures belong to the last event of a camera.
 *
 * The end is kept on the monotonic clock, which nobody sets, and compared with the picture's time of day, not
 * with the time at which the disk takes it: a picture belongs to the event during which it was taken.
 *
 * Threads: any.
 */
#pragma once

#include <atomic>
#include <cstdint>

#include "host/clock.h"

namespace nvrec
{

class EventSpan
{
public:
    /** An event happens now; pictures of the next so many seconds belong to it. */
    void begin(double after_s);

    /** Whether a picture of that time of day, microseconds since 1970, comes before the end of the last
     * event. */
    bool holds(int64_t wall_us) const;

    /** Whether the last event, with those before it that reached up to it, had begun by a monotonic time,
     * microseconds. */
    bool had_begun(int64_t monotonic_us) const;

private:
    static constexpr Clock::rep kNone = INT64_MIN;
    std::atomic<Clock::rep> until_ = kNone; /* ticks of the clock */
    std::atomic<Clock::rep> began_ = kNone; /* likewise           */
};

} // namespace nvrec
