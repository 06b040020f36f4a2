/*
 * points_common.c - what holds for every call of the media interface: a refused call writes nothing into the
 * caller's records, and calls from several threads do not get into each other's way.
 */
#define _GNU_SOURCE /* clocks, barriers and mappings, also with -std=c11 */
#include <pthread.h>
#include <string.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { CH = 1, ABSENT = 9, NO_DEVICE = 7, FILLER = 0xEE, THREADS = 4, ROUNDS = 40 };

/* The record is as `memset(record, FILLER, size)` left it. */
static void untouched(const void *record, size_t size)
{
    const uint8_t *bytes = record;
    for (size_t i = 0; i < size; ++i)
        HOLDS(bytes[i] == FILLER, "%s: byte %zu of the record was written, as 0x%02x", last_call_text(), i,
              bytes[i]);
}

#define REFUSED_UNTOUCHED(record, call)                                                                      \
    do {                                                                                                     \
        memset(&(record), FILLER, sizeof(record));                                                           \
        HOLDS((call) < 0, "%s, expected a refusal", last_call_text());                                       \
        untouched(&(record), sizeof(record));                                                                \
    } while (0)

POINT(vdec_untouched, "vdec.refusals.write-nothing",
      "MI_VDEC_GetChnAttr MI_VDEC_GetChnStat MI_VDEC_GetOutputPortAttr",
      "a refused call writes nothing into the caller's record")
{
    MI_VDEC_ChnAttr attr;
    MI_VDEC_ChnStat stat;
    MI_VDEC_OutputPortAttr size;
    NEED(MI_SYS_Init());
    REFUSED_UNTOUCHED(attr, MI_VDEC_GetChnAttr(ABSENT, &attr));
    REFUSED_UNTOUCHED(stat, MI_VDEC_GetChnStat(ABSENT, &stat));
    REFUSED_UNTOUCHED(size, MI_VDEC_GetOutputPortAttr(ABSENT, &size));
}

POINT(disp_untouched, "disp.refusals.write-nothing",
      "MI_DISP_GetPubAttr MI_DISP_GetVideoLayerAttr MI_DISP_GetInputPortAttr",
      "a refused call writes nothing into the caller's record")
{
    MI_DISP_PubAttr pub;
    MI_DISP_VideoLayerAttr layer;
    MI_DISP_InputPortAttr port;
    NEED(MI_SYS_Init());
    REFUSED_UNTOUCHED(pub, MI_DISP_GetPubAttr(NO_DEVICE, &pub));
    REFUSED_UNTOUCHED(layer, MI_DISP_GetVideoLayerAttr(99, &layer));
    REFUSED_UNTOUCHED(port, MI_DISP_GetInputPortAttr(0, 99, &port));
}

POINT(hdmi_untouched, "hdmi.refusals.write-nothing", "MI_HDMI_GetAttr MI_HDMI_GetSinkInfo",
      "a refused call writes nothing into the caller's record")
{
    MI_HDMI_Attr attr;
    MI_HDMI_SinkInfo info;
    NEED(MI_SYS_Init());
    REFUSED_UNTOUCHED(attr, MI_HDMI_GetAttr(0, &attr));
    REFUSED_UNTOUCHED(info, MI_HDMI_GetSinkInfo(0, &info));
}

