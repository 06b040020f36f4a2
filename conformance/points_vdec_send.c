/* points_vdec_send.c - sending to a decoder channel: refusals and backlog numbers. */
#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, NO_CHANNEL = 0x7FFF, LATE_MS = 150 };

/* ------------------------------------------------------------------------------------ refusals --- */

POINT(send_null, "vdec.send.null", "MI_VDEC_SendStream", "no record, or no bytes, gives NULL_POINTER")
{
    const MI_VDEC_Stream nothing = {NULL, 10, 0, 1, 0};
    need_decoder(CH, &quad_h264);
    REFUSED(MI_VDEC_SendStream(CH, NULL, 0), MI_MODULE_VDEC, MI_REASON_NULL_POINTER);
    REFUSED(MI_VDEC_SendStream(CH, &nothing, 0), MI_MODULE_VDEC, MI_REASON_NULL_POINTER);
}

POINT(send_empty, "vdec.send.empty", "MI_VDEC_SendStream", "an empty send gives BAD_VALUE")
{
    MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_decoder(CH, &quad_h264);
    frame.length_bytes = 0;
    REFUSED(MI_VDEC_SendStream(CH, &frame, 0), MI_MODULE_VDEC, MI_REASON_BAD_VALUE);
}

POINT(send_too_large, "vdec.send.larger-than-buffer", "MI_VDEC_SendStream",
      "a send that is larger than the whole buffer gives BAD_VALUE at once, whatever the time-out")
{
    static uint8_t bytes[4097];
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    const MI_VDEC_Stream send = {bytes, sizeof bytes, 0, 1, 0};
    NEED(MI_SYS_Init());
    attr.stream_buffer_bytes = 4096;
    NEED(MI_VDEC_CreateChn(CH, &attr));
    NEED(MI_VDEC_StartChn(CH));
    REFUSED(MI_VDEC_SendStream(CH, &send, 1000), MI_MODULE_VDEC, MI_REASON_BAD_VALUE);
    expect_took(0, LATE_MS);
}

POINT(send_whole_buffer, "vdec.send.whole-buffer", "MI_VDEC_SendStream",
      "a send of exactly the buffer's size fits an empty buffer")
{
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    const MI_VDEC_Stream send = frame_of(&quad_h264, 0);
    NEED(MI_SYS_Init());
    attr.stream_buffer_bytes = send.length_bytes;
    NEED(MI_VDEC_CreateChn(CH, &attr));
    NEED(MI_VDEC_StartChn(CH));
    OK(MI_VDEC_SendStream(CH, &send, 0));
}

POINT(send_absent, "vdec.send.absent", "MI_VDEC_SendStream",
      "to a channel that was not created gives ABSENT, to none that exists BAD_CHANNEL")
{
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    NEED(MI_SYS_Init());
    REFUSED(MI_VDEC_SendStream(CH, &frame, 0), MI_MODULE_VDEC, MI_REASON_ABSENT);
    REFUSED(MI_VDEC_SendStream(NO_CHANNEL, &frame, 0), MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL);
}

POINT(send_stopped, "vdec.send.stopped", "MI_VDEC_SendStream",
      "to a stopped channel gives NOT_PERMITTED at once, whatever the time-out")
{
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_decoder(CH, &quad_h264);
    NEED(MI_VDEC_StopChn(CH));
    REFUSED(MI_VDEC_SendStream(CH, &frame, 1000), MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED);
    expect_took(0, LATE_MS);
}

/* -------------------------------------------------------------------------------------- queries --- */

POINT(stat_refused, "vdec.stat.refusals", "MI_VDEC_GetChnStat",
      "no record gives NULL_POINTER, no such channel BAD_CHANNEL, one that was not created ABSENT")
{
    MI_VDEC_ChnStat stat;
    need_decoder(CH, &quad_h264);
    REFUSED(MI_VDEC_GetChnStat(CH, NULL), MI_MODULE_VDEC, MI_REASON_NULL_POINTER);
    REFUSED(MI_VDEC_GetChnStat(NO_CHANNEL, &stat), MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_VDEC_GetChnStat(CH + 1, &stat), MI_MODULE_VDEC, MI_REASON_ABSENT);
}

POINT(stat_empty, "vdec.stat.empty", "MI_VDEC_GetChnStat", "a channel that was sent nothing has nothing left")
{
    MI_VDEC_ChnStat stat = {9, 9, 9};
    need_decoder(CH, &quad_h264);
    OK(MI_VDEC_GetChnStat(CH, &stat));
    HOLDS(stat.left_stream_bytes == 0 && stat.left_stream_frames == 0 && stat.left_pictures == 0,
          "of a new channel: %s", last_call_text());
}

/* Bytes of the last `count` of `sent` frames. */
static uint32_t bytes_of_last(uint32_t sent, uint32_t count)
{
    uint32_t bytes = 0;
    for (uint32_t i = sent - count; i < sent; ++i)
        bytes += large_h264.lengths[i % large_h264.frames];
    return bytes;
}

