/* wall_command.cpp - "nvrec wall", and the wall's options for whoever else shows one. */
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "commands/module_options.h"
#include "commands/overlay_options.h"
#include "commands/screen_options.h"
#include "commands/source_options.h"
#include "commands/wall_options.h"
#include "controls/controls.h"
#include "play/snapshot.h"
#include "play/zoom.h"
#include "record/listen.h"

namespace nvrec
{
namespace
{

/* What looks closer at one camera. */
struct CloserLook {
    ZoomOptions zoom;
    std::string snapshot_dir = "out";
};

using Modules = std::vector<std::unique_ptr<Module>>;

int run_wall(const WallOptions &options, const ControlOptions &controls, const OverlayOptions &overlay,
             const CloserLook &closer, const ListenOptions &listen, Modules modules)
{
    Wall wall(options);
    for (std::unique_ptr<Module> &module : modules)
        wall.add(std::move(module));
    if (listen.channel >= 0) wall.add(std::make_unique<Listener>(listen));
    add_controls(wall, controls);
    wall.add(std::make_unique<Overlay>(overlay));
    wall.add(std::make_unique<Snapshots>(closer.snapshot_dir));
    wall.add(std::make_unique<Zoom>(closer.zoom)); /* last: it wants the arrow keys while it zooms */
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
    add_layout_option(*wall, options->layout, "How the screen is divided; auto = the smallest fitting grid");
    add_screen_options(*wall, *options);
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
    const auto sources = add_source_options(*wall, options->feed);
    wall->add_option("--json", options->json_path, "Write the closing table as JSON too");

    auto controls = std::make_shared<ControlOptions>();
    add_control_options(*wall, *controls);
    const auto overlay = add_overlay_options(*wall);
    auto closer = std::make_shared<CloserLook>();
    add_zoom_options(*wall, closer->zoom);
    wall->add_option("--snapshot-dir", closer->snapshot_dir, "Where the snapshot key's pictures go")
        ->capture_default_str();
    auto listen = std::make_shared<ListenOptions>();
    add_listen_options(*wall, *listen);

    return {options, controls, overlay, [=](Modules modules) {
                if (options->inputs.size() > most_inputs) {
                    std::fprintf(stderr, "nvrec: %zu inputs; it takes at most %zu\n", options->inputs.size(),
                                 most_inputs);
                    return static_cast<int>(kExitUsage);
                }
                if (listen->channel >= static_cast<int>(options->inputs.size())) {
                    std::fprintf(stderr, "nvrec: --listen %d: channels count from 0\n", listen->channel);
                    return static_cast<int>(kExitUsage);
                }
                if (!apply_source_options(*sources, &options->inputs) ||
                    !apply_names(overlay.get(), &options->inputs) || !aspects_fit(*options))
                    return static_cast<int>(kExitUsage);
                options->wait_for_all = !closer->zoom.rect.empty();
                if (listen->channel >= 0) options->feed.sound_channels |= 1u << listen->channel;
                return run_wall(*options, *controls, *overlay, *closer, *listen, std::move(modules));
            }};
}

Command wall_command(CLI::App &app)
{
    CLI::App *wall =
        app.add_subcommand("wall", "Show 1 to " + std::to_string(kMostInputs) + " cameras on one screen");
    const WallCommandLine line = add_wall_options(*wall, kMostInputs);
    return {wall, [line] { return line.run({}); }};
}

} // namespace nvrec
