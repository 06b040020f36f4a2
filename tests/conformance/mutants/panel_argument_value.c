/* panel_argument_value - breaks: the panel is told its values through a pointer. */
#include "board_io.h"
#include "keyboard_driver.h"
#include "mutant.h"

#include <errno.h>

/* The argument taken for the value itself. */
int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    if (request != KEYBOARD_RECORD_LAMP && request != KEYBOARD_KEY_POLLED)
        return PLATFORM(board_ioctl)(descriptor, request, argument);
    uint32_t value = (uint32_t)(uintptr_t)argument;
    if ((uintptr_t)argument <= 1) return PLATFORM(board_ioctl)(descriptor, request, &value);
    errno = EINVAL;
    return -1;
}