POINT(snap_untouched, "venc.refusals.write-nothing",
      "MI_DIVP_GetOutputPortAttr MI_VENC_GetJpegParam MI_VENC_GetChnDevid MI_VENC_GetStream",
      "a refused call, and one that timed out, writes nothing into the caller's records")
{
    MI_DIVP_OutputPortAttr output;
    MI_VENC_JpegParam param;
    uint32_t device;
    MI_VENC_Pack pack;
    MI_VENC_Stream stream = {&pack, 1, 77, 88};
    const MI_VENC_ChnAttr attr = encoder_attr(STREAM_WIDTH, STREAM_HEIGHT);
    NEED(MI_SYS_Init());
    REFUSED_UNTOUCHED(output, MI_DIVP_GetOutputPortAttr(SCALER, 0, &output));
    REFUSED_UNTOUCHED(param, MI_VENC_GetJpegParam(ENCODER, &param));
    REFUSED_UNTOUCHED(device, MI_VENC_GetChnDevid(ENCODER, &device));
    REFUSED_UNTOUCHED(pack, MI_VENC_GetStream(ENCODER, &stream, 0));
    NEED(MI_VENC_CreateChn(ENCODER, &attr));
    NEED(MI_VENC_StartRecvPic(ENCODER));
    REFUSED_UNTOUCHED(pack, MI_VENC_GetStream(ENCODER, &stream, 0));
    HOLDS(stream.packs == &pack && stream.pack_count == 1 && stream.sequence == 77 && stream.handle == 88,
          "%s has written into the stream's record", last_call_text());
}

/* ---------------------------------------------------------------------------------------- threads --- */

typedef struct Worker {
    pthread_t thread;
    pthread_barrier_t *barrier;
    uint32_t number;
    char failure[LINE_BYTES]; /* of the first call that was wrong */
} Worker;

static void fail(Worker *worker, const char *what)
{
    if (worker->failure[0] == '\0')
        strncpy(worker->failure, what != NULL ? what : last_call_text(), sizeof worker->failure - 1);
}

static void run_workers(void *(*run)(void *))
{
    static Worker workers[THREADS];
    pthread_barrier_t barrier;
    memset(workers, 0, sizeof workers);
    pthread_barrier_init(&barrier, NULL, THREADS);
    for (uint32_t i = 0; i < THREADS; ++i) {
        workers[i].barrier = &barrier;
        workers[i].number = i;
        if (pthread_create(&workers[i].thread, NULL, run, &workers[i]) != 0) blocked("no thread");
    }
    for (int i = 0; i < THREADS; ++i)
        pthread_join(workers[i].thread, NULL);
    for (int i = 0; i < THREADS; ++i)
        HOLDS(workers[i].failure[0] == '\0', "one of %d threads: %s", THREADS, workers[i].failure);
}

static void *use_ports(void *argument)
{
    Worker *worker = argument;
    for (uint32_t i = 0; i < ROUNDS; ++i) {
        const uint16_t at = (uint16_t)(64 * worker->number + 2 * (i % 16));
        const MI_DISP_InputPortAttr set = {
            {at, at, (uint16_t)(100 + 2 * i), 80}, (uint16_t)(300 + worker->number), 200};
        MI_DISP_InputPortAttr read;
        memset(&read, FILLER, sizeof read);
        pthread_barrier_wait(worker->barrier);
        if (MI_DISP_SetInputPortAttr(0, worker->number, &set) != 0) fail(worker, NULL);
        if (MI_DISP_EnableInputPort(0, worker->number) != 0) fail(worker, NULL);
        if (MI_DISP_GetInputPortAttr(0, worker->number, &read) != 0) fail(worker, NULL);
        if (memcmp(&read, &set, sizeof read) != 0) fail(worker, "its port has the attributes of another one");
    }
    return NULL;
}

POINT(port_threads, "disp.port-attr.threads",
      "MI_DISP_SetInputPortAttr MI_DISP_GetInputPortAttr MI_DISP_EnableInputPort",
      "four threads set and read a port each: nobody's attributes get to another port")
{
    need_display(0);
    run_workers(use_ports);
}

