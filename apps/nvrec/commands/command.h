/* command.h - what a subcommand of nvrec is. One source file each; main.cpp lists them. */
#pragma once

#include <functional>
#include <string>

#include "console/exit_code.h"

/* The parser's header is large: only what gives it options includes it. */
namespace CLI
{
class App;
class Validator;
} // namespace CLI

namespace nvrec
{

/** A subcommand as the command line parser knows it, and what it does. */
struct Command {
    CLI::App *parser;
    std::function<int()> run;
};

/** A number from 0 to kLongest_s. */
CLI::Validator from_zero_on();

/** What is wrong with the text behind "--dir"; empty = nothing. */
std::string directory_problem(const std::string &directory);

Command wall_command(CLI::App &app);
Command key_command(CLI::App &app);
Command board_command(CLI::App &app);
Command play_command(CLI::App &app);
Command snapshot_command(CLI::App &app);
Command record_command(CLI::App &app);
Command run_command(CLI::App &app);
Command check_command(CLI::App &app);
Command status_command(CLI::App &app);
Command event_command(CLI::App &app);
Command reload_command(CLI::App &app);
Command find_command(CLI::App &app);
Command list_command(CLI::App &app);
Command export_command(CLI::App &app);
Command pin_command(CLI::App &app);
Command unpin_command(CLI::App &app);

} // namespace nvrec
