/*
 * camera.h - one camera: a thread that sends its frames to the channel's decoder, and stores them and
 * its sound in the frame pools for whoever records, plays sound or serves the network.
 */
#ifndef CAMERA_H
#define CAMERA_H

#include <pthread.h>
#include <stdatomic.h>

#include "stream_file.h"

#define FRAMES_PER_SECOND 25
#define FRAME_PERIOD_US   (1000000 / FRAMES_PER_SECOND) /* of a block of sound, too: 320 bytes, 40 ms */

struct camera {
    int channel;
    uint32_t width, height; /* pixels, as the camera's own settings or its session description say */
    struct stream_file video;
    uint8_t *sound; /* A-law samples, or null */
    size_t sound_size;

    /* Written by the camera's thread before it stores a frame, read by the channel's recording. */
    _Atomic uint32_t frames_begun;
    _Atomic uint32_t bytes_begun;

    _Atomic int64_t sent_at_us; /* of the last frame, monotonic clock; 0 = none yet */
    atomic_bool stop;
    bool running;
    pthread_t thread;
};

/* `text` is FILE, FILE,WIDTHxHEIGHT or either with ,SOUND.alaw behind it. */
bool camera_open(struct camera *camera, int channel, const char *text);

/* Send the first frame, which gives the channel a decoder of the camera's codec: before the layout. */
bool camera_prime(struct camera *camera);

bool camera_start(struct camera *camera);
void camera_stop(struct camera *camera);

/* The monotonic clock, microseconds, and sleeping until it shows a time. */
int64_t now_us(void);
void sleep_until_us(int64_t when_us);

#endif
