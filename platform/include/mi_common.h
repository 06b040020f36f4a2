/*
 * mi_common.h - types and result codes that every module of the media interface shares.
 *
 * The media interface is the lower seam of nvrhal: plain C functions and records that the chip's
 * media driver (or a board in software) provides. These headers declare what the library needs of
 * it and nothing more. Each function's comment is its contract, under the same headings; here stands
 * what holds for all of them:
 *
 * Result: MI_SUCCESS, or a negative code built by MI_ERROR from the refusing module and a reason. The
 *   library takes every code other than 0 for a failure. A refused call has changed nothing and has
 *   written nothing into the caller's records.
 * Order: what must have happened before, and what may be repeated.
 * Thread: "any" means any thread, several at once. Calls on one channel, port or device are then
 *   carried out one after another. A call on one channel does not wait for calls on another.
 * Memory: records and bytes are the caller's, and are read or written during the call only. What is
 *   to outlive the call is copied.
 * Time: "at once" means that the call waits neither for pictures nor for a time-out, and returns
 *   within 10 ms. Cameras' threads stand still while a call takes longer.
 * Errors: the reasons of enum MI_Reason for which the call is refused. A null pointer to a required
 *   record gives NULL_POINTER everywhere. Where several reasons apply at once, any of them is given.
 * Failure: what the library does when the call fails, whatever the code.
 */
#ifndef MI_COMMON_H
#define MI_COMMON_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define MI_SUCCESS 0 /* the call was carried out */

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
