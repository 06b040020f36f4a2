/* overlay_options.h - the overlay's part of a command line. */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "screen/overlay.h"

namespace CLI
{
class App;
} // namespace CLI

namespace nvrec
{

struct CameraSource;

/** Give a subcommand the overlay's options; they are filled when it is parsed. */
std::shared_ptr<OverlayOptions> add_overlay_options(CLI::App &command);

/**
 * Call the cameras as --name says: they themselves know from then on. @return false = one of the names is
 * for a channel without a camera, which has been said.
 */
bool apply_names(OverlayOptions *options, std::vector<CameraSource> *cameras);

/** "--language", the environment's unless it is given. */
void add_language_option(CLI::App &command, Language &language, const std::string &help);

/** The language that the environment asks for, its variables taken in the order of the C library. */
Language host_language();

} // namespace nvrec
