/*
 * audio.h - audio output and talkback.
 */
#ifndef NVRHAL_AUDIO_H
#define NVRHAL_AUDIO_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/limits.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Opaque here: platform/include has it. */
struct MI_AO_PubAttr;

/** What the audio output serves: AudioCtrl::mode. */
enum AudioUse {
    AUDIO_USE_OFF = 0,      /* muted or volume 0 */
    AUDIO_USE_LIVE = 1,     /* live audio        */
    AUDIO_USE_PLAYBACK = 2, /* recorded audio    */
    AUDIO_USE_TALKBACK = 3,
};

/** State of the audio output. 52 bytes. */
typedef struct AudioCtrl {
    uint32_t mode;      /*  0  enum AudioUse                               */
    uint32_t reset_1;   /*  4  0 at start-up and at each change of use but */
                        /*     those by volume and by the end of talkback  */
    uint32_t reset_2;   /*  8  likewise                                    */
    uint32_t enabled;   /* 12  likewise 1                                  */
    uint32_t reset_4;   /* 16  likewise 0                                  */
    uint32_t zero_5[3]; /* 20  0                                           */
    uint32_t chn_num;   /* 32  N, set at start-up                          */
    uint32_t zero_9[4]; /* 36  0                                           */
} AudioCtrl;

/** What the output serves now. Playback sends audio only while mode is not 0. Whole words, no lock. */
extern NVRHAL_API AudioCtrl audio_ctrl;

/** 1 while talkback is on. */
extern NVRHAL_API uint32_t speak_flag;

/**
 * Set audio device 3 up for A-law of NVRHAL_SOUND_RATE_HZ, played at 48 kHz; start-up calls it.
 * @return 0, or -1
 * Errors: it stops at the first failure, which is printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t audio_init(void);

/**
 * Configure and enable an audio output device.
 * @param device  any that the platform has; 5 = HDMI
 * @param unused  any value
 * @param attr    null is handed to the platform, which refuses it
 * @return 0, or -1
 * Errors: it stops at the first failure; nothing is printed.
 * Thread: UI thread.
 * Ownership: attr is used during the call only.
 */
NVRHAL_API int32_t audio_start_ao(uint32_t device, uint32_t unused, const struct MI_AO_PubAttr *attr);

/**
 * Configure and enable a device channel's decoder, at 48 kHz.
 * @param device        any that the platform has
 * @param channel       any that the device has
 * @param payload_type  the platform's codec code, 0 to 2; 0 = A-law
 * @param mode          sound mode code, 0 = mono; payload type 2 makes it 3
 * @return 0, -1, or the platform's code
 * Errors: -1 for another payload type, which is printed; the platform's code when it refused.
 * Thread: UI thread.
 */
NVRHAL_API int32_t audio_create_adec_chn(uint32_t device, uint32_t channel, uint32_t payload_type,
                                         uint32_t mode);

/**
 * Switch live sound on or off: the output is unmuted or muted. Which channel is heard is decided by
 * what is sent.
 * @param open     0 = off, any other = on
 * @param channel  any value; only printed
 * @return 0
 * Errors: none are told: 0 also when the platform did not mute.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_set_audio_live_channel(int32_t open, int32_t channel);

/**
 * Set the volume.
 * @param volume  0 to 100: -60 dB to +30 dB in steps of 0.9 dB, cut to whole dB; larger values are not
 *                limited. 0 also closes the output for playback, any other opens it.
 * @return 0, or -1
 * Errors: -1 when the platform refused.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_set_audio_output_volume(uint32_t volume);

/**
 * Switch the output to talkback.
 * @return 0
 * Errors: none.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_audio_speek_start(void);

/**
 * End talkback; takes one second.
 * @return 0
 * Errors: none.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_audio_speek_stop(void);

/**
 * Store the boot audio format; the library does not read it.
 * @param format  any value
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_change_boot_audio_format(uint32_t format);

/**
 * End of the HDMI audio path, which needs nothing here.
 * @param argument  any value
 * @return the argument
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t audio_stop_hdmi(int32_t argument);

#ifdef __cplusplus
}
#endif

#endif
