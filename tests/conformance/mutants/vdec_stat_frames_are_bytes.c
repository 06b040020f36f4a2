/* vdec_stat_frames_are_bytes - breaks: left_stream_frames counts sends, not bytes. */
#include "mi_vdec.h"
#include "mutant.h"

int32_t MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat)
{
    const int32_t result = PLATFORM(MI_VDEC_GetChnStat)(channel, stat);
    if (result == MI_SUCCESS) stat->left_stream_frames = stat->left_stream_bytes;
    return result;
}
