/* command.h - what a subcommand of nvrec is. One source file each; main.cpp lists them. */
#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace nvrec
{

/** How nvrec ends. */
enum ExitCode {
    kExitDone = 0,
    kExitUsage = 2,       /* a command line that makes no sense                        */
    kExitInputFailed = 3, /* an input could not be opened or broke; the others ran      */
    kExitBoardFailed = 4, /* the library or the board refused                           */
    kExitOutputFailed = 5 /* a picture, log or report could not be written              */
};

/** A subcommand as the command line parser knows it, and what it does. */
struct Command {
    CLI::App *parser;
    std::function<int()> run;
};

/** Seconds that a user may ask for: what the clocks can count. */
constexpr double kLongest_s = 1e9;

/** A number from 0 to kLongest_s. */
CLI::Validator from_zero_on();

Command wall_command(CLI::App &app);
Command key_command(CLI::App &app);
Command board_command(CLI::App &app);
Command play_command(CLI::App &app);
Command snapshot_command(CLI::App &app);
Command record_command(CLI::App &app);

} // namespace nvrec
