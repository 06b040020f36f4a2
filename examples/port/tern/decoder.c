/*
 * decoder.c - simulated decoders. No picture is decoded: a decoder looks for the beginnings of frames, finds
 * out whether one is a key frame, and takes the time that its bytes cost. One thread a decoder.
 */
#include <stdlib.h>
#include <string.h>

#include "tern_inside.h"

enum {
    kLeastFifo = 1,
    kMostFifo = 64 << 20,
    kMostUnits = 4096,
    kUnit_us = 1000, /* what a push costs, whatever its size */
    kBytesPerUs = 8, /* and its bytes */
    kMostGrabs = 2,
    kZeros = 2, /* before the 1 of a start code         */
};

typedef struct Unit {
    struct Unit *next;
    size_t size;
    uint64_t stamp;
    uint8_t bytes[];
} Unit;

struct TernDecoder {
    TernDecoderSetup setup;
    pthread_t thread;
    pthread_cond_t changed;
    int running, busy, quits;
    int has_key; /* a key frame was seen since the fifo was dropped */
    Unit *first, *last;
    size_t bytes;   /* of the fifo and of what is in work */
    unsigned units; /* likewise */
    unsigned pictures;
    uint64_t decoded;
    unsigned width, height;
    unsigned zeros;             /* at the end of the unit before: a start code may be cut */
    TernGrab grabs[kMostGrabs]; /* done = null: free */
    const void *in_grab;        /* context of the one that is being told */
};

static TernDecoder *decoders[TERN_DECODERS];

enum Begin { kNothing, kFrame, kKeyFrame };

/* What begins with a unit's header; `header` has its first three bytes. */
static enum Begin beginning(TernFormat format, const uint8_t header[3])
{
    if (format == TERN_AVC) {
        const unsigned type = header[0] & 31;
        const int first_slice = (header[1] & 0x80) != 0;
        if (type == 5 && first_slice) return kKeyFrame;
        return type == 1 && first_slice ? kFrame : kNothing;
    }
    const unsigned type = header[0] >> 1 & 63;
    const int first_slice = (header[2] & 0x80) != 0;
    if (type >= 16 && type <= 21 && first_slice) return kKeyFrame;
    return type < 16 && first_slice ? kFrame : kNothing;
}

