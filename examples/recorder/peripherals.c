/*
 * peripherals.c - see peripherals.h.
 *
 * Start-up has opened the watchdog and switched it on, with 100 seconds to be fed in, and has left the
 * buzzer's line high. The watchdog is fed from the UI thread's own turns: when that thread hangs, so
 * that nobody can operate the recorder any more, the feeding ends and the board resets. (A thread that
 * feeds whatever happens, as wdt_feed_pt starts one, would prove only that it runs itself.)
 */
#include "peripherals.h"

#include <stdio.h>
#include <time.h>

#include "nvrhal.h"

#define FEED_PERIOD_US  3000000
#define ALARM_PERIOD_US 1000000
#define SILENCE_US      3000000 /* a camera that has sent nothing for so long is lost */

static int64_t feed_at_us, look_at_us;
static bool buzzing;

/* [clock] */
static void check_clock(void)
{
    int32_t tm[9] = {0}; /* second, minute, hour, day, month from 1, year, day of week, day of year, 0 */
    if (ext_rtc_time_system(tm, 0) == 0) {
        fprintf(stderr, "recorder: the clock reads %04d-%02d-%02d %02d:%02d:%02d UTC\n", tm[5], tm[4], tm[3],
                tm[2], tm[1], tm[0]);
        return;
    }
    const time_t now = time(NULL);
    struct tm utc;
    gmtime_r(&now, &utc);
    const int32_t set[9] = {utc.tm_sec,  utc.tm_min,     utc.tm_hour,
                            utc.tm_mday, utc.tm_mon + 1, utc.tm_year + 1900,
                            utc.tm_wday, utc.tm_yday,    0};
    for (int i = 0; i < 9; ++i)
        tm[i] = set[i];
    ext_rtc_time_system(tm, 1);
}
/* [/clock] */

void peripherals_start(void)
{
    ext_buzzer_set(0);
    check_clock();
    hi_start_record_proc(); /* the lamp blinks while the recorder records */
}

static bool any_camera_lost(const struct camera *cameras, int count, int64_t now)
{
    uint32_t mask[2] = {0}; /* analog inputs without a signal; network cameras fall silent instead */
    bool lost = ext_get_video_loss_status(mask) == 0 && mask[0] != 0;
    for (int i = 0; i < count; ++i) {
        const int64_t sent_at = atomic_load(&cameras[i].sent_at_us);
        lost = lost || (sent_at != 0 && now - sent_at > SILENCE_US);
    }
    nvrhal_u64 alarms = 0;
    return lost || (ext_alarm_status_get(&alarms) == 0 && alarms != 0);
}

/* [watchdog] */
void peripherals_turn(const struct camera *cameras, int count)
{
    const int64_t now = now_us();
    if (now >= feed_at_us) {
        local_wdg_feed();
        feed_at_us = now + FEED_PERIOD_US;
    }
    if (now < look_at_us) return;
    look_at_us = now + ALARM_PERIOD_US;
    const bool lost = any_camera_lost(cameras, count, now);
    if (lost != buzzing) ext_buzzer_set(lost ? 1 : 0);
    buzzing = lost;
}
/* [/watchdog] */

void peripherals_stop(void)
{
    hi_stop_record_proc();
    ext_buzzer_set(0);
    ext_wdg_set(0); /* an orderly end is no reason to reset the board */
}
