/*
 * mi_ao.h - audio output devices, each with one channel, a decoder and a resampler in front.
 *
 * Headings of the comments: see mi_common.h. The library plays on device 3, channel 0, and sets it up
 * once at start-up, in the order of these functions: SetPubAttr, Enable, EnableChn, SetAdecAttr,
 * EnableAdec, EnableReSmp. A call of these six that fails is printed and ends start-up with -1.
 *
 *     MI_AO_SendFrame -> decoder -> resampler -> queue -> volume, mute -> loudspeaker
 */
#ifndef MI_AO_H
#define MI_AO_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The built-in decoder's codec codes. */
enum MI_AO_Codec {
    MI_AO_CODEC_G711A = 0, /* A-law, 8 kHz mono, one byte a sample */
};

/** Attributes of a device. 32 bytes. The library's are 48000, 0, 0, 0, 0, 2048, 1, 0. */
typedef struct MI_AO_PubAttr {
    uint32_t sample_rate;       /*  0  Hz                                                     */
    uint32_t bit_width;         /*  4  code; 0 = 16 bit                                       */
    uint32_t work_mode;         /*  8  code; 0 = the chip is the clock's master               */
    uint32_t sound_mode;        /* 12  code; 0 = mono                                         */
    uint32_t frame_count;       /* 16  frames that the queue holds; 0 = the device's own choice */
    uint32_t samples_per_frame; /* 20  samples                                                */
    uint32_t channels;          /* 24  1                                                      */
    uint32_t codec_channels;    /* 28  0                                                      */
} MI_AO_PubAttr;

/** Settings of the built-in decoder. 12 bytes. */
typedef struct MI_AO_AdecAttr {
    uint32_t codec;       /*  0  enum MI_AO_Codec                                               */
    uint32_t sample_rate; /*  4  Hz; the library gives the device's. The samples that come out are
                                 at the rate given to MI_AO_EnableReSmp                          */
    uint32_t sound_mode;  /*  8  code; 0 = mono                                                 */
} MI_AO_AdecAttr;

/** One block of audio, 168 bytes on the 32-bit target. Zero what is not set. */
typedef struct MI_AO_Frame {
    uint32_t bit_width;    /*   0  code; 0 = 16 bit                        */
    uint32_t sound_mode;   /*   4  code; 0 = mono                          */
    const void *data[16];  /*   8  one address a channel; mono uses [0]    */
    MI_U64 pts;            /*  72  0 = none                                */
    uint32_t sequence;     /*  80  0                                       */
    uint32_t length_bytes; /*  84  bytes at each address                   */
    uint32_t pool_id[16];  /*  88  0                                       */
    uint32_t reserved[4];  /* 152  0                                       */
} MI_AO_Frame;

/**
 * Set a device's attributes.
 *
 * @param device  the library gives 3
 * @param attr    what is wanted
 * @return 0, or a code
 * Order: before MI_AO_Enable. An enabled device takes the attributes that it has once more.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_VALUE or UNSUPPORTED: a value that cannot be had; NOT_PERMITTED: other ones
 *   while it is enabled.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr);

/**
 * Start a device. It is silent while nothing is queued.
 *
 * @param device  the library gives 3
 * @return 0, or a code
 * Order: after MI_AO_SetPubAttr. Enabling an enabled one is accepted.
 * Thread: any.
 * Time: 500 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: no attributes.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_Enable(uint32_t device);

/**
 * Start an enabled device's channel.
 *
 * @param device   the library gives 3
 * @param channel  0
 * @return 0, or a code
 * Order: after MI_AO_Enable. Enabling an enabled one is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; BAD_CHANNEL; NOT_READY: the device is not enabled.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_EnableChn(uint32_t device, uint32_t channel);

/**
 * Set the built-in decoder up; MI_AO_EnableAdec puts it in front of the channel.
 *
 * @param device   the library gives 3
 * @param channel  0
 * @param attr     what comes in
 * @return 0, or a code
 * Order: after MI_AO_EnableChn; may be repeated.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL; NOT_READY: device or channel not enabled; UNSUPPORTED: codec or sound
 *   mode; BAD_VALUE: sample rate.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr);

/**
 * Put the decoder in front of the channel: blocks that are sent are encoded bytes from now on.
 *
 * @param device   the library gives 3
 * @param channel  0
 * @return 0, or a code
 * Order: after MI_AO_SetAdecAttr. Enabling an enabled one is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; BAD_CHANNEL; NOT_READY: device or channel not enabled, or no decoder attributes.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_EnableAdec(uint32_t device, uint32_t channel);

/**
 * Convert the channel's input to the device's rate.
 *
 * @param device      the library gives 3
 * @param channel     0
 * @param input_rate  Hz; the library gives 8000
 * @return 0, or a code
 * Order: after MI_AO_EnableChn. The same rate once more is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; BAD_CHANNEL; NOT_READY: device or channel not enabled; BAD_VALUE: a rate that
 *   cannot be had; NO_MEMORY.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate);

/**
 * Silence a device or let it be heard. What is queued goes on playing meanwhile, unheard: sends are taken
 * at the same pace.
 *
 * @param device  the library gives 3
 * @param mute    0 = heard, else silent
 * @return 0, or a code
 * Order: after MI_AO_Enable.
 * Thread: any, also while another thread waits in MI_AO_SendFrame.
 * Time: at once.
 * Errors: BAD_DEVICE; NOT_READY: not enabled.
 * Failure: ignored.
 */
int32_t MI_AO_SetMute(uint32_t device, int32_t mute);

/**
 * Set the gain.
 *
 * @param device     the library gives 3
 * @param volume_db  dB, -60 to 30; 0 after MI_AO_Enable. The library gives volume * 90 / 100 - 60 for
 *                   the application's 0 to 100
 * @return 0, or a code
 * Order: after MI_AO_Enable.
 * Thread: any, also while another thread waits in MI_AO_SendFrame.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_VALUE: beyond -60 to 30; NOT_READY: not enabled.
 * Failure: printed; ext_set_audio_output_volume returns -1, and the volume stays.
 */
int32_t MI_AO_SetVolume(uint32_t device, int32_t volume_db);

/**
 * Queue a block, behind those that were sent before. The device plays its queue at its own rate, so that
 * a sender that never pauses is held to the pace of the sound: with 320 bytes of A-law a send takes
 * 40 ms on the average, once the queue is full. The queue holds 100 ms to 500 ms.
 *
 * @param device      the library gives 3
 * @param channel     0
 * @param frame       the library sends 320 bytes of A-law in data[0]
 * @param timeout_ms  milliseconds to wait for room; 0 = not at all, negative = for ever. The library
 *                    gives -1
 * @return 0, or a code: then nothing of it was queued
 * Order: device and channel are enabled.
 * Thread: any; one block is queued whole before another thread's. A send that waits keeps SetMute and
 *   SetVolume of its device not waiting.
 * Memory: record and bytes are the caller's, and are copied before the call returns.
 * Time: at once when there is room; otherwise until there is, timeout_ms at most.
 * Errors: BAD_DEVICE; BAD_CHANNEL; NOT_READY: device or channel not enabled; BAD_VALUE: no bytes, or more
 *   than the whole queue; UNSUPPORTED: bit width or sound mode; BUFFER_FULL: no room in time.
 * Failure: printed; the block is lost, and the next one is sent.
 */
int32_t MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms);

#ifdef __cplusplus
}
#endif

#endif
