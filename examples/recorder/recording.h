/*
 * recording.h - one camera's recording: a thread that takes the channel's frames and sound out of the
 * frame pools and writes them to files.
 */
#ifndef RECORDING_H
#define RECORDING_H

#include <stdio.h>

#include "camera.h"

struct recording {
    struct camera *camera;
    char video_path[512], sound_path[512];
    FILE *video, *sound;
    uint32_t next_number; /* of the frame that should come next */
    bool in_step;         /* false: wait for a key frame */
    uint64_t lost;        /* times that frames were missing */
    atomic_bool stop;
    bool running;
    pthread_t thread;
};

/* Files channelN.h264 or .h265 and channelN.alaw in a directory, written anew. */
bool recording_start(struct recording *recording, struct camera *camera, const char *directory);
void recording_stop(struct recording *recording);

#endif
