/* camera_meter.cpp - see camera_meter.h. */
#include "camera/camera_meter.h"

#include <algorithm>
#include <cmath>

namespace nvrec
{
namespace
{

constexpr auto kWindow = std::chrono::seconds(4);
constexpr size_t kMostArrivals = 1024;
constexpr double kJitterWeight = 1.0 / 16;      /* of a new frame, as receivers of RTP smooth it */
constexpr double kLargestJitter_us = 1'000'000; /* a connection that stalled is no jitter        */
constexpr double kPacket_bytes = 1400;          /* of a frame's packets on a network, about      */
constexpr double kLossMemory = 2000;            /* packets after which the count is halved       */

/* What jitter and loss take from a link's 100. */
constexpr double kPerJitter_ms = 0.3;
constexpr double kPerLoss = 600; /* a loss of 10 % takes 60 */
constexpr double kMostOfEach = 60;

double seconds_of(Clock::duration time)
{
    return std::chrono::duration<double>(time).count();
}

} // namespace

const char *camera_state_name(CameraState state)
{
    switch (state) {
    case CameraState::kConnecting: return "connecting";
    case CameraState::kLive: return "live";
    case CameraState::kSilent: return "silent";
    case CameraState::kRefused: return "refused";
    case CameraState::kEnded: return "ended";
    }
    return "";
}

void CameraMeter::arrived(Clock::time_point at, size_t bytes, bool key, std::optional<int64_t> camera_us)
{
    const std::scoped_lock guard(lock_);
    if (!arrived_at_ || at - *arrived_at_ >= kSilentAfter) live_since_ = at;
    arrived_at_ = at;
    forget_before(at - kWindow);
    if (arrivals_.size() >= kMostArrivals) arrivals_.pop_front();
    arrivals_.push_back({at, bytes});
    received_ += 1 + std::floor(static_cast<double>(bytes) / kPacket_bytes);
    if (key) {
        if (key_at_) key_distance_s_ = seconds_of(at - *key_at_);
        key_at_ = at;
    }
    if (!camera_us) return;
    const int64_t transit_us = at.time_since_epoch().count() - *camera_us;
    if (transit_us_) {
        const auto step_us = std::abs(static_cast<double>(transit_us - *transit_us_));
        if (step_us < kLargestJitter_us) jitter_us_ += (step_us - jitter_us_) * kJitterWeight;
    }
    transit_us_ = transit_us;
}

void CameraMeter::missed(uint64_t packets)
{
    const std::scoped_lock guard(lock_);
    missed_ += static_cast<double>(packets);
}

void CameraMeter::begin_again()
{
    const std::scoped_lock guard(lock_);
    transit_us_.reset();
    key_at_.reset();
}

void CameraMeter::handed_on(bool key, bool accepted)
{
    const std::scoped_lock guard(lock_);
    if (!accepted) {
        if (!refused_since_) refused_since_ = Clock::now();
    } else if (key && refused_since_) {
        refused_since_.reset();
        live_since_ = Clock::now();
    }
}

void CameraMeter::ended()
{
    const std::scoped_lock guard(lock_);
    if (!ended_at_) ended_at_ = Clock::now();
}

void CameraMeter::forget_before(Clock::time_point when)
{
    while (!arrivals_.empty() && arrivals_.front().at < when)
        arrivals_.pop_front();
    if (received_ + missed_ > kLossMemory) {
        received_ /= 2;
        missed_ /= 2;
    }
}

void CameraMeter::tell(CameraStatus *status, Clock::time_point now) const
{
    const std::scoped_lock guard(lock_);
    if (ended_at_) {
        status->state = CameraState::kEnded;
        status->since = *ended_at_;
    } else if (!arrived_at_) {
        status->state = CameraState::kConnecting;
        status->since = began_at_;
    } else if (now - *arrived_at_ >= kSilentAfter) {
        status->state = CameraState::kSilent;
        status->since = *arrived_at_;
    } else if (refused_since_) {
        status->state = CameraState::kRefused;
        status->since = *refused_since_;
    } else {
        status->state = CameraState::kLive;
        status->since = live_since_;
    }
    status->key_distance_s = key_distance_s_;
    if (!arrived_at_ || now - *arrived_at_ >= kSilentAfter) return;

    const auto first =
        std::ranges::find_if(arrivals_, [&](const Arrival &arrival) { return arrival.at >= now - kWindow; });
    const auto count = static_cast<double>(arrivals_.end() - first);
    if (count >= 2) {
        /* The first frame opens the window; its bytes came before the window did. */
        const double lasted_s = seconds_of(arrivals_.back().at - first->at);
        double bytes = 0;
        for (auto arrival = first + 1; arrival != arrivals_.end(); ++arrival)
            bytes += static_cast<double>(arrival->bytes);
        if (lasted_s > 0) status->frame_rate = (count - 1) / lasted_s;
        if (lasted_s > 0) status->bit_rate_bps = bytes * 8 / lasted_s;
    }
    status->jitter_ms = jitter_us_ / 1000;
    status->loss = missed_ > 0 ? missed_ / (received_ + missed_) : 0;
    if (!transit_us_) return;
    const double taken = std::min(status->jitter_ms * kPerJitter_ms, kMostOfEach) +
                         std::min(status->loss * kPerLoss, kMostOfEach);
    status->link_quality = std::clamp(static_cast<int>(std::lround(100 - taken)), 1, 100);
}

} // namespace nvrec
