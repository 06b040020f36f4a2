/*
 * scenario.h - a scenario as it is read from its file: how the board starts, what is done when, and what
 * must be seen. Reading tells every mistake of the file with its line.
 *
 *     board: {monitor: plugged, clock: stepped, faults: [{call: MI_VDEC_StartChn, nth: 1}]}
 *     program: [--layout, 2x2]            further arguments of the program
 *     cameras: [front.h264, yard.mp4]     and files behind these, found from the scenario's folder
 *     steps:
 *       - {at: 2s, press: menu}
 *       - {after: {log: "menu", within: 3s}, monitor: "off"}
 *     expect:
 *       - {at: 5s, pane: 0, channel: 1, moving: true}
 *       - {during: [2s, 4s], screen: menu.png, region: [800, 300, 320, 480]}
 *       - {call: MI_DISP_Enable, never: true}
 *
 * The whole reference stands in docs/testing-a-recorder.md.
 */
#ifndef VBOARD_APP_SCENARIO_SCENARIO_H
#define VBOARD_APP_SCENARIO_SCENARIO_H

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "board/board_process.h"
#include "scenario/check.h"
#include "scenario/tree.h"

namespace vboard_app::scenario
{

/* A request to the board. */
struct Request {
    int line = 0;
    std::string name;
    nlohmann::json parameters = nlohmann::json::object();
};

/* The board when the program begins. */
struct BoardStart {
    bool plugged = true;
    bool stepped = false;
    int64_t wall_us = 0; // stepped: where the wall clock begins, since 1970-01-01 00:00 UTC
    int64_t step_us = 20'000;
    bool step_pacing = false;
    std::vector<BootFault> faults;
    std::vector<BootInput> analog;
    std::optional<int64_t> rtc_seconds;
    bool rtc_battery = true;
};

/* Something that is waited for. */
struct Condition {
    std::unique_ptr<Check> check;
    std::optional<int64_t> within_us; // of waiting; then it has failed
    int64_t then_us = 0;              // so long after it
    std::string text;                 // as it stands in the file
};

struct When {
    std::optional<int64_t> at_us, within_us;
    std::optional<std::pair<int64_t, int64_t>> during_us;
    std::optional<Condition> after;
};

struct Step {
    int line = 0;
    std::string text; // "press: menu"
    When when;
    Request request;           // without a name: one of the following
    std::optional<int> signal; // to the program
    std::string shot;          // name of a file that the screen is written to, in the output folder
};

struct Expectation {
    int line = 0;
    std::string text;
    When when;
    bool never = false;
    std::unique_ptr<Check> check;
};

struct Scenario {
    std::string path, name;
    BoardStart board;
    std::vector<std::string> arguments; // of the program, behind those of the command line
    std::optional<int64_t> lasts_us;
    std::vector<Step> steps;
    std::vector<Expectation> expectations;
    bool needs_calls = false; // something looks at the platform calls
};

/* How a file is read. */
struct ReadOrders {
    std::map<std::string, std::string> defines;
    std::optional<bool> stepped; // in place of what the file says
};

/*
 * Read a file. @return the scenario, or nothing: what is wrong stands among the problems.
 */
std::optional<Scenario> read_scenario(const std::string &path, const ReadOrders &orders, Problems &problems);

/* Parts of it, each in its file. */
BoardStart read_board(const TreeNode &node, Context &context);
When read_when(Reader &reader, std::vector<std::string> &keys);
std::optional<Step> read_step(const TreeNode &node, Context &context);
std::optional<Expectation> read_expectation(const TreeNode &node, Context &context);

/* A node as it stands in the file, on one line, for messages. */
std::string text_of_node(const TreeNode &node);

/* Where the wall clock stands at the start of a stepped scenario that names no time: 2026-01-01 00:00 UTC. */
constexpr int64_t kUsualWall_us = 1'767'225'600LL * 1'000'000;

} // namespace vboard_app::scenario

#endif
