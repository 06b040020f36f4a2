/* points_fb.c - the framebuffer: what it tells, what it keeps and refuses, and its memory. */
#include <errno.h>
#include <fcntl.h>
#include <string.h>

#include "fb_layer.h"
#include "points.h"
#include "record.h"

POINT(info, "fb.info.plausible", "board_ioctl",
      "the screen has a size and 16 bits or more, and its rows fit the memory that is told")
{
    need_fb_open();
    memset(&fb_variable, 0xEE, sizeof fb_variable);
    memset(&fb_fixed, 0xEE, sizeof fb_fixed);
    expect_fb_request(FBIOGET_VSCREENINFO, &fb_variable);
    expect_fb_request(FBIOGET_FSCREENINFO, &fb_fixed);
    HOLDS(fb_variable.xres >= 64 && fb_variable.xres <= 8192 && fb_variable.yres >= 64 &&
              fb_variable.yres <= 8192,
          "the screen is %u x %u", fb_variable.xres, fb_variable.yres);
    HOLDS(fb_variable.bits_per_pixel >= 16 && fb_variable.bits_per_pixel <= 32, "%u bits a pixel",
          fb_variable.bits_per_pixel);
    HOLDS(fb_fixed.line_length >= fb_variable.xres * fb_variable.bits_per_pixel / 8,
          "rows of %u bytes for %u pixels", fb_fixed.line_length, fb_variable.xres);
    HOLDS((uint64_t)fb_fixed.line_length * fb_variable.yres <= fb_fixed.smem_len,
          "%u bytes of memory for %u rows of %u bytes", fb_fixed.smem_len, fb_variable.yres,
          fb_fixed.line_length);
}

