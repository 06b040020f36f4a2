/* board_session.h - a scenario's board in a process of its own (board/board_process.h). */
#ifndef VBOARD_APP_SCENARIO_BOARD_SESSION_H
#define VBOARD_APP_SCENARIO_BOARD_SESSION_H

#include <string>
#include <vector>

#include "scenario/session.h"

namespace vboard_app::scenario
{

/* Starts `program` with the scenario's arguments behind its own, on a board as the scenario wants it. */
Launcher board_launcher(std::vector<std::string> program);

} // namespace vboard_app::scenario

#endif
