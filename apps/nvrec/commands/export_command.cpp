/* export_command.cpp - "nvrec export": a span of a camera's recordings as one file. */
#include <cstdio>
#include <filesystem>
#include <memory>

#include <CLI/CLI.hpp>

#include "archive/clip.h"
#include "archive/intake.h"
#include "archive/time_of_day.h"
#include "commands/archive_options.h"
#include "commands/command.h"

namespace nvrec
{
namespace
{

struct ExportOptions {
    ArchiveOptions archive;
    std::string path;
    bool exact = false;
    bool overwrite = false;
};

/* Whether the clip would stand where a recording of the directory stands, or may one day. */
bool is_a_recording(const ExportOptions &options)
{
    std::error_code ignored;
    const auto clip = std::filesystem::weakly_canonical(options.path, ignored);
    return recording_name(clip.filename().string()) &&
           std::filesystem::equivalent(clip.parent_path(), options.archive.directory, ignored);
}

int run_export(const ExportOptions &options)
{
    const std::string wrong = clip_path_problem(options.path, options.exact);
    if (!wrong.empty()) return complain(kExitUsage, wrong);
    TimeSpan span;
    if (const int code = read_span(options.archive, &span); code != kExitDone) return code;
    if (is_a_recording(options))
        return complain(kExitOutputFailed,
                        options.path + " is the place of a recording, which no clip replaces");
    if (!options.overwrite && std::filesystem::exists(options.path))
        return complain(kExitOutputFailed, options.path + " is there already; --overwrite replaces it");
    Archive archive;
    std::vector<CameraRow> cameras;
    if (const int code = open_archive_for(options.archive, &archive, &cameras); code != kExitDone)
        return code;
    const auto segments = archive.index.segments({numbers_of(cameras), options.archive.stream, span});
    const ClipResult result = write_clip(segments, {options.path, span, options.exact, options.overwrite});
    for (const std::string &line : result.unreadable)
        complain(kExitDone, "left out: " + line);
    for (const ClipFile &file : result.files)
        std::printf("%s: %s from %s to %s, %lld pictures\n", file.path.c_str(),
                    cameras.front().shown().c_str(), time_text(file.span.from_us).c_str(),
                    time_text(file.span.to_us).c_str(), static_cast<long long>(file.pictures));
    for (const TimeSpan &gap : result.gaps)
        std::printf("not recorded: from %s to %s (%s)\n", time_text(gap.from_us).c_str(),
                    time_text(gap.to_us).c_str(), duration_text(gap.to_us - gap.from_us).c_str());
    if (result.problem.empty()) return result.unreadable.empty() ? kExitDone : kExitInputFailed;
    return complain(result.write_failed ? kExitOutputFailed : kExitInputFailed, result.problem);
}

} // namespace

Command export_command(CLI::App &app)
{
    auto options = std::make_shared<ExportOptions>();
    CLI::App *command = app.add_subcommand("export", "Write a time of a camera's recordings into one file");
    command->footer(
        "Nothing is encoded: the clip begins at the key frame before --from and ends before the one after\n"
        "--to; with --exact an edit list tells players to show that time alone. Where nothing was recorded\n"
        "the last picture stands, and a line says so. Times as of find. Exit status: 0 written, 2 command\n"
        "line, 3 nothing recorded or a recording could not be read, 5 the clip could not be written.");
    add_archive_options(*command, options->archive, true);
    add_span_options(*command, options->archive, true);
    command->add_option("clip", options->path, "The file to write: .mp4, .mov or .mkv")->required();
    command->add_flag("--exact", options->exact, "Show exactly that time, by an edit list (.mp4, .mov)");
    command->add_flag("--overwrite", options->overwrite, "Replace a file that is there");
    add_stream_option(*command, options->archive);
    return {command, [options] { return run_export(*options); }};
}

} // namespace nvrec
