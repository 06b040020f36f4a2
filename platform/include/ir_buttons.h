/*
 * ir_buttons.h - the buttons of the remote controls, and the code that each sends to the receiver.
 *
 * IR_BUTTONS(BUTTON) is BUTTON(name, code) for each, ascending by code. Buttons of the small remote
 * control, with 0x7F80 in the low half, that the large one has too are named "small-..."; a third one
 * has a single button. Names are what a user of the board in software types; which key a button is,
 * the library's readers decide.
 */
#ifndef IR_BUTTONS_H
#define IR_BUTTONS_H

#include <stdint.h>

/* clang-format off */
/** BUTTON(name, code) for each button. */
#define IR_BUTTONS(BUTTON) \
    BUTTON("zoom", 0x619EFF00u) \
    BUTTON("snapshot", 0x639CFF00u) \
    BUTTON("play", 0x649BFF00u) \
    BUTTON("menu", 0x659AFF00u) \
    BUTTON("up", 0x6699FF00u) \
    BUTTON("back", 0x6798FF00u) \
    BUTTON("stop", 0x6897FF00u) \
    BUTTON("left", 0x6996FF00u) \
    BUTTON("enter", 0x6A95FF00u) \
    BUTTON("right", 0x6B94FF00u) \
    BUTTON("0", 0x6C93FF00u) \
    BUTTON("layout", 0x6D92FF00u) \
    BUTTON("down", 0x6E91FF00u) \
    BUTTON("record", 0x6F90FF00u) \
    BUTTON("7", 0x708FFF00u) \
    BUTTON("8", 0x718EFF00u) \
    BUTTON("9", 0x728DFF00u) \
    BUTTON("pause", 0x738CFF00u) \
    BUTTON("4", 0x748BFF00u) \
    BUTTON("5", 0x758AFF00u) \
    BUTTON("6", 0x7689FF00u) \
    BUTTON("faster", 0x7788FF00u) \
    BUTTON("1", 0x7887FF00u) \
    BUTTON("2", 0x7986FF00u) \
    BUTTON("3", 0x7A85FF00u) \
    BUTTON("next", 0x7B84FF00u) \
    BUTTON("previous", 0x7C83FF00u) \
    BUTTON("mute", 0x7D82FF00u) \
    BUTTON("f4", 0xA35C7F80u) \
    BUTTON("f1", 0xE01F7F80u) \
    BUTTON("f3", 0xE11E7F80u) \
    BUTTON("f2", 0xE21D7F80u) \
    BUTTON("third-0", 0xE41B0202u) \
    BUTTON("small-snapshot", 0xE51A7F80u) \
    BUTTON("small-back", 0xE6197F80u) \
    BUTTON("small-pause", 0xE7187F80u) \
    BUTTON("volume-up", 0xE9167F80u) \
    BUTTON("volume-down", 0xEA157F80u) \
    BUTTON("zoom-in", 0xEB147F80u) \
    BUTTON("f5", 0xF30C7F80u) \
    BUTTON("zoom-out", 0xFC037F80u) \
    BUTTON("small-0", 0xFD027F80u)
/* clang-format on */

#endif
