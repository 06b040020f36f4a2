/* event_command.cpp - "nvrec event": tell a running recorder that something happened at a camera. */
#include <cstdio>
#include <memory>
#include <utility>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "commands/control_request.h"
#include "console/utf8.h"
#include "controls/control_requests.h"

namespace nvrec
{
namespace
{

struct EventOptions {
    std::string camera, text, socket;
};

int note_event(const EventOptions &options)
{
    for (const auto &[what, word] : {std::pair("camera", options.camera), std::pair("text", options.text)}) {
        if (is_utf8(word)) continue;
        std::fprintf(stderr, "nvrec: the %s is not in UTF-8: %s\n", what, valid_utf8(word).c_str());
        return kExitUsage;
    }
    const std::string request = "event " + request_word(options.camera) +
                                (options.text.empty() ? "" : " " + request_word(options.text));
    if (request.size() > kLongestRequest_bytes) {
        std::fprintf(stderr, "nvrec: the camera and the text together are too long by %zu bytes\n",
                     request.size() - kLongestRequest_bytes);
        return kExitUsage;
    }
    return make_request(options.socket, request);
}

} // namespace

Command event_command(CLI::App &app)
{
    auto options = std::make_shared<EventOptions>();
    CLI::App *event =
        app.add_subcommand("event", "Tell a running recorder that something happened at a camera");
    event->footer(
        "A camera that is recorded by events is recorded then. Exit status: 0 done, 2 command line, 4 there\n"
        "is no recorder, it has no such camera, or it records nothing.");
    event->add_option("camera", options->camera, "Its name, or its channel's number from 0")->required();
    event->add_option("text", options->text, "What happened");
    event->add_option("--control", options->socket, "Socket of the recorder")
        ->default_str(default_control_path());
    return {event, [options] { return note_event(*options); }};
}

} // namespace nvrec
