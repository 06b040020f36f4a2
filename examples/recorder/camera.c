/* camera.c - see camera.h. */
#include "camera.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "nvrhal.h"

#define LINK_NOT_MEASURED 0 /* ext_send_stream then never resets the decoder for a backlog */

int64_t now_us(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000000 + now.tv_nsec / 1000;
}

void sleep_until_us(int64_t when_us)
{
    const struct timespec when = {.tv_sec = (time_t)(when_us / 1000000), .tv_nsec = when_us % 1000000 * 1000};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &when, NULL);
}

bool camera_open(struct camera *camera, int channel, const char *text)
{
    char copy[512];
    if (snprintf(copy, sizeof copy, "%s", text) >= (int)sizeof copy) return false;
    *camera = (struct camera){.channel = channel, .width = 640, .height = 360};
    char *rest = NULL;
    const char *path = strtok_r(copy, ",", &rest);
    if (!path || !stream_file_open(&camera->video, path)) return false;
    for (const char *more; (more = strtok_r(NULL, ",", &rest)) != NULL;) {
        unsigned width, height;
        if (sscanf(more, "%4ux%4u", &width, &height) == 2) {
            camera->width = width;
            camera->height = height;
        } else {
            camera->sound = read_whole_file(more, &camera->sound_size);
            if (!camera->sound) return false;
        }
    }
    return true;
}

/* [send] */
static int32_t send_to_decoder(struct camera *camera, const struct stream_frame *frame)
{
    const FrameInfo info = {.frame_type = frame->key ? 1 : 0,
                            .media = FRAME_MEDIA_VIDEO,
                            .length = frame->length,
                            .width = camera->width,
                            .height = camera->height,
                            .data = frame->bytes,
                            .channel = (uint32_t)camera->channel,
                            .pts = (uint64_t)now_us()};
    return ext_send_stream(&info, camera->video.codec, LINK_NOT_MEASURED, 0);
}
/* [/send] */

/* [store] */
static void store(struct camera *camera, const struct stream_frame *frame, uint32_t number)
{
    /* Of pts the pool keeps 32 bits. A frame number in it lets the recording find gaps. */
    const FrameInfo info = {.frame_type = frame->key ? 1 : 0,
                            .length = frame->length,
                            .width = camera->width,
                            .height = camera->height,
                            .data = frame->bytes,
                            .pts = number};
    atomic_fetch_add(&camera->frames_begun, 1);
    atomic_fetch_add(&camera->bytes_begun, frame->length);
    ext_set_primary_video_stream((uint32_t)camera->channel, &info);
}
/* [/store] */

static void store_sound(struct camera *camera, uint32_t number)
{
    if (!camera->sound) return;
    uint8_t block[NVRHAL_SOUND_HEADER_BYTES + NVRHAL_SOUND_UNIT_BYTES] = {0};
    const size_t blocks = camera->sound_size / NVRHAL_SOUND_UNIT_BYTES;
    if (blocks == 0) return;
    memcpy(block + NVRHAL_SOUND_HEADER_BYTES, camera->sound + number % blocks * NVRHAL_SOUND_UNIT_BYTES,
           NVRHAL_SOUND_UNIT_BYTES);
    const FrameInfo info = {.length = sizeof block, .data = block, .pts = number};
    ext_set_audio_stream((uint32_t)camera->channel, &info);
}

/* One frame every 40 ms; a file that ends begins again, as a camera never ends. */
static void *run(void *argument)
{
    struct camera *camera = argument;
    struct stream_frame frame;
    int64_t due_us = now_us();
    stream_file_rewind(&camera->video);
    for (uint32_t number = 0; !atomic_load(&camera->stop); ++number, due_us += FRAME_PERIOD_US) {
        if (!stream_file_next(&camera->video, &frame)) {
            stream_file_rewind(&camera->video);
            if (!stream_file_next(&camera->video, &frame)) break;
        }
        sleep_until_us(due_us);
        store(camera, &frame, number);
        store_sound(camera, number);
        /* -1 is no fault of the camera while playback, or another camera's zoom, has the screen. */
        send_to_decoder(camera, &frame);
        atomic_store(&camera->sent_at_us, now_us());
    }
    return NULL;
}

bool camera_prime(struct camera *camera)
{
    struct stream_frame frame;
    return stream_file_next(&camera->video, &frame) && send_to_decoder(camera, &frame) == 0;
}

bool camera_start(struct camera *camera)
{
    camera->running = pthread_create(&camera->thread, NULL, run, camera) == 0;
    return camera->running;
}

void camera_stop(struct camera *camera)
{
    atomic_store(&camera->stop, true);
    if (camera->running) pthread_join(camera->thread, NULL);
    camera->running = false;
    stream_file_close(&camera->video);
    free(camera->sound);
    camera->sound = NULL;
}
