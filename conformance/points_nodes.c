/*
 * points_nodes.c - the device nodes besides the framebuffer: battery-backed clock, watchdog, output lines,
 * front panel, infrared receiver, mouse, analog inputs.
 */
#define _GNU_SOURCE /* clocks, barriers and mappings, also with -std=c11 */
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <string.h>
#include <time.h>

#include "ad_driver.h"
#include "gpio_driver.h"
#include "hooks.h"
#include "ir_driver.h"
#include "keyboard_driver.h"
#include "mouse_driver.h"
#include "points.h"
#include "record.h"
#include "rtc_driver.h"
#include "scene.h"
#include "watchdog_driver.h"

static int need_opened(const char *path, int flags)
{
    const int descriptor = board_open(path, flags);
    if (descriptor < 0) blocked("could not be set up: %s", last_call_text());
    return descriptor;
}

static void expect_request(int descriptor, unsigned long request, void *record)
{
    HOLDS(board_ioctl(descriptor, request, record) >= 0, "%s, expected success", last_call_text());
}

static void need_request(int descriptor, unsigned long request, void *record)
{
    if (board_ioctl(descriptor, request, record) < 0) blocked("could not be set up: %s", last_call_text());
}

static void expect_refused(int descriptor, unsigned long request, void *record)
{
    const int result = board_ioctl(descriptor, request, record);
    HOLDS(result == -1 && errno == EINVAL, "%s, errno %d, expected -1 and EINVAL", last_call_text(), errno);
}

static void *by_value(uintptr_t value)
{
    return (void *)value;
}

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

/* ----------------------------------------------------------------------------------- front panel --- */

enum { KEY_MENU = 109, KEY_UP = 107, KEY_ENTER = 106 };

static void press_panel(uint32_t code, const char *name)
{
    if (conformance_hooks.panel_press == NULL) {
        ask_to_do("press the panel's key \"%s\"", name);
        return;
    }
    if (conformance_hooks.panel_press(code) != 0) not_tried("the panel hook failed");
    note("the panel's key \"%s\", code %u, is pressed", name, code);
}

static void drain(int descriptor, size_t size)
{
    uint8_t record[64];
    while (board_read(descriptor, record, size) > 0) {
    }
}

POINT(panel_none, "panel.read.none", "board_read",
      "without a key a read gives 0 bytes at once, and writes nothing")
{
    uint32_t code = 0xEEEEEEEE;
    const int panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    drain(panel, sizeof code);
    code = 0xEEEEEEEE;
    for (int i = 1;; ++i) {
        const int got = board_read(panel, &code, sizeof code);
        HOLDS(got == 0, "%s, expected 0", last_call_text());
        if (i == 3 || took_within(0, 10)) break;
    }
    expect_took(0, 10);
    HOLDS(code == 0xEEEEEEEE, "a read of nothing has written 0x%08x", code);
}

static void panel_reads(int panel, uint32_t wanted)
{
    uint32_t code = 0;
    const int64_t until_us = now_us() + (int64_t)patient_ms(1000) * 1000;
    int got;
    while ((got = board_read(panel, &code, sizeof code)) == 0 && now_us() < until_us)
        pause_ms(2);
    HOLDS(got == (int)sizeof code, "%s, expected %zu bytes of a key", last_call_text(), sizeof code);
    HOLDS(code == wanted, "the key of code %u was pressed, %u was read", wanted, code);
}

POINT(panel_keys, "panel.read.keys", "board_read",
      "each key is read once, with its code, in the order of pressing")
{
    uint32_t code;
    const int panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    drain(panel, sizeof code);
    press_panel(KEY_MENU, "menu");
    press_panel(KEY_UP, "up");
    press_panel(KEY_ENTER, "enter");
    panel_reads(panel, KEY_MENU);
    panel_reads(panel, KEY_UP);
    panel_reads(panel, KEY_ENTER);
    HOLDS(board_read(panel, &code, sizeof code) == 0, "%s: a key that was not pressed", last_call_text());
}

