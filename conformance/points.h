/* points.h - the tables of points, one a file. */
#ifndef CONFORMANCE_POINTS_H
#define CONFORMANCE_POINTS_H

#include "suite.h"

extern const Point *const sys_points[];
extern const Point *const vdec_points[];
extern const Point *const vdec_send_points[];
extern const Point *const vdec_picture_points[];

#endif
