/* The default of board_open, alone in its source: see board_linux.h. */
#include "board_io.h"
#include "board_linux.h"

int board_open(const char *path, int flags)
{
    return board_linux_open(path, flags);
}
