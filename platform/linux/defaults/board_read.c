/* The default of board_read, alone in its source: see board_linux.h. */
#include "board_io.h"
#include "board_linux.h"

int board_read(int descriptor, void *buffer, size_t size)
{
    return board_linux_read(descriptor, buffer, size);
}
