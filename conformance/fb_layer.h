/* fb_layer.h - the framebuffer's layer as the library sets it up, and what is painted into it. */
#ifndef CONFORMANCE_FB_LAYER_H
#define CONFORMANCE_FB_LAYER_H

#include "fb_driver.h"
#include "scene.h"

enum {
    OPAQUE = 0x8000,
    RED_1555 = OPAQUE | 0x7C00,
    GREEN_1555 = OPAQUE | 0x03E0,
    BLUE_1555 = OPAQUE | 0x001F
};

/* The node, what it told, and its memory. */
extern int fb;
extern struct fb_var_screeninfo fb_variable;
extern struct fb_fix_screeninfo fb_fixed;
extern uint16_t *fb_pixels;

void need_fb_request(unsigned long request, void *record);
void expect_fb_request(unsigned long request, void *record);

/* With EINVAL. */
void expect_fb_refused(unsigned long request, void *record);

void need_fb_open(void);

/* Open, read, mapped and cleared, the layer over the whole screen in ARGB1555: as the library does it. */
void need_layer(uint32_t width, uint32_t height);

#endif
