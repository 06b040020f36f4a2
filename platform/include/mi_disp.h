/*
 * mi_disp.h - display devices, video layers and their input ports.
 *
 * Headings of the comments: see mi_common.h. Devices are 0, the main output; 2, a further output; -1, the
 * secondary output; and 1, whose ports lie on the picture in picture's layer. A device has
 * MI_DISP_INPUT_PORTS ports. Layer 0 carries the ports of device 0, layer 1 the picture in picture over
 * it, layer 3 those of device 2. Devices, layers and ports are always there; nothing creates them.
 *
 *     Bring-up: SetPubAttr, Enable | BindVideoLayer, SetVideoLayerAttr, EnableVideoLayer | for each
 *     port SetInputPortAttr, EnableInputPort, SetInputPortSyncMode, ClearInputPortBuffer
 *
 * A picture is seen when device, layer and port are enabled, the layer is on the device, the port is
 * not hidden and its window is not empty.
 *
 * Output timing values, with width x height and pictures per second. The library starts with one of
 * those marked *:
 *
 *      0  720 x 576 25     10  1920 x 1080 24     16* 1920 x 1080 60     23* 1280 x 800 60
 *      1  720 x 480 30     11  1920 x 1080 25     18   800 x 600 60      24* 1680 x 1050 60
 *      6  720 x 480 60     12  1920 x 1080 30     19* 1024 x 768 60      26* 1600 x 1200 60
 *      7  720 x 576 50     13  1920 x 1080 50     20* 1280 x 1024 60     27  1920 x 1200 60
 *      8* 1280 x 720 50    14  1920 x 1080 60     21* 1366 x 768 60      28  2560 x 1440 30
 *      9* 1280 x 720 60    15* 1920 x 1080 50     22* 1440 x 900 60      30* 3840 x 2160 30
 */
#ifndef MI_DISP_H
#define MI_DISP_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Input ports of a device, and layers of the display. */
enum {
    MI_DISP_INPUT_PORTS = 16,
    MI_DISP_LAYERS = 4,
};

/** Where a device's picture goes. */
enum MI_DISP_Interface {
    MI_DISP_INTERFACE_DEFAULT = 2,  /* the board's usual connector */
    MI_DISP_INTERFACE_HDMI = 5,     /* HDMI only                   */
    MI_DISP_INTERFACE_VGA_HDMI = 7, /* VGA and HDMI together       */
};

/** When a port takes a picture from those that wait. */
enum MI_DISP_SyncMode {
    E_MI_DISP_SYNC_MODE_FREE_RUN = 1, /* the newest picture, whatever its time stamp */
};

/** Public attributes of a device. 16 bytes. */
typedef struct MI_DISP_PubAttr {
    uint32_t background;     /*  0  0x00VVYYUU where no window lies; 0 = black */
    uint32_t interface_type; /*  4  enum MI_DISP_Interface                     */
    uint32_t timing;         /*  8  output timing value, as above              */
    uint32_t frame_rate;     /* 12  frames per second; 0 = the timing's own    */
} MI_DISP_PubAttr;

/** Attributes of a video layer. 24 bytes. */
typedef struct MI_DISP_VideoLayerAttr {
    MI_Rect window;        /*  0  where the layer lies on the output, pixels */
    uint32_t width;        /*  8  the layer's own size, pixels               */
    uint32_t height;       /* 12  pixels                                     */
    uint32_t pixel_format; /* 16  enum MI_PixelFormat                        */
    uint32_t reserved;     /* 20  0                                          */
} MI_DISP_VideoLayerAttr;

/** Attributes of an input port. 12 bytes. */
typedef struct MI_DISP_InputPortAttr {
    MI_Rect window;         /*  0  where the picture is shown on the layer, pixels; 0 x 0 = nowhere */
    uint16_t source_width;  /*  8  size of the coordinates that the zoom-in window speaks, pixels;  */
    uint16_t source_height; /* 10  0 = the size of the pictures as delivered                        */
} MI_DISP_InputPortAttr;

/**
 * Set a device's public attributes.
 *
 * @param device  -1 to 2
 * @param attr    what is wanted; a new frame rate applies to a running device with its next refresh
 * @return 0, or a code
 * Order: before MI_DISP_Enable. An enabled device takes everything but another timing.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_DEVICE; UNSUPPORTED: a timing that cannot be had; BAD_VALUE: more than 240 frames per
 *   second; NOT_PERMITTED: another timing while the device is enabled.
 * Failure: printed. Start-up or the GUI's start ends with -1; a change of rate during playback is given
 *   up.
 */
