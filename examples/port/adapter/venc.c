/* venc.c - JPEG encoder channels: their states, and the pictures that are got and released. See grab.c. */
#include <stdlib.h>
#include <string.h>

#include "venc_state.h"

enum {
    kDevice = 0,
    kMostSide = 4096,
    kMostBuffer = 64 << 20,
    kOwnQuality = 90,
    kMostQuality = 99,
};

pthread_mutex_t encoders_lock = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t encoders_changed;
Encoder encoders[kEncoders];

static pthread_once_t once = PTHREAD_ONCE_INIT;

static void make_condition(void)
{
    condition_init(&encoders_changed);
}

static int32_t refuse(enum MI_Reason reason)
{
    return MI_ERROR(MI_MODULE_VENC, reason);
}

int encoder_exists(uint32_t device, uint32_t channel)
{
    if (device != kDevice || channel >= kEncoders) return 0;
    pthread_mutex_lock(&encoders_lock);
    const int exists = encoders[channel].exists;
    pthread_mutex_unlock(&encoders_lock);
    return exists;
}

/* ---------------------------------------------------------------------------- the channels --- */

/* The channel with the lock held, or null and why not. */
static Encoder *lock_existing(uint32_t number, int32_t *why)
{
    pthread_once(&once, make_condition);
    *why = refuse(MI_REASON_BAD_CHANNEL);
    if (number >= kEncoders) return NULL;
    pthread_mutex_lock(&encoders_lock);
    if (encoders[number].exists) return &encoders[number];
    pthread_mutex_unlock(&encoders_lock);
    *why = refuse(MI_REASON_ABSENT);
    return NULL;
}

static int32_t unlock_with(int32_t result)
{
    pthread_mutex_unlock(&encoders_lock);
    return result;
}

static void free_list(Image **list)
{
    while (*list != NULL) {
        Image *image = *list;
        *list = image->next;
        free(image);
    }
}

static void drop_everything(Encoder *encoder)
{
    free_list(&encoder->images);
    free_list(&encoder->lent);
    encoder->held_bytes = 0;
}

/* Change a channel, without the lock since the chip may be at it, and ask for the grab that there is then. */
static int32_t change(uint32_t number, int32_t (*step)(Encoder *encoder, const void *argument),
                      const void *argument)
{
    int32_t result;
    pthread_mutex_lock(&topology_lock);
    Encoder *encoder = lock_existing(number, &result);
    if (encoder != NULL) {
        result = step(encoder, argument);
        pthread_cond_broadcast(&encoders_changed); /* whoever waits for a picture */
        pthread_mutex_unlock(&encoders_lock);
        grab_apply(number);
    }
    pthread_mutex_unlock(&topology_lock);
    return result;
}

static int32_t check_attr(const MI_VENC_ChnAttr *attr)
{
    if (attr->codec != MI_VENC_CODEC_JPEG || attr->by_frame != 1) return refuse(MI_REASON_UNSUPPORTED);
    if (attr->width == 0 || attr->height == 0 || attr->width > attr->max_width ||
        attr->height > attr->max_height || attr->max_width > kMostSide || attr->max_height > kMostSide ||
        attr->stream_buffer_bytes == 0 || attr->stream_buffer_bytes > kMostBuffer)
        return refuse(MI_REASON_BAD_VALUE);
    return MI_SUCCESS;
}

int32_t MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr)
{
    pthread_once(&once, make_condition);
    if (channel >= kEncoders) return refuse(MI_REASON_BAD_CHANNEL);
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    if (!system_is_up()) return refuse(MI_REASON_NOT_READY);
    const int32_t result = check_attr(attr);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&topology_lock);
    pthread_mutex_lock(&encoders_lock);
    const int is_free = !encoders[channel].exists;
    if (is_free) encoders[channel] = (Encoder){.exists = 1, .attr = *attr, .jpeg = {kOwnQuality, 0}};
    pthread_mutex_unlock(&encoders_lock);
    pthread_mutex_unlock(&topology_lock);
    return is_free ? MI_SUCCESS : refuse(MI_REASON_EXISTS);
}

