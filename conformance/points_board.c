/* points_board.c - the board's own input and output: descriptors, shell, sleep, wall clock. */
#define _GNU_SOURCE /* clocks, barriers and mappings, also with -std=c11 */
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <string.h>
#include <time.h>

#include "fb_driver.h"
#include "gpio_driver.h"
#include "ir_driver.h"
#include "keyboard_driver.h"
#include "points.h"
#include "record.h"
#include "rtc_driver.h"
#include "scene.h"
#include "watchdog_driver.h"

enum { NOT_OPEN = 987654 };

static void fails_with(int result, int error)
{
    const int seen = errno;
    HOLDS(result == -1, "%s, expected -1", last_call_text());
    HOLDS(seen == error, "%s: errno is %d (%s), expected %d (%s)", last_call_text(), seen, strerror(seen),
          error, strerror(error));
}

/* Which node is at hand to try descriptors on. */
static int need_node(void)
{
    static const char *const nodes[] = {KEYBOARD_NODE, RTC_NODE, FB_NODE, IR_NODE};
    static const int flags[] = {O_RDONLY, O_RDWR, O_RDWR, O_RDWR};
    for (int i = 0; i < 4; ++i) {
        const int descriptor = board_open(nodes[i], flags[i]);
        if (descriptor >= 0) return descriptor;
    }
    blocked("none of the device nodes can be opened");
}

POINT(open_nodes, "board.open.nodes", "board_open board_close",
      "the nodes of the start-up can be opened, with a descriptor of 1 or more, and closed")
{
    static const char *const nodes[] = {FB_NODE, WATCHDOG_NODE, RTC_NODE, GPIO_NODE, IR_NODE};
    board_run_command(GPIO_LOAD_COMMAND);
    for (int i = 0; i < 5; ++i) {
        const int descriptor = board_open(nodes[i], O_RDWR);
        HOLDS(descriptor >= 1, "%s, expected a descriptor of 1 or more", last_call_text());
        HOLDS(board_close(descriptor) == 0, "%s, expected 0", last_call_text());
    }
    const int panel = board_open(KEYBOARD_NODE, O_RDONLY);
    HOLDS(panel >= 1, "%s, expected a descriptor of 1 or more", last_call_text());
    HOLDS(board_close(panel) == 0, "%s, expected 0", last_call_text());
}

POINT(open_several, "board.open.several", "board_open",
      "a node is open several times at once, with different descriptors")
{
    const int first = need_node(), second = need_node();
    HOLDS(first != second, "two openings have the descriptor %d", first);
    HOLDS(board_close(first) == 0, "%s", last_call_text());
    HOLDS(board_close(second) == 0, "%s: closing the other one closed it too", last_call_text());
}

POINT(open_many, "board.open.many", "board_open board_close",
      "a thousand openings and closings leave nothing behind")
{
    record_successes(false);
    for (int i = 0; i < 1000; ++i) {
        const int descriptor = board_open(RTC_NODE, O_RDWR);
        HOLDS(descriptor >= 1 && descriptor < 100000, "opening %d: %s", i, last_call_text());
        HOLDS(board_close(descriptor) == 0, "%s", last_call_text());
    }
    record_successes(true);
}

POINT(open_absent, "board.open.absent", "board_open", "a node that is not there gives -1 and ENOENT")
{
    fails_with(board_open("/dev/no-such-node-of-any-board", O_RDWR), ENOENT);
}

POINT(close_twice, "board.close.not-open", "board_close",
      "what is not open, or was closed before, gives -1 and EBADF")
{
    const int descriptor = need_node();
    HOLDS(board_close(descriptor) == 0, "%s", last_call_text());
    fails_with(board_close(descriptor), EBADF);
    fails_with(board_close(NOT_OPEN), EBADF);
}

POINT(closed_calls, "board.close.ends-it", "board_close board_read board_ioctl board_map",
      "a closed descriptor gives EBADF from reads, requests and mappings")
{
    uint32_t words[8];
    const int descriptor = need_node();
    HOLDS(board_close(descriptor) == 0, "%s", last_call_text());
    fails_with(board_read(descriptor, words, sizeof words), EBADF);
    fails_with(board_ioctl(descriptor, KEYBOARD_KEY_POLLED, words), EBADF);
    errno = 0;
    const void *address = board_map(descriptor, 4096);
    HOLDS(address == NULL && errno == EBADF, "%s, errno %d, expected null and EBADF", last_call_text(),
          errno);
}

POINT(unknown_request, "board.ioctl.unknown", "board_ioctl",
      "a request that a node does not know gives -1 and ENOTTY")
{
    uint8_t record[256] = {0};
    const int clock = board_open(RTC_NODE, O_RDWR);
    if (clock < 0) blocked("%s", last_call_text());
    fails_with(board_ioctl(clock, 0x4004AB42u, record), ENOTTY);
}

POINT(read_small, "board.read.small-buffer", "board_read",
      "a buffer that is too small for a record gives EINVAL")
{
    uint8_t byte;
    const int receiver = board_open(IR_NODE, O_RDWR);
    if (receiver < 0) blocked("%s", last_call_text());
    fails_with(board_read(receiver, &byte, 1), EINVAL);
}

