/* The default of board_close, alone in its source: see board_linux.h. */
#include "board_io.h"
#include "board_linux.h"

int board_close(int descriptor)
{
    return board_linux_close(descriptor);
}
