/*
 * device.h - start and stop of the library, and what it was started with.
 */
#ifndef NVRHAL_DEVICE_H
#define NVRHAL_DEVICE_H

#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/limits.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The start-up parameter block. 1068 bytes = 267 words of 32 bits, copied whole. The library
 * interprets the named words only and carries the others unread.
 */
typedef struct DeviceParams {
    uint32_t unread_0[129];       /*    0  the application's own                                     */
    uint32_t net_video_size[128]; /*  516  size code of each channel's network stream; 2 = 640x360   */
    int32_t vi_chn_num;           /* 1028  N, camera channels, 1 to NVRHAL_MAX_CAMERAS               */
    uint32_t unread_258[2];       /* 1032                                                            */
    int32_t vo_dev_type;          /* 1040  output device; 3 = no local video output                  */
    uint32_t unread_261[2];       /* 1044                                                            */
    int32_t gui_width;            /* 1052  GUI width, pixels. It chooses the output: 800 and 1024 =  */
                                  /*       1024x768, 1280 = 1280x1024, 1440 = 1440x900, any other =  */
                                  /*       1920x1080                                                 */
    int32_t gui_height;           /* 1056  GUI height, pixels                                        */
    uint32_t unread_265[2];       /* 1060                                                            */
} DeviceParams;

/** Attributes of one channel's main or network stream. 52 bytes. */
typedef struct StreamAttr {
    uint32_t unread_0[4]; /*  0  carried                                                      */
    uint32_t size_class;  /* 16  5 = 960x576 main stream, 1 = 640x360 network stream          */
    uint32_t width;       /* 20  pixels; overwritten by every stored or live video frame      */
    uint32_t height;      /* 24  pixels; likewise                                             */
    uint32_t frame_rate;  /* 28  frames per second                                            */
    uint32_t quality_1;   /* 32  first image-quality value, stored only                       */
    uint32_t encode_mode; /* 36  stored only                                                  */
    uint32_t quality_2;   /* 40  stored only                                                  */
    uint32_t quality_3;   /* 44  stored only                                                  */
    uint32_t format;      /* 48  stored only                                                  */
} StreamAttr;

/** The library's copy of the start-up block. */
extern NVRHAL_API DeviceParams DdvrInputParam;

/** N, the number of camera channels; 8 before start-up. Decoder channel N is a spare one. */
extern NVRHAL_API int32_t g_vi_chn_num;

/** Current display device: 0 main output, 2 further output, -1 secondary output. */
extern NVRHAL_API int32_t globalVoDev;

/** Output timing code that the display is started with; after an output switch a display output value. */
extern NVRHAL_API uint32_t enNorm_vga;

/** Attributes of each channel's main stream. */
extern NVRHAL_API StreamAttr major_stream[NVRHAL_MAX_DECODERS];

/** Attributes of each channel's network stream. */
extern NVRHAL_API StreamAttr minor_stream[NVRHAL_MAX_CAMERAS];

/**
 * Start the library: call it once, before anything else but nvrhal_set_log. Brings up, in this order, the
 * stream pools, the media system, HDMI, N + 1 decoder channels, the display with N ports, the framebuffer,
 * audio, GPIO lines and the watchdog. Nothing is shown before the first layout.
 *
 * The state that it leaves: the buzzer's line is high, so that the buzzer sounds until
 * ext_buzzer_set(0). The watchdog is enabled with 100 s and has been fed once: feed it
 * (Set_Wdt_Fing(1), then wdt_feed_pt()) or switch it off (ext_wdg_set(0)) within that time. Every
 * decoder expects H.265.
 *
 * @param params  the start-up block
 * @return 0, or -1
 * Errors: null; a stage that failed. The stages before it keep running, those behind it did not run. A
 *         watchdog that cannot be had is only printed.
 * Thread: one, once.
 * Ownership: params is copied.
 */
NVRHAL_API int32_t ext_device_init(const DeviceParams *params);

/**
 * Start the display path again for the GUI: display ports, HDMI, framebuffer. enNorm_vga is used as a
 * display output value untranslated: of the codes that start-up sets, 6, 7 and 8 are values too
 * (720x480, 720x576 and 1280x720), 4 is none and fails.
 * @return 0, or -1
 * Errors: the display or the framebuffer failed: what was started stays so. HDMI failures are only
 *         printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_gui_init(void);

/**
 * Detach the display ports from their decoders. Everything else runs until the process ends.
 * @return 0
 * Errors: failures of the platform are only printed.
 * Thread: UI thread.
 */
NVRHAL_API uint32_t ext_device_quit(void);

#ifdef __cplusplus
}
#endif

#endif
