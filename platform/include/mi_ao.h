/* mi_ao.h - audio output devices, each with one channel, a decoder and a resampler in front. */
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

/** Attributes of a device. 32 bytes. */
typedef struct MI_AO_PubAttr {
    uint32_t sample_rate;       /*  0  Hz                          */
    uint32_t bit_width;         /*  4  code; 0 = 16 bit            */
    uint32_t work_mode;         /*  8  code; 0                     */
    uint32_t sound_mode;        /* 12  code; 0 = mono              */
    uint32_t frame_count;       /* 16  0 = the device's own choice */
    uint32_t samples_per_frame; /* 20                              */
    uint32_t channels;          /* 24                              */
    uint32_t codec_channels;    /* 28  0                           */
} MI_AO_PubAttr;

/** Settings of the built-in decoder. 12 bytes. */
typedef struct MI_AO_AdecAttr {
    uint32_t codec;       /*  0  enum MI_AO_Codec       */
    uint32_t sample_rate; /*  4  Hz                     */
    uint32_t sound_mode;  /*  8  code; 0 = mono         */
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

/** Set a device's attributes. Refused: a value that cannot be had, other ones while it is enabled. */
int32_t MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr);

/** Start a device. It needs attributes (NOT_READY). */
int32_t MI_AO_Enable(uint32_t device);

/** Start an enabled device's channel. */
int32_t MI_AO_EnableChn(uint32_t device, uint32_t channel);

/** Set the built-in decoder up; MI_AO_EnableAdec then puts it in front of the channel. */
int32_t MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr);
int32_t MI_AO_EnableAdec(uint32_t device, uint32_t channel);

/** Convert the channel's input from input_rate, in Hz, to the device's rate. */
int32_t MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate);

/** Silence a device (1) or let it be heard (0); what is queued goes on playing meanwhile. */
int32_t MI_AO_SetMute(uint32_t device, int32_t mute);

/** Set the gain in dB. */
int32_t MI_AO_SetVolume(uint32_t device, int32_t volume_db);

/** Queue a block; waits up to timeout_ms (-1 = for ever) for room. The bytes are copied. */
int32_t MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms);

#ifdef __cplusplus
}
#endif

#endif
