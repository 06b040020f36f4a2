/* The default of board_time_us, alone in its source: see board_linux.h. */
#include "board_io.h"
#include "board_linux.h"

int64_t board_time_us(void)
{
    return board_linux_time_us();
}
