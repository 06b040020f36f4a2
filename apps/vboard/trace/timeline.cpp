/*
 * timeline.cpp - a call trace on a time line.
 *
 * The trace has calls in the order in which they end, so that a call begins its duration before its line.
 * Durations are real time, and the line's time the board's clock: where somebody has taken that clock, a call
 * would begin before the one in front of it. A thread makes one call after the other, so a call never begins
 * before the last one of its thread has ended. Calls about one channel may come from several threads at once;
 * those that overlap stand in further rows of the channel.
 */
#include "trace/timeline.h"

#include <sys/stat.h>

#include <algorithm>
#include <map>

#include "trace/call_fields.h"
#include "trace/counters.h"
#include "trace/trace_event_file.h"
#include "trace/trace_reader.h"
#include "trace/tracks.h"

namespace vboard_app
{
namespace
{

enum Process { kBoard = 1, kThreads = 2, kChannels = 3 };
constexpr EventPlace kEventsRow{kBoard, 1}, kFailuresRow{kBoard, 2};
constexpr int kMaxRows = 64; // of one channel

void append_value(std::string &json, const CallField &field)
{
    // Readers of JSON keep 53 bits of a number; a checksum is no number.
    constexpr int64_t kExact = int64_t{1} << 53;
    const std::optional<int64_t> number =
        field.quoted || field.name == "crc32" || field.text.starts_with("0x") ? std::nullopt
                                                                              : field_number(field.text);
    if (number && *number > -kExact && *number < kExact)
        json += std::to_string(*number);
    else
        append_json_text(json, field.text);
}

void append_field(std::string &json, const CallLine &call, const CallField &field)
{
    append_json_text(json, field.name);
    json += ':';
    if (field.member_count == 0) {
        append_value(json, field);
        return;
    }
    json += '{';
    for (const CallField &member : call.members(field)) {
        if (json.back() != '{') json += ',';
        append_json_text(json, member.name);
        json += ':';
        append_value(json, member);
    }
    json += '}';
}

std::string arguments_text(const CallLine &call, uint64_t line)
{
    std::string json = "{";
    for (const CallField &argument : call.arguments) {
        append_field(json, call, argument);
        json += ',';
    }
    if (!call.event) {
        json += "\"result\":";
        std::string result(call.result);
        if (const std::string meaning = result_meaning(result); !meaning.empty())
            result += " (" + meaning + ")";
        append_json_text(json, result);
        json += ',';
    }
    if (call.thread) json += "\"thread\":" + std::to_string(*call.thread) + ",";
    return json + "\"line\":" + std::to_string(line) + "}";
}

class Timeline
{
public:
    Timeline(TraceEventFile &file, const TimelineOptions &options)
        : file_(file), options_(options),
          counters_([this](const std::string &name, int64_t at_us, double value) {
              if (is_wanted(at_us)) file_.counter(kBoard, name, at_us, value);
          })
    {
        file_.name_process(kBoard, "board", kBoard);
        file_.name_thread(kEventsRow, "events", 1);
        file_.name_thread(kFailuresRow, "failures", 2);
        if (options_.channels) file_.name_process(kChannels, "channels and nodes", kChannels);
    }

    bool add(const CallLine &call, uint64_t line);
    void finish() { counters_.finish(); }

private:
    struct Rows {
        int first = 0; // number of its first row
        int order = 0;
        std::vector<int64_t> ends_us; // of each row
    };

    bool is_wanted(int64_t at_us) const
    {
        const int64_t since_us = at_us - begin_us_;
        return (!options_.from_us || since_us >= *options_.from_us) &&
               (!options_.to_us || since_us <= *options_.to_us);
    }
    EventPlace free_row(const std::string &track, int64_t from_us, int64_t to_us);
    void put(EventPlace place, const CallLine &call, int64_t from_us, const std::string &arguments);

