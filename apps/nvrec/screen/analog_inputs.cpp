/* analog_inputs.cpp - see analog_inputs.h. */
#include "screen/analog_inputs.h"

#include <algorithm>
#include <cstring>

#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr int kInputsAChip = 4, kChipsWithMotion = 2;

/* Records of the chips' driver, which the library's header leaves to whoever fills them. */
struct MotionArea {
    uint8_t chip, input;
    uint8_t blocks[640]; /* one bit a block */
};
static_assert(sizeof(MotionArea) == 642);

struct MotionQuery {
    uint8_t chip, input, unused[2];
    uint32_t moving_blocks; /* out */
};
static_assert(sizeof(MotionQuery) == 8);

} // namespace

void AnalogInputs::start(int channels)
{
    channels_ = std::min(channels, kInputsAChip * kChipsWithMotion);
    watches_motion_ = InitMotion() == 0;
    for (int channel = 0; channel < channels_ && watches_motion_; ++channel) {
        MotionArea area = {
            static_cast<uint8_t>(channel / kInputsAChip), static_cast<uint8_t>(channel % kInputsAChip), {}};
        std::memset(area.blocks, 0xFF, sizeof area.blocks);
        watches_motion_ = SetMotionArea(reinterpret_cast<const AdMotionArea *>(&area)) == 0;
    }
}

void AnalogInputs::look()
{
    uint32_t mask[2] = {};
    lost_ = ext_get_video_loss_status(mask) == 0 ? mask[0] : 0; /* who asks too says that they fail */
    moving_ = 0;
    for (int channel = 0; channel < channels_ && watches_motion_; ++channel) {
        MotionQuery query = {static_cast<uint8_t>(channel / kInputsAChip),
                             static_cast<uint8_t>(channel % kInputsAChip),
                             {},
                             0};
        if (GetMotionArea(reinterpret_cast<AdMotionQuery *>(&query)) == 0 && query.moving_blocks > 0)
            moving_ |= 1u << channel;
    }
}

} // namespace nvrec
