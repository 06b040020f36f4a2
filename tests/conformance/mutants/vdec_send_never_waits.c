/* vdec_send_never_waits - breaks: a send without room waits until its time-out has passed before it is
 * refused. */
#include "mi_vdec.h"
#include "mutant.h"

/* A driver that only knows "for ever" and "not at all". */
int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    return PLATFORM(MI_VDEC_SendStream)(channel, stream, timeout_ms > 0 ? 0 : timeout_ms);
}
