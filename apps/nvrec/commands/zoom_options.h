/* zoom_options.h - the zoom's part of a command line. */
#pragma once

#include <CLI/CLI.hpp>

#include "play/zoom.h"

namespace nvrec
{

/** `options` lives as long as the parser. */
void add_zoom_options(CLI::App &command, ZoomOptions &options);

} // namespace nvrec
