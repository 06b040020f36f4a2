/* io_time_in_seconds - breaks: the wall clock counts microseconds, not whole seconds. */
#include "board_io.h"
#include "mutant.h"

/* time() times a million. */
enum { kSecond_us = 1000000 };

int64_t board_time_us(void)
{
    return PLATFORM(board_time_us)() / kSecond_us * kSecond_us;
}