POINT(stat_frames, "vdec.stat.frames-left", "MI_VDEC_GetChnStat",
      "left frames are the sends not yet consumed: most of them after a burst, ever fewer, then none")
{
    const uint32_t sent = need_busy(CH, 300);
    MI_VDEC_ChnStat stat = {0, 0, 0};
    OK(MI_VDEC_GetChnStat(CH, &stat));
    HOLDS(stat.left_stream_frames <= sent, "%u frames were sent at most, and %u are left", sent,
          stat.left_stream_frames);
    IN_TIME(stat.left_stream_frames >= sent / 4, "of %u frames, work for 300 ms, only %u are left at once",
            sent, stat.left_stream_frames);
    uint32_t before = stat.left_stream_frames, steps = 0;
    for (int i = 0; i < 2000 && before > 0; ++i) {
        pause_ms(2);
        OK(MI_VDEC_GetChnStat(CH, &stat));
        HOLDS(stat.left_stream_frames <= before, "nothing was sent, and left frames rose from %u to %u",
              before, stat.left_stream_frames);
        if (stat.left_stream_frames < before) ++steps;
        before = stat.left_stream_frames;
    }
    HOLDS(before == 0, "%u frames are left for ever", before);
    IN_TIME(steps >= 3, "%u frames went in %u steps", sent, steps);
}

POINT(stat_bytes, "vdec.stat.bytes-left", "MI_VDEC_GetChnStat",
      "left bytes are those of the sends that are left, the one in work counted whole or in part")
{
    const uint32_t sent = need_busy(CH, 300);
    MI_VDEC_ChnStat stat = {0, 1, 0};
    uint32_t looks = 0;
    for (int i = 0; i < 2000; ++i) {
        OK(MI_VDEC_GetChnStat(CH, &stat));
        const uint32_t left = stat.left_stream_frames;
        if (left > sent) broken("%u frames were sent, and %u are left", sent, left);
        if (left == 0) break;
        HOLDS(stat.left_stream_bytes <= bytes_of_last(sent, left) &&
                  stat.left_stream_bytes >= bytes_of_last(sent, left - 1),
              "%u frames are left, which are %u to %u bytes, and %u bytes", left,
              bytes_of_last(sent, left - 1), bytes_of_last(sent, left), stat.left_stream_bytes);
        ++looks;
        pause_ms(2);
    }
    IN_TIME(looks >= 3, "the backlog of %u frames, work for 300 ms, was never seen", sent);
    HOLDS(stat.left_stream_bytes == 0, "no frame is left, and %u bytes", stat.left_stream_bytes);
}

POINT(stat_own, "vdec.stat.own-channel", "MI_VDEC_GetChnStat",
      "a channel's backlog is not that of another one")
{
    MI_VDEC_ChnStat stat = {9, 9, 9};
    need_decoder(CH + 1, &quad_h264);
    need_busy(CH, 200);
    OK(MI_VDEC_GetChnStat(CH + 1, &stat));
    HOLDS(stat.left_stream_bytes == 0 && stat.left_stream_frames == 0,
          "another channel is busy, and this one has left: %s", last_call_text());
}

POINT(stat_pictures, "vdec.stat.pictures-left", "MI_VDEC_GetChnStat",
      "no picture is left once the sink has taken them")
{
    const MI_SYS_ChnPort source = decoder_end(CH), sink = display_end(0, 0);
    MI_VDEC_ChnStat stat = {0, 0, 9};
    need_display(0);
    need_port(0, 0, 0, 0, 640, 360);
    need_decoder(CH, &quad_h264);
    need_bound(&source, &sink);
    need_played(CH, &quad_h264, 0, quad_h264.frames);
    const int64_t until_us = now_us() + (int64_t)patient_ms(PICTURE_MS) * 1000;
    do {
        OK(MI_VDEC_GetChnStat(CH, &stat));
        if (stat.left_stream_frames == 0 && stat.left_pictures == 0) return;
        HOLDS(stat.left_pictures <= 32, "%u pictures are left of %u", stat.left_pictures, quad_h264.frames);
        pause_ms(2);
    } while (now_us() < until_us);
    broken("pictures are left for ever: %s", last_call_text());
}

POINT(stop_discards, "vdec.stop.discards", "MI_VDEC_StopChn MI_VDEC_GetChnStat",
      "a stop discards what is queued: nothing is left, and it does not wait until all is decoded")
{
    MI_VDEC_ChnStat stat = {9, 9, 9};
    need_busy(CH, 1500);
    OK(MI_VDEC_StopChn(CH));
    expect_took(0, 600);
    OK(MI_VDEC_GetChnStat(CH, &stat));
    HOLDS(stat.left_stream_bytes == 0 && stat.left_stream_frames == 0 && stat.left_pictures == 0,
          "after the stop: %s", last_call_text());
    NEED(MI_VDEC_StartChn(CH));
    OK(MI_VDEC_GetChnStat(CH, &stat));
    HOLDS(stat.left_stream_bytes == 0 && stat.left_stream_frames == 0, "after the next start: %s",
          last_call_text());
}

POINT(start_keeps, "vdec.start.twice-keeps-queue", "MI_VDEC_StartChn MI_VDEC_GetChnStat",
      "starting a started channel discards nothing")
{
    MI_VDEC_ChnStat stat = {0, 0, 0};
    const uint32_t sent = need_busy(CH, 400);
    OK(MI_VDEC_StartChn(CH));
    OK(MI_VDEC_GetChnStat(CH, &stat));
    IN_TIME(stat.left_stream_frames >= sent / 4, "of %u queued frames %u are left", sent,
            stat.left_stream_frames);
}

const Point *const vdec_send_points[] = {
    &point_send_null,         &point_send_empty,  &point_send_too_large,
    &point_send_whole_buffer, &point_send_absent, &point_send_stopped,
    &point_stat_refused,      &point_stat_empty,  &point_stat_frames,
    &point_stat_bytes,        &point_stat_own,    &point_stat_pictures,
    &point_stop_discards,     &point_start_keeps, NULL,
};
