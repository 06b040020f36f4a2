/* wall_command.cpp - "nvrec wall": the command line of the live wall. */
#include <cstdio>
#include <map>
#include <memory>

#include "command.h"
#include "wall.h"

namespace nvrec
{
namespace
{

constexpr size_t kMostInputs = 16;

const std::map<std::string, WindowWish> kWindowWishes = {
    {"auto", WindowWish::kAuto},
    {"on", WindowWish::kOn},
    {"off", WindowWish::kOff},
};

int run_wall(const WallOptions &options)
{
    if (options.inputs.size() > kMostInputs) {
        std::fprintf(stderr, "nvrec: %zu inputs; a wall takes at most %zu\n", options.inputs.size(),
                     kMostInputs);
        return kExitUsage;
    }
    return Wall(options).run();
}

} // namespace

Command wall_command(CLI::App &app)
{
    auto options = std::make_shared<WallOptions>();
    CLI::App *wall = app.add_subcommand("wall", "Show 1 to 16 cameras on one screen");
    wall->footer(
        "Inputs are files (.h264, .h265, .mp4, .mkv, ...) or rtsp:// addresses. Channel numbers count\n"
        "from 0 in the order of the inputs. Exit status: 0 done, 2 command line, 3 an input failed,\n"
        "4 the library or the board, 5 a file could not be written.");

    wall->add_option("inputs", options->inputs, "Cameras, one channel each")->required();
    std::vector<std::string> layouts = layout_names();
    layouts.insert(layouts.begin(), "auto");
    wall->add_option("-l,--layout", options->layout,
                     "How the screen is divided; auto = the smallest fitting grid")
        ->check(CLI::IsMember(layouts))
        ->capture_default_str();
    wall->add_option("-o,--output", options->output, "Size of the screen")
        ->check(CLI::IsMember(output_mode_names()))
        ->capture_default_str();
    wall->add_option("-p,--picture", options->pictures,
                     "Write a PNG picture of the wall: FILE (at the end) or FILE,SECONDS; may be repeated")
        ->take_all()
        ->allow_extra_args(false);
    wall->add_option("-d,--duration", options->duration_s,
                     "End after so many seconds; 0 = when the inputs end")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    wall->add_option("-n,--frames", options->feed.frames,
                     "End after so many frames of every camera; 0 = no limit")
        ->capture_default_str();
    wall->add_flag("--loop", options->feed.loop, "Begin files again at their end");
    auto *speed =
        wall->add_option("--speed", options->feed.speed, "Feed files so many times their frame rate")
            ->check(CLI::Range(0.01, 100.0))
            ->capture_default_str();
    wall->add_flag("--as-fast-as-can", options->feed.as_fast_as_can,
                   "Feed files as fast as the decoders take them")
        ->excludes(speed);
    wall->add_option("--link-quality", options->feed.link_quality,
                     "Quality of the camera links, 1 to 100, which bounds the backlog; 0 = not measured")
        ->check(CLI::Range(0, 100))
        ->capture_default_str();
    wall->add_option("--window", options->window, "Open a window: auto (when there is a screen), on, off")
        ->transform(CLI::CheckedTransformer(kWindowWishes, CLI::ignore_case))
        ->default_str("auto");
    wall->add_option("--log", options->log_path, "Where the library's log goes; - = standard output")
        ->capture_default_str();
    wall->add_option("--json", options->json_path, "Write the closing table as JSON too");

    return {wall, [options] { return run_wall(*options); }};
}

} // namespace nvrec
