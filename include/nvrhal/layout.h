/*
 * layout.h - layouts, zoom and picture-in-picture.
 */
#ifndef NVRHAL_LAYOUT_H
#define NVRHAL_LAYOUT_H

#include <pthread.h>
#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/limits.h"

#ifdef __cplusplus
extern "C" {
#endif

/** One pane of a layout. 16 bytes. */
typedef struct DispAttrib {
    uint16_t bind_status; /*  0  1, 2 = show; anything else = recorded, hidden       */
    uint16_t channel;     /*  2  live channel, from 0                                */
    uint16_t x, y;        /*  4  top-left corner, output pixels, rounded to even     */
    uint16_t w, h;        /*  8  size, output pixels, rounded to even                */
    uint16_t unread[2];   /* 12  carried, never read                                 */
} DispAttrib;

/** One applied layout. 136 bytes. */
typedef struct BindArgs {
    uint32_t chn[NVRHAL_MAX_CAMERAS];         /*   0  chn[i] = i for a channel with a pane, else 0   */
    uint32_t vo_dev;                          /*  64  display device it was applied to               */
    uint32_t chn_num;                         /*  68  N at the time                                  */
    uint32_t bind_status[NVRHAL_MAX_CAMERAS]; /*  72  bind_status of each channel's pane, 0 = none   */
} BindArgs;

/** A pane's rectangle as stored, output pixels. 16 bytes. */
typedef struct PaneRect {
    uint32_t x, y; /* 0  top-left corner */
    uint32_t w, h; /* 8  size            */
} PaneRect;

/** Further record of the interface; no operation reads or writes it. */
extern NVRHAL_API BindArgs global_bindarg;

/**
 * Last layout of display devices 0, 1 and 2; device -1's copy stands directly before it, for code
 * that reaches the library's own object (built with -fPIC, or through dlsym).
 */
extern NVRHAL_API BindArgs old_global_bindarg[3];

/** Pane rectangles: bank 0 further devices, bank 1 device 0, bank 2 device -1, bank 3 unused. */
extern NVRHAL_API PaneRect set_bind_para[4][NVRHAL_DISPLAY_PORTS];

/**
 * Guards the showing of display ports and the saved layouts. Never nested. A layout that fails
 * while it shows ports returns with it held.
 */
extern NVRHAL_API pthread_mutex_t global_bindargLock;

/**
 * Apply a layout to the main display. All N live channels are taken off the screen; then each pane's
 * decoder is flushed and set to deliver the smaller of the size it was created with and the pane's,
 * width and height each for itself, and shown. A single pane shows its channel at the decoder's full
 * size. Takes about 100 ms a pane. On display devices 1 and 2 everything goes dark and the result is
 * 0; while device -1 is current no port or decoder is touched, and the result is 0.
 *
 * A single pane first flushes the channel of the single pane before it: after a single pane of a
 * channel that does not exist (which itself gives 0 and a dark screen) every single pane fails with
 * the decoder's code, until a layout of several panes. A single pane belongs at 0,0: elsewhere its
 * full size leaves the output, which counts as a display failure.
 *
 * @param panes  count panes; several of one channel: the last wins
 * @param count  1 to N
 * @return 0, -1, or the decoder's code
 * Errors: -1 for a bad count, null panes or a display failure; the decoder's code when the flush of a
 *         single pane failed. Even a refused call leaves no channel marked as shown: live frames are
 *         dropped until a layout succeeds. When the display fails while panes are shown,
 *         global_bindargLock stays held and the next layout waits for ever.
 * Thread: UI thread.
 * Ownership: panes is used during the call only.
 */
NVRHAL_API int32_t ext_change_display_format(const DispAttrib *panes, int32_t count);

/**
 * Apply a layout to the secondary output; only when device -1 is current, else nothing is done and
 * the result is 0. All N ports are hidden, then each pane's port is placed, its source size left as it
 * was, and shown; no decoder is touched. A single pane also sets zoom_channel and zoom_arg_pre.
 * @param panes  count panes; several of one channel: the last wins
 * @param count  1 to N
 * @return 0, or -1
 * Errors: -1 for a bad count, null panes or a display failure, which leaves global_bindargLock held.
 * Thread: UI thread.
 * Ownership: panes is used during the call only.
 */
NVRHAL_API int32_t ext_change_display_slave(const DispAttrib *panes, int32_t count);

/**
 * Flush one decoder: destroy and create it with the same attributes and output size, bound to the
 * port of its number of device 0.
 * @param channel  0 to N - 1
 * @return 0, or the platform's code
 * Errors: the platform's code: the channel is then stopped, or absent.
 * Thread: UI thread.
 */
NVRHAL_API int32_t re_create_vdec(uint32_t channel);

/**
 * Show a part of zoom_channel's picture enlarged to its whole pane, on device 0. The application first
 * applies a single-pane layout and sets vo_for_ezoom.
 *
 * Coordinates are those of a picture of decoder channel 0's largest size, whatever the camera's own
 * size and whatever its channel: after ext_device_init that is the output's size, 1920 x 1080
 * (NVRHAL_ZOOM_WIDTH, NVRHAL_ZOOM_HEIGHT) unless gui_width chose a smaller one. They are mapped to the
 * port's source in proportion and rounded down to even.
 * @param cropDivp  any value; only printed
 * @param x         left edge of the part, 0 to 1919
 * @param y         upper edge, 0 to 1079
 * @param w         its width, 1 to 1920 - x; 0 = the whole
 * @param h         its height, 1 to 1080 - y; 0 = the whole
 * @return 0, or 1
 * Errors: 1 when channel 0's decoder or the port cannot be asked. A platform that refuses the window
 *         is asked once more, and the result is 1 whatever it says then.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_vidoe_image_zoom(int32_t cropDivp, int32_t x, int32_t y, int32_t w, int32_t h);

/**
 * Place panes of the current device without touching decoders: all ports are hidden, then pane i
 * places and shows port i, whatever its channel field says. Rectangles are not rounded.
 * @param panes  count panes
 * @param count  1 to NVRHAL_DISPLAY_PORTS; below 1 hides everything
 * @return 0, or -1
 * Errors: -1 for null panes, or a port that cannot be read or set: nothing is undone. Failures to hide
 *         and show are only printed.
 * Thread: UI thread.
 * Ownership: panes is used during the call only.
 */
NVRHAL_API int32_t ext_change_zoom_format(const DispAttrib *panes, int32_t count);

/**
 * The same for the secondary output, as it is: the panes are only stored, rounded to even; on the current
 * device the last pane's port is hidden, and the port whose number is `count` is shown at the rectangle
 * that an earlier layout left behind the last one stored.
 * @param panes  count panes
 * @param count  1 to 31; below 1 stores nothing and uses channel and rectangle 0
 * @return 0, or -1
 * Errors: -1 for a bad count, null panes or a display failure: nothing is undone.
 * Thread: UI thread.
 * Ownership: panes is used during the call only.
 */
NVRHAL_API int32_t ext_change_zoom_slave(const DispAttrib *panes, int32_t count);

/**
 * Put video layer 1 over the main picture of device 0. The layer carries the ports of display device
 * 1: enable one with vo_start_chn(1, ..., 1) and feed it with vo_bind_vpss(1, 0, channel, 0).
 * @param dev  0 or 1, otherwise unused
 * @param x    left edge, output pixels, 0 to 65535
 * @param y    upper edge, output pixels, 0 to 65535
 * @param w    width, output pixels, 1 to 65535
 * @param h    height, output pixels, 1 to 65535
 * @return 0, or -1
 * Errors: -1 for a bad device or a platform call that failed: it stops there.
 * Thread: UI thread.
 */
NVRHAL_API int32_t local_bind_pip(uint32_t dev, int32_t x, int32_t y, int32_t w, int32_t h);

/**
 * Take video layer 1 off a device.
 * @param dev  0 or 1; local_bind_pip puts the layer on device 0, whatever its dev, so give 0
 * @return 0, or -1
 * Errors: -1 for a bad device or a platform call that failed; the layer is disabled first.
 * Thread: UI thread.
 */
NVRHAL_API int32_t local_unbind_pip(uint32_t dev);

#ifdef __cplusplus
}
#endif

#endif
