/*
 * vboard_audio.h - the control face of the audio output: where its sound goes, how loud it is, and
 * the samples themselves.
 *
 * Beside vboard.h, and under the same rules: 0 or a count on success, -1 when refused with one line
 * on standard error; any thread; time-outs in milliseconds of real time (-1 = for ever, 0 = not at
 * all). Devices are 0 to 7; the library plays on device 3. Samples are signed 16 bit, mono, at the
 * device's rate, as they leave the board: behind volume and mute.
 *
 * A device plays on the board's clock, as a sound card does on its crystal: at its rate, from the
 * moment the first block arrives, until nothing is queued. What has been played by now is worked out
 * whenever somebody looks, sends or changes the volume; there is no thread behind it, except the one
 * that a sound card calls from.
 */
#ifndef VBOARD_AUDIO_H
#define VBOARD_AUDIO_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** State of an audio output. Counters run since the device was enabled. */
typedef struct vboard_audio_stat {
    uint32_t enabled, channel_enabled; /* 1 = yes                                                     */
    uint32_t decoding;                 /* 1 = blocks are A-law, 0 = 16-bit samples                    */
    uint32_t muted;                    /* 1 = silence is played                                       */
    int32_t volume_db;                 /* 0 at power-on                                               */
    uint32_t rate_hz;                  /* of the device; 0 = no attributes yet                        */
    uint32_t input_rate_hz;            /* of the blocks sent                                          */
    uint32_t queued, capacity;         /* samples waiting to be played, and the most that may         */
    uint64_t blocks;                   /* accepted by MI_AO_SendFrame                                 */
    uint64_t played;                   /* samples                                                     */
    uint64_t clipped;                  /* of these, held at full scale                                */
    uint64_t ran_dry;                  /* times nothing was left to play, the end of a sound included */
} vboard_audio_stat;

#define VBOARD_AUDIO_DEVICES 8 /* numbered from 0 */

/** Read a device's state. 0, or -1. */
int vboard_audio_get_stat(uint32_t device, vboard_audio_stat *stat);

/** The level of silence. */
#define VBOARD_AUDIO_SILENCE_DBFS (-200.0)

/** 0 dBFS is a sample of 32768; a full sine has a peak of 0 and an RMS of -3.01 dBFS. */
typedef struct vboard_audio_level {
    double peak_dbfs; /* of the loudest sample            */
    double rms_dbfs;  /* of the whole window, on average  */
} vboard_audio_level;

/**
 * Level of the last `window_ms` (1 to 10000) of the board's clock; time in which nothing was played
 * counts as silence. 0, or -1 (not enabled, window out of range).
 */
int vboard_audio_get_level(uint32_t device, uint32_t window_ms, vboard_audio_level *level);

/**
 * Copy played samples. They are numbered from 0 since the device was enabled; the last 10 seconds
 * are kept. Pauses between sounds hold no samples.
 *
 * @param device   0 to 7
 * @param first    number of the first sample wanted
 * @param samples  receives up to `count` samples
 * @param count    how many there is room for
 * @return how many were copied, fewer than `count` when no more have been played; -1 (not enabled,
 *         or `first` is no longer kept)
 */
int64_t vboard_audio_read(uint32_t device, uint64_t first, int16_t *samples, size_t count);

/**
 * Wait until all that is queued has been played. The board's clock plays: under a taken clock
 * somebody has to step it. 0, or -1 (time-out, not enabled).
 */
int vboard_audio_wait_played(uint32_t device, int32_t timeout_ms);

/**
 * Write what is played from now on to a WAV file: 16 bit, mono, at the device's rate. It can be read
 * at any time, and holds exactly the samples played, without the pauses between sounds.
 * @return 0, or -1 (not enabled, another sink is open, the file cannot be created)
 */
int vboard_audio_open_wav(uint32_t device, const char *path);

/**
 * Let what is played from now on be heard on the PC's sound card, some 60 ms late. Meant for a clock
 * that runs. 0, or -1 (not enabled, another sink is open, no sound card).
 */
int vboard_audio_open_sound(uint32_t device);

/**
 * Close the WAV file or the sound card; what is still queued goes nowhere. Closing none is accepted,
 * and none is what a device begins with: it plays all the same, at the same pace. 0, or -1.
 */
int vboard_audio_close(uint32_t device);

#ifdef __cplusplus
}
#endif

#endif
