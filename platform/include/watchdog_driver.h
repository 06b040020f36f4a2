/*
 * watchdog_driver.h - the hardware watchdog, "/dev/watchdog": the kernel's standard requests.
 *
 * Once enabled, the watchdog resets the board when nobody has fed it for its time-out. Feeding and
 * switching take a plain value as their argument, the time-out a pointer.
 */
#ifndef WATCHDOG_DRIVER_H
#define WATCHDOG_DRIVER_H

#include <linux/watchdog.h>

#define WATCHDOG_NODE "/dev/watchdog"

/*
 * WDIOC_KEEPALIVE   0x80045705  argument 0                      feed
 * WDIOC_SETOPTIONS  0x80045704  WDIOS_ENABLECARD (2) or WDIOS_DISABLECARD (1), by value, although
 *                               the code says "read": this driver takes the option itself
 * WDIOC_SETTIMEOUT  0xC0045706  pointer to a 32-bit number of seconds
 */

#endif
