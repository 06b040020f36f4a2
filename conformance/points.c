/* points.c - all points, in the order in which a port comes to hold them. */
#include "points.h"

const Point *const *const all_areas[] = {
    sys_points,  vdec_points,         vdec_send_points, disp_points, screen_points,
    bind_points, vdec_picture_points, snap_points,      NULL,
};
