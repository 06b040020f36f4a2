/*
 * fb_driver.h - the framebuffer driver's own requests, beside the standard ones of <linux/fb.h>.
 *
 * "/dev/fb0" is a graphics layer over the video. The driver keeps four things besides the standard
 * screen information: where the layer lies and in which colour format it is read (display-layer
 * attributes), which colour is transparent (colour key), how it blends (alpha), and whether it is
 * shown. Request codes are encoded as <linux/ioctl.h> does: direction, size of the record, 'F',
 * number. Every request takes a pointer to its record.
 */
#ifndef FB_DRIVER_H
#define FB_DRIVER_H

#include <linux/fb.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define FBIOSET_SHOW                    0x40014663u /* one byte: 1 = show the layer, 0 = hide it */
#define FBIOGET_GLOBAL_ALPHA            0x80074664u /* FbGlobalAlpha                             */
#define FBIOSET_GLOBAL_ALPHA            0x40074665u
#define FBIOGET_COLORKEY                0x80044666u /* FbColorKey                                */
#define FBIOSET_COLORKEY                0x40044667u
#define FBIOGET_DISPLAYLAYER_ATTRIBUTES 0x80344668u /* FbDisplayLayer                            */
#define FBIOSET_DISPLAYLAYER_ATTRIBUTES 0x40344669u

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
