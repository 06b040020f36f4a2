/*
 * points_vdec_change.c - what comes out of a decoder that is stopped, whose codec or size changes, or that is
 * one of several. The pictures are looked at through the snapshot pipeline.
 */
#define _GNU_SOURCE /* clocks, barriers and mappings, also with -std=c11 */
#include <pthread.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, W = STREAM_WIDTH, H = STREAM_HEIGHT };

POINT(stop_drops, "vdec.stop.queue-is-not-seen", "MI_VDEC_StopChn",
      "what was queued when a channel is stopped is never seen, also after the next start")
{
    const Spot spots[] = {{W / 2, H / 2, BLUE}};
    need_decoder(CH, &large_h264);
    need_played(CH, &large_h264, 0, frames_for_ms(CH, 500));
    need_snapshots(CH, W, H);
    NEED(MI_VDEC_StopChn(CH));
    NEED(MI_VDEC_StartChn(CH));
    MI_VENC_ResetChn(ENCODER);
    pause_ms(100);
    MI_VENC_ResetChn(ENCODER);
    need_played(CH, &blue_h264, 0, blue_h264.frames);
    snapshot_shows(spots, 1, W, H);
    JpegLook look;
    uint8_t rgb[3];
    need_played(CH, &blue_h264, 0, 1);
    take_snapshot(&look, W, H);
    jpeg_colour(&look, W / 2, H / 2, rgb);
    jpeg_free(&look);
    HOLDS(nearest_colour(rgb) == BLUE, "a %s picture of before the stop came out",
          colour_name(nearest_colour(rgb)));
}

POINT(codec_change, "vdec.create.other-codec", "MI_VDEC_CreateChn MI_VDEC_DestroyChn",
      "a channel that is created anew for another codec decodes it, in its old bindings or in new ones")
{
    Spot spots[4];
    const MI_SYS_ChnPort source = decoder_end(CH), sink = scaler_end();
    const MI_VDEC_ChnAttr attr = decoder_attr(&quad_h265);
    const Spot red[] = {{W / 2, H / 2, RED}};
    quad_spots(spots, 0, 0, W, H);
    need_decoder(CH, &red_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &red_h264, 0, red_h264.frames);
    snapshot_shows(red, 1, W, H);
    MI_SYS_UnBindChnPort(&source, &sink);
    NEED(MI_VDEC_StopChn(CH));
    NEED(MI_VDEC_DestroyChn(CH));
    NEED(MI_VDEC_CreateChn(CH, &attr));
    NEED(MI_VDEC_StartChn(CH));
    need_bound(&source, &sink);
    need_played(CH, &quad_h265, 0, quad_h265.frames);
    snapshot_shows(spots, 4, W, H);
}

POINT(size_change, "vdec.decode.size-change", "MI_VDEC_SendStream",
      "a stream whose pictures change their size at a key frame is decoded on")
{
    Spot spots[4];
    const Spot green[] = {{W / 2, H / 2, GREEN}};
    quad_spots(spots, 0, 0, W, H);
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &large_h264, 0, 2);
    snapshot_shows(green, 1, W, H);
    need_played(CH, &quad_h264, 0, quad_h264.frames);
    snapshot_shows(spots, 4, W, H);
}

/*
 * The scaler cuts 176 x 144 pixels out of what the decoder delivers. At an output size of 176 x 144 that
 * is the whole picture; at the stream's own size it is its red quarter.
 */
