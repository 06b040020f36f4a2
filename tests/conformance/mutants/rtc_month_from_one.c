/* rtc_month_from_one - breaks: the clock chip's month counts from 0. */
#include "board_io.h"
#include "mutant.h"
#include "rtc_driver.h"

/* The chip's register counts from 1. */
int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    const int result = PLATFORM(board_ioctl)(descriptor, request, argument);
    if (result >= 0 && request == RTC_RD_TIME) ++((struct rtc_time *)argument)->tm_mon;
    return result;
}
