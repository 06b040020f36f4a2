/* sys_second_source_accepted - breaks: a sink that is bound already refuses a second source. */
#include "mi_sys.h"
#include "mutant.h"

/* "Exists already" taken for a success. */
int32_t MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                           uint32_t sink_rate)
{
    const int32_t result = PLATFORM(MI_SYS_BindChnPort)(source, sink, source_rate, sink_rate);
    return result == MI_ERROR(MI_MODULE_SYS, MI_REASON_EXISTS) ? MI_SUCCESS : result;
}
