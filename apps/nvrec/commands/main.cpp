/* main.cpp - nvrec, the reference recorder: one subcommand a run. */
#include <csignal>
#include <cstdio>
#include <exception>
#include <sstream>
#include <string>
#include <vector>

extern "C" {
#include <libavutil/log.h>
}

#include <CLI/CLI.hpp>

#include "camera/address.h"
#include "commands/command.h"
#include "controls/versions.h"

namespace
{

/* What is missing may be so because of a word that is wrong: that one is named then. */
int tell_parse_error(const CLI::App &app, const CLI::ParseError &error)
{
    std::ostringstream words, complaints; /* which may repeat an argument */
    std::vector<std::string> unknown;
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError))
        unknown = app.remaining(true);
    const int code = unknown.empty() ? app.exit(error, words, complaints)
                                     : app.exit(CLI::ExtrasError(app.get_name(), unknown), words, complaints);
    std::fputs(words.str().c_str(), stdout);
    std::fputs(nvrec::shown_text(complaints.str()).c_str(), stderr);
    return code == 0 ? nvrec::kExitDone : nvrec::kExitUsage;
}

/* Parse, and run the subcommand that was named. */
int run(int argc, char **argv)
{
    bool blanked = false;
    std::vector<std::string> arguments = nvrec::take_arguments(argc, argv, &blanked);
    if (blanked)
        std::fprintf(stderr, "nvrec: an address on the command line carries a password, which is hidden from "
                             "the list of processes now; it is never there when it comes from the secrets "
                             "file of \"nvrec run\"\n");

    CLI::App app{"nvrec - a network video recorder on nvrhal"};
    app.require_subcommand(1);
    app.set_help_all_flag("--help-all", "Help of every subcommand");

    app.set_version_flag("--version",
                         "nvrec " + nvrec::nvrec_version() + ", libnvrhal " + nvrec::library_version());
    const std::vector<nvrec::Command> commands = {
        nvrec::run_command(app),    nvrec::check_command(app),  nvrec::status_command(app),
        nvrec::event_command(app),  nvrec::reload_command(app), nvrec::wall_command(app),
        nvrec::record_command(app), nvrec::play_command(app),   nvrec::snapshot_command(app),
        nvrec::key_command(app),    nvrec::board_command(app),  nvrec::find_command(app),
        nvrec::list_command(app),   nvrec::export_command(app), nvrec::pin_command(app),
        nvrec::unpin_command(app),
    };
    try {
        app.name(arguments.empty() ? "nvrec" : arguments.front());
        /* The parser takes them from the back. */
        app.parse(
            std::vector<std::string>(arguments.rbegin(), arguments.rend() - (arguments.empty() ? 0 : 1)));
    } catch (const CLI::ParseError &error) {
        return tell_parse_error(app, error);
    }
    for (const nvrec::Command &command : commands) {
        if (command.parser->parsed()) return command.run();
    }
    return nvrec::kExitUsage;
}

} // namespace

int main(int argc, char **argv)
{
    std::signal(SIGPIPE, SIG_IGN); /* a camera or a reader of our output that goes away is no reason to end */
    av_log_set_level(AV_LOG_FATAL); /* nvrec words its own complaints about inputs */
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "nvrec: %s\n", nvrec::shown_text(error.what()).c_str());
        return nvrec::kExitBoardFailed;
    }
}
