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

} // namespace nvrec
