/* The default of board_ioctl, alone in its source: see board_linux.h. */
#include "board_io.h"
#include "board_linux.h"

int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    return board_linux_ioctl(descriptor, request, argument);
}
