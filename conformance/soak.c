/*
 * soak.c - all kinds of traffic at once, for as long as one likes: six cameras, a user interface that lays
 * out and zooms, snapshots, sound, and the plug. What must never happen is a call that fails, a channel
 * that stops consuming, or a screen that is wrong at the end.
 */
#include <pthread.h>
#include <stdatomic.h>
#include <string.h>

#include "hooks.h"
#include "record.h"
#include "runner.h"
#include "scene.h"

enum { CAMERAS = 6, FAILURE_BYTES = 200 };

static const TestStream *const streams[CAMERAS] = {&red_h264,    &green_h264, &blue_h264,
                                                   &yellow_h264, &cyan_h264,  &magenta_h264};
static const Colour colours[CAMERAS] = {RED, GREEN, BLUE, YELLOW, CYAN, MAGENTA};

static atomic_bool ends;
static pthread_mutex_t failure_lock = PTHREAD_MUTEX_INITIALIZER;
static char failure[FAILURE_BYTES]; /* of the first call that failed */
static atomic_ulong frames, layouts, snapshots, blocks;

static void failed(const char *text)
{
    pthread_mutex_lock(&failure_lock);
    if (failure[0] == '\0') strncpy(failure, text, FAILURE_BYTES - 1);
    pthread_mutex_unlock(&failure_lock);
    atomic_store(&ends, true);
}

static bool good(int32_t result)
{
    if (result != 0) failed(last_call_text());
    return result == 0;
}

static void *run_camera(void *argument)
{
    const uint32_t channel = (uint32_t)(uintptr_t)argument;
    MI_VDEC_ChnStat stat;
    record_successes(false);
    for (uint32_t i = 0; !atomic_load(&ends); ++i) {
        const MI_VDEC_Stream frame = frame_of(streams[channel], i % streams[channel]->frames);
        if (!good(MI_VDEC_GetChnStat(channel, &stat))) break;
        if (!good(MI_VDEC_SendStream(channel, &frame, (int32_t)patient_ms(SEND_MS)))) break;
        atomic_fetch_add(&frames, 1);
        pause_ms(5);
    }
    return NULL;
}

static void pane(uint32_t port, MI_DISP_InputPortAttr *attr, bool single)
{
    const MI_Rect grid = {(uint16_t)(port % 3 * 426), (uint16_t)(port / 3 * 360), 426, 360};
    const MI_Rect corner = {(uint16_t)(port * 200), 0, 200, 200};
    attr->window = single ? corner : grid;
    attr->source_width = STREAM_WIDTH;
    attr->source_height = STREAM_HEIGHT;
}

static void *run_layouts(void *argument)
{
    (void)argument;
    record_successes(false);
    for (uint32_t i = 0; !atomic_load(&ends); ++i) {
        const uint32_t port = i % CAMERAS;
        const MI_Rect part = {(uint16_t)(i % 100), 0, 200, 200}, whole = {0, 0, 0, 0};
        MI_DISP_InputPortAttr attr;
        pane(port, &attr, i / CAMERAS % 2 != 0);
        if (!good(MI_DISP_SetInputPortAttr(0, port, &attr)) ||
            !good(MI_DISP_SetZoomInWindow(0, port, &part)) ||
            !good(MI_DISP_ClearInputPortBuffer(0, port, 1)) || !good(MI_DISP_HideInputPort(0, port)) ||
            !good(MI_DISP_ShowInputPort(0, port)) || !good(MI_DISP_DisableInputPort(0, port)) ||
            !good(MI_DISP_EnableInputPort(0, port)) || !good(MI_DISP_SetZoomInWindow(0, port, &whole)))
            break;
        /* A layout creates the shown channels anew: here one that no camera sends to. */
        const MI_VDEC_ChnAttr decoder = decoder_attr(&quad_h264);
        const MI_SYS_ChnPort source = decoder_end(CAMERAS), sink = display_end(0, CAMERAS);
        if (!good(MI_VDEC_CreateChn(CAMERAS, &decoder)) || !good(MI_VDEC_StartChn(CAMERAS)) ||
            !good(MI_SYS_BindChnPort(&source, &sink, 30, 30)))
            break;
        const MI_VDEC_Stream frame = frame_of(&quad_h264, 0);
        if (!good(MI_VDEC_SendStream(CAMERAS, &frame, 1000)) || !good(MI_VDEC_StopChn(CAMERAS)) ||
            !good(MI_SYS_UnBindChnPort(&source, &sink)) || !good(MI_VDEC_DestroyChn(CAMERAS)))
            break;
        atomic_fetch_add(&layouts, 1);
        pause_ms(3);
    }
    return NULL;
}

