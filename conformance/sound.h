/* sound.h - the audio output as the library sets it up, and a tone to send through it. */
#ifndef CONFORMANCE_SOUND_H
#define CONFORMANCE_SOUND_H

#include "scene.h"

enum {
    DEV = 3, /* the one that the library plays on */
    NO_DEVICE = 99,
    CHN = 0,
    NO_CHANNEL = 77,
    RATE = 48000,
    INPUT_RATE = 8000,
    BLOCK = 320, /* bytes of A-law: 40 ms */
    BLOCK_MS = 40,
};

static const MI_AO_PubAttr usual_pub = {RATE, 0, 0, 0, 0, 2048, 1, 0};
static const MI_AO_AdecAttr usual_adec = {MI_AO_CODEC_G711A, RATE, 0};

/* A block of a 500 Hz tone at half of full scale: -9 dB RMS. It joins its neighbours without a gap. */
const uint8_t *tone(void);
MI_AO_Frame block_of(const uint8_t *bytes, uint32_t length);

/* The device alone; the channel too, as the library sets it up. */
void need_device(void);
void need_audio(void);

#endif
