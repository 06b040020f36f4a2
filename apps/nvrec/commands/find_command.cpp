/* find_command.cpp - "nvrec find": the file, and the place in it, where a time is recorded. */
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "archive/time_of_day.h"
#include "commands/archive_options.h"
#include "commands/command.h"
#include "console/text.h"
#include "wall/report.h"

namespace nvrec
{
namespace
{

constexpr double kPlaceSecond_us = 1e6;

std::string found_line(const CameraRow &camera, const Place &place, const std::string &directory)
{
    const std::string name = camera.shown();
    if (place.segment) {
        const std::string state = file_state(*place.segment, directory);
        return text("%-12s %s  at %s (%.3f s)%s", name.c_str(), place.segment->path.c_str(),
                    duration_text(place.offset_us).c_str(),
                    static_cast<double>(place.offset_us) / kPlaceSecond_us,
                    (state.empty() ? state : ", " + state).c_str());
    }
    std::string line = text("%-12s not recorded", name.c_str());
    if (place.gap) line += " (" + place.gap->why + ")";
    if (place.before) line += "; until " + time_text(place.before->to_us);
    if (place.after) line += "; again from " + time_text(place.after->from_us);
    return line;
}

std::string found_json(const CameraRow &camera, const ArchiveOptions &options, int64_t at_us,
                       const Place &place)
{
    std::string json =
        "{\"camera\": " + json_string(camera.shown()) + text(", \"channel\": %d", camera.channel) +
        ", \"stream\": " + json_string(options.stream) + ", \"at\": " + json_string(iso_time(at_us)) +
        text(", \"recorded\": %s", place.segment ? "true" : "false");
    if (place.segment) {
        json += ", \"file\": " + json_string(place.segment->path) +
                text(", \"offset_s\": %.6f", static_cast<double>(place.offset_us) / kPlaceSecond_us) +
                ", \"from\": " + json_string(iso_time(place.segment->from_us)) +
                ", \"to\": " + json_string(iso_time(place.segment->to_us)) +
                text(", \"finished\": %s", place.segment->finished ? "true" : "false");
    }
    if (place.gap) json += ", \"gap\": " + json_string(place.gap->why);
    if (place.before) json += ", \"until\": " + json_string(iso_time(place.before->to_us));
    if (place.after) json += ", \"again_from\": " + json_string(iso_time(place.after->from_us));
    return json + "}";
}

int run_find(const ArchiveOptions &options)
{
    const auto at_us = time_given("--at", options.at);
    if (!at_us) return kExitUsage;
    Archive archive;
    std::vector<CameraRow> cameras;
    if (const int code = open_archive_for(options, &archive, &cameras); code != kExitDone) return code;
    bool found = false;
    std::string json;
    if (!options.json) std::printf("%s\n", time_text(*at_us).c_str());
    for (const CameraRow &camera : cameras) {
        const IndexQuery query = {{camera.id}, options.stream, {}};
        const Place place = find_place(archive.index, query, *at_us);
        found |= place.segment.has_value();
        if (options.json)
            json += (json.empty() ? "[\n  " : ",\n  ") + found_json(camera, options, *at_us, place);
        else
            std::printf("%s\n", found_line(camera, place, options.directory).c_str());
    }
    if (options.json) std::printf("%s\n]\n", json.c_str());
    return found ? kExitDone : kExitInputFailed;
}

} // namespace

Command find_command(CLI::App &app)
{
    auto options = std::make_shared<ArchiveOptions>();
    CLI::App *find = app.add_subcommand("find", "Say in which file, and where in it, a time is recorded");
    find->footer(
        "Times: 2026-11-21T14:05 (with or without an offset), 14:05:30, \"yesterday 14:05\", -10m, now.\n"
        "Of an hour that occurs twice the first is meant; an offset picks. Exit status: 0 found, 2 command\n"
        "line, 3 not recorded, or there are no recordings.");
    add_archive_options(*find, *options, false);
    find->add_option("--at", options->at, "The time")->required();
    add_stream_option(*find, *options);
    add_json_option(*find, *options);
    return {find, [options] { return run_find(*options); }};
}

} // namespace nvrec
