/*
 * session.h - a fresh board with its program, as a scenario wants it. There is one over a process
 * (board_session.h); tests bring their own.
 */
#ifndef VBOARD_APP_SCENARIO_SESSION_H
#define VBOARD_APP_SCENARIO_SESSION_H

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "board/board.h"
#include "scenario/moment.h"
#include "scenario/scenario.h"

namespace vboard_app::scenario
{

/* The board could not be had; the scenario has not begun. */
class LaunchError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class Session
{
public:
    virtual ~Session() = default;

    virtual Board &board() = 0;

    /* How the program has ended; nothing: it runs, or the board will start it again. */
    virtual std::optional<ProgramEnd> ended() = 0;

    virtual void send_signal(int signal) = 0;

    /* Kill the program; returns when it has ended. */
    virtual void stop() = 0;

    /* What it has written since the last call, line by line. */
    virtual std::vector<std::string> take_log() = 0;

    /* What it has called since; `lost` is added to. Times are the board's clock. */
    virtual std::vector<Call> take_calls(uint64_t &lost) = 0;
};

/* Start one. @throws LaunchError */
using Launcher = std::function<std::unique_ptr<Session>(const Scenario &scenario)>;

} // namespace vboard_app::scenario

#endif
