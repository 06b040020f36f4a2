/*
 * record_board.c - the operating system of the recording platform in C: nodes by path, a clock that only
 * sleeping moves, a framebuffer of 1280 x 720 pixels of 16 bits.
 */
#include <errno.h>
#include <fcntl.h>
#include <inttypes.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "board_io.h"
#include "fb_driver.h"
#include "recording.h"
#include "rtc_driver.h"

enum {
    FIRST_DESCRIPTOR = 3,
    MOST_OPEN = 64,
    MOST_MAPPINGS = 4,
    PAGE_BYTES = 4096,
    NAME_BYTES = 64,
    WIDTH_PX = 1280,
    HEIGHT_PX = 720,
    PIXEL_BYTES = 2,
    LARGEST_PLAIN_VALUE = 0xFFFF, /* of a request's argument; beyond it, it is an address */
};

static char open_nodes[MOST_OPEN][NAME_BYTES]; /* by descriptor; "" = not open */
static int next_descriptor = FIRST_DESCRIPTOR;
static char absent_node[NAME_BYTES];
static int64_t now_us;
static struct mapping {
    void *address;
    char name[NAME_BYTES];
} mappings[MOST_MAPPINGS];

void recording_node_is_absent(const char *path)
{
    snprintf(absent_node, sizeof absent_node, "%s", path);
}

static bool is_open(int descriptor)
{
    return descriptor >= 0 && descriptor < MOST_OPEN && open_nodes[descriptor][0] != '\0';
}

static const char *node_name(int descriptor, char number[NAME_BYTES])
{
    if (is_open(descriptor)) return open_nodes[descriptor];
    snprintf(number, NAME_BYTES, "%d", descriptor);
    return number;
}

static int refuse_descriptor(void)
{
    errno = EBADF;
    return -1;
}

int board_open(const char *path, int flags)
{
    const int access = flags & O_ACCMODE;
    const int32_t result =
        record_call("board_open", "%s %s%s%s%s%s", path,
                    access == O_RDWR     ? "rdwr"
                    : access == O_WRONLY ? "wronly"
                                         : "rdonly",
                    (flags & O_SYNC) == O_SYNC ? "+sync" : "", flags & O_CREAT ? "+creat" : "",
                    flags & O_TRUNC ? "+trunc" : "", flags & O_NONBLOCK ? "+nonblock" : "");
    if (result != 0) return result;
    if (strcmp(path, absent_node) == 0 || next_descriptor == MOST_OPEN) return -1;
    snprintf(open_nodes[next_descriptor], NAME_BYTES, "%s", path);
    return next_descriptor++;
}

int board_close(int descriptor)
{
    char number[NAME_BYTES];
    const int32_t result = record_call("board_close", "%s", node_name(descriptor, number));
    if (!is_open(descriptor)) return refuse_descriptor();
    open_nodes[descriptor][0] = '\0';
    return result;
}

int board_read(int descriptor, void *buffer, size_t size)
{
    char number[NAME_BYTES];
    (void)buffer;
    const int32_t result = record_call("board_read", "%s %zu", node_name(descriptor, number), size);
    return is_open(descriptor) ? result : refuse_descriptor(); /* nothing there to be read */
}

static void answer_clock(struct rtc_time *time)
{
    const time_t now_s = (time_t)(now_us / 1000000);
    struct tm parts = {0};
    gmtime_r(&now_s, &parts);
    *time = (struct rtc_time){parts.tm_sec,  parts.tm_min,  parts.tm_hour, parts.tm_mday, parts.tm_mon,
                              parts.tm_year, parts.tm_wday, parts.tm_yday, parts.tm_isdst};
}

static void answer_variable(struct fb_var_screeninfo *variable)
{
    memset(variable, HANDED_OUT_BYTE, sizeof *variable);
    variable->xres = variable->xres_virtual = WIDTH_PX;
    variable->yres = variable->yres_virtual = HEIGHT_PX;
    variable->xoffset = variable->yoffset = 0;
    variable->bits_per_pixel = 8 * PIXEL_BYTES;
    variable->transp = (struct fb_bitfield){15, 1, 0};
}

static void answer_fixed(struct fb_fix_screeninfo *fixed)
{
    memset(fixed, HANDED_OUT_BYTE, sizeof *fixed);
    fixed->smem_start = 0x2F000000;
    fixed->smem_len = WIDTH_PX * PIXEL_BYTES * HEIGHT_PX;
    fixed->line_length = WIDTH_PX * PIXEL_BYTES;
}

int board_ioctl(int descriptor, unsigned long request, void *argument)
{
    char number[NAME_BYTES], shown[NAME_BYTES] = "*";
    const uintptr_t value = (uintptr_t)argument;
    const char *name = node_name(descriptor, number);
    if (value <= LARGEST_PLAIN_VALUE) snprintf(shown, sizeof shown, "%" PRIuPTR, value);
    const int32_t result = record_call("board_ioctl", "%s 0x%lx %s", name, request, shown);
    if (result != 0) return result;
    if (!is_open(descriptor)) return refuse_descriptor();
    if (value <= LARGEST_PLAIN_VALUE) return 0;
    if (strcmp(name, "/dev/fb0") == 0 && request == FBIOGET_VSCREENINFO) answer_variable(argument);
    if (strcmp(name, "/dev/fb0") == 0 && request == FBIOGET_FSCREENINFO) answer_fixed(argument);
    if (strcmp(name, RTC_NODE) == 0 && request == RTC_RD_TIME) answer_clock(argument);
    return 0;
}

void *board_map(int descriptor, size_t size)
{
    char number[NAME_BYTES];
    const char *name = node_name(descriptor, number);
    if (record_call("board_map", "%s %zu", name, size) != 0 || size == 0) return NULL;
    if (!is_open(descriptor)) return refuse_descriptor(), NULL;
    for (int i = 0; i < MOST_MAPPINGS; ++i) {
        if (mappings[i].address) continue;
        const size_t whole_pages = (size + PAGE_BYTES - 1) / PAGE_BYTES * PAGE_BYTES;
        mappings[i].address = aligned_alloc(PAGE_BYTES, whole_pages);
        if (mappings[i].address) memset(mappings[i].address, HANDED_OUT_BYTE, whole_pages);
        snprintf(mappings[i].name, NAME_BYTES, "%s", name);
        return mappings[i].address;
    }
    return NULL;
}

int board_unmap(void *address, size_t size)
{
    struct mapping *mapping = NULL;
    for (int i = 0; i < MOST_MAPPINGS; ++i)
        if (address && mappings[i].address == address) mapping = &mappings[i];
    const int32_t result = record_call("board_unmap", "%s %zu", mapping ? mapping->name : "unknown", size);
    if (result != 0 || !mapping) return result != 0 ? result : -1;
    free(mapping->address);
    mapping->address = NULL;
    return 0;
}

int board_run_command(const char *command)
{
    return record_call("board_run_command", "\"%s\"", command);
}

void board_sleep_us(uint32_t microseconds)
{
    record_call("board_sleep_us", "%u", microseconds);
    now_us += microseconds;
}

int64_t board_time_us(void)
{
    record_call("board_time_us", "%s", "");
    return now_us;
}
