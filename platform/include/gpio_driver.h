/*
 * gpio_driver.h - the output lines, "/dev/ms_gpio". The driver is a module that the library loads.
 *
 * Request codes are encoded as <linux/ioctl.h> does: direction, size, 'P', number. The size in them
 * is that of a single word, but the argument is a pointer to a GpioLine.
 */
#ifndef GPIO_DRIVER_H
#define GPIO_DRIVER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define GPIO_NODE         "/dev/ms_gpio"
#define GPIO_LOAD_COMMAND "insmod ms_gpio.ko"

#define GPIO_CONFIGURE_OUTPUT 0xC0045001u /* make the line an output and drive the value */
#define GPIO_DRIVE            0x40045004u /* drive the value of a line that is an output */

/** A line and its level. 8 bytes. */
typedef struct GpioLine {
    uint32_t line;  /* 0  line number       */
    uint32_t value; /* 4  1 = high, 0 = low */
} GpioLine;

#ifdef __cplusplus
}
#endif

#endif
