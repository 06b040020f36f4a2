/* vdec_wait_holds_lock - breaks: a send that waits for room keeps the queries of its channel waiting no
 * longer than any other send. */
#include "mi_vdec.h"
#include "mutant.h"

#include <pthread.h>

/* One lock around every call of a channel, kept while a send waits. */
static pthread_mutex_t locks[kChannels] = {[0 ... kChannels - 1] = PTHREAD_MUTEX_INITIALIZER};

int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    if (channel >= kChannels) return PLATFORM(MI_VDEC_SendStream)(channel, stream, timeout_ms);
    pthread_mutex_lock(&locks[channel]);
    const int32_t result = PLATFORM(MI_VDEC_SendStream)(channel, stream, timeout_ms);
    pthread_mutex_unlock(&locks[channel]);
    return result;
}

int32_t MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat)
{
    if (channel >= kChannels) return PLATFORM(MI_VDEC_GetChnStat)(channel, stat);
    pthread_mutex_lock(&locks[channel]);
    const int32_t result = PLATFORM(MI_VDEC_GetChnStat)(channel, stat);
    pthread_mutex_unlock(&locks[channel]);
    return result;
}
