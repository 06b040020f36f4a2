/* status_command.cpp - "nvrec status": how a running recorder stands. */
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "commands/control_request.h"
#include "controls/control_socket.h"

namespace nvrec
{
namespace
{

struct StatusOptions {
    bool json = false;
    std::string socket;
};

} // namespace

int make_request(const std::string &socket, const std::string &request)
{
    const std::string path = socket.empty() ? default_control_path() : socket;
    const auto reply = ask_recorder(path, request);
    if (reply && reply->ok) {
        std::fputs(reply->text.c_str(), stdout);
        return kExitDone;
    }
    std::fprintf(stderr, "nvrec: %s\n",
                 reply ? reply->text.c_str() : ("no recorder listens at " + path).c_str());
    return kExitBoardFailed;
}

Command status_command(CLI::App &app)
{
    auto options = std::make_shared<StatusOptions>();
    CLI::App *status = app.add_subcommand("status", "Show how a running recorder stands");
    status->footer("Exit status: 0 done, 2 command line, 4 there is no recorder, or it did not answer.");
    status->add_flag("--json", options->json, "As JSON");
    status->add_option("--control", options->socket, "Socket of the recorder")
        ->default_str(default_control_path());
    return {status,
            [options] { return make_request(options->socket, options->json ? "status json" : "status"); }};
}

} // namespace nvrec
