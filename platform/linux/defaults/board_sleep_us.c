/* The default of board_sleep_us, alone in its source: see board_linux.h. */
#include "board_io.h"
#include "board_linux.h"

void board_sleep_us(uint32_t microseconds)
{
    board_linux_sleep_us(microseconds);
}
