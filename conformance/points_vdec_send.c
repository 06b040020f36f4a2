/* points_vdec_send.c - sending to a decoder channel: refusals, backlog numbers, time-outs, threads. */
#define _GNU_SOURCE /* clocks, barriers and mappings, also with -std=c11 */
#include <pthread.h>
#include <stdlib.h>
#include <string.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, NO_CHANNEL = 0x7FFF, FULL_MS = 200, BUSY_MS = 700, LATE_MS = 150, TRIES = 3 };

static MI_VDEC_Stream small_frame(void)
{
    return frame_of(&large_h264, 1);
}

/* A decoder that has a measured amount of work before it: `frames` large frames are queued. */
static uint32_t need_busy(uint32_t channel, unsigned busy_ms)
{
    need_decoder(channel, &large_h264);
    const uint32_t frames = frames_for_ms(channel, busy_ms);
    need_played(channel, &large_h264, 0, frames);
    return frames;
}

/*
 * A channel whose buffer is full, and stays so for some time: a send of the whole buffer's size has room
 * only when everything before it is consumed. Gives that send.
 */
static MI_VDEC_Stream need_full(uint32_t channel, unsigned busy_ms)
{
    need_decoder(channel, &large_h264);
    const uint32_t frames = frames_for_ms(channel, busy_ms);
    uint32_t bytes = 0;
    for (uint32_t i = 0; i < frames; ++i)
        bytes += large_h264.lengths[i % large_h264.frames];
    NEED(MI_VDEC_StopChn(channel));
    NEED(MI_VDEC_DestroyChn(channel));
    MI_VDEC_ChnAttr attr = decoder_attr(&large_h264);
    attr.stream_buffer_bytes = bytes;
    NEED(MI_VDEC_CreateChn(channel, &attr));
    NEED(MI_VDEC_StartChn(channel));
    static uint8_t *whole; /* of the point before */
    free(whole);
    whole = calloc(1, bytes);
    if (whole == NULL) blocked("no memory");
    need_played(channel, &large_h264, 0, frames);
    return (MI_VDEC_Stream){whole, bytes, 0, 1, 0};
}

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

/* ------------------------------------------------------------------------------------- time-outs --- */

/* On a machine that stood still for a while everything may be consumed: then the send succeeds rightly. */
static void refused_for_want_of_room(int32_t result)
{
    if (result == 0) too_late("%s, expected BUFFER_FULL", last_call_text());
    expect_refusal(result, MI_MODULE_VDEC, MI_REASON_BUFFER_FULL);
}

POINT(full_at_once, "vdec.send.full-at-once", "MI_VDEC_SendStream",
      "with a time-out of 0 a send without room gives BUFFER_FULL without waiting")
{
    const MI_VDEC_Stream send = need_full(CH, BUSY_MS);
    for (int i = 1;; ++i) {
        refused_for_want_of_room(MI_VDEC_SendStream(CH, &send, 0));
        if (i == TRIES || took_within(0, 20)) break;
    }
    expect_took(0, 20);
}

POINT(full_times_out, "vdec.send.full-times-out", "MI_VDEC_SendStream",
      "a send without room gives BUFFER_FULL when its time-out is over, neither before nor much later")
{
    const MI_VDEC_Stream send = need_full(CH, 4 * FULL_MS + BUSY_MS);
    for (int i = 1;; ++i) {
        refused_for_want_of_room(MI_VDEC_SendStream(CH, &send, FULL_MS));
        if (i == TRIES || took_within(FULL_MS, 60) || last_call_ms() < FULL_MS - 2) break;
    }
    expect_took(FULL_MS, 60);
}

POINT(full_short, "vdec.send.full-20-ms", "MI_VDEC_SendStream",
      "the library's own time-out of 20 ms is kept: not less, and not ten times as long")
{
    const MI_VDEC_Stream send = need_full(CH, BUSY_MS);
    for (int i = 1;; ++i) {
        refused_for_want_of_room(MI_VDEC_SendStream(CH, &send, 20));
        if (i == TRIES || took_within(20, 60) || last_call_ms() < 18) break;
    }
    expect_took(20, 60);
}

POINT(full_waits, "vdec.send.waits-for-room", "MI_VDEC_SendStream",
      "a send without room succeeds as soon as there is room within its time-out")
{
    const MI_VDEC_Stream send = need_full(CH, 400);
    const int64_t began_us = now_us();
    OK(MI_VDEC_SendStream(CH, &send, 8000));
    IN_TIME(now_us() - began_us < (int64_t)patient_ms(6000) * 1000, "%s: the room was there long before",
            last_call_text());
    IN_TIME(last_call_ms() >= 50, "%s: it went through although the buffer, with work for 400 ms, was full",
            last_call_text());
}

