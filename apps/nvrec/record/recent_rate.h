/*
 * recent_rate.h - measures how fast a count grows, over the last ten minutes only, since plans or cameras may
 * have been others before.
 *
 * Threads: any, one at a time.
 */
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <utility>

#include "host/clock.h"

namespace nvrec
{

class RecentRate
{
public:
    /** Note the count now. It may fall, when a file is lost and its bytes no longer count. */
    void note(Clock::time_point now, uint64_t count)
    {
        if (!samples_.empty() && now - samples_.back().first < kApart) return;
        samples_.emplace_back(now, count);
        while (samples_.size() > 2 && now - samples_[1].first >= kWindow)
            samples_.pop_front();
    }

    /** Counts in a second; nothing = not known yet. */
    std::optional<double> per_s(Clock::time_point now, uint64_t count) const
    {
        if (samples_.empty() || now <= samples_.front().first) return std::nullopt;
        const auto [from, before] = samples_.front();
        const uint64_t grown = count - std::min(before, count);
        return static_cast<double>(grown) / std::chrono::duration<double>(now - from).count();
    }

private:
    static constexpr auto kApart = std::chrono::seconds(10);
    static constexpr auto kWindow = std::chrono::minutes(10);

    std::deque<std::pair<Clock::time_point, uint64_t>> samples_;
};

} // namespace nvrec
