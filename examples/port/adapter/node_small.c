/* node_small.c - watchdog, clock chip and output lines over the calls of the support package. */
#define _GNU_SOURCE /* timegm */
#include <pthread.h>
#include <stddef.h>
#include <time.h>

#include "gpio_driver.h"
#include "node.h"
#include "rtc_driver.h"
#include "tern_board.h"
#include "watchdog_driver.h"

/* --------------------------------------------------------------------------------- watchdog --- */

enum { kPowerOnSeconds = 60, kMostSeconds = 4000000 };

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards the next two */
static int32_t timeout_s = kPowerOnSeconds;
static int is_armed;

static int switch_dog(uintptr_t option)
{
    if (option != WDIOS_ENABLECARD && option != WDIOS_DISABLECARD) return node_refuses_value();
    is_armed = option == WDIOS_ENABLECARD;
    if (is_armed)
        tern_dog_arm((unsigned)timeout_s * 1000);
    else
        tern_dog_disarm();
    return 0;
}

static int set_timeout(const int32_t *seconds)
{
    if (seconds == NULL || *seconds < 1 || *seconds > kMostSeconds) return node_refuses_value();
    timeout_s = *seconds;
    if (is_armed) tern_dog_arm((unsigned)timeout_s * 1000);
    return 0;
}

static int watchdog_request(void *opening, unsigned long request, void *argument)
{
    (void)opening;
    int result = 0;
    pthread_mutex_lock(&lock);
    switch ((uint32_t)request) {
    case WDIOC_KEEPALIVE: tern_dog_feed(); break;
    case WDIOC_SETOPTIONS: result = switch_dog((uintptr_t)argument); break;
    case WDIOC_SETTIMEOUT: result = set_timeout(argument); break;
    default: result = node_knows_no_request();
    }
    pthread_mutex_unlock(&lock);
    return result;
}

const NodeKind node_watchdog = {.path = WATCHDOG_NODE, .request = watchdog_request};

/* ------------------------------------------------------------------------------------ clock --- */

static int read_clock(struct rtc_time *record)
{
    const int64_t seconds = tern_clock_get();
    if (seconds < 0) return node_refuses_value();
    const time_t moment = (time_t)seconds;
    struct tm fields;
    gmtime_r(&moment, &fields);
    *record = (struct rtc_time){fields.tm_sec,  fields.tm_min,  fields.tm_hour,
                                fields.tm_mday, fields.tm_mon,  fields.tm_year,
                                fields.tm_wday, fields.tm_yday, 0};
    return 0;
}

static int set_clock(const struct rtc_time *record)
{
    const struct tm wanted = {.tm_sec = record->tm_sec,
                              .tm_min = record->tm_min,
                              .tm_hour = record->tm_hour,
                              .tm_mday = record->tm_mday,
                              .tm_mon = record->tm_mon,
                              .tm_year = record->tm_year};
    struct tm fields = wanted;
    const time_t moment = timegm(&fields);
    /* A date that does not exist comes back as another one. */
    if (fields.tm_sec != wanted.tm_sec || fields.tm_min != wanted.tm_min ||
        fields.tm_hour != wanted.tm_hour || fields.tm_mday != wanted.tm_mday ||
        fields.tm_mon != wanted.tm_mon || fields.tm_year != wanted.tm_year || moment < 0)
        return node_refuses_value();
    tern_clock_set((int64_t)moment);
    return 0;
}

static int clock_request(void *opening, unsigned long request, void *record)
{
    (void)opening;
    if ((uint32_t)request != RTC_RD_TIME && (uint32_t)request != RTC_SET_TIME) return node_knows_no_request();
    if (record == NULL) return node_refuses_value();
    return (uint32_t)request == RTC_RD_TIME ? read_clock(record) : set_clock(record);
}

const NodeKind node_clock = {.path = RTC_NODE, .request = clock_request};

/* ------------------------------------------------------------------------------------ lines --- */

static int lines_request(void *opening, unsigned long request, void *record)
{
    (void)opening;
    const GpioLine *line = record;
    if ((uint32_t)request != GPIO_CONFIGURE_OUTPUT && (uint32_t)request != GPIO_DRIVE)
        return node_knows_no_request();
    if (line == NULL) return node_refuses_value();
    /* The package makes a line an output whenever it is given a level; the driver wants that said first. */
    if ((uint32_t)request == GPIO_DRIVE && tern_line_level(line->line) < 0) return node_refuses_value();
    return tern_line_out(line->line, line->value != 0) == 0 ? 0 : node_refuses_value();
}

const NodeKind node_lines = {.path = GPIO_NODE, .request = lines_request};
