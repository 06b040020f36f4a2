/* sys_clock_in_milliseconds - breaks: the media clock counts microseconds. */
#include "mi_sys.h"
#include "mutant.h"

/* The kernel's ticks, handed on as they are. */
int32_t MI_SYS_GetCurPts(uint64_t *pts)
{
    const int32_t result = PLATFORM(MI_SYS_GetCurPts)(pts);
    if (result == MI_SUCCESS) *pts /= 1000;
    return result;
}