int32_t MI_DISP_SetPubAttr(int32_t device, const MI_DISP_PubAttr *attr);

/**
 * Read a device's public attributes, as they were set.
 *
 * @param device  -1 to 2
 * @param attr    filled
 * @return 0, or a code
 * Order: after MI_DISP_SetPubAttr.
 * Thread: any.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_DEVICE; NOT_READY: nothing was set yet.
 * Failure: a negative code is printed, and attributes of zeros are used instead; the double rate of a
 *   playback then fails.
 */
int32_t MI_DISP_GetPubAttr(int32_t device, MI_DISP_PubAttr *attr);

/**
 * Start a device's output: its background, and what lies on it, goes out from now on.
 *
 * @param device  -1 to 2
 * @return 0, or a code
 * Order: after MI_DISP_SetPubAttr. Enabling an enabled device is accepted.
 * Thread: any.
 * Time: 500 ms at most: the output's clock has to settle.
 * Errors: BAD_DEVICE; NOT_READY: no public attributes.
 * Failure: printed; start-up or the GUI's start ends with -1.
 */
int32_t MI_DISP_Enable(int32_t device);

/**
 * Stop a device's output. Attributes, layers and ports keep their settings and pictures.
 *
 * @param device  -1 to 2
 * @return 0, or a code
 * Order: none. Disabling a disabled device is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_DEVICE.
 * Failure: printed; the GUI's start ends with -1.
 */
int32_t MI_DISP_Disable(int32_t device);

/**
 * Put a layer on a device: the ports of the device then lie on it. Layer 1, the picture in picture,
 * carries the ports of device 1 wherever it is put.
 *
 * @param layer   0 to MI_DISP_LAYERS - 1
 * @param device  -1 to 2
 * @return 0, or a code
 * Order: before or after the device is enabled; the layer is on no device.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such layer; BAD_DEVICE; EXISTS: it is on a device.
 * Failure: printed. Start-up ends with -1, the picture in picture does not appear.
 */
int32_t MI_DISP_BindVideoLayer(uint32_t layer, int32_t device);

/**
 * Take a layer off its device.
 *
 * @param layer   0 to MI_DISP_LAYERS - 1
 * @param device  the one that it is on
 * @return 0, or a code
 * Order: after MI_DISP_DisableVideoLayer.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such layer; BAD_DEVICE; ABSENT: it is not on that device; NOT_PERMITTED: it is
 *   enabled.
 * Failure: printed; local_unbind_pip returns -1.
 */
int32_t MI_DISP_UnBindVideoLayer(uint32_t layer, int32_t device);

/**
 * Set a layer's attributes, enabled or not.
 *
 * @param layer  0 to MI_DISP_LAYERS - 1
 * @param attr   window and size of 1 x 1 to 4096 x 4096 pixels; the ports' pictures are scaled with the
 *               layer when the two differ
 * @return 0, or a code
 * Order: before MI_DISP_EnableVideoLayer; may be repeated.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such layer; UNSUPPORTED: the pixel format; BAD_VALUE: an empty window or size,
 *   or a window that leaves the output of the device that the layer is on.
 * Failure: printed. Start-up or the GUI's start ends with -1, the picture in picture does not appear.
 */
int32_t MI_DISP_SetVideoLayerAttr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr);

/**
 * Read a layer's attributes, as they were set.
 *
 * @param layer  0 to MI_DISP_LAYERS - 1
 * @param attr   filled; zeros when nothing was set yet
 * @return 0, or a code
 * Order: none.
 * Thread: any.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such layer.
 * Failure: printed. Start-up ends with -1, the picture in picture does not appear.
 */
int32_t MI_DISP_GetVideoLayerAttr(uint32_t layer, MI_DISP_VideoLayerAttr *attr);

/**
 * Show a layer on its device.
 *
 * @param layer  0 to MI_DISP_LAYERS - 1
 * @return 0, or a code
 * Order: after MI_DISP_SetVideoLayerAttr. Enabling an enabled one is accepted.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such layer; NOT_READY: no attributes.
 * Failure: printed. Start-up or the GUI's start ends with -1, the picture in picture does not appear.
 */
int32_t MI_DISP_EnableVideoLayer(uint32_t layer);

