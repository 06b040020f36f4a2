/*
 * points_vdec_picture.c - what comes out of a decoder. The pictures are looked at through the snapshot
 * pipeline, which every board can do without a hook.
 */
#define _GNU_SOURCE /* clocks, barriers and mappings, also with -std=c11 */
#include <pthread.h>
#include <stdlib.h>
#include <string.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, W = STREAM_WIDTH, H = STREAM_HEIGHT };

/* Send a stream a few times over until the snapshot shows its four quarters. */
static void shows_quad(const TestStream *stream)
{
    Spot spots[4];
    quad_spots(spots, 0, 0, W, H);
    need_decoder(CH, stream);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < stream->frames; ++i) {
        const MI_VDEC_Stream frame = frame_of(stream, i);
        OK(MI_VDEC_SendStream(CH, &frame, SEND_MS));
    }
    snapshot_shows(spots, 4, W, H);
}

POINT(shows_h264, "vdec.decode.h264", "MI_VDEC_SendStream", "H.264 comes out as the pictures that went in")
{
    shows_quad(&quad_h264);
}

POINT(shows_h265, "vdec.decode.h265", "MI_VDEC_SendStream", "H.265 comes out as the pictures that went in")
{
    shows_quad(&quad_h265);
}

POINT(shows_jpeg, "vdec.decode.jpeg", "MI_VDEC_SendStream", "JPEG comes out as the pictures that went in")
{
    shows_quad(&quad_jpeg);
}

POINT(stream_mode, "vdec.decode.stream-mode", "MI_VDEC_CreateChn MI_VDEC_SendStream",
      "in stream mode any cut of the byte stream does")
{
    Spot spots[4];
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    quad_spots(spots, 0, 0, W, H);
    NEED(MI_SYS_Init());
    attr.video_mode = MI_VDEC_MODE_STREAM;
    NEED(MI_VDEC_CreateChn(CH, &attr));
    NEED(MI_VDEC_StartChn(CH));
    need_snapshots(CH, W, H);
    for (uint32_t at = 0; at < quad_h264.size; at += 97) {
        const uint32_t left = quad_h264.size - at;
        const MI_VDEC_Stream cut = {quad_h264.bytes + at, left < 97 ? left : 97, 40000, left <= 97, 0};
        OK(MI_VDEC_SendStream(CH, &cut, SEND_MS));
    }
    snapshot_shows(spots, 4, W, H);
}

POINT(end_of_frame, "vdec.decode.end-of-frame", "MI_VDEC_SendStream",
      "in stream mode a send that ends a frame brings its picture out, without a frame behind it")
{
    Spot spots[4];
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    quad_spots(spots, 0, 0, W, H);
    NEED(MI_SYS_Init());
    attr.video_mode = MI_VDEC_MODE_STREAM;
    NEED(MI_VDEC_CreateChn(CH, &attr));
    NEED(MI_VDEC_StartChn(CH));
    need_snapshots(CH, W, H);
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    OK(MI_VDEC_SendStream(CH, &frame, SEND_MS));
    snapshot_shows(spots, 4, W, H);
}

POINT(copies, "vdec.send.copies", "MI_VDEC_SendStream",
      "the bytes are copied before the call returns: the caller's may be overwritten at once")
{
    static uint8_t bytes[4096];
    Spot spots[4];
    quad_spots(spots, 0, 0, W, H);
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < quad_h264.frames; ++i) {
        MI_VDEC_Stream frame = frame_of(&quad_h264, i);
        memcpy(bytes, frame.address, frame.length_bytes);
        frame.address = bytes;
        OK(MI_VDEC_SendStream(CH, &frame, SEND_MS));
        memset(bytes, 0xFF, sizeof bytes);
        memset(&frame, 0xFF, sizeof frame);
    }
    snapshot_shows(spots, 4, W, H);
}

/* Luma of the middle of the newest snapshot, and its time stamp. False: no more came. */
static bool newest_grey(int *luma)
{
    JpegLook look;
    MI_VENC_Pack packs[8];
    MI_VENC_Stream stream = {packs, 8, 0, 0};
    bool any = false;
    while (MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(any ? 150 : SNAP_MS)) == 0) {
        uint8_t rgb[3];
        HOLDS(jpeg_look(packs[0].address, packs[0].length_bytes, &look), "the snapshot is no JPEG: %s",
              look.fault);
        jpeg_colour(&look, W / 2, H / 2, rgb);
        jpeg_free(&look);
        *luma = rgb[1];
        any = true;
        NEED(MI_VENC_ReleaseStream(ENCODER, &stream));
        stream.pack_count = 8;
    }
    return any;
}

POINT(last_frame, "vdec.decode.last-frame-last", "MI_VDEC_SendStream",
      "the last frame sent is the last picture seen, without a frame behind it")
{
    int luma = -1;
    need_decoder(CH, &steps_h264);
    need_snapshots(CH, W, H);
    /* Full range or limited, as the encoder has it: 40 is at most 40, 224 at least 208. */
    need_played(CH, &steps_h264, 0, 1);
    HOLDS(newest_grey(&luma), "no picture of the first frame came out");
    HOLDS(luma < 60, "the first frame is dark, and the picture has a luma of %d", luma);
    need_played(CH, &steps_h264, 1, steps_h264.frames - 1);
    HOLDS(newest_grey(&luma), "no picture came out");
    HOLDS(luma > 200, "the last frame is light, and the newest picture has a luma of %d", luma);
}

