/* summary.h - what a call trace consists of: how often each call was made, how it failed, how long it took.
 */
#ifndef VBOARD_APP_SUMMARY_H
#define VBOARD_APP_SUMMARY_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "trace/trace_reader.h"

namespace vboard_app
{

struct CallSummary {
    std::string name; // of the call; "event plug" for what came up
    uint64_t count = 0;
    uint64_t failed = 0;
    std::map<std::string, uint64_t> failures; // by result: "0xa008000f", "-1"; "0xa0010005 (absent)"
    int64_t first_us = 0, last_us = 0;        // board clock
    uint64_t timed = 0;                       // calls with a duration; of these:
    int64_t total_us = 0, longest_us = 0;
};

struct TraceSummary {
    uint64_t calls = 0, events = 0, failed = 0, timed = 0;
    int64_t first_us = 0, last_us = 0;
    std::vector<CallSummary> by_call;
    std::vector<std::string> complaints; // lines that were passed over

    double seconds() const { return static_cast<double>(last_us - first_us) * 1e-6; }
};

enum class SummaryOrder { kCount, kFailed, kTotal, kLongest, kName, kFirst };

/* @throws TraceError */
TraceSummary summarise(const std::string &path, SummaryOrder order);

/* A table; its times are since the first line of the trace. */
std::string summary_text(const TraceSummary &summary);
nlohmann::ordered_json summary_json(const TraceSummary &summary);

} // namespace vboard_app

#endif
