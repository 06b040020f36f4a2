/* zoom_options.cpp - see zoom_options.h. */
#include "commands/zoom_options.h"

#include "commands/command.h"

namespace nvrec
{

void add_zoom_options(CLI::App &command, ZoomOptions &options)
{
    auto *rect = command
                     .add_option("--zoom", options.rect,
                                 "Show a part of one picture on the whole screen: X,Y,W,H in its pixels")
                     ->check([](const std::string &text) {
                         return zoom_rect(text) ? std::string() : "not X,Y,W,H: " + text;
                     });
    command.add_option("--zoom-channel", options.channel, "The channel that --zoom means")
        ->needs(rect)
        ->check(from_zero_on())
        ->capture_default_str();
}

} // namespace nvrec
