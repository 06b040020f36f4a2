/*
 * keyboard_driver.h - the front panel's microcontroller, "/dev/KeyBoard".
 *
 * It is told two things, each through a pointer to a 32-bit value. The codes are the driver's own
 * numbers, not encoded ones.
 */
#ifndef KEYBOARD_DRIVER_H
#define KEYBOARD_DRIVER_H

#define KEYBOARD_NODE "/dev/KeyBoard"

#define KEYBOARD_RECORD_LAMP 0x6109u /* record indicator: 1 = lit, 0 = dark                        */
#define KEYBOARD_KEY_POLLED  0x610Au /* the key queue was polled: 0 = a key was taken, 1 = empty   */

#endif
