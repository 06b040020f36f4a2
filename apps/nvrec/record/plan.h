/*
 * plan.h - when a camera is recorded: always, never, within hours of the day, or around events.
 *
 *   always   every frame
 *   hours    in local time, by day of the week; events change nothing in it
 *   event    from before_s before an event until after_s behind the last one; before_s is held in
 *            memory, whole groups of pictures, no more than kMostHeld_bytes a stream
 *   never    only when the record key asks for it
 *
 * Threads: plain values.
 */
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace nvrec
{

enum class RecordingMode { kAlways, kHours, kEvent, kNever };

/**
 * A span of time on each of the named days; it may go beyond midnight (to <= from). Minutes of local time.
 */
struct PlanHours {
    std::array<bool, 7> days = {true, true, true, true, true, true, true}; /* Sunday first; of its begin */
    int from_min = 0;
    int to_min = 24 * 60;
};

struct RecordingPlan {
    RecordingMode mode = RecordingMode::kAlways;
    std::vector<PlanHours> hours; /* of kHours */
    double before_s = 5;          /* kEvent: what lies before an event belongs to it   */
    double after_s = 20;          /* kEvent: and what lies behind the last one         */
};

/**
 * Frames that are held for an event that may come: a camera of 16 Mbit/s with five seconds before and
 * as many between key frames needs 20 MB, one of 4 Mbit/s with a minute before 32 MB.
 */
constexpr uint64_t kMostHeld_bytes = 32u << 20;
constexpr double kLongestBefore_s = 60;
constexpr double kLongestAfter_s = 3600;

/**
 * Whether a time of day lies within the plan's hours. Always true for kAlways, never for kEvent and kNever.
 */
bool is_planned(const RecordingPlan &plan, int64_t wall_us);

/** What of a time of day lies within the plan's hours, to the minute: from and to, in order. */
std::vector<std::pair<int64_t, int64_t>> planned_within(const RecordingPlan &plan, int64_t from_us,
                                                        int64_t to_us);

} // namespace nvrec
