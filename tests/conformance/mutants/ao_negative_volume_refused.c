/* ao_negative_volume_refused - breaks: the volume is a gain in dB, which may be below 0. */
#include "mi_ao.h"
#include "mutant.h"

/* The mixer's own scale begins at 0. */
int32_t MI_AO_SetVolume(uint32_t device, int32_t volume_db)
{
    if (volume_db < 0) return MI_ERROR(MI_MODULE_AO, MI_REASON_BAD_VALUE);
    return PLATFORM(MI_AO_SetVolume)(device, volume_db);
}
