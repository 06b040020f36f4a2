/* points_fb_screen.c - the framebuffer: how it lies over the video. */
#include <string.h>

#include "fb_layer.h"
#include "points.h"
#include "record.h"

/* The library's blending: black is transparent, and so is whatever has no alpha bit. */
static void need_gui(void)
{
    uint8_t show = 1;
    FbColorKey key = {1, 0, 0, 0};
    FbGlobalAlpha alpha = {0, 0, 0, 0, {0, 0}, 0};
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    need_fb_request(FBIOSET_SHOW, &show);
    need_fb_request(FBIOSET_COLORKEY, &key);
    need_fb_request(FBIOGET_GLOBAL_ALPHA, &alpha);
    alpha.enabled = alpha.per_pixel = 1;
    alpha.global_alpha = 255;
    alpha.zero_bit_alpha = 0;
    alpha.further_enabled = 1;
    need_fb_request(FBIOSET_GLOBAL_ALPHA, &alpha);
}

static void hide(void)
{
    uint8_t show = 0;
    if (fb >= 0) board_ioctl(fb, FBIOSET_SHOW, &show);
}

static void fill(uint32_t x, uint32_t y, uint32_t width, uint32_t height, uint16_t pixel)
{
    const uint32_t stride = fb_fixed.line_length / 2;
    for (uint32_t row = y; row < y + height; ++row)
        for (uint32_t column = x; column < x + width; ++column)
            fb_pixels[(size_t)row * stride + column] = pixel;
}

/* A display, green under the layer. */
static void need_video(void)
{
    need_display(0);
    need_port(0, 0, 0, 0, SCREEN_WIDTH, SCREEN_HEIGHT);
    need_playing(0, 0, 1, &green_h264);
}

POINT(painted, "fb.show.painted", "board_map board_ioctl",
      "what is painted lies over the video, where it was painted; black lets the video through")
{
    const Spot spots[] = {{110, 110, RED},  {290, 190, RED},   {300, 210, GREEN}, {90, 150, GREEN},
                          {700, 500, BLUE}, {1270, 10, GREEN}, {310, 150, GREEN}};
    need_video();
    need_gui();
    fill(100, 100, 200, 100, RED_1555);
    fill(600, 400, 300, 200, BLUE_1555);
    screen_shows(0, spots, 7, "a red field at 100,100 and a blue one at 600,400 over green");
    hide();
}

POINT(repainted, "fb.map.drawn-at-once", "board_map", "what is painted anew is seen without a request")
{
    const Spot red[] = {{200, 150, RED}}, blue[] = {{200, 150, BLUE}}, green[] = {{200, 150, GREEN}};
    need_video();
    need_gui();
    fill(100, 100, 200, 100, RED_1555);
    screen_shows(0, red, 1, "a red field at 100,100");
    fill(100, 100, 200, 100, BLUE_1555);
    screen_shows(0, blue, 1, "the field is blue");
    fill(100, 100, 200, 100, 0);
    screen_shows(0, green, 1, "the field is gone");
    hide();
}

POINT(hidden, "fb.show.hides", "board_ioctl",
      "a hidden layer is not seen, and is as it was when it is shown again")
{
    uint8_t show = 0;
    const Spot red[] = {{200, 150, RED}}, green[] = {{200, 150, GREEN}};
    need_video();
    need_gui();
    fill(100, 100, 200, 100, RED_1555);
    screen_shows(0, red, 1, "a red field at 100,100");
    expect_fb_request(FBIOSET_SHOW, &show);
    screen_shows(0, green, 1, "the field is hidden");
    show = 1;
    expect_fb_request(FBIOSET_SHOW, &show);
    screen_shows(0, red, 1, "the red field is back");
    hide();
}

POINT(color_key, "fb.color-key.transparent", "board_ioctl",
      "pixels of the colour key let the video through, also what is on the screen already")
{
    FbColorKey key = {1, 255, 0, 0};
    FbGlobalAlpha alpha = {0, 0, 255, 255, {0, 0}, 0};
    const Spot before[] = {{200, 150, RED}, {500, 150, BLUE}},
               after[] = {{200, 150, GREEN}, {500, 150, BLUE}};
    need_video();
    need_gui();
    need_fb_request(FBIOSET_GLOBAL_ALPHA, &alpha);
    fill(100, 100, 200, 100, RED_1555);
    fill(400, 100, 200, 100, BLUE_1555);
    screen_shows(0, before, 2, "a red and a blue field");
    expect_fb_request(FBIOSET_COLORKEY, &key);
    screen_shows(0, after, 2, "the red field is transparent, the blue one is not");
    key.enabled = 0;
    expect_fb_request(FBIOSET_COLORKEY, &key);
    screen_shows(0, before, 2, "a red and a blue field again");
    hide();
}

POINT(alpha_bit, "fb.alpha.per-pixel", "board_ioctl",
      "per pixel, the alpha bit chooses between the two alpha values")
{
    FbColorKey key = {0, 0, 0, 0};
    FbGlobalAlpha alpha = {1, 1, 255, 0, {0, 0}, 1};
    const Spot first[] = {{200, 150, RED}, {500, 150, GREEN}},
               second[] = {{200, 150, GREEN}, {500, 150, RED}};
    need_video();
    need_gui();
    need_fb_request(FBIOSET_COLORKEY, &key);
    expect_fb_request(FBIOSET_GLOBAL_ALPHA, &alpha);
    fill(100, 100, 200, 100, RED_1555);
    fill(400, 100, 200, 100, RED_1555 & ~OPAQUE);
    screen_shows(0, first, 2, "a red field on the left, none on the right");
    alpha.global_alpha = 0;
    alpha.zero_bit_alpha = 255;
    expect_fb_request(FBIOSET_GLOBAL_ALPHA, &alpha);
    screen_shows(0, second, 2, "a red field on the right, none on the left");
    hide();
}

