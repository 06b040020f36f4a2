/*
 * gpio_driver.h - the output lines, "/dev/ms_gpio". The driver is a module that the library loads.
 *
 * Request codes are encoded as <linux/ioctl.h> does: direction, size, 'P', number. The size in them
 * is that of a single word, but the argument is a pointer to a GpioLine.
 *
 * Headings of the comments: see mi_common.h. Thread: any. Time: at once. The library runs
 * GPIO_LOAD_COMMAND at start-up, waits 1 ms, opens the node and keeps it open. A node that cannot be
 * opened then is printed, and start-up ends with -1.
 */
#ifndef GPIO_DRIVER_H
#define GPIO_DRIVER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define GPIO_NODE         "/dev/ms_gpio"      /* path of the node                            */
#define GPIO_LOAD_COMMAND "insmod ms_gpio.ko" /* what board_run_command is given at start-up */

/**
 * Make a line an output that drives the value.
 * Argument: GpioLine.
 * Order: before GPIO_DRIVE of that line; again for one that is an output already.
 * Errors: EINVAL: there is no such line.
 * Failure: printed; start-up ends with -1, and the lines before it stay as they were set up.
 */
#define GPIO_CONFIGURE_OUTPUT 0xC0045001u

/**
 * Drive a value on a line that is an output.
 * Argument: GpioLine.
 * Order: after GPIO_CONFIGURE_OUTPUT.
 * Errors: EINVAL: there is no such line, or it is no output.
 * Failure: printed; start-up ends with -1, or ext_buzzer_set returns -1.
 */
#define GPIO_DRIVE 0x40045004u

/** A line and its level. 8 bytes. */
typedef struct GpioLine {
    uint32_t line;  /* 0  line number       */
    uint32_t value; /* 4  0 = low, else high */
} GpioLine;

#ifdef __cplusplus
}
#endif

#endif
