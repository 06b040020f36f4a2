/* live_clock.cpp - see live_clock.h. */
#include "camera/live_clock.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "host/clock.h"

namespace nvrec
{
namespace
{

constexpr int64_t kAgree_us = 200'000; /* the camera's distances hold while they agree with arrival so far */
constexpr int64_t kReorder_us = 1'000'000; /* pictures are not reordered over more than this             */

/* Whether late pictures catch up is looked at after so long and so many of them. */
constexpr int64_t kLook_us = 400'000;
constexpr double kCatchesUp = 1.3; /* times real time */

constexpr int64_t kWindow_us = 2'000'000; /* in which some picture arrives without delay */
constexpr int64_t kUnheeded_us = 5'000;
constexpr int64_t kSlowest = 200; /* one part of so many: how fast a camera's clock is followed */

constexpr int64_t kClocksApart_us = 20'000;

} // namespace

void DecodingOrder::set_stream(double frame_rate, int held_back)
{
    frame_us_ = std::llround(1e6 / std::max(frame_rate, 0.01));
    held_back_ = static_cast<size_t>(std::clamp(held_back, 0, 16));
}

void DecodingOrder::begin()
{
    waiting_.clear();
    newest_us_.reset();
    last_us_.reset();
}

int64_t DecodingOrder::decoding_time(int64_t pts_us)
{
    if (newest_us_ && std::llabs(pts_us - *newest_us_) > kReorder_us)
        begin(); /* the stream goes on elsewhere */
    if (!newest_us_) {
        for (size_t i = held_back_; i > 0; --i)
            waiting_.push_back(pts_us - static_cast<int64_t>(i) * frame_us_);
    }
    newest_us_ = std::max(pts_us, newest_us_.value_or(pts_us));
    waiting_.insert(std::ranges::upper_bound(waiting_, pts_us), pts_us);
    /*
     * The stream holds more pictures back than it says: this picture is due together with the one before it.
     */
    const bool deeper = last_us_ && waiting_.front() < *last_us_;
    if (!deeper || waiting_.size() > 17) {
        last_us_ = std::max(waiting_.front(), last_us_.value_or(waiting_.front()));
        waiting_.erase(waiting_.begin());
    }
    return *last_us_;
}

void LiveClock::begin(const std::vector<Arrived> &first)
{
    order_.begin();
    add_us_.reset();
    late_.reset();
    window_from_us_ = to_follow_us_ = last_arrived_us_ = 0;
    earliest_us_ = INT64_MAX;
    last_pts_us_ = first_pts_of(first);
    const int64_t before_us = last_pts_us_;
    DecodingOrder order = order_;
    for (const Arrived &unit : first) {
        const int64_t add_us = unit.arrived_us - order.decoding_time(pts_of(unit.times));
        add_us_ = std::min(add_us_.value_or(add_us), add_us);
    }
    last_pts_us_ = before_us;
}

/* The first picture of a session comes without a time, and is shown one picture before all others. The
 * result is the time of the picture before that one. */
int64_t LiveClock::first_pts_of(const std::vector<Arrived> &first) const
{
    int64_t earliest_us = INT64_MAX;
    size_t without = 0;
    for (const Arrived &unit : first) {
        if (unit.times.pts_us) earliest_us = std::min(earliest_us, *unit.times.pts_us);
        if (!unit.times.pts_us && earliest_us == INT64_MAX) ++without;
    }
    if (earliest_us == INT64_MAX) return -order_.frame_us();
    return earliest_us - static_cast<int64_t>(without + 1) * order_.frame_us();
}

int64_t LiveClock::pts_of(const UnitClock::PacketTimes &times)
{
    last_pts_us_ = times.pts_us.value_or(last_pts_us_ + order_.frame_us());
    return last_pts_us_;
}

LiveClock::Stamp LiveClock::stamp(const Arrived &unit)
{
    const int64_t pts_us = pts_of(unit.times);
    const int64_t camera_us = order_.decoding_time(pts_us);
    const int64_t add_before_us = add_us_.value_or(0);
    const bool first = !add_us_ || last_arrived_us_ == 0;
    const bool jumps = !first && !late_;
    int64_t at_us = place(camera_us, unit.arrived_us);
    at_us = std::max(at_us, last_at_us_.value_or(at_us));
    if (!epoch_us_) epoch_us_ = at_us;
    last_at_us_ = at_us;
    last_camera_us_ = camera_us;
    last_arrived_us_ = unit.arrived_us;

    const int64_t due_us = at_us - *epoch_us_;
    const int64_t shown_later_us = pts_us - camera_us;
    const int64_t added_us = *add_us_ - add_before_us;
    Stamp stamp = {due_us, std::max<int64_t>(0, due_us + shown_later_us), at_us, 0};
    if (jumps && std::llabs(added_us) > kAgree_us) stamp.jumped_us = -added_us;
    return stamp;
}

/* The monotonic time of a picture. */
int64_t LiveClock::place(int64_t camera_us, int64_t arrived_us)
{
    if (!add_us_) add_us_ = arrived_us - camera_us;
    const int64_t step_us = camera_us - last_camera_us_;
    const int64_t late_us = arrived_us - (camera_us + *add_us_);
    if (last_arrived_us_ == 0) return camera_us + *add_us_;
    if (std::llabs(late_us) <= kAgree_us) {
        late_.reset();
        follow(late_us, arrived_us, step_us);
    } else if (late_us > 0) {
        /* Late, or the camera's clock was set back. */
        if (step_us < -kAgree_us || camera_stood_still(camera_us, arrived_us))
            return jump(camera_us, arrived_us);
    } else if (step_us - (arrived_us - last_arrived_us_) > kAgree_us) {
        return jump(camera_us, arrived_us); /* set forward */
    } else {
        /*
         * The pictures that it is compared with had come late themselves: distances are halved until they
         * agree.
         */
        *add_us_ -= std::clamp<int64_t>(step_us / 2, 0, -late_us);
    }
    return camera_us + *add_us_;
}

int64_t LiveClock::jump(int64_t camera_us, int64_t arrived_us)
{
    late_.reset();
    to_follow_us_ = 0;
    earliest_us_ = INT64_MAX;
    window_from_us_ = arrived_us;
    add_us_ = std::max(arrived_us, last_at_us_.value_or(arrived_us) + 1000) - camera_us;
    return camera_us + *add_us_;
}

/* Pictures that waited on the connection come faster than they were taken; those of a camera that stalled
 * do not. Another stall while they are late says nothing. */
bool LiveClock::camera_stood_still(int64_t camera_us, int64_t arrived_us)
{
    const int64_t stalled_us = (arrived_us - last_arrived_us_) - (camera_us - last_camera_us_);
    if (!late_ || stalled_us > kAgree_us) late_ = {arrived_us, camera_us};
    const int64_t passed_us = arrived_us - late_->arrived_us;
    if (passed_us < kLook_us) return false;
    const auto came_us = static_cast<double>(camera_us - late_->camera_us);
    const bool catches_up = came_us >= kCatchesUp * static_cast<double>(passed_us);
    late_ = {arrived_us, camera_us};
    return !catches_up;
}

/* A camera's clock runs a little fast or slow: the earliest arrivals of some seconds tell. */
void LiveClock::follow(int64_t late_us, int64_t arrived_us, int64_t step_us)
{
    earliest_us_ = std::min(earliest_us_, late_us);
    if (window_from_us_ == 0) window_from_us_ = arrived_us;
    if (arrived_us - window_from_us_ >= kWindow_us) {
        to_follow_us_ = std::llabs(earliest_us_) > kUnheeded_us ? earliest_us_ : 0;
        earliest_us_ = INT64_MAX;
        window_from_us_ = arrived_us;
    }
    const int64_t most_us = std::max<int64_t>(step_us, 0) / kSlowest;
    const int64_t now_us = std::clamp(to_follow_us_, -most_us, most_us);
    *add_us_ += now_us;
    to_follow_us_ -= now_us;
}

std::optional<int64_t> LiveClock::offset_us() const
{
    if (!add_us_ || !epoch_us_) return std::nullopt;
    return *add_us_ - *epoch_us_;
}

int64_t TimeOfDay::of(int64_t monotonic_us)
{
    const int64_t wall_us =
        std::chrono::duration_cast<std::chrono::microseconds>(wall_time().time_since_epoch()).count();
    const int64_t ahead_us = wall_us - Clock::now().time_since_epoch().count();
    if (!ahead_us_ || std::llabs(ahead_us - *ahead_us_) > kClocksApart_us) ahead_us_ = ahead_us;
    return monotonic_us + *ahead_us_;
}

} // namespace nvrec
