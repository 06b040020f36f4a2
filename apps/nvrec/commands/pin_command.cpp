/* pin_command.cpp - "nvrec pin" and "nvrec unpin": keep a time of a camera whatever retention says. */
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "archive/time_of_day.h"
#include "commands/archive_options.h"
#include "commands/command.h"

namespace nvrec
{
namespace
{

int run_pin(const ArchiveOptions &options, bool pin)
{
    TimeSpan span;
    if (const int code = read_span(options, &span); code != kExitDone) return code;
    Archive archive;
    std::vector<CameraRow> cameras;
    if (const int code = open_archive_for(options, &archive, &cameras); code != kExitDone) return code;
    if (archive.in_memory)
        return complain(kExitOutputFailed, options.directory + ": its index cannot be written");
    int touched = 0;
    for (const CameraRow &camera : cameras) {
        if (!pin) {
            touched += archive.index.remove_pins(camera.id, span);
            continue;
        }
        if (archive.index.put_pin(camera.id, span) == 0)
            return complain(kExitOutputFailed, "the index cannot be written: " + archive.index.error());
        std::printf("%s is kept from %s to %s\n", camera.shown().c_str(), time_text(span.from_us).c_str(),
                    time_text(span.to_us).c_str());
    }
    if (pin) return kExitDone;
    if (touched == 0) return complain(kExitInputFailed, options.camera + " has no pin in that time");
    std::printf("%s: no longer kept from %s to %s\n", options.camera.c_str(), time_text(span.from_us).c_str(),
                time_text(span.to_us).c_str());
    return kExitDone;
}

Command command_of(CLI::App &app, const char *name, const char *meaning, bool pin)
{
    auto options = std::make_shared<ArchiveOptions>();
    CLI::App *command = app.add_subcommand(name, meaning);
    command->footer(
        "Times as of find. Files that reach into a pinned time are kept whole. Exit status: 0 done,\n"
        "2 command line, 3 nothing to do it to, 5 the index could not be written.");
    add_archive_options(*command, *options, true);
    add_span_options(*command, *options, true);
    return {command, [options, pin] { return run_pin(*options, pin); }};
}

} // namespace

Command pin_command(CLI::App &app)
{
    return command_of(app, "pin", "Keep recordings of a time, whatever retention says", true);
}

Command unpin_command(CLI::App &app)
{
    return command_of(app, "unpin", "Let retention have recordings of a time again", false);
}

} // namespace nvrec
