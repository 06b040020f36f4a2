/* screen_options.h - the options that every subcommand with a screen has. */
#pragma once

#include "nvrhal/limits.h"
#include "wall/wall.h"

namespace CLI
{
class App;
} // namespace CLI

namespace nvrec
{

constexpr size_t kMostInputs = NVRHAL_MAX_CAMERAS;

/** Output, pictures, duration, window and log. `options` lives as long as the parser. */
void add_screen_options(CLI::App &command, WallOptions &options);

/** The log and what is printed; part of the above. */
void add_log_options(CLI::App &command, WallOptions &options);

/** "--layout", with "auto" in front. */
void add_layout_option(CLI::App &command, std::string &layout, const std::string &meaning);

/** Whether every channel that --aspect names has a camera, or shows what a module plays; complains. */
bool aspects_fit(const WallOptions &options);

/** Not more inputs than a wall takes; complains. */
bool count_fits(size_t inputs, const char *what);

} // namespace nvrec
