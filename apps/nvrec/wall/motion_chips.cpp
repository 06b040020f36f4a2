/* motion_chips.cpp - see motion_chips.h. */
#include "wall/motion_chips.h"

#include <algorithm>
#include <iterator>

#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr int kInputsAChip = 4, kChips = 2;

/* Records of the chips' driver. The library's header does not define them; its callers do. */
struct MotionArea {
    uint8_t chip, input;
    uint8_t blocks[640]; /* a bit a block */
};
static_assert(sizeof(MotionArea) == 642);

struct MotionQuery {
    uint8_t chip, input, unused[2];
    uint32_t moving_blocks; /* out */
};
static_assert(sizeof(MotionQuery) == 8);

bool is_watched_by_a_chip(int channel)
{
    return channel >= 0 && channel < kInputsAChip * kChips;
}

} // namespace

bool MotionChips::watch(int channel)
{
    if (!is_watched_by_a_chip(channel)) return false;
    if (!started_) started_ = InitMotion() == 0; /* watches nothing yet */
    if (!*started_) return false;
    MotionArea area = {
        static_cast<uint8_t>(channel / kInputsAChip), static_cast<uint8_t>(channel % kInputsAChip), {}};
    std::fill(std::begin(area.blocks), std::end(area.blocks), uint8_t{0xFF});
    return SetMotionArea(reinterpret_cast<const AdMotionArea *>(&area)) == 0;
}

std::optional<uint32_t> MotionChips::moving_blocks(int channel) const
{
    if (!is_watched_by_a_chip(channel) || !started_.value_or(false)) return std::nullopt;
    MotionQuery query = {
        static_cast<uint8_t>(channel / kInputsAChip), static_cast<uint8_t>(channel % kInputsAChip), {}, 0};
    if (GetMotionArea(reinterpret_cast<AdMotionQuery *>(&query)) != 0) return std::nullopt;
    return query.moving_blocks;
}

} // namespace nvrec
