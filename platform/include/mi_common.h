/*
 * mi_common.h - types and result codes that every module of the media interface shares.
 *
 * The media interface is the lower seam of nvrhal: plain C functions and records that the chip's
 * media driver (or a board in software) provides. These headers declare what the library needs of
 * it and nothing more. Every call may be made from any thread unless its comment says otherwise;
 * records are owned by the caller and only read or written during the call.
 *
 * Result: MI_SUCCESS, or a negative code built by MI_ERROR from the refusing module and a reason.
 */
#ifndef MI_COMMON_H
#define MI_COMMON_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define MI_SUCCESS 0

/** Module numbers, as they stand in a channel-port record and in a result code. */
enum MI_ModuleId {
    MI_MODULE_SYS = 1,
    MI_MODULE_VENC = 2,
    MI_MODULE_AO = 5,
    MI_MODULE_VDEC = 8,
    MI_MODULE_HDMI = 10,
    MI_MODULE_DIVP = 12,
    MI_MODULE_DISP = 15,
};

/** Why a call was refused. */
enum MI_Reason {
    MI_REASON_BAD_DEVICE = 1,    /* no such device                                        */
    MI_REASON_BAD_CHANNEL = 2,   /* no such channel, port or layer                        */
    MI_REASON_BAD_VALUE = 3,     /* a field or argument outside its range                 */
    MI_REASON_EXISTS = 4,        /* created, bound or opened already                      */
    MI_REASON_ABSENT = 5,        /* not created, not bound, not opened                    */
    MI_REASON_NULL_POINTER = 6,  /* a required record is missing                          */
    MI_REASON_NOT_READY = 7,     /* the step that must come first has not been made       */
    MI_REASON_UNSUPPORTED = 8,   /* well formed, but this hardware cannot                 */
    MI_REASON_NOT_PERMITTED = 9, /* not in this state                                     */
    MI_REASON_NO_MEMORY = 12,    /* allocation failed                                     */
    MI_REASON_NO_BUFFER = 13,    /* no buffer, or no picture, to be had now               */
    MI_REASON_BUFFER_FULL = 15,  /* no room within the time-out                           */
    MI_REASON_TIMEOUT = 16,      /* nothing happened within the time-out                  */
    MI_REASON_FAULT = 17,        /* the device broke down                                 */
};

/** A result code: bit 31 set, module in bits 16-23, reason in bits 0-7. */
#define MI_ERROR(module, reason) ((int32_t)(0xA0000000u | ((uint32_t)(module) << 16) | (uint32_t)(reason)))

/** Pixel format codes of layers and output ports. */
enum MI_PixelFormat {
    MI_PIXEL_YUV420_SEMIPLANAR = 11, /* Y plane, then interleaved U and V                     */
    MI_PIXEL_YUV420_LAYER = 12,      /* the video layer's own 4:2:0 order                     */
};

/** A 64-bit word that a record keeps at 4-byte alignment, as the 32-bit target does. */
typedef uint64_t MI_U64 __attribute__((aligned(4)));

/** A rectangle in pixels. */
typedef struct MI_Rect {
    uint16_t x, y;          /*  0  top-left corner */
    uint16_t width, height; /*  4  size            */
} MI_Rect;

#ifdef __cplusplus
}
#endif

#endif