POINT(in_order, "vdec.decode.in-order", "MI_VDEC_SendStream",
      "pictures come out in the order of their frames, one for each send")
{
    int before = -1;
    need_decoder(CH, &steps_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < 12; ++i) {
        JpegLook look;
        uint8_t rgb[3];
        need_played(CH, &steps_h264, i, 1);
        take_snapshot(&look, W, H);
        jpeg_colour(&look, W / 2, H / 2, rgb);
        jpeg_free(&look);
        HOLDS(rgb[1] > before + 3, "frame %u is lighter than the one before, its picture is not: %d after %d",
              i, rgb[1], before);
        before = rgb[1];
    }
}

POINT(time_stamps, "vdec.send.time-stamp", "MI_VDEC_SendStream MI_VENC_GetStream",
      "a picture carries the time stamp of its send")
{
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < 4; ++i) {
        MI_VENC_Pack packs[8];
        MI_VENC_Stream stream = {packs, 8, 0, 0};
        MI_VDEC_Stream frame = frame_of(&quad_h264, i);
        frame.pts = (MI_U64)0x123456789ull + (MI_U64)i * 40000;
        NEED(MI_VDEC_SendStream(CH, &frame, SEND_MS));
        OK(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(SNAP_MS)));
        HOLDS(packs[0].pts == frame.pts, "sent with %llu, the picture has %llu",
              (unsigned long long)frame.pts, (unsigned long long)packs[0].pts);
        NEED(MI_VENC_ReleaseStream(ENCODER, &stream));
    }
}

POINT(survives_damage, "vdec.decode.survives-damage", "MI_VDEC_SendStream",
      "damaged frames stop nothing: the next key frame is seen, and all is consumed")
{
    const Spot spots[] = {{W / 4, H / 4, MAGENTA}, {3 * W / 4, 3 * H / 4, MAGENTA}};
    need_decoder(CH, &broken_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < broken_h264.frames; ++i) {
        const MI_VDEC_Stream frame = frame_of(&broken_h264, i);
        OK(MI_VDEC_SendStream(CH, &frame, SEND_MS));
    }
    HOLDS(wait_consumed(CH, 2000), "damaged frames are not consumed: %s", last_call_text());
    snapshot_shows(spots, 2, W, H);
}

POINT(survives_noise, "vdec.decode.survives-noise", "MI_VDEC_SendStream",
      "noise instead of a stream stops nothing: the next key frame is seen")
{
    static uint8_t noise[5000];
    Spot spots[4];
    quad_spots(spots, 0, 0, W, H);
    for (size_t i = 0; i < sizeof noise; ++i)
        noise[i] = (uint8_t)(i * i / 7 + i * 31);
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    for (int i = 0; i < 5; ++i) {
        const MI_VDEC_Stream send = {noise + 100 * i, (uint32_t)sizeof noise - 500, 0, 1, 0};
        OK(MI_VDEC_SendStream(CH, &send, SEND_MS));
    }
    need_played(CH, &quad_h264, 0, quad_h264.frames);
    HOLDS(wait_consumed(CH, 2000), "noise is not consumed: %s", last_call_text());
    snapshot_shows(spots, 4, W, H);
}

POINT(needs_key, "vdec.stop.next-begins-at-key-frame", "MI_VDEC_StopChn MI_VDEC_StartChn",
      "after a stop and a start nothing of the old stream is seen before the next key frame")
{
    int luma = -1;
    need_decoder(CH, &steps_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &steps_h264, 0, 3);
    HOLDS(newest_grey(&luma), "no picture came out");
    NEED(MI_VDEC_StopChn(CH));
    NEED(MI_VDEC_StartChn(CH));
    need_played(CH, &steps_h264, 3, 2);
    MI_VENC_Pack packs[8];
    MI_VENC_Stream stream = {packs, 8, 0, 0};
    const int32_t got = MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(200));
    HOLDS(got != 0, "%s: a picture came out of frames that lack their key frame", last_call_text());
    need_played(CH, &steps_h264, 8, 4);
    HOLDS(newest_grey(&luma), "no picture came out from the key frame on");
    HOLDS(luma > 100 && luma < 160, "frame 11 has a luma of about 128, the picture %d", luma);
}

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

const Point *const vdec_picture_points[] = {
    &point_shows_h264,      &point_shows_h265,       &point_shows_jpeg,
    &point_stream_mode,     &point_end_of_frame,     &point_copies,
    &point_last_frame,      &point_in_order,         &point_time_stamps,
    &point_survives_damage, &point_survives_noise,   &point_needs_key,
    &point_stop_drops,      &point_codec_change,     &point_size_change,
    &point_output_size,     &point_threads_pictures, NULL,
};