POINT(panel_openings, "panel.read.each-opening", "board_read board_open", "each opening is given every key")
{
    const int first = need_opened(KEYBOARD_NODE, O_RDONLY), second = need_opened(KEYBOARD_NODE, O_RDONLY);
    press_panel(KEY_MENU, "menu");
    panel_reads(first, KEY_MENU);
    panel_reads(second, KEY_MENU);
}

POINT(panel_lamp, "panel.lamp", "board_ioctl", "the record lamp is lit and darkened")
{
    const int panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    for (uint32_t value = 1; value < 5; ++value) {
        uint32_t lit = value % 2;
        expect_request(panel, KEYBOARD_RECORD_LAMP, &lit);
        if (conformance_hooks.record_lamp == NULL)
            ask_person("is the record lamp %s?", lit ? "lit" : "dark");
        else
            HOLDS(conformance_hooks.record_lamp() == (int)lit, "told %u, the lamp is %d", lit,
                  conformance_hooks.record_lamp());
    }
}

POINT(panel_polled, "panel.polled", "board_ioctl", "the panel is told of polls of the key queue")
{
    uint32_t taken = 0, empty = 1;
    const int panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    expect_request(panel, KEYBOARD_KEY_POLLED, &taken);
    expect_request(panel, KEYBOARD_KEY_POLLED, &empty);
}

POINT(panel_bad, "panel.refusals.bad-value", "board_ioctl", "other values than 0 and 1 give EINVAL")
{
    uint32_t bad = 77;
    const int panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    expect_refused(panel, KEYBOARD_RECORD_LAMP, &bad);
    expect_refused(panel, KEYBOARD_KEY_POLLED, &bad);
}

/* -------------------------------------------------------------------------------------- receiver --- */

static const uint32_t code_menu = 0x659AFF00u, code_up = 0x6699FF00u;

static void press_ir(uint32_t code, const char *name)
{
    if (conformance_hooks.ir_press == NULL) {
        ask_to_do("press the remote control's button \"%s\" shortly", name);
        return;
    }
    if (conformance_hooks.ir_press(code) != 0) not_tried("the remote control hook failed");
    note("the button \"%s\" is pressed", name);
}

POINT(ir_waits, "ir.read.waits", "board_read",
      "without a frame a read waits 50 ms or more, and then gives 0 bytes")
{
    IrFrame frame;
    const int receiver = need_opened(IR_NODE, O_RDWR);
    const int got = board_read(receiver, &frame, sizeof frame);
    HOLDS(got == 0, "%s, expected 0", last_call_text());
    HOLDS(last_call_ms() >= 48,
          "%s came back after %.1f ms: the key reader would turn in a loop without a pause", last_call_text(),
          last_call_ms());
    IN_TIME(last_call_ms() <= patient_ms(400), "%s came back after %.1f ms", last_call_text(),
            last_call_ms());
}

/* The next frame of a pressed button. */
static void ir_reads(int receiver, uint32_t wanted)
{
    IrFrame frame = {0, 0, 0};
    for (int i = 0; i < 20; ++i) {
        const int got = board_read(receiver, &frame, sizeof frame);
        HOLDS(got == 0 || got == (int)sizeof frame, "%s, expected 0 or %zu", last_call_text(), sizeof frame);
        if (got == 0 || frame.state != 0) continue;
        HOLDS(frame.code == wanted, "a button sent 0x%08x, 0x%08x was read", wanted, frame.code);
        return;
    }
    broken("the frame of a pressed button, code 0x%08x, did not come", wanted);
}

POINT(ir_frames, "ir.read.frames", "board_read",
      "a pressed button gives a frame with its code and state 0, and letting go one of another state")
{
    IrFrame frame = {0, 0, 0};
    const int receiver = need_opened(IR_NODE, O_RDWR);
    press_ir(code_menu, "menu");
    ir_reads(receiver, code_menu);
    const int got = board_read(receiver, &frame, sizeof frame);
    HOLDS(got == 0 || frame.state != 0 || frame.code == code_menu, "behind the button came 0x%08x",
          frame.code);
    press_ir(code_up, "up");
    for (int i = 0; i < 20; ++i) {
        if (board_read(receiver, &frame, sizeof frame) != (int)sizeof frame || frame.state != 0) continue;
        if (frame.code == code_up) return;
    }
    broken("the frame of the second button did not come");
}

