/* status_names.h - words for states, the same in the table, in JSON and for Prometheus. */
#pragma once

#include "wall/recording_status.h"

namespace nvrec
{

constexpr const char *recording_state_name(RecordingState state)
{
    switch (state) {
    case RecordingState::kOff: return "off";
    case RecordingState::kWaiting: return "waiting";
    case RecordingState::kRuns: return "runs";
    case RecordingState::kFailing: break;
    }
    return "failing";
}

constexpr const char *disk_state_name(DiskState state)
{
    switch (state) {
    case DiskState::kGood: return "good";
    case DiskState::kHangs: return "hangs";
    case DiskState::kFull: return "full";
    case DiskState::kFailing: break;
    }
    return "failing";
}

} // namespace nvrec
