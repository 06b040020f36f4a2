/*
 * analog_chip.cpp - the driver of the analog decoder chips: four chips of four inputs. It keeps
 * what it is told; signal loss and motion come from the control face.
 */
#include "ad_driver.h"

#include <array>
#include <bit>
#include <mutex>

#include "devices/peripheral_nodes.h"
#include "devices/request_node.h"
#include "vboard_devices.h"

namespace vboard
{
namespace
{

constexpr uint32_t kChips = VBOARD_AD_CHANNELS / AD_INPUTS_PER_CHIP;

struct ValueRow {
    unsigned long request;
    uint32_t vboard_ad_stat::*value;
};

// Requests that set one value of all chips.
constexpr ValueRow kValues[] = {
    {AD_SET_NORM, &vboard_ad_stat::norm},
    {AD_SET_AUDIO_PLAYBACK, &vboard_ad_stat::playback},
    {AD_SET_AUDIO_VOLUME, &vboard_ad_stat::volume},
    {AD_SET_AUDIO_FORMAT, &vboard_ad_stat::format},
    {AD_SET_AUDIO_BITWIDTH, &vboard_ad_stat::bitwidth},
    {AD_SET_MUTE, &vboard_ad_stat::mute},
};

class AnalogChips : public RequestNode
{
public:
    AnalogChips() : RequestNode(AD_NODE) {}

    void reset() override
    {
        const std::lock_guard guard(mutex_);
        stat_ = {};
        inputs_ = {};
    }

    vboard_ad_stat stat()
    {
        const std::lock_guard guard(mutex_);
        return stat_;
    }

    template <typename Use> void with_input(uint32_t channel, Use use)
    {
        const std::lock_guard guard(mutex_);
        use(inputs_[channel]);
    }

protected:
    int request(unsigned long code, void *argument) override
    {
        const std::lock_guard guard(mutex_);
        if (code == AD_MOTION_START) {
            stat_.motion_started = 1;
            return 0;
        }
        if (argument == nullptr) return refuse_argument("no record");
        for (const ValueRow &row : kValues)
            if (row.request == code) return set_value(*static_cast<const AdChipValue *>(argument), row);
        switch (code) {
        case AD_GET_NORM: static_cast<AdChipValue *>(argument)->value = stat_.norm; return 0;
        case AD_SET_SAMPLE_RATE: return set_rate(*static_cast<const AdSampleRate *>(argument));
        case AD_SET_ADJUST:
            for (int i = 0; i < 3; ++i)
                stat_.adjust[i] = static_cast<const AdColorAdjust *>(argument)->values[i];
            return 0;
        case AD_GET_ADJUST:
            for (int i = 0; i < 3; ++i)
                static_cast<AdColorAdjust *>(argument)->values[i] = stat_.adjust[i];
            return 0;
        case AD_SET_WORK_MODE: {
            const auto &record = *static_cast<const AdWorkMode *>(argument);
            return at(record.chip, record.input, [&](vboard_ad_input &input) { input.mode = record.mode; });
        }
        case AD_GET_LOSS: {
            auto &record = *static_cast<AdVideoLoss *>(argument);
            return at(record.chip, record.input, [&](vboard_ad_input &input) { record.lost = input.lost; });
        }
        case AD_MOTION_SET_AREA: {
            const auto &record = *static_cast<const AdMotionArea *>(argument);
            return at(record.chip, record.input, [&](vboard_ad_input &input) {
                input.area_bits = 0;
                for (const uint8_t bits : record.mask)
                    input.area_bits += static_cast<uint32_t>(std::popcount(bits));
            });
        }
        case AD_MOTION_SET_SENSITIVITY: {
            const auto &record = *static_cast<const AdMotionSensitivity *>(argument);
            return at(record.chip, record.input,
                      [&](vboard_ad_input &input) { input.sensitivity = record.sensitivity; });
        }
        case AD_MOTION_GET_AREA: {
            auto &record = *static_cast<AdMotionQuery *>(argument);
            return at(record.chip, record.input, [&](vboard_ad_input &input) {
                record.result = stat_.motion_started != 0 ? input.moving : 0;
            });
        }
        default: return refuse_request(code);
        }
    }

private:
    int set_value(const AdChipValue &record, const ValueRow &row)
    {
        if (record.selector != AD_CHIP_SELECTOR) return refuse_argument("the selector is 2");
        stat_.*row.value = record.value;
        return 0;
    }

    int set_rate(const AdSampleRate &record)
    {
        if (record.selector != AD_CHIP_SELECTOR || record.rate_code > 4)
            return refuse_argument("rate codes are 0 to 4");
        stat_.rate_code = record.rate_code;
        return 0;
    }

    template <typename Use> int at(uint32_t chip, uint32_t input, Use use)
    {
        if (chip >= kChips || input >= AD_INPUTS_PER_CHIP)
            return refuse_argument("there are chips 0 to 3 with inputs 0 to 3");
        use(inputs_[chip * AD_INPUTS_PER_CHIP + input]);
        return 0;
    }

    std::mutex mutex_; // guards all below
    vboard_ad_stat stat_ = {};
    std::array<vboard_ad_input, VBOARD_AD_CHANNELS> inputs_ = {};
};

AnalogChips &chips()
{
    static auto *node = new AnalogChips;
    return *node;
}

/* The control face's input by channel. 0, or -1. */
template <typename Use> int use_input(uint32_t channel, Use use)
{
    if (channel >= VBOARD_AD_CHANNELS) return refuse_plainly("there is no analog input %u", channel);
    chips().with_input(channel, use);
    return 0;
}

} // namespace

DeviceNode *analog_chip_node()
{
    return &chips();
}

} // namespace vboard

using namespace vboard;

extern "C" {

int vboard_ad_get_stat(vboard_ad_stat *stat)
{
    if (stat == nullptr) return refuse_plainly("no record to fill");
    *stat = chips().stat();
    return 0;
}

int vboard_ad_get_input(uint32_t channel, vboard_ad_input *input)
{
    if (input == nullptr) return refuse_plainly("no record to fill");
    return use_input(channel, [&](const vboard_ad_input &state) { *input = state; });
}

int vboard_ad_set_loss(uint32_t channel, uint32_t lost)
{
    return use_input(channel, [&](vboard_ad_input &state) { state.lost = lost != 0; });
}

int vboard_ad_set_motion(uint32_t channel, uint32_t blocks)
{
    return use_input(channel, [&](vboard_ad_input &state) { state.moving = blocks; });
}

} // extern "C"
