/*
 * key_names.h - the recorder's remote control: what its buttons are called, mean and send.
 *
 * One row a button. A press goes from the remote control (an IR code) or the front panel (the key
 * code itself) through the library to ext_keyboard_value, which gives the key code; `key` is what
 * the recorder makes of it. A PC key in the board's window presses the same button.
 */
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "wall/module.h"

namespace nvrec
{

struct Button {
    std::string_view name; /* for "nvrec key"                               */
    Key key;
    uint32_t key_code;  /* from ext_keyboard_value; what the panel sends */
    uint32_t ir_code;   /* what the remote control sends                 */
    const char *pc_key; /* SDL's name of the key in the window, or null */
};

/** Every button; some keys have a second row for another PC key. */
std::span<const Button> buttons();

/** The first button of that name, or null. Capitals do not matter. */
const Button *button_named(std::string_view name);

/** The first button that sends this key code, or null. */
const Button *button_sending(uint32_t key_code);

} // namespace nvrec
