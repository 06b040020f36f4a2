/* venc.cpp - entry points of the encoder module. */
#include "mi_venc.h"

#include "media/call.h"
#include "media/venc_channel.h"

using namespace vboard;

namespace
{

CallSite create_site{"MI_VENC_CreateChn"};
CallSite destroy_site{"MI_VENC_DestroyChn"};
CallSite reset_site{"MI_VENC_ResetChn"};
CallSite get_jpeg_site{"MI_VENC_GetJpegParam"};
CallSite set_jpeg_site{"MI_VENC_SetJpegParam"};
CallSite devid_site{"MI_VENC_GetChnDevid"};
CallSite start_site{"MI_VENC_StartRecvPic"};
CallSite stop_site{"MI_VENC_StopRecvPic"};
CallSite get_stream_site{"MI_VENC_GetStream"};
CallSite release_site{"MI_VENC_ReleaseStream"};

} // namespace

extern "C" {

int32_t MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr)
{
    return platform_call(
        create_site, [&] { return venc_create(channel, attr); }, channel, attr);
}

int32_t MI_VENC_DestroyChn(uint32_t channel)
{
    return platform_call(
        destroy_site, [&] { return venc_destroy(channel); }, channel);
}

int32_t MI_VENC_ResetChn(uint32_t channel)
{
    return platform_call(
        reset_site, [&] { return venc_reset_channel(channel); }, channel);
}

int32_t MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param)
{
    return platform_call(
        get_jpeg_site, [&] { return venc_get_jpeg(channel, param); }, channel, param);
}

int32_t MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param)
{
    return platform_call(
        set_jpeg_site, [&] { return venc_set_jpeg(channel, param); }, channel, param);
}

int32_t MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device)
{
    return platform_call(
        devid_site, [&] { return venc_get_device(channel, device); }, channel, device);
}

int32_t MI_VENC_StartRecvPic(uint32_t channel)
{
    return platform_call(
        start_site, [&] { return venc_start(channel); }, channel);
}

int32_t MI_VENC_StopRecvPic(uint32_t channel)
{
    return platform_call(
        stop_site, [&] { return venc_stop(channel); }, channel);
}

int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    return platform_call(
        get_stream_site, [&] { return venc_get_stream(channel, stream, timeout_ms); }, channel, stream,
        timeout_ms);
}

int32_t MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream)
{
    return platform_call(
        release_site, [&] { return venc_release_stream(channel, stream); }, channel, stream);
}

} // extern "C"
