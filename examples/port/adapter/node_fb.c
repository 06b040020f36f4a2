/*
 * node_fb.c - "/dev/fb0" over the graphics plane of the support package. The seam's driver keeps its
 * settings apart; the package takes them all at once.
 */
#include <errno.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>

#include "fb_driver.h"
#include "node.h"
#include "tern_board.h"

enum { kWidth = 1920, kHeight = 1080, kMostSide = 8192 };

typedef struct Format {
    uint32_t code; /* enum FbColorFormat */
    enum TernInk ink;
    uint32_t bits;
    struct fb_bitfield red, green, blue, transp;
} Format;

static const Format formats[] = {
    {FB_COLOR_ARGB1555, TERN_INK_1555, 16, {10, 5, 0}, {5, 5, 0}, {0, 5, 0}, {15, 1, 0}},
    {FB_COLOR_RGB565, TERN_INK_565, 16, {11, 5, 0}, {5, 6, 0}, {0, 5, 0}, {0, 0, 0}},
    {FB_COLOR_ARGB4444, TERN_INK_4444, 16, {8, 4, 0}, {4, 4, 0}, {0, 4, 0}, {12, 4, 0}},
    {FB_COLOR_ARGB8888, TERN_INK_8888, 32, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}, {24, 8, 0}},
};

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards what follows */
static int is_set_up;
static const Format *format;
static struct fb_var_screeninfo variable;
static FbDisplayLayer layer;
static FbColorKey key;
static FbGlobalAlpha alpha;
static uint8_t shown;

static size_t memory_bytes(void)
{
    size_t bytes = 0;
    uint32_t physical = 0;
    tern_osd_memory(&bytes, &physical);
    return bytes;
}

static uint32_t line_bytes(void)
{
    return variable.xres_virtual * variable.bits_per_pixel / 8;
}

static int fits(uint32_t width, uint32_t height, const Format *wanted)
{
    return width > 0 && height > 0 && width <= kMostSide && height <= kMostSide &&
           (uint64_t)width * wanted->bits / 8 * height <= memory_bytes();
}

static void use_size(uint32_t width, uint32_t height, const Format *wanted)
{
    format = wanted;
    variable.bits_per_pixel = format->bits;
    variable.red = format->red;
    variable.green = format->green;
    variable.blue = format->blue;
    variable.transp = format->transp;
    variable.xres = variable.xres_virtual = layer.display_width = width;
    variable.yres = layer.display_height = height;
    variable.yres_virtual = (uint32_t)(memory_bytes() / line_bytes());
    variable.xoffset = variable.yoffset = 0;
    layer.color_format = format->code;
}

static void set_up(void)
{
    if (is_set_up) return;
    is_set_up = 1;
    use_size(kWidth, kHeight, &formats[0]);
    layer.dst_width = kWidth;
    layer.dst_height = kHeight;
}

/* All settings, as the package takes them. 0, or -1. */
static int apply(void)
{
    const TernOsd osd = {
        .width = variable.xres,
        .height = variable.yres,
        .x = layer.x,
        .y = layer.y,
        .on_width = layer.dst_width,
        .on_height = layer.dst_height,
        .top = variable.yoffset,
        .ink = format->ink,
        .visible = shown != 0,
        .keyed = key.enabled,
        .key_rgb = (uint32_t)key.red << 16 | (uint32_t)key.green << 8 | key.blue,
        .blended = alpha.enabled && alpha.per_pixel,
        .alpha_one = alpha.global_alpha,
        .alpha_zero = alpha.zero_bit_alpha,
    };
    return tern_osd_set(&osd) == 0 ? 0 : node_refuses_value();
}

static const Format *format_of(uint32_t code)
{
    for (size_t i = 0; i < sizeof formats / sizeof formats[0]; ++i)
        if (formats[i].code == code) return &formats[i];
    return NULL;
}

