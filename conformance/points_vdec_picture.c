/*
 * points_vdec_picture.c - what comes out of a decoder: codecs, order, damage. The pictures are looked at
 * through the snapshot pipeline, which every board can do without a hook.
 */
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

const Point *const vdec_picture_points[] = {
    &point_shows_h264,
    &point_shows_h265,
    &point_shows_jpeg,
    &point_stream_mode,
    &point_end_of_frame,
    &point_copies,
    &point_last_frame,
    &point_in_order,
    &point_time_stamps,
    &point_survives_damage,
    &point_survives_noise,
    &point_needs_key,
    NULL,
};
