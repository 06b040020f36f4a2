/* points.c - all points, in the order in which a port comes to hold them. */
#include "points.h"

#include <stddef.h>

const Point *const *const all_areas[] = {
    board_points,        /* descriptors, sleep, clock, shell           */
    sys_points,          /* the media system and its clock             */
    disp_points,         /* display devices: settings and refusals     */
    disp_layer_points,   /* display layers and ports: the same         */
    vdec_points,         /* decoder channels: life and refusals        */
    vdec_send_points,    /* backlog, time-outs, senders                */
    bind_points,         /* bindings                                   */
    screen_points,       /* what is seen: windows and layers           */
    screen_port_points,  /* what is seen: ports and zoom               */
    hdmi_points,         /* transmitter and plug                       */
    ao_points,           /* sound                                      */
    snap_points,         /* scaler, encoder                            */
    vdec_picture_points, /* decoded pictures, through snapshots        */
    fb_points,           /* graphics layer                             */
    node_points,         /* clock, watchdog, lines, keys, inputs       */
    common_points,       /* refused calls, and threads, of all modules */
    time_points,         /* how long the calls before have taken       */
    NULL,
};
