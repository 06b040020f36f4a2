/* divp.cpp - entry points of the scaler module. */
#include "mi_divp.h"

#include "media/call.h"
#include "media/scaler_channel.h"

using namespace vboard;

namespace
{

CallSite create_site{"MI_DIVP_CreateChn"};
CallSite destroy_site{"MI_DIVP_DestroyChn"};
CallSite get_output_site{"MI_DIVP_GetOutputPortAttr"};
CallSite set_output_site{"MI_DIVP_SetOutputPortAttr"};
CallSite start_site{"MI_DIVP_StartChn"};
CallSite stop_site{"MI_DIVP_StopChn"};

} // namespace

extern "C" {

int32_t MI_DIVP_CreateChn(uint32_t channel, const MI_DIVP_ChnAttr *attr)
{
    return platform_call(
        create_site, [&] { return scaler_create(channel, attr); }, channel, attr);
}

int32_t MI_DIVP_DestroyChn(uint32_t channel)
{
    return platform_call(
        destroy_site, [&] { return scaler_destroy(channel); }, channel);
}

int32_t MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr)
{
    return platform_call(
        get_output_site, [&] { return scaler_get_output(channel, port, attr); }, channel, port, attr);
}

int32_t MI_DIVP_SetOutputPortAttr(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr)
{
    return platform_call(
        set_output_site, [&] { return scaler_set_output(channel, port, attr); }, channel, port, attr);
}

int32_t MI_DIVP_StartChn(uint32_t channel)
{
    return platform_call(
        start_site, [&] { return scaler_start(channel); }, channel);
}

int32_t MI_DIVP_StopChn(uint32_t channel)
{
    return platform_call(
        stop_site, [&] { return scaler_stop(channel); }, channel);
}

} // extern "C"
