/* record_output.c - the audio output, scaler and encoder modules of the recording platform in C. */
#include <string.h>

#include "media_state.h"
#include "mi_ao.h"
#include "mi_divp.h"
#include "mi_venc.h"
#include "recording.h"

/* What MI_VENC_GetStream delivers: the smallest thing that begins and ends as JPEG. Whoever looks at it
 * after its release sees the pattern. */
static const uint8_t empty_jpeg[] = {0xFF, 0xD8, 0xFF, 0xD9};
static uint8_t lent_jpeg[sizeof empty_jpeg];

static MI_DIVP_OutputPortAttr scaler_outputs[MOST_CHANNELS];
static MI_VENC_JpegParam jpeg_params[MOST_CHANNELS];

int32_t MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr)
{
    return record_call(
        "MI_AO_SetPubAttr",
        "%u {rate %u width %u work %u sound %u frames %u samples %u channels %u codec channels %u}", device,
        attr->sample_rate, attr->bit_width, attr->work_mode, attr->sound_mode, attr->frame_count,
        attr->samples_per_frame, attr->channels, attr->codec_channels);
}

int32_t MI_AO_Enable(uint32_t device)
{
    return record_call("MI_AO_Enable", "%u", device);
}

int32_t MI_AO_EnableChn(uint32_t device, uint32_t channel)
{
    return record_call("MI_AO_EnableChn", "%u %u", device, channel);
}

int32_t MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr)
{
    return record_call("MI_AO_SetAdecAttr", "%u %u {codec %u rate %u sound %u}", device, channel, attr->codec,
                       attr->sample_rate, attr->sound_mode);
}

int32_t MI_AO_EnableAdec(uint32_t device, uint32_t channel)
{
    return record_call("MI_AO_EnableAdec", "%u %u", device, channel);
}

int32_t MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate)
{
    return record_call("MI_AO_EnableReSmp", "%u %u %u", device, channel, input_rate);
}

int32_t MI_AO_SetMute(uint32_t device, int32_t mute)
{
    return record_call("MI_AO_SetMute", "%u %d", device, (int)mute);
}

int32_t MI_AO_SetVolume(uint32_t device, int32_t volume_db)
{
    return record_call("MI_AO_SetVolume", "%u %d", device, (int)volume_db);
}

int32_t MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms)
{
    return record_call("MI_AO_SendFrame", "%u %u {%u bytes} %d", device, channel, frame->length_bytes,
                       (int)timeout_ms);
}

int32_t MI_DIVP_CreateChn(uint32_t channel, const MI_DIVP_ChnAttr *attr)
{
    int32_t result = record_call(
        "MI_DIVP_CreateChn",
        "%u {max %ux%u noise %u deinterlace %u rotation %u crop %u,%u %ux%u mirror %u flip %u}", channel,
        attr->max_width, attr->max_height, attr->noise_reduction, attr->deinterlace, attr->rotation,
        attr->crop.x, attr->crop.y, attr->crop.width, attr->crop.height, attr->mirror, attr->flip);
    if (result == MI_SUCCESS) result = refuse_create(&scalers, channel);
    if (result == MI_SUCCESS) scalers.exists[channel] = true;
    return result;
}

/* A call on a channel that has to be there. */
static int32_t use(const struct channels *channels, const char *name, uint32_t channel)
{
    const int32_t result = record_call(name, "%u", channel);
    return result == MI_SUCCESS ? refuse_use(channels, channel) : result;
}

static int32_t destroy(struct channels *channels, const char *name, uint32_t channel)
{
    int32_t result = record_call(name, "%u", channel);
    if (result == MI_SUCCESS) result = refuse_destroy(channels, channel);
    if (result == MI_SUCCESS) channels->exists[channel] = false;
    return result;
}

static int32_t start(struct channels *channels, const char *name, uint32_t channel, bool started)
{
    const int32_t result = use(channels, name, channel);
    if (result == MI_SUCCESS) channels->started[channel] = started;
    return result;
}

int32_t MI_DIVP_DestroyChn(uint32_t channel)
{
    return destroy(&scalers, "MI_DIVP_DestroyChn", channel);
}

