/* reload_command.cpp - "nvrec reload": let a running recorder take up its changed configuration. */
#include <memory>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "commands/control_request.h"
#include "controls/control_socket.h"

namespace nvrec
{

Command reload_command(CLI::App &app)
{
    auto socket = std::make_shared<std::string>();
    CLI::App *reload =
        app.add_subcommand("reload", "Let a running recorder take up its changed configuration");
    reload->footer(
        "SIGHUP does the same. What was taken up is told, and what needs a restart. Exit status: 0 done, 2\n"
        "command line, 4 there is no recorder, or the configuration has a fault and nothing was taken up.");
    reload->add_option("--control", *socket, "Socket of the recorder")->default_str(default_control_path());
    return {reload, [socket] { return make_request(*socket, "reload"); }};
}

} // namespace nvrec
