/* command.h - "vboard test": play scenarios on fresh boards, and tell which hold. */
#ifndef VBOARD_APP_SCENARIO_COMMAND_H
#define VBOARD_APP_SCENARIO_COMMAND_H

#include "scenario/session.h"

namespace vboard_app
{

/* argv[0] is "test". */
int test_command(int argc, char **argv);

namespace scenario
{

/* As test_command, on boards that `launcher` gives for a program and its arguments. */
using LauncherFor = std::function<Launcher(std::vector<std::string> program)>;
int run_tests(int argc, char **argv, const LauncherFor &launcher_for);

} // namespace scenario
} // namespace vboard_app

#endif
