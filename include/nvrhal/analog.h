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
 * The analog camera inputs' decoder chips. Four inputs belong to a chip: chip = channel / 4, input =
 * channel mod 4. Every call opens the driver's node "/dev/vc0725dev", issues its request and closes the
 * node; the driver serialises. Values without a stated meaning are between the application and the
 * driver. The records stand in platform/include/ad_driver.h; their words are given at the calls.
 */

struct AdVideoLoss;
struct AdColorAdjust;
struct AdMotionArea;
struct AdMotionSensitivity;
struct AdMotionQuery;

/**
 * Set every input up: 3 for all when a channel's main stream has size_class 5 (960 x 576), 1 otherwise;
 * and the norm.
 * @param norm_flag  0 = norm 2, any other = norm 1
 * @return 0, or -1
 * Errors: -1 for no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t Init_AD(uint32_t norm_flag);

/**
 * Set the video norm.
 * @param norm  any value that the driver takes
 * @return 0, or -1
 * Errors: -1 for no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t ad_set_norm(uint32_t norm);

/**
 * Read the video norm.
 * @param norm  out: its low byte; left alone after a failure
 * @return 0, or -1
 * Errors: -1 for null; for no driver, or when it refused, which is printed.
 * Thread: any.
 * Ownership: the record is the caller's.
 */
NVRHAL_API int32_t ad_get_norm(uint8_t *norm);

/**
 * Set how the inputs work.
 * @param mode  any value that the driver takes; its low byte counts. 3 = 960 x 576 pictures, 1 = others
 * @return 0, or -1
 * Errors: -1 for no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t ad_work_mode(uint32_t mode);

/**
 * Ask whether an input has lost its signal.
 * @param loss  in: u32 chip, u32 input; out: u32 lost, other than 0 = there is no signal
 * @return 0, or -1
 * Errors: -1 for null; for no driver, or when it refused, which is printed.
 * Thread: any.
 * Ownership: the record is the caller's.
 */
NVRHAL_API int32_t ad_get_loss(struct AdVideoLoss *loss);

/**
 * Set the colour adjustment.
 * @param first   any value
 * @param second  any value
 * @param third   any value
 * @return 0, or -1
 * Errors: -1 for no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t ad_set_adjust(uint32_t first, uint32_t second, uint32_t third);

/**
 * Read the colour adjustment.
 * @param adjust  in and out: three u32
 * @return 0, or -1
 * Errors: -1 for null; for no driver, or when it refused, which is printed.
 * Thread: any.
 * Ownership: the record is the caller's.
 */
NVRHAL_API int32_t ad_get_adjust(struct AdColorAdjust *adjust);

/**
 * Set the sampling of all audio inputs.
 * @param rate  samples a second: 8000, 16000, 32000, 44100 or 48000
 * @return 0, or -1
 * Errors: -1 for another rate, no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t ad_set_sample_rate(uint32_t rate);

/**
 * Select the audio input that is played.
 * @param selection  any value that the driver takes
 * @return 0, or -1
 * Errors: -1 for no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t ad_set_audio_playback(uint32_t selection);

/**
 * Set the audio volume.
 * @param volume  any value that the driver takes
 * @return 0, or -1
 * Errors: -1 for no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t ad_set_audio_volume(uint32_t volume);

/**
 * Set the audio format.
 * @param format  any value that the driver takes
 * @return 0, or -1
 * Errors: -1 for no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t ad_set_audio_format(uint32_t format);

/**
 * Set the audio format by work mode.
 * @param mode  2 sends format 1, any other 0
 * @return 0, or -1
 * Errors: -1 for no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t ad_audio_work_mode(uint32_t mode);

/**
 * Set the audio bit width.
 * @param code  0
 * @return 0, or -1
 * Errors: -1 for another code, no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t ad_set_audio_bitwidth(uint32_t code);

/**
 * Mute the audio output.
 * @param mute  any value that the driver takes
 * @return 0, or -1
 * Errors: -1 for no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t ad_set_mute(uint32_t mute);

/**
 * The chips' own motion detection, on two chips whatever N is: clear the areas, set the sensitivity to
 * 6, start.
 * @return 0, or -1
 * Errors: -1 for no driver, or when it refused; printed.
 * Thread: any.
 */
NVRHAL_API int32_t InitMotion(void);

/**
 * Set the part of an input's picture that its chip watches.
 * @param area  u8 chip, u8 input, then 640 bytes, one bit a block
 * @return 0, or -1
 * Errors: -1 for no driver, null, or when it refused; nothing is printed.
 * Thread: any.
 * Ownership: the record is the caller's.
 */
NVRHAL_API int32_t SetMotionArea(const struct AdMotionArea *area);

/**
 * Ask how many watched blocks of an input move.
 * @param query  in: u8 chip, u8 input, 2 unused bytes; out: u32 blocks
 * @return 0, or -1
 * Errors: -1 for no driver, null, or when it refused; nothing is printed.
 * Thread: any.
 * Ownership: the record is the caller's.
 */
NVRHAL_API int32_t GetMotionArea(struct AdMotionQuery *query);

/**
 * Set how much of an input's picture must move.
 * @param sensitivity  u8 chip, u8 input, 2 unused bytes, u32 sensitivity
 * @return 0, or -1
 * Errors: -1 for no driver, null, or when it refused; nothing is printed.
 * Thread: any.
 * Ownership: the record is the caller's.
 */
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

/** The watched blocks of every channel. */
extern NVRHAL_API VdaChannel vda_chn[128];

/** 1 once an area has been set. */
extern NVRHAL_API uint32_t vda_flag;

/** Sensitivity level of all channels, 0 to 10. */
extern NVRHAL_API uint32_t g_sensitive;

/**
 * Store the sensitivity level. Takes effect on areas set later.
 * @param channel  any value; ignored
 * @param level    0 to 10: 3, 3, 5, 8, 10, 15, 20, 25, 30, 50 or 55 per cent of the watched blocks must
 *                 move; any other = 25
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_set_motion_sensitive(uint32_t channel, uint32_t level);

/**
 * Set a channel's watched area.
 * @param channel  0 to 127; above is ignored
 * @param area     58 bytes: 4 that are not read, then 18 rows of 3 bytes; bit c of a row (0 to 21, the
 *                 first byte's lowest bit first) = column c is watched
 * @return 0, also for a channel that is ignored; or -1
 * Errors: -1 for null.
 * Thread: UI thread.
 * Ownership: area is used during the call only.
 */
NVRHAL_API int32_t ext_set_motion_area(uint32_t channel, const uint8_t area[58]);

/**
 * Which channels have lost their analog signal.
 * @param mask  out: bit n = channel n, low word first; channel 31 sets the whole second word too
 * @return 0, or -1
 * Errors: -1 for null, or when the analog front end failed: the bits found so far stand.
 * Thread: any.
 * Ownership: mask is the caller's.
 */
NVRHAL_API int32_t ext_get_video_loss_status(uint32_t mask[2]);

#ifdef __cplusplus
}
#endif

#endif
