/*
 * keyboard_driver.h - the front panel's microcontroller, "/dev/KeyBoard".
 *
 * It is told two things, each through a pointer to a 32-bit value. The codes are the driver's own
 * numbers, not encoded ones.
 *
 * A read takes one key, a 32-bit code of panel_keys.h; 0 bytes when none was pressed since, at once. The
 * library never reads this node: the application does, by NVRHAL_PANEL_NODE, and what ext_keyboard_value
 * gives are the remote control's keys alone.
 *
 * Headings of the comments: see mi_common.h. Thread: any. Time: at once. The library opens the node
 * read-only, when it is first needed, and keeps it open; one that cannot be opened is printed,
 * and ext_keyboard_value returns -1.
 */
#ifndef KEYBOARD_DRIVER_H
#define KEYBOARD_DRIVER_H

#include <stdint.h>

#define KEYBOARD_NODE "/dev/KeyBoard" /* path of the node */

/**
 * Switch the record lamp.
 * Argument: a 32-bit value: 1 = lit, 0 = dark.
 * Order: none. While the recorder records the library switches it every 500 ms.
 * Errors: EINVAL: another value.
 * Failure: ignored while it blinks; hi_stop_record_proc returns -1.
 */
#define KEYBOARD_RECORD_LAMP 0x6109u

/**
 * Tell that the key queue was polled. The panel's controller may take that for a sign of life.
 * Argument: a 32-bit value: 0 = a key was taken, 1 = the queue was empty.
 * Order: none; at every ext_keyboard_value.
 * Errors: EINVAL: another value.
 * Failure: ignored.
 */
#define KEYBOARD_KEY_POLLED 0x610Au

#endif
