/* vdec_bytes_not_copied - breaks: the bytes of a send are copied before the call returns, so that the caller
 * may use its buffer again. */
#include "mi_vdec.h"
#include "mutant.h"

#include <pthread.h>

/*
 * The address is queued, and the bytes are fetched a little later. A send that may not fit is handed on
 * at once, so that results and time-outs stay what they are; every other call waits for the fetching.
 */
enum { kFetchDelay_us = 3000 };

struct Later {
    pthread_t thread;
    int pending;
    uint32_t channel;
    MI_VDEC_Stream stream;
};
static struct Later later[kChannels];
static pthread_mutex_t locks[kChannels] = {[0 ... kChannels - 1] = PTHREAD_MUTEX_INITIALIZER};

static void *fetch(void *at)
{
    const struct Later *send = at;
    real_sleep_us(kFetchDelay_us);
    PLATFORM(MI_VDEC_SendStream)(send->channel, &send->stream, 0);
    return NULL;
}

/* The caller holds the channel's lock. */
static void settle_locked(uint32_t channel)
{
    if (later[channel].pending) pthread_join(later[channel].thread, NULL);
    later[channel].pending = 0;
}

static void settle(uint32_t channel)
{
    if (channel >= kChannels) return;
    pthread_mutex_lock(&locks[channel]);
    settle_locked(channel);
    pthread_mutex_unlock(&locks[channel]);
}

/* The channel is started, and the bytes have room now. */
static int fits(uint32_t channel, const MI_VDEC_Stream *stream)
{
    MI_VDEC_ChnAttr attr;
    MI_VDEC_ChnStat stat;
    return stream != NULL && stream->address != NULL && stream->length_bytes != 0 &&
           PLATFORM(MI_VDEC_GetChnAttr)(channel, &attr) == MI_SUCCESS &&
           PLATFORM(MI_VDEC_GetChnStat)(channel, &stat) == MI_SUCCESS &&
           (uint64_t)stat.left_stream_bytes + stream->length_bytes <= attr.stream_buffer_bytes;
}

static int started[kChannels]; /* guarded by the channel's lock */

int32_t MI_VDEC_StartChn(uint32_t channel)
{
    const int32_t result = PLATFORM(MI_VDEC_StartChn)(channel);
    if (channel >= kChannels) return result;
    pthread_mutex_lock(&locks[channel]);
    started[channel] = result == MI_SUCCESS;
    pthread_mutex_unlock(&locks[channel]);
    return result;
}

int32_t MI_VDEC_StopChn(uint32_t channel)
{
    settle(channel);
    const int32_t result = PLATFORM(MI_VDEC_StopChn)(channel);
    if (channel >= kChannels || result != MI_SUCCESS) return result;
    pthread_mutex_lock(&locks[channel]);
    started[channel] = 0;
    pthread_mutex_unlock(&locks[channel]);
    return result;
}

int32_t MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat)
{
    settle(channel);
    return PLATFORM(MI_VDEC_GetChnStat)(channel, stat);
}

int32_t MI_VDEC_DestroyChn(uint32_t channel)
{
    settle(channel);
    return PLATFORM(MI_VDEC_DestroyChn)(channel);
}

int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    if (channel >= kChannels) return PLATFORM(MI_VDEC_SendStream)(channel, stream, timeout_ms);
    pthread_mutex_lock(&locks[channel]);
    settle_locked(channel);
    const int defers = started[channel] && fits(channel, stream);
    if (defers) {
        later[channel] = (struct Later){.channel = channel, .stream = *stream};
        later[channel].pending = pthread_create(&later[channel].thread, NULL, fetch, &later[channel]) == 0;
    }
    const int deferred = defers && later[channel].pending;
    pthread_mutex_unlock(&locks[channel]);
    return deferred ? MI_SUCCESS : PLATFORM(MI_VDEC_SendStream)(channel, stream, timeout_ms);
}
