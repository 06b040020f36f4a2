/* screen_options.cpp - see screen_options.h. */
#include "commands/screen_options.h"

#include <algorithm>
#include <cstdio>
#include <map>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "wall/pictures.h"

namespace nvrec
{
namespace
{

const std::map<std::string, WindowMode> kWindowModees = {
    {"auto", WindowMode::kAuto},
    {"on", WindowMode::kOn},
    {"off", WindowMode::kOff},
};

const std::map<std::string, LogLevel> kLogLevels = {
    {"error", LogLevel::kError},
    {"warning", LogLevel::kWarning},
    {"info", LogLevel::kInfo},
    {"debug", LogLevel::kDebug},
};

} // namespace

CLI::Validator from_zero_on()
{
    return CLI::Validator(
        [](const std::string &text) -> std::string {
            double value = 0;
            if (CLI::detail::lexical_cast(text, value) && value >= 0 && value <= kLongest_s) return {};
            return text + " is not a number of 0 or more, or far too large";
        },
        "NUMBER>=0");
}

void add_screen_options(CLI::App &command, WallOptions &options)
{
    command.add_option("-o,--output", options.output, "Size of the screen")
        ->check(CLI::IsMember(output_mode_names()))
        ->capture_default_str();
    command
        .add_option(
            "-p,--picture", options.pictures,
            "Write a picture of the wall, PNG or JPEG by its name: FILE (at the end) or FILE,SECONDS; "
            "may be repeated")
        ->take_all()
        ->allow_extra_args(false)
        ->check(picture_problem);
    command
        .add_option("-d,--duration", options.duration_s, "End after so many seconds; 0 = when the inputs end")
        ->check(from_zero_on())
        ->capture_default_str();
    command
        .add_option_function<std::vector<std::string>>(
            "--aspect",
            [&options](const std::vector<std::string> &texts) {
                for (const std::string &text : texts)
                    add_aspect(options.aspect, text);
            },
            "How pictures of another shape than their pane are shown: fit (whole, with bars) or stretch; "
            "CH=fit or CH=stretch for one channel; may be repeated")
        ->take_all()
        ->allow_extra_args(false)
        ->check([](const std::string &text) {
            AspectOptions ignored;
            return add_aspect(ignored, text) ? std::string()
                                             : "not fit, stretch, CH=fit or CH=stretch: " + text;
        })
        ->default_str("fit");
    command.add_option("--window", options.window, "Open a window: auto (when there is a screen), on, off")
        ->transform(CLI::CheckedTransformer(kWindowModees, CLI::ignore_case))
        ->default_str("auto");
    add_log_options(command, options);
}

void add_log_options(CLI::App &command, WallOptions &options)
{
    constexpr int kMegabyte = 1'000'000;
    command
        .add_option("--log", options.log_path,
                    "Where the library's log goes, and what nvrec says beside it; - = standard output")
        ->capture_default_str();
    command.add_option("--log-level", options.log.level, "What nvrec says: error, warning, info, debug")
        ->transform(CLI::CheckedTransformer(kLogLevels, CLI::ignore_case))
        ->default_str("info");
    command
        .add_option_function<int>(
            "--log-size",
            [&options](int megabytes) { options.log.size_bytes = int64_t{megabytes} * kMegabyte; },
            "Megabytes after which the next log file is begun; 0 = never")
        ->check(CLI::Range(0, 1'000'000))
        ->default_str("10");
    command.add_option("--log-keep", options.log.keep, "Log files that are kept of those before")
        ->check(CLI::Range(0, 100))
        ->capture_default_str();
    command.add_flag("-q,--quiet", options.log.quiet, "Print warnings and errors alone");
}

void add_layout_option(CLI::App &command, std::string &layout, const std::string &meaning)
{
    std::vector<std::string> layouts = layout_names();
    layouts.insert(layouts.begin(), "auto");
    command.add_option("-l,--layout", layout, meaning)->check(CLI::IsMember(layouts))->capture_default_str();
}

bool aspects_fit(const WallOptions &options)
{
    const int channels = std::max(static_cast<int>(options.inputs.size()), options.channels);
    const auto &given = options.aspect.given;
    if (given.empty() || given.rbegin()->first < channels) return true;
    std::fprintf(stderr, "nvrec: --aspect for channel %d: channels that are shown are 0 to %d\n",
                 given.rbegin()->first, channels - 1);
    return false;
}

bool count_fits(size_t inputs, const char *what)
{
    if (inputs <= kMostInputs) return true;
    std::fprintf(stderr, "nvrec: %zu %s; a wall takes at most %zu\n", inputs, what, kMostInputs);
    return false;
}

} // namespace nvrec
