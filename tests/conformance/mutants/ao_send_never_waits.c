/* ao_send_never_waits - breaks: a block waits until the queue has room for it, so that the sender keeps the
 * pace of the sound. */
#include "mi_ao.h"
#include "mutant.h"

/* A full queue swallows the block. */
int32_t MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms)
{
    (void)timeout_ms;
    const int32_t result = PLATFORM(MI_AO_SendFrame)(device, channel, frame, 0);
    return result == MI_ERROR(MI_MODULE_AO, MI_REASON_BUFFER_FULL) ? MI_SUCCESS : result;
}
