/* event_span.cpp - see event_span.h. */
#include "record/event_span.h"

#include "archive/time_of_day.h"

namespace nvrec
{

void EventSpan::begin(double after_s)
{
    const auto after = std::chrono::microseconds(static_cast<int64_t>(after_s * 1e6));
    const Clock::time_point now = Clock::now();
    if (now.time_since_epoch().count() > until_) began_ = now.time_since_epoch().count();
    until_ = (now + after).time_since_epoch().count();
}

bool EventSpan::had_begun(int64_t monotonic_us) const
{
    return until_ != kNone && began_ <= monotonic_us;
}

/* While the event lasts every picture belongs to it, even when the clock was set back meanwhile. */
bool EventSpan::holds(int64_t wall_us) const
{
    const Clock::rep until = until_;
    if (until == kNone) return false;
    const int64_t left_us = until - Clock::now().time_since_epoch().count();
    return left_us > 0 || wall_us < wall_now_us() + left_us;
}

} // namespace nvrec