POINT(ir_at_once, "ir.read.at-once", "board_read", "a frame that comes ends the wait of a read")
{
    IrFrame frame;
    if (conformance_hooks.ir_press == NULL) not_tried("needs the remote control hook");
    const int receiver = need_opened(IR_NODE, O_RDWR);
    press_ir(code_menu, "menu");
    const int got = board_read(receiver, &frame, sizeof frame);
    HOLDS(got == (int)sizeof frame, "%s, expected %zu", last_call_text(), sizeof frame);
    IN_TIME(last_call_ms() < patient_ms(40), "a frame was there, and the read took %.1f ms", last_call_ms());
}

POINT(ir_openings, "ir.read.each-opening", "board_read board_open", "each opening is given every frame")
{
    const int first = need_opened(IR_NODE, O_RDWR), second = need_opened(IR_NODE, O_RDWR);
    press_ir(code_menu, "menu");
    ir_reads(first, code_menu);
    ir_reads(second, code_menu);
}

static void *read_once(void *argument)
{
    IrFrame frame;
    board_read(*(const int *)argument, &frame, sizeof frame);
    return NULL;
}

POINT(ir_holds_nobody, "ir.read.holds-nobody", "board_read board_ioctl",
      "while a read waits other calls come back at once")
{
    pthread_t thread;
    uint32_t dark = 0;
    double slowest = 0;
    const int receiver = need_opened(IR_NODE, O_RDWR), panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    if (pthread_create(&thread, NULL, read_once, (void *)&receiver) != 0) blocked("no thread");
    pause_ms(10);
    for (int i = 0; i < 3; ++i) {
        board_ioctl(panel, KEYBOARD_RECORD_LAMP, &dark);
        if (i == 0 || last_call_ms() < slowest) slowest = last_call_ms();
    }
    pthread_join(thread, NULL);
    IN_TIME(slowest < patient_ms(20),
            "a request to the panel took %.0f ms while a read of the receiver waited", slowest);
}

/* ----------------------------------------------------------------------------------------- mouse --- */

static int need_mouse(void)
{
    const int mouse = board_open(MOUSE_NODE, O_RDONLY);
    if (mouse < 0) not_tried("this board has no mouse: %s", last_call_text());
    if (conformance_hooks.mouse_move == NULL || conformance_hooks.mouse_buttons == NULL ||
        conformance_hooks.mouse_wheel == NULL)
        not_tried("needs the mouse hooks");
    return mouse;
}

static MouseEvent next_mouse(int mouse)
{
    MouseEvent event;
    memset(&event, 0xEE, sizeof event);
    for (int i = 0; i < 10; ++i) {
        const int got = board_read(mouse, &event, sizeof event);
        if (got == (int)sizeof event) return event;
        HOLDS(got == 0, "%s, expected 0 or %zu", last_call_text(), sizeof event);
    }
    broken("the mouse was moved, and no event came");
}

POINT(mouse_events, "mouse.read.events", "board_read",
      "moves, buttons and the wheel give an event each, with the state after it")
{
    const int mouse = need_mouse();
    conformance_hooks.mouse_move(640, 360);
    conformance_hooks.mouse_buttons(MOUSE_BUTTON_LEFT);
    conformance_hooks.mouse_wheel(-2);
    conformance_hooks.mouse_buttons(0);
    MouseEvent event = next_mouse(mouse);
    HOLDS(event.type == MOUSE_EVENT_MOVE && event.x == 640 && event.y == 360,
          "a move to 640,360 gave type %u at %d,%d", event.type, (int)event.x, (int)event.y);
    event = next_mouse(mouse);
    HOLDS(event.type == MOUSE_EVENT_BUTTON && event.buttons == MOUSE_BUTTON_LEFT && event.x == 640,
          "the left button gave type %u, buttons %u at %d,%d", event.type, event.buttons, (int)event.x,
          (int)event.y);
    event = next_mouse(mouse);
    HOLDS(event.type == MOUSE_EVENT_WHEEL && event.wheel == -2, "two notches gave type %u, wheel %d",
          event.type, (int)event.wheel);
    event = next_mouse(mouse);
    HOLDS(event.type == MOUSE_EVENT_BUTTON && event.buttons == 0, "letting go gave type %u, buttons %u",
          event.type, event.buttons);
}

