/* module_options.cpp - see module_options.h. */
#include "commands/module_options.h"

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "controls/control_socket.h"
#include "controls/controls.h"
#include "play/zoom.h"
#include "record/listen.h"

namespace nvrec
{
namespace
{

constexpr int kLongestWatchdog_s = 3600;

} // namespace

void add_control_options(CLI::App &command, ControlOptions &options)
{
    command
        .add_option("--control", options.socket,
                    "Socket on which \"nvrec key\" and \"nvrec board\" reach this recorder; none = no socket")
        ->default_str(default_control_path());
    command
        .add_option("--watchdog", options.watchdog_s,
                    "Seconds after which the board resets when the recorder hangs; 0 = never")
        ->check(CLI::Range(0, kLongestWatchdog_s))
        ->capture_default_str();
    command.add_option("--hung-after", options.hung_after_s, "A thread that is so many seconds late hangs")
        ->check(CLI::Range(0.5, 3600.0))
        ->capture_default_str();
}

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

void add_listen_options(CLI::App &command, ListenOptions &options)
{
    auto *listen = command.add_option("--listen", options.channel, "Play the sound of this channel")
                       ->check(from_zero_on());
    command.add_option("--listen-wav", options.wav_path, "Write it to a WAV file instead of the sound card")
        ->needs(listen);
}

} // namespace nvrec