static void *run_snapshots(void *argument)
{
    (void)argument;
    record_successes(false);
    while (!atomic_load(&ends)) {
        MI_VENC_Pack pack;
        MI_VENC_Stream stream = {&pack, 1, 0, 0};
        JpegLook look;
        memset(&pack, 0, sizeof pack);
        if (!good(MI_VENC_GetStream(ENCODER, &stream, (int32_t)patient_ms(3000)))) break;
        if (!jpeg_look(pack.address, pack.length_bytes, &look)) failed("a snapshot is no JPEG");
        jpeg_free(&look);
        if (!good(MI_VENC_ReleaseStream(ENCODER, &stream))) break;
        atomic_fetch_add(&snapshots, 1);
        pause_ms(10);
    }
    return NULL;
}

static void *run_sound(void *argument)
{
    static uint8_t silence[320];
    MI_AO_Frame block;
    (void)argument;
    memset(silence, 0xD5, sizeof silence);
    memset(&block, 0, sizeof block);
    block.data[0] = silence;
    block.length_bytes = sizeof silence;
    record_successes(false);
    for (int i = 0; !atomic_load(&ends); ++i) {
        if (!good(MI_AO_SendFrame(3, 0, &block, -1)) || !good(MI_AO_SetMute(3, i % 2)) ||
            !good(MI_AO_SetVolume(3, -(i % 30))))
            break;
        atomic_fetch_add(&blocks, 1);
    }
    return NULL;
}

static void need_sound(void)
{
    const MI_AO_PubAttr pub = {48000, 0, 0, 0, 0, 2048, 1, 0};
    const MI_AO_AdecAttr decoder = {MI_AO_CODEC_G711A, 48000, 0};
    NEED(MI_AO_SetPubAttr(3, &pub));
    NEED(MI_AO_Enable(3));
    NEED(MI_AO_EnableChn(3, 0));
    NEED(MI_AO_SetAdecAttr(3, 0, &decoder));
    NEED(MI_AO_EnableAdec(3, 0));
    NEED(MI_AO_EnableReSmp(3, 0, 8000));
}

static void soak(void)
{
    enum { THREADS = CAMERAS + 3 };
    pthread_t threads[THREADS];
    Spot spots[CAMERAS];
    need_display(0);
    need_sound();
    for (uint32_t i = 0; i < CAMERAS; ++i) {
        MI_DISP_InputPortAttr attr;
        pane(i, &attr, false);
        need_port(0, i, attr.window.x, attr.window.y, attr.window.width, attr.window.height);
        need_playing(0, i, i, streams[i]);
        spots[i] = (Spot){attr.window.x + 200, attr.window.y + 200, colours[i]};
    }
    need_snapshots(0, STREAM_WIDTH, STREAM_HEIGHT);
    for (uintptr_t i = 0; i < CAMERAS; ++i)
        if (pthread_create(&threads[i], NULL, run_camera, (void *)i) != 0) blocked("no thread");
    if (pthread_create(&threads[CAMERAS], NULL, run_layouts, NULL) != 0 ||
        pthread_create(&threads[CAMERAS + 1], NULL, run_snapshots, NULL) != 0 ||
        pthread_create(&threads[CAMERAS + 2], NULL, run_sound, NULL) != 0)
        blocked("no thread");
    const int64_t until_us = now_us() + (int64_t)settings.soak_s * 1000000;
    while (now_us() < until_us && !atomic_load(&ends)) {
        pause_ms(100);
        if (conformance_hooks.plug != NULL) conformance_hooks.plug((int)(now_us() / 300000 % 2));
    }
    atomic_store(&ends, true);
    for (int i = 0; i < THREADS; ++i)
        pthread_join(threads[i], NULL);
    if (conformance_hooks.plug != NULL) conformance_hooks.plug(1);
    note("%lu frames, %lu layouts, %lu snapshots, %lu blocks of sound", atomic_load(&frames),
         atomic_load(&layouts), atomic_load(&snapshots), atomic_load(&blocks));
    HOLDS(failure[0] == '\0', "%s", failure);
    for (uint32_t i = 0; i < CAMERAS; ++i) {
        MI_DISP_InputPortAttr attr;
        pane(i, &attr, false);
        NEED(MI_DISP_SetInputPortAttr(0, i, &attr));
        need_played(i, streams[i], 0, 10);
        HOLDS(wait_consumed(i, 3000), "after the soak channel %u consumes nothing: %s", i, last_call_text());
    }
    if (conformance_hooks.capture != NULL) screen_shows(0, spots, CAMERAS, "six fields of six colours");
}

const Point soak_point = {
    "soak.all", "MI_VDEC_SendStream MI_DISP_SetInputPortAttr MI_VENC_GetStream MI_AO_SendFrame",
    "cameras, layouts, snapshots, sound and the plug at once: no call fails, all goes on", soak, 0};
