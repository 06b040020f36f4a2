/* disp_rate_needs_stop - breaks: a new frame rate is taken by a running device. */
#include "mi_disp.h"
#include "mutant.h"

#include <stdatomic.h>

static atomic_int enabled[kDevices];

static atomic_int *find(int32_t device)
{
    return device >= -1 && device < kDevices - 1 ? &enabled[device + 1] : NULL;
}

int32_t MI_DISP_Enable(int32_t device)
{
    const int32_t result = PLATFORM(MI_DISP_Enable)(device);
    if (result == MI_SUCCESS) atomic_store(find(device), 1);
    return result;
}

int32_t MI_DISP_Disable(int32_t device)
{
    const int32_t result = PLATFORM(MI_DISP_Disable)(device);
    if (result == MI_SUCCESS) atomic_store(find(device), 0);
    return result;
}

int32_t MI_DISP_SetPubAttr(int32_t device, const MI_DISP_PubAttr *attr)
{
    MI_DISP_PubAttr now;
    if (attr != NULL && find(device) != NULL && atomic_load(find(device)) &&
        PLATFORM(MI_DISP_GetPubAttr)(device, &now) == MI_SUCCESS && now.frame_rate != attr->frame_rate)
        return MI_ERROR(MI_MODULE_DISP, MI_REASON_NOT_PERMITTED);
    return PLATFORM(MI_DISP_SetPubAttr)(device, attr);
}
