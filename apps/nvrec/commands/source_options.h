/* source_options.h - the command line's options for where cameras' pictures come from. */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "wall/wall.h"

namespace CLI
{
class App;
} // namespace CLI

namespace nvrec
{

struct SourceOptions {
    Transport transport = Transport::kAuto;
    std::vector<std::string> subs; /* CH=ADDRESS */
};

/** --transport, --sub and --link. */
std::shared_ptr<SourceOptions> add_source_options(CLI::App &command, FeedOptions &feed);

/** Put what was asked for into the cameras. @return false = it makes no sense, which is said. */
bool apply_source_options(const SourceOptions &options, std::vector<CameraSource> *cameras);

} // namespace nvrec