static void *use_channels(void *argument)
{
    Worker *worker = argument;
    for (uint32_t i = 0; i < ROUNDS / 2; ++i) {
        MI_VDEC_ChnAttr attr = decoder_attr(&quad_h264), read = {0};
        attr.max_width = 640 + 2 * worker->number;
        attr.stream_buffer_bytes = 100000 + i;
        const MI_VDEC_OutputPortAttr size = {(uint16_t)(100 + 2 * worker->number), (uint16_t)(50 + i)};
        MI_VDEC_OutputPortAttr size_read = {0, 0};
        pthread_barrier_wait(worker->barrier);
        if (MI_VDEC_CreateChn(worker->number, &attr) != 0) fail(worker, NULL);
        if (MI_VDEC_SetOutputPortAttr(worker->number, &size) != 0) fail(worker, NULL);
        if (MI_VDEC_StartChn(worker->number) != 0) fail(worker, NULL);
        if (MI_VDEC_GetChnAttr(worker->number, &read) != 0) fail(worker, NULL);
        if (memcmp(&read, &attr, sizeof read) != 0)
            fail(worker, "its channel has the attributes of another one");
        if (MI_VDEC_GetOutputPortAttr(worker->number, &size_read) != 0) fail(worker, NULL);
        if (memcmp(&size_read, &size, sizeof size) != 0)
            fail(worker, "its channel has the output size of another one");
        if (MI_VDEC_StopChn(worker->number) != 0) fail(worker, NULL);
        if (MI_VDEC_DestroyChn(worker->number) != 0) fail(worker, NULL);
    }
    return NULL;
}

POINT(channel_threads, "vdec.create.threads",
      "MI_VDEC_CreateChn MI_VDEC_GetChnAttr MI_VDEC_StartChn MI_VDEC_StopChn MI_VDEC_DestroyChn "
      "MI_VDEC_SetOutputPortAttr MI_VDEC_GetOutputPortAttr",
      "four threads create, read, start, stop and destroy a channel each, all at the same time")
{
    NEED(MI_SYS_Init());
    run_workers(use_channels);
}

static void *use_bindings(void *argument)
{
    Worker *worker = argument;
    const MI_SYS_ChnPort source = decoder_end(worker->number), sink = display_end(0, worker->number);
    for (uint32_t i = 0; i < ROUNDS; ++i) {
        pthread_barrier_wait(worker->barrier);
        if (MI_SYS_BindChnPort(&source, &sink, 30, 30) != 0) fail(worker, NULL);
        if (MI_SYS_BindChnPort(&source, &sink, 30, 30) != MI_ERROR(MI_MODULE_SYS, MI_REASON_EXISTS))
            fail(worker, NULL);
        if (MI_SYS_UnBindChnPort(&source, &sink) != 0) fail(worker, NULL);
        if (MI_SYS_UnBindChnPort(&source, &sink) != MI_ERROR(MI_MODULE_SYS, MI_REASON_ABSENT))
            fail(worker, NULL);
    }
    return NULL;
}

POINT(bind_threads, "sys.bind.threads", "MI_SYS_BindChnPort MI_SYS_UnBindChnPort",
      "four threads bind and unbind a channel each, all at the same time")
{
    for (uint32_t i = 0; i < THREADS; ++i)
        need_decoder(i, &quad_h264);
    run_workers(use_bindings);
}

static void *stop_and_start(void *argument)
{
    Worker *worker = argument;
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    for (uint32_t i = 0; i < ROUNDS; ++i) {
        pthread_barrier_wait(worker->barrier);
        if (worker->number == 0) {
            if (MI_VDEC_StopChn(CH) != 0) fail(worker, NULL);
            if (MI_VDEC_StartChn(CH) != 0) fail(worker, NULL);
        } else {
            const int32_t result = MI_VDEC_SendStream(CH, &frame, 2000);
            if (result != 0 && result != MI_ERROR(MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED))
                fail(worker, NULL);
        }
    }
    return NULL;
}

POINT(reset_threads, "vdec.stop.threads", "MI_VDEC_StopChn MI_VDEC_StartChn MI_VDEC_SendStream",
      "a channel is stopped and started while three threads send to it, and works on afterwards")
{
    const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
    need_decoder(CH, &quad_h264);
    run_workers(stop_and_start);
    OK(MI_VDEC_SendStream(CH, &frame, SEND_MS));
    HOLDS(wait_consumed(CH, 2000), "it consumes nothing any more: %s", last_call_text());
}

const Point *const common_points[] = {
    &point_vdec_untouched, &point_disp_untouched, &point_hdmi_untouched,
    &point_snap_untouched, &point_port_threads,   &point_channel_threads,
    &point_bind_threads,   &point_reset_threads,  NULL,
};
