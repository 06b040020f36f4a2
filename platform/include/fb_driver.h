/*
 * fb_driver.h - the framebuffer driver's own requests, beside the standard ones of <linux/fb.h>.
 *
 * "/dev/fb0" is a graphics layer over the video. The driver keeps four things besides the standard
 * screen information: where the layer lies and in which colour format it is read (display-layer
 * attributes), which colour is transparent (colour key), how it blends (alpha), and whether it is
 * shown. Request codes are encoded as <linux/ioctl.h> does: direction, size of the record, 'F',
 * number. Every request takes a pointer to its record.
 *
 * Headings of the comments: see mi_common.h. Thread: any. Time: at once. The library opens the node at
 * start-up, again for the GUI and at every switch of the output, and keeps it open; it then makes the
 * requests in the order of this file. A node that cannot be opened is printed, and the recorder goes on
 * without a GUI. The errno of a refused record is EINVAL.
 */
#ifndef FB_DRIVER_H
#define FB_DRIVER_H

#include <linux/fb.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define FB_NODE "/dev/fb0" /* path of the node */

/**
 * Request FBIOGET_VSCREENINFO: tell the screen's size and format.
 * Argument: struct fb_var_screeninfo; the library reads xres, yres and bits_per_pixel, and gives the whole
 *   record back to FBIOPAN_DISPLAY.
 * Order: first of all; again after each FBIOSET_DISPLAYLAYER_ATTRIBUTES, which may have changed it.
 * Errors: none.
 * Failure: the first time it is printed, and the recorder goes on without a GUI. After the layer was set,
 *   -1 ends the process with exit status 0.
 */

/**
 * Request FBIOGET_FSCREENINFO: tell where the memory is and how it is laid out.
 * Argument: struct fb_fix_screeninfo; the library reads line_length, smem_len and smem_start. The memory has
 *   smem_len bytes, line_length bytes a row of pixels, two bytes a pixel.
 * Order: after FBIOGET_VSCREENINFO, before board_map; again after the layer was set.
 * Errors: none.
 * Failure: the first time it is printed and start-up ends with -1; later -1 ends the process with exit
 *   status 0.
 */

/**
 * Request FBIOPAN_DISPLAY: show the part of the memory that begins at xoffset, yoffset.
 * Argument: struct fb_var_screeninfo, as it was read, with yoffset 0.
 * Order: after the layer was set; then at the end of every drawing job. May wait for a refresh, 40 ms.
 * Errors: a part that leaves xres_virtual x yres_virtual.
 * Failure: -1 at the set-up ends the process with exit status 0; later it is printed, and
 *   ext_tde_end_job returns -1.
 */

/**
 * Place the layer: those attributes that the mask names are applied, the others stay.
 * Argument: FbDisplayLayer. At first position 0,0, the GUI's size on the screen and in memory (half the
 *   width in memory beyond 1920 x 1080), screen size 0; then the colour format alone, ARGB1555.
 * Order: after board_map. The display size gives the screen a new xres, yres and line_length.
 * Errors: a format that cannot be had, a size that the memory does not hold, a destination of 0 pixels.
 * Failure: printed; start-up ends with -1, and node and mapping stay.
 */
#define FBIOSET_DISPLAYLAYER_ATTRIBUTES 0x40344669u

/**
 * Tell where the layer lies.
 * Argument: FbDisplayLayer, filled as it is in force; the mask is not looked at.
 * Order: after the layer was placed.
 * Errors: none.
 * Failure: printed; start-up ends with -1, and node and mapping stay.
 */
#define FBIOGET_DISPLAYLAYER_ATTRIBUTES 0x80344668u

/**
 * Show the layer, or hide it. It is hidden after power-on.
 * Argument: one byte: 1 = show, 0 = hide.
 * Order: after size and colour format were set.
 * Errors: none.
 * Failure: printed; the mapping is undone, and start-up ends with -1.
 */
#define FBIOSET_SHOW 0x40014663u

/**
 * Tell the transparent colour.
 * Argument: FbColorKey, filled.
 * Order: none.
 * Errors: none.
 * Failure: printed; the mapping is undone, and start-up ends with -1.
 */
#define FBIOGET_COLORKEY 0x80044666u

