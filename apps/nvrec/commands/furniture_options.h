/* furniture_options.h - the furniture's part of a command line. */
#pragma once

#include <memory>

#include "screen/furniture.h"

namespace CLI
{
class App;
} // namespace CLI

namespace nvrec
{

/** Give a subcommand the furniture's options; they are filled when it is parsed. */
std::shared_ptr<FurnitureOptions> add_furniture_options(CLI::App &command);

} // namespace nvrec
