/* pane_geometry.h - where a port's window lies on the output, and which part of its picture it shows. */
#ifndef VBOARD_PANE_GEOMETRY_H
#define VBOARD_PANE_GEOMETRY_H

#include "media/display.h"
#include "mi_disp.h"

namespace vboard
{

/* A window on its layer, in output pixels: whole chroma samples, inside the layer and the output. */
Rect output_window(const MI_Rect &window, const MI_DISP_VideoLayerAttr &layer, int output_width,
                   int output_height);

/*
 * The zoom window (0 x 0 = the whole), in source coordinates, as a part of a delivered picture of
 * `width` x `height`: begins on a chroma sample, holds at least one.
 */
Rect picture_crop(const MI_Rect &zoom, const MI_DISP_InputPortAttr &attr, int width, int height);

bool overlap(const Rect &a, const Rect &b);

} // namespace vboard

#endif
