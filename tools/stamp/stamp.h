/*
 * stamp.h - a channel and a frame number inside a picture, as black and white cells that survive
 * encoding and scaling.
 *
 * The picture's top left quarter is a grid of 8 x 6 cells, so that a cell is a 16th of the width
 * and a 12th of the height whatever the size. Row by row, from the top left, one bit a cell, white
 * = 1:
 *
 *     0       guard, 1
 *     1-6     channel, high bit first
 *     7       guard, 0
 *     8-31    frame number, high bit first
 *     32-39   CRC-8 (polynomial 0x07) of the channel byte and the three frame bytes
 *     40      guard, 0
 *     41-46   channel again, each bit turned over
 *     47      guard, 1
 *
 * To read: average the luma of the middle of every cell; below 96 is 0, above 160 is 1, anything
 * between makes the stamp unreadable, and so does a wrong guard, checksum or copy.
 */
#ifndef STAMP_H
#define STAMP_H

#include <cstdint>
#include <optional>

namespace stamp
{

constexpr int kColumns = 8;
constexpr int kRows = 6;
constexpr int kCells = kColumns * kRows;

struct Stamp {
    unsigned channel = 0; // 0 to 63
    uint32_t frame = 0;   // 0 to 2^24 - 1

    bool operator==(const Stamp &) const = default;
};

/* Draw into a luma plane. */
void draw(uint8_t *luma, int stride, int width, int height, Stamp content);

/* Read from a luma plane, or from a pane of one: `luma` is its top left pixel. */
std::optional<Stamp> read(const uint8_t *luma, int stride, int width, int height);

} // namespace stamp

#endif
