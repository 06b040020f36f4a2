/*
 * Motion maps: which 8 x 8-pixel blocks of each channel's main-stream picture are watched, and how
 * many of them must move.
 *
 * The user interface paints an area on a grid of 22 columns and 18 rows. A painted cell marks
 * width / 176 bytes on each of height / 144 rows of the map. It counts as height / 120 * width / 176
 * blocks, on purpose: thresholds were tuned with that divisor. Nothing in the library evaluates the
 * map. UI thread; the evaluation reads without a lock.
 */
#include "core/abi.h"
#include "core/device_state.h"
#include "nvrhal.h"

#include <cstring>

using namespace nvrhal;

ABI_SIZE(VdaChannel, 9020);
ABI_AT(VdaChannel, threshold, 16);
ABI_AT(VdaChannel, map, 20);

// Written by the motion setters; read by whoever evaluates motion.
VdaChannel vda_chn[128];
uint32_t vda_flag;
uint32_t g_sensitive;

namespace
{

constexpr uint32_t kChannels = sizeof vda_chn / sizeof vda_chn[0];
constexpr uint32_t kMapBytes = sizeof vda_chn[0].map;
constexpr uint32_t kRows = 18;
constexpr uint32_t kColumns = 22;
constexpr uint32_t kBlock_px = 8;
constexpr uint32_t kWidthDivisor = kColumns * kBlock_px; // 176
constexpr uint32_t kHeightDivisor = kRows * kBlock_px;   // 144
constexpr uint32_t kCountedHeightDivisor = 120;
constexpr uint32_t kAreaHeaderBytes = 4;
constexpr uint32_t kAreaRowBytes = 3;
constexpr uint32_t kFewestBlocks = 2; // threshold of an area too small for its percentage

// Percentage of the watched blocks that must move, by level.
constexpr uint32_t kPercents[] = {3, 3, 5, 8, 10, 15, 20, 25, 30, 50, 55};
constexpr uint32_t kOtherPercent = 25;
static_assert(sizeof kPercents / sizeof kPercents[0] == 11);

uint32_t percent_of(uint32_t level)
{
    return level < sizeof kPercents / sizeof kPercents[0] ? kPercents[level] : kOtherPercent;
}

struct PictureSize {
    uint64_t width, height; // pixels; wide enough for products of any two sizes
};

/** Size of a channel's main stream; nothing for a channel without one. */
PictureSize size_of(uint32_t channel)
{
    if (channel >= sizeof major_stream / sizeof major_stream[0]) return {0, 0};
    return {load_word(major_stream[channel].width), load_word(major_stream[channel].height)};
}

bool is_painted(const uint8_t *area, uint32_t row, uint32_t column)
{
    const uint8_t *bits = area + kAreaHeaderBytes + row * kAreaRowBytes;
    return (bits[column / 8] >> column % 8 & 1) != 0;
}

/** Mark one cell's blocks; those of a picture too large for the map are left out. */
void mark_cell(VdaChannel &channel, const PictureSize &size, uint32_t row, uint32_t column)
{
    const uint64_t stride = size.width / kBlock_px;
    const uint64_t marks = size.width / kWidthDivisor;
    uint64_t at =
        column * (size.width / kColumns) / kBlock_px + stride * (row * (size.height / kRows) / kBlock_px);
    if (marks == 0) return;
    for (uint64_t rows = size.height / kHeightDivisor; rows > 0 && at < kMapBytes; --rows, at += stride) {
        const uint64_t room = kMapBytes - at;
        std::memset(channel.map + at, 1, static_cast<size_t>(marks < room ? marks : room));
    }
}

uint32_t threshold_of(uint64_t count)
{
    const uint64_t threshold = count * percent_of(load_word(g_sensitive)) / 100;
    return threshold == 0 && count != 0 ? kFewestBlocks : static_cast<uint32_t>(threshold);
}

} // namespace

int32_t ext_set_motion_sensitive(uint32_t, uint32_t level)
{
    store_word(g_sensitive, level);
    return 0;
}

int32_t ext_set_motion_area(uint32_t channel, const uint8_t area[58])
{
    if (area == nullptr) return -1;
    if (channel >= kChannels) return 0;
    VdaChannel &block = vda_chn[channel];
    const PictureSize size = size_of(channel);

    std::memset(block.map, 0, sizeof block.map);
    uint64_t count = 0;
    for (uint32_t row = 0; row < kRows; ++row) {
        for (uint32_t column = 0; column < kColumns; ++column) {
            if (!is_painted(area, row, column)) continue;
            mark_cell(block, size, row, column);
            count += size.height / kCountedHeightDivisor * size.width / kWidthDivisor;
        }
    }
    store_word(block.threshold, threshold_of(count));
    store_word(vda_flag, 1);
    return 0;
}
