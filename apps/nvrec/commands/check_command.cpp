/* check_command.cpp - "nvrec check": a configuration read and judged as a whole. */
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "commands/run_options.h"

namespace nvrec
{
namespace
{

int check(const std::string &path)
{
    config::Reading reading = config::read_config(path);
    if (reading.faults.empty()) reading.faults = config::missing_files(reading.config);
    if (!reading.faults.empty()) return print_faults(reading);
    const config::Config &config = reading.config;
    for (const config::Camera &camera : config.cameras)
        std::printf("%s\n", shown_camera(config, camera).c_str());
    const size_t count = config.cameras.size();
    std::printf("%s: no fault; %zu camera%s\n", path.c_str(), count, count == 1 ? "" : "s");
    return kExitDone;
}

} // namespace

Command check_command(CLI::App &app)
{
    auto path = std::make_shared<std::string>();
    CLI::App *command = app.add_subcommand("check", "Check a configuration file");
    command->footer(
        "Every fault is named with its line and key. Exit status: 0 there is none, 2 there are some.");
    command->add_option("file", *path, "The configuration")->required();
    return {command, [path] { return check(*path); }};
}

} // namespace nvrec
