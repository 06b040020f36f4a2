/* command.cpp - vboard trace. */
#include "trace/command.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>

#include "trace/diff.h"
#include "trace/summary.h"
#include "trace/timeline.h"
#include "trace/trace_reader.h"

namespace
{

using namespace vboard_app;

enum Exit { kDone = 0, kDiffer = 1, kTrouble = 2 };

struct Arguments {
    std::string trace, other, output = "-";
    std::string rows = "both", order = "count";
    double from_s = 0, to_s = 0;
    bool json = false;
    DiffOptions diff;
};

const std::map<std::string, SummaryOrder> kOrders = {
    {"count", SummaryOrder::kCount},     {"failed", SummaryOrder::kFailed}, {"total", SummaryOrder::kTotal},
    {"longest", SummaryOrder::kLongest}, {"name", SummaryOrder::kName},     {"first", SummaryOrder::kFirst},
};

void complain(const std::vector<std::string> &lines)
{
    for (const std::string &line : lines)
        fprintf(stderr, "vboard trace: %s\n", line.c_str());
}

// Whoever reads our output may have gone, and a disk may be full.
void finish_output()
{
    if (fflush(stdout) != 0 || ferror(stdout) != 0) throw TraceError("the output cannot be written");
}

int timeline(const Arguments &given, const CLI::App &command)
{
    constexpr double kMicroseconds = 1e6;
    TimelineOptions options;
    options.threads = given.rows != "channels";
    options.channels = given.rows != "threads";
    if (command.count("--from") > 0) options.from_us = static_cast<int64_t>(given.from_s * kMicroseconds);
    if (command.count("--to") > 0) options.to_us = static_cast<int64_t>(given.to_s * kMicroseconds);
    const TimelineReport report = write_timeline(given.trace, given.output, options);
    complain(report.complaints);
    if (given.output != "-")
        printf("%s: %llu calls, %llu of them failed, %llu events\n", given.output.c_str(),
               static_cast<unsigned long long>(report.calls), static_cast<unsigned long long>(report.failed),
               static_cast<unsigned long long>(report.events));
    finish_output();
    return kDone;
}

int diff(const Arguments &given)
{
    std::vector<std::string> complaints;
    const bool same = diff_traces(given.trace, given.other, given.diff, stdout, complaints);
    complain(complaints);
    finish_output();
    return same ? kDone : kDiffer;
}

int summary(const Arguments &given)
{
    const TraceSummary found = summarise(given.trace, kOrders.at(given.order));
    complain(found.complaints);
    const std::string text =
        given.json ? summary_json(found).dump(2, ' ', true, nlohmann::json::error_handler_t::replace) + "\n"
                   : summary_text(found);
    fwrite(text.data(), 1, text.size(), stdout);
    finish_output();
    return kDone;
}

CLI::App *add_timeline(CLI::App &app, Arguments &given)
{
    CLI::App *command = app.add_subcommand(
        "timeline", "Write a trace as a time line for ui.perfetto.dev or chrome://tracing");
    command->add_option("trace", given.trace, "File of the trace; - is the standard input")->required();
    command->add_option("-o,--output", given.output, "File of the time line, JSON; - is the standard output")
        ->capture_default_str();
    command->add_option("--rows", given.rows, "What has a row of its own; threads need a trace that has them")
        ->check(CLI::IsMember({"threads", "channels", "both"}))
        ->capture_default_str();
    command->add_option("--from", given.from_s,
                        "Only calls that end from here on, seconds since the trace's first line");
    command->add_option("--to", given.to_s,
                        "Only calls that end until here, seconds since the trace's first line");
    return command;
}

CLI::App *add_diff(CLI::App &app, Arguments &given)
{
    CLI::App *command = app.add_subcommand("diff", "Compare two traces up to times, durations and threads");
    command->add_option("a", given.trace, "File of the one trace")->required();
    command->add_option("b", given.other, "File of the other")->required();
    command->add_flag("--by-channel", given.diff.by_channel,
                      "Compare each channel's calls by themselves: threads may take turns in another way");
    command->add_flag("--all", given.diff.all, "Show every difference, not only the first");
    command->add_flag("-q,--quiet", given.diff.quiet, "Show nothing; the exit status tells");
    command->add_option("--context", given.diff.context, "Lines to show before a difference")
        ->check(CLI::Range(0, 1000))
        ->capture_default_str();
    command->add_flag("--pts", given.diff.same.pts, "Time stamps (fields pts and base) count, too");
    command
        ->add_option("--ignore", given.diff.same.ignored,
                     "A field that does not count, as crc32 or stream.length")
        ->allow_extra_args(false);
    command
        ->add_option("--only", given.diff.same.only,
                     "Beginning of the names of calls to compare, as MI_VDEC_")
        ->allow_extra_args(false);
    command->add_option("--without", given.diff.same.without, "Beginning of the names of calls to leave out")
        ->allow_extra_args(false);
    return command;
}

CLI::App *add_summary(CLI::App &app, Arguments &given)
{
    CLI::App *command = app.add_subcommand("summary", "Count and time the calls of a trace");
    command->add_option("trace", given.trace, "File of the trace; - is the standard input")->required();
    command->add_option("--sort", given.order, "What comes first")
        ->check(CLI::IsMember({"count", "failed", "total", "longest", "name", "first"}))
        ->capture_default_str();
    command->add_flag("--json", given.json, "As JSON");
    return command;
}

} // namespace

int trace_command(int argc, char **argv)
{
    CLI::App app{"Call traces: count, compare, draw on a time line"};
    app.name("vboard trace");
    app.require_subcommand(1);
    Arguments given;
    CLI::App *timeline_parser = add_timeline(app, given);
    CLI::App *diff_parser = add_diff(app, given);
    add_summary(app, given);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp &help) {
        return app.exit(help);
    } catch (const CLI::ParseError &error) {
        fprintf(stderr, "vboard trace: %s\n", error.what());
        return kTrouble;
    }
    try {
        if (timeline_parser->parsed()) return timeline(given, *timeline_parser);
        return diff_parser->parsed() ? diff(given) : summary(given);
    } catch (const std::exception &error) {
        fprintf(stderr, "vboard trace: %s\n", error.what());
        return kTrouble;
    }
}
