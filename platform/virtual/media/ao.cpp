/* ao.cpp - entry points of the audio output: devices 0 to 7, one channel each. */
#include "mi_ao.h"

#include "media/ao_device.h"
#include "media/call.h"
#include "media/modules.h"

namespace vboard
{
namespace
{

CallSite set_attr_site{"MI_AO_SetPubAttr"};
CallSite enable_site{"MI_AO_Enable"};
CallSite enable_channel_site{"MI_AO_EnableChn"};
CallSite set_decoder_site{"MI_AO_SetAdecAttr"};
CallSite enable_decoder_site{"MI_AO_EnableAdec"};
CallSite resample_site{"MI_AO_EnableReSmp"};
CallSite mute_site{"MI_AO_SetMute"};
CallSite volume_site{"MI_AO_SetVolume"};
CallSite send_site{"MI_AO_SendFrame"};

template <typename Step> int32_t with_device(uint32_t number, Step step)
{
    AudioDevice *device = audio_device(number);
    if (device == nullptr) return refuse(MI_MODULE_AO, MI_REASON_BAD_DEVICE, "audio device %u", number);
    return step(*device);
}

template <typename Step> int32_t with_channel(uint32_t number, uint32_t channel, Step step)
{
    if (channel != 0) return refuse(MI_MODULE_AO, MI_REASON_BAD_CHANNEL, "audio channel %u", channel);
    return with_device(number, step);
}

} // namespace

void ao_reset()
{
    for (uint32_t number = 0; number < VBOARD_AUDIO_DEVICES; ++number)
        audio_device(number)->reset();
}

} // namespace vboard

using namespace vboard;

extern "C" {

int32_t MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr)
{
    return platform_call(
        set_attr_site,
        [&] { return with_device(device, [&](AudioDevice &unit) { return unit.set_attr(attr); }); }, device,
        attr);
}

int32_t MI_AO_Enable(uint32_t device)
{
    return platform_call(
        enable_site, [&] { return with_device(device, [](AudioDevice &unit) { return unit.enable(); }); },
        device);
}

int32_t MI_AO_EnableChn(uint32_t device, uint32_t channel)
{
    return platform_call(
        enable_channel_site,
        [&] {
            return with_channel(device, channel, [](AudioDevice &unit) { return unit.enable_channel(); });
        },
        device, channel);
}

int32_t MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr)
{
    return platform_call(
        set_decoder_site,
        [&] {
            return with_channel(device, channel, [&](AudioDevice &unit) { return unit.set_decoder(attr); });
        },
        device, channel, attr);
}

int32_t MI_AO_EnableAdec(uint32_t device, uint32_t channel)
{
    return platform_call(
        enable_decoder_site,
        [&] {
            return with_channel(device, channel, [](AudioDevice &unit) { return unit.enable_decoder(); });
        },
        device, channel);
}

int32_t MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate)
{
    return platform_call(
        resample_site,
        [&] {
            return with_channel(device, channel,
                                [&](AudioDevice &unit) { return unit.enable_resampler(input_rate); });
        },
        device, channel, input_rate);
}

int32_t MI_AO_SetMute(uint32_t device, int32_t mute)
{
    return platform_call(
        mute_site,
        [&] { return with_device(device, [&](AudioDevice &unit) { return unit.set_mute(mute != 0); }); },
        device, mute);
}

int32_t MI_AO_SetVolume(uint32_t device, int32_t volume_db)
{
    return platform_call(
        volume_site,
        [&] { return with_device(device, [&](AudioDevice &unit) { return unit.set_volume(volume_db); }); },
        device, volume_db);
}

int32_t MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms)
{
    return platform_call(
        send_site,
        [&] {
            if (frame == nullptr) return refuse(MI_MODULE_AO, MI_REASON_NULL_POINTER, "no audio block");
            return with_channel(device, channel,
                                [&](AudioDevice &unit) { return unit.send(*frame, timeout_ms); });
        },
        device, channel, frame, timeout_ms);
}

} // extern "C"
