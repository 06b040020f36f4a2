/* points_fb.c - the framebuffer: what it tells, its memory, and how it lies over the video. */
#include <errno.h>
#include <fcntl.h>
#include <string.h>

#include "fb_driver.h"
#include "points.h"
#include "record.h"
#include "scene.h"

enum {
    OPAQUE = 0x8000,
    RED_1555 = OPAQUE | 0x7C00,
    GREEN_1555 = OPAQUE | 0x03E0,
    BLUE_1555 = OPAQUE | 0x001F
};

static int fb = -1;
static struct fb_var_screeninfo variable;
static struct fb_fix_screeninfo fixed;
static uint16_t *pixels;

static void need_request(unsigned long request, void *record)
{
    if (board_ioctl(fb, request, record) < 0) blocked("could not be set up: %s", last_call_text());
}

static void expect_request(unsigned long request, void *record)
{
    HOLDS(board_ioctl(fb, request, record) >= 0, "%s, expected success", last_call_text());
}

static void expect_refused(unsigned long request, void *record)
{
    const int result = board_ioctl(fb, request, record);
    HOLDS(result == -1 && errno == EINVAL, "%s, errno %d, expected -1 and EINVAL", last_call_text(), errno);
}

static void need_open(void)
{
    fb = board_open(FB_NODE, O_RDWR);
    if (fb < 0) blocked("could not be set up: %s", last_call_text());
}

/* Open, read, mapped and cleared, the layer over the whole screen in ARGB1555: as the library does it. */
static void need_layer(uint32_t width, uint32_t height)
{
    FbDisplayLayer layer = {.dst_width = width,
                            .dst_height = height,
                            .display_width = width,
                            .display_height = height,
                            .mask = FB_LAYER_POSITION | FB_LAYER_DST_SIZE | FB_LAYER_DISPLAY_SIZE |
                                    FB_LAYER_SCREEN_SIZE};
    need_open();
    need_request(FBIOGET_VSCREENINFO, &variable);
    need_request(FBIOGET_FSCREENINFO, &fixed);
    pixels = board_map(fb, fixed.smem_len);
    if (pixels == NULL) blocked("could not be set up: %s", last_call_text());
    memset(pixels, 0, (size_t)width * height * 2);
    need_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    need_request(FBIOGET_DISPLAYLAYER_ATTRIBUTES, &layer);
    layer.color_format = FB_COLOR_ARGB1555;
    layer.mask = FB_LAYER_COLOR_FORMAT;
    need_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    need_request(FBIOGET_VSCREENINFO, &variable);
    need_request(FBIOGET_FSCREENINFO, &fixed);
    variable.yoffset = 0;
    need_request(FBIOPAN_DISPLAY, &variable);
}

/* The library's blending: black is transparent, and so is whatever has no alpha bit. */
static void need_gui(void)
{
    uint8_t show = 1;
    FbColorKey key = {1, 0, 0, 0};
    FbGlobalAlpha alpha = {0, 0, 0, 0, {0, 0}, 0};
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    need_request(FBIOSET_SHOW, &show);
    need_request(FBIOSET_COLORKEY, &key);
    need_request(FBIOGET_GLOBAL_ALPHA, &alpha);
    alpha.enabled = alpha.per_pixel = 1;
    alpha.global_alpha = 255;
    alpha.zero_bit_alpha = 0;
    alpha.further_enabled = 1;
    need_request(FBIOSET_GLOBAL_ALPHA, &alpha);
}

static void hide(void)
{
    uint8_t show = 0;
    if (fb >= 0) board_ioctl(fb, FBIOSET_SHOW, &show);
}

static void fill(uint32_t x, uint32_t y, uint32_t width, uint32_t height, uint16_t pixel)
{
    const uint32_t stride = fixed.line_length / 2;
    for (uint32_t row = y; row < y + height; ++row)
        for (uint32_t column = x; column < x + width; ++column)
            pixels[(size_t)row * stride + column] = pixel;
}

/* A display, green under the layer. */
static void need_video(void)
{
    need_display(0);
    need_port(0, 0, 0, 0, SCREEN_WIDTH, SCREEN_HEIGHT);
    need_playing(0, 0, 1, &green_h264);
}

