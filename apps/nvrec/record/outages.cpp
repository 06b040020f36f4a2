/* outages.cpp - see outages.h. */
#include "record/outages.h"

#include <cstdlib>
#include <utility>

namespace nvrec
{

std::optional<Outages::Gap> Outages::note(const PoolFrame &frame, int64_t place_us, bool begins)
{
    const Last now = {place_us, frame.taken_at_us, frame.arrived_us, frame.clock_ahead_us};
    const std::optional<Last> last = std::exchange(last_, now);
    const std::string why = std::exchange(why_, "");
    if (!last) return std::nullopt;
    /* Pictures that a network has delayed arrive late and all at once, but state when they were taken. */
    const int64_t silent_us = now.arrived_us - last->arrived_us;
    const bool clock_was_set = std::abs(now.clock_ahead_us - last->clock_ahead_us) > kClockJump_us;
    const int64_t length_us = clock_was_set ? silent_us : now.taken_at_us - last->taken_at_us;
    if (silent_us <= kGap_us || length_us <= kGap_us) return std::nullopt;

    /* It is not known when in this time the clock was set; the gap is told by the clock as it was before. */
    int64_t to_us = last->place_us + length_us;
    if (begins ? !clock_was_set : place_us - last->place_us > kGap_us) to_us = place_us;
    if (to_us <= last->place_us) return std::nullopt;
    return Gap{last->place_us, to_us, why.empty() ? "no video" : why, last->arrived_us};
}

void Outages::lost()
{
    if (why_.empty()) why_ = "lost";
}

void Outages::fell_back(int64_t until_us, const std::string &why)
{
    why_ = why;
    if (!last_ || until_us >= last_->place_us) return;
    const int64_t back_us = last_->place_us - until_us;
    last_->place_us -= back_us;
    last_->taken_at_us -= back_us;
    last_->arrived_us -= back_us;
}

void Outages::forget()
{
    last_.reset();
    why_.clear();
}

} // namespace nvrec
