/* analog_inputs.cpp - see analog_inputs.h. */
#include "screen/analog_inputs.h"

#include "nvrhal.h"

namespace nvrec
{

void AnalogInputs::start(MotionChips &chips, int channels)
{
    chips_ = &chips;
    channels_ = 0;
    while (channels_ < channels && chips.watch(channels_))
        ++channels_;
}

void AnalogInputs::look()
{
    uint32_t mask[2] = {};
    lost_ = ext_get_video_loss_status(mask) == 0 ? mask[0] : 0; /* the indicators report failures */
    moving_ = 0;
    for (int channel = 0; channel < channels_; ++channel) {
        if (chips_->moving_blocks(channel).value_or(0) > 0) moving_ |= 1u << channel;
    }
}

} // namespace nvrec
