/* points_nodes.c - device nodes that the board runs by: battery-backed clock, watchdog, output lines. */
#define _GNU_SOURCE /* clocks, barriers and mappings, also with -std=c11 */
#include <fcntl.h>
#include <string.h>
#include <time.h>

#include "gpio_driver.h"
#include "hooks.h"
#include "node_requests.h"
#include "points.h"
#include "record.h"
#include "rtc_driver.h"
#include "watchdog_driver.h"

/* ----------------------------------------------------------------------------------------- clock --- */

static time_t seconds_of(const struct rtc_time *time)
{
    struct tm fields = {.tm_sec = time->tm_sec,
                        .tm_min = time->tm_min,
                        .tm_hour = time->tm_hour,
                        .tm_mday = time->tm_mday,
                        .tm_mon = time->tm_mon,
                        .tm_year = time->tm_year};
    return timegm(&fields);
}

static struct rtc_time date(int year, int month, int day, int hour, int minute, int second)
{
    struct rtc_time time;
    memset(&time, 0, sizeof time);
    time.tm_year = year - 1900;
    time.tm_mon = month - 1;
    time.tm_mday = day;
    time.tm_hour = hour;
    time.tm_min = minute;
    time.tm_sec = second;
    return time;
}

/* Put the clock right again, as far as the system knows what right is. */
static void set_right(int clock)
{
    const time_t now = time(NULL);
    struct tm fields;
    gmtime_r(&now, &fields);
    struct rtc_time right = date(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                                 fields.tm_min, fields.tm_sec);
    board_ioctl(clock, RTC_SET_TIME, &right);
}

/* The clock reads this time, or a second or two later. False: not. */
static bool reads(int clock, time_t wanted, struct rtc_time *read)
{
    memset(read, 0xEE, sizeof *read);
    expect_request(clock, RTC_RD_TIME, read);
    const time_t seen = seconds_of(read);
    return seen >= wanted && seen <= wanted + 2;
}

POINT(rtc_set, "rtc.set.reads-back", "board_ioctl",
      "the clock reads what it was set to, also at the ends of months")
{
    const struct rtc_time dates[] = {date(2024, 2, 29, 23, 30, 15), date(2031, 12, 31, 12, 0, 0),
                                     date(2026, 7, 1, 0, 0, 0), date(2025, 2, 28, 1, 2, 3)};
    const int clock = need_opened(RTC_NODE, O_RDWR);
    for (int i = 0; i < 4; ++i) {
        struct rtc_time set = dates[i], read;
        expect_request(clock, RTC_SET_TIME, &set);
        const bool same = reads(clock, seconds_of(&dates[i]), &read);
        if (!same) set_right(clock);
        HOLDS(same, "set to %04d-%02d-%02d %02d:%02d:%02d, read as %04d-%02d-%02d %02d:%02d:%02d",
              dates[i].tm_year + 1900, dates[i].tm_mon + 1, dates[i].tm_mday, dates[i].tm_hour,
              dates[i].tm_min, dates[i].tm_sec, read.tm_year + 1900, read.tm_mon + 1, read.tm_mday,
              read.tm_hour, read.tm_min, read.tm_sec);
    }
    set_right(clock);
}

POINT(rtc_runs, "rtc.read.runs", "board_ioctl",
      "the clock goes on by a second a second, also while its node is closed")
{
    struct rtc_time set = date(2026, 3, 31, 23, 59, 58), read;
    int clock = need_opened(RTC_NODE, O_RDWR);
    need_request(clock, RTC_SET_TIME, &set);
    HOLDS(board_close(clock) == 0, "%s", last_call_text());
    pause_ms(2300);
    clock = need_opened(RTC_NODE, O_RDWR);
    expect_request(clock, RTC_RD_TIME, &read);
    set_right(clock);
    const long passed = (long)(seconds_of(&read) - seconds_of(&set));
    HOLDS(passed >= 2, "2.3 s passed, on the clock %ld s", passed);
    IN_TIME(passed <= 3, "2.3 s passed, on the clock %ld s", passed);
    HOLDS(read.tm_mon == 3 && read.tm_mday == 1, "behind the 31st of March comes %d-%02d-%02d",
          read.tm_year + 1900, read.tm_mon + 1, read.tm_mday);
}

