/*
 * gui.h - the framebuffer that the GUI is drawn into.
 */
#ifndef NVRHAL_GUI_H
#define NVRHAL_GUI_H

#include <linux/fb.h>
#include <stdint.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** State of the framebuffer. Zero at load. The application may read all of it and set the buffers. */
typedef struct OsdInfo {
    uint32_t reserved_0[2];            /*   0  never used                                          */
    uint32_t app_buffer_second;        /*   8  reported by ext_app_buf_addr, never filled          */
    uint32_t reserved_3[2];            /*  12  never used                                          */
    uint32_t app_buffer_third;         /*  20  likewise                                            */
    void *mapped_address;              /*  24  the framebuffer's memory; null = not mapped         */
    uint32_t reserved_7;               /*  28  never used                                          */
    uint32_t app_buffer_first;         /*  32  likewise                                            */
    uint32_t mapped_length;            /*  36  bytes mapped                                        */
    int32_t descriptor;                /*  40  -1 after a failure, 0 before fb_init has ever run   */
    char path[24];                     /*  44  "/dev/fb0", NUL-terminated                          */
    struct fb_fix_screeninfo fixed;    /*  68  stride (line_length), memory (smem_start, smem_len) */
    struct fb_var_screeninfo variable; /* 136  size, panning offsets, depth, alpha width           */
} OsdInfo;

/** The framebuffer. */
extern NVRHAL_API OsdInfo g_osd_info;

/** Bits of each component of a colour format. 16 bytes. */
typedef struct OsdCompInfo {
    uint32_t alpha_bits;  /*  0                                 */
    uint32_t low_bits;    /*  4  blue                           */
    uint32_t middle_bits; /*  8  green                          */
    uint32_t high_bits;   /* 12  red                            */
} OsdCompInfo;

/**
 * The GUI's colour formats 0 to 7: RGB444, ARGB4444, RGB555, RGB565, ARGB1555, none, RGB888,
 * ARGB8888. These codes are not those of getFBColorFmt or of the framebuffer driver.
 */
extern NVRHAL_API const OsdCompInfo s_OSDCompInfo[8];

/**
 * The mouse cursor: 32 x 32 pixels of 1-5-5-5, rows from top to bottom, the arrow's tip in the
 * top-left corner. 0x001F is background, to be left out. The alpha bits are clear: on a layer that
 * blends by pixel, set bit 15 of what is copied into the framebuffer.
 */
extern NVRHAL_API const uint16_t CurseValue[1024];

/** Width of CurseValue, pixels: 32. */
extern NVRHAL_API const int32_t MOUSE_IMAGE_WIDTH;

/** Height of CurseValue, pixels: 32. */
extern NVRHAL_API const int32_t MOUSE_IMAGE_HEIGHT;

/**
 * Set the framebuffer up for a GUI: open and map it, clear it, place the layer over the video in
 * ARGB1555, show it, make pure black transparent, blend by pixel. Start-up calls it. A second call
 * opens and maps once more, over the old state. Above 1920 wide and 1080 high the memory is read at
 * half the width.
 * @param output_device  any value; ignored
 * @param width          GUI width, pixels, 1 or more
 * @param height         GUI height, pixels, 1 or more
 * @return 0, also when there is no framebuffer device or it does not tell its size; otherwise -1, or a
 *         positive number
 * Errors: the positive number is the character count of the message that the driver refused the
 *         layer's place. A device that cannot be read again after that ends the process with status 0.
 * Thread: UI thread.
 */
NVRHAL_API int32_t fb_init(uint32_t output_device, int32_t width, int32_t height);

/**
 * Does nothing: the framebuffer stays open and mapped.
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t fb_uninit(void);

/**
 * The geometry of the surface.
 * @param layer  any value; ignored
 * @param info   out: width and height in pixels, bytes a row, bytes a pixel (always 2), address of the
 *               mapped memory, physical address; null is skipped. On a 64-bit machine the addresses are
 *               cut to 32 bits: take g_osd_info.mapped_address there.
 * @return 0
 * Errors: none; zeros before fb_init.
 * Thread: UI thread.
 * Ownership: info is the caller's; the mapped memory is the library's, to be drawn into.
 */
NVRHAL_API int32_t ext_get_fb_info(uint32_t layer, uint32_t info[6]);

/**
 * The application's own three buffer words of g_osd_info.
 * @param first   out: null is skipped
 * @param second  out: null is skipped
 * @param third   out: null is skipped
 * @return 0
 * Errors: none.
 * Thread: UI thread.
 * Ownership: the words are the caller's.
 */
NVRHAL_API int32_t ext_app_buf_addr(uint32_t *first, uint32_t *second, uint32_t *third);

