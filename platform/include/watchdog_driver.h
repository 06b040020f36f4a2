/*
 * watchdog_driver.h - the hardware watchdog, "/dev/watchdog": the kernel's standard requests.
 *
 * Once enabled, the watchdog resets the board when nobody has fed it for its time-out. Feeding and
 * switching take a plain value as their argument, the time-out a pointer.
 *
 * Headings of the comments: see mi_common.h. Thread: any. Time: at once. The library opens the node at
 * start-up and keeps it open; opening alone must not enable it. Start-up switches it off, on, sets 100
 * seconds and feeds it. A node that cannot be opened, or a step that fails, is printed, and start-up
 * goes on.
 */
#ifndef WATCHDOG_DRIVER_H
#define WATCHDOG_DRIVER_H

#include <linux/watchdog.h>

#define WATCHDOG_NODE "/dev/watchdog" /* path of the node */

/**
 * Request WDIOC_KEEPALIVE (0x80045705): feed it, so that the time-out begins anew.
 * Argument: 0, by value.
 * Order: none; every 3 s while the feeding thread runs. Feeding a disabled one is accepted.
 * Errors: none.
 * Failure: the feeding thread ends, and the board is reset a time-out later.
 */

/**
 * Request WDIOC_SETOPTIONS (0x80045704): switch it. Enabling begins the time-out.
 * Argument: WDIOS_ENABLECARD (2) or WDIOS_DISABLECARD (1), by value, although the code says "read": this
 *   driver takes the option itself.
 * Order: none; switching it to what it is, is accepted.
 * Errors: EINVAL: another value.
 * Failure: printed; one that counts as enabled is fed, and the library goes on.
 */

/**
 * Request WDIOC_SETTIMEOUT (0xC0045706): set the time-out, which begins anew.
 * Argument: pointer to a 32-bit number of seconds, 1 or more.
 * Order: enabled or not.
 * Errors: EINVAL: less than 1 s.
 * Failure: printed; the time-out that was in force stays.
 */

#endif