POINT(rtc_bad, "rtc.set.bad-date", "board_ioctl",
      "a date or time of day that does not exist gives EINVAL, and the clock goes on")
{
    struct rtc_time bad[] = {date(2025, 2, 29, 1, 1, 1), date(2025, 13, 1, 1, 1, 1),
                             date(2025, 4, 31, 1, 1, 1), date(2025, 4, 1, 24, 1, 1),
                             date(2025, 4, 1, 1, 60, 1)};
    struct rtc_time good = date(2026, 5, 6, 7, 8, 9), read;
    const int clock = need_opened(RTC_NODE, O_RDWR);
    need_request(clock, RTC_SET_TIME, &good);
    for (int i = 0; i < 5; ++i)
        expect_refused(clock, RTC_SET_TIME, &bad[i]);
    const bool same = reads(clock, seconds_of(&good), &read);
    set_right(clock);
    HOLDS(same, "after refusals the clock reads %04d-%02d-%02d", read.tm_year + 1900, read.tm_mon + 1,
          read.tm_mday);
}

/* -------------------------------------------------------------------------------------- watchdog --- */

static int need_watchdog(void)
{
    const int descriptor = need_opened(WATCHDOG_NODE, O_RDWR);
    need_request(descriptor, WDIOC_SETOPTIONS, by_value(WDIOS_DISABLECARD));
    return descriptor;
}

POINT(
    wdt_start, "watchdog.start-up", "board_ioctl",
    "switched off, switched on, 100 seconds, fed: the library's start succeeds, and it is switched off again")
{
    int32_t seconds = 100;
    const int watchdog = need_opened(WATCHDOG_NODE, O_RDWR);
    for (int i = 0; i < 2; ++i) {
        expect_request(watchdog, WDIOC_SETOPTIONS, by_value(WDIOS_DISABLECARD));
        expect_request(watchdog, WDIOC_SETOPTIONS, by_value(WDIOS_ENABLECARD));
        expect_request(watchdog, WDIOC_SETTIMEOUT, &seconds);
        expect_request(watchdog, WDIOC_KEEPALIVE, NULL);
    }
    expect_request(watchdog, WDIOC_SETOPTIONS, by_value(WDIOS_DISABLECARD));
    expect_request(watchdog, WDIOC_SETOPTIONS, by_value(WDIOS_DISABLECARD));
    expect_request(watchdog, WDIOC_KEEPALIVE, NULL);
}

POINT(wdt_options, "watchdog.options.bad-value", "board_ioctl", "an option that there is not gives EINVAL")
{
    const int watchdog = need_watchdog();
    expect_refused(watchdog, WDIOC_SETOPTIONS, by_value(77));
}

POINT(wdt_timeout_bad, "watchdog.time-out.bad-value", "board_ioctl",
      "a time-out of less than a second gives EINVAL")
{
    int32_t none = 0, negative = -5;
    const int watchdog = need_watchdog();
    expect_refused(watchdog, WDIOC_SETTIMEOUT, &none);
    expect_refused(watchdog, WDIOC_SETTIMEOUT, &negative);
}

POINT(wdt_expires, "watchdog.expires", "board_ioctl",
      "it runs out when nobody feeds it for its time-out, and not while it is fed")
{
    int32_t seconds = 1;
    if (conformance_hooks.watchdog_expired == NULL)
        not_tried("needs a board whose watchdog tells that it ran out instead of resetting it");
    const int watchdog = need_watchdog();
    need_request(watchdog, WDIOC_SETTIMEOUT, &seconds);
    need_request(watchdog, WDIOC_SETOPTIONS, by_value(WDIOS_ENABLECARD));
    for (int i = 0; i < 4; ++i) {
        pause_ms(350);
        expect_request(watchdog, WDIOC_KEEPALIVE, NULL);
        IN_TIME(conformance_hooks.watchdog_expired() == 0,
                "it ran out although it was fed every 350 ms of 1 s");
    }
    pause_ms(500);
    IN_TIME(conformance_hooks.watchdog_expired() == 0, "it ran out 500 ms after it was fed, of 1 s");
    pause_ms(650);
    HOLDS(conformance_hooks.watchdog_expired() == 1,
          "nobody fed it for 1.15 s of 1 s, and it has not run out");
    need_request(watchdog, WDIOC_SETOPTIONS, by_value(WDIOS_DISABLECARD));
}

POINT_WITH(FRESH, wdt_off, "watchdog.disabled", "board_ioctl board_open",
           "it does not run before it is enabled, nor after it was disabled; opening it does not enable it")
{
    int32_t seconds = 1;
    if (conformance_hooks.watchdog_expired == NULL)
        not_tried("needs a board whose watchdog tells that it ran out instead of resetting it");
    const int watchdog = need_opened(WATCHDOG_NODE, O_RDWR);
    need_request(watchdog, WDIOC_SETTIMEOUT, &seconds);
    pause_ms(1100);
    HOLDS(conformance_hooks.watchdog_expired() == 0, "it ran out although nobody enabled it");
    need_request(watchdog, WDIOC_SETOPTIONS, by_value(WDIOS_ENABLECARD));
    need_request(watchdog, WDIOC_SETOPTIONS, by_value(WDIOS_DISABLECARD));
    pause_ms(1100);
    HOLDS(conformance_hooks.watchdog_expired() == 0, "it ran out although it was disabled");
}

