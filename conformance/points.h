/* points.h - the tables of points, one an area. */
#ifndef CONFORMANCE_POINTS_H
#define CONFORMANCE_POINTS_H

#include "suite.h"

extern const Point *const sys_points[];
extern const Point *const vdec_points[];
extern const Point *const vdec_use_points[];
extern const Point *const vdec_send_points[];
extern const Point *const vdec_room_points[];
extern const Point *const vdec_picture_points[];
extern const Point *const vdec_change_points[];
extern const Point *const bind_points[];
extern const Point *const disp_points[];
extern const Point *const disp_layer_points[];
extern const Point *const screen_points[];
extern const Point *const screen_port_points[];
extern const Point *const divp_points[];
extern const Point *const venc_points[];
extern const Point *const divp_picture_points[];
extern const Point *const snap_points[];
extern const Point *const snap_change_points[];
extern const Point *const hdmi_points[];
extern const Point *const hdmi_plug_points[];
extern const Point *const ao_points[];
extern const Point *const ao_send_points[];
extern const Point *const board_points[];
extern const Point *const fb_points[];
extern const Point *const fb_screen_points[];
extern const Point *const node_points[];
extern const Point *const key_points[];
extern const Point *const analog_points[];
extern const Point *const common_points[];
extern const Point *const time_points[];

#endif
