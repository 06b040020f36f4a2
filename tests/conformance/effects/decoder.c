/* decoder.c - decoder channels: sends, queues, time-outs, threads. */
#include <pthread.h>
#include <stdatomic.h>
#include <string.h>

#include "effect.h"
#include "mi_disp.h"
#include "vboard.h"

enum { kPatience_ms = 5000, kBuffer_bytes = 4096, kMostSends = 64 };

static const int32_t kFull = MI_ERROR(MI_MODULE_VDEC, MI_REASON_BUFFER_FULL);

/* Channel 0 with a buffer that takes no further send. */
static Bytes start_full_decoder(void)
{
    const Bytes bytes = picture(kGrey, kGrey);
    start_held_decoder(0, kBuffer_bytes);
    for (int i = 0; i < kMostSends; ++i)
        send(0, bytes, 0);
    return bytes;
}

static int is_created_stopped(void)
{
    start_display();
    create_decoder(0, MI_VDEC_MODE_FRAME, kBuffer_bytes);
    return send(0, picture(kGrey, kGrey), 0) == MI_ERROR(MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED);
}

static int stop_discards(void)
{
    start_full_decoder();
    MI_VDEC_ChnStat stat;
    NEED(MI_VDEC_GetChnStat(0, &stat) == MI_SUCCESS && stat.left_stream_bytes > 0);
    NEED(MI_VDEC_StopChn(0) == MI_SUCCESS);
    NEED(MI_VDEC_GetChnStat(0, &stat) == MI_SUCCESS);
    return stat.left_stream_bytes == 0;
}

static int frames_are_counted_as_frames(void)
{
    const Bytes bytes = start_full_decoder();
    MI_VDEC_ChnStat stat;
    NEED(MI_VDEC_GetChnStat(0, &stat) == MI_SUCCESS);
    return stat.left_stream_frames <= stat.left_stream_bytes / bytes.size + 1;
}

static int nothing_is_left_in_the_end(void)
{
    start_display();
    start_decoder(0);
    send_and_settle(0, picture(kGrey, kGrey));
    MI_VDEC_ChnStat stat;
    NEED(MI_VDEC_GetChnStat(0, &stat) == MI_SUCCESS);
    return stat.left_stream_frames == 0;
}

static int64_t time_of_a_refused_send_ms(int32_t timeout_ms)
{
    const Bytes bytes = start_full_decoder();
    const int64_t begin = now_ms();
    send(0, bytes, timeout_ms);
    return now_ms() - begin;
}

static int send_waits_no_longer(void)
{
    return time_of_a_refused_send_ms(100) < 600;
}

static int send_waits_that_long(void)
{
    return time_of_a_refused_send_ms(100) >= 95;
}

static int full_is_refused(void)
{
    return send(0, start_full_decoder(), 0) == kFull;
}

static int bytes_are_copied(void)
{
    start_display();
    open_window(0, 0, 0, 0, 640, 360);
    start_decoder(0);
    NEED(bind(0, 0, 0) == MI_SUCCESS);
    Bytes bytes = picture(kWhite, kWhite);
    NEED(send(0, bytes, 100) == MI_SUCCESS);
    memset(bytes.data, 0, bytes.size);
    wait_ms(50);
    NEED(vboard_decoder_wait_idle(0, kPatience_ms) == 0);
    return shows(100, 100, kWhite);
}

/* ---- senders of two channels at the same time ---- */

enum { kRounds = 20 };

static pthread_barrier_t begin_round;
static pthread_barrier_t end_round;
static const int kLuma[2] = {kWhite, kGrey};

static void *send_rounds(void *number)
{
    const uint32_t channel = (uint32_t)(uintptr_t)number;
    const Bytes bytes = picture(kLuma[channel], kLuma[channel]);
    for (int i = 0; i < kRounds; ++i) {
        pthread_barrier_wait(&begin_round);
        send(channel, bytes, 1000);
        pthread_barrier_wait(&end_round);
    }
    return NULL;
}

static int channels_do_not_mix(void)
{
    start_display();
    pthread_t threads[2];
    pthread_barrier_init(&begin_round, NULL, 3);
    pthread_barrier_init(&end_round, NULL, 3);
    for (uint32_t i = 0; i < 2; ++i) {
        open_window(0, i, (int)i * 640, 0, 640, 360);
        start_decoder(i);
        NEED(bind(i, 0, i) == MI_SUCCESS);
        NEED(pthread_create(&threads[i], NULL, send_rounds, (void *)(uintptr_t)i) == 0);
    }
    int kept = 1;
    for (int i = 0; i < kRounds; ++i) {
        pthread_barrier_wait(&begin_round);
        pthread_barrier_wait(&end_round);
        wait_ms(10);
        for (uint32_t channel = 0; channel < 2; ++channel) {
            NEED(vboard_decoder_wait_idle(channel, kPatience_ms) == 0);
            kept &= shows((int)channel * 640 + 100, 100, kLuma[channel]);
        }
    }
    for (int i = 0; i < 2; ++i)
        pthread_join(threads[i], NULL);
    return kept;
}

static int stream_may_be_cut(void)
{
    start_display();
    open_window(0, 0, 0, 0, 640, 360);
    create_decoder(0, MI_VDEC_MODE_STREAM, 1 << 20);
    NEED(MI_VDEC_StartChn(0) == MI_SUCCESS);
    NEED(bind(0, 0, 0) == MI_SUCCESS);
    const Bytes whole = picture(kWhite, kWhite);
    const uint32_t cut = whole.size / 2;
    const MI_VDEC_Stream first = {.address = whole.data, .length_bytes = cut};
    NEED(MI_VDEC_SendStream(0, &first, 1000) == MI_SUCCESS);
    wait_ms(10);
    send_and_settle(0, (Bytes){whole.data + cut, whole.size - cut});
    return shows(100, 100, kWhite);
}

static void *send_for_long(void *bytes)
{
    send(0, *(const Bytes *)bytes, 1000);
    return NULL;
}

static int query_does_not_wait_for_sender(void)
{
    Bytes bytes = start_full_decoder();
    pthread_t sender;
    NEED(pthread_create(&sender, NULL, send_for_long, &bytes) == 0);
    wait_ms(100);
    MI_VDEC_ChnStat stat;
    const int64_t begin = now_ms();
    NEED(MI_VDEC_GetChnStat(0, &stat) == MI_SUCCESS);
    const int64_t took = now_ms() - begin;
    pthread_join(sender, NULL);
    return took < 400;
}

const Effect decoder_effects[] = {
    {"vdec_created_started", is_created_stopped},
    {"vdec_stop_keeps_queue", stop_discards},
    {"vdec_stat_frames_are_bytes", frames_are_counted_as_frames},
    {"vdec_stat_one_too_many", nothing_is_left_in_the_end},
    {"vdec_send_waits_tenfold", send_waits_no_longer},
    {"vdec_send_never_waits", send_waits_that_long},
    {"vdec_full_is_success", full_is_refused},
    {"vdec_bytes_not_copied", bytes_are_copied},
    {"vdec_shared_staging", channels_do_not_mix},
    {"vdec_stream_mode_as_frames", stream_may_be_cut},
    {"vdec_wait_holds_lock", query_does_not_wait_for_sender},
    {NULL, NULL},
};
