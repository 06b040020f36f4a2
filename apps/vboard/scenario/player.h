/*
 * player.h - plays one scenario on a fresh board.
 *
 * In real time it looks every 20 ms. Stepped, it waits until every thread of the program waits, looks,
 * does what is due, and steps the clock: by the board's step, or less where something is due before that.
 * So every look is at the same time of the board in every run. What is expected at a time is looked at
 * before what is done at that time.
 *
 *     settle ─► look ─► judge ─► steps due? ──yes──► do them ─► settle again, at the same time
 *                                   │ no
 *                                   └─► all done? ──yes──► end the program, judge the rest
 *                                          │ no
 *                                          └─► clock on ─► settle ...
 */
#ifndef VBOARD_APP_SCENARIO_PLAYER_H
#define VBOARD_APP_SCENARIO_PLAYER_H

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "scenario/scenario.h"
#include "scenario/session.h"

namespace vboard_app::scenario
{

struct PlayOrders {
    std::string output_folder;                     // made when something fails
    std::chrono::seconds limit{300};               // of real time, for all of it
    std::chrono::milliseconds end_patience{10000}; // of real time, for the program to end
    std::chrono::milliseconds quiet_patience{10000};
    const std::atomic<bool> *interrupted = nullptr;
};

struct Failure {
    int line = 0;         // 0: of the scenario as a whole
    std::string expected; // as it stands in the file; empty with line 0
    std::string seen;
    int64_t at_us = 0;
    std::string picture; // file; empty: there is none
};

struct Outcome {
    std::vector<Failure> failures;
    int64_t board_us = 0; // what it lasted on the board
    double real_s = 0;
    bool interrupted = false;
    std::vector<LogLine> log;
    std::string log_file; // written when something failed
    size_t judged = 0;    // expectations
    bool passed() const { return failures.empty() && !interrupted; }
};

/* @throws LaunchError */
Outcome play(Scenario &scenario, const Launcher &launch, const PlayOrders &orders);

} // namespace vboard_app::scenario

#endif
