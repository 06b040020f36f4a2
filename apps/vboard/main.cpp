/* main.cpp - the program vboard: chooses the command. */
#include <cstdio>
#include <cstring>

#include "ctl/command.h"
#include "scenario/command.h"
#include "server/command.h"
#include "trace/command.h"

namespace
{

struct Command {
    const char *name;
    int (*run)(int argc, char **argv); // argv[0] is the command's name
    const char *about;
};

// One line a room that brings a command; the last one ends the table.
constexpr Command kCommands[] = {
    {"run", run_command, "run a program on the board, with its front in the browser"},
    {"ctl", ctl_command, "drive a board that runs, from the shell"},
    {"test", vboard_app::test_command, "play scenarios on a fresh board each, and tell which hold"},
    {"trace", trace_command, "count, compare and draw traces of the platform calls"},
    {nullptr, nullptr, nullptr},
};

void print_usage(FILE *stream)
{
    fprintf(stream, "usage: vboard COMMAND ...\n");
    for (const Command *command = kCommands; command->name != nullptr; ++command)
        fprintf(stream, "  %-8s %s\n", command->name, command->about);
}

} // namespace

int main(int argc, char **argv)
{
    const char *name = argc > 1 ? argv[1] : "";
    if (strcmp(name, "--help") == 0 || strcmp(name, "-h") == 0) {
        print_usage(stdout);
        return 0;
    }
    for (const Command *command = kCommands; command->name != nullptr; ++command)
        if (strcmp(name, command->name) == 0) return command->run(argc - 1, argv + 1);
    if (*name != '\0') fprintf(stderr, "vboard: there is no command \"%s\"\n", name);
    print_usage(stderr);
    return 2;
}
