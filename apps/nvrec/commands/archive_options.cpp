/* archive_options.cpp - see archive_options.h. */
#include "commands/archive_options.h"

#include <cstdio>

#include <CLI/CLI.hpp>

#include "archive/directory_lock.h"
#include "archive/time_of_day.h"
#include "commands/command.h"
#include "console/exit_code.h"

namespace nvrec
{

std::string file_state(const SegmentRow &row, const std::string &directory)
{
    if (row.finished) return {};
    return is_recorded_into(directory) ? "being written"
                                       : "its end is torn, until a recorder has cut it back";
}

int complain(int exit_code, const std::string &line)
{
    std::fprintf(stderr, "nvrec: %s\n", line.c_str());
    return exit_code;
}

std::string directory_problem(const std::string &directory)
{
    return directory.empty() ? "it is empty" : "";
}

void add_archive_options(CLI::App &command, ArchiveOptions &options, bool one_camera)
{
    command.add_option("--dir", options.directory, "Where the recordings are")
        ->required()
        ->check(directory_problem);
    auto *camera = command.add_option("--camera", options.camera,
                                      one_camera ? "The camera: its name, or its channel from 0"
                                                 : "One camera: its name, or its channel from 0");
    if (one_camera) camera->required();
}

void add_stream_option(CLI::App &command, ArchiveOptions &options)
{
    command.add_option("--stream", options.stream, "main, or network: the second, smaller stream")
        ->check(CLI::IsMember(std::vector<std::string>{"main", "network"}))
        ->capture_default_str();
}

void add_span_options(CLI::App &command, ArchiveOptions &options, bool required)
{
    auto *from = command.add_option("--from", options.from, "From this time on")->allow_extra_args(false);
    auto *to = command.add_option("--to", options.to, "Until this time; +10m counts from --from")
                   ->allow_extra_args(false);
    if (!required) return;
    from->required();
    to->required();
}

void add_json_option(CLI::App &command, ArchiveOptions &options)
{
    command.add_flag("--json", options.json, "Write JSON");
}

std::optional<int64_t> time_given(const char *option, const std::string &text, std::optional<int64_t> from_us)
{
    std::string problem;
    const auto time = read_time(text, wall_now_us(), &problem, from_us);
    if (!time) complain(kExitUsage, std::string(option) + " " + problem);
    return time;
}

int open_archive_for(const ArchiveOptions &options, Archive *archive, std::vector<CameraRow> *cameras)
{
    std::string problem = open_archive(options.directory, archive);
    for (const std::string &note : archive->notes)
        complain(kExitDone, note);
    if (!problem.empty()) return complain(kExitInputFailed, problem);
    *cameras = cameras_named(archive->index, options.camera, &problem);
    if (!cameras->empty()) return kExitDone;
    return complain(options.camera.empty() ? kExitInputFailed : kExitUsage, problem);
}

int read_span(const ArchiveOptions &options, TimeSpan *span)
{
    *span = {INT64_MIN, INT64_MAX};
    if (!options.from.empty()) {
        const auto from = time_given("--from", options.from);
        if (!from) return kExitUsage;
        span->from_us = *from;
    }
    if (!options.to.empty()) {
        const auto counted_from = options.from.empty() ? std::nullopt : std::optional(span->from_us);
        const auto to = time_given("--to", options.to, counted_from);
        if (!to) return kExitUsage;
        span->to_us = *to;
    }
    if (span->to_us > span->from_us) return kExitDone;
    return complain(kExitUsage, "--to " + options.to + " is not after --from " + options.from);
}

} // namespace nvrec
