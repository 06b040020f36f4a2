/* fb_layer.c - set-ups of the framebuffer. See fb_layer.h. */
#include "fb_layer.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>

#include "record.h"

int fb = -1;
struct fb_var_screeninfo fb_variable;
struct fb_fix_screeninfo fb_fixed;
uint16_t *fb_pixels;

void need_fb_request(unsigned long request, void *record)
{
    if (board_ioctl(fb, request, record) < 0) blocked("could not be set up: %s", last_call_text());
}

void expect_fb_request(unsigned long request, void *record)
{
    HOLDS(board_ioctl(fb, request, record) >= 0, "%s, expected success", last_call_text());
}

void expect_fb_refused(unsigned long request, void *record)
{
    const int result = board_ioctl(fb, request, record);
    HOLDS(result == -1 && errno == EINVAL, "%s, errno %d, expected -1 and EINVAL", last_call_text(), errno);
}

void need_fb_open(void)
{
    fb = board_open(FB_NODE, O_RDWR);
    if (fb < 0) blocked("could not be set up: %s", last_call_text());
}

void need_layer(uint32_t width, uint32_t height)
{
    FbDisplayLayer layer = {.dst_width = width,
                            .dst_height = height,
                            .display_width = width,
                            .display_height = height,
                            .mask = FB_LAYER_POSITION | FB_LAYER_DST_SIZE | FB_LAYER_DISPLAY_SIZE |
                                    FB_LAYER_SCREEN_SIZE};
    need_fb_open();
    need_fb_request(FBIOGET_VSCREENINFO, &fb_variable);
    need_fb_request(FBIOGET_FSCREENINFO, &fb_fixed);
    fb_pixels = board_map(fb, fb_fixed.smem_len);
    if (fb_pixels == NULL) blocked("could not be set up: %s", last_call_text());
    memset(fb_pixels, 0, (size_t)width * height * 2);
    need_fb_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    need_fb_request(FBIOGET_DISPLAYLAYER_ATTRIBUTES, &layer);
    layer.color_format = FB_COLOR_ARGB1555;
    layer.mask = FB_LAYER_COLOR_FORMAT;
    need_fb_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    need_fb_request(FBIOGET_VSCREENINFO, &fb_variable);
    need_fb_request(FBIOGET_FSCREENINFO, &fb_fixed);
    fb_variable.yoffset = 0;
    need_fb_request(FBIOPAN_DISPLAY, &fb_variable);
}
