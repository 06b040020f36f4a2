/* venc.cpp - encoder channels. This board has none yet: every call is refused. */
#include "mi_venc.h"

#include "media/call.h"
#include "media/venc_channel.h"

namespace vboard
{
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

int32_t no_encoder()
{
    return refuse(MI_MODULE_VENC, MI_REASON_UNSUPPORTED, "this board has no encoder");
}

} // namespace

bool venc_channel_exists(uint32_t)
{
    return false;
}

void venc_channel_take(uint32_t, const TicketPtr &, const std::atomic<bool> &) {}

} // namespace vboard

using namespace vboard;

extern "C" {

int32_t MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr)
{
    return platform_call(create_site, no_encoder, channel, attr);
}

int32_t MI_VENC_DestroyChn(uint32_t channel)
{
    return platform_call(destroy_site, no_encoder, channel);
}

int32_t MI_VENC_ResetChn(uint32_t channel)
{
    return platform_call(reset_site, no_encoder, channel);
}

int32_t MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param)
{
    return platform_call(get_jpeg_site, no_encoder, channel, param);
}

int32_t MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param)
{
    return platform_call(set_jpeg_site, no_encoder, channel, param);
}

int32_t MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device)
{
    return platform_call(devid_site, no_encoder, channel, device);
}

int32_t MI_VENC_StartRecvPic(uint32_t channel)
{
    return platform_call(start_site, no_encoder, channel);
}

int32_t MI_VENC_StopRecvPic(uint32_t channel)
{
    return platform_call(stop_site, no_encoder, channel);
}

int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    return platform_call(get_stream_site, no_encoder, channel, stream, timeout_ms);
}

int32_t MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream)
{
    return platform_call(release_site, no_encoder, channel, stream);
}

} // extern "C"
