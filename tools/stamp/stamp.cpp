/* stamp.cpp - drawing and reading stamps. The format stands in stamp.h. */
#include "stamp.h"

#include <array>
#include <cstring>

namespace stamp
{
namespace
{

constexpr uint8_t kBlack = 16;
constexpr uint8_t kWhite = 235;
constexpr unsigned kDarkest = 96;    // below: 0
constexpr unsigned kBrightest = 160; // above: 1

using Cells = std::array<bool, kCells>;

uint8_t crc8(const std::array<uint8_t, 4> &bytes)
{
    unsigned crc = 0;
    for (const uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x80) != 0 ? (crc << 1 ^ 0x07) & 0xff : crc << 1;
    }
    return static_cast<uint8_t>(crc);
}

void put_bits(Cells &cells, int first, int count, uint32_t value)
{
    for (int bit = 0; bit < count; ++bit)
        cells[static_cast<size_t>(first + bit)] = (value >> (count - 1 - bit) & 1) != 0;
}

uint32_t take_bits(const Cells &cells, int first, int count)
{
    uint32_t value = 0;
    for (int bit = 0; bit < count; ++bit)
        value = value << 1 | (cells[static_cast<size_t>(first + bit)] ? 1 : 0);
    return value;
}

Cells encode(Stamp content)
{
    const uint32_t channel = content.channel & 0x3f;
    const uint32_t frame = content.frame & 0xffffff;
    Cells cells = {};
    put_bits(cells, 0, 1, 1);
    put_bits(cells, 1, 6, channel);
    put_bits(cells, 7, 1, 0);
    put_bits(cells, 8, 24, frame);
    put_bits(cells, 32, 8,
             crc8({static_cast<uint8_t>(channel), static_cast<uint8_t>(frame >> 16),
                   static_cast<uint8_t>(frame >> 8), static_cast<uint8_t>(frame)}));
    put_bits(cells, 40, 1, 0);
    put_bits(cells, 41, 6, ~channel & 0x3f);
    put_bits(cells, 47, 1, 1);
    return cells;
}

struct Span {
    int from, to;
};

// Pixels of cell `index` along a side of `length` pixels that holds `cells` cells.
Span cell_span(int index, int cells, int length)
{
    return {index * length / (2 * cells), (index + 1) * length / (2 * cells)};
}

} // namespace

void draw(uint8_t *luma, int stride, int width, int height, Stamp content)
{
    const Cells cells = encode(content);
    for (int row = 0; row < kRows; ++row) {
        const Span down = cell_span(row, kRows, height);
        for (int column = 0; column < kColumns; ++column) {
            const Span across = cell_span(column, kColumns, width);
            const uint8_t value = cells[static_cast<size_t>(row * kColumns + column)] ? kWhite : kBlack;
            for (int y = down.from; y < down.to; ++y)
                memset(luma + static_cast<ptrdiff_t>(y) * stride + across.from, value,
                       static_cast<size_t>(across.to - across.from));
        }
    }
}

std::optional<Stamp> read(const uint8_t *luma, int stride, int width, int height)
{
    Cells cells = {};
    for (int row = 0; row < kRows; ++row) {
        const Span down = cell_span(row, kRows, height);
        const int down_edge = (down.to - down.from) / 3;
        for (int column = 0; column < kColumns; ++column) {
            const Span across = cell_span(column, kColumns, width);
            const int across_edge = (across.to - across.from) / 3;
            unsigned sum = 0;
            unsigned count = 0;
            for (int y = down.from + down_edge; y < down.to - down_edge; ++y)
                for (int x = across.from + across_edge; x < across.to - across_edge; ++x, ++count)
                    sum += luma[static_cast<ptrdiff_t>(y) * stride + x];
            if (count == 0) return std::nullopt;
            const unsigned mean = sum / count;
            if (mean >= kDarkest && mean <= kBrightest) return std::nullopt;
            cells[static_cast<size_t>(row * kColumns + column)] = mean > kBrightest;
        }
    }
    const Stamp content{take_bits(cells, 1, 6), take_bits(cells, 8, 24)};
    if (cells != encode(content)) return std::nullopt;
    return content;
}

} // namespace stamp
