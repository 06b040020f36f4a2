/* summary.cpp - what a call trace consists of. */
#include "trace/summary.h"

#include <algorithm>
#include <cinttypes>
#include <nlohmann/json.hpp>

#include "trace/call_fields.h"

namespace vboard_app
{
namespace
{

void count_call(CallSummary &of, const CallLine &call)
{
    if (of.count == 0) of.first_us = of.last_us = call.time_us;
    ++of.count;
    of.first_us = std::min(of.first_us, call.time_us);
    of.last_us = std::max(of.last_us, call.time_us);
    if (call.failed) {
        ++of.failed;
        std::string result(call.result);
        if (!call.reason.empty()) result += " (" + std::string(call.reason) + ")";
        ++of.failures[result];
    }
    if (call.duration_us) {
        ++of.timed;
        of.total_us += *call.duration_us;
        of.longest_us = std::max(of.longest_us, *call.duration_us);
    }
}

bool stands_before(SummaryOrder order, const CallSummary &a, const CallSummary &b)
{
    switch (order) {
    case SummaryOrder::kCount: return a.count > b.count;
    case SummaryOrder::kFailed: return a.failed > b.failed;
    case SummaryOrder::kTotal: return a.total_us > b.total_us;
    case SummaryOrder::kLongest: return a.longest_us > b.longest_us;
    case SummaryOrder::kName: return a.name < b.name;
    case SummaryOrder::kFirst: return a.first_us < b.first_us;
    }
    return false;
}

double mean_us(const CallSummary &of)
{
    return of.timed > 0 ? static_cast<double>(of.total_us) / static_cast<double>(of.timed) : 0;
}

template <typename... Values> void add_text(std::string &text, const char *format, Values... values)
{
    char piece[256];
    snprintf(piece, sizeof piece, format, values...);
    text += piece;
}

// "VDEC: buffer full" behind a code of the media interface.
std::string with_meaning(const std::string &result)
{
    const std::string meaning = result_meaning(result);
    return meaning.empty() ? result : result + " (" + meaning + ")";
}

std::string plural(uint64_t count, const char *noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace

TraceSummary summarise(const std::string &path, SummaryOrder order)
{
    TraceReader reader(path);
    TraceSummary summary;
    std::map<std::string, CallSummary, std::less<>> by_name;
    CallLine call;
    std::string name;
    bool first = true;
    for (TraceReader::Found found; (found = reader.next(call)) != TraceReader::Found::kEnd;) {
        if (found == TraceReader::Found::kBroken) continue;
        name = call.event ? "event " : "";
        name += call.name;
        count_call(by_name[name], call);
        ++(call.event ? summary.events : summary.calls);
        summary.failed += call.failed ? 1 : 0;
        summary.timed += call.duration_us ? 1 : 0;
        summary.first_us = first ? call.time_us : std::min(summary.first_us, call.time_us);
        summary.last_us = first ? call.time_us : std::max(summary.last_us, call.time_us);
        first = false;
    }
    for (auto &[of, row] : by_name) {
        row.name = of;
        summary.by_call.push_back(std::move(row));
    }
    // Equal ones stay in the order of their names.
    std::stable_sort(summary.by_call.begin(), summary.by_call.end(),
                     [&](const CallSummary &a, const CallSummary &b) { return stands_before(order, a, b); });
    summary.complaints = reader.complaints();
    return summary;
}

std::string summary_text(const TraceSummary &summary)
{
    std::string text;
    add_text(text, "%s, %" PRIu64 " failed, and %s in %.3f s\n", plural(summary.calls, "call").c_str(),
             summary.failed, plural(summary.events, "event").c_str(), summary.seconds());
    if (summary.by_call.empty()) return text;
    const bool timed = summary.timed > 0;
    text += "\n     calls  per second    failed     first s      last s";
    text += timed ? "     mean us      max us    total ms" : "";
    text += "  name\n";
    for (const CallSummary &row : summary.by_call) {
        const double rate = summary.seconds() > 0 ? static_cast<double>(row.count) / summary.seconds() : 0;
        add_text(text, "%10" PRIu64 "  %10.1f  %8" PRIu64 "  %10.3f  %10.3f", row.count, rate, row.failed,
                 static_cast<double>(row.first_us - summary.first_us) * 1e-6,
                 static_cast<double>(row.last_us - summary.first_us) * 1e-6);
        if (timed && row.timed > 0)
            add_text(text, "  %10.1f  %10" PRId64 "  %10.3f", mean_us(row), row.longest_us,
                     static_cast<double>(row.total_us) * 1e-3);
        else if (timed)
            add_text(text, "  %10s  %10s  %10s", "-", "-", "-");
        text += "  " + row.name + "\n";
        for (const auto &[result, count] : row.failures)
            text += std::string(34, ' ') + std::to_string(count) + " times " + with_meaning(result) + "\n";
    }
    return text;
}

nlohmann::ordered_json summary_json(const TraceSummary &summary)
{
    using Json = nlohmann::ordered_json;
    Json rows = Json::array();
    for (const CallSummary &row : summary.by_call) {
        Json failures = Json::array();
        for (const auto &[result, count] : row.failures) {
            const std::string meaning = result_meaning(result);
            failures.push_back({{"result", result},
                                {"meaning", meaning.empty() ? Json() : Json(meaning)},
                                {"count", count}});
        }
        rows.push_back(
            {{"name", row.name},
             {"count", row.count},
             {"failed", row.failed},
             {"failures", std::move(failures)},
             {"per_second",
              summary.seconds() > 0 ? Json(static_cast<double>(row.count) / summary.seconds()) : Json()},
             {"first_us", row.first_us},
             {"last_us", row.last_us},
             {"total_us", row.timed > 0 ? Json(row.total_us) : Json()},
             {"mean_us", row.timed > 0 ? Json(mean_us(row)) : Json()},
             {"max_us", row.timed > 0 ? Json(row.longest_us) : Json()}});
    }
    return {{"calls", summary.calls},
            {"events", summary.events},
            {"failed", summary.failed},
            {"first_us", summary.first_us},
            {"last_us", summary.last_us},
            {"by_call", std::move(rows)},
            {"broken_lines", summary.complaints}};
}

} // namespace vboard_app
