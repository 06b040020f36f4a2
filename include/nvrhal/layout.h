/*
 * layout.h - layouts, zoom and picture-in-picture.
 */
#ifndef NVRHAL_LAYOUT_H
#define NVRHAL_LAYOUT_H

#include <pthread.h>
#include <stdint.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ======================================================================================= */
/* Live view: layouts                                                                       */
/* ======================================================================================= */

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
    uint32_t chn[16];         /*   0  chn[i] = i for a channel with a pane, else 0   */
    uint32_t vo_dev;          /*  64  display device it was applied to               */
    uint32_t chn_num;         /*  68  N at the time                                  */
    uint32_t bind_status[16]; /*  72  bind_status of each channel's pane, 0 = none   */
} BindArgs;

/** A pane's rectangle as stored, output pixels. 16 bytes. */
typedef struct PaneRect {
    uint32_t x, y, w, h;
} PaneRect;

/** Further record of the interface; no operation reads or writes it. */
extern NVRHAL_API BindArgs global_bindarg;

/**
 * Last layout of display devices 0, 1 and 2; device -1's copy stands directly before it, for code
 * that reaches the library's own object (built with -fPIC, or through dlsym).
 */
extern NVRHAL_API BindArgs old_global_bindarg[3];

/** Pane rectangles: bank 0 further devices, bank 1 device 0, bank 2 device -1, bank 3 unused. */
extern NVRHAL_API PaneRect set_bind_para[4][16];

/**
 * Guards the showing of display ports and the saved layouts. Never nested. A layout that fails
 * while it shows ports returns with it held.
 */
extern NVRHAL_API pthread_mutex_t global_bindargLock;

/**
 * Apply a layout to the main display. All N live channels are taken off the screen; then each
 * pane's decoder is flushed and set to deliver the smaller of the size it was created with and the
 * pane's, width and height each for itself, and shown. A single pane shows its channel at the
 * decoder's full size. Takes about 100 ms a pane. On display devices 1 and 2 everything goes dark
 * and the result is 0.
 * A single pane first flushes the channel of the single pane before it: after a single pane of a
 * channel that does not exist (which itself gives 0 and a dark screen) every single pane fails with
 * the decoder's code, until a layout of several panes. A single pane belongs at 0,0: elsewhere its
 * full size leaves the output, which counts as a display failure.
 * Even a refused call leaves no channel marked as shown: live frames are dropped until a layout
 * succeeds. When the display fails while panes are shown, global_bindargLock stays held and the
 * next layout waits for ever.
 * @param panes  count panes; several of one channel: the last wins
 * @param count  1 to N
 * @return 0 (also when device -1 is current: no port or decoder is touched); -1 for a bad count, null
 *         panes or a display failure; or the decoder's code when the flush of a single pane failed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_change_display_format(const DispAttrib *panes, int32_t count);

/**
 * Apply a layout to the secondary output; only when device -1 is current, else nothing is done and
 * the result is 0. All N ports are hidden, then each pane's port is placed, its source size left as
 * it was, and shown; no decoder is touched. A single pane also sets zoom_channel and zoom_arg_pre.
 * A display failure leaves global_bindargLock held.
 * @param panes  count panes; several of one channel: the last wins   @param count  1 to N
 * @return 0; -1 for a bad count, null panes or a display failure. Thread: UI thread.
 */
NVRHAL_API int32_t ext_change_display_slave(const DispAttrib *panes, int32_t count);

/** Flush one decoder: destroy and create it with the same attributes and output size, bound to the port of
 * its number of device 0. @return 0, or the platform's code: the channel is then stopped, or absent. Thread:
 * UI thread. */
NVRHAL_API int32_t re_create_vdec(uint32_t channel);

/* ======================================================================================= */
/* Zoom and picture-in-picture                                                              */
/* ======================================================================================= */

/**
 * Show a part of zoom_channel's picture enlarged to its whole pane, on device 0. The application
 * first applies a single-pane layout and sets vo_for_ezoom.
 * @param cropDivp   only printed
 * @param x,y,w,h    the part, pixels of the decoded picture (of decoder channel 0's largest size);
 *                   mapped to the port's source and rounded down to even. w or h of 0 = the whole.
 * @return 0, or 1. A platform that refuses the window is asked once more and the result is 1
 *         whatever it says then. Thread: UI thread.
 */
NVRHAL_API int32_t ext_vidoe_image_zoom(int32_t cropDivp, int32_t x, int32_t y, int32_t w, int32_t h);

/**
 * Place panes of the current device without touching decoders: all ports are hidden, then pane i
 * places and shows port i, whatever its channel field says. Rectangles are not rounded.
 * @param count  panes; below 1 hides everything
 * @return 0 or -1. Nothing is undone after a failure. Thread: UI thread.
 */
NVRHAL_API int32_t ext_change_zoom_format(const DispAttrib *panes, int32_t count);

/**
 * The same for the secondary output, as it is: the panes are only stored, rounded to even, the last
 * pane's port is hidden, and the port whose number is `count` is shown at the rectangle that an
 * earlier layout left behind the last one stored.
 * @param count  at most 31; below 1 stores nothing and uses channel and rectangle 0
 * @return 0 or -1. Thread: UI thread.
 */
NVRHAL_API int32_t ext_change_zoom_slave(const DispAttrib *panes, int32_t count);

/**
 * Put video layer 1 over the main picture of device 0. The layer carries the ports of display device
 * 1: enable one with vo_start_chn(1, ..., 1) and feed it with vo_bind_vpss(1, 0, channel, 0).
 * @param dev  0 or 1, otherwise unused   @param x,y,w,h  output pixels
 * @return 0 or -1. Thread: UI thread.
 */
NVRHAL_API int32_t local_bind_pip(uint32_t dev, int32_t x, int32_t y, int32_t w, int32_t h);

/** Take video layer 1 off device dev, 0 or 1. @return 0 or -1. Thread: UI thread. */
NVRHAL_API int32_t local_unbind_pip(uint32_t dev);

#ifdef __cplusplus
}
#endif

#endif
