/* ao_playout.cpp - see ao_playout.h. */
#include "media/ao_playout.h"

#include <algorithm>
#include <cmath>

#include "media/time_units.h"

namespace vboard
{
namespace
{

constexpr uint32_t kHistory_ms = 10000;
constexpr float kFullScale = 32768;
constexpr float kLowest = -32768;
constexpr float kHighest = 32767;

} // namespace

Playout::Playout(uint32_t rate_hz, size_t capacity)
    : rate_hz_(rate_hz), capacity_(capacity), history_(rate_hz, kHistory_ms)
{
}

// Rounded up: at that time settle finds the sample due.
int64_t Playout::time_of(uint64_t samples_since_start) const
{
    const auto scaled_us = static_cast<int64_t>(samples_since_start) * kSecond_us;
    return start_us_ + (scaled_us + rate_hz_ - 1) / rate_hz_;
}

int64_t Playout::room_at_us(size_t count) const
{
    const size_t too_many = has_room(count) ? 0 : waiting_.size() + count - capacity_;
    return time_of(played_since_start_ + too_many);
}

int64_t Playout::empty_at_us() const
{
    return time_of(played_since_start_ + waiting_.size());
}

void Playout::queue(const std::vector<float> &samples, int64_t now_us)
{
    if (samples.empty()) return;
    if (waiting_.empty()) {
        start_us_ = now_us;
        played_since_start_ = 0;
        history_.begin_run(now_us);
    }
    waiting_.insert(waiting_.end(), samples.begin(), samples.end());
}

const std::vector<int16_t> &Playout::settle(int64_t now_us)
{
    just_played_.clear();
    if (waiting_.empty()) return just_played_;
    const auto due = static_cast<uint64_t>((now_us - start_us_) * rate_hz_ / kSecond_us);
    const size_t count = static_cast<size_t>(std::min<uint64_t>(due - played_since_start_, waiting_.size()));
    if (count == 0) return just_played_;
    for (size_t i = 0; i < count; ++i) {
        const float sample = std::nearbyint(waiting_[i] * gain_ * kFullScale);
        const float held = std::clamp(sample, kLowest, kHighest);
        clipped_ += held != sample;
        just_played_.push_back(static_cast<int16_t>(held));
    }
    waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(count));
    played_since_start_ += count;
    ran_dry_ += waiting_.empty();
    history_.append(just_played_.data(), count);
    return just_played_;
}

} // namespace vboard