POINT(full_for_ever, "vdec.send.waits-for-ever", "MI_VDEC_SendStream",
      "with a time-out of -1 a send waits until there is room, and then succeeds")
{
    const MI_VDEC_Stream send = need_full(CH, 500);
    OK(MI_VDEC_SendStream(CH, &send, -1));
    IN_TIME(last_call_ms() >= 50, "%s: it went through although the buffer, with work for 500 ms, was full",
            last_call_text());
}

POINT(full_keeps_out, "vdec.send.full-takes-nothing", "MI_VDEC_SendStream MI_VDEC_GetChnStat",
      "a send that was refused for want of room leaves nothing in the queue")
{
    MI_VDEC_ChnStat stat = {0, 0, 0};
    const MI_VDEC_Stream send = need_full(CH, BUSY_MS);
    refused_for_want_of_room(MI_VDEC_SendStream(CH, &send, 0));
    OK(MI_VDEC_GetChnStat(CH, &stat));
    HOLDS(stat.left_stream_bytes <= send.length_bytes, "%u bytes are left in a buffer of %u",
          stat.left_stream_bytes, send.length_bytes);
}

POINT(room_at_once, "vdec.send.room-at-once", "MI_VDEC_SendStream",
      "a send that has room comes back at once, also with a long time-out")
{
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_decoder(CH, &quad_h264);
    for (int i = 1;; ++i) {
        OK(MI_VDEC_SendStream(CH, &frame, 1000));
        if (i == TRIES || took_within(0, 15)) break;
    }
    expect_took(0, 15);
}

POINT(room_again, "vdec.send.room-again", "MI_VDEC_SendStream MI_VDEC_GetChnStat",
      "consumed bytes make room: many times the buffer's size goes through")
{
    MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264);
    NEED(MI_SYS_Init());
    attr.stream_buffer_bytes = 1000;
    NEED(MI_VDEC_CreateChn(CH, &attr));
    NEED(MI_VDEC_StartChn(CH));
    for (uint32_t i = 0; i < 200; ++i) {
        const MI_VDEC_Stream frame = frame_of(&quad_h264, i % quad_h264.frames);
        OK(MI_VDEC_SendStream(CH, &frame, SEND_MS));
    }
    HOLDS(wait_consumed(CH, 3000), "200 small frames are not consumed within 3 s: %s", last_call_text());
}

POINT(room_after_stop, "vdec.stop.frees-room", "MI_VDEC_StopChn MI_VDEC_SendStream",
      "after a stop and a start the whole buffer is free again")
{
    const MI_VDEC_Stream send = need_full(CH, BUSY_MS);
    NEED(MI_VDEC_StopChn(CH));
    NEED(MI_VDEC_StartChn(CH));
    OK(MI_VDEC_SendStream(CH, &send, 0));
}

/* --------------------------------------------------------------------------------------- threads --- */

typedef struct Sender {
    pthread_t thread;
    pthread_barrier_t *barrier;
    const MI_VDEC_Stream *send;
    uint32_t channel, sends;
    int32_t timeout_ms, first_refusal;
    uint32_t refusals;
    double took_ms;
} Sender;

static void *run_sender(void *argument)
{
    Sender *sender = argument;
    if (sender->barrier != NULL) pthread_barrier_wait(sender->barrier);
    for (uint32_t i = 0; i < sender->sends; ++i) {
        const int32_t result = MI_VDEC_SendStream(sender->channel, sender->send, sender->timeout_ms);
        if (result == 0) continue;
        if (sender->refusals++ == 0) sender->first_refusal = result;
    }
    sender->took_ms = last_call_ms();
    return NULL;
}

POINT(stop_wakes, "vdec.stop.wakes-sender", "MI_VDEC_StopChn MI_VDEC_SendStream",
      "a stop sends a waiting sender back with NOT_PERMITTED, long before its time-out")
{
    const MI_VDEC_Stream send = need_full(CH, 3000);
    Sender sender = {.send = &send, .channel = CH, .sends = 1, .timeout_ms = 10000};
    if (pthread_create(&sender.thread, NULL, run_sender, &sender) != 0) blocked("no thread");
    pause_ms(60);
    const int32_t stopped = MI_VDEC_StopChn(CH);
    pthread_join(sender.thread, NULL);
    OK(stopped);
    HOLDS(sender.refusals == 1, "the waiting send succeeded on a stopped channel");
    char text[48];
    HOLDS(sender.first_refusal == MI_ERROR(MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED),
          "the waiting send gave %s, expected NOT_PERMITTED of VDEC",
          result_text(sender.first_refusal, text, sizeof text));
    IN_TIME(sender.took_ms < patient_ms(2000), "the sender waited %.0f ms, the stop came after 60",
            sender.took_ms);
}

