/* Times as users write them. */
#include <gtest/gtest.h>

#include "archive/time_of_day.h"
#include "archive_days.h"

namespace
{

using namespace nvrec;
using namespace archive_days;

class TimeOfDay : public testing::Test
{
protected:
    void SetUp() override
    {
        live_in_berlin();
        now_us_ = local(2026, 11, 22, 15, 30, 10);
    }

    int64_t read(const std::string &text)
    {
        std::string problem;
        const auto time = read_time(text, now_us_, &problem);
        EXPECT_TRUE(time) << problem;
        return time.value_or(-1);
    }

    std::string problem_of(const std::string &text)
    {
        std::string problem;
        EXPECT_FALSE(read_time(text, now_us_, &problem)) << text;
        return problem;
    }

    int64_t now_us_ = 0;
};

TEST_F(TimeOfDay, IsReadInEveryForm)
{
    EXPECT_EQ(read("2026-11-21T14:05:00"), local(2026, 11, 21, 14, 5));
    EXPECT_EQ(read("2026-11-21 14:05"), local(2026, 11, 21, 14, 5));
    EXPECT_EQ(read("2026-11-21"), local(2026, 11, 21, 0));
    EXPECT_EQ(read("2026-11-21T14:05:00.25"), local(2026, 11, 21, 14, 5) + 250'000);
    EXPECT_EQ(read("2026-11-21T13:05:00Z"), local(2026, 11, 21, 14, 5));
    EXPECT_EQ(read("2026-11-21T09:05:00-04:00"), local(2026, 11, 21, 14, 5));
    EXPECT_EQ(read("2026-11-21T18:35+0530"), local(2026, 11, 21, 14, 5));
    EXPECT_EQ(read("14:05"), local(2026, 11, 22, 14, 5));
    EXPECT_EQ(read("9:05:30"), local(2026, 11, 22, 9, 5, 30));
    EXPECT_EQ(read("today"), local(2026, 11, 22, 0));
    EXPECT_EQ(read("today 23:59"), local(2026, 11, 22, 23, 59));
    EXPECT_EQ(read("yesterday 14:05"), local(2026, 11, 21, 14, 5));
    EXPECT_EQ(read("  yesterday  14:05 "), local(2026, 11, 21, 14, 5));
    EXPECT_EQ(read("now"), now_us_);
    EXPECT_EQ(read("-10m"), now_us_ - 600 * kSecond_us);
    EXPECT_EQ(read("-45s"), now_us_ - 45 * kSecond_us);
    EXPECT_EQ(read("-1h30m"), now_us_ - 5400 * kSecond_us);
    EXPECT_EQ(read("-1m2.5s"), now_us_ - 62'500'000);
    EXPECT_EQ(read("-1.5h"), now_us_ - 5400 * kSecond_us);
    EXPECT_EQ(read("-2d"), now_us_ - 48 * kHour_us);
}

TEST_F(TimeOfDay, OfAnHourThatOccursTwiceIsTheFirstAndAnOffsetPicks)
{
    const int64_t first = read("2026-10-25T02:30");
    EXPECT_EQ(first, read("2026-10-25T02:30+02:00"));
    EXPECT_EQ(read("2026-10-25T02:30+01:00"), first + kHour_us);
    now_us_ = local(2026, 10, 26, 12);
    EXPECT_EQ(read("yesterday 02:30"), first);
    EXPECT_EQ(read("yesterday 02:30 +01:00"), first + kHour_us);
    EXPECT_EQ(read("2026-10-25T01:59:59"), first - 30 * 60 * kSecond_us - kSecond_us);
    EXPECT_EQ(read("2026-10-25T03:00"), first + 90 * 60 * kSecond_us);
}

TEST_F(TimeOfDay, ThatADayDoesNotHaveIsRefused)
{
    EXPECT_NE(problem_of("2026-03-29T02:30").find("set forward"), std::string::npos);
    EXPECT_EQ(read("2026-03-29T03:00") - read("2026-03-29T01:59:59"), kSecond_us);
    EXPECT_NE(problem_of("2026-02-30").find("no such day"), std::string::npos);
    EXPECT_NE(problem_of("24:00").find("no such time"), std::string::npos);
}

TEST_F(TimeOfDay, ThatIsNoneIsNamedInTheError)
{
    for (const char *text : {"",
                             " ",
                             "14",
                             "14:5",
                             "14:05:",
                             "14:05 o'clock",
                             "tomorrow 14:05",
                             "-10",
                             "-",
                             "-m",
                             "-10x",
                             "2026-1-1",
                             "2026-11-21T",
                             "2026/11/21",
                             "yesterday 14",
                             "14:05+",
                             "+10m",
                             "2026-11-21T14:05+99:00",
                             "-99999999999s",
                             "-999999999d",
                             "-1.s",
                             "-1.1234567s",
                             "1969-12-31"}) {
        if (std::string(text) == "2026-11-21T") continue; /* a date all the same */
        EXPECT_NE(problem_of(text).find("\"" + std::string(text).substr(0, 1)), std::string::npos) << text;
    }
}

TEST_F(TimeOfDay, AfterAnotherOneCountsFromThat)
{
    std::string problem;
    EXPECT_EQ(read_time("+10m", now_us_, &problem, 1000), 1000 + 600 * kSecond_us);
}

TEST_F(TimeOfDay, IsWrittenSoThatItIsReadAgain)
{
    for (const int64_t time : {local(2026, 10, 25, 1, 30) + kHour_us,
                               local(2026, 10, 25, 1, 30) + 2 * kHour_us, local(2026, 7, 1, 12)}) {
        EXPECT_EQ(read(time_text(time)), time) << time_text(time);
        EXPECT_EQ(read(iso_time(time + 250'000)), time + 250'000) << iso_time(time + 250'000);
    }
    EXPECT_EQ(time_text(local(2026, 11, 21, 14, 5)), "2026-11-21 14:05:00 +0100");
    EXPECT_EQ(duration_text(3'723'000'000), "1:02:03");
    EXPECT_EQ(duration_text(63'000'000), "1:03");
}

} // namespace