static int32_t destroy(Encoder *encoder, const void *argument)
{
    (void)argument;
    if (encoder->receiving) return refuse(MI_REASON_NOT_PERMITTED);
    drop_everything(encoder);
    encoder->exists = 0;
    return MI_SUCCESS;
}

int32_t MI_VENC_DestroyChn(uint32_t channel)
{
    return change(channel, destroy, NULL);
}

/* The grab is taken back first, so that no picture follows that was begun before. */
int32_t MI_VENC_ResetChn(uint32_t channel)
{
    int32_t why;
    pthread_mutex_lock(&topology_lock);
    if (channel < kEncoders) grab_take_back(&encoders[channel]);
    Encoder *encoder = lock_existing(channel, &why);
    if (encoder != NULL) {
        drop_everything(encoder);
        why = unlock_with(MI_SUCCESS);
        grab_apply(channel);
    }
    pthread_mutex_unlock(&topology_lock);
    return why;
}

int32_t MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param)
{
    if (param == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    const Encoder *encoder = lock_existing(channel, &why);
    if (encoder == NULL) return why;
    *param = encoder->jpeg;
    return unlock_with(MI_SUCCESS);
}

static int32_t set_jpeg(Encoder *encoder, const void *argument)
{
    const MI_VENC_JpegParam *param = argument;
    if (param->quality == 0 || param->quality > kMostQuality) return refuse(MI_REASON_BAD_VALUE);
    encoder->jpeg = *param;
    return MI_SUCCESS;
}

int32_t MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param)
{
    return param == NULL ? refuse(MI_REASON_NULL_POINTER) : change(channel, set_jpeg, param);
}

int32_t MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device)
{
    if (device == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    if (lock_existing(channel, &why) == NULL) return why;
    *device = kDevice;
    return unlock_with(MI_SUCCESS);
}

static int32_t receive(Encoder *encoder, const void *argument)
{
    const int *on = argument;
    encoder->receiving = *on;
    return MI_SUCCESS;
}

int32_t MI_VENC_StartRecvPic(uint32_t channel)
{
    const int on = 1;
    return change(channel, receive, &on);
}

int32_t MI_VENC_StopRecvPic(uint32_t channel)
{
    const int on = 0;
    return change(channel, receive, &on);
}

/* ------------------------------------------------------------------------------ the pictures --- */

static void lend(Encoder *encoder, MI_VENC_Stream *stream)
{
    Image *image = encoder->images;
    encoder->images = image->next;
    image->next = encoder->lent;
    encoder->lent = image;
    memset(&stream->packs[0], 0, sizeof stream->packs[0]);
    stream->packs[0].address = image->bytes;
    stream->packs[0].length_bytes = (uint32_t)image->length;
    stream->packs[0].pts = image->pts;
    stream->packs[0].frame_end = 1;
    stream->pack_count = 1;
    stream->sequence = image->sequence;
    stream->handle = image->handle;
}

int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    if (stream == NULL || stream->packs == NULL) return refuse(MI_REASON_NULL_POINTER);
    if (stream->pack_count == 0) return refuse(MI_REASON_BAD_VALUE);
    const int64_t until_us = deadline_us(timeout_ms);
    int32_t why;
    Encoder *encoder = lock_existing(channel, &why);
    if (encoder == NULL) return why;
    while (encoder->exists && encoder->images == NULL) {
        if (!encoder->receiving) return unlock_with(refuse(MI_REASON_NOT_READY));
        if (monotonic_us() >= until_us) return unlock_with(refuse(MI_REASON_TIMEOUT));
        condition_wait(&encoders_changed, &encoders_lock, until_us);
    }
    if (!encoder->exists) return unlock_with(refuse(MI_REASON_ABSENT));
    lend(encoder, stream);
    return unlock_with(MI_SUCCESS);
}

int32_t MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream)
{
    if (stream == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    Encoder *encoder = lock_existing(channel, &why);
    if (encoder == NULL) return why;
    Image **at = &encoder->lent;
    while (*at != NULL && (*at)->handle != stream->handle)
        at = &(*at)->next;
    Image *image = *at;
    if (image == NULL) return unlock_with(refuse(MI_REASON_BAD_VALUE));
    *at = image->next;
    encoder->held_bytes -= image->length;
    free(image);
    return unlock_with(MI_SUCCESS);
}
