/* points_snap.c - pictures of the encoder: fetched in order and in time, lent, given back. */
#include <stdlib.h>
#include <string.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, NO_CHANNEL = 0x7FFF, W = STREAM_WIDTH, H = STREAM_HEIGHT };

POINT(snap_one_pack, "venc.get-stream.one-pack", "MI_VENC_GetStream",
      "with room for one pack the whole picture lies in it: frame end, no offset, from the address on")
{
    MI_VENC_Pack pack;
    MI_VENC_Stream stream = {&pack, 1, 0, 0};
    JpegLook look;
    memset(&pack, 0xEE, sizeof pack);
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &quad_h264, 0, 1);
    OK(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(SNAP_MS)));
    HOLDS(stream.pack_count == 1, "%u packs in room for one", stream.pack_count);
    for (int i = 0; i < 28; ++i)
        HOLDS(pack.reserved[i] == 0, "reserved word %d of the pack is 0x%08x", i, pack.reserved[i]);
    HOLDS(pack.frame_end == 1, "frame_end is %u in the only pack", pack.frame_end);
    HOLDS(pack.offset_bytes == 0, "the payload begins at %u, and the library applies no offset",
          pack.offset_bytes);
    const bool good = jpeg_look(pack.address, pack.length_bytes, &look);
    jpeg_free(&look);
    HOLDS(good, "the %u bytes at the address are no JPEG: %s", pack.length_bytes, look.fault);
    HOLDS(pack.address[pack.length_bytes - 2] == 0xFF && pack.address[pack.length_bytes - 1] == 0xD9,
          "the %u bytes do not end with the end of the image", pack.length_bytes);
}

POINT(snap_sequence, "venc.get-stream.sequence", "MI_VENC_GetStream",
      "pictures are numbered from 0 and come oldest first, with handles of their own")
{
    uintptr_t handles[4];
    need_decoder(CH, &steps_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < 4; ++i) {
        MI_VENC_Pack packs[2];
        MI_VENC_Stream stream = {packs, 2, 77, 0};
        need_played(CH, &steps_h264, i, 1);
        OK(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(SNAP_MS)));
        HOLDS(stream.sequence == i, "picture %u has the number %u", i, stream.sequence);
        for (uint32_t before = 0; before < i; ++before)
            HOLDS(handles[before] != stream.handle, "two streams that are lent have the handle %zu",
                  (size_t)stream.handle);
        handles[i] = stream.handle;
    }
}

POINT(snap_pts, "venc.get-stream.time-stamp", "MI_VENC_GetStream",
      "a stream carries the time stamp of its picture")
{
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < 3; ++i) {
        MI_VENC_Pack packs[2];
        MI_VENC_Stream stream = {packs, 2, 0, 0};
        const MI_VDEC_Stream frame = frame_of(&quad_h264, i);
        need_played(CH, &quad_h264, i, 1);
        OK(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(SNAP_MS)));
        HOLDS(packs[0].pts == frame.pts, "the frame has %llu, its stream %llu", (unsigned long long)frame.pts,
              (unsigned long long)packs[0].pts);
        NEED(MI_VENC_ReleaseStream(ENCODER, &stream));
    }
}

POINT(snap_oldest, "venc.get-stream.oldest-first", "MI_VENC_GetStream",
      "of several encoded pictures the oldest is given first")
{
    int before = -1;
    need_decoder(CH, &steps_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < 4; ++i) {
        need_played(CH, &steps_h264, i, 1);
        wait_consumed(CH, 500);
        pause_ms(patient_ms(30));
    }
    for (uint32_t i = 0; i < 4; ++i) {
        JpegLook look;
        uint8_t rgb[3];
        take_snapshot(&look, W, H);
        jpeg_colour(&look, W / 2, H / 2, rgb);
        jpeg_free(&look);
        HOLDS(rgb[1] > before + 3, "picture %u of 4 is not lighter than the one before: %d after %d", i,
              rgb[1], before);
        before = rgb[1];
    }
}

POINT(snap_times_out, "venc.get-stream.times-out", "MI_VENC_GetStream",
      "without a picture TIMEOUT comes when the time-out is over, neither before nor much later")
{
    enum { TRIES = 3 };
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_encoder();
    NEED(MI_VENC_StartRecvPic(ENCODER));
    static const int32_t waits[] = {200, 40};
    for (int w = 0; w < 2; ++w) {
        for (int i = 1;; ++i) {
            REFUSED(MI_VENC_GetStream(ENCODER, &stream, waits[w]), MI_MODULE_VENC, MI_REASON_TIMEOUT);
            if (i == TRIES || took_within(waits[w], 60) || last_call_ms() < waits[w] - 2) break;
        }
        expect_took(waits[w], 60);
    }
}

POINT(snap_at_once, "venc.get-stream.zero-time-out", "MI_VENC_GetStream",
      "with a time-out of 0 TIMEOUT comes at once, and a picture that is there too")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    for (int i = 1;; ++i) {
        REFUSED(MI_VENC_GetStream(ENCODER, &stream, 0), MI_MODULE_VENC, MI_REASON_TIMEOUT);
        if (i == 3 || took_within(0, 15)) break;
    }
    expect_took(0, 15);
    need_played(CH, &quad_h264, 0, 1);
    wait_consumed(CH, 1000);
    pause_ms(patient_ms(300));
    OK(MI_VENC_GetStream(ENCODER, &stream, 0));
}

