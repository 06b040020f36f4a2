/*
 * key_names.h - the recorder's remote control: what its buttons are called and mean.
 *
 * One row a button. The remote control sends an IR code, which the library translates: the key code
 * comes from ext_keyboard_value. The front panel sends the key code itself, which the recorder reads
 * from the panel's node. `key` is what the recorder makes of it. A PC key in the board's window presses
 * the same button of the remote control. The codes that the buttons send are in
 * platform/include/ir_buttons.h, under the same names.
 */
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "wall/module.h"

namespace nvrec
{

struct Button {
    std::string_view name; /* as ir_buttons.h has it, and for "nvrec key" */
    Key key;
    uint32_t key_code;  /* from ext_keyboard_value or the panel         */
    const char *pc_key; /* SDL's name of the key in the window, or null */
};

/** Every button; some keys have a second row for another PC key. */
std::span<const Button> buttons();

/** The first button of that name, or null. Capitals do not matter. */
const Button *button_named(std::string_view name);

/** The first button that sends this key code, or null. */
const Button *button_sending(uint32_t key_code);

} // namespace nvrec
