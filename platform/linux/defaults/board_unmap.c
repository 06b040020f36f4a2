/* The default of board_unmap, alone in its source: see board_linux.h. */
#include "board_io.h"
#include "board_linux.h"

int board_unmap(void *address, size_t size)
{
    return board_linux_unmap(address, size);
}
