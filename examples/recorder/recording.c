/*
 * recording.c - see recording.h.
 *
 * A pool wakes nobody: the thread looks every 10 ms. What ext_get_primary_video_stream gives lies in
 * the pool's ring and is overwritten when the camera has gone round, so that it is copied at once and
 * looked at afterwards: had the camera begun to store more than the ring's safe distance meanwhile,
 * the copy may be torn, and is thrown away.
 */
#include "recording.h"

#include <string.h>

#include "nvrhal.h"

#define LOOK_PERIOD_US 10000
#define SAFE_FRAMES    12 /* a pool keeps this many frames between its writer and what readers are given */

/* [torn] */
/* NVRHAL_MAIN_FRAME_BYTES is the ring's safe distance, too. Bytes count twice, as the ring's end may have
   been left empty for as much as was written. Adding 0 reads a count after the copy was made, not before. */
static bool was_overwritten(struct camera *camera, uint32_t frames_before, uint32_t bytes_before)
{
    const uint32_t frames = atomic_fetch_add(&camera->frames_begun, 0) - frames_before;
    const uint32_t bytes = atomic_fetch_add(&camera->bytes_begun, 0) - bytes_before;
    return frames >= SAFE_FRAMES || bytes > NVRHAL_MAIN_FRAME_BYTES / 2;
}
/* [/torn] */

/* Write a frame, or leave it out when frames are missing before it and it is no key frame. */
static void write_frame(struct recording *recording, const FrameInfo *info, const uint8_t *bytes, bool whole)
{
    const uint32_t number = (uint32_t)info->pts;
    const bool missing = !whole || (recording->in_step && number != recording->next_number);
    if (missing) {
        ++recording->lost;
        recording->in_step = false;
    }
    recording->next_number = number + 1;
    if (!whole || (!recording->in_step && info->frame_type != 1)) return;
    recording->in_step = true;
    fwrite(bytes, 1, info->length, recording->video);
    fflush(recording->video); /* so that playback finds it */
}

/* [fetch] */
static bool take_frame(struct recording *recording)
{
    static _Thread_local uint8_t copy[NVRHAL_MAIN_FRAME_BYTES];
    struct camera *camera = recording->camera;
    const uint32_t frames_before = atomic_load(&camera->frames_begun);
    const uint32_t bytes_before = atomic_load(&camera->bytes_begun);
    FrameInfo info = {0};
    if (ext_get_primary_video_stream((uint32_t)camera->channel, &info) != 0) return false;
    memcpy(copy, info.data, info.length);
    write_frame(recording, &info, copy, !was_overwritten(camera, frames_before, bytes_before));
    return true;
}
/* [/fetch] */

/* The sound's blocks carry no number: the ring holds about a second of them, which is patience enough. */
static bool take_sound(struct recording *recording)
{
    FrameInfo info = {0};
    if (ext_get_audio_stream((uint32_t)recording->camera->channel, &info) != 0) return false;
    if (info.length > NVRHAL_SOUND_HEADER_BYTES && recording->sound) {
        const uint8_t *samples = (const uint8_t *)info.data + NVRHAL_SOUND_HEADER_BYTES;
        fwrite(samples, 1, info.length - NVRHAL_SOUND_HEADER_BYTES, recording->sound);
        fflush(recording->sound);
    }
    return true;
}

static void *run(void *argument)
{
    struct recording *recording = argument;
    while (!atomic_load(&recording->stop)) {
        const bool video = take_frame(recording);
        const bool sound = take_sound(recording);
        if (!video && !sound) sleep_until_us(now_us() + LOOK_PERIOD_US);
    }
    return NULL;
}

bool recording_start(struct recording *recording, struct camera *camera, const char *directory)
{
    *recording = (struct recording){.camera = camera};
    snprintf(recording->video_path, sizeof recording->video_path, "%s/channel%d.%s", directory,
             camera->channel, camera->video.codec == NVRHAL_CODEC_H265 ? "h265" : "h264");
    snprintf(recording->sound_path, sizeof recording->sound_path, "%s/channel%d.alaw", directory,
             camera->channel);
    recording->video = fopen(recording->video_path, "wb");
    if (camera->sound) recording->sound = fopen(recording->sound_path, "wb");
    if (!recording->video) return false;
    recording->running = pthread_create(&recording->thread, NULL, run, recording) == 0;
    return recording->running;
}

void recording_stop(struct recording *recording)
{
    atomic_store(&recording->stop, true);
    if (recording->running) pthread_join(recording->thread, NULL);
    recording->running = false;
    if (recording->video) fclose(recording->video);
    if (recording->sound) fclose(recording->sound);
    recording->video = recording->sound = NULL;
}
