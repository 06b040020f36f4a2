/* report.h - what became of scenarios: lines for people, and JUnit XML for programs. */
#ifndef VBOARD_APP_SCENARIO_REPORT_H
#define VBOARD_APP_SCENARIO_REPORT_H

#include <string>
#include <vector>

#include "scenario/player.h"

namespace vboard_app::scenario
{

struct Report {
    std::string path, name; // of the scenario; the name says which repetition it is
    Outcome outcome;
    std::string not_begun; // why; empty: it was played
};

/* A line with PASS or FAIL, and below it what failed. */
std::string text_of(const Report &report);

/* False: the file cannot be written. */
bool write_junit(const std::string &path, const std::vector<Report> &reports);

} // namespace vboard_app::scenario

#endif
