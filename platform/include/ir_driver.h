/*
 * ir_driver.h - the infrared receiver, "/dev/Hi_IR".
 *
 * A read takes one frame. While a button is held and no new frame has come, a read gives nothing;
 * letting go, a damaged frame and other events come as frames with a state word other than 0.
 *
 * Thread: any; the library reads on the thread that the application gives to hi_remotekey_proc, and the
 * local reader every 1 ms on a descriptor that the application opened. A read that returns less than 1
 * counts as "nothing new", and repeats the last key: a read therefore waits some 108 ms, the period at
 * which a remote control repeats, before it gives 0 bytes. A node that cannot be opened is printed, and
 * hi_remotekey_proc returns -1.
 */
#ifndef IR_DRIVER_H
#define IR_DRIVER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define IR_NODE "/dev/Hi_IR" /* path of the node */

/** A frame of the receiver. 12 bytes. */
typedef struct IrFrame {
    uint32_t unused; /* 0                                                                        */
    uint32_t code;   /* 4  address in the low half, command and its complement in the high half  */
    uint32_t state;  /* 8  0 = a whole frame of a pressed button; anything else is not decoded   */
} IrFrame;

#ifdef __cplusplus
}
#endif

#endif
