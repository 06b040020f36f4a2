/*
 * osd_color.cpp - packing of 8-bit components into 16-bit pixels, and the widths of each format.
 *
 * Rows are numbered by the GUI's own format codes 0 to 7. They are neither the driver's codes nor
 * those that the painters use, and are never translated into them.
 */
#include "core/abi.h"
#include "nvrhal.h"

ABI_SIZE(OsdCompInfo, 16);

const OsdCompInfo s_OSDCompInfo[8] = {
    {0, 4, 4, 4}, // 0  RGB444
    {4, 4, 4, 4}, // 1  ARGB4444
    {0, 5, 5, 5}, // 2  RGB555
    {0, 5, 6, 5}, // 3  RGB565
    {1, 5, 5, 5}, // 4  ARGB1555
    {0, 0, 0, 0}, // 5  no 16-bit packing
    {0, 8, 8, 8}, // 6  RGB888
    {8, 8, 8, 8}, // 7  ARGB8888
};

namespace
{

constexpr uint32_t at_most(uint32_t value, uint32_t limit)
{
    return value < limit ? value : limit;
}

// The upper `bits` of an 8-bit component.
constexpr uint32_t upper_bits(int32_t component, uint32_t bits)
{
    return static_cast<uint32_t>(component >> (8 - bits)) & 0xFFu;
}

} // namespace

uint16_t OSD_MAKECOLOR_U16(int32_t low, int32_t middle, int32_t high, uint32_t alpha_bits, uint32_t low_bits,
                           uint32_t middle_bits, uint32_t high_bits)
{
    low_bits = at_most(low_bits, 8);
    middle_bits = at_most(middle_bits, 8);
    high_bits = at_most(high_bits, 8);
    const uint32_t alpha = ~(0xFFFFu >> at_most(alpha_bits, 16));

    // The middle component is shifted by the high one's width, on purpose: in every row of the
    // table the low and high widths are equal.
    return static_cast<uint16_t>(upper_bits(low, low_bits) | upper_bits(middle, middle_bits) << high_bits |
                                 upper_bits(high, high_bits) << (middle_bits + high_bits) | alpha);
}
