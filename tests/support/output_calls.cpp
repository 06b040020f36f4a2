/* The audio output, scaler and encoder modules of the recording platform. */
#include <cstring>

#include "record_call.h"

using recording::MediaState;
using recording::platform;
using recording::record_call;
using recording::record_plain_call;
using recording::record_refusable_call;

namespace
{

/* What an unscripted MI_VENC_GetStream delivers: the smallest thing that begins and ends as JPEG. */
constexpr uint8_t kEmptyJpeg[] = {0xFF, 0xD8, 0xFF, 0xD9};

/* Lent from MI_VENC_GetStream to MI_VENC_ReleaseStream; whoever looks at it later sees the pattern. */
uint8_t lent_jpeg[sizeof kEmptyJpeg];

} // namespace

extern "C" {

int32_t MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr)
{
    return record_plain_call("MI_AO_SetPubAttr", device, attr);
}

int32_t MI_AO_Enable(uint32_t device)
{
    return record_plain_call("MI_AO_Enable", device);
}

int32_t MI_AO_EnableChn(uint32_t device, uint32_t channel)
{
    return record_plain_call("MI_AO_EnableChn", device, channel);
}

int32_t MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr)
{
    return record_plain_call("MI_AO_SetAdecAttr", device, channel, attr);
}

int32_t MI_AO_EnableAdec(uint32_t device, uint32_t channel)
{
    return record_plain_call("MI_AO_EnableAdec", device, channel);
}

int32_t MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate)
{
    return record_plain_call("MI_AO_EnableReSmp", device, channel, input_rate);
}

int32_t MI_AO_SetMute(uint32_t device, int32_t mute)
{
    return record_plain_call("MI_AO_SetMute", device, mute);
}

int32_t MI_AO_SetVolume(uint32_t device, int32_t volume_db)
{
    return record_plain_call("MI_AO_SetVolume", device, volume_db);
}

int32_t MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms)
{
    if (frame) platform.keep_bytes("MI_AO_SendFrame", frame->data[0], frame->length_bytes);
    return record_plain_call("MI_AO_SendFrame", device, channel, frame, timeout_ms);
}

int32_t MI_DIVP_CreateChn(uint32_t channel, const MI_DIVP_ChnAttr *attr)
{
    return record_refusable_call(
        "MI_DIVP_CreateChn", [=](const MediaState &media) { return media.scalers.refuse_create(channel); },
        [=](MediaState &media) { media.scalers.create(channel); }, channel, attr);
}

int32_t MI_DIVP_DestroyChn(uint32_t channel)
{
    return record_refusable_call(
        "MI_DIVP_DestroyChn", [=](const MediaState &media) { return media.scalers.refuse_destroy(channel); },
        [=](MediaState &media) { media.scalers.destroy(channel); }, channel);
}

int32_t MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr)
{
    return record_refusable_call(
        "MI_DIVP_GetOutputPortAttr",
        [=](const MediaState &media) { return media.scalers.refuse_use(channel); },
        [=](MediaState &media) {
            if (attr) *attr = media.scaler_outputs[{channel, port}];
        },
        channel, port, attr);
}

int32_t MI_DIVP_SetOutputPortAttr(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr)
{
    return record_refusable_call(
        "MI_DIVP_SetOutputPortAttr",
        [=](const MediaState &media) { return media.scalers.refuse_use(channel); },
        [=](MediaState &media) {
            if (attr) media.scaler_outputs[{channel, port}] = *attr;
        },
        channel, port, attr);
}

int32_t MI_DIVP_StartChn(uint32_t channel)
{
    return record_refusable_call(
        "MI_DIVP_StartChn", [=](const MediaState &media) { return media.scalers.refuse_use(channel); },
        [=](MediaState &media) { media.scalers.start(channel, true); }, channel);
}

int32_t MI_DIVP_StopChn(uint32_t channel)
{
    return record_refusable_call(
        "MI_DIVP_StopChn", [=](const MediaState &media) { return media.scalers.refuse_use(channel); },
        [=](MediaState &media) { media.scalers.start(channel, false); }, channel);
}

int32_t MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr)
{
    return record_refusable_call(
        "MI_VENC_CreateChn", [=](const MediaState &media) { return media.encoders.refuse_create(channel); },
        [=](MediaState &media) { media.encoders.create(channel); }, channel, attr);
}

int32_t MI_VENC_DestroyChn(uint32_t channel)
{
    return record_refusable_call(
        "MI_VENC_DestroyChn", [=](const MediaState &media) { return media.encoders.refuse_destroy(channel); },
        [=](MediaState &media) { media.encoders.destroy(channel); }, channel);
}

int32_t MI_VENC_ResetChn(uint32_t channel)
{
    return record_refusable_call(
        "MI_VENC_ResetChn", [=](const MediaState &media) { return media.encoders.refuse_use(channel); },
        [=](MediaState &) {}, channel);
}

int32_t MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param)
{
    return record_refusable_call(
        "MI_VENC_GetJpegParam", [=](const MediaState &media) { return media.encoders.refuse_use(channel); },
        [=](MediaState &media) {
            if (param) *param = media.jpeg_params[channel];
        },
        channel, param);
}

int32_t MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param)
{
    return record_refusable_call(
        "MI_VENC_SetJpegParam", [=](const MediaState &media) { return media.encoders.refuse_use(channel); },
        [=](MediaState &media) {
            if (param) media.jpeg_params[channel] = *param;
        },
        channel, param);
}

int32_t MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device)
{
    return record_refusable_call(
        "MI_VENC_GetChnDevid", [=](const MediaState &media) { return media.encoders.refuse_use(channel); },
        [=](MediaState &) {
            if (device) *device = 0;
        },
        channel, device);
}

int32_t MI_VENC_StartRecvPic(uint32_t channel)
{
    return record_refusable_call(
        "MI_VENC_StartRecvPic", [=](const MediaState &media) { return media.encoders.refuse_use(channel); },
        [=](MediaState &media) { media.encoders.start(channel, true); }, channel);
}

int32_t MI_VENC_StopRecvPic(uint32_t channel)
{
    return record_refusable_call(
        "MI_VENC_StopRecvPic", [=](const MediaState &media) { return media.encoders.refuse_use(channel); },
        [=](MediaState &media) { media.encoders.start(channel, false); }, channel);
}

int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    return record_refusable_call(
        "MI_VENC_GetStream", [=](const MediaState &media) { return media.encoders.refuse_use(channel); },
        [=](MediaState &) {
            if (!stream) return;
            const bool room = stream->packs != nullptr && stream->pack_count > 0;
            for (uint32_t pack = 0; room && pack < stream->pack_count; ++pack)
                recording::fill_with_pattern(stream->packs[pack]);
            if (room) {
                std::memcpy(lent_jpeg, kEmptyJpeg, sizeof kEmptyJpeg);
                stream->packs[0].address = lent_jpeg;
                stream->packs[0].length_bytes = sizeof kEmptyJpeg;
                stream->packs[0].pts = 0;
                stream->packs[0].offset_bytes = 0;
                stream->packs[0].frame_end = 1;
            }
            stream->pack_count = room ? 1 : 0;
            stream->sequence = 0;
            stream->handle = 1;
        },
        channel, stream, timeout_ms);
}

int32_t MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream)
{
    return record_refusable_call(
        "MI_VENC_ReleaseStream", [=](const MediaState &media) { return media.encoders.refuse_use(channel); },
        [](MediaState &) { recording::fill_with_pattern(lent_jpeg); }, channel, stream);
}

} // extern "C"
