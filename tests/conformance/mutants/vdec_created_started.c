/* vdec_created_started - breaks: a channel is created stopped, and refuses bytes until it is started. */
#include "mi_vdec.h"
#include "mutant.h"

int32_t MI_VDEC_CreateChn(uint32_t channel, const MI_VDEC_ChnAttr *attr)
{
    const int32_t result = PLATFORM(MI_VDEC_CreateChn)(channel, attr);
    if (result == MI_SUCCESS) PLATFORM(MI_VDEC_StartChn)(channel);
    return result;
}
