/* gpio_drive_refused - breaks: a line that was made an output can be driven. */
#include "board_io.h"
#include "gpio_driver.h"
#include "mutant.h"

#include <errno.h>

/* Only the request that configures a line was carried over. */
int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    if (request != GPIO_DRIVE) return PLATFORM(board_ioctl)(descriptor, request, argument);
    errno = EINVAL;
    return -1;
}
