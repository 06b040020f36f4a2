/* The library's use of the clock chip on an emulated one, through the real system calls. */
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <dirent.h>
#include <thread>

#include "emulated_node.h"
#include "nvrhal.h"
#include "rtc_driver.h"

namespace
{

class LinuxClock : public testing::Test
{
protected:
    int answer(const NodeRequest &request)
    {
        if (request.code() == refused) return -EINVAL;
        switch (request.code()) {
        case RTC_RD_TIME: request.fill(time); return 0;
        case RTC_SET_TIME: time = request.record<rtc_time>(); return 0;
        default: return -ENOTTY;
        }
    }

    static int open_descriptors()
    {
        DIR *folder = opendir("/proc/self/fd");
        int count = 0;
        while (readdir(folder) != nullptr)
            ++count;
        closedir(folder);
        return count;
    }

    rtc_time time = {59, 58, 23, 31, 11, 126, 4, 364, 0}; // the last second but one of 2026
    uint32_t refused = 0;
    const EmulatedNode node{RTC_NODE, [this](const NodeRequest &request) { return answer(request); }};
};

} // namespace

TEST_F(LinuxClock, IsReadWithMonthAndYearAsPeopleCountThem)
{
    int32_t fields[9] = {};
    EXPECT_EQ(ext_rtc_time_system(fields, 0), 0);
    EXPECT_EQ(fields[0], 59);
    EXPECT_EQ(fields[3], 31);
    EXPECT_EQ(fields[4], 12);
    EXPECT_EQ(fields[5], 2026);
}

TEST_F(LinuxClock, IsSetWithMonthAndYearAsTheKernelCountsThem)
{
    int32_t fields[9] = {1, 2, 3, 4, 5, 2031, 0, 0, 0};
    EXPECT_EQ(ext_rtc_time_system(fields, 1), 0);
    EXPECT_EQ(time.tm_sec, 1);
    EXPECT_EQ(time.tm_mon, 4);
    EXPECT_EQ(time.tm_year, 131);
}

TEST_F(LinuxClock, PassesTheRefusalOn)
{
    int32_t fields[9] = {1, 2, 3, 4, 5, 2031, 0, 0, 0};
    refused = RTC_SET_TIME;
    EXPECT_EQ(ext_rtc_time_system(fields, 1), -1);
    EXPECT_EQ(time.tm_year, 126);
    refused = static_cast<uint32_t>(RTC_RD_TIME);
    EXPECT_EQ(ext_rtc_time_system(fields, 0), -1);
}

TEST_F(LinuxClock, IsClosedAfterEveryUse)
{
    int32_t fields[9] = {};
    EXPECT_EQ(ext_rtc_time_system(fields, 0), 0); // the emulation opens what it needs itself
    const int before = open_descriptors();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(ext_rtc_time_system(fields, 0), 0);
    EXPECT_EQ(ext_rtc_time_system(nullptr, 0), -1);
    // The emulation closes its end of each opening a little later, that of the first one, too.
    for (int i = 0; i < 200 && open_descriptors() > before; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_LE(open_descriptors(), before);
}
