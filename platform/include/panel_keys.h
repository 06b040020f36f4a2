/*
 * panel_keys.h - the keys of the front panel, and the code that a read of "/dev/KeyBoard" gives for
 * each.
 *
 * PANEL_KEYS(KEY) is KEY(name, code) for each, ascending by code. Names are what a user of the board
 * in software types; the codes are those of the application's key codes.
 */
#ifndef PANEL_KEYS_H
#define PANEL_KEYS_H

#include <stdint.h>

/* clang-format off */
/** KEY(name, code) for each key. */
#define PANEL_KEYS(KEY) \
    KEY("zoom-out", 84u) \
    KEY("stop", 85u) \
    KEY("0", 86u) \
    KEY("1", 87u) \
    KEY("2", 88u) \
    KEY("3", 89u) \
    KEY("4", 90u) \
    KEY("5", 91u) \
    KEY("6", 92u) \
    KEY("7", 93u) \
    KEY("8", 94u) \
    KEY("9", 95u) \
    KEY("zoom", 96u) \
    KEY("layout", 97u) \
    KEY("left", 98u) \
    KEY("next", 99u) \
    KEY("volume-down", 100u) \
    KEY("volume-up", 101u) \
    KEY("pause", 102u) \
    KEY("zoom-in", 103u) \
    KEY("faster", 104u) \
    KEY("play", 105u) \
    KEY("enter", 106u) \
    KEY("up", 107u) \
    KEY("f5", 108u) \
    KEY("menu", 109u) \
    KEY("mute", 110u) \
    KEY("snapshot", 112u) \
    KEY("back", 113u) \
    KEY("f1", 114u) \
    KEY("f2", 115u) \
    KEY("f3", 116u) \
    KEY("f4", 117u) \
    KEY("record", 118u) \
    KEY("previous", 119u) \
    KEY("down", 120u) \
    KEY("right", 121u)
/* clang-format on */

#endif
