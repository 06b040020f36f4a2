/* own_ioctl.c - a porter's board_ioctl: one node is answered here, the others are passed on. */
#include "board_io.h"
#include "board_linux.h"

enum { kOwnDescriptor = 7000, kOwnAnswer = 42 };

int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    if (descriptor == kOwnDescriptor) return kOwnAnswer;
    return board_linux_ioctl(descriptor, request, argument);
}
