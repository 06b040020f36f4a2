/* main.cpp - nvrec, the reference recorder: one subcommand a run. */
#include <csignal>
#include <cstdio>
#include <exception>
#include <vector>

extern "C" {
#include <libavutil/log.h>
}

#include <CLI/CLI.hpp>

#include "commands/command.h"

namespace
{

/* Parse, and run the subcommand that was named. */
int run(int argc, char **argv)
{
    CLI::App app{"nvrec - a network video recorder on nvrhal"};
    app.require_subcommand(1);
    app.set_help_all_flag("--help-all", "Help of every subcommand");

    const std::vector<nvrec::Command> commands = {nvrec::wall_command(app), nvrec::record_command(app),
                                                  nvrec::play_command(app), nvrec::snapshot_command(app),
                                                  nvrec::key_command(app),  nvrec::board_command(app)};
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? nvrec::kExitDone : nvrec::kExitUsage;
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
        std::fprintf(stderr, "nvrec: %s\n", error.what());
        return nvrec::kExitBoardFailed;
    }
}