POINT(info, "fb.info.plausible", "board_ioctl",
      "the screen has a size and 16 bits or more, and its rows fit the memory that is told")
{
    need_open();
    memset(&variable, 0xEE, sizeof variable);
    memset(&fixed, 0xEE, sizeof fixed);
    expect_request(FBIOGET_VSCREENINFO, &variable);
    expect_request(FBIOGET_FSCREENINFO, &fixed);
    HOLDS(variable.xres >= 64 && variable.xres <= 8192 && variable.yres >= 64 && variable.yres <= 8192,
          "the screen is %u x %u", variable.xres, variable.yres);
    HOLDS(variable.bits_per_pixel >= 16 && variable.bits_per_pixel <= 32, "%u bits a pixel",
          variable.bits_per_pixel);
    HOLDS(fixed.line_length >= variable.xres * variable.bits_per_pixel / 8, "rows of %u bytes for %u pixels",
          fixed.line_length, variable.xres);
    HOLDS((uint64_t)fixed.line_length * variable.yres <= fixed.smem_len,
          "%u bytes of memory for %u rows of %u bytes", fixed.smem_len, variable.yres, fixed.line_length);
}

POINT(layer_size, "fb.layer.size", "board_ioctl",
      "a new display size is the screen's size: xres, yres and line_length follow it")
{
    static const uint32_t sizes[][2] = {{1280, 720}, {800, 600}, {1920, 1080}};
    for (int i = 0; i < 3; ++i) {
        need_layer(sizes[i][0], sizes[i][1]);
        HOLDS(variable.xres == sizes[i][0] && variable.yres == sizes[i][1],
              "the layer is %u x %u, the screen %u x %u", sizes[i][0], sizes[i][1], variable.xres,
              variable.yres);
        HOLDS(variable.bits_per_pixel == 16, "ARGB1555 has %u bits a pixel", variable.bits_per_pixel);
        HOLDS(fixed.line_length >= 2 * sizes[i][0], "rows of %u bytes for %u pixels", fixed.line_length,
              sizes[i][0]);
        seam_undo_board();
    }
}

POINT(layer_kept, "fb.layer.as-set", "board_ioctl",
      "the layer's place, sizes and format are told as they were set")
{
    FbDisplayLayer read;
    FbDisplayLayer layer = {.x = 16,
                            .y = 32,
                            .dst_width = 640,
                            .dst_height = 360,
                            .display_width = 320,
                            .display_height = 200,
                            .screen_width = 1280,
                            .screen_height = 720,
                            .mask = FB_LAYER_POSITION | FB_LAYER_DST_SIZE | FB_LAYER_DISPLAY_SIZE |
                                    FB_LAYER_SCREEN_SIZE};
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    expect_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    memset(&read, 0xEE, sizeof read);
    expect_request(FBIOGET_DISPLAYLAYER_ATTRIBUTES, &read);
    HOLDS(read.x == 16 && read.y == 32, "set to 16,32, told as %u,%u", read.x, read.y);
    HOLDS(read.dst_width == 640 && read.dst_height == 360, "a destination of 640 x 360 is told as %u x %u",
          read.dst_width, read.dst_height);
    HOLDS(read.display_width == 320 && read.display_height == 200,
          "a display size of 320 x 200 is told as %u x %u", read.display_width, read.display_height);
    HOLDS(read.screen_width == 1280 && read.screen_height == 720,
          "a screen size of 1280 x 720 is told as %u x %u", read.screen_width, read.screen_height);
    HOLDS(read.color_format == FB_COLOR_ARGB1555, "the format is told as %u, expected %d", read.color_format,
          FB_COLOR_ARGB1555);
}

POINT(layer_mask, "fb.layer.mask", "board_ioctl", "only what the mask names is applied")
{
    FbDisplayLayer read;
    FbDisplayLayer layer = {.x = 100,
                            .y = 50,
                            .dst_width = 1,
                            .dst_height = 1,
                            .display_width = 1,
                            .display_height = 1,
                            .color_format = 77,
                            .mask = FB_LAYER_POSITION};
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    expect_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    expect_request(FBIOGET_DISPLAYLAYER_ATTRIBUTES, &read);
    HOLDS(read.x == 100 && read.y == 50, "the position is %u,%u, expected 100,50", read.x, read.y);
    HOLDS(read.dst_width == SCREEN_WIDTH && read.display_height == SCREEN_HEIGHT &&
              read.color_format == FB_COLOR_ARGB1555,
          "the mask named the position alone, and the layer is %u x %u of %u x %u, format %u", read.dst_width,
          read.dst_height, read.display_width, read.display_height, read.color_format);
}

