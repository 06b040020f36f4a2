/* divp_output_size_forgotten - breaks: the scaler's output attributes read back as they were set. */
#include "mi_divp.h"
#include "mutant.h"

int32_t MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr)
{
    const int32_t result = PLATFORM(MI_DIVP_GetOutputPortAttr)(channel, port, attr);
    if (result == MI_SUCCESS) *attr = (MI_DIVP_OutputPortAttr){0};
    return result;
}