POINT(mouse_waits, "mouse.read.waits", "board_read",
      "without an event a read waits a while, 200 ms at most, and gives 0 bytes")
{
    MouseEvent event;
    const int mouse = board_open(MOUSE_NODE, O_RDONLY);
    if (mouse < 0) not_tried("this board has no mouse: %s", last_call_text());
    const int got = board_read(mouse, &event, sizeof event);
    HOLDS(got == 0, "%s, expected 0", last_call_text());
    HOLDS(last_call_ms() >= 20, "it waited %.1f ms", last_call_ms());
    IN_TIME(last_call_ms() <= patient_ms(250), "it waited %.1f ms", last_call_ms());
}

/* --------------------------------------------------------------------------------- analog inputs --- */

static int need_analog(void)
{
    const int node = board_open(AD_NODE, O_RDWR);
    if (node < 0) not_tried("this board has no analog inputs: %s", last_call_text());
    return node;
}

POINT(ad_norm, "analog.norm.reads-back", "board_ioctl", "the video norm is read as it was set")
{
    const int node = need_analog();
    for (uint32_t norm = 0; norm < 2; ++norm) {
        AdChipValue set = {AD_CHIP_SELECTOR, norm}, read = {AD_CHIP_SELECTOR, 77};
        expect_request(node, AD_SET_NORM, &set);
        expect_request(node, AD_GET_NORM, &read);
        HOLDS(read.value == norm, "set to %u, read as %u", norm, read.value);
    }
}

POINT(ad_adjust, "analog.adjust.reads-back", "board_ioctl", "the colour adjustment is read as it was set")
{
    AdColorAdjust set = {{11, 22, 33}}, read = {{0, 0, 0}};
    const int node = need_analog();
    expect_request(node, AD_SET_ADJUST, &set);
    expect_request(node, AD_GET_ADJUST, &read);
    HOLDS(memcmp(&read, &set, sizeof read) == 0, "set to 11, 22, 33, read as %u, %u, %u", read.values[0],
          read.values[1], read.values[2]);
}

POINT(ad_settings, "analog.settings.accepted", "board_ioctl",
      "work modes, sampling, playback, volume, format, width, mute, area and sensitivity are accepted")
{
    static const unsigned long requests[] = {AD_SET_AUDIO_PLAYBACK, AD_SET_AUDIO_VOLUME, AD_SET_AUDIO_FORMAT,
                                             AD_SET_AUDIO_BITWIDTH, AD_SET_MUTE};
    static AdMotionArea area;
    const int node = need_analog();
    for (uint32_t channel = 0; channel < 8; ++channel) {
        const uint8_t chip = (uint8_t)(channel / AD_INPUTS_PER_CHIP),
                      input = (uint8_t)(channel % AD_INPUTS_PER_CHIP);
        AdWorkMode mode = {chip, 3, input};
        AdMotionSensitivity sensitivity = {chip, input, {0, 0}, 5};
        area.chip = chip;
        area.input = input;
        memset(area.mask, 0xFF, sizeof area.mask);
        expect_request(node, AD_SET_WORK_MODE, &mode);
        expect_request(node, AD_MOTION_SET_AREA, &area);
        expect_request(node, AD_MOTION_SET_SENSITIVITY, &sensitivity);
    }
    for (uint32_t code = 0; code <= 4; ++code) {
        AdSampleRate rate = {AD_CHIP_SELECTOR, code, 0};
        expect_request(node, AD_SET_SAMPLE_RATE, &rate);
    }
    for (int i = 0; i < 5; ++i) {
        AdChipValue value = {AD_CHIP_SELECTOR, 0};
        expect_request(node, requests[i], &value);
    }
    expect_request(node, AD_MOTION_START, NULL);
    expect_request(node, AD_MOTION_START, NULL);
}

