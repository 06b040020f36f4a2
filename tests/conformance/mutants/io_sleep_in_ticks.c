/* io_sleep_in_ticks - breaks: a sleep lasts at least as long as was asked for. */
#include "board_io.h"
#include "mutant.h"

/* Whole ticks of 10 ms, rounded down. */
enum { kTick_us = 10000 };

void board_sleep_us(uint32_t microseconds)
{
    const uint32_t ticks = microseconds / kTick_us;
    if (ticks > 0) PLATFORM(board_sleep_us)(ticks * kTick_us);
}
