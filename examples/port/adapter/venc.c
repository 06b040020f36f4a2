/*
 * venc.c - JPEG encoder channels over the chip's one call that grabs a decoder's next picture.
 *
 * A channel that receives has a thread. It looks which decoder reaches it through a scaler, asks the chip to
 * grab a picture of it, and waits until the chip tells that it is done, or until something has changed
 * (`news`): then the grab is taken back and all is looked at anew. The chip's function `grabbed` comes on
 * the decoder's thread, takes this file's lock alone and calls nothing of the chip; a grab is taken back
 * without that lock, since the chip waits for `grabbed` to return.
 */
#include "mi_venc.h"

#include <stdlib.h>
#include <string.h>

#include "adapter.h"

enum {
    kEncoders = 32,
    kDevice = 0,
    kMostSide = 4096,
    kMostBuffer = 64 << 20,
    kOwnQuality = 90,
    kMostQuality = 99,
    kAskAgain_us = 20000,
};

typedef struct Image {
    struct Image *next;
    uintptr_t handle;
    uint32_t sequence;
    uint64_t pts;
    size_t length;
    uint8_t bytes[];
} Image;

typedef struct Encoder {
    int exists, receiving;
    pthread_t thread;
    int has_thread, thread_quits;
    MI_VENC_ChnAttr attr;
    MI_VENC_JpegParam jpeg;
    Image *images, *lent; /* encoded and not got, oldest first; got and not released */
    size_t held_bytes;    /* of both */
    uint32_t sequence;
    uint32_t resets;
    int is_done; /* the grab that is under way */
    size_t grabbed_length;
    uint64_t grabbed_ticks;
} Encoder;

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards what follows */
static pthread_cond_t changed;                           /* anything below */
static pthread_once_t once = PTHREAD_ONCE_INIT;
static Encoder encoders[kEncoders];
static uint32_t news;
static uintptr_t last_handle;

static void make_condition(void)
{
    condition_init(&changed);
}

static int32_t refuse(enum MI_Reason reason)
{
    return MI_ERROR(MI_MODULE_VENC, reason);
}

int encoder_exists(uint32_t device, uint32_t channel)
{
    if (device != kDevice || channel >= kEncoders) return 0;
    pthread_mutex_lock(&lock);
    const int exists = encoders[channel].exists;
    pthread_mutex_unlock(&lock);
    return exists;
}

void encoders_look_again(void)
{
    pthread_once(&once, make_condition);
    pthread_mutex_lock(&lock);
    ++news;
    pthread_cond_broadcast(&changed);
    pthread_mutex_unlock(&lock);
}

/* ------------------------------------------------------------------------------ the thread --- */

/* Called by the chip's thread. */
static void grabbed(void *context, TernStatus status, size_t length, uint64_t ticks)
{
    Encoder *encoder = context;
    pthread_mutex_lock(&lock);
    encoder->is_done = 1;
    encoder->grabbed_length = status == TERN_OK ? length : 0;
    encoder->grabbed_ticks = ticks;
    pthread_cond_broadcast(&changed);
    pthread_mutex_unlock(&lock);
}

/* Ask for the next picture, when there is a whole pipeline that delivers the encoder's size. 0 = it is not.
 */
static int begin_grab(uint32_t number, const MI_VENC_ChnAttr *attr, TernGrab *grab)
{
    uint32_t scaler = 0;
    unsigned width = 0, height = 0;
    pthread_mutex_lock(&topology_lock);
    TernDecoder *decoder = decoder_of(source_of_encoder(number));
    const int fits = decoder != NULL && scaler_of_encoder(number, &scaler) &&
                     scaler_delivers(scaler, &width, &height) && width == attr->width &&
                     height == attr->height;
    const int begun = fits && tern_grab(decoder, grab) == TERN_OK;
    pthread_mutex_unlock(&topology_lock);
    return begun;
}

/* Take back what was asked of any decoder: the pipeline may have changed since. */
static void end_grab(void *context)
{
    pthread_mutex_lock(&topology_lock);
    for (int32_t channel = 0; channel < TERN_DECODERS; ++channel)
        if (decoder_of(channel) != NULL) tern_grab_cancel(decoder_of(channel), context);
    pthread_mutex_unlock(&topology_lock);
}

/* The lock is held. */
static void keep_image(Encoder *encoder, const uint8_t *bytes)
{
    const size_t length = encoder->grabbed_length;
    if (length == 0 || encoder->held_bytes + length > encoder->attr.stream_buffer_bytes) return;
    Image *image = malloc(sizeof *image + length);
    if (image == NULL) return;
    image->next = NULL;
    image->handle = ++last_handle;
    image->sequence = encoder->sequence++;
    image->pts = encoder->grabbed_ticks / (TERN_TICKS_PER_SECOND / 1000) * 1000;
    image->length = length;
    memcpy(image->bytes, bytes, length);
    encoder->held_bytes += length;
    Image **at = &encoder->images;
    while (*at != NULL)
        at = &(*at)->next;
    *at = image;
    pthread_cond_broadcast(&changed);
}

