/*
 * grab.c - what the seams build of a scaler and an encoder, over the chip's one call that hands over every
 * picture of a decoder as JPEG.
 *
 * `encoders_apply` compares, for each encoder channel, the grab that there should be with the one that there
 * is, and takes that back or asks for it. The chip's function `grabbed` comes on the decoder's thread; it
 * takes the encoders' lock alone and calls nothing of the chip.
 */
#include <stdlib.h>
#include <string.h>

#include "venc_state.h"

static uintptr_t last_handle; /* guarded by encoders_lock */

/* Leave pictures out evenly where a sink wants fewer than its source gives: the chip passes every one. */
static int passes(Encoder *encoder, int binding)
{
    const uint32_t source = encoder->way.rates[binding][0], sink = encoder->way.rates[binding][1];
    if (source <= sink || sink == 0) return 1;
    encoder->owed[binding] += sink;
    if (encoder->owed[binding] < source) return 0;
    encoder->owed[binding] -= source;
    return 1;
}

static void keep_image(Encoder *encoder, const uint8_t *bytes, size_t length, uint64_t stamp)
{
    if (length == 0 || encoder->held_bytes + length > encoder->attr.stream_buffer_bytes) return;
    Image *image = malloc(sizeof *image + length);
    if (image == NULL) return;
    *image =
        (Image){.handle = ++last_handle, .sequence = encoder->sequence++, .pts = stamp, .length = length};
    memcpy(image->bytes, bytes, length);
    encoder->held_bytes += length;
    Image **at = &encoder->images;
    while (*at != NULL)
        at = &(*at)->next;
    *at = image;
    pthread_cond_broadcast(&encoders_changed);
}

/* Called by the chip's thread. */
static void grabbed(void *context, size_t length, uint64_t stamp)
{
    Encoder *encoder = context;
    pthread_mutex_lock(&encoders_lock);
    if (passes(encoder, 0) && passes(encoder, 1)) keep_image(encoder, encoder->grab.buffer, length, stamp);
    pthread_mutex_unlock(&encoders_lock);
}

void grab_take_back(Encoder *encoder)
{
    if (encoder->source == NULL) return;
    tern_grab_cancel(encoder->source, encoder);
    free(encoder->grab.buffer);
    encoder->source = NULL;
}

/* The grab that there should be, and the decoder to ask for it; null = none. */
static TernDecoder *wanted_grab(uint32_t number, TernGrab *grab, WayToEncoder *way)
{
    const Encoder *encoder = &encoders[number];
    unsigned width = 0, height = 0;
    *grab = (TernGrab){.percent = encoder->jpeg.quality,
                       .restart_rows = encoder->attr.restart_rows,
                       .room = encoder->attr.stream_buffer_bytes,
                       .done = grabbed,
                       .context = &encoders[number]};
    if (!encoder->exists || !encoder->receiving || !way_to_encoder(number, way)) return NULL;
    TernDecoder *decoder = decoder_of(way->decoder);
    if (decoder == NULL) return NULL;
    decoder_picture_size(way->decoder, &width, &height);
    const int fits = scaler_describe(way->scaler, width, height, grab) &&
                     grab->width == encoder->attr.width && grab->height == encoder->attr.height;
    return fits ? decoder : NULL;
}

static int is_same(const TernGrab *a, const TernGrab *b)
{
    return a->crop_x == b->crop_x && a->crop_y == b->crop_y && a->crop_width == b->crop_width &&
           a->crop_height == b->crop_height && a->width == b->width && a->height == b->height &&
           a->percent == b->percent && a->restart_rows == b->restart_rows && a->room == b->room;
}

void grab_apply(uint32_t number)
{
    Encoder *encoder = &encoders[number];
    TernGrab grab;
    WayToEncoder way;
    TernDecoder *decoder = wanted_grab(number, &grab, &way);
    if (decoder == encoder->source && (decoder == NULL || is_same(&grab, &encoder->grab))) return;
    grab_take_back(encoder);
    if (decoder == NULL || (grab.buffer = malloc(grab.room)) == NULL) return;
    encoder->grab = grab;
    encoder->way = way;
    encoder->owed[0] = encoder->owed[1] = 0;
    if (tern_grab(decoder, &grab) == TERN_OK)
        encoder->source = decoder;
    else
        free(grab.buffer);
}

void encoders_apply(void)
{
    for (uint32_t number = 0; number < kEncoders; ++number)
        grab_apply(number);
}
