/*
 * rtc_driver.h - the battery-backed clock, "/dev/rtc0": the kernel's standard requests.
 *
 * Both take a pointer to struct rtc_time: nine 32-bit ints, second, minute, hour, day of month, month
 * from 0, year from 1900, day of week, day of year, daylight-saving flag. The clock holds UTC.
 *
 * Headings of the comments: see mi_common.h. Thread: any. Time: 100 ms at most. The library opens the
 * node for each request and closes it afterwards; one that cannot be opened is printed, and
 * ext_rtc_time_system returns -1.
 */
#ifndef RTC_DRIVER_H
#define RTC_DRIVER_H

#include <linux/rtc.h>

#define RTC_NODE "/dev/rtc0" /* path of the node */

/**
 * Request RTC_RD_TIME (0x80247009): read the clock.
 * Argument: struct rtc_time, filled.
 * Order: none.
 * Errors: EINVAL: the battery has failed, and the time was not set since.
 * Failure: printed; ext_rtc_time_system returns -1, with the record as it was.
 */

/**
 * Request RTC_SET_TIME (0x4024700A): set the clock. It goes on from there without power.
 * Argument: struct rtc_time; day of week, day of year and the flag are not looked at.
 * Order: none.
 * Errors: EINVAL: there is no such date or time of day; the library checks nothing.
 * Failure: printed; ext_rtc_time_system returns -1.
 */

#endif