/**
 * Choose the transparent colour: pixels of it let the video through.
 * Argument: FbColorKey; the library enables black.
 * Order: none; it holds for what is on the screen already.
 * Errors: none.
 * Failure: printed; the mapping is undone, and start-up ends with -1.
 */
#define FBIOSET_COLORKEY 0x40044667u

/**
 * Tell how the layer blends.
 * Argument: FbGlobalAlpha, filled. The library gives the driver's own fields back as they were.
 * Order: none.
 * Errors: none.
 * Failure: printed; the mapping is undone, and start-up ends with -1.
 */
#define FBIOGET_GLOBAL_ALPHA 0x80074664u

/**
 * Choose how the layer blends.
 * Argument: FbGlobalAlpha; the library gives 1, 1, 255, 0, the driver's own, 1.
 * Order: after FBIOGET_GLOBAL_ALPHA.
 * Errors: none.
 * Failure: printed; the mapping is undone, and start-up ends with -1.
 */
#define FBIOSET_GLOBAL_ALPHA 0x40074665u

/** Colour formats as the driver counts them. */
enum FbColorFormat {
    FB_COLOR_RGB565 = 1,
    FB_COLOR_ARGB4444 = 2,
    FB_COLOR_ARGB8888 = 5,
    FB_COLOR_ARGB1555 = 6,
    FB_COLOR_UNKNOWN = 12,
};

/** Which attributes a FBIOSET_DISPLAYLAYER_ATTRIBUTES applies; the others stay as they are. */
enum FbLayerMask {
    FB_LAYER_POSITION = 1,
    FB_LAYER_DST_SIZE = 2,
    FB_LAYER_DISPLAY_SIZE = 4,
    FB_LAYER_SCREEN_SIZE = 8,
    FB_LAYER_PREMULTIPLIED = 16,
    FB_LAYER_COLOR_FORMAT = 32,
};

/** Where the layer lies and how its memory is read. 52 bytes. */
typedef struct FbDisplayLayer {
    uint32_t x;                  /*  0  left edge on the screen                                   */
    uint32_t y;                  /*  4  top edge                                                  */
    uint32_t dst_width;          /*  8  size on the screen; the layer is scaled to it             */
    uint32_t dst_height;         /* 12                                                            */
    uint32_t display_width;      /* 16  size of the part of the memory that is read, pixels       */
    uint32_t display_height;     /* 20                                                            */
    uint32_t screen_width;       /* 24  size of the screen that position and size speak of;       */
    uint32_t screen_height;      /* 28  0 = the layer reaches to the screen's right, bottom edge  */
    uint32_t premultiplied;      /* 32  1 = pixels are multiplied by their alpha already          */
    uint32_t color_format;       /* 36  enum FbColorFormat                                        */
    uint32_t output_color_space; /* 40                                                            */
    uint32_t plane;              /* 44  destination display plane                                 */
    uint32_t mask;               /* 48  FB_LAYER_* of the attributes to apply                     */
} FbDisplayLayer;

/** The transparent colour. 4 bytes. */
typedef struct FbColorKey {
    uint8_t enabled; /*  0  1 = pixels of this colour let the video through */
    uint8_t red;     /*  1  8-bit components, compared at the format's own width */
    uint8_t green;   /*  2                                                       */
    uint8_t blue;    /*  3                                                       */
} FbColorKey;

/** How the layer blends with the video. 7 bytes. */
typedef struct FbGlobalAlpha {
    uint8_t enabled;          /*  0  1 = the layer blends; 0 = it is opaque                        */
    uint8_t per_pixel;        /*  1  1 = by each pixel's own alpha, 0 = by global_alpha            */
    uint8_t global_alpha;     /*  2  0 to 255; with per_pixel, the value of a one-bit alpha's 1    */
    uint8_t zero_bit_alpha;   /*  3  0 to 255; with per_pixel, the value of a one-bit alpha's 0    */
    uint8_t driver_fields[2]; /*  4  the driver's own                                              */
    uint8_t further_enabled;  /*  6  1 = multiply by the driver's own blending stage               */
} FbGlobalAlpha;

#ifdef __cplusplus
}
#endif

#endif
