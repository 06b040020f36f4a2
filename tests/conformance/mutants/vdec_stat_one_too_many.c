/* vdec_stat_one_too_many - breaks: a channel that has consumed everything reports no frame left. */
#include "mi_vdec.h"
#include "mutant.h"

/* The difference of two indexes, both of which count from the other end. */
int32_t MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat)
{
    const int32_t result = PLATFORM(MI_VDEC_GetChnStat)(channel, stat);
    if (result == MI_SUCCESS) ++stat->left_stream_frames;
    return result;
}
