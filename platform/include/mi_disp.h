/* mi_disp.h - display devices, video layers and their input ports. */
#ifndef MI_DISP_H
#define MI_DISP_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

enum { MI_DISP_INPUT_PORTS = 16 };

/** Where a device's picture goes. */
enum MI_DISP_Interface {
    MI_DISP_INTERFACE_DEFAULT = 2,  /* the board's usual connector */
    MI_DISP_INTERFACE_HDMI = 5,     /* HDMI only                   */
    MI_DISP_INTERFACE_VGA_HDMI = 7, /* VGA and HDMI together       */
};

enum MI_DISP_SyncMode {
    E_MI_DISP_SYNC_MODE_FREE_RUN = 1, /* the newest picture, whatever its time stamp */
};

/** Public attributes of a device. 16 bytes. */
typedef struct MI_DISP_PubAttr {
    uint32_t background;     /*  0  0x00VVYYUU where no window lies; 0 = black */
    uint32_t interface_type; /*  4  enum MI_DISP_Interface                  */
    uint32_t timing;         /*  8  output timing value                     */
    uint32_t frame_rate;     /* 12  frames per second; 0 = the timing's own */
} MI_DISP_PubAttr;

/** Attributes of a video layer. 24 bytes. */
typedef struct MI_DISP_VideoLayerAttr {
    MI_Rect window;        /*  0  where the layer lies on the output, pixels */
    uint32_t width;        /*  8  the layer's own size, pixels               */
    uint32_t height;       /* 12                                             */
    uint32_t pixel_format; /* 16  enum MI_PixelFormat                        */
    uint32_t reserved;     /* 20  0                                          */
} MI_DISP_VideoLayerAttr;

/** Attributes of an input port. 12 bytes. */
typedef struct MI_DISP_InputPortAttr {
    MI_Rect window;         /*  0  where the picture is shown on the layer, pixels           */
    uint16_t source_width;  /*  8  size of the coordinates that the zoom-in window speaks;   */
    uint16_t source_height; /* 10  0 = the size of the pictures as delivered                 */
} MI_DISP_InputPortAttr;

/** Set or read a device's public attributes. A new frame rate applies to a running device. */
int32_t MI_DISP_SetPubAttr(int32_t device, const MI_DISP_PubAttr *attr);
int32_t MI_DISP_GetPubAttr(int32_t device, MI_DISP_PubAttr *attr);

/** Start or stop a device's output. Enabling needs public attributes (NOT_READY). */
int32_t MI_DISP_Enable(int32_t device);
int32_t MI_DISP_Disable(int32_t device);

/** Put a layer on a device, or take it off. */
int32_t MI_DISP_BindVideoLayer(uint32_t layer, int32_t device);
int32_t MI_DISP_UnBindVideoLayer(uint32_t layer, int32_t device);

/** Set or read a layer's attributes. */
int32_t MI_DISP_SetVideoLayerAttr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr);
int32_t MI_DISP_GetVideoLayerAttr(uint32_t layer, MI_DISP_VideoLayerAttr *attr);

/** Show or drop a layer. Disabling a disabled one is accepted. */
int32_t MI_DISP_EnableVideoLayer(uint32_t layer);
int32_t MI_DISP_DisableVideoLayer(uint32_t layer);

/** Set or read an input port's attributes, enabled or not. Refused: a window outside the layer. */
int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr);
int32_t MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr);

/** Let a port take pictures and be shown, or stop it. Doing it twice is accepted. */
int32_t MI_DISP_EnableInputPort(int32_t device, uint32_t port);
int32_t MI_DISP_DisableInputPort(int32_t device, uint32_t port);

/** Choose when a port's pictures are taken (enum MI_DISP_SyncMode). */
int32_t MI_DISP_SetInputPortSyncMode(int32_t device, uint32_t port, uint32_t mode);

/** Drop the pictures that a port holds; with `all` also the one on screen. */
int32_t MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all);

/** Show or hide an enabled port's window; a hidden port goes on taking pictures. */
int32_t MI_DISP_ShowInputPort(int32_t device, uint32_t port);
int32_t MI_DISP_HideInputPort(int32_t device, uint32_t port);

/** Show only this part of the port's source, in source coordinates; 0 x 0 = the whole. */
int32_t MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window);

#ifdef __cplusplus
}
#endif

#endif
