/* points.c - all points, in the order in which a port comes to hold them. */
#include "points.h"

#include <stddef.h>

const Point *const *const all_areas[] = {
    board_points,        /* descriptors, sleep, clock, shell           */
    sys_points,          /* the media system and its clock             */
    disp_points,         /* display devices: settings and refusals     */
    disp_layer_points,   /* display layers and ports: the same         */
    vdec_points,         /* decoder channels: creation, destruction    */
    vdec_use_points,     /* decoder channels: start, stop, attributes  */
    vdec_send_points,    /* backlog                                    */
    vdec_room_points,    /* time-outs, senders                         */
    bind_points,         /* bindings                                   */
    screen_points,       /* what is seen: windows and layers           */
    screen_port_points,  /* what is seen: ports and zoom               */
    hdmi_points,         /* transmitter                                */
    hdmi_plug_points,    /* plug                                       */
    ao_points,           /* sound: settings and refusals               */
    ao_send_points,      /* sound: pace and level                      */
    divp_points,         /* scaler                                     */
    venc_points,         /* encoder                                    */
    divp_picture_points, /* pictures of the scaler                     */
    snap_points,         /* pictures of the encoder                    */
    snap_change_points,  /* pictures of the encoder while it changes   */
    vdec_picture_points, /* decoded pictures, through snapshots        */
    vdec_change_points,  /* decoded pictures while a decoder changes   */
    fb_points,           /* graphics layer: settings and memory        */
    fb_screen_points,    /* graphics layer over the video              */
    node_points,         /* clock, watchdog, lines                     */
    key_points,          /* panel, receiver, mouse                     */
    analog_points,       /* analog inputs                              */
    common_points,       /* refused calls, and threads, of all modules */
    time_points,         /* how long the calls before have taken       */
    NULL,
};
