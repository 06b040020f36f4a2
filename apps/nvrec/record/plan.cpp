/* plan.cpp - see plan.h. */
#include "record/plan.h"

#include <algorithm>
#include <ctime>

namespace nvrec
{
namespace
{

bool contains(const PlanHours &hours, int day, int minute)
{
    const auto today = static_cast<size_t>(day);
    const size_t yesterday = (today + hours.days.size() - 1) % hours.days.size();
    if (hours.from_min < hours.to_min)
        return hours.days[today] && minute >= hours.from_min && minute < hours.to_min;
    return (hours.days[today] && minute >= hours.from_min) ||
           (hours.days[yesterday] && minute < hours.to_min);
}

} // namespace

bool is_planned(const RecordingPlan &plan, int64_t wall_us)
{
    if (plan.mode != RecordingMode::kHours) return plan.mode == RecordingMode::kAlways;
    const auto seconds = static_cast<time_t>(wall_us / 1'000'000);
    tm local = {};
    localtime_r(&seconds, &local);
    return std::ranges::any_of(plan.hours, [&local](const PlanHours &hours) {
        return contains(hours, local.tm_wday, local.tm_hour * 60 + local.tm_min);
    });
}

std::vector<std::pair<int64_t, int64_t>> planned_within(const RecordingPlan &plan, int64_t from_us,
                                                        int64_t to_us)
{
    constexpr int64_t kMinute_us = 60'000'000;
    std::vector<std::pair<int64_t, int64_t>> spans;
    for (int64_t at_us = from_us; at_us < to_us;) {
        const int64_t next_us = std::min(to_us, (at_us / kMinute_us + 1) * kMinute_us);
        if (!is_planned(plan, at_us)) {
            /* nothing of this minute */
        } else if (!spans.empty() && spans.back().second == at_us) {
            spans.back().second = next_us;
        } else {
            spans.emplace_back(at_us, next_us);
        }
        at_us = next_us;
    }
    return spans;
}

} // namespace nvrec