POINT(others_pass, "vdec.send.waiting-holds-nobody", "MI_VDEC_SendStream MI_VDEC_GetChnStat",
      "while a send waits for room, calls to its channel and sends to another one come back at once")
{
    const MI_VDEC_Stream send = need_full(CH, 2000);
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    MI_VDEC_ChnStat stat;
    need_decoder(CH + 1, &quad_h264);
    Sender sender = {.send = &send, .channel = CH, .sends = 1, .timeout_ms = 600};
    if (pthread_create(&sender.thread, NULL, run_sender, &sender) != 0) blocked("no thread");
    pause_ms(60);
    double slowest = 0;
    int32_t results = 0;
    for (int i = 0; i < 5; ++i) {
        results |= MI_VDEC_SendStream(CH + 1, &frame, 1000);
        if (last_call_ms() > slowest) slowest = last_call_ms();
        results |= MI_VDEC_GetChnStat(CH, &stat);
        if (last_call_ms() > slowest) slowest = last_call_ms();
    }
    pthread_join(sender.thread, NULL);
    HOLDS(results == 0, "a call was refused while another channel's sender waited");
    IN_TIME(slowest < patient_ms(300), "a call took %.0f ms while a sender waited 600 ms for room", slowest);
}

POINT(same_channel, "vdec.send.threads-one-channel", "MI_VDEC_SendStream MI_VDEC_GetChnStat",
      "four threads send to one channel: every send is taken once, and the backlog counts them all")
{
    enum { THREADS = 4, SENDS = 100 };
    Sender senders[THREADS];
    MI_VDEC_ChnStat stat = {0, 0, 0};
    const MI_VDEC_Stream frame = small_frame();
    pthread_barrier_t barrier;
    const uint32_t queued = need_busy(CH, 500);
    pthread_barrier_init(&barrier, NULL, THREADS);
    for (int i = 0; i < THREADS; ++i) {
        senders[i] =
            (Sender){.barrier = &barrier, .send = &frame, .channel = CH, .sends = SENDS, .timeout_ms = 5000};
        if (pthread_create(&senders[i].thread, NULL, run_sender, &senders[i]) != 0) blocked("no thread");
    }
    uint32_t refusals = 0;
    for (int i = 0; i < THREADS; ++i) {
        pthread_join(senders[i].thread, NULL);
        refusals += senders[i].refusals;
    }
    HOLDS(refusals == 0, "%u of %d sends were refused", refusals, THREADS * SENDS);
    OK(MI_VDEC_GetChnStat(CH, &stat));
    HOLDS(stat.left_stream_frames <= queued + THREADS * SENDS, "%u sends, %u left", queued + THREADS * SENDS,
          stat.left_stream_frames);
    IN_TIME(stat.left_stream_frames >= THREADS * SENDS / 2,
            "%d sends came behind work for 500 ms, and only %u frames are left", THREADS * SENDS,
            stat.left_stream_frames);
}

POINT(own_channels, "vdec.send.threads-own-channels", "MI_VDEC_SendStream MI_VDEC_GetChnStat",
      "six threads send to a channel each: every send is taken, and all is consumed")
{
    enum { THREADS = 6, SENDS = 60 };
    const TestStream *streams[THREADS] = {&red_h264,  &green_h264,  &blue_h264,
                                          &cyan_h264, &yellow_h264, &magenta_h264};
    Sender senders[THREADS];
    MI_VDEC_Stream frames[THREADS];
    pthread_barrier_t barrier;
    for (uint32_t i = 0; i < THREADS; ++i)
        need_decoder(i, streams[i]);
    pthread_barrier_init(&barrier, NULL, THREADS);
    for (uint32_t i = 0; i < THREADS; ++i) {
        frames[i] = frame_of(streams[i], 0);
        senders[i] = (Sender){
            .barrier = &barrier, .send = &frames[i], .channel = i, .sends = SENDS, .timeout_ms = 5000};
        if (pthread_create(&senders[i].thread, NULL, run_sender, &senders[i]) != 0) blocked("no thread");
    }
    uint32_t refusals = 0;
    for (int i = 0; i < THREADS; ++i) {
        pthread_join(senders[i].thread, NULL);
        refusals += senders[i].refusals;
    }
    HOLDS(refusals == 0, "%u of %d sends were refused", refusals, THREADS * SENDS);
    for (uint32_t i = 0; i < THREADS; ++i)
        HOLDS(wait_consumed(i, 3000), "channel %u does not consume what it was sent: %s", i,
              last_call_text());
}

const Point *const vdec_send_points[] = {
    &point_send_null,     &point_send_empty,   &point_send_too_large,  &point_send_whole_buffer,
    &point_send_absent,   &point_send_stopped, &point_stat_refused,    &point_stat_empty,
    &point_stat_frames,   &point_stat_bytes,   &point_stat_own,        &point_stat_pictures,
    &point_stop_discards, &point_start_keeps,  &point_full_at_once,    &point_full_times_out,
    &point_full_short,    &point_full_waits,   &point_full_for_ever,   &point_full_keeps_out,
    &point_room_at_once,  &point_room_again,   &point_room_after_stop, &point_stop_wakes,
    &point_others_pass,   &point_same_channel, &point_own_channels,    NULL,
};
