/*
 * vdec.c - decoder channels over the chip's decoders.
 *
 * A channel's number is its place in a table; the chip's handle is opened with the channel and closed with
 * it. The chip never waits for room: a send that does not fit sleeps on `room`, which the chip's progress
 * function wakes. Stopping halts the decoder and throws its fifo away, since the chip would keep it.
 */
#include "mi_vdec.h"

#include <stddef.h>

#include "adapter.h"

typedef struct Channel {
    pthread_mutex_t control; /* one Create, Destroy, Start or Stop at a time */
    pthread_mutex_t lock;    /* guards what follows */
    pthread_cond_t room;
    TernDecoder *decoder; /* null = the channel does not exist; changed under topology_lock too */
    int started;
    uint32_t starts; /* a waiting sender belongs to one of them */
    MI_VDEC_ChnAttr attr;
    MI_VDEC_OutputPortAttr output;
} Channel;

static Channel channels[TERN_DECODERS];
static pthread_once_t channels_once = PTHREAD_ONCE_INIT;

static void make_channels(void)
{
    for (int i = 0; i < TERN_DECODERS; ++i) {
        pthread_mutex_init(&channels[i].control, NULL);
        pthread_mutex_init(&channels[i].lock, NULL);
        condition_init(&channels[i].room);
    }
}

static int32_t refuse(enum MI_Reason reason)
{
    return MI_ERROR(MI_MODULE_VDEC, reason);
}

static Channel *channel_of(uint32_t number)
{
    pthread_once(&channels_once, make_channels);
    return number < TERN_DECODERS ? &channels[number] : NULL;
}

/* The channel with its lock held, or null and why not. */
static Channel *lock_existing(uint32_t number, int32_t *why)
{
    Channel *channel = channel_of(number);
    *why = refuse(MI_REASON_BAD_CHANNEL);
    if (channel == NULL) return NULL;
    pthread_mutex_lock(&channel->lock);
    if (channel->decoder != NULL) return channel;
    pthread_mutex_unlock(&channel->lock);
    *why = refuse(MI_REASON_ABSENT);
    return NULL;
}

/* Called by the chip's thread. */
static void wake_senders(void *context)
{
    Channel *channel = context;
    pthread_mutex_lock(&channel->lock);
    pthread_cond_broadcast(&channel->room);
    pthread_mutex_unlock(&channel->lock);
}

TernDecoder *decoder_of(int32_t channel)
{
    if (channel < 0 || channel >= TERN_DECODERS) return NULL;
    return channel_of((uint32_t)channel)->decoder;
}

int decoder_exists(uint32_t channel)
{
    return channel < TERN_DECODERS && channel_of(channel)->decoder != NULL;
}

void decoder_picture_size(int32_t channel, unsigned *width, unsigned *height)
{
    Channel *of = channel_of((uint32_t)channel);
    pthread_mutex_lock(&of->lock);
    *width = of->output.width != 0 ? of->output.width : of->attr.max_width;
    *height = of->output.height != 0 ? of->output.height : of->attr.max_height;
    pthread_mutex_unlock(&of->lock);
}

static int32_t setup_of(const MI_VDEC_ChnAttr *attr, Channel *channel, TernDecoderSetup *setup)
{
    static const TernFormat formats[] = {
        [MI_VDEC_CODEC_H264] = TERN_AVC, [MI_VDEC_CODEC_H265] = TERN_HEVC, [MI_VDEC_CODEC_JPEG] = TERN_MJPEG};
    if (attr->codec >= sizeof formats / sizeof formats[0] || attr->video_mode > MI_VDEC_MODE_FRAME ||
        attr->stream_buffer_bytes == 0)
        return refuse(MI_REASON_BAD_VALUE);
    *setup = (TernDecoderSetup){
        .format = formats[attr->codec],
        .fifo_bytes = attr->stream_buffer_bytes,
        .by_frame = attr->video_mode == MI_VDEC_MODE_FRAME,
        .progress = wake_senders,
        .context = channel,
    };
    return MI_SUCCESS;
}

int32_t MI_VDEC_CreateChn(uint32_t number, const MI_VDEC_ChnAttr *attr)
{
    Channel *channel = channel_of(number);
    if (channel == NULL) return refuse(MI_REASON_BAD_CHANNEL);
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    if (!system_is_up()) return refuse(MI_REASON_NOT_READY);
    TernDecoderSetup setup;
    int32_t result = setup_of(attr, channel, &setup);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&channel->control);
    pthread_mutex_lock(&topology_lock);
    TernDecoder *decoder = NULL;
    result = channel->decoder != NULL ? refuse(MI_REASON_EXISTS)
                                      : code_of(MI_MODULE_VDEC, tern_decoder_open(&setup, &decoder));
    if (result == MI_SUCCESS) {
        pthread_mutex_lock(&channel->lock);
        channel->decoder = decoder;
        channel->attr = *attr;
        channel->output = (MI_VDEC_OutputPortAttr){0, 0};
        channel->started = 0;
        pthread_mutex_unlock(&channel->lock);
        display_apply(); /* bindings that waited for this number are in force again */
        encoders_apply();
    }
    pthread_mutex_unlock(&topology_lock);
    pthread_mutex_unlock(&channel->control);
    return result;
}

