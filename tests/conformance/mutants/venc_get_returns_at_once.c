/* venc_get_returns_at_once - breaks: getting a picture waits for it up to the time-out. */
#include "mi_venc.h"
#include "mutant.h"

int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    (void)timeout_ms;
    return PLATFORM(MI_VENC_GetStream)(channel, stream, 0);
}
