/* disp_settings.h - what points of the display set, and by which numbers. */
#ifndef CONFORMANCE_DISP_SETTINGS_H
#define CONFORMANCE_DISP_SETTINGS_H

#include "scene.h"

enum { DEV = 0, NO_DEVICE = 7, LAYER = 0, NO_LAYER = 99, PORT = 3, NO_PORT = 99 };

static const MI_DISP_PubAttr usual_pub = {0, MI_DISP_INTERFACE_VGA_HDMI, SCREEN_TIMING, 0};
static const MI_DISP_VideoLayerAttr usual_layer = {
    {0, 0, SCREEN_WIDTH, SCREEN_HEIGHT}, SCREEN_WIDTH, SCREEN_HEIGHT, MI_PIXEL_YUV420_LAYER, 0};
static const MI_DISP_InputPortAttr usual_port = {{64, 32, 320, 240}, 352, 288};
static const int32_t devices[] = {-1, 0, 1, 2};

#endif