POINT(ad_bad, "analog.refusals.bad-values", "board_ioctl",
      "a chip, input, selector or rate code that there is not gives EINVAL")
{
    AdVideoLoss loss = {99, 0, 0};
    AdWorkMode mode = {0, 1, 9};
    AdChipValue value = {7, 0};
    AdSampleRate rate = {AD_CHIP_SELECTOR, 5, 0};
    AdMotionQuery query = {99, 0, {0, 0}, 0};
    const int node = need_analog();
    expect_refused(node, AD_GET_LOSS, &loss);
    expect_refused(node, AD_SET_WORK_MODE, &mode);
    expect_refused(node, AD_SET_NORM, &value);
    expect_refused(node, AD_SET_MUTE, &value);
    expect_refused(node, AD_SET_SAMPLE_RATE, &rate);
    expect_refused(node, AD_MOTION_GET_AREA, &query);
}

static bool input_is_lost(int node, uint32_t channel)
{
    AdVideoLoss loss = {channel / AD_INPUTS_PER_CHIP, channel % AD_INPUTS_PER_CHIP, 77};
    expect_request(node, AD_GET_LOSS, &loss);
    return loss.lost != 0;
}

POINT(ad_loss, "analog.loss", "board_ioctl",
      "an input whose cable is pulled is told as lost, and no other one")
{
    static const uint32_t channels[] = {0, 3, 6, 15};
    const int node = need_analog();
    if (conformance_hooks.analog_loss == NULL) not_tried("needs the analog input hook");
    for (int i = 0; i < 4; ++i) {
        conformance_hooks.analog_loss(channels[i], 1);
        for (int other = 0; other < 4; ++other)
            HOLDS(input_is_lost(node, channels[other]) == (other == i),
                  "input %u was pulled, and input %u is told as %s", channels[i], channels[other],
                  other == i ? "present" : "lost");
        conformance_hooks.analog_loss(channels[i], 0);
        HOLDS(!input_is_lost(node, channels[i]), "input %u is back, and is told as lost", channels[i]);
    }
}

static uint32_t moving_blocks(int node, uint32_t channel)
{
    AdMotionQuery query = {
        (uint8_t)(channel / AD_INPUTS_PER_CHIP), (uint8_t)(channel % AD_INPUTS_PER_CHIP), {0, 0}, 77};
    expect_request(node, AD_MOTION_GET_AREA, &query);
    return query.result;
}

POINT_WITH(FRESH, ad_motion, "analog.motion", "board_ioctl",
           "moving blocks are told once watching was started, of each input for itself")
{
    static AdMotionArea area;
    const int node = need_analog();
    if (conformance_hooks.analog_motion == NULL) not_tried("needs the analog motion hook");
    area.chip = 1;
    area.input = 2;
    memset(area.mask, 0xFF, sizeof area.mask);
    need_request(node, AD_MOTION_SET_AREA, &area);
    conformance_hooks.analog_motion(6, 25);
    HOLDS(moving_blocks(node, 6) == 0, "watching was not started, and blocks are told as moving");
    need_request(node, AD_MOTION_START, NULL);
    const uint32_t moving = moving_blocks(node, 6);
    HOLDS(moving == 25, "25 blocks move, %u are told", moving);
    HOLDS(moving_blocks(node, 5) == 0, "nothing moves at input 5, and it is told");
    conformance_hooks.analog_motion(6, 0);
    HOLDS(moving_blocks(node, 6) == 0, "nothing moves any more, and it is told");
}

const Point *const node_points[] = {
    &point_rtc_set,        &point_rtc_runs,        &point_rtc_bad,         &point_wdt_start,
    &point_wdt_options,    &point_wdt_timeout_bad, &point_wdt_off,         &point_wdt_timeout,
    &point_wdt_expires, /* the last one: that it ran out may be told until the board is reset */

    &point_gpio_configure, &point_gpio_drive,      &point_gpio_unset,      &point_gpio_bad,
    &point_panel_none,     &point_panel_keys,      &point_panel_openings,  &point_panel_lamp,
    &point_panel_polled,   &point_panel_bad,       &point_ir_waits,        &point_ir_frames,
    &point_ir_at_once,     &point_ir_openings,     &point_ir_holds_nobody, &point_mouse_events,
    &point_mouse_waits,    &point_ad_norm,         &point_ad_adjust,       &point_ad_settings,
    &point_ad_bad,         &point_ad_loss,         &point_ad_motion,       NULL,
};