POINT(layer_bad, "fb.layer.bad-values", "board_ioctl",
      "a format that cannot be had, a size beyond the memory and a destination of nothing give EINVAL")
{
    FbDisplayLayer layer = {.color_format = 77, .mask = FB_LAYER_COLOR_FORMAT};
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    expect_refused(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    layer = (FbDisplayLayer){.display_width = 60000, .display_height = 60000, .mask = FB_LAYER_DISPLAY_SIZE};
    expect_refused(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    layer = (FbDisplayLayer){.dst_width = 0, .dst_height = 10, .mask = FB_LAYER_DST_SIZE};
    expect_refused(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    expect_request(FBIOGET_VSCREENINFO, &variable);
    HOLDS(variable.xres == SCREEN_WIDTH, "a refused size is in force: %u x %u", variable.xres, variable.yres);
}

POINT(key_kept, "fb.color-key.as-set", "board_ioctl", "the colour key is told as it was set")
{
    const FbColorKey set = {1, 255, 8, 16};
    FbColorKey key = set;
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    expect_request(FBIOSET_COLORKEY, &key);
    memset(&key, 0xEE, sizeof key);
    expect_request(FBIOGET_COLORKEY, &key);
    HOLDS(memcmp(&key, &set, sizeof key) == 0, "set to 1, 255, 8, 16, told as %u, %u, %u, %u", key.enabled,
          key.red, key.green, key.blue);
}

POINT(alpha_kept, "fb.alpha.as-set", "board_ioctl",
      "the blending is told as it was set, the driver's own fields too")
{
    FbGlobalAlpha alpha = {0, 0, 0, 0, {0, 0}, 0}, read;
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    expect_request(FBIOGET_GLOBAL_ALPHA, &alpha);
    alpha.enabled = 1;
    alpha.per_pixel = 0;
    alpha.global_alpha = 200;
    alpha.zero_bit_alpha = 33;
    expect_request(FBIOSET_GLOBAL_ALPHA, &alpha);
    memset(&read, 0xEE, sizeof read);
    expect_request(FBIOGET_GLOBAL_ALPHA, &read);
    HOLDS(memcmp(&read, &alpha, sizeof read) == 0, "set to 1, 0, 200, 33, told as %u, %u, %u, %u",
          read.enabled, read.per_pixel, read.global_alpha, read.zero_bit_alpha);
}

POINT(pan_bad, "fb.pan.outside", "board_ioctl", "a view that leaves the virtual screen gives EINVAL")
{
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    variable.yoffset = variable.yres_virtual - variable.yres + 1;
    expect_refused(FBIOPAN_DISPLAY, &variable);
    variable.yoffset = 0;
    expect_request(FBIOPAN_DISPLAY, &variable);
}

/* -------------------------------------------------------------------------------------- memory --- */

POINT(map_whole, "fb.map.whole", "board_map",
      "all bytes of the memory that is told can be written and read, from the first to the last")
{
    need_open();
    need_request(FBIOGET_FSCREENINFO, &fixed);
    volatile uint8_t *bytes = board_map(fb, fixed.smem_len);
    HOLDS(bytes != NULL, "%s, expected an address", last_call_text());
    for (size_t at = 0; at < fixed.smem_len; at += 4096)
        bytes[at] = (uint8_t)(at / 4096 * 7 + 1);
    bytes[fixed.smem_len - 1] = 0x5A;
    for (size_t at = 0; at < fixed.smem_len; at += 4096)
        HOLDS(bytes[at] == (uint8_t)(at / 4096 * 7 + 1), "byte %zu of %u does not keep what is written", at,
              fixed.smem_len);
    HOLDS(bytes[fixed.smem_len - 1] == 0x5A, "the last byte does not keep what is written");
}

POINT(map_shared, "fb.map.shared", "board_map", "two mappings, of two openings, are the same memory")
{
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    const int other_fb = board_open(FB_NODE, O_RDWR);
    if (other_fb < 0) blocked("%s", last_call_text());
    volatile uint16_t *other = board_map(other_fb, fixed.smem_len);
    HOLDS(other != NULL, "%s, expected an address", last_call_text());
    volatile uint16_t *first = pixels;
    const size_t last = fixed.smem_len / 2 - 1;
    first[1000] = 0x1234;
    other[last] = 0x4321;
    HOLDS(other[1000] == 0x1234 && first[last] == 0x4321,
          "what one mapping writes the other one does not read");
}

POINT(map_stays, "fb.map.outlives-descriptor", "board_map board_close",
      "a mapping stays when its descriptor is closed")
{
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    HOLDS(board_close(fb) == 0, "%s", last_call_text());
    volatile uint16_t *memory = pixels;
    memory[500] = 0x1111;
    memory[fixed.smem_len / 2 - 1] = 0x2222;
    HOLDS(memory[500] == 0x1111, "the memory is gone");
}

POINT(map_bad, "fb.map.bad-size", "board_map", "a size that the node does not have gives null")
{
    need_open();
    need_request(FBIOGET_FSCREENINFO, &fixed);
    HOLDS(board_map(fb, (size_t)fixed.smem_len * 4 + (64u << 20)) == NULL, "%s, expected null",
          last_call_text());
    HOLDS(board_map(fb, 0) == NULL, "%s, expected null", last_call_text());
}

POINT(unmap, "fb.unmap", "board_unmap",
      "a mapping is undone with its size; what is mapped nowhere gives EINVAL")
{
    static uint8_t elsewhere[64];
    need_open();
    need_request(FBIOGET_FSCREENINFO, &fixed);
    void *address = board_map(fb, fixed.smem_len);
    if (address == NULL) blocked("%s", last_call_text());
    const int result = board_unmap(elsewhere + 1, sizeof elsewhere - 1);
    HOLDS(result == -1 && errno == EINVAL, "%s, errno %d, expected -1 and EINVAL", last_call_text(), errno);
    HOLDS(board_unmap(address, fixed.smem_len) == 0, "%s, expected 0", last_call_text());
}

POINT(map_again, "fb.map.again", "board_map board_unmap", "mapping and unmapping leave nothing behind")
{
    need_open();
    need_request(FBIOGET_FSCREENINFO, &fixed);
    for (int i = 0; i < 200; ++i) {
        void *address = board_map(fb, fixed.smem_len);
        HOLDS(address != NULL, "mapping %d: %s", i, last_call_text());
        HOLDS(board_unmap(address, fixed.smem_len) == 0, "%s", last_call_text());
    }
}

/* ---------------------------------------------------------------------------------- what is seen --- */

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
    expect_request(FBIOSET_SHOW, &show);
    screen_shows(0, green, 1, "the field is hidden");
    show = 1;
    expect_request(FBIOSET_SHOW, &show);
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
    need_request(FBIOSET_GLOBAL_ALPHA, &alpha);
    fill(100, 100, 200, 100, RED_1555);
    fill(400, 100, 200, 100, BLUE_1555);
    screen_shows(0, before, 2, "a red and a blue field");
    expect_request(FBIOSET_COLORKEY, &key);
    screen_shows(0, after, 2, "the red field is transparent, the blue one is not");
    key.enabled = 0;
    expect_request(FBIOSET_COLORKEY, &key);
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
    need_request(FBIOSET_COLORKEY, &key);
    expect_request(FBIOSET_GLOBAL_ALPHA, &alpha);
    fill(100, 100, 200, 100, RED_1555);
    fill(400, 100, 200, 100, RED_1555 & ~OPAQUE);
    screen_shows(0, first, 2, "a red field on the left, none on the right");
    alpha.global_alpha = 0;
    alpha.zero_bit_alpha = 255;
    expect_request(FBIOSET_GLOBAL_ALPHA, &alpha);
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
    need_request(FBIOSET_COLORKEY, &key);
    fill(100, 100, 200, 100, RED_1555);
    expect_request(FBIOSET_GLOBAL_ALPHA, &alpha);
    screen_shows(0, red, 1, "a red field at 100,100");
    alpha.global_alpha = 0;
    expect_request(FBIOSET_GLOBAL_ALPHA, &alpha);
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
    expect_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    need_request(FBIOGET_FSCREENINFO, &fixed);
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
    if (variable.yres_virtual < 2 * variable.yres) not_tried("the memory holds a single page");
    fill(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT, RED_1555);
    fill(0, SCREEN_HEIGHT, SCREEN_WIDTH, SCREEN_HEIGHT, BLUE_1555);
    screen_shows(0, first, 1, "the screen is red");
    variable.yoffset = SCREEN_HEIGHT;
    expect_request(FBIOPAN_DISPLAY, &variable);
    screen_shows(0, second, 1, "the screen is blue");
    variable.yoffset = 0;
    expect_request(FBIOPAN_DISPLAY, &variable);
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

const Point *const fb_points[] = {
    &point_info,      &point_layer_size, &point_layer_kept,      &point_layer_mask, &point_layer_bad,
    &point_key_kept,  &point_alpha_kept, &point_pan_bad,         &point_map_whole,  &point_map_shared,
    &point_map_stays, &point_map_bad,    &point_unmap,           &point_map_again,  &point_painted,
    &point_repainted, &point_hidden,     &point_color_key,       &point_alpha_bit,  &point_alpha_global,
    &point_placed,    &point_panned,     &point_hidden_at_first, &point_above_all,  NULL,
};
