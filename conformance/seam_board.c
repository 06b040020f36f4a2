/* seam_board.c - recorded calls of the board's own input and output. */
#define RECORDS_SEAM
#include "seam.h"

#include <errno.h>
#include <inttypes.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>

#include "fb_driver.h"
#include "record.h"
#include "watchdog_driver.h"

enum { OPENINGS = 32, MAPPINGS = 16 };

/* What is open and mapped. Guarded by the lock. */
static pthread_mutex_t account_lock = PTHREAD_MUTEX_INITIALIZER;
static int opened[OPENINGS];
static int opened_count;
static struct Mapped {
    void *address;
    size_t size;
} mapped[MAPPINGS];
static int mapped_count;
static int shown_on = -1,
           watched_on = -1; /* descriptors by which the layer was shown, the watchdog enabled */

static const char *plain(int result, char *buffer, size_t size)
{
    snprintf(buffer, size, result < 0 ? "%d (errno %d)" : "%d", result, errno);
    return buffer;
}

int rec_board_open(const char *path, int flags)
{
    char text[48];
    const CallMark mark = call_begins("board_open");
    const int result = board_open(path, flags);
    pthread_mutex_lock(&account_lock);
    if (result >= 0 && opened_count < OPENINGS) opened[opened_count++] = result;
    pthread_mutex_unlock(&account_lock);
    call_ends(&mark, result >= 0, plain(result, text, sizeof text), "\"%s\", 0x%x",
              path != NULL ? path : "(null)", (unsigned)flags);
    return result;
}

int rec_board_close(int descriptor)
{
    char text[48];
    const CallMark mark = call_begins("board_close");
    const int result = board_close(descriptor);
    pthread_mutex_lock(&account_lock);
    for (int i = 0; result == 0 && i < opened_count; ++i)
        if (opened[i] == descriptor) {
            opened[i] = opened[--opened_count];
            break;
        }
    pthread_mutex_unlock(&account_lock);
    call_ends(&mark, result >= 0, plain(result, text, sizeof text), "%d", descriptor);
    return result;
}

int rec_board_read(int descriptor, void *buffer, size_t size)
{
    char text[48];
    const CallMark mark = call_begins("board_read");
    const int result = board_read(descriptor, buffer, size);
    plain(result, text, sizeof text);
    if (result == 4 && size >= 4) {
        uint32_t word;
        memcpy(&word, buffer, sizeof word);
        call_ends(&mark, result >= 0, text, "%d, {%" PRIu32 "}, %zu", descriptor, word, size);
    } else if (result >= 12 && size >= 12) {
        uint32_t word[3];
        memcpy(word, buffer, sizeof word);
        call_ends(&mark, result >= 0, text, "%d, {0x%" PRIx32 " 0x%" PRIx32 " 0x%" PRIx32 "%s}, %zu",
                  descriptor, word[0], word[1], word[2], result > 12 ? " ..." : "", size);
    } else {
        call_ends(&mark, result >= 0, text, "%d, buffer, %zu", descriptor, size);
    }
    return result;
}

int rec_board_ioctl(int descriptor, unsigned long request, void *argument)
{
    char text[48];
    const CallMark mark = call_begins("board_ioctl");
    const int result = board_ioctl(descriptor, request, argument);
    if (result >= 0 && request == FBIOSET_SHOW) shown_on = *(const uint8_t *)argument != 0 ? descriptor : -1;
    if (result >= 0 && request == (unsigned long)WDIOC_SETOPTIONS)
        watched_on = (uintptr_t)argument == WDIOS_ENABLECARD ? descriptor : -1;
    plain(result, text, sizeof text);
    if ((uintptr_t)argument < 4096)
        call_ends(&mark, result >= 0, text, "%d, 0x%08lx, %u", descriptor, request,
                  (unsigned)(uintptr_t)argument);
    else
        call_ends(&mark, result >= 0, text, "%d, 0x%08lx, record", descriptor, request);
    return result;
}

void *rec_board_map(int descriptor, size_t size)
{
    const CallMark mark = call_begins("board_map");
    void *result = board_map(descriptor, size);
    pthread_mutex_lock(&account_lock);
    if (result != NULL && mapped_count < MAPPINGS) mapped[mapped_count++] = (struct Mapped){result, size};
    pthread_mutex_unlock(&account_lock);
    call_ends(&mark, result != NULL, result != NULL ? "address" : "null", "%d, %zu", descriptor, size);
    return result;
}

int rec_board_unmap(void *address, size_t size)
{
    char text[48];
    const CallMark mark = call_begins("board_unmap");
    const int result = board_unmap(address, size);
    pthread_mutex_lock(&account_lock);
    for (int i = 0; result == 0 && i < mapped_count; ++i)
        if (mapped[i].address == address) {
            mapped[i] = mapped[--mapped_count];
            break;
        }
    pthread_mutex_unlock(&account_lock);
    call_ends(&mark, result >= 0, plain(result, text, sizeof text), "address, %zu", size);
    return result;
}

int rec_board_run_command(const char *command)
{
    char text[48];
    const CallMark mark = call_begins("board_run_command");
    const int result = board_run_command(command);
    call_ends(&mark, result >= 0, plain(result, text, sizeof text), "\"%s\"",
              command != NULL ? command : "(null)");
    return result;
}

void rec_board_sleep_us(uint32_t microseconds)
{
    const CallMark mark = call_begins("board_sleep_us");
    board_sleep_us(microseconds);
    call_ends(&mark, true, "(nothing)", "%" PRIu32, microseconds);
}

int64_t rec_board_time_us(void)
{
    char text[32];
    const CallMark mark = call_begins("board_time_us");
    const int64_t result = board_time_us();
    snprintf(text, sizeof text, "%" PRId64, result);
    call_ends(&mark, result >= 0, text, "%s", "");
    return result;
}

void seam_undo_board(void)
{
    uint8_t hidden = 0;
    if (shown_on >= 0) rec_board_ioctl(shown_on, FBIOSET_SHOW, &hidden);
    if (watched_on >= 0)
        rec_board_ioctl(watched_on, WDIOC_SETOPTIONS,
                        (void *)(uintptr_t)WDIOS_DISABLECARD); /* or it resets us */
    shown_on = watched_on = -1;
    while (mapped_count > 0)
        if (rec_board_unmap(mapped[mapped_count - 1].address, mapped[mapped_count - 1].size) != 0)
            --mapped_count;
    while (opened_count > 0)
        if (rec_board_close(opened[opened_count - 1]) != 0) --opened_count;
}
