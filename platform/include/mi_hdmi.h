/* mi_hdmi.h - the HDMI transmitter. One device, number 0. */
#ifndef MI_HDMI_H
#define MI_HDMI_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

enum MI_HDMI_Event {
    MI_HDMI_EVENT_PLUGGED = 0,
    MI_HDMI_EVENT_UNPLUGGED = 1,
};

/**
 * Monitor events, called on the platform's own event thread, one at a time. event_param points at
 * the 32-bit device number, or is null. The result is ignored.
 */
typedef int32_t (*MI_HDMI_Callback)(uint32_t device, uint32_t event, void *event_param, void *user_param);

/** What MI_HDMI_Init keeps. */
typedef struct MI_HDMI_InitParam {
    MI_HDMI_Callback callback; /* may be null */
    void *user_param;          /* handed back */
} MI_HDMI_InitParam;

/** Attributes of the transmitter. 56 bytes. */
typedef struct MI_HDMI_Attr {
    uint32_t connected;          /*  0  carried                          */
    uint32_t video_enabled;      /*  4                                   */
    uint32_t video_timing;       /*  8  HDMI timing value                */
    uint32_t output_mode;        /* 12  0 = HDMI                         */
    uint32_t colour_type;        /* 16  0 = RGB                          */
    uint32_t deep_colour;        /* 20  0 = 24 bit                       */
    uint32_t audio_enabled;      /* 24                                   */
    uint32_t audio_multichannel; /* 28                                   */
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

/** Register the callback; events may come from now on. Refused: initialised already (EXISTS). */
int32_t MI_HDMI_Init(const MI_HDMI_InitParam *param);

/** Undo MI_HDMI_Init; no event comes any more. Refused: not initialised (NOT_READY), still open. */
int32_t MI_HDMI_DeInit(void);

/** Open the transmitter. Refused: not initialised (NOT_READY), open already (EXISTS). */
int32_t MI_HDMI_Open(uint32_t device);

/** Close a stopped transmitter. */
int32_t MI_HDMI_Close(uint32_t device);

/** Blank picture and sound (1) or let them through (0). */
int32_t MI_HDMI_SetAvMute(uint32_t device, int32_t mute);

/** Set the attributes, running or not; read those in force. Refused: a timing that cannot be had. */
int32_t MI_HDMI_SetAttr(uint32_t device, const MI_HDMI_Attr *attr);
int32_t MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr);

/** Read the monitor's description. Refused: no monitor (ABSENT). */
int32_t MI_HDMI_GetSinkInfo(uint32_t device, MI_HDMI_SinkInfo *info);

/** Send picture and sound as the attributes say, or stop. Starting needs attributes (NOT_READY). */
int32_t MI_HDMI_Start(uint32_t device);
int32_t MI_HDMI_Stop(uint32_t device);

#ifdef __cplusplus
}
#endif

#endif