POINT(output_size, "vdec.output-size.next-picture", "MI_VDEC_SetOutputPortAttr",
      "pictures leave at the size set, from the next picture on; 0 x 0 is the stream's own size")
{
    Spot spots[4];
    const Spot red[] = {{W / 4, H / 4, RED}, {3 * W / 4, 3 * H / 4, RED}};
    const MI_VDEC_OutputPortAttr half = {W / 2, H / 2}, own = {0, 0};
    MI_DIVP_ChnAttr attr = scaler_attr(1920, 1080);
    const MI_VENC_ChnAttr encoder = encoder_attr(W, H);
    quad_spots(spots, 0, 0, W, H);
    need_decoder(CH, &quad_h264);
    attr.crop = (MI_Rect){0, 0, W / 2, H / 2};
    need_snapshots_with(CH, &attr, &encoder, W, H);
    need_played(CH, &quad_h264, 0, 5);
    snapshot_shows(red, 2, W, H);
    OK(MI_VDEC_SetOutputPortAttr(CH, &half));
    need_played(CH, &quad_h264, 5, 5);
    snapshot_shows(spots, 4, W, H);
    OK(MI_VDEC_SetOutputPortAttr(CH, &own));
    need_played(CH, &quad_h264, 0, 5);
    snapshot_shows(red, 2, W, H);
}

/* ----------------------------------------------------------------------- senders and their picture --- */

enum { SENDERS = 6, ROUNDS = 8 };

typedef struct Round {
    pthread_t thread;
    pthread_barrier_t *begin, *end;
    uint32_t channel;
    MI_VDEC_Stream send;
    int32_t result;
} Round;

static void *run_rounds(void *argument)
{
    Round *round = argument;
    for (int i = 0; i < ROUNDS; ++i) {
        pthread_barrier_wait(round->begin);
        const int32_t result = MI_VDEC_SendStream(round->channel, &round->send, 2000);
        if (result != 0) round->result = result;
        pthread_barrier_wait(round->end);
    }
    return NULL;
}

POINT(threads_pictures, "vdec.send.threads-own-pictures", "MI_VDEC_SendStream",
      "six threads send to a channel each at the same moment: each channel shows its own pictures")
{
    const TestStream *streams[SENDERS] = {&red_h264,  &green_h264,  &blue_h264,
                                          &cyan_h264, &yellow_h264, &magenta_h264};
    static const Colour wanted[SENDERS] = {RED, GREEN, BLUE, CYAN, YELLOW, MAGENTA};
    static Round rounds[SENDERS];
    Spot spots[SENDERS];
    pthread_barrier_t begin, end;
    need_display(0);
    for (uint32_t i = 0; i < SENDERS; ++i) {
        const MI_SYS_ChnPort source = decoder_end(i), sink = display_end(0, i);
        need_decoder(i, streams[i]);
        need_port(0, i, 200 * (int)i, 0, 200, 200);
        need_bound(&source, &sink);
        spots[i] = (Spot){200 * (int)i + 100, 100, wanted[i]};
    }
    pthread_barrier_init(&begin, NULL, SENDERS + 1);
    pthread_barrier_init(&end, NULL, SENDERS + 1);
    for (uint32_t i = 0; i < SENDERS; ++i) {
        rounds[i] = (Round){.begin = &begin, .end = &end, .channel = i, .send = frame_of(streams[i], 0)};
        if (pthread_create(&rounds[i].thread, NULL, run_rounds, &rounds[i]) != 0) blocked("no thread");
    }
    /* A crossed frame stays on screen until the next round: every round is looked at. */
    for (int i = 0; i < ROUNDS; ++i) {
        pthread_barrier_wait(&begin);
        pthread_barrier_wait(&end);
        for (uint32_t channel = 0; channel < SENDERS; ++channel)
            wait_consumed(channel, 1000);
        screen_shows(
            0, spots, SENDERS,
            "six fields in a row: red, green, blue, cyan, yellow, magenta, none in another's colour");
    }
    for (uint32_t i = 0; i < SENDERS; ++i) {
        pthread_join(rounds[i].thread, NULL);
        HOLDS(rounds[i].result == 0, "a send to channel %u was refused: 0x%08x", i,
              (unsigned)rounds[i].result);
    }
}

const Point *const vdec_change_points[] = {
    &point_stop_drops,  &point_codec_change,     &point_size_change,
    &point_output_size, &point_threads_pictures, NULL,
};
