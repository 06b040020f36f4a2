/* watchdog_option_pointer - breaks: the watchdog takes its option as a plain value. */
#include "board_io.h"
#include "mutant.h"
#include "watchdog_driver.h"

#include <errno.h>
#include <unistd.h>

/* The kernel's own convention: the argument is the address of the option. */
static int is_readable(const void *address)
{
    int ends[2];
    if (pipe(ends) != 0) return 0;
    const int readable = write(ends[1], address, sizeof(int)) == sizeof(int); /* EFAULT instead of a signal */
    close(ends[0]);
    close(ends[1]);
    return readable;
}

int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    if ((uint32_t)request != WDIOC_SETOPTIONS) return PLATFORM(board_ioctl)(descriptor, request, argument);
    if (!is_readable(argument)) {
        errno = EFAULT;
        return -1;
    }
    return PLATFORM(board_ioctl)(descriptor, request, (void *)(uintptr_t) * (int *)argument);
}
