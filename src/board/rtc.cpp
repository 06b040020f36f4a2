/*
 * The battery-backed clock. Opened for each call alone, so that the system's own time service can
 * have it in between. The caller counts months from 1 and years from 0, the kernel months from 0 and
 * years from 1900; all else is the same, and only the clock itself checks the fields. Thread: any.
 */
#include "board_io.h"
#include "core/abi.h"
#include "core/log.h"
#include "nvrhal.h"
#include "rtc_driver.h"

#include <cstring>
#include <fcntl.h>

using namespace nvrhal;

static_assert(RTC_RD_TIME == 0x80247009 && RTC_SET_TIME == 0x4024700A);
ABI_SIZE(rtc_time, 36);
ABI_AT(rtc_time, tm_mon, 16);
ABI_AT(rtc_time, tm_year, 20);
ABI_AT(rtc_time, tm_isdst, 32);

namespace
{

constexpr char kSource[] = "misc.c";
constexpr int kMonthBase = 1;
constexpr int kYearBase = 1900;

/** a + b that wraps: the fields are whatever the caller or the clock put there. */
int add(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

void log_time(const rtc_time &time)
{
    log_text("RTC Time:%d-%d-%d %d:%d:%d %d %d %d\n", time.tm_year, time.tm_mon, time.tm_mday, time.tm_hour,
             time.tm_min, time.tm_sec, time.tm_wday, time.tm_yday, time.tm_isdst);
}

/** Set the clock. Logged in the kernel's form. */
int set_clock(int clock, const int32_t tm[9])
{
    rtc_time time;
    std::memcpy(&time, tm, sizeof time);
    time.tm_mon = add(time.tm_mon, -kMonthBase);
    time.tm_year = add(time.tm_year, -kYearBase);
    log_time(time);
    if (board_ioctl(clock, RTC_SET_TIME, &time) >= 0) return 0;
    log_error_line(kSource, "Set RTC Time Failed!");
    return -1;
}

/** Read the clock. What it gave, or failed to give, is converted and logged in the caller's form. */
int read_clock(int clock, int32_t tm[9])
{
    rtc_time time;
    std::memcpy(&time, tm, sizeof time);
    const int result = board_ioctl(clock, RTC_RD_TIME, &time);
    time.tm_mon = add(time.tm_mon, kMonthBase);
    time.tm_year = add(time.tm_year, kYearBase);
    std::memcpy(tm, &time, sizeof time);
    log_time(time); // before the result is looked at, on purpose: a log shows what the clock held
    if (result >= 0) return 0;
    log_error_line(kSource, "Get RTC Time Failed!");
    return -1;
}

} // namespace

int32_t ext_rtc_time_system(int32_t tm[9], uint32_t set)
{
    log_entry(kSource);
    const int clock = board_open(RTC_NODE, O_RDWR);
    if (clock < 0) {
        log_error_line(kSource, "open rtc dev fail!");
        return -1;
    }
    int32_t result = -1;
    if (tm == nullptr)
        log_error_line(kSource, "Invalid RTC Parameter!");
    else
        result = set != 0 ? set_clock(clock, tm) : read_clock(clock, tm);
    board_close(clock);
    return result;
}
