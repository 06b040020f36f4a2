/* soak.c - all kinds of traffic at once, for as long as one likes. */
#include "points.h"
#include "runner.h"
#include "scene.h"

static void soak(void)
{
    not_tried("no soak yet");
}

const Point soak_point = {"soak.all", "MI_VDEC_SendStream", "all kinds of traffic at once", soak, 0};