POINT(map_wrong, "board.map.no-memory", "board_map", "a node without memory cannot be mapped")
{
    const int clock = board_open(RTC_NODE, O_RDWR);
    if (clock < 0) blocked("%s", last_call_text());
    HOLDS(board_map(clock, 4096) == NULL, "%s, expected null", last_call_text());
}

POINT(command_status, "board.command.status", "board_run_command",
      "a command that does not exist gives 127, and loading the line driver comes back")
{
    const int loaded = board_run_command(GPIO_LOAD_COMMAND);
    HOLDS(loaded >= -1 && loaded <= 255, "%s is no exit status", last_call_text());
    const int missing = board_run_command("no-such-command-of-any-board");
    HOLDS(missing == 127, "%s, expected 127", last_call_text());
}

/* --------------------------------------------------------------------------------------- clocks --- */

POINT(sleep_long_enough, "board.sleep.not-less", "board_sleep_us", "a sleep is never shorter than asked for")
{
    static const uint32_t sleeps[] = {100, 1000, 20000, 150000};
    for (int i = 0; i < 4; ++i)
        for (int again = 0; again < 3; ++again) {
            board_sleep_us(sleeps[i]);
            HOLDS(last_call_ms() * 1000 >= sleeps[i] - 50, "asked for %u us, slept %.0f us",
                  (unsigned)sleeps[i], last_call_ms() * 1000);
        }
}

POINT(sleep_short_enough, "board.sleep.not-much-more", "board_sleep_us",
      "a sleep is at most 10 ms longer than asked for")
{
    static const uint32_t sleeps[] = {100, 1000, 20000, 100000};
    for (int i = 0; i < 4; ++i) {
        double least = 1e9;
        for (int again = 0; again < 5 && least > sleeps[i] / 1000.0 + 10; ++again) {
            board_sleep_us(sleeps[i]);
            if (last_call_ms() < least) least = last_call_ms();
        }
        IN_TIME(least <= sleeps[i] / 1000.0 + 10 * settings.patience,
                "asked for %u us, slept %.1f ms at the least", (unsigned)sleeps[i], least);
    }
}

static void *sleep_a_while(void *argument)
{
    (void)argument;
    board_sleep_us(150000);
    return NULL;
}

POINT(sleep_apart, "board.sleep.apart", "board_sleep_us", "sleeping threads do not wait for one another")
{
    double least = 1e9;
    for (int again = 0; again < 3 && least > 250; ++again) {
        pthread_t threads[4];
        const int64_t began_us = now_us();
        for (int i = 0; i < 4; ++i)
            if (pthread_create(&threads[i], NULL, sleep_a_while, NULL) != 0) blocked("no thread");
        for (int i = 0; i < 4; ++i)
            pthread_join(threads[i], NULL);
        const double took = (double)(now_us() - began_us) / 1000;
        if (took < least) least = took;
    }
    IN_TIME(least < patient_ms(250), "four threads that slept 150 ms at the same time took %.0f ms", least);
}

POINT(time_now, "board.time.wall-clock", "board_time_us",
      "the wall clock is that of the system: microseconds since 1970-01-01 00:00 UTC")
{
    struct timespec now;
    const int64_t board = board_time_us();
    clock_gettime(CLOCK_REALTIME, &now);
    const int64_t system = (int64_t)now.tv_sec * 1000000 + now.tv_nsec / 1000;
    HOLDS(board > system - 2000000 && board < system + 2000000, "it reads %lld, the system's %lld",
          (long long)board, (long long)system);
}

POINT(time_runs, "board.time.runs", "board_time_us",
      "the wall clock goes forward with real time, in microseconds")
{
    const int64_t began_us = now_us(), before = board_time_us();
    pause_ms(120);
    const int64_t after = board_time_us(), real_us = now_us() - began_us;
    IN_TIME(after - before > 115000 && after - before < real_us + 20000,
            "%.1f ms passed, on the wall clock %.1f ms", (double)real_us / 1000,
            (double)(after - before) / 1000);
    int64_t last = board_time_us();
    uint32_t changes = 0;
    record_successes(false);
    for (int i = 0; i < 2000; ++i) {
        const int64_t now = board_time_us();
        HOLDS(now >= last, "it went back from %lld to %lld", (long long)last, (long long)now);
        changes += now != last;
        last = now;
    }
    record_successes(true);
    HOLDS(changes > 20, "of 2000 readings only %u differ: it does not count microseconds", changes);
}

const Point *const board_points[] = {
    &point_open_nodes,  &point_open_several,   &point_open_many,         &point_open_absent,
    &point_close_twice, &point_closed_calls,   &point_unknown_request,   &point_read_small,
    &point_map_wrong,   &point_command_status, &point_sleep_long_enough, &point_sleep_short_enough,
    &point_sleep_apart, &point_time_now,       &point_time_runs,         NULL,
};
