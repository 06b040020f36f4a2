/* points.c - all points, in the order in which a port comes to hold them. */
#include "points.h"

const Point *const *const all_areas[] = {
    vdec_points,
    vdec_send_points,
    vdec_picture_points,
    NULL,
};
