/*
 * ad_driver.h - the VC0725 analog video/audio decoder chips, "/dev/vc0725dev".
 *
 * Four video inputs belong to a chip: chip = channel / 4, input = channel mod 4. Request codes are
 * encoded as <linux/ioctl.h> does with the type letter 'v'; every request but AD_MOTION_START takes
 * a pointer to its record. Records are little-endian.
 *
 * Headings of the comments: see mi_common.h. Thread: any. Time: 20 ms at most: the chips sit on a slow
 * bus. The library opens the node for each request and closes it afterwards. A node that cannot be
 * opened, and a request that fails, are printed, and the operation returns -1; start-up does not touch
 * the node, so that a board without analog inputs needs none. Settings stay until power-off.
 */
#ifndef AD_DRIVER_H
#define AD_DRIVER_H

#include <linux/ioctl.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define AD_NODE "/dev/vc0725dev" /* path of the node */

/** Numbers of the chips. */
enum {
    AD_INPUTS_PER_CHIP = 4,
    AD_CHIP_SELECTOR = 2, /* what the selector words of the records always say */
    AD_AREA_BYTES = 640,
};

/** Which chips, and one value for them. 8 bytes. */
typedef struct AdChipValue {
    uint32_t selector; /* 0  AD_CHIP_SELECTOR */
    uint32_t value;    /* 4                   */
} AdChipValue;

/** How an input works. 3 bytes. */
typedef struct AdWorkMode {
    uint8_t chip;  /* 0 */
    uint8_t mode;  /* 1  3 = 960 x 576 pictures, 1 = others */
    uint8_t input; /* 2 */
} AdWorkMode;

/** The sampling of all audio inputs. 12 bytes. */
typedef struct AdSampleRate {
    uint32_t selector;  /* 0  AD_CHIP_SELECTOR                               */
    uint32_t rate_code; /* 4  0 to 4 = 8000, 16000, 32000, 44100, 48000 Hz   */
    uint32_t zero;      /* 8  0                                              */
} AdSampleRate;

/** Whether an input has lost its signal. 12 bytes. */
typedef struct AdVideoLoss {
    uint32_t chip;  /* 0                                      */
    uint32_t input; /* 4                                      */
    uint32_t lost;  /* 8  out: other than 0 = there is no signal */
} AdVideoLoss;

/** A colour adjustment, its meaning between the caller and the driver. 12 bytes. */
typedef struct AdColorAdjust {
    uint32_t values[3]; /* 0 */
} AdColorAdjust;

/** The part of an input's picture that the chip watches. 642 bytes. */
typedef struct AdMotionArea {
    uint8_t chip;                /* 0                      */
    uint8_t input;               /* 1                      */
    uint8_t mask[AD_AREA_BYTES]; /* 2  one bit a block     */
} AdMotionArea;

/** How much must move. 8 bytes. */
typedef struct AdMotionSensitivity {
    uint8_t chip;         /* 0 */
    uint8_t input;        /* 1 */
    uint8_t unused[2];    /* 2 */
    uint32_t sensitivity; /* 4 */
} AdMotionSensitivity;

/** What AD_MOTION_GET_AREA asks and answers. 8 bytes. */
typedef struct AdMotionQuery {
    uint8_t chip;      /* 0                                              */
    uint8_t input;     /* 1                                              */
    uint8_t unused[2]; /* 2                                              */
    uint32_t result;   /* 4  out: watched blocks in which something moves */
} AdMotionQuery;

/**
 * Tell whether an input has lost its signal.
 * Argument: AdVideoLoss; chip and input in, lost out.
 * Order: none.
 * Errors: EINVAL: there is no such chip or input.
 * Failure: printed; ext_get_video_loss_status returns -1 without asking the other inputs.
 */
#define AD_GET_LOSS _IOWR('v', 4, AdVideoLoss)

/**
 * Adjust the colours.
 * Argument: AdColorAdjust; the values are between caller and driver.
 * Order: none.
 * Errors: none.
 * Failure: printed; ad_set_adjust returns -1.
 */
#define AD_SET_ADJUST _IOW('v', 5, AdColorAdjust)

/**
 * Tell the colour adjustment.
 * Argument: AdColorAdjust, filled as it was set.
 * Order: none.
 * Errors: none.
 * Failure: printed; ad_get_adjust returns -1.
 */
#define AD_GET_ADJUST _IOWR('v', 6, AdColorAdjust)