POINT(layer_size, "fb.layer.size", "board_ioctl",
      "a new display size is the screen's size: xres, yres and line_length follow it")
{
    static const uint32_t sizes[][2] = {{1280, 720}, {800, 600}, {1920, 1080}};
    for (int i = 0; i < 3; ++i) {
        need_layer(sizes[i][0], sizes[i][1]);
        HOLDS(fb_variable.xres == sizes[i][0] && fb_variable.yres == sizes[i][1],
              "the layer is %u x %u, the screen %u x %u", sizes[i][0], sizes[i][1], fb_variable.xres,
              fb_variable.yres);
        HOLDS(fb_variable.bits_per_pixel == 16, "ARGB1555 has %u bits a pixel", fb_variable.bits_per_pixel);
        HOLDS(fb_fixed.line_length >= 2 * sizes[i][0], "rows of %u bytes for %u pixels", fb_fixed.line_length,
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
    expect_fb_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    memset(&read, 0xEE, sizeof read);
    expect_fb_request(FBIOGET_DISPLAYLAYER_ATTRIBUTES, &read);
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
    expect_fb_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    expect_fb_request(FBIOGET_DISPLAYLAYER_ATTRIBUTES, &read);
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
    expect_fb_refused(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    layer = (FbDisplayLayer){.display_width = 60000, .display_height = 60000, .mask = FB_LAYER_DISPLAY_SIZE};
    expect_fb_refused(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    layer = (FbDisplayLayer){.dst_width = 0, .dst_height = 10, .mask = FB_LAYER_DST_SIZE};
    expect_fb_refused(FBIOSET_DISPLAYLAYER_ATTRIBUTES, &layer);
    expect_fb_request(FBIOGET_VSCREENINFO, &fb_variable);
    HOLDS(fb_variable.xres == SCREEN_WIDTH, "a refused size is in force: %u x %u", fb_variable.xres,
          fb_variable.yres);
}

POINT(key_kept, "fb.color-key.as-set", "board_ioctl", "the colour key is told as it was set")
{
    const FbColorKey set = {1, 255, 8, 16};
    FbColorKey key = set;
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    expect_fb_request(FBIOSET_COLORKEY, &key);
    memset(&key, 0xEE, sizeof key);
    expect_fb_request(FBIOGET_COLORKEY, &key);
    HOLDS(memcmp(&key, &set, sizeof key) == 0, "set to 1, 255, 8, 16, told as %u, %u, %u, %u", key.enabled,
          key.red, key.green, key.blue);
}

POINT(alpha_kept, "fb.alpha.as-set", "board_ioctl",
      "the blending is told as it was set, the driver's own fields too")
{
    FbGlobalAlpha alpha = {0, 0, 0, 0, {0, 0}, 0}, read;
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    expect_fb_request(FBIOGET_GLOBAL_ALPHA, &alpha);
    alpha.enabled = 1;
    alpha.per_pixel = 0;
    alpha.global_alpha = 200;
    alpha.zero_bit_alpha = 33;
    expect_fb_request(FBIOSET_GLOBAL_ALPHA, &alpha);
    memset(&read, 0xEE, sizeof read);
    expect_fb_request(FBIOGET_GLOBAL_ALPHA, &read);
    HOLDS(memcmp(&read, &alpha, sizeof read) == 0, "set to 1, 0, 200, 33, told as %u, %u, %u, %u",
          read.enabled, read.per_pixel, read.global_alpha, read.zero_bit_alpha);
}

POINT(pan_bad, "fb.pan.outside", "board_ioctl", "a view that leaves the virtual screen gives EINVAL")
{
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    fb_variable.yoffset = fb_variable.yres_virtual - fb_variable.yres + 1;
    expect_fb_refused(FBIOPAN_DISPLAY, &fb_variable);
    fb_variable.yoffset = 0;
    expect_fb_request(FBIOPAN_DISPLAY, &fb_variable);
}

/* -------------------------------------------------------------------------------------- memory --- */

POINT(map_whole, "fb.map.whole", "board_map",
      "all bytes of the memory that is told can be written and read, from the first to the last")
{
    need_fb_open();
    need_fb_request(FBIOGET_FSCREENINFO, &fb_fixed);
    volatile uint8_t *bytes = board_map(fb, fb_fixed.smem_len);
    HOLDS(bytes != NULL, "%s, expected an address", last_call_text());
    for (size_t at = 0; at < fb_fixed.smem_len; at += 4096)
        bytes[at] = (uint8_t)(at / 4096 * 7 + 1);
    bytes[fb_fixed.smem_len - 1] = 0x5A;
    for (size_t at = 0; at < fb_fixed.smem_len; at += 4096)
        HOLDS(bytes[at] == (uint8_t)(at / 4096 * 7 + 1), "byte %zu of %u does not keep what is written", at,
              fb_fixed.smem_len);
    HOLDS(bytes[fb_fixed.smem_len - 1] == 0x5A, "the last byte does not keep what is written");
}

POINT(map_shared, "fb.map.shared", "board_map", "two mappings, of two openings, are the same memory")
{
    need_layer(SCREEN_WIDTH, SCREEN_HEIGHT);
    const int other_fb = board_open(FB_NODE, O_RDWR);
    if (other_fb < 0) blocked("%s", last_call_text());
    volatile uint16_t *other = board_map(other_fb, fb_fixed.smem_len);
    HOLDS(other != NULL, "%s, expected an address", last_call_text());
    volatile uint16_t *first = fb_pixels;
    const size_t last = fb_fixed.smem_len / 2 - 1;
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
    volatile uint16_t *memory = fb_pixels;
    memory[500] = 0x1111;
    memory[fb_fixed.smem_len / 2 - 1] = 0x2222;
    HOLDS(memory[500] == 0x1111, "the memory is gone");
}

POINT(map_bad, "fb.map.bad-size", "board_map", "a size that the node does not have gives null")
{
    need_fb_open();
    need_fb_request(FBIOGET_FSCREENINFO, &fb_fixed);
    HOLDS(board_map(fb, (size_t)fb_fixed.smem_len * 4 + (64u << 20)) == NULL, "%s, expected null",
          last_call_text());
    HOLDS(board_map(fb, 0) == NULL, "%s, expected null", last_call_text());
}

POINT(unmap, "fb.unmap", "board_unmap",
      "a mapping is undone with its size; what is mapped nowhere gives EINVAL")
{
    static uint8_t elsewhere[64];
    need_fb_open();
    need_fb_request(FBIOGET_FSCREENINFO, &fb_fixed);
    void *address = board_map(fb, fb_fixed.smem_len);
    if (address == NULL) blocked("%s", last_call_text());
    const int result = board_unmap(elsewhere + 1, sizeof elsewhere - 1);
    HOLDS(result == -1 && errno == EINVAL, "%s, errno %d, expected -1 and EINVAL", last_call_text(), errno);
    HOLDS(board_unmap(address, fb_fixed.smem_len) == 0, "%s, expected 0", last_call_text());
}

POINT(map_again, "fb.map.again", "board_map board_unmap", "mapping and unmapping leave nothing behind")
{
    need_fb_open();
    need_fb_request(FBIOGET_FSCREENINFO, &fb_fixed);
    for (int i = 0; i < 200; ++i) {
        void *address = board_map(fb, fb_fixed.smem_len);
        HOLDS(address != NULL, "mapping %d: %s", i, last_call_text());
        HOLDS(board_unmap(address, fb_fixed.smem_len) == 0, "%s", last_call_text());
    }
}

const Point *const fb_points[] = {
    &point_info,      &point_layer_size, &point_layer_kept, &point_layer_mask, &point_layer_bad,
    &point_key_kept,  &point_alpha_kept, &point_pan_bad,    &point_map_whole,  &point_map_shared,
    &point_map_stays, &point_map_bad,    &point_unmap,      &point_map_again,  NULL,
};
