/* seam_ao.c - recorded calls of the media interface: audio. */
#define RECORDS_SEAM
#include "seam_account.h"

int32_t rec_MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr)
{
    BEGIN("MI_AO_SetPubAttr");
    const int32_t result = MI_AO_SetPubAttr(device, attr);
    if (attr == NULL) return DONE(result, "%u, null", device);
    return DONE(result, "%u, {%u Hz, width %u, %u x %u samples, %u channels}", device, attr->sample_rate,
                attr->bit_width, attr->frame_count, attr->samples_per_frame, attr->channels);
}

int32_t rec_MI_AO_Enable(uint32_t device)
{
    BEGIN("MI_AO_Enable");
    const int32_t result = MI_AO_Enable(device);
    if (result == 0) set_flag(account.audio_on, 8, device, true);
    return DONE(result, "%u", device);
}

int32_t rec_MI_AO_EnableChn(uint32_t device, uint32_t channel)
{
    BEGIN("MI_AO_EnableChn");
    const int32_t result = MI_AO_EnableChn(device, channel);
    return DONE(result, "%u, %u", device, channel);
}

int32_t rec_MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr)
{
    BEGIN("MI_AO_SetAdecAttr");
    const int32_t result = MI_AO_SetAdecAttr(device, channel, attr);
    if (attr == NULL) return DONE(result, "%u, %u, null", device, channel);
    return DONE(result, "%u, %u, {codec %u, %u Hz, mode %u}", device, channel, attr->codec, attr->sample_rate,
                attr->sound_mode);
}

int32_t rec_MI_AO_EnableAdec(uint32_t device, uint32_t channel)
{
    BEGIN("MI_AO_EnableAdec");
    const int32_t result = MI_AO_EnableAdec(device, channel);
    return DONE(result, "%u, %u", device, channel);
}

int32_t rec_MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate)
{
    BEGIN("MI_AO_EnableReSmp");
    const int32_t result = MI_AO_EnableReSmp(device, channel, input_rate);
    return DONE(result, "%u, %u, %u", device, channel, input_rate);
}

int32_t rec_MI_AO_SetMute(uint32_t device, int32_t mute)
{
    BEGIN("MI_AO_SetMute");
    const int32_t result = MI_AO_SetMute(device, mute);
    return DONE(result, "%u, %d", device, mute);
}

int32_t rec_MI_AO_SetVolume(uint32_t device, int32_t volume_db)
{
    BEGIN("MI_AO_SetVolume");
    const int32_t result = MI_AO_SetVolume(device, volume_db);
    return DONE(result, "%u, %d", device, volume_db);
}

int32_t rec_MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms)
{
    BEGIN("MI_AO_SendFrame");
    const int32_t result = MI_AO_SendFrame(device, channel, frame, timeout_ms);
    if (frame == NULL) return DONE(result, "%u, %u, null, %d", device, channel, timeout_ms);
    return DONE(result, "%u, %u, {%s, %u bytes}, %d", device, channel,
                frame->data[0] == NULL ? "null" : "data", frame->length_bytes, timeout_ms);
}
