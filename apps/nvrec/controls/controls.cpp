/* controls.cpp - see controls.h. */
#include "controls/controls.h"

#include <vector>

#include "controls/control_desk.h"
#include "controls/control_socket.h"
#include "controls/health.h"
#include "controls/indicators.h"
#include "controls/key_names.h"
#include "controls/keys.h"
#include "controls/keys_navigation.h"
#include "vboard.h"
#include "wall/companion.h"
#include "wall/wall.h"

namespace nvrec
{
namespace
{

constexpr int kLongestWatchdog_s = 3600;

/* The window's keyboard is a remote control. */
void label_window_keys()
{
    std::vector<vboard_window_key> keys;
    for (const Button &button : buttons()) {
        if (button.pc_key) keys.push_back({button.pc_key, button.ir_code});
    }
    vboard_window_set_keys(keys.data(), keys.size());
}

} // namespace

void add_control_options(CLI::App &parser, ControlOptions &options)
{
    parser
        .add_option("--control", options.socket,
                    "Socket on which \"nvrec key\" and \"nvrec board\" reach this recorder; none = no socket")
        ->default_str(default_control_path());
    parser
        .add_option("--watchdog", options.watchdog_s,
                    "Seconds after which the board resets when the recorder hangs; 0 = never")
        ->check(CLI::Range(0, kLongestWatchdog_s))
        ->capture_default_str();
    parser.add_option("--hung-after", options.hung_after_s, "A thread that is so many seconds late hangs")
        ->check(CLI::Range(0.5, 3600.0))
        ->capture_default_str();
}

/*
 * Stopped in reverse: the keys before the desk, so that a request for a key that will not come any
 * more has its answer.
 */
void add_controls(Wall &wall, const ControlOptions &options)
{
    label_window_keys();
    auto keys = std::make_unique<Keys>();
    const auto patience = std::chrono::duration_cast<Companion::Clock::duration>(
        std::chrono::duration<double>(options.hung_after_s));
    wall.add(std::make_unique<Health>(options.watchdog_s, patience));
    wall.add(std::make_unique<Indicators>());
    wall.add(std::make_unique<Navigation>());
    wall.add(std::make_unique<ControlDesk>(options.socket, *keys));
    wall.add(std::move(keys));
}

} // namespace nvrec
