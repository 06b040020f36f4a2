/* venc_timeout_is_success - breaks: no picture within the time-out is a failure. */
#include "mi_venc.h"
#include "mutant.h"

/* A success without a pack. */
int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    const int32_t result = PLATFORM(MI_VENC_GetStream)(channel, stream, timeout_ms);
    if (result != MI_ERROR(MI_MODULE_VENC, MI_REASON_TIMEOUT)) return result;
    stream->pack_count = 0;
    return MI_SUCCESS;
}
