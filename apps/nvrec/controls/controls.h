/*
 * controls.h - the modules that every recorder with a wall has: keys and mouse, lamp, buzzer and clock, the
 * watchdog, and the control socket.
 */
#pragma once

#include <chrono>
#include <string>

#include "controls/control_hooks.h"
#include "controls/status_page.h"

namespace nvrec
{

class Wall;

struct ControlOptions {
    std::string socket;       /* path; empty = the user's own place, "none" = no socket              */
    int watchdog_s = 100;     /* time-out of the board's watchdog; 0 = it is switched off             */
    double hung_after_s = 10; /* a thread that is so late hangs                                   */
    PageOptions page;
    ControlHooks hooks;
};

/** The modules. Add them before all others: modules that are added later get keys first. */
void add_controls(Wall &wall, const ControlOptions &options);

} // namespace nvrec
