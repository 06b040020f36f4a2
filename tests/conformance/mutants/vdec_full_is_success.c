/* vdec_full_is_success - breaks: a send that found no room in time is refused with BUFFER_FULL, not reported
 * as done. */
#include "mi_vdec.h"
#include "mutant.h"

int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    const int32_t result = PLATFORM(MI_VDEC_SendStream)(channel, stream, timeout_ms);
    return result == MI_ERROR(MI_MODULE_VDEC, MI_REASON_BUFFER_FULL) ? MI_SUCCESS : result;
}
