/* vdec_stream_mode_as_frames - breaks: in stream mode a send may carry any cut of the byte stream. */
#include "mi_vdec.h"
#include "mutant.h"

#include <stdatomic.h>

/* Every channel is opened in frame mode; what the caller asked for is only kept for the query. */
static atomic_uint asked[kChannels];

int32_t MI_VDEC_CreateChn(uint32_t channel, const MI_VDEC_ChnAttr *attr)
{
    if (channel >= kChannels || attr == NULL || attr->video_mode != MI_VDEC_MODE_STREAM) {
        const int32_t result = PLATFORM(MI_VDEC_CreateChn)(channel, attr);
        if (result == MI_SUCCESS && channel < kChannels) atomic_store(&asked[channel], attr->video_mode);
        return result;
    }
    MI_VDEC_ChnAttr frames = *attr;
    frames.video_mode = MI_VDEC_MODE_FRAME;
    const int32_t result = PLATFORM(MI_VDEC_CreateChn)(channel, &frames);
    if (result == MI_SUCCESS) atomic_store(&asked[channel], MI_VDEC_MODE_STREAM);
    return result;
}

int32_t MI_VDEC_GetChnAttr(uint32_t channel, MI_VDEC_ChnAttr *attr)
{
    const int32_t result = PLATFORM(MI_VDEC_GetChnAttr)(channel, attr);
    if (result == MI_SUCCESS && channel < kChannels) attr->video_mode = atomic_load(&asked[channel]);
    return result;
}
