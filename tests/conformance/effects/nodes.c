/* nodes.c - board_io and the device nodes. */
#include <fcntl.h>
#include <string.h>
#include <time.h>

#include "ad_driver.h"
#include "board_io.h"
#include "effect.h"
#include "fb_driver.h"
#include "gpio_driver.h"
#include "ir_driver.h"
#include "keyboard_driver.h"
#include "mouse_driver.h"
#include "rtc_driver.h"
#include "watchdog_driver.h"

enum { kMapped_bytes = 1 << 20 };

static int open_node(const char *path)
{
    const int descriptor = board_open(path, O_RDWR);
    NEED(descriptor >= 0);
    return descriptor;
}

static int unknown_request_is_negative(void)
{
    uint32_t record[64] = {0};
    return board_ioctl(open_node(WATCHDOG_NODE), 0x1234, record) < 0;
}

static int mappings_share(void)
{
    const int screen = open_node("/dev/fb0");
    volatile uint8_t *one = board_map(screen, kMapped_bytes);
    volatile uint8_t *other = board_map(screen, kMapped_bytes);
    NEED(one != NULL && other != NULL);
    one[0] = 0x11;
    one[0] = 0x22;
    return other[0] == 0x22;
}

static int short_sleep_lasts(void)
{
    const int64_t begin = now_ms();
    for (int i = 0; i < 4; ++i)
        board_sleep_us(9000);
    return now_ms() - begin >= 35;
}

static int wall_clock_has_microseconds(void)
{
    for (int i = 0; i < 3; ++i) {
        if (board_time_us() % 1000000 != 0) return 1;
        wait_ms(1);
    }
    return 0;
}

static int command_gives_exit_status(void)
{
    const int status = board_run_command("false"); /* 1 from a shell, 127 without one */
    return status > 0 && status <= 127;
}

static int month_counts_from_0(void)
{
    struct rtc_time time = {0};
    NEED(board_ioctl(open_node(RTC_NODE), RTC_RD_TIME, &time) >= 0);
    const time_t seconds = (time_t)(board_time_us() / 1000000);
    struct tm now;
    gmtime_r(&seconds, &now);
    return time.tm_mon == now.tm_mon;
}

static int watchdog_takes_values(void)
{
    const int watchdog = open_node(WATCHDOG_NODE);
    return board_ioctl(watchdog, WDIOC_SETOPTIONS, (void *)(uintptr_t)WDIOS_ENABLECARD) >= 0 &&
           board_ioctl(watchdog, WDIOC_SETOPTIONS, (void *)(uintptr_t)WDIOS_DISABLECARD) >= 0;
}

static int output_line_is_driven(void)
{
    const int lines = open_node(GPIO_NODE);
    GpioLine line = {5, 0};
    NEED(board_ioctl(lines, GPIO_CONFIGURE_OUTPUT, &line) >= 0);
    line.value = 1;
    return board_ioctl(lines, GPIO_DRIVE, &line) >= 0;
}

static int panel_takes_a_pointer(void)
{
    uint32_t lit = 1;
    return board_ioctl(open_node(KEYBOARD_NODE), KEYBOARD_RECORD_LAMP, &lit) >= 0;
}

static int quiet_receiver_gives_nothing(void)
{
    IrFrame frame;
    return board_read(open_node(IR_NODE), &frame, sizeof frame) == 0;
}

static int quiet_mouse_gives_nothing(void)
{
    MouseEvent event;
    return board_read(open_node(MOUSE_NODE), &event, sizeof event) == 0;
}

static int norm_reads_back(void)
{
    const int chips = open_node(AD_NODE);
    AdChipValue norm = {AD_CHIP_SELECTOR, 1};
    NEED(board_ioctl(chips, AD_SET_NORM, &norm) >= 0);
    norm.value = 7;
    NEED(board_ioctl(chips, AD_GET_NORM, &norm) >= 0);
    return norm.value == 1;
}

static int mask_chooses_attributes(void)
{
    const int screen = open_node("/dev/fb0");
    FbDisplayLayer before;
    NEED(board_ioctl(screen, FBIOGET_DISPLAYLAYER_ATTRIBUTES, &before) >= 0);
    FbDisplayLayer wanted = before;
    wanted.x = before.x + 8;
    wanted.dst_width = 320;
    wanted.dst_height = 180;
    wanted.mask = FB_LAYER_POSITION;
    NEED(board_ioctl(screen, FBIOSET_DISPLAYLAYER_ATTRIBUTES, &wanted) >= 0);
    FbDisplayLayer after;
    NEED(board_ioctl(screen, FBIOGET_DISPLAYLAYER_ATTRIBUTES, &after) >= 0);
    NEED(after.x == wanted.x);
    return after.dst_width == before.dst_width && after.dst_height == before.dst_height;
}

const Effect node_effects[] = {
    {"io_ioctl_errno_positive", unknown_request_is_negative},
    {"io_map_private", mappings_share},
    {"io_sleep_in_ticks", short_sleep_lasts},
    {"io_time_in_seconds", wall_clock_has_microseconds},
    {"io_command_raw_status", command_gives_exit_status},
    {"rtc_month_from_one", month_counts_from_0},
    {"watchdog_option_pointer", watchdog_takes_values},
    {"gpio_drive_refused", output_line_is_driven},
    {"panel_argument_value", panel_takes_a_pointer},
    {"ir_phantom_frame", quiet_receiver_gives_nothing},
    {"mouse_idle_is_error", quiet_mouse_gives_nothing},
    {"ad_norm_forgotten", norm_reads_back},
    {"fb_layer_mask_ignored", mask_chooses_attributes},
    {NULL, NULL},
};
