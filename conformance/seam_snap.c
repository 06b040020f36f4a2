/* seam_snap.c - recorded calls of the media interface: scaler and encoder. */
#define RECORDS_SEAM
#include "seam_account.h"

int32_t rec_MI_DIVP_CreateChn(uint32_t channel, const MI_DIVP_ChnAttr *attr)
{
    BEGIN("MI_DIVP_CreateChn");
    const int32_t result = MI_DIVP_CreateChn(channel, attr);
    if (result == 0) set_flag(account.scaler, CHANNELS, channel, true);
    if (attr == NULL) return DONE(result, "%u, null", channel);
    return DONE(result, "%u, {up to %u x %u, part %u,%u %u x %u}", channel, attr->max_width, attr->max_height,
                attr->crop.x, attr->crop.y, attr->crop.width, attr->crop.height);
}

int32_t rec_MI_DIVP_DestroyChn(uint32_t channel)
{
    BEGIN("MI_DIVP_DestroyChn");
    const int32_t result = MI_DIVP_DestroyChn(channel);
    if (result == 0) set_flag(account.scaler, CHANNELS, channel, false);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr)
{
    BEGIN("MI_DIVP_GetOutputPortAttr");
    const int32_t result = MI_DIVP_GetOutputPortAttr(channel, port, attr);
    if (attr == NULL || result != 0)
        return DONE(result, "%u, %u, %s", channel, port, attr == NULL ? "null" : "attr");
    return DONE(result, "%u, %u, {%u x %u, format %u}", channel, port, attr->width, attr->height,
                attr->pixel_format);
}

int32_t rec_MI_DIVP_SetOutputPortAttr(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr)
{
    BEGIN("MI_DIVP_SetOutputPortAttr");
    const int32_t result = MI_DIVP_SetOutputPortAttr(channel, port, attr);
    if (attr == NULL) return DONE(result, "%u, %u, null", channel, port);
    return DONE(result, "%u, %u, {%u x %u, format %u}", channel, port, attr->width, attr->height,
                attr->pixel_format);
}

int32_t rec_MI_DIVP_StartChn(uint32_t channel)
{
    BEGIN("MI_DIVP_StartChn");
    const int32_t result = MI_DIVP_StartChn(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_DIVP_StopChn(uint32_t channel)
{
    BEGIN("MI_DIVP_StopChn");
    const int32_t result = MI_DIVP_StopChn(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr)
{
    BEGIN("MI_VENC_CreateChn");
    const int32_t result = MI_VENC_CreateChn(channel, attr);
    if (result == 0) set_flag(account.encoder, CHANNELS, channel, true);
    if (attr == NULL) return DONE(result, "%u, null", channel);
    return DONE(result, "%u, {codec %u, %u x %u of %u x %u, %u bytes, restart %u}", channel, attr->codec,
                attr->width, attr->height, attr->max_width, attr->max_height, attr->stream_buffer_bytes,
                attr->restart_rows);
}

int32_t rec_MI_VENC_DestroyChn(uint32_t channel)
{
    BEGIN("MI_VENC_DestroyChn");
    const int32_t result = MI_VENC_DestroyChn(channel);
    if (result == 0) set_flag(account.encoder, CHANNELS, channel, false);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VENC_ResetChn(uint32_t channel)
{
    BEGIN("MI_VENC_ResetChn");
    const int32_t result = MI_VENC_ResetChn(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param)
{
    BEGIN("MI_VENC_GetJpegParam");
    const int32_t result = MI_VENC_GetJpegParam(channel, param);
    if (param == NULL || result != 0)
        return DONE(result, "%u, %s", channel, param == NULL ? "null" : "param");
    return DONE(result, "%u, {quality %u}", channel, param->quality);
}

int32_t rec_MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param)
{
    BEGIN("MI_VENC_SetJpegParam");
    const int32_t result = MI_VENC_SetJpegParam(channel, param);
    if (param == NULL) return DONE(result, "%u, null", channel);
    return DONE(result, "%u, {quality %u}", channel, param->quality);
}

int32_t rec_MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device)
{
    BEGIN("MI_VENC_GetChnDevid");
    const int32_t result = MI_VENC_GetChnDevid(channel, device);
    if (device == NULL || result != 0)
        return DONE(result, "%u, %s", channel, device == NULL ? "null" : "device");
    return DONE(result, "%u, %u", channel, *device);
}

int32_t rec_MI_VENC_StartRecvPic(uint32_t channel)
{
    BEGIN("MI_VENC_StartRecvPic");
    const int32_t result = MI_VENC_StartRecvPic(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VENC_StopRecvPic(uint32_t channel)
{
    BEGIN("MI_VENC_StopRecvPic");
    const int32_t result = MI_VENC_StopRecvPic(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    BEGIN("MI_VENC_GetStream");
    const int32_t result = MI_VENC_GetStream(channel, stream, timeout_ms);
    if (stream == NULL) return DONE(result, "%u, null, %d", channel, timeout_ms);
    if (result != 0 || stream->packs == NULL || stream->pack_count == 0)
        return DONE(result, "%u, {room for %u}, %d", channel, stream->pack_count, timeout_ms);
    return DONE(result, "%u, {%u packs, the first of %u bytes, pts %llu, number %u}, %d", channel,
                stream->pack_count, stream->packs[0].length_bytes, (unsigned long long)stream->packs[0].pts,
                stream->sequence, timeout_ms);
}

int32_t rec_MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream)
{
    BEGIN("MI_VENC_ReleaseStream");
    const int32_t result = MI_VENC_ReleaseStream(channel, stream);
    if (stream == NULL) return DONE(result, "%u, null", channel);
    return DONE(result, "%u, {number %u}", channel, stream->sequence);
}
