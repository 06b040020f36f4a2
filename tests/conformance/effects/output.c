/* output.c - the HDMI transmitter and the audio output. */
#include <pthread.h>
#include <stdatomic.h>
#include <string.h>

#include "board_io.h"
#include "effect.h"
#include "mi_ao.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "vboard.h"

enum { kPatience_ms = 5000, kTiming1080p60 = 9 };

static atomic_int events;
static atomic_int last_event;
static _Atomic(pthread_t) raised_on;

static int32_t note(uint32_t device, uint32_t event, void *event_param, void *user_param)
{
    (void)device, (void)event_param, (void)user_param;
    atomic_store(&raised_on, pthread_self());
    atomic_store(&last_event, (int)event);
    atomic_fetch_add(&events, 1);
    return 0;
}

static void start_hdmi(void)
{
    const MI_HDMI_InitParam param = {note, NULL};
    NEED(MI_SYS_Init() == MI_SUCCESS);
    NEED(MI_HDMI_Init(&param) == MI_SUCCESS);
}

/* Pull the plug, and give the event time to come. */
static void unplug(void)
{
    NEED(vboard_monitor_unplug() == 0);
    NEED(vboard_monitor_wait_events(kPatience_ms) == 0);
    board_sleep_us(1000);
}

static int callback_has_its_own_thread(void)
{
    start_hdmi();
    unplug();
    NEED(atomic_load(&events) == 1);
    return !pthread_equal(atomic_load(&raised_on), pthread_self());
}

static int pulling_is_an_unplugged_event(void)
{
    start_hdmi();
    unplug();
    return atomic_load(&last_event) == MI_HDMI_EVENT_UNPLUGGED;
}

static int no_event_comes_after_the_end(void)
{
    start_hdmi();
    NEED(MI_HDMI_DeInit() == MI_SUCCESS);
    unplug();
    return atomic_load(&events) == 0;
}

static int attributes_read_back(void)
{
    const MI_HDMI_Attr set = {1, 1, kTiming1080p60, 0, 0, 0, 1, 0, 3, 16, 0, 1, 1, 1};
    MI_HDMI_Attr got;
    start_hdmi();
    NEED(MI_HDMI_Open(0) == MI_SUCCESS);
    NEED(MI_HDMI_SetAttr(0, &set) == MI_SUCCESS);
    NEED(MI_HDMI_GetAttr(0, &got) == MI_SUCCESS);
    return memcmp(&got, &set, sizeof got) == 0;
}

/* ---- audio: A-law of 8 kHz in blocks of 40 ms, as the library sends it ---- */

enum { kAudioDevice = 3, kBlock_bytes = 320, kInput_hz = 8000, kOutput_hz = 48000 };

static void start_audio(void)
{
    const MI_AO_PubAttr attr = {.sample_rate = kOutput_hz, .samples_per_frame = 2048, .channels = 1};
    const MI_AO_AdecAttr decoder = {MI_AO_CODEC_G711A, kOutput_hz, 0};
    NEED(MI_SYS_Init() == MI_SUCCESS);
    NEED(MI_AO_SetPubAttr(kAudioDevice, &attr) == MI_SUCCESS);
    NEED(MI_AO_Enable(kAudioDevice) == MI_SUCCESS);
    NEED(MI_AO_EnableChn(kAudioDevice, 0) == MI_SUCCESS);
    NEED(MI_AO_SetAdecAttr(kAudioDevice, 0, &decoder) == MI_SUCCESS);
    NEED(MI_AO_EnableAdec(kAudioDevice, 0) == MI_SUCCESS);
    NEED(MI_AO_EnableReSmp(kAudioDevice, 0, kInput_hz) == MI_SUCCESS);
}

static int32_t send_block(int32_t timeout_ms)
{
    static const uint8_t silence[kBlock_bytes];
    const MI_AO_Frame frame = {.data = {silence}, .length_bytes = kBlock_bytes};
    return MI_AO_SendFrame(kAudioDevice, 0, &frame, timeout_ms);
}

static int full_queue_refuses(void)
{
    start_audio();
    for (int i = 0; i < 100; ++i)
        if (send_block(0) != MI_SUCCESS) return 1;
    return 0;
}

static int sound_plays_at_its_rate(void)
{
    start_audio();
    const int64_t begin = now_ms();
    for (int i = 0; i < 16; ++i) /* 640 ms of sound into a queue of 256 ms */
        NEED(send_block(-1) == MI_SUCCESS);
    return now_ms() - begin >= 300;
}

static int muted_device_takes_blocks(void)
{
    start_audio();
    NEED(MI_AO_SetMute(kAudioDevice, 1) == MI_SUCCESS);
    return send_block(100) == MI_SUCCESS;
}

static int volume_may_be_negative(void)
{
    start_audio();
    return MI_AO_SetVolume(kAudioDevice, -10) == MI_SUCCESS;
}

const Effect output_effects[] = {
    {"hdmi_callback_on_caller", callback_has_its_own_thread},
    {"hdmi_events_swapped", pulling_is_an_unplugged_event},
    {"hdmi_event_after_deinit", no_event_comes_after_the_end},
    {"hdmi_audio_attr_lost", attributes_read_back},
    {"ao_send_never_waits", full_queue_refuses},
    {"ao_no_resampler", sound_plays_at_its_rate},
    {"ao_muted_takes_nothing", muted_device_takes_blocks},
    {"ao_negative_volume_refused", volume_may_be_negative},
    {NULL, NULL},
};
