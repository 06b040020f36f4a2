/*
 * clock_node.cpp - the battery-backed clock: the board's wall clock plus an offset that setting it
 * changes. Fields are checked as the kernel checks them.
 */
#include "rtc_driver.h"

#include <algorithm>
#include <ctime>
#include <mutex>

#include "devices/peripheral_nodes.h"
#include "devices/request_node.h"
#include "media/clock.h"
#include "media/time_units.h"
#include "vboard_devices.h"

namespace vboard
{
namespace
{

constexpr int64_t kLastSecond = 253402300799; // of the year 9999, the last that its fields can tell
constexpr int kFirstYear = 70;                // 1970, from 1900
constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

int days_in_month(int month, int year)
{
    const int full = year + 1900;
    const bool leap = (full % 4 == 0 && full % 100 != 0) || full % 400 == 0;
    return kDays[month] + (month == 1 && leap ? 1 : 0);
}

bool is_valid(const rtc_time &time)
{
    return time.tm_year >= kFirstYear && time.tm_year < 8100 && time.tm_mon >= 0 && time.tm_mon < 12 &&
           time.tm_mday >= 1 && time.tm_mday <= days_in_month(time.tm_mon, time.tm_year) &&
           time.tm_hour >= 0 && time.tm_hour < 24 && time.tm_min >= 0 && time.tm_min < 60 &&
           time.tm_sec >= 0 && time.tm_sec < 60;
}

class Clock : public RequestNode
{
public:
    Clock() : RequestNode(RTC_NODE) {}

    void reset() override
    {
        const std::lock_guard guard(mutex_);
        offset_us_ = 0;
        lost_ = false;
    }

    void set(int64_t seconds)
    {
        const std::lock_guard guard(mutex_);
        offset_us_ = std::clamp<int64_t>(seconds, 0, kLastSecond) * kSecond_us - clock_wall_us();
        lost_ = false;
    }

    int64_t seconds()
    {
        const std::lock_guard guard(mutex_);
        return (clock_wall_us() + offset_us_) / kSecond_us;
    }

    void lose()
    {
        const std::lock_guard guard(mutex_);
        lost_ = true;
    }

    bool is_set()
    {
        const std::lock_guard guard(mutex_);
        return !lost_;
    }

protected:
    int request(unsigned long code, void *argument) override
    {
        auto *time = static_cast<rtc_time *>(argument);
        if (code != RTC_RD_TIME && code != RTC_SET_TIME) return refuse_request(code);
        if (time == nullptr) return refuse_argument("no record");
        return code == RTC_RD_TIME ? read_time(*time) : set_time(*time);
    }

private:
    int read_time(rtc_time &time)
    {
        {
            const std::lock_guard guard(mutex_);
            if (lost_) return refuse_argument("the battery has failed and the time was not set since");
        }
        const time_t now = static_cast<time_t>(seconds());
        tm fields = {};
        gmtime_r(&now, &fields);
        time = {fields.tm_sec,  fields.tm_min,  fields.tm_hour,
                fields.tm_mday, fields.tm_mon,  fields.tm_year,
                fields.tm_wday, fields.tm_yday, 0};
        return 0;
    }

    int set_time(const rtc_time &time)
    {
        if (!is_valid(time)) return refuse_argument("no such date or time of day");
        tm fields = {};
        fields.tm_sec = time.tm_sec;
        fields.tm_min = time.tm_min;
        fields.tm_hour = time.tm_hour;
        fields.tm_mday = time.tm_mday;
        fields.tm_mon = time.tm_mon;
        fields.tm_year = time.tm_year;
        set(timegm(&fields));
        return 0;
    }

    std::mutex mutex_; // guards all below
    int64_t offset_us_ = 0;
    bool lost_ = false;
};

Clock &rtc()
{
    static auto *node = new Clock;
    return *node;
}

} // namespace

DeviceNode *clock_node()
{
    return &rtc();
}

} // namespace vboard

using namespace vboard;

extern "C" {

void vboard_rtc_set(int64_t seconds)
{
    rtc().set(seconds);
}

int64_t vboard_rtc_get(void)
{
    return rtc().seconds();
}

int vboard_rtc_is_set(void)
{
    return rtc().is_set() ? 1 : 0;
}

void vboard_rtc_fail_battery(void)
{
    rtc().lose();
}

} // extern "C"
