/* The clock's node: opened for each call, the two ways of counting months and years, failures. */
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "nvrhal.h"
#include "recording_expect.h"
#include "rtc_driver.h"

using recording::platform;
using recording::trace;

namespace
{

struct Time {
    int32_t fields[9];
    bool operator==(const Time &other) const { return std::memcmp(fields, other.fields, sizeof fields) == 0; }
};

std::string text_of(const void *argument)
{
    std::string text = "{";
    for (int i = 0; i < 9; ++i) {
        if (i > 0) text += " ";
        text += std::to_string(static_cast<const int32_t *>(argument)[i]);
    }
    return text + "}";
}

void clock_holds(const Time &time)
{
    platform.node("/dev/rtc0").ioctl(RTC_RD_TIME).fills([time](recording::Args &call) {
        std::memcpy(call.pointer(2), time.fields, sizeof time.fields);
    });
}

} // namespace

TEST(Clock, ReadsMonthsFromOneAndWholeYears)
{
    clock_holds({{30, 15, 10, 5, 2, 124, 2, 64, 0}}); // 2024-03-05 as the kernel counts
    Time time = {};
    EXPECT_EQ(ext_rtc_time_system(time.fields, 0), 0);
    EXPECT_EQ(time, (Time{{30, 15, 10, 5, 3, 2024, 2, 64, 0}}));
    EXPECT_EQ(platform.calls({"board_open", "board_close"}), trace(R"(
        board_open /dev/rtc0 rdwr
        board_close /dev/rtc0
    )"));
    EXPECT_EQ(platform.count("board_ioctl /dev/rtc0 0x80247009"), 1u);
    EXPECT_PRINTED_IN_ORDER(R"(
        EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEmisc.c,ext_rtc_time_system,#
        RTC Time:2024-3-5 10:15:30 2 64 0)");
    EXPECT_PRINTED_WITHOUT_PREFIX("RTC Time:2024-3-5 10:15:30 2 64 0");
}

TEST(Clock, IsSetInTheKernelsForm)
{
    platform.describe_request(RTC_SET_TIME, text_of);
    Time time = {{59, 58, 23, 31, 12, 1999, 5, 364, 1}};
    EXPECT_EQ(ext_rtc_time_system(time.fields, 1), 0);
    EXPECT_EQ(time, (Time{{59, 58, 23, 31, 12, 1999, 5, 364, 1}})); // the caller's record stays
    EXPECT_EQ(platform.calls(), trace(R"(
        board_open /dev/rtc0 rdwr
        board_ioctl /dev/rtc0 0x4024700a {59 58 23 31 11 99 5 364 1}
        board_close /dev/rtc0
    )"));
    EXPECT_PRINTED("RTC Time:99-11-31 23:58:59 5 364 1");
}

TEST(Clock, DoesNotCheckTheFields)
{
    platform.describe_request(RTC_SET_TIME, text_of);
    Time time = {{-1, 99, 99, 0, INT_MIN, INT_MIN, 7, 400, -1}};
    EXPECT_EQ(ext_rtc_time_system(time.fields, 0xFFFFFFFF), 0);
    EXPECT_EQ(platform.count("board_ioctl /dev/rtc0 0x4024700a {-1 99 99 0 2147483647 2147481748 7 400 -1}"),
              1u);
    clock_holds({{0, 0, 0, 0, INT_MAX, INT_MAX, 0, 0, 0}});
    EXPECT_EQ(ext_rtc_time_system(time.fields, 0), 0);
    EXPECT_EQ(time.fields[4], INT_MIN);
}

TEST(Clock, WorksOnDescriptorZero)
{
    platform.node("/dev/rtc0").opens_as(0);
    Time time = {};
    EXPECT_EQ(ext_rtc_time_system(time.fields, 0), 0);
    EXPECT_EQ(platform.node("/dev/rtc0").open_count(), 0u);
}

TEST(Clock, FailsWithoutANode)
{
    platform.node("/dev/rtc0").fails_to_open();
    Time time = {};
    EXPECT_EQ(ext_rtc_time_system(time.fields, 0), -1);
    EXPECT_EQ(ext_rtc_time_system(nullptr, 1), -1);
    EXPECT_EQ(recording::times_printed("[misc.c]-#: open rtc dev fail!"), 2u);
    EXPECT_EQ(platform.calls({"board_close"}), "");
}

TEST(Clock, RefusesANullRecord)
{
    for (const uint32_t set : {0u, 1u})
        EXPECT_EQ(ext_rtc_time_system(nullptr, set), -1);
    EXPECT_PRINTED_AS_ERROR("misc.c", "Invalid RTC Parameter!");
    EXPECT_EQ(platform.calls({"board_ioctl"}), "");
    EXPECT_EQ(platform.node("/dev/rtc0").open_count(), 0u);
}

TEST(Clock, ClosesTheNodeAfterARefusedSet)
{
    platform.node("/dev/rtc0").ioctl(RTC_SET_TIME).returns(-1);
    Time time = {{1, 2, 3, 4, 5, 2006, 0, 0, 0}};
    EXPECT_EQ(ext_rtc_time_system(time.fields, 1), -1);
    EXPECT_PRINTED_IN_ORDER("RTC Time:106-4-4 3:2:1 0 0 0\nSet RTC Time Failed!");
    EXPECT_PRINTED_AS_ERROR("misc.c", "Set RTC Time Failed!");
    EXPECT_EQ(platform.node("/dev/rtc0").open_count(), 0u);
}

// The record is converted and printed before the result is looked at.
TEST(Clock, ConvertsAndPrintsWhatARefusedReadLeft)
{
    platform.node("/dev/rtc0").ioctl(RTC_RD_TIME).returns(-1);
    Time time = {{1, 2, 3, 4, 5, 6, 7, 8, 9}};
    EXPECT_EQ(ext_rtc_time_system(time.fields, 0), -1);
    EXPECT_EQ(time, (Time{{1, 2, 3, 4, 6, 1906, 7, 8, 9}}));
    EXPECT_PRINTED_IN_ORDER("RTC Time:1906-6-4 3:2:1 7 8 9\nGet RTC Time Failed!");
    EXPECT_PRINTED_AS_ERROR("misc.c", "Get RTC Time Failed!");
    EXPECT_EQ(platform.node("/dev/rtc0").open_count(), 0u);
}