POINT(alpha_global, "fb.alpha.global", "board_ioctl",
      "with one alpha for all, 0 lets everything through and 255 nothing")
{
    FbColorKey key = {0, 0, 0, 0};
    FbGlobalAlpha alpha = {1, 0, 255, 0, {0, 0}, 0};
    const Spot red[] = {{200, 150, RED}}, green[] = {{200, 150, GREEN}};
    need_video();
    need_gui();
    need_fb_request(FBIOSET_COLORKEY, &key);
    fill(100, 100, 200, 100, RED_1555);
    expect_fb_request(FBIOSET_GLOBAL_ALPHA, &alpha);
    screen_shows(0, red, 1, "a red field at 100,100");
    alpha.global_alpha = 0;
    expect_fb_request(FBIOSET_GLOBAL_ALPHA, &alpha);
    screen_shows(0, green, 1, "the field is transparent");
    hide();
}

POINT(placed, "fb.layer.place", "board_ioctl",
      "the layer lies where it was placed, scaled to its destination")
{
    FbDisplayLayer layer = {.x = 200,
                            .y = 100,
                            .dst_width = 400,
                            .dst_height = 200,
                            .display_width = 200,
                            .display_height = 100,
                            .screen_width = SCREEN_WIDTH,
                            .screen_height = SCREEN_HEIGHT,
                            .mask = FB_LAYER_POSITION | FB_LAYER_DST_SIZE | FB_LAYER_DISPLAY_SIZE |
                                    FB_LAYER_SCREEN_SIZE};
    const Spot spots[] = {{190, 200, GREEN}, {210, 110, RED},   {390, 290, RED},  {410, 110, BLUE},
                          {590, 290, BLUE},  {610, 200, GREEN}, {400, 90, GREEN}, {400, 310, GREEN}};
    need_video();
    need_gui();
    expect_fb_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    need_fb_request(FBIOGET_FSCREENINFO, &fb_fixed);
    fill(0, 0, 100, 100, RED_1555);
    fill(100, 0, 100, 100, BLUE_1555);
    screen_shows(0, spots, 8, "a field of 400 x 200 at 200,100, its left half red, its right half blue");
    hide();
}

POINT(panned, "fb.pan.second-page", "board_ioctl",
      "a pan shows the part of the memory that begins at its offset")
{
    const Spot first[] = {{200, 150, RED}}, second[] = {{200, 150, BLUE}};
    need_video();
    need_gui();
    if (fb_variable.yres_virtual < 2 * fb_variable.yres) not_tried("the memory holds a single page");
    fill(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT, RED_1555);
    fill(0, SCREEN_HEIGHT, SCREEN_WIDTH, SCREEN_HEIGHT, BLUE_1555);
    screen_shows(0, first, 1, "the screen is red");
    fb_variable.yoffset = SCREEN_HEIGHT;
    expect_fb_request(FBIOPAN_DISPLAY, &fb_variable);
    screen_shows(0, second, 1, "the screen is blue");
    fb_variable.yoffset = 0;
    expect_fb_request(FBIOPAN_DISPLAY, &fb_variable);
    screen_shows(0, first, 1, "the screen is red again");
    hide();
}

POINT_WITH(FRESH, hidden_at_first, "fb.show.hidden-at-first", "board_ioctl",
           "the layer is hidden until it is shown, whatever its memory holds")
{
    const Spot green[] = {{200, 150, GREEN}, {1000, 600, GREEN}};
    need_video();
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    fill(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT, RED_1555);
    screen_shows(0, green, 2, "the screen is green");
    screen_keeps(0, green, 2, "the screen stays green");
}

POINT(above_all, "fb.show.above-layer-one", "board_ioctl MI_DISP_EnableVideoLayer",
      "the framebuffer lies over the picture in picture, too")
{
    const MI_DISP_VideoLayerAttr attr = {{600, 300, 320, 200}, 320, 200, MI_PIXEL_YUV420_LAYER, 0};
    const Spot spots[] = {{650, 350, RED}, {850, 450, BLUE}, {100, 100, GREEN}};
    need_video();
    NEED(MI_DISP_BindVideoLayer(1, 0));
    NEED(MI_DISP_SetVideoLayerAttr(1, &attr));
    NEED(MI_DISP_EnableVideoLayer(1));
    need_port(1, 0, 0, 0, 320, 200);
    need_playing(1, 0, 2, &blue_h264);
    need_gui();
    fill(600, 300, 160, 100, RED_1555);
    screen_shows(0, spots, 3, "a blue field at 600,300 whose upper left quarter is red, over green");
    hide();
}

const Point *const fb_screen_points[] = {
    &point_painted,         &point_repainted,    &point_hidden, &point_color_key,
    &point_alpha_bit,       &point_alpha_global, &point_placed, &point_panned,
    &point_hidden_at_first, &point_above_all,    NULL,
};