static void *receive(void *argument)
{
    Encoder *encoder = argument;
    const uint32_t number = (uint32_t)(encoder - encoders);
    uint8_t *buffer = malloc(encoder->attr.stream_buffer_bytes);
    pthread_mutex_lock(&lock);
    while (buffer != NULL && !encoder->thread_quits) {
        const uint32_t seen = news, resets = encoder->resets;
        const MI_VENC_ChnAttr attr = encoder->attr;
        TernGrab grab = {.width = attr.width,
                         .height = attr.height,
                         .percent = encoder->jpeg.quality,
                         .restart_rows = attr.restart_rows,
                         .buffer = buffer,
                         .room = attr.stream_buffer_bytes,
                         .done = grabbed,
                         .context = encoder};
        encoder->is_done = 0;
        const int has_room = encoder->images == NULL;
        pthread_mutex_unlock(&lock);
        const int begun = has_room && begin_grab(number, &attr, &grab);
        pthread_mutex_lock(&lock);
        /* Another encoder may be at the decoder just now: ask again soon. */
        const int64_t until_us = begun || !has_room ? INT64_MAX : monotonic_us() + kAskAgain_us;
        while (!encoder->is_done && !encoder->thread_quits && news == seen && monotonic_us() < until_us)
            condition_wait(&changed, &lock, until_us);
        if (begun && !encoder->is_done) {
            pthread_mutex_unlock(&lock);
            end_grab(encoder);
            pthread_mutex_lock(&lock);
        }
        if (encoder->is_done && resets == encoder->resets) keep_image(encoder, buffer);
    }
    pthread_mutex_unlock(&lock);
    free(buffer);
    return NULL;
}

/* End the thread of a channel. The lock is held, and let go meanwhile. */
static void end_thread(Encoder *encoder)
{
    if (!encoder->has_thread || encoder->thread_quits) return;
    encoder->thread_quits = 1;
    pthread_cond_broadcast(&changed);
    pthread_mutex_unlock(&lock);
    pthread_join(encoder->thread, NULL);
    pthread_mutex_lock(&lock);
    encoder->has_thread = encoder->thread_quits = 0;
}

/* ---------------------------------------------------------------------------- the channels --- */

/* The channel with the lock held, or null and why not. */
static Encoder *lock_existing(uint32_t number, int32_t *why)
{
    pthread_once(&once, make_condition);
    *why = refuse(MI_REASON_BAD_CHANNEL);
    if (number >= kEncoders) return NULL;
    pthread_mutex_lock(&lock);
    if (encoders[number].exists) return &encoders[number];
    pthread_mutex_unlock(&lock);
    *why = refuse(MI_REASON_ABSENT);
    return NULL;
}

static int32_t unlock_with(int32_t result)
{
    pthread_mutex_unlock(&lock);
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
    ++encoder->resets;
    ++news;
    pthread_cond_broadcast(&changed);
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
    pthread_mutex_lock(&lock);
    if (encoders[channel].exists) return unlock_with(refuse(MI_REASON_EXISTS));
    encoders[channel] = (Encoder){.exists = 1, .attr = *attr, .jpeg = {kOwnQuality, 0}};
    return unlock_with(MI_SUCCESS);
}

int32_t MI_VENC_DestroyChn(uint32_t channel)
{
    int32_t why;
    Encoder *encoder = lock_existing(channel, &why);
    if (encoder == NULL) return why;
    if (encoder->receiving) return unlock_with(refuse(MI_REASON_NOT_PERMITTED));
    drop_everything(encoder);
    encoder->exists = 0;
    return unlock_with(MI_SUCCESS);
}

int32_t MI_VENC_ResetChn(uint32_t channel)
{
    int32_t why;
    Encoder *encoder = lock_existing(channel, &why);
    if (encoder == NULL) return why;
    drop_everything(encoder);
    return unlock_with(MI_SUCCESS);
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

int32_t MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param)
{
    if (param == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    Encoder *encoder = lock_existing(channel, &why);
    if (encoder == NULL) return why;
    if (param->quality == 0 || param->quality > kMostQuality) return unlock_with(refuse(MI_REASON_BAD_VALUE));
    encoder->jpeg = *param;
    ++news; /* a grab that was asked for has the old quality */
    pthread_cond_broadcast(&changed);
    return unlock_with(MI_SUCCESS);
}

int32_t MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device)
{
    if (device == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t why;
    if (lock_existing(channel, &why) == NULL) return why;
    *device = kDevice;
    return unlock_with(MI_SUCCESS);
}

int32_t MI_VENC_StartRecvPic(uint32_t channel)
{
    int32_t why;
    Encoder *encoder = lock_existing(channel, &why);
    if (encoder == NULL) return why;
    if (encoder->receiving) return unlock_with(MI_SUCCESS);
    if (pthread_create(&encoder->thread, NULL, receive, encoder) != 0)
        return unlock_with(refuse(MI_REASON_NO_MEMORY));
    encoder->has_thread = encoder->receiving = 1;
    return unlock_with(MI_SUCCESS);
}

int32_t MI_VENC_StopRecvPic(uint32_t channel)
{
    int32_t why;
    Encoder *encoder = lock_existing(channel, &why);
    if (encoder == NULL) return why;
    end_thread(encoder);
    encoder->receiving = 0;
    pthread_cond_broadcast(&changed); /* whoever waits for a picture */
    return unlock_with(MI_SUCCESS);
}

/* ------------------------------------------------------------------------------ the pictures --- */

static void lend(Encoder *encoder, MI_VENC_Stream *stream)
{
    Image *image = encoder->images;
    encoder->images = image->next;
    image->next = encoder->lent;
    encoder->lent = image;
    ++news; /* there is room for the next one */
    pthread_cond_broadcast(&changed);
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
        condition_wait(&changed, &lock, until_us);
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
