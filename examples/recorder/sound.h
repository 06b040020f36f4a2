/* sound.h - one camera's live sound on the loudspeaker: a thread that follows the audio pool. */
#ifndef SOUND_H
#define SOUND_H

#include <stdbool.h>

bool sound_start(int channel);
void sound_stop(void);

/* Another camera. */
void sound_listen_to(int channel);

/* Recordings bring their own sound. */
void sound_pause(bool paused);

/* 0 to 100. UI thread. */
void sound_set_volume(int percent);

#endif
