/* divp.cpp - the picture scaler. This board has none yet: every call is refused. */
#include "mi_divp.h"

#include "media/call.h"
#include "media/scaler_channel.h"

namespace vboard
{
namespace
{

CallSite create_site{"MI_DIVP_CreateChn"};
CallSite destroy_site{"MI_DIVP_DestroyChn"};
CallSite get_output_site{"MI_DIVP_GetOutputPortAttr"};
CallSite set_output_site{"MI_DIVP_SetOutputPortAttr"};
CallSite start_site{"MI_DIVP_StartChn"};
CallSite stop_site{"MI_DIVP_StopChn"};

int32_t no_scaler()
{
    return refuse(MI_MODULE_DIVP, MI_REASON_UNSUPPORTED, "this board has no scaler");
}

} // namespace

bool scaler_channel_exists(uint32_t)
{
    return false;
}

void scaler_channel_take(uint32_t, const TicketPtr &, const std::atomic<bool> &) {}

} // namespace vboard

using namespace vboard;

extern "C" {

int32_t MI_DIVP_CreateChn(uint32_t channel, const MI_DIVP_ChnAttr *attr)
{
    return platform_call(create_site, no_scaler, channel, attr);
}

int32_t MI_DIVP_DestroyChn(uint32_t channel)
{
    return platform_call(destroy_site, no_scaler, channel);
}

int32_t MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr)
{
    return platform_call(get_output_site, no_scaler, channel, port, attr);
}

int32_t MI_DIVP_SetOutputPortAttr(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr)
{
    return platform_call(set_output_site, no_scaler, channel, port, attr);
}

int32_t MI_DIVP_StartChn(uint32_t channel)
{
    return platform_call(start_site, no_scaler, channel);
}

int32_t MI_DIVP_StopChn(uint32_t channel)
{
    return platform_call(stop_site, no_scaler, channel);
}

} // extern "C"
