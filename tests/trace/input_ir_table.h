/* input_ir_table.h - the IR codes as the remote controls' data sheet lists them; 0 = unknown. */
#pragma once

#include <cstdint>
#include <cstdio>
#include <ostream>

namespace input_test
{

struct IrRow {
    uint32_t code;
    uint32_t remote, local;
};

inline void PrintTo(const IrRow &row, std::ostream *out)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(row.code));
    *out << text;
}

inline constexpr uint32_t kPlay = 0x649BFF00; // key 105

inline constexpr IrRow kIrRows[] = {
    {0x619EFF00, 96, 96},   {0x639CFF00, 112, 0},   {0x649BFF00, 105, 105}, {0x659AFF00, 109, 109},
    {0x6699FF00, 107, 107}, {0x6798FF00, 113, 0},   {0x6897FF00, 85, 85},   {0x6996FF00, 98, 98},
    {0x6A95FF00, 106, 106}, {0x6B94FF00, 121, 121}, {0x6C93FF00, 86, 0},    {0x6D92FF00, 97, 97},
    {0x6E91FF00, 120, 120}, {0x6F90FF00, 118, 0},   {0x708FFF00, 93, 93},   {0x718EFF00, 94, 94},
    {0x728DFF00, 95, 95},   {0x738CFF00, 102, 0},   {0x748BFF00, 90, 90},   {0x758AFF00, 91, 91},
    {0x7689FF00, 92, 92},   {0x7788FF00, 104, 104}, {0x7887FF00, 87, 87},   {0x7986FF00, 88, 88},
    {0x7A85FF00, 89, 89},   {0x7B84FF00, 99, 99},   {0x7C83FF00, 119, 0},   {0x7D82FF00, 110, 0},
    {0xA35C7F80, 117, 117}, {0xE01F7F80, 0, 114},   {0xE11E7F80, 116, 116}, {0xE21D7F80, 115, 115},
    {0xE41B0202, 86, 86},   {0xE51A7F80, 0, 112},   {0xE6197F80, 0, 113},   {0xE7187F80, 0, 102},
    {0xE9167F80, 101, 101}, {0xEA157F80, 100, 100}, {0xEB147F80, 103, 103}, {0xF30C7F80, 0, 108},
    {0xFC037F80, 84, 84},   {0xFD027F80, 0, 86},
};
static_assert(sizeof kIrRows / sizeof kIrRows[0] == 42);

} // namespace input_test