/**
 * Copies nothing.
 * @return 0, or -1
 * Errors: -1 when the framebuffer could not be opened.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_fb_copy(void);

/**
 * Fills nothing.
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_fb_quick_fill(void);

/**
 * Begin a drawing job: then write pixels into the mapped memory (row y starts y * stride bytes from its
 * start) and end it with ext_tde_end_job.
 * @return 0, or -1
 * Errors: -1 when the framebuffer could not be opened.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_tde_begin_job(void);

/**
 * End a drawing job: show what was drawn.
 * @return 0, or -1
 * Errors: -1 when the framebuffer could not be opened, or its driver refused.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_tde_end_job(void);

/**
 * Pack three 8-bit components into 16 bits: low (blue) at bit 0, middle above it, high above that, the
 * top alpha_bits set.
 * @param low          0 to 255
 * @param middle       0 to 255
 * @param high         0 to 255
 * @param alpha_bits   0 to 16; above counts as 16
 * @param low_bits     0 to 8; above counts as 8
 * @param middle_bits  0 to 8; above counts as 8
 * @param high_bits    0 to 8; above counts as 8
 * @return the pixel
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API uint16_t OSD_MAKECOLOR_U16(int32_t low, int32_t middle, int32_t high, uint32_t alpha_bits,
                                      uint32_t low_bits, uint32_t middle_bits, uint32_t high_bits);

/**
 * Open "/dev/mem" once. Nothing in the library calls it.
 * @return its descriptor, or -1
 * Errors: -1 when it cannot be opened.
 * Thread: one.
 */
NVRHAL_API int32_t memopen(void);

/**
 * The painters' code for a framebuffer's format.
 * @param screen  as its driver reported it
 * @return 1 RGB565, 2 ARGB4444, 5 ARGB8888, 6 ARGB1555, 12 any other
 * Errors: 12 for null.
 * Thread: any.
 * Ownership: used during the call only.
 */
NVRHAL_API int32_t getFBColorFmt(const struct fb_var_screeninfo *screen);

/**
 * Paint a solid rectangle into the framebuffer, in the format that its driver reported. A format that
 * no painter fits is printed.
 *
 * The rectangle follows the panned view. It is not clipped to the screen: a row that is too long goes
 * on in the next one; what lies outside the mapped memory is left out.
 * @param x       left edge, pixels, any value
 * @param y       upper edge, pixels, any value
 * @param width   pixels, any value; below 1 paints nothing
 * @param height  pixels, any value; below 1 paints nothing
 * @param colour  0xAARRGGBB. ARGB1555 takes any alpha above 0 as set, ARGB4444 is always opaque.
 * Errors: a line is printed, and nothing painted, when nothing is mapped.
 * Thread: UI thread.
 */
NVRHAL_API void drawRect(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour);

/**
 * drawRect in RGB565, whatever the framebuffer's format.
 * @param x       left edge, pixels, any value
 * @param y       upper edge, pixels, any value
 * @param width   pixels, any value; below 1 paints nothing
 * @param height  pixels, any value; below 1 paints nothing
 * @param colour  0xAARRGGBB; alpha is not used
 * Errors: a line is printed, and nothing painted, when nothing is mapped.
 * Thread: UI thread.
 */
NVRHAL_API void drawRect_rgb16(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour);

/**
 * drawRect in ARGB4444, whatever the framebuffer's format.
 * @param x       left edge, pixels, any value
 * @param y       upper edge, pixels, any value
 * @param width   pixels, any value; below 1 paints nothing
 * @param height  pixels, any value; below 1 paints nothing
 * @param colour  0xAARRGGBB; always opaque
 * Errors: nothing is painted, nor printed, when nothing is mapped.
 * Thread: UI thread.
 */
NVRHAL_API void drawRect_rgb12(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour);

/**
 * drawRect in ARGB1555, whatever the framebuffer's format.
 * @param x       left edge, pixels, any value
 * @param y       upper edge, pixels, any value
 * @param width   pixels, any value; below 1 paints nothing
 * @param height  pixels, any value; below 1 paints nothing
 * @param colour  0xAARRGGBB; any alpha above 0 is set
 * Errors: a line is printed, and nothing painted, when nothing is mapped.
 * Thread: UI thread.
 */
NVRHAL_API void drawRect_rgb15(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour);

/**
 * drawRect in ARGB8888, whatever the framebuffer's format.
 * @param x       left edge, pixels, any value
 * @param y       upper edge, pixels, any value
 * @param width   pixels, any value; below 1 paints nothing
 * @param height  pixels, any value; below 1 paints nothing
 * @param colour  0xAARRGGBB
 * Errors: a line is printed, and nothing painted, when nothing is mapped.
 * Thread: UI thread.
 */
NVRHAL_API void drawRect_rgb32(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t colour);

/**
 * drawRect of {x, y, width, height}, pixels.
 * @param rect    null paints nothing
 * @param colour  0xAARRGGBB
 * @return 0
 * Errors: as drawRect.
 * Thread: UI thread.
 * Ownership: used during the call only.
 */
NVRHAL_API int32_t ST_Fb_FillRect(const uint16_t rect[4], uint32_t colour);

/**
 * A test pattern: four squares of 200 x 200 pixels.
 * @return 0
 * Errors: as drawRect.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ST_FBDrawRect(void);

#ifdef __cplusplus
}
#endif

#endif
