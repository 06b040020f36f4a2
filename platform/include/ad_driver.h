/*
 * ad_driver.h - the VC0725 analog video/audio decoder chips, "/dev/vc0725dev".
 *
 * Four video inputs belong to a chip: chip = channel / 4, input = channel mod 4. Request codes are
 * encoded as <linux/ioctl.h> does with the type letter 'v'; every request but AD_MOTION_START takes
 * a pointer to its record. Records are little-endian.
 */
#ifndef AD_DRIVER_H
#define AD_DRIVER_H

#include <linux/ioctl.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define AD_NODE "/dev/vc0725dev"

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

#define AD_GET_LOSS               _IOWR('v', 4, AdVideoLoss)
#define AD_SET_ADJUST             _IOW('v', 5, AdColorAdjust)
#define AD_GET_ADJUST             _IOWR('v', 6, AdColorAdjust)
#define AD_SET_NORM               _IOW('v', 7, AdChipValue)
#define AD_GET_NORM               _IOWR('v', 8, AdChipValue)
#define AD_SET_WORK_MODE          _IOW('v', 9, AdWorkMode)
#define AD_SET_SAMPLE_RATE        _IOW('v', 10, AdSampleRate)
#define AD_SET_AUDIO_PLAYBACK     _IOW('v', 11, AdChipValue)
#define AD_SET_AUDIO_VOLUME       _IOW('v', 13, AdChipValue)
#define AD_SET_AUDIO_FORMAT       _IOW('v', 14, AdChipValue)
#define AD_SET_AUDIO_BITWIDTH     _IOW('v', 15, AdChipValue)
#define AD_SET_MUTE               _IOW('v', 16, AdChipValue)
#define AD_MOTION_SET_SENSITIVITY _IOW('v', 17, AdMotionSensitivity)
#define AD_MOTION_SET_AREA        _IOW('v', 18, AdMotionArea)
#define AD_MOTION_GET_AREA        _IOWR('v', 19, AdMotionQuery)
#define AD_MOTION_START           _IO('v', 20)

#ifdef __cplusplus
}
#endif

#endif
