/* vdec_stop_keeps_queue - breaks: stopping a channel discards what is queued. */
#include "mi_vdec.h"
#include "mutant.h"

#include <stdatomic.h>

/*
 * Stopping only shuts the entrance: what is queued stays, is still counted, and is decoded when there is
 * time. The platform's channel is stopped when it is started or destroyed next.
 */
enum { kSlice_ms = 10 }; /* how long a waiting sender does not look whether its channel was stopped */

static atomic_int halted[kChannels];
static atomic_int started[kChannels];

int32_t MI_VDEC_StartChn(uint32_t channel)
{
    if (channel < kChannels && atomic_exchange(&halted[channel], 0)) PLATFORM(MI_VDEC_StopChn)(channel);
    const int32_t result = PLATFORM(MI_VDEC_StartChn)(channel);
    if (result == MI_SUCCESS && channel < kChannels) atomic_store(&started[channel], 1);
    return result;
}

int32_t MI_VDEC_StopChn(uint32_t channel)
{
    if (channel >= kChannels || !atomic_load(&started[channel])) return PLATFORM(MI_VDEC_StopChn)(channel);
    atomic_store(&halted[channel], 1);
    return MI_SUCCESS;
}

int32_t MI_VDEC_DestroyChn(uint32_t channel)
{
    if (channel < kChannels && atomic_exchange(&halted[channel], 0)) {
        atomic_store(&started[channel], 0);
        PLATFORM(MI_VDEC_StopChn)(channel);
    }
    return PLATFORM(MI_VDEC_DestroyChn)(channel);
}

int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    if (channel >= kChannels) return PLATFORM(MI_VDEC_SendStream)(channel, stream, timeout_ms);
    const int64_t end_us = real_time_us() + (int64_t)timeout_ms * 1000;
    for (;;) {
        if (atomic_load(&halted[channel])) return MI_ERROR(MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED);
        const int64_t left_ms = timeout_ms < 0 ? kSlice_ms : (end_us - real_time_us()) / 1000;
        const int last = timeout_ms >= 0 && left_ms <= kSlice_ms;
        const int32_t result = PLATFORM(MI_VDEC_SendStream)(
            channel, stream, last ? (left_ms > 0 ? (int32_t)left_ms : 0) : kSlice_ms);
        if (last || result != MI_ERROR(MI_MODULE_VDEC, MI_REASON_BUFFER_FULL)) return result;
    }
}