static int set_layer(const FbDisplayLayer *wanted)
{
    const int changes_size = (wanted->mask & FB_LAYER_DISPLAY_SIZE) != 0;
    const Format *new_format =
        (wanted->mask & FB_LAYER_COLOR_FORMAT) != 0 ? format_of(wanted->color_format) : format;
    const uint32_t width = changes_size ? wanted->display_width : variable.xres;
    const uint32_t height = changes_size ? wanted->display_height : variable.yres;
    if (new_format == NULL || !fits(width, height, new_format)) return node_refuses_value();
    if ((wanted->mask & FB_LAYER_DST_SIZE) != 0 && (wanted->dst_width == 0 || wanted->dst_height == 0))
        return node_refuses_value();
    if ((wanted->mask & FB_LAYER_PREMULTIPLIED) != 0 && wanted->premultiplied != 0)
        return node_refuses_value();
    if ((wanted->mask & FB_LAYER_POSITION) != 0) {
        layer.x = wanted->x;
        layer.y = wanted->y;
    }
    if ((wanted->mask & FB_LAYER_DST_SIZE) != 0) {
        layer.dst_width = wanted->dst_width;
        layer.dst_height = wanted->dst_height;
    }
    if ((wanted->mask & FB_LAYER_SCREEN_SIZE) != 0) {
        layer.screen_width = wanted->screen_width;
        layer.screen_height = wanted->screen_height;
    }
    if (changes_size || new_format != format) use_size(width, height, new_format);
    return apply();
}

static int pan(const struct fb_var_screeninfo *wanted)
{
    if ((uint64_t)wanted->xoffset + variable.xres > variable.xres_virtual ||
        (uint64_t)wanted->yoffset + variable.yres > variable.yres_virtual)
        return node_refuses_value();
    variable.xoffset = wanted->xoffset;
    variable.yoffset = wanted->yoffset;
    return apply();
}

static int give_fixed(struct fb_fix_screeninfo *fixed)
{
    size_t bytes = 0;
    uint32_t physical = 0;
    tern_osd_memory(&bytes, &physical);
    memset(fixed, 0, sizeof *fixed);
    snprintf(fixed->id, sizeof fixed->id, "tern");
    fixed->smem_start = physical;
    fixed->smem_len = (uint32_t)bytes;
    fixed->type = FB_TYPE_PACKED_PIXELS;
    fixed->visual = FB_VISUAL_TRUECOLOR;
    fixed->xpanstep = fixed->ypanstep = 1;
    fixed->line_length = line_bytes();
    return 0;
}

static int give(void *record, const void *value, size_t size)
{
    memcpy(record, value, size);
    return 0;
}

static int take(void *value, const void *record, size_t size)
{
    memcpy(value, record, size);
    return apply();
}

/* The lock is held. */
static int carry_out(unsigned long request, void *record)
{
    switch ((uint32_t)request) {
    case FBIOGET_VSCREENINFO: return give(record, &variable, sizeof variable);
    case FBIOGET_FSCREENINFO: return give_fixed(record);
    case FBIOPAN_DISPLAY: return pan(record);
    case FBIOGET_DISPLAYLAYER_ATTRIBUTES: return give(record, &layer, sizeof layer);
    case FBIOSET_DISPLAYLAYER_ATTRIBUTES: return set_layer(record);
    case FBIOSET_SHOW: return take(&shown, record, sizeof shown);
    case FBIOGET_COLORKEY: return give(record, &key, sizeof key);
    case FBIOSET_COLORKEY: return take(&key, record, sizeof key);
    case FBIOGET_GLOBAL_ALPHA: return give(record, &alpha, sizeof alpha);
    case FBIOSET_GLOBAL_ALPHA: return take(&alpha, record, sizeof alpha);
    default: return node_knows_no_request();
    }
}

static int request(void *opening, unsigned long request, void *record)
{
    (void)opening;
    if (record == NULL) return node_refuses_value();
    pthread_mutex_lock(&lock);
    set_up();
    const int result = carry_out(request, record);
    pthread_mutex_unlock(&lock);
    return result;
}

static void *map(size_t size)
{
    if (size == 0 || size > memory_bytes()) {
        errno = EINVAL;
        return NULL;
    }
    void *memory = tern_osd_map();
    if (memory == NULL) errno = ENOMEM;
    return memory;
}

const NodeKind node_framebuffer = {.path = FB_NODE, .request = request, .map = map, .unmap = tern_osd_unmap};