    TraceEventFile &file_;
    const TimelineOptions options_;
    Counters counters_;
    Tracks tracks_;
    std::map<std::string, Rows> channels_;
    std::map<uint32_t, int64_t> thread_ends_us_;
    int64_t begin_us_ = 0; // of the trace
    bool begun_ = false;
};

// The first row of a channel in which nothing overlaps [from, to].
EventPlace Timeline::free_row(const std::string &track, int64_t from_us, int64_t to_us)
{
    const auto [found, added] = channels_.try_emplace(track);
    Rows &rows = found->second;
    if (added) {
        rows.first = static_cast<int>(channels_.size()) * kMaxRows;
        rows.order = Tracks::order(track);
    }
    size_t row = 0;
    while (row < rows.ends_us.size() && rows.ends_us[row] > from_us)
        ++row;
    row = std::min<size_t>(row, kMaxRows - 1);
    const EventPlace place{kChannels, rows.first + static_cast<int>(row)};
    if (row == rows.ends_us.size()) {
        rows.ends_us.push_back(to_us);
        file_.name_thread(place, row == 0 ? track : track + " (" + std::to_string(row + 1) + ")",
                          rows.order * kMaxRows + static_cast<int>(row));
    }
    rows.ends_us[row] = std::max(rows.ends_us[row], to_us);
    return place;
}

void Timeline::put(EventPlace place, const CallLine &call, int64_t from_us, const std::string &arguments)
{
    const std::string_view category = call.failed && call.reason.empty() ? "failed" : "call";
    if (call.duration_us)
        file_.slice(place, call.name, category, from_us, call.time_us - from_us, arguments);
    else
        file_.instant(place, call.name, category, call.time_us, arguments);
}

bool Timeline::add(const CallLine &call, uint64_t line)
{
    if (!begun_) begin_us_ = call.time_us;
    begun_ = true;
    counters_.count(call);
    const std::string track = tracks_.of(call);
    int64_t from_us = call.time_us;
    if (call.duration_us) {
        const int64_t duration_us = std::min(*call.duration_us, std::max<int64_t>(call.time_us, 0));
        from_us = call.time_us - duration_us;
    }
    if (call.thread) {
        const auto [last, added] = thread_ends_us_.try_emplace(*call.thread, from_us);
        if (added && options_.threads) {
            if (thread_ends_us_.size() == 1) file_.name_process(kThreads, "threads", kThreads);
            file_.name_thread({kThreads, static_cast<int>(*call.thread)},
                              "thread " + std::to_string(*call.thread), static_cast<int>(*call.thread));
        }
        if (last->second <= call.time_us) from_us = std::max(from_us, last->second);
        last->second = call.time_us;
    }
    if (!is_wanted(call.time_us)) return false;
    const std::string arguments = arguments_text(call, line);
    if (call.event) {
        file_.instant(kEventsRow, call.name, "event", call.time_us, arguments);
        return true;
    }
    if (options_.threads && call.thread)
        put({kThreads, static_cast<int>(*call.thread)}, call, from_us, arguments);
    if (options_.channels) put(free_row(track, from_us, call.time_us), call, from_us, arguments);
    // One that the board declines without a refusal is made as a matter of course: no failure to look at.
    if (call.failed && call.reason.empty())
        file_.instant(kFailuresRow, std::string(call.name) + " (" + track + ")", "failed", call.time_us,
                      arguments);
    return true;
}

bool is_same_file(const std::string &a, const std::string &b)
{
    struct stat one, other;
    return a != "-" && b != "-" && stat(a.c_str(), &one) == 0 && stat(b.c_str(), &other) == 0 &&
           one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

} // namespace

TimelineReport write_timeline(const std::string &trace, const std::string &output,
                              const TimelineOptions &options)
{
    if (is_same_file(trace, output)) throw TraceError(output + " is the trace itself");
    TraceReader reader(trace);
    CallLine call;
    TraceReader::Found found = TraceReader::Found::kBroken;
    while (found == TraceReader::Found::kBroken)
        found = reader.next(call); // what is no trace leaves the output alone
    TraceEventFile file(output);
    Timeline timeline(file, options);
    TimelineReport report;
    for (; found != TraceReader::Found::kEnd; found = reader.next(call)) {
        if (found == TraceReader::Found::kBroken || !timeline.add(call, reader.line_number())) continue;
        ++(call.event ? report.events : report.calls);
        report.failed += call.failed ? 1 : 0;
    }
    timeline.finish();
    file.finish();
    report.complaints = reader.complaints();
    return report;
}

} // namespace vboard_app
