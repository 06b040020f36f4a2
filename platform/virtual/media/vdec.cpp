/* vdec.cpp - entry points of the decoder module. */
#include "mi_vdec.h"

#include "media/call.h"
#include "media/vdec_channel.h"

using namespace vboard;

namespace
{

CallSite create_site{"MI_VDEC_CreateChn"};
CallSite destroy_site{"MI_VDEC_DestroyChn"};
CallSite start_site{"MI_VDEC_StartChn"};
CallSite stop_site{"MI_VDEC_StopChn"};
CallSite get_attr_site{"MI_VDEC_GetChnAttr"};
CallSite get_stat_site{"MI_VDEC_GetChnStat"};
CallSite send_site{"MI_VDEC_SendStream"};
CallSite set_output_site{"MI_VDEC_SetOutputPortAttr"};
CallSite get_output_site{"MI_VDEC_GetOutputPortAttr"};

} // namespace

extern "C" {

int32_t MI_VDEC_CreateChn(uint32_t channel, const MI_VDEC_ChnAttr *attr)
{
    return platform_call(
        create_site, [&] { return vdec_create(channel, attr); }, channel, attr);
}

int32_t MI_VDEC_DestroyChn(uint32_t channel)
{
    return platform_call(
        destroy_site, [&] { return vdec_destroy(channel); }, channel);
}

int32_t MI_VDEC_StartChn(uint32_t channel)
{
    return platform_call(
        start_site, [&] { return vdec_start(channel); }, channel);
}

int32_t MI_VDEC_StopChn(uint32_t channel)
{
    return platform_call(
        stop_site, [&] { return vdec_stop(channel); }, channel);
}

int32_t MI_VDEC_GetChnAttr(uint32_t channel, MI_VDEC_ChnAttr *attr)
{
    return platform_call(
        get_attr_site, [&] { return vdec_get_attr(channel, attr); }, channel, attr);
}

int32_t MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat)
{
    return platform_call(
        get_stat_site, [&] { return vdec_get_stat(channel, stat); }, channel, stat);
}

int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    return platform_call(
        send_site, [&] { return vdec_send(channel, stream, timeout_ms); }, channel, stream, timeout_ms);
}

int32_t MI_VDEC_SetOutputPortAttr(uint32_t channel, const MI_VDEC_OutputPortAttr *attr)
{
    return platform_call(
        set_output_site, [&] { return vdec_set_output(channel, attr); }, channel, attr);
}

int32_t MI_VDEC_GetOutputPortAttr(uint32_t channel, MI_VDEC_OutputPortAttr *attr)
{
    return platform_call(
        get_output_site, [&] { return vdec_get_output(channel, attr); }, channel, attr);
}

} // extern "C"