POINT(snap_waits, "venc.get-stream.waits-for-ever", "MI_VENC_GetStream",
      "with a time-out of -1 the call waits until a picture comes; and comes back as soon as it does")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_decoder(CH, &large_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &large_h264, 0, 1);
    const int64_t began_us = now_us();
    OK(MI_VENC_GetStream(ENCODER, &stream, -1));
    HOLDS(now_us() - began_us < (int64_t)patient_ms(2000) * 1000, "%s", last_call_text());
}

POINT(snap_not_receiving, "venc.get-stream.not-receiving", "MI_VENC_GetStream",
      "a channel that receives nothing and has nothing left gives NOT_READY at once")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_encoder();
    REFUSED(MI_VENC_GetStream(ENCODER, &stream, 1000), MI_MODULE_VENC, MI_REASON_NOT_READY);
    expect_took(0, 150);
}

POINT(snap_no_room, "venc.get-stream.no-room", "MI_VENC_GetStream",
      "room for no pack gives BAD_VALUE, no array NULL_POINTER")
{
    MI_VENC_Pack packs[1];
    MI_VENC_Stream none = {packs, 0, 0, 0}, no_array = {NULL, 1, 0, 0};
    need_encoder();
    NEED(MI_VENC_StartRecvPic(ENCODER));
    REFUSED(MI_VENC_GetStream(ENCODER, &none, 0), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
    REFUSED(MI_VENC_GetStream(ENCODER, &no_array, 0), MI_MODULE_VENC, MI_REASON_NULL_POINTER);
}

POINT(snap_bytes_stay, "venc.get-stream.bytes-stay", "MI_VENC_GetStream MI_VENC_ReleaseStream",
      "the bytes of a stream stay as they are until it is released, whatever comes meanwhile")
{
    MI_VENC_Pack packs[3][2];
    MI_VENC_Stream streams[3];
    uint8_t *copy = NULL;
    need_decoder(CH, &steps_h264);
    need_snapshots(CH, W, H);
    for (uint32_t i = 0; i < 3; ++i) {
        streams[i] = (MI_VENC_Stream){packs[i], 2, 0, 0};
        need_played(CH, &steps_h264, i, 1);
        NEED(MI_VENC_GetStream(ENCODER, &streams[i], (int32_t)patient_ms(SNAP_MS)));
        if (i == 0) {
            copy = malloc(packs[0][0].length_bytes);
            if (copy == NULL) blocked("no memory");
            memcpy(copy, packs[0][0].address, packs[0][0].length_bytes);
        }
    }
    NEED(MI_VENC_ReleaseStream(ENCODER, &streams[1]));
    need_played(CH, &steps_h264, 3, 5);
    wait_consumed(CH, 1000);
    pause_ms(patient_ms(60));
    const bool same = memcmp(copy, packs[0][0].address, packs[0][0].length_bytes) == 0;
    free(copy);
    HOLDS(same, "the bytes of the first picture have changed while it was lent");
    OK(MI_VENC_ReleaseStream(ENCODER, &streams[0]));
    OK(MI_VENC_ReleaseStream(ENCODER, &streams[2]));
}

POINT(snap_release_twice, "venc.release.twice", "MI_VENC_ReleaseStream",
      "a stream that is not lent, or was released before, gives BAD_VALUE")
{
    MI_VENC_Pack packs[2];
    MI_VENC_Stream stream = {packs, 2, 0, 0};
    need_decoder(CH, &quad_h264);
    need_snapshots(CH, W, H);
    need_played(CH, &quad_h264, 0, 1);
    NEED(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(SNAP_MS)));
    OK(MI_VENC_ReleaseStream(ENCODER, &stream));
    REFUSED(MI_VENC_ReleaseStream(ENCODER, &stream), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
    stream.handle += 12345;
    REFUSED(MI_VENC_ReleaseStream(ENCODER, &stream), MI_MODULE_VENC, MI_REASON_BAD_VALUE);
}

POINT(snap_release_frees, "venc.release.frees", "MI_VENC_ReleaseStream MI_VENC_GetStream",
      "released streams make room: many times the buffer's size goes through")
{
    enum { PICTURES = 60 };
    MI_VENC_ChnAttr attr = encoder_attr(W, H);
    const MI_DIVP_ChnAttr scaler = scaler_attr(1920, 1080);
    JpegLook look;
    attr.stream_buffer_bytes = 24000; /* a few of these pictures, not sixty */
    need_decoder(CH, &quad_h264);
    need_snapshots_with(CH, &scaler, &attr, W, H);
    for (uint32_t i = 0; i < PICTURES; ++i) {
        need_played(CH, &quad_h264, i % 10, 1);
        take_snapshot(&look, W, H);
        jpeg_free(&look);
    }
}

const Point *const snap_points[] = {
    &point_snap_one_pack,
    &point_snap_sequence,
    &point_snap_pts,
    &point_snap_oldest,
    &point_snap_times_out,
    &point_snap_at_once,
    &point_snap_waits,
    &point_snap_not_receiving,
    &point_snap_no_room,
    &point_snap_bytes_stay,
    &point_snap_release_twice,
    &point_snap_release_frees,
    NULL,
};
