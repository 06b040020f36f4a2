/* controls.cpp - see controls.h. */
#include "controls.h"

#include <vector>

#include "key_names.h"
#include "keys.h"
#include "keys_navigation.h"
#include "vboard.h"
#include "wall.h"

namespace nvrec
{
namespace
{

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

void add_control_options(CLI::App &, ControlOptions &) {}

void add_controls(Wall &wall, const ControlOptions &)
{
    label_window_keys();
    wall.add(std::make_unique<Navigation>());
    wall.add(std::make_unique<Keys>());
}

} // namespace nvrec
