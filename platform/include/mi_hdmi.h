/*
 * mi_hdmi.h - the HDMI transmitter. One device, number 0.
 *
 * Headings of the comments: see mi_common.h.
 *
 *     closed -> Init -> initialised -> Open -> open -> SetAttr, Start <-> Stop -> Close -> DeInit
 *
 * HDMI timing values, with width x height and pictures per second:
 *
 *      4  1280 x 720 50      9  1920 x 1080 60     36  1024 x 768 60     39  1600 x 1200 60
 *      5  1280 x 720 60     13  3840 x 2160 30     37  1280 x 1024 60    40  1280 x 800 60
 *      7  1920 x 1080 50    17  2560 x 1440 30     38  1440 x 900 60     41  1366 x 768 60
 *                                                                        42  1680 x 1050 60
 */
#ifndef MI_HDMI_H
#define MI_HDMI_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What happens at the plug. */
enum MI_HDMI_Event {
    MI_HDMI_EVENT_PLUGGED = 0,
    MI_HDMI_EVENT_UNPLUGGED = 1,
};

/**
 * The function that is told of the plug. The platform calls it on a thread of its own, never inside a
 * call of the library; one event at a time, in the order in which they happened. It may call the media
 * interface, and the library's does: GetSinkInfo, GetAttr, SetAttr and Start when a monitor comes, Stop
 * when it goes. It may take its time; later events wait meanwhile.
 *
 * @param device       0
 * @param event        enum MI_HDMI_Event
 * @param event_param  points at the 32-bit device number, valid during the call; null = the library only
 *                     prints that it is missing
 * @param user_param   as it was given to MI_HDMI_Init
 * @return ignored
 */
typedef int32_t (*MI_HDMI_Callback)(uint32_t device, uint32_t event, void *event_param, void *user_param);

/** What MI_HDMI_Init keeps. 8 bytes on the 32-bit target. */
typedef struct MI_HDMI_InitParam {
    MI_HDMI_Callback callback; /*  0  may be null */
    void *user_param;          /*  4  handed back */
} MI_HDMI_InitParam;

/** Attributes of the transmitter. 56 bytes. */
typedef struct MI_HDMI_Attr {
    uint32_t connected;          /*  0  carried                          */
    uint32_t video_enabled;      /*  4  1 = send a picture               */
    uint32_t video_timing;       /*  8  HDMI timing value                */
    uint32_t output_mode;        /* 12  0 = HDMI                         */
    uint32_t colour_type;        /* 16  0 = RGB                          */
    uint32_t deep_colour;        /* 20  0 = 24 bit                       */
    uint32_t audio_enabled;      /* 24  1 = send sound                   */
    uint32_t audio_multichannel; /* 28  0 = two channels                 */
    uint32_t audio_sample_rate;  /* 32  code; 3 = 48 kHz                 */
    uint32_t audio_bit_depth;    /* 36  bits                             */
    uint32_t audio_coding;       /* 40  0 = PCM                          */
    uint32_t avi_infoframe;      /* 44  1 = send                         */
    uint32_t audio_infoframe;    /* 48  1 = send                         */
    uint32_t spd_infoframe;      /* 52  1 = send                         */
} MI_HDMI_Attr;

/** What the monitor says of itself. 16 bytes. */
typedef struct MI_HDMI_SinkInfo {
    uint32_t connected;        /*  0  1 = a monitor is there    */
    uint32_t hdmi;             /*  4  1 = HDMI, 0 = DVI         */
    uint32_t preferred_width;  /*  8  pixels                    */
    uint32_t preferred_height; /* 12  pixels                    */
} MI_HDMI_SinkInfo;

/**
 * Register the callback; events may come from now on. A monitor that is plugged in already raises none.
 *
 * @param param  callback and its parameter
 * @return 0, or a code
 * Order: first of all HDMI calls.
 * Thread: any.
 * Memory: `param` is the caller's, and copied.
 * Time: at once.
 * Errors: EXISTS: initialised already.
 * Failure: printed, and ignored: the library initialises again for its GUI, and expects EXISTS then.
 */
