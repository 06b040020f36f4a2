/* vdec_send_waits_tenfold - breaks: a send waits for room no longer than its time-out. */
#include "mi_vdec.h"
#include "mutant.h"

/* Milliseconds handed to a driver that counts in ticks of 10 ms. */
int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    return PLATFORM(MI_VDEC_SendStream)(channel, stream, timeout_ms > 0 ? timeout_ms * 10 : timeout_ms);
}
