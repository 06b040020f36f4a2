/*
 * timeline.h - a call trace on a time line, for ui.perfetto.dev and chrome://tracing: threads and what
 * calls are about (decoder channels, ports, nodes) in rows, failures and events, and counters.
 */
#ifndef VBOARD_APP_TIMELINE_H
#define VBOARD_APP_TIMELINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vboard_app
{

struct TimelineOptions {
    bool threads = true, channels = true;  // which rows; threads need a trace that has them
    std::optional<int64_t> from_us, to_us; // only this part, since the trace's first line
};

struct TimelineReport {
    uint64_t calls = 0, events = 0, failed = 0;
    std::vector<std::string> complaints; // lines that were passed over
};

/* @throws TraceError; an output that was begun is removed then */
TimelineReport write_timeline(const std::string &trace, const std::string &output,
                              const TimelineOptions &options);

} // namespace vboard_app

#endif