int32_t MI_HDMI_Init(const MI_HDMI_InitParam *param);

/**
 * Undo MI_HDMI_Init; no event is raised any more. One that is in the callback just now may end later.
 *
 * @return 0, or a code
 * Order: after MI_HDMI_Close.
 * Thread: any, the callback's too.
 * Time: at once; it does not wait for the callback.
 * Errors: NOT_READY: not initialised; NOT_PERMITTED: the transmitter is open.
 * Failure: ignored.
 */
int32_t MI_HDMI_DeInit(void);

/**
 * Open the transmitter.
 *
 * @param device  0
 * @return 0, or a code
 * Order: after MI_HDMI_Init.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: not initialised; EXISTS: open already.
 * Failure: printed, and ignored: the library opens again for its GUI, and expects EXISTS then.
 */
int32_t MI_HDMI_Open(uint32_t device);

/**
 * Close a stopped transmitter.
 *
 * @param device  0
 * @return 0, or a code
 * Order: after MI_HDMI_Stop.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: not open; NOT_PERMITTED: it is started.
 * Failure: ignored.
 */
int32_t MI_HDMI_Close(uint32_t device);

/**
 * Blank picture and sound, or let them through. Attributes and start stay as they are.
 *
 * @param device  0
 * @param mute    0 = let through, else blank
 * @return 0, or a code
 * Order: after MI_HDMI_Open; started or not, and it holds over a start.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_DEVICE; NOT_READY: not open.
 * Failure: ignored.
 */
int32_t MI_HDMI_SetAvMute(uint32_t device, int32_t mute);

/**
 * Set the attributes, running or not.
 *
 * @param device  0
 * @param attr    all of them
 * @return 0, or a code
 * Order: after MI_HDMI_Open; before MI_HDMI_Start.
 * Thread: any, the callback's too.
 * Memory: `attr` is the caller's, and copied.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: not open; UNSUPPORTED: a timing that cannot be had, with video enabled.
 * Failure: printed. Start-up ends with -1 and the output stays muted; after a plug the transmitter stays
 *   stopped.
 */
int32_t MI_HDMI_SetAttr(uint32_t device, const MI_HDMI_Attr *attr);

/**
 * Read the attributes in force: after a monitor was changed those that were set before it.
 *
 * @param device  0
 * @param attr    filled as it was set
 * @return 0, or a code
 * Order: after MI_HDMI_SetAttr; started or not, monitor or not.
 * Thread: any, the callback's too.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_DEVICE; NOT_READY: not open, or nothing was set.
 * Failure: printed; after a plug the transmitter stays stopped.
 */
int32_t MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr);

/**
 * Read the monitor's description.
 *
 * @param device  0
 * @param info    filled
 * @return 0, or a code
 * Order: after MI_HDMI_Open; started or not.
 * Thread: any, the callback's too.
 * Memory: `info` is the caller's.
 * Time: 500 ms at most: the monitor is asked.
 * Errors: BAD_DEVICE; NOT_READY: not open; ABSENT: no monitor.
 * Failure: printed, and ignored.
 */
int32_t MI_HDMI_GetSinkInfo(uint32_t device, MI_HDMI_SinkInfo *info);

/**
 * Send picture and sound as the attributes say.
 *
 * @param device  0
 * @return 0, or a code
 * Order: after MI_HDMI_SetAttr. Starting a started transmitter is accepted; without a monitor too.
 * Thread: any, the callback's too.
 * Time: 500 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: not open, or no attributes.
 * Failure: printed at start-up, which ends with -1 and leaves the output muted; ignored after a plug.
 */
int32_t MI_HDMI_Start(uint32_t device);

/**
 * Send nothing any more. The attributes stay.
 *
 * @param device  0
 * @return 0, or a code
 * Order: after MI_HDMI_Open. Stopping a stopped transmitter is accepted.
 * Thread: any, the callback's too.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE; NOT_READY: not open.
 * Failure: ignored.
 */
int32_t MI_HDMI_Stop(uint32_t device);

#ifdef __cplusplus
}
#endif

#endif
