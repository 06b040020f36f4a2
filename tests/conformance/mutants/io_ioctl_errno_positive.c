/* io_ioctl_errno_positive - breaks: a driver request that fails gives a negative number. */
#include "board_io.h"
#include "mutant.h"

#include <errno.h>

/* The error's number, as a raw system call would give it, without its sign. */
int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    const int result = PLATFORM(board_ioctl)(descriptor, request, argument);
    return result < 0 ? errno : result;
}
