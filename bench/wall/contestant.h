/* contestant.h - run something as a process of its own and account for it. */
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace wallbench
{

/** Whole-process figures of one run, as the operating system accounts for them. */
struct Figures {
    bool ok = false;
    double wall_s = 0;
    double cpu_s = 0; // user and system
    double peak_mib = 0;
};

/** Run a command; its output goes to /dev/null. Not ok when it cannot run or exits with an error. */
Figures run_command(const std::vector<std::string> &command);

/** The median of each figure; not ok when a run was not. */
Figures median(std::vector<Figures> runs);

} // namespace wallbench