/* How many pictures a push brings; those before a key frame are none. The lock is held. */
static unsigned count_pictures(TernDecoder *decoder, const Unit *unit)
{
    if (decoder->setup.format == TERN_MJPEG)
        return unit->size > 2 && unit->bytes[0] == 0xFF && unit->bytes[1] == 0xD8;
    unsigned found = 0;
    unsigned zeros = decoder->zeros;
    for (size_t at = 0; at < unit->size; ++at) {
        const uint8_t byte = unit->bytes[at];
        if (byte == 1 && zeros >= kZeros && at + 3 < unit->size) {
            const enum Begin begin = beginning(decoder->setup.format, unit->bytes + at + 1);
            if (begin == kKeyFrame) decoder->has_key = 1;
            if (begin != kNothing && decoder->has_key) ++found;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
    }
    decoder->zeros = zeros;
    return found;
}

/* The lock is held, and let go while grabs are told. */
static void give_picture(TernDecoder *decoder, uint64_t stamp)
{
    ++decoder->decoded;
    decoder->pictures = !tern_tiles_take(decoder);
    for (int i = 0; i < kMostGrabs; ++i) {
        if (decoder->grabs[i].done == NULL) continue;
        const TernGrab grab = decoder->grabs[i];
        decoder->pictures = 0;
        decoder->in_grab = grab.context;
        pthread_mutex_unlock(&tern_lock);
        grab.done(grab.context, tern_jpeg(&grab), stamp);
        pthread_mutex_lock(&tern_lock);
        decoder->in_grab = NULL;
        pthread_cond_broadcast(&decoder->changed);
    }
}

/* Take its time over a push. A decoder that is halted or closed meanwhile ends it early. */
static void work_on(TernDecoder *decoder, const Unit *unit)
{
    const int64_t until_us = tern_now_us() + kUnit_us + (int64_t)(unit->size / kBytesPerUs);
    while (decoder->running && !decoder->quits && tern_now_us() < until_us)
        tern_wait_until(&decoder->changed, until_us);
}

static void *run(void *argument)
{
    TernDecoder *decoder = argument;
    pthread_mutex_lock(&tern_lock);
    while (!decoder->quits) {
        if (!decoder->running || decoder->first == NULL) {
            pthread_cond_wait(&decoder->changed, &tern_lock);
            continue;
        }
        Unit *unit = decoder->first;
        decoder->first = unit->next;
        if (decoder->first == NULL) decoder->last = NULL;
        decoder->busy = 1;
        work_on(decoder, unit);
        for (unsigned left = count_pictures(decoder, unit); left > 0 && decoder->running; --left)
            give_picture(decoder, unit->stamp);
        decoder->bytes -= unit->size;
        --decoder->units;
        decoder->busy = 0;
        free(unit);
        pthread_cond_broadcast(&decoder->changed);
        if (decoder->setup.progress == NULL) continue;
        pthread_mutex_unlock(&tern_lock);
        decoder->setup.progress(decoder->setup.context);
        pthread_mutex_lock(&tern_lock);
    }
    pthread_mutex_unlock(&tern_lock);
    return NULL;
}

static void throw_fifo_away(TernDecoder *decoder)
{
    while (decoder->first != NULL) {
        Unit *unit = decoder->first;
        decoder->first = unit->next;
        decoder->bytes -= unit->size;
        --decoder->units;
        free(unit);
    }
    decoder->last = NULL;
    decoder->pictures = 0;
    decoder->has_key = 0;
    decoder->zeros = 0;
}

TernStatus tern_decoder_open(const TernDecoderSetup *setup, TernDecoder **decoder)
{
    if (setup->format < TERN_AVC || setup->format > TERN_MJPEG || setup->fifo_bytes < kLeastFifo ||
        setup->fifo_bytes > kMostFifo)
        return TERN_BAD_ARGUMENT;
    TernDecoder *made = calloc(1, sizeof *made);
    if (made == NULL) return TERN_NO_MEMORY;
    made->setup = *setup;
    tern_condition(&made->changed);
    pthread_mutex_lock(&tern_lock);
    TernStatus status = tern_is_awake() ? TERN_NO_UNIT : TERN_NO_POWER;
    for (int i = 0; i < TERN_DECODERS && status == TERN_NO_UNIT; ++i) {
        if (decoders[i] != NULL) continue;
        status = pthread_create(&made->thread, NULL, run, made) == 0 ? TERN_OK : TERN_NO_MEMORY;
        if (status == TERN_OK) decoders[i] = made;
    }
    pthread_mutex_unlock(&tern_lock);
    if (status == TERN_OK)
        *decoder = made;
    else
        free(made);
    return status;
}

void tern_decoder_close(TernDecoder *decoder)
{
    pthread_mutex_lock(&tern_lock);
    decoder->quits = 1;
    tern_tiles_cut(decoder);
    pthread_cond_broadcast(&decoder->changed);
    pthread_mutex_unlock(&tern_lock);
    pthread_join(decoder->thread, NULL);
    pthread_mutex_lock(&tern_lock);
    throw_fifo_away(decoder);
    for (int i = 0; i < TERN_DECODERS; ++i)
        if (decoders[i] == decoder) decoders[i] = NULL;
    pthread_mutex_unlock(&tern_lock);
    pthread_cond_destroy(&decoder->changed);
    free(decoder);
}

void tern_decoder_run(TernDecoder *decoder, int run)
{
    pthread_mutex_lock(&tern_lock);
    decoder->running = run;
    pthread_cond_broadcast(&decoder->changed);
    while (!run && decoder->busy)
        pthread_cond_wait(&decoder->changed, &tern_lock);
    pthread_mutex_unlock(&tern_lock);
}

void tern_decoder_drop(TernDecoder *decoder)
{
    pthread_mutex_lock(&tern_lock);
    throw_fifo_away(decoder);
    pthread_mutex_unlock(&tern_lock);
}

TernStatus tern_decoder_push(TernDecoder *decoder, const void *bytes, size_t size, uint64_t stamp)
{
    if (size == 0 || size > decoder->setup.fifo_bytes) return TERN_BAD_ARGUMENT;
    Unit *unit = malloc(sizeof *unit + size);
    if (unit == NULL) return TERN_NO_MEMORY;
    unit->next = NULL;
    unit->size = size;
    unit->stamp = stamp;
    memcpy(unit->bytes, bytes, size);
    pthread_mutex_lock(&tern_lock);
    const int fits = decoder->setup.fifo_bytes - decoder->bytes >= size && decoder->units < kMostUnits;
    if (fits) {
        if (decoder->last != NULL)
            decoder->last->next = unit;
        else
            decoder->first = unit;
        decoder->last = unit;
        decoder->bytes += size;
        ++decoder->units;
        pthread_cond_broadcast(&decoder->changed);
    }
    pthread_mutex_unlock(&tern_lock);
    if (!fits) free(unit);
    return fits ? TERN_OK : TERN_FULL;
}

void tern_decoder_level(TernDecoder *decoder, TernDecoderLevel *level)
{
    pthread_mutex_lock(&tern_lock);
    *level = (TernDecoderLevel){decoder->bytes, decoder->units, decoder->pictures, decoder->decoded};
    pthread_mutex_unlock(&tern_lock);
}

void tern_decoder_shrink(TernDecoder *decoder, unsigned width, unsigned height)
{
    pthread_mutex_lock(&tern_lock);
    decoder->width = width;
    decoder->height = height;
    pthread_mutex_unlock(&tern_lock);
}

static int is_good(const TernGrab *grab)
{
    return grab->width >= 2 && grab->height >= 2 && grab->width <= 4096 && grab->height <= 4096 &&
           (grab->width | grab->height) % 2 == 0 && grab->percent >= 1 && grab->percent <= 100 &&
           grab->crop_x + grab->crop_width <= TERN_CROP_WHOLE &&
           grab->crop_y + grab->crop_height <= TERN_CROP_WHOLE && grab->done != NULL;
}

TernStatus tern_grab(TernDecoder *decoder, const TernGrab *grab)
{
    if (!is_good(grab)) return TERN_BAD_ARGUMENT;
    TernStatus status = TERN_NO_UNIT;
    pthread_mutex_lock(&tern_lock);
    for (int i = 0; i < kMostGrabs && status != TERN_OK; ++i) {
        if (decoder->grabs[i].done != NULL) continue;
        decoder->grabs[i] = *grab;
        status = TERN_OK;
    }
    pthread_mutex_unlock(&tern_lock);
    return status;
}

void tern_grab_cancel(TernDecoder *decoder, const void *context)
{
    pthread_mutex_lock(&tern_lock);
    for (int i = 0; i < kMostGrabs; ++i)
        if (decoder->grabs[i].context == context) decoder->grabs[i].done = NULL;
    while (decoder->in_grab == context)
        pthread_cond_wait(&decoder->changed, &tern_lock);
    pthread_mutex_unlock(&tern_lock);
}
