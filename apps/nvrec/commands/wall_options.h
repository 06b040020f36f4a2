/* wall_options.h - the wall's part of a command line, for every subcommand that shows one. */
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "wall/wall.h"

namespace CLI
{
class App;
} // namespace CLI

namespace nvrec
{

struct ControlOptions;
struct OverlayOptions;

/** The options, filled when the subcommand is parsed, and what then runs the wall. */
struct WallCommandLine {
    std::shared_ptr<WallOptions> options;
    std::shared_ptr<ControlOptions> controls;
    std::shared_ptr<OverlayOptions> overlay;

    /** @param modules  run beside the wall, before those that the options ask for */
    std::function<int(std::vector<std::unique_ptr<Module>> modules)> run;
};

/** Give a subcommand the wall's options. @param most_inputs  more of them are refused */
WallCommandLine add_wall_options(CLI::App &command, size_t most_inputs);

} // namespace nvrec
