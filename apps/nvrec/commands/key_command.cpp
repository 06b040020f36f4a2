/* key_command.cpp - "nvrec key": press a button of a running recorder. */
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "controls/control_socket.h"
#include "controls/key_names.h"

namespace nvrec
{
namespace
{

struct KeyOptions {
    std::string name;
    bool panel = false;
    std::string socket;
};

int press_key(const KeyOptions &options)
{
    const std::string path = options.socket.empty() ? default_control_path() : options.socket;
    const auto reply = ask_recorder(path, "key " + options.name + (options.panel ? " panel" : " remote"));
    if (reply && reply->ok) return kExitDone;
    std::fprintf(stderr, "nvrec: %s\n",
                 reply ? reply->text.c_str() : ("no recorder listens at " + path).c_str());
    return kExitBoardFailed;
}

std::vector<std::string> key_names()
{
    std::vector<std::string> names;
    for (const Button &button : buttons()) {
        if (names.empty() || names.back() != button.name) names.emplace_back(button.name);
    }
    return names;
}

} // namespace

Command key_command(CLI::App &app)
{
    auto options = std::make_shared<KeyOptions>();
    CLI::App *key = app.add_subcommand("key", "Press a key of a running recorder");
    key->footer(
        "The key goes through the board, as one of the remote control or the front panel would.\n"
        "Exit status: 0 the recorder has acted on it, 2 command line, 4 there is no recorder, or the\n"
        "key did not reach it.");
    key->add_option("name", options->name, "Which one")
        ->required()
        ->check(CLI::IsMember(key_names(), CLI::ignore_case));
    key->add_flag("--panel", options->panel, "A key of the front panel instead of the remote control");
    key->add_option("--control", options->socket, "Socket of the recorder")
        ->default_str(default_control_path());
    return {key, [options] { return press_key(*options); }};
}

} // namespace nvrec