/**
 * Choose the video norm of all chips.
 * Argument: AdChipValue, selector AD_CHIP_SELECTOR.
 * Order: Init_AD sets the work modes of all inputs before it.
 * Errors: EINVAL: another selector.
 * Failure: printed; ad_set_norm or Init_AD returns -1.
 */
#define AD_SET_NORM _IOW('v', 7, AdChipValue)

/**
 * Tell the video norm.
 * Argument: AdChipValue; value filled as it was set.
 * Order: none.
 * Errors: none.
 * Failure: printed; ad_get_norm returns -1.
 */
#define AD_GET_NORM _IOWR('v', 8, AdChipValue)

/**
 * Choose how an input works.
 * Argument: AdWorkMode.
 * Order: none; Init_AD sets every camera's input, in ascending order.
 * Errors: EINVAL: there is no such chip or input.
 * Failure: printed; Init_AD or ad_work_mode returns -1, and the inputs behind it are not set.
 */
#define AD_SET_WORK_MODE _IOW('v', 9, AdWorkMode)

/**
 * Choose the sampling of all audio inputs.
 * Argument: AdSampleRate.
 * Order: none.
 * Errors: EINVAL: another selector or rate code.
 * Failure: printed; ad_set_sample_rate returns -1.
 */
#define AD_SET_SAMPLE_RATE _IOW('v', 10, AdSampleRate)

/**
 * Choose what the audio output plays.
 * Argument: AdChipValue.
 * Order: none.
 * Errors: EINVAL: another selector.
 * Failure: printed; ad_set_audio_playback returns -1.
 */
#define AD_SET_AUDIO_PLAYBACK _IOW('v', 11, AdChipValue)

/**
 * Set the volume.
 * Argument: AdChipValue.
 * Order: none.
 * Errors: EINVAL: another selector.
 * Failure: printed; ad_set_audio_volume returns -1.
 */
#define AD_SET_AUDIO_VOLUME _IOW('v', 13, AdChipValue)

/**
 * Choose the format of the sound, or its work mode.
 * Argument: AdChipValue.
 * Order: none.
 * Errors: EINVAL: another selector.
 * Failure: printed; ad_set_audio_format or ad_audio_work_mode returns -1.
 */
#define AD_SET_AUDIO_FORMAT _IOW('v', 14, AdChipValue)

/**
 * Choose the width of the samples.
 * Argument: AdChipValue; value 0 = 16 bit.
 * Order: none.
 * Errors: EINVAL: another selector.
 * Failure: printed; ad_set_audio_bitwidth returns -1.
 */
#define AD_SET_AUDIO_BITWIDTH _IOW('v', 15, AdChipValue)

/**
 * Silence the audio output, or let it be heard.
 * Argument: AdChipValue.
 * Order: none.
 * Errors: EINVAL: another selector.
 * Failure: printed; ad_set_mute returns -1.
 */
#define AD_SET_MUTE _IOW('v', 16, AdChipValue)

/**
 * Choose how much must move.
 * Argument: AdMotionSensitivity.
 * Order: none.
 * Errors: EINVAL: there is no such chip or input.
 * Failure: the operation returns -1; printed by InitMotion alone.
 */
#define AD_MOTION_SET_SENSITIVITY _IOW('v', 17, AdMotionSensitivity)

/**
 * Choose the part of an input's picture that is watched.
 * Argument: AdMotionArea.
 * Order: none.
 * Errors: EINVAL: there is no such chip or input.
 * Failure: the operation returns -1; printed by InitMotion alone.
 */
#define AD_MOTION_SET_AREA _IOW('v', 18, AdMotionArea)

/**
 * Tell in how many watched blocks something moves.
 * Argument: AdMotionQuery; chip and input in, result out; 0 before AD_MOTION_START.
 * Order: after AD_MOTION_START.
 * Errors: EINVAL: there is no such chip or input.
 * Failure: the operation returns -1; printed by InitMotion alone.
 */
#define AD_MOTION_GET_AREA _IOWR('v', 19, AdMotionQuery)

/**
 * Start watching.
 * Argument: none, 0.
 * Order: after the areas were chosen; may be repeated.
 * Errors: none.
 * Failure: the operation returns -1; printed by InitMotion alone.
 */
#define AD_MOTION_START _IO('v', 20)

#ifdef __cplusplus
}
#endif

#endif