int32_t MI_VDEC_DestroyChn(uint32_t number)
{
    Channel *channel = channel_of(number);
    if (channel == NULL) return refuse(MI_REASON_BAD_CHANNEL);
    pthread_mutex_lock(&channel->control);
    pthread_mutex_lock(&topology_lock);
    pthread_mutex_lock(&channel->lock);
    TernDecoder *decoder = channel->decoder;
    const int started = channel->started;
    if (decoder != NULL && !started) channel->decoder = NULL;
    pthread_mutex_unlock(&channel->lock);
    if (decoder != NULL && !started) {
        display_apply();
        encoders_apply();
        tern_decoder_close(decoder);
    }
    pthread_mutex_unlock(&topology_lock);
    pthread_mutex_unlock(&channel->control);
    if (decoder == NULL) return refuse(MI_REASON_ABSENT);
    return started ? refuse(MI_REASON_NOT_PERMITTED) : MI_SUCCESS;
}

int32_t MI_VDEC_StartChn(uint32_t number)
{
    int32_t why;
    Channel *channel = channel_of(number);
    if (channel == NULL) return refuse(MI_REASON_BAD_CHANNEL);
    pthread_mutex_lock(&channel->control);
    if (lock_existing(number, &why) != NULL) {
        if (!channel->started) ++channel->starts;
        channel->started = 1;
        pthread_mutex_unlock(&channel->lock);
        tern_decoder_run(channel->decoder, 1);
        why = MI_SUCCESS;
    }
    pthread_mutex_unlock(&channel->control);
    return why;
}

int32_t MI_VDEC_StopChn(uint32_t number)
{
    int32_t why;
    Channel *channel = channel_of(number);
    if (channel == NULL) return refuse(MI_REASON_BAD_CHANNEL);
    pthread_mutex_lock(&channel->control);
    if (lock_existing(number, &why) != NULL) {
        channel->started = 0;
        pthread_cond_broadcast(&channel->room); /* waiting sends are refused */
        pthread_mutex_unlock(&channel->lock);
        tern_decoder_run(channel->decoder, 0);
        tern_decoder_drop(channel->decoder);
        why = MI_SUCCESS;
    }
    pthread_mutex_unlock(&channel->control);
    return why;
}

int32_t MI_VDEC_GetChnAttr(uint32_t number, MI_VDEC_ChnAttr *attr)
{
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    Channel *channel = lock_existing(number, &why);
    if (channel == NULL) return why;
    *attr = channel->attr;
    pthread_mutex_unlock(&channel->lock);
    return MI_SUCCESS;
}

int32_t MI_VDEC_GetChnStat(uint32_t number, MI_VDEC_ChnStat *stat)
{
    if (stat == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    Channel *channel = lock_existing(number, &why);
    if (channel == NULL) return why;
    TernDecoderLevel level;
    tern_decoder_level(channel->decoder, &level);
    pthread_mutex_unlock(&channel->lock);
    *stat = (MI_VDEC_ChnStat){(uint32_t)level.fifo_bytes, level.fifo_units, level.pictures};
    return MI_SUCCESS;
}

/* Push until it fits, the time is over, or the channel is stopped. The channel's lock is held. */
static int32_t push(Channel *channel, const MI_VDEC_Stream *stream, int64_t until_us)
{
    const uint32_t starts = channel->starts;
    for (;;) {
        if (channel->decoder == NULL || !channel->started || channel->starts != starts)
            return refuse(MI_REASON_NOT_PERMITTED);
        const TernStatus status =
            tern_decoder_push(channel->decoder, stream->address, stream->length_bytes, stream->pts);
        if (status != TERN_FULL) return code_of(MI_MODULE_VDEC, status);
        if (monotonic_us() >= until_us) return refuse(MI_REASON_BUFFER_FULL);
        condition_wait(&channel->room, &channel->lock, until_us);
    }
}

int32_t MI_VDEC_SendStream(uint32_t number, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    if (stream == NULL || stream->address == NULL) return refuse(MI_REASON_NULL_POINTER);
    const int64_t until_us = deadline_us(timeout_ms);
    int32_t why;
    Channel *channel = lock_existing(number, &why);
    if (channel == NULL) return why;
    const int32_t result = push(channel, stream, until_us);
    pthread_mutex_unlock(&channel->lock);
    return result;
}

int32_t MI_VDEC_SetOutputPortAttr(uint32_t number, const MI_VDEC_OutputPortAttr *attr)
{
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t result;
    pthread_mutex_lock(&topology_lock);
    Channel *channel = lock_existing(number, &result);
    if (channel != NULL) {
        channel->output = *attr;
        tern_decoder_shrink(channel->decoder, attr->width, attr->height);
        pthread_mutex_unlock(&channel->lock);
        display_apply(); /* crops are parts of the pictures as they come */
        encoders_apply();
        result = MI_SUCCESS;
    }
    pthread_mutex_unlock(&topology_lock);
    return result;
}

int32_t MI_VDEC_GetOutputPortAttr(uint32_t number, MI_VDEC_OutputPortAttr *attr)
{
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    Channel *channel = lock_existing(number, &why);
    if (channel == NULL) return why;
    *attr = channel->output;
    pthread_mutex_unlock(&channel->lock);
    return MI_SUCCESS;
}
