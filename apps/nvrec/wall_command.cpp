/* wall_command.cpp - "nvrec wall", and the wall's options for whoever else shows one. */
#include <cstdio>
#include <map>
#include <memory>

#include "command.h"
#include "furniture_options.h"
#include "wall_options.h"

namespace nvrec
{
namespace
{

constexpr size_t kMostShown = 16;

const std::map<std::string, WindowWish> kWindowWishes = {
    {"auto", WindowWish::kAuto},
    {"on", WindowWish::kOn},
    {"off", WindowWish::kOff},
};

using Companions = std::vector<std::unique_ptr<Companion>>;

int run_wall(const WallOptions &options, const FurnitureOptions &furniture, Companions companions)
{
    Wall wall(options);
    for (std::unique_ptr<Companion> &companion : companions)
        wall.add(std::move(companion));
    wall.add(std::make_unique<Furniture>(furniture));
    return wall.run();
}

} // namespace

WallCommandLine add_wall_options(CLI::App &command, size_t most_inputs)
{
    auto options = std::make_shared<WallOptions>();
    CLI::App *wall = &command;
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
    const auto furniture = add_furniture_options(*wall);

    return {options, [=](Companions companions) {
                if (options->inputs.size() > most_inputs) {
                    std::fprintf(stderr, "nvrec: %zu inputs; it takes at most %zu\n", options->inputs.size(),
                                 most_inputs);
                    return static_cast<int>(kExitUsage);
                }
                return run_wall(*options, *furniture, std::move(companions));
            }};
}

Command wall_command(CLI::App &app)
{
    CLI::App *wall = app.add_subcommand("wall", "Show 1 to 16 cameras on one screen");
    const WallCommandLine line = add_wall_options(*wall, kMostShown);
    return {wall, [line] { return line.run({}); }};
}

} // namespace nvrec
