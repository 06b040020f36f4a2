/*
 * ao.cpp - audio output devices 0 to 7 with one channel each: states and counters. No sound is made
 * yet; blocks are counted and dropped at once, so a blocking send never waits.
 */
#include "mi_ao.h"

#include <array>
#include <mutex>

#include "media/call.h"
#include "media/modules.h"

namespace vboard
{
namespace
{

constexpr uint32_t kDevices = 8;

struct AudioDevice {
    bool has_attr = false;
    bool enabled = false;
    bool channel_enabled = false;
    bool decoder_set = false;
    bool decoder_enabled = false;
    uint32_t resample_from_hz = 0; // 0 = off
    bool muted = false;
    int32_t volume_db = 0;
    uint64_t frames = 0;
    MI_AO_PubAttr attr = {};
    MI_AO_AdecAttr decoder = {};
};

struct AudioState {
    std::mutex mutex;
    std::array<AudioDevice, kDevices> devices;
};

AudioState &state()
{
    static AudioState *audio = new AudioState;
    return *audio;
}

CallSite set_attr_site{"MI_AO_SetPubAttr"};
CallSite enable_site{"MI_AO_Enable"};
CallSite enable_channel_site{"MI_AO_EnableChn"};
CallSite set_decoder_site{"MI_AO_SetAdecAttr"};
CallSite enable_decoder_site{"MI_AO_EnableAdec"};
CallSite resample_site{"MI_AO_EnableReSmp"};
CallSite mute_site{"MI_AO_SetMute"};
CallSite volume_site{"MI_AO_SetVolume"};
CallSite send_site{"MI_AO_SendFrame"};

int32_t no_device(uint32_t device)
{
    return refuse(MI_MODULE_AO, MI_REASON_BAD_DEVICE, "audio device %u", device);
}

int32_t no_channel(uint32_t channel)
{
    return refuse(MI_MODULE_AO, MI_REASON_BAD_CHANNEL, "audio channel %u", channel);
}

// Run `step` on an existing device under the lock.
template <typename Step> int32_t with_device(uint32_t device, Step step)
{
    if (device >= kDevices) return no_device(device);
    AudioState &audio = state();
    const std::lock_guard guard(audio.mutex);
    return step(audio.devices[device]);
}

// As with_device, for channel 0 of a device that is enabled.
template <typename Step> int32_t with_channel(uint32_t device, uint32_t channel, Step step)
{
    if (channel != 0) return no_channel(channel);
    return with_device(device, [&](AudioDevice &unit) -> int32_t {
        if (!unit.enabled)
            return refuse(MI_MODULE_AO, MI_REASON_NOT_READY, "audio device %u is not enabled", device);
        return step(unit);
    });
}

int32_t set_attr(uint32_t device, const MI_AO_PubAttr *attr)
{
    if (attr == nullptr) return refuse(MI_MODULE_AO, MI_REASON_NULL_POINTER, "no attributes");
    if (attr->sample_rate < 8000 || attr->sample_rate > 48000)
        return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE, "sample rate %u Hz", attr->sample_rate);
    return with_device(device, [&](AudioDevice &unit) -> int32_t {
        unit.attr = *attr;
        unit.has_attr = true;
        return MI_SUCCESS;
    });
}

int32_t enable(uint32_t device)
{
    return with_device(device, [&](AudioDevice &unit) -> int32_t {
        if (!unit.has_attr)
            return refuse(MI_MODULE_AO, MI_REASON_NOT_READY, "audio device %u has no attributes", device);
        unit.enabled = true;
        return MI_SUCCESS;
    });
}

int32_t set_decoder(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr)
{
    if (attr == nullptr) return refuse(MI_MODULE_AO, MI_REASON_NULL_POINTER, "no attributes");
    return with_channel(device, channel, [&](AudioDevice &unit) -> int32_t {
        if (attr->codec != MI_AO_CODEC_G711A)
            return refuse(MI_MODULE_AO, MI_REASON_UNSUPPORTED, "audio codec %u", attr->codec);
        unit.decoder = *attr;
        unit.decoder_set = true;
        return MI_SUCCESS;
    });
}

int32_t enable_decoder(uint32_t device, uint32_t channel)
{
    return with_channel(device, channel, [&](AudioDevice &unit) -> int32_t {
        if (!unit.decoder_set)
            return refuse(MI_MODULE_AO, MI_REASON_NOT_READY, "the audio decoder has no attributes");
        unit.decoder_enabled = true;
        return MI_SUCCESS;
    });
}

int32_t send(uint32_t device, uint32_t channel, const MI_AO_Frame *frame)
{
    if (frame == nullptr || frame->data[0] == nullptr)
        return refuse(MI_MODULE_AO, MI_REASON_NULL_POINTER, "no audio bytes");
    if (frame->length_bytes == 0) return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE, "an empty audio block");
    return with_channel(device, channel, [&](AudioDevice &unit) -> int32_t {
        if (!unit.channel_enabled)
            return refuse(MI_MODULE_AO, MI_REASON_NOT_READY, "audio channel %u is not enabled", channel);
        ++unit.frames;
        return MI_SUCCESS;
    });
}

} // namespace

void ao_reset()
{
    AudioState &audio = state();
    const std::lock_guard guard(audio.mutex);
    audio.devices = {};
}

} // namespace vboard

using namespace vboard;

extern "C" {

int32_t MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr)
{
    return platform_call(
        set_attr_site, [&] { return set_attr(device, attr); }, device, attr);
}

int32_t MI_AO_Enable(uint32_t device)
{
    return platform_call(
        enable_site, [&] { return enable(device); }, device);
}

int32_t MI_AO_EnableChn(uint32_t device, uint32_t channel)
{
    return platform_call(
        enable_channel_site,
        [&] {
            return with_channel(device, channel, [](AudioDevice &unit) {
                unit.channel_enabled = true;
                return MI_SUCCESS;
            });
        },
        device, channel);
}

int32_t MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr)
{
    return platform_call(
        set_decoder_site, [&] { return set_decoder(device, channel, attr); }, device, channel, attr);
}

int32_t MI_AO_EnableAdec(uint32_t device, uint32_t channel)
{
    return platform_call(
        enable_decoder_site, [&] { return enable_decoder(device, channel); }, device, channel);
}

int32_t MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate)
{
    return platform_call(
        resample_site,
        [&] {
            return with_channel(device, channel, [&](AudioDevice &unit) -> int32_t {
                if (input_rate < 8000 || input_rate > 48000)
                    return refuse(MI_MODULE_AO, MI_REASON_BAD_VALUE, "input rate %u Hz", input_rate);
                unit.resample_from_hz = input_rate;
                return MI_SUCCESS;
            });
        },
        device, channel, input_rate);
}

int32_t MI_AO_SetMute(uint32_t device, int32_t mute)
{
    return platform_call(
        mute_site,
        [&] {
            return with_device(device, [&](AudioDevice &unit) {
                unit.muted = mute != 0;
                return MI_SUCCESS;
            });
        },
        device, mute);
}

int32_t MI_AO_SetVolume(uint32_t device, int32_t volume_db)
{
    return platform_call(
        volume_site,
        [&] {
            return with_device(device, [&](AudioDevice &unit) {
                unit.volume_db = volume_db;
                return MI_SUCCESS;
            });
        },
        device, volume_db);
}

int32_t MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms)
{
    return platform_call(
        send_site, [&] { return send(device, channel, frame); }, device, channel, frame, timeout_ms);
}

} // extern "C"