/**
 * Take a layer off the screen; its ports keep their pictures and go on taking new ones.
 *
 * @param layer  0 to MI_DISP_LAYERS - 1
 * @return 0, or a code
 * Order: none. Disabling a disabled one is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_CHANNEL: no such layer.
 * Failure: printed. The GUI's start ends with -1, the picture in picture stays.
 */
int32_t MI_DISP_DisableVideoLayer(uint32_t layer);

/**
 * Set an input port's window and source size, enabled or not; it takes effect with the next refresh, for
 * the picture on screen too.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @param attr    a window within the layer; an odd corner or size may be rounded down to even
 * @return 0, or a code
 * Order: none; before or after the port is enabled. A zoom-in window that was set stays.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port; BAD_VALUE: the window leaves the layer.
 * Failure: printed. Start-up ends with -1. A layout ends with -1 and keeps its lock, so that the
 *   application's next layout waits for ever: refuse a window for its place alone.
 */
int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr);

/**
 * Read an input port's attributes, as they were set.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @param attr    filled; zeros when nothing was set yet
 * @return 0, or a code
 * Order: none; enabled or not.
 * Thread: any.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: as that of MI_DISP_SetInputPortAttr; a zoom fails.
 */
int32_t MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr);

/**
 * Let a port take pictures and be shown. One that was hidden stays hidden.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @return 0, or a code
 * Order: before or after the port is bound. Enabling an enabled one is accepted.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: printed. Start-up ends with -1. A layout ends with -1 and keeps its lock.
 */
int32_t MI_DISP_EnableInputPort(int32_t device, uint32_t port);

/**
 * Take a port off the screen and drop every picture that it holds; pictures that come are dropped. Its
 * attributes and its binding stay. Enabled again it shows nothing before a new picture has come.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @return 0, or a code
 * Order: none. Disabling a disabled one is accepted.
 * Thread: any.
 * Time: 100 ms at most, two refreshes.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: printed, and ignored.
 */
int32_t MI_DISP_DisableInputPort(int32_t device, uint32_t port);

/**
 * Choose when a port's pictures are taken.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @param mode    enum MI_DISP_SyncMode; the library gives E_MI_DISP_SYNC_MODE_FREE_RUN
 * @return 0, or a code
 * Order: none; enabled or not.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port; UNSUPPORTED: another mode.
 * Failure: printed; start-up ends with -1.
 */
int32_t MI_DISP_SetInputPortSyncMode(int32_t device, uint32_t port, uint32_t mode);

/**
 * Drop the pictures that a port holds.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @param all     0 = those that wait, else also the one on screen: the background is seen until the next
 *                picture comes
 * @return 0, or a code
 * Order: none; enabled or not, bound or not.
 * Thread: any.
 * Time: 100 ms at most, two refreshes.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: at start-up printed, and start-up ends with -1; later printed at most, and ignored.
 */
int32_t MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all);

/**
 * Show the window of a port that was hidden; its newest picture is seen at once.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @return 0, or a code
 * Order: none. A port begins shown; showing a shown one is accepted.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: printed. A layout of the secondary output ends with -1 and keeps its lock; else it is ignored.
 */
int32_t MI_DISP_ShowInputPort(int32_t device, uint32_t port);

/**
 * Hide the window of a port. An enabled one goes on taking pictures.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @return 0, or a code
 * Order: none. Hiding a hidden one is accepted.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port.
 * Failure: printed. A layout of the secondary output ends with -1 and keeps its lock; else it is ignored.
 */
int32_t MI_DISP_HideInputPort(int32_t device, uint32_t port);

/**
 * Show only a part of the port's source, on its whole window.
 *
 * @param device  -1 to 2
 * @param port    0 to MI_DISP_INPUT_PORTS - 1
 * @param window  in the coordinates of the port's source size, mapped in proportion onto the pictures as
 *                they come; 0 x 0 = the whole
 * @return 0, or a code
 * Order: after MI_DISP_SetInputPortAttr, which gives the source size; may be repeated while pictures come.
 * Thread: any.
 * Memory: `window` is the caller's, and copied.
 * Time: at once: a zoom is moved with the mouse.
 * Errors: BAD_DEVICE; BAD_CHANNEL: no such port; BAD_VALUE: the window leaves the source.
 * Failure: printed. It is tried a second time, and the zoom returns 1 whatever that gives.
 */
int32_t MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window);

#ifdef __cplusplus
}
#endif

#endif
