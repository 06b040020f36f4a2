/*
 * analog.h - decoder chips of the analog camera inputs, and motion detection.
 */
#ifndef NVRHAL_ANALOG_H
#define NVRHAL_ANALOG_H

#include <stdint.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * The analog camera inputs' decoder chips. Four inputs belong to a chip. Every call opens the
 * driver's node, issues its request and closes the node; the driver serialises. Unless said
 * otherwise: 0, or -1 = no driver, refused, or a null record. Thread: any.
 */

struct AdVideoLoss;
struct AdColorAdjust;
struct AdMotionArea;
struct AdMotionSensitivity;
struct AdMotionQuery;

/** Set every chip up: 3 for a channel with a 960 x 576 main stream, 1 otherwise, and the norm. */
NVRHAL_API int32_t Init_AD(uint32_t norm_flag);

NVRHAL_API int32_t ad_set_norm(uint32_t norm);
NVRHAL_API int32_t ad_get_norm(uint8_t *norm);
NVRHAL_API int32_t ad_work_mode(uint32_t mode);
NVRHAL_API int32_t ad_get_loss(struct AdVideoLoss *loss);
NVRHAL_API int32_t ad_set_adjust(uint32_t first, uint32_t second, uint32_t third);
NVRHAL_API int32_t ad_get_adjust(struct AdColorAdjust *adjust);
/** @param rate  8000, 16000, 32000, 44100 or 48000 samples a second; any other is refused */
NVRHAL_API int32_t ad_set_sample_rate(uint32_t rate);
NVRHAL_API int32_t ad_set_audio_playback(uint32_t selection);
NVRHAL_API int32_t ad_set_audio_volume(uint32_t volume);
NVRHAL_API int32_t ad_set_audio_format(uint32_t format);
/** @param mode  2 sends format 1, any other 0 */
NVRHAL_API int32_t ad_audio_work_mode(uint32_t mode);
/** @param code  only 0 is accepted */
NVRHAL_API int32_t ad_set_audio_bitwidth(uint32_t code);
NVRHAL_API int32_t ad_set_mute(uint32_t mute);

/** The chips' own motion detection: clear the areas, set the sensitivity to 6, start. */
NVRHAL_API int32_t InitMotion(void);
NVRHAL_API int32_t SetMotionArea(const struct AdMotionArea *area);
NVRHAL_API int32_t GetMotionArea(struct AdMotionQuery *query);
NVRHAL_API int32_t SetMotionSensivity(const struct AdMotionSensitivity *sensitivity);

/**
 * Watched blocks of one channel's main-stream picture. 9020 bytes. Filled by ext_set_motion_area,
 * read by whoever evaluates motion.
 */
typedef struct VdaChannel {
    uint32_t unread[4]; /*  0  carried                                                           */
    uint32_t threshold; /* 16  blocks that must move to count as motion                          */
    uint8_t map[9000];  /* 20  1 = watched; a byte a block of 8 x 8 pixels, a row width / 8 bytes */
} VdaChannel;

extern NVRHAL_API VdaChannel vda_chn[128];

/** 1 once an area has been set. */
extern NVRHAL_API uint32_t vda_flag;

/** Sensitivity level of all channels, 0 to 10. */
extern NVRHAL_API uint32_t g_sensitive;

/** Store the sensitivity level; the channel is ignored. Takes effect on areas set later. @return 0. */
NVRHAL_API int32_t ext_set_motion_sensitive(uint32_t channel, uint32_t level);

/**
 * Set a channel's watched area.
 * @param area  58 bytes: 4 that are not read, then 18 rows of 3 bytes; bit c of a row (0 to 21, the
 *              first byte's lowest bit first) = column c is watched
 * @return 0, also for a channel above 127, which is ignored; -1 = null. Thread: UI thread.
 */
NVRHAL_API int32_t ext_set_motion_area(uint32_t channel, const uint8_t area[58]);

/**
 * Which channels have lost their analog signal.
 * @param mask  out: bit n = channel n, low word first; channel 31 sets the whole second word too
 * @return 0; -1 = null, or the analog front end failed: the bits found so far stand. Thread: any.
 */
NVRHAL_API int32_t ext_get_video_loss_status(uint32_t mask[2]);

#ifdef __cplusplus
}
#endif

#endif
