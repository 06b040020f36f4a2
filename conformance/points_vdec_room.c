/* points_vdec_room.c - sending to a decoder channel that has no room: time-outs, and threads. */
#define _GNU_SOURCE /* clocks, barriers and mappings, also with -std=c11 */
#include <pthread.h>
#include <stdlib.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, FULL_MS = 200, BUSY_MS = 700, TRIES = 3 };

static MI_VDEC_Stream small_frame(void)
{
    return frame_of(&large_h264, 1);
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

const Point *const vdec_room_points[] = {
    &point_full_at_once,    &point_full_times_out,
    &point_full_short,      &point_full_waits,
    &point_full_for_ever,   &point_full_keeps_out,
    &point_room_at_once,    &point_room_again,
    &point_room_after_stop, &point_stop_wakes,
    &point_others_pass,     &point_same_channel,
    &point_own_channels,    NULL,
};
