/*
 * rtc_driver.h - the battery-backed clock, "/dev/rtc0": the kernel's standard requests.
 *
 * RTC_RD_TIME (0x80247009) and RTC_SET_TIME (0x4024700A) take a pointer to struct rtc_time: nine
 * 32-bit ints, second, minute, hour, day of month, month from 0, year from 1900, day of week, day of
 * year, daylight-saving flag.
 */
#ifndef RTC_DRIVER_H
#define RTC_DRIVER_H

#include <linux/rtc.h>

#define RTC_NODE "/dev/rtc0"

#endif