int32_t MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr)
{
    int32_t result = record_call("MI_DIVP_GetOutputPortAttr", "%u %u", channel, port);
    if (result == MI_SUCCESS) result = refuse_use(&scalers, channel);
    if (result == MI_SUCCESS) *attr = scaler_outputs[channel];
    return result;
}

int32_t MI_DIVP_SetOutputPortAttr(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr)
{
    int32_t result =
        record_call("MI_DIVP_SetOutputPortAttr", "%u %u {%ux%u format %u compression %u}", channel, port,
                    attr->width, attr->height, attr->pixel_format, attr->compression);
    if (result == MI_SUCCESS) result = refuse_use(&scalers, channel);
    if (result == MI_SUCCESS) scaler_outputs[channel] = *attr;
    return result;
}

int32_t MI_DIVP_StartChn(uint32_t channel)
{
    return start(&scalers, "MI_DIVP_StartChn", channel, true);
}

int32_t MI_DIVP_StopChn(uint32_t channel)
{
    return start(&scalers, "MI_DIVP_StopChn", channel, false);
}

int32_t MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr)
{
    int32_t result = record_call(
        "MI_VENC_CreateChn", "%u {codec %u max %ux%u buffer %u size %ux%u by_frame %u restart %u}", channel,
        attr->codec, attr->max_width, attr->max_height, attr->stream_buffer_bytes, attr->width, attr->height,
        attr->by_frame, attr->restart_rows);
    if (result == MI_SUCCESS) result = refuse_create(&encoders, channel);
    if (result == MI_SUCCESS) encoders.exists[channel] = true;
    return result;
}

int32_t MI_VENC_DestroyChn(uint32_t channel)
{
    return destroy(&encoders, "MI_VENC_DestroyChn", channel);
}

int32_t MI_VENC_ResetChn(uint32_t channel)
{
    return use(&encoders, "MI_VENC_ResetChn", channel);
}

int32_t MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param)
{
    const int32_t result = use(&encoders, "MI_VENC_GetJpegParam", channel);
    if (result == MI_SUCCESS) *param = jpeg_params[channel];
    return result;
}

int32_t MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param)
{
    int32_t result = record_call("MI_VENC_SetJpegParam", "%u {quality %u}", channel, param->quality);
    if (result == MI_SUCCESS) result = refuse_use(&encoders, channel);
    if (result == MI_SUCCESS) jpeg_params[channel] = *param;
    return result;
}

int32_t MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device)
{
    const int32_t result = use(&encoders, "MI_VENC_GetChnDevid", channel);
    if (result == MI_SUCCESS) *device = 0;
    return result;
}

int32_t MI_VENC_StartRecvPic(uint32_t channel)
{
    return start(&encoders, "MI_VENC_StartRecvPic", channel, true);
}

int32_t MI_VENC_StopRecvPic(uint32_t channel)
{
    return start(&encoders, "MI_VENC_StopRecvPic", channel, false);
}

int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    int32_t result = record_call("MI_VENC_GetStream", "%u %d", channel, (int)timeout_ms);
    if (result == MI_SUCCESS) result = refuse_use(&encoders, channel);
    if (result != MI_SUCCESS) return result;
    memset(stream->packs, HANDED_OUT_BYTE, stream->pack_count * sizeof *stream->packs);
    memcpy(lent_jpeg, empty_jpeg, sizeof empty_jpeg);
    stream->packs[0].address = lent_jpeg;
    stream->packs[0].length_bytes = sizeof empty_jpeg;
    stream->packs[0].pts = 0;
    stream->packs[0].offset_bytes = 0;
    stream->packs[0].frame_end = 1;
    stream->pack_count = 1;
    stream->sequence = 0;
    stream->handle = 1;
    return result;
}

int32_t MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream)
{
    (void)stream;
    const int32_t result = use(&encoders, "MI_VENC_ReleaseStream", channel);
    if (result == MI_SUCCESS) memset(lent_jpeg, HANDED_OUT_BYTE, sizeof lent_jpeg);
    return result;
}
