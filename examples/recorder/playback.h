/*
 * playback.h - a recording on the screen instead of the cameras. The UI thread starts and ends it; in
 * between a thread of its own delivers the frames.
 */
#ifndef PLAYBACK_H
#define PLAYBACK_H

#include <stdbool.h>

#include "camera.h"

/* Play a recording on the whole screen, decoded by channel 0. False: the cameras stay. */
bool playback_begin(const char *video_path, const char *sound_path, const struct camera *first_camera);

bool playback_is_on(void);
bool playback_has_ended(void);

void playback_pause(bool paused);
bool playback_is_paused(void);

/* Leave playback. The caller lays the cameras out next. */
void playback_end(void);

#endif
