/*
 * The table behind ir_codes.h, ascending by code.
 *
 * A code is address and command: the low half is one of two remote-control addresses, 0xFF00 or
 * 0x7F80; the top byte is the complement of the command below it. 0xE41B0202 has an address of its
 * own: a button of a third remote control.
 */
#include "input/ir_codes.h"

#include "ir_buttons.h"

#include <cstddef>

using nvrhal::kNoKey;

namespace
{

struct IrCodeRow {
    uint32_t code;
    uint8_t remote; // key of the remote-key reader, kNoKey = unknown to it
    uint8_t local;  // key of the local IR reader, likewise
};

constexpr IrCodeRow kIrCodes[] = {
    {0x619EFF00, KEY_CODE_ZOOM, KEY_CODE_ZOOM},
    {0x639CFF00, KEY_CODE_SNAPSHOT, kNoKey},
    {0x649BFF00, KEY_CODE_PLAY, KEY_CODE_PLAY},
    {0x659AFF00, KEY_CODE_MENU, KEY_CODE_MENU},
    {0x6699FF00, KEY_CODE_UP, KEY_CODE_UP},
    {0x6798FF00, KEY_CODE_BACK, kNoKey},
    {0x6897FF00, KEY_CODE_STOP, KEY_CODE_STOP},
    {0x6996FF00, KEY_CODE_LEFT, KEY_CODE_LEFT},
    {0x6A95FF00, KEY_CODE_ENTER, KEY_CODE_ENTER},
    {0x6B94FF00, KEY_CODE_RIGHT, KEY_CODE_RIGHT},
    {0x6C93FF00, KEY_CODE_0, kNoKey},
    {0x6D92FF00, KEY_CODE_LAYOUT, KEY_CODE_LAYOUT},
    {0x6E91FF00, KEY_CODE_DOWN, KEY_CODE_DOWN},
    {0x6F90FF00, KEY_CODE_RECORD, kNoKey},
    {0x708FFF00, KEY_CODE_7, KEY_CODE_7},
    {0x718EFF00, KEY_CODE_8, KEY_CODE_8},
    {0x728DFF00, KEY_CODE_9, KEY_CODE_9},
    {0x738CFF00, KEY_CODE_PAUSE, kNoKey},
    {0x748BFF00, KEY_CODE_4, KEY_CODE_4},
    {0x758AFF00, KEY_CODE_5, KEY_CODE_5},
    {0x7689FF00, KEY_CODE_6, KEY_CODE_6},
    {0x7788FF00, KEY_CODE_FASTER, KEY_CODE_FASTER},
    {0x7887FF00, KEY_CODE_1, KEY_CODE_1},
    {0x7986FF00, KEY_CODE_2, KEY_CODE_2},
    {0x7A85FF00, KEY_CODE_3, KEY_CODE_3},
    {0x7B84FF00, KEY_CODE_NEXT, KEY_CODE_NEXT},
    {0x7C83FF00, KEY_CODE_PREVIOUS, kNoKey},
    {0x7D82FF00, KEY_CODE_MUTE, kNoKey},
    {0xA35C7F80, KEY_CODE_F4, KEY_CODE_F4},
    {0xE01F7F80, kNoKey, KEY_CODE_F1},
    {0xE11E7F80, KEY_CODE_F3, KEY_CODE_F3},
    {0xE21D7F80, KEY_CODE_F2, KEY_CODE_F2},
    {0xE41B0202, KEY_CODE_0, KEY_CODE_0},
    {0xE51A7F80, kNoKey, KEY_CODE_SNAPSHOT},
    {0xE6197F80, kNoKey, KEY_CODE_BACK},
    {0xE7187F80, kNoKey, KEY_CODE_PAUSE},
    {0xE9167F80, KEY_CODE_VOLUME_UP, KEY_CODE_VOLUME_UP},
    {0xEA157F80, KEY_CODE_VOLUME_DOWN, KEY_CODE_VOLUME_DOWN},
    {0xEB147F80, KEY_CODE_ZOOM_IN, KEY_CODE_ZOOM_IN},
    {0xF30C7F80, kNoKey, KEY_CODE_F5},
    {0xFC037F80, KEY_CODE_ZOOM_OUT, KEY_CODE_ZOOM_OUT},
    {0xFD027F80, kNoKey, KEY_CODE_0},
};

consteval bool rows_are_sound()
{
    uint32_t last = 0;
    for (const IrCodeRow &row : kIrCodes) {
        if (row.code <= last) return false;
        last = row.code;
        if (row.remote == 0 && row.local == 0) return false;
        const uint32_t address = row.code & 0xFFFF;
        const bool checks = ((row.code >> 24 ^ row.code >> 16) & 0xFF) == 0xFF;
        if (!checks || (address != 0xFF00 && address != 0x7F80 && row.code != 0xE41B0202)) return false;
    }
    return true;
}
static_assert(rows_are_sound());

// Every button of the remote controls has its row, and no row is without a button.
consteval bool rows_are_the_buttons()
{
#define CODE(name, code) code,
    constexpr uint32_t kButtons[] = {IR_BUTTONS(CODE)};
#undef CODE
    size_t row = 0;
    for (const uint32_t button : kButtons)
        if (row == sizeof kIrCodes / sizeof kIrCodes[0] || kIrCodes[row++].code != button) return false;
    return row == sizeof kIrCodes / sizeof kIrCodes[0];
}
static_assert(rows_are_the_buttons());

const IrCodeRow *find_row(uint32_t code)
{
    for (const IrCodeRow &row : kIrCodes)
        if (row.code == code) return &row;
    return nullptr;
}

} // namespace

uint32_t nvrhal::remote_key(uint32_t ir_code)
{
    const IrCodeRow *row = find_row(ir_code);
    return row == nullptr ? kNoKey : row->remote;
}

uint32_t nvrhal::local_key(uint32_t ir_code)
{
    const IrCodeRow *row = find_row(ir_code);
    return row == nullptr ? kNoKey : row->local;
}
