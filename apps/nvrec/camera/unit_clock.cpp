/* unit_clock.cpp - see unit_clock.h. */
#include "camera/unit_clock.h"

#include <algorithm>
#include <cmath>

namespace nvrec
{

void UnitClock::set_stream(double frame_rate, int held_back)
{
    frame_rate_ = frame_rate;
    held_back_ = held_back;
}

void UnitClock::begin()
{
    next_number_ = 0;
    first_dts_us_.reset();
    last_dts_us_.reset();
    joined_us_ = 0;
}

void UnitClock::begin_after(int64_t away_us)
{
    begin();
    pass_start_us_ = last_due_us_ + away_us;
}

void UnitClock::begin_again()
{
    begin();
    pass_start_us_ = last_due_us_ + static_cast<int64_t>(std::llround(1e6 / frame_rate_));
    last_due_us_ = 0; /* the pass's start holds from here on */
}

int64_t UnitClock::number_at(int64_t due_us) const
{
    return std::llround(static_cast<double>(due_us) * frame_rate_ / 1e6);
}

/* Another file's stamps begin anywhere. */
void UnitClock::look_for_join(int64_t dts_us)
{
    constexpr int64_t kBack_us = 1'000'000;
    constexpr int64_t kForward_us = 10'000'000; /* a camera may pause in a recording, too */
    const int64_t step_us = last_dts_us_ ? dts_us - *last_dts_us_ : 0;
    last_dts_us_ = dts_us;
    if (step_us >= -kBack_us && (step_us <= kForward_us || !may_be_joined_)) return;
    joined_us_ += static_cast<int64_t>(std::llround(1e6 / frame_rate_)) - step_us;
}

UnitClock::Stamp UnitClock::stamp(const PacketTimes &times)
{
    if (times.before_start) { /* at once, for the one that is shown first */
        const int64_t now_us = std::max(last_due_us_, pass_start_us_);
        return {now_us, now_us};
    }
    const auto by_count =
        static_cast<int64_t>(std::llround(static_cast<double>(next_number_) * 1e6 / frame_rate_));
    int64_t since_start_us = by_count;
    int64_t pts_offset_us = 0;
    if (times.pts_us && !first_pts_us_) first_pts_us_ = times.pts_us;
    if (times.dts_us) {
        if (!first_dts_us_) first_dts_us_ = *times.dts_us - by_count;
        look_for_join(*times.dts_us);
        since_start_us = *times.dts_us - *first_dts_us_ + joined_us_;
        if (times.pts_us) pts_offset_us = times.pts_behind_dts_us;
    } else if (times.pts_us) {
        /*
         * Some files tell only when a unit is shown. It is decoded earlier by as many frames as the decoder
         * holds back.
         */
        const int64_t held_back_us = std::llround(held_back_ * 1e6 / frame_rate_);
        if (!first_dts_us_) first_dts_us_ = *times.pts_us - held_back_us - by_count;
        if (times.key) since_start_us = *times.pts_us - held_back_us - *first_dts_us_;
        pts_offset_us = *times.pts_us - *first_dts_us_ - since_start_us;
    }
    last_due_us_ = std::max(last_due_us_, pass_start_us_ + since_start_us);
    ++next_number_;
    return {last_due_us_, std::max<int64_t>(0, last_due_us_ + pts_offset_us)};
}

std::optional<int64_t> UnitClock::offset_us() const
{
    if (!first_dts_us_) return std::nullopt;
    return pass_start_us_ - *first_dts_us_ + joined_us_;
}

} // namespace nvrec