POINT(wdt_timeout, "watchdog.time-out.anew", "board_ioctl", "enabling and setting the time-out begin it anew")
{
    int32_t seconds = 1, longer = 3;
    if (conformance_hooks.watchdog_expired == NULL)
        not_tried("needs a board whose watchdog tells that it ran out instead of resetting it");
    const int watchdog = need_watchdog();
    need_request(watchdog, WDIOC_SETTIMEOUT, &seconds);
    pause_ms(500);
    need_request(watchdog, WDIOC_SETOPTIONS, by_value(WDIOS_ENABLECARD));
    pause_ms(600);
    IN_TIME(conformance_hooks.watchdog_expired() == 0, "it ran out 600 ms after it was enabled, of 1 s");
    expect_request(watchdog, WDIOC_SETTIMEOUT, &longer);
    pause_ms(1000);
    IN_TIME(conformance_hooks.watchdog_expired() == 0, "it ran out 1 s after its time-out was set to 3 s");
    need_request(watchdog, WDIOC_SETOPTIONS, by_value(WDIOS_DISABLECARD));
}

/* ----------------------------------------------------------------------------------------- lines --- */

/* The library's lines: Wi-Fi power and reset, buzzer, record, disk. */
static const uint32_t lines[] = {25, 26, 28, 34, 90};
enum { LINES = 5, BUZZER = 28, NO_LINE = 1 << 20 };

static int need_lines(void)
{
    board_run_command(GPIO_LOAD_COMMAND);
    board_sleep_us(1000);
    return need_opened(GPIO_NODE, O_RDWR);
}

static void level_is(uint32_t line, int wanted)
{
    if (conformance_hooks.gpio_level == NULL) return;
    const int level = conformance_hooks.gpio_level(line);
    HOLDS(level == wanted, "line %u is %d, expected %d", line, level, wanted);
}

POINT(gpio_configure, "gpio.configure.levels", "board_ioctl board_run_command",
      "each of the library's lines is made an output with either level, more than once")
{
    const int node = need_lines();
    for (int i = 0; i < LINES; ++i)
        for (uint32_t value = 0; value < 3; ++value) {
            GpioLine line = {lines[i], value % 2};
            expect_request(node, GPIO_CONFIGURE_OUTPUT, &line);
            level_is(lines[i], (int)value % 2);
        }
    if (conformance_hooks.gpio_level == NULL)
        ask_person("the lines went low, high, low: is a disk or record lamp dark, the buzzer silent?");
}

POINT(gpio_drive, "gpio.drive.levels", "board_ioctl",
      "an output is driven high and low, and no other line moves")
{
    const int node = need_lines();
    for (int i = 0; i < LINES; ++i) {
        GpioLine line = {lines[i], 0};
        need_request(node, GPIO_CONFIGURE_OUTPUT, &line);
    }
    for (int i = 0; i < LINES; ++i) {
        GpioLine line = {lines[i], 1};
        expect_request(node, GPIO_DRIVE, &line);
        for (int other = 0; other < LINES; ++other)
            level_is(lines[other], other == i);
        line.value = 0;
        expect_request(node, GPIO_DRIVE, &line);
        level_is(lines[i], 0);
    }
    if (conformance_hooks.gpio_level == NULL)
        ask_person("each line went high for a moment: was a short beep heard?");
}

POINT_WITH(FRESH, gpio_unset, "gpio.drive.no-output", "board_ioctl",
           "driving a line that was not made an output gives EINVAL")
{
    GpioLine line = {BUZZER, 1};
    const int node = need_lines();
    expect_refused(node, GPIO_DRIVE, &line);
}

POINT(gpio_bad, "gpio.refusals.no-line", "board_ioctl", "a line that there is not gives EINVAL")
{
    GpioLine line = {NO_LINE, 1};
    const int node = need_lines();
    expect_refused(node, GPIO_CONFIGURE_OUTPUT, &line);
    expect_refused(node, GPIO_DRIVE, &line);
}

const Point *const node_points[] = {
    &point_rtc_set,
    &point_rtc_runs,
    &point_rtc_bad,
    &point_wdt_start,
    &point_wdt_options,
    &point_wdt_timeout_bad,
    &point_wdt_off,
    &point_wdt_timeout,

    /* the last one: that it ran out may be told until the board is reset */
    &point_wdt_expires,

    &point_gpio_configure,
    &point_gpio_drive,
    &point_gpio_unset,
    &point_gpio_bad,
    NULL,
};
