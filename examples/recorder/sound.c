/*
 * sound.c - see sound.h.
 *
 * ext_send_stream waits for room in the audio output, which is why sound has a thread of its own: a
 * camera's thread would hold its pictures up. The thread reads the audio pool with a position of its
 * own (kx_stream_*), so that the recording, which reads through ext_get_audio_stream, misses nothing.
 */
#include "sound.h"

#include <pthread.h>
#include <stdatomic.h>
#include <string.h>

#include "camera.h"
#include "nvrhal.h"

static atomic_int heard;
static atomic_bool paused, stopped;
static bool running;
static pthread_t thread;

/* [follow] */
static void play_next(int channel, StreamReader *reader)
{
    const int32_t length = kx_stream_getOneFrame(channel, 0, reader, STREAM_POOL_AUDIO);
    if (length <= 0) {
        sleep_until_us(now_us() + FRAME_PERIOD_US / 4);
        return;
    }
    uint8_t block[NVRHAL_SOUND_HEADER_BYTES + NVRHAL_SOUND_UNIT_BYTES];
    if ((size_t)length > sizeof block) return;
    memcpy(block, reader->p_buf_data + reader->data_start, (size_t)length);
    /* The channel counts only while one is zoomed: the others' sound is refused then. */
    const FrameInfo info = {
        .media = FRAME_MEDIA_AUDIO, .length = (uint32_t)length, .data = block, .channel = (uint32_t)channel};
    ext_send_stream(&info, 0, 0, 0);
}
/* [/follow] */

static void *run(void *ignored)
{
    (void)ignored;
    StreamReader reader = {0};
    int channel = -1;
    while (!atomic_load(&stopped)) {
        const int wanted = atomic_load(&heard);
        if (atomic_load(&paused) || wanted < 0) {
            channel = -1; /* begin at the newest block afterwards, not where it was left */
            sleep_until_us(now_us() + FRAME_PERIOD_US);
        } else if (wanted != channel) {
            channel = kx_stream_getLastPos(wanted, &reader, STREAM_POOL_AUDIO) == 0 ? wanted : -1;
        } else {
            play_next(channel, &reader);
        }
    }
    return NULL;
}

bool sound_start(int channel)
{
    atomic_store(&heard, channel);
    ext_set_audio_live_channel(1, channel); /* unmutes; which camera is heard is what is sent */
    running = pthread_create(&thread, NULL, run, NULL) == 0;
    return running;
}

void sound_stop(void)
{
    atomic_store(&stopped, true);
    if (running) pthread_join(thread, NULL);
    running = false;
}

void sound_listen_to(int channel)
{
    atomic_store(&heard, channel);
}

void sound_pause(bool pause)
{
    atomic_store(&paused, pause);
}

void sound_set_volume(int percent)
{
    ext_set_audio_output_volume((uint32_t)percent);
}
