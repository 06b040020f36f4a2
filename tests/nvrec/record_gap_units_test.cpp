/* Outages and hours of a plan by themselves: what is a gap, and which times it has. */
#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

#include "archive_days.h"
#include "record/outages.h"
#include "record/plan.h"

namespace
{

using namespace nvrec;
using archive_days::kHour_us;
using archive_days::kSecond_us;

constexpr int64_t kDay_us = int64_t{1'795'219'200} * kSecond_us; /* 2026-11-21 00:00 UTC */

/* Taken so many seconds behind midnight, while the recorder's clock goes wrong by so much. */
PoolFrame picture(double at_s, int64_t wrong_us = 0)
{
    PoolFrame frame;
    frame.arrived_us = static_cast<int64_t>(at_s * 1e6);
    frame.clock_ahead_us = kDay_us + wrong_us;
    frame.taken_at_us = frame.arrived_us + frame.clock_ahead_us;
    frame.dts_us = frame.pts_us = frame.arrived_us;
    return frame;
}

int64_t time_us(double at_s)
{
    return kDay_us + static_cast<int64_t>(at_s * 1e6);
}

TEST(Outages, AClockThatIsSetIsNone)
{
    Outages outages;
    EXPECT_FALSE(outages.note(picture(1), time_us(1), true));
    EXPECT_FALSE(outages.note(picture(2, kHour_us), time_us(2), false)) << "forward, in the same file";
    EXPECT_FALSE(outages.note(picture(3, kHour_us), time_us(3) + kHour_us, true)) << "in the next one";
    EXPECT_FALSE(outages.note(picture(4), time_us(4), true)) << "and back";
    PoolFrame late = picture(5);
    late.clock_ahead_us += kHour_us; /* set between its being taken and put */
    EXPECT_FALSE(outages.note(late, time_us(5), false));
    EXPECT_FALSE(outages.note(picture(6, kHour_us), time_us(6), false));
}

TEST(Outages, AreAsLongAsTheCameraWasAwayThoughTheClockWasSetMeanwhile)
{
    for (const int64_t wrong_us : {kHour_us, -kHour_us}) {
        Outages outages;
        outages.note(picture(1), time_us(1), true);
        const auto gap = outages.note(picture(11, wrong_us), time_us(11) + wrong_us, true);
        ASSERT_TRUE(gap);
        EXPECT_EQ(gap->from_us, time_us(1));
        EXPECT_EQ(gap->to_us, time_us(11));
    }
}

TEST(Outages, ArePicturesThatWereNotTakenAndNotThoseThatCameLate)
{
    Outages outages;
    outages.note(picture(1), time_us(1), true);
    PoolFrame late = picture(1.04);
    late.arrived_us += 5 * kSecond_us;
    EXPECT_FALSE(outages.note(late, time_us(1.04), false));
}

TEST(Outages, InAFileAreByItsOwnTimes)
{
    Outages outages;
    outages.note(picture(1), time_us(1.5), true);
    const auto gap = outages.note(picture(9), time_us(9.25), false);
    ASSERT_TRUE(gap);
    EXPECT_EQ(gap->from_us, time_us(1.5));
    EXPECT_EQ(gap->to_us, time_us(9.25));
    EXPECT_EQ(gap->why, "no video");
}

TEST(Outages, SayWhy)
{
    Outages outages;
    outages.note(picture(1), time_us(1), true);
    outages.lost();
    EXPECT_EQ(outages.note(picture(5), time_us(5), false)->why, "lost");
    outages.note(picture(6), time_us(6), false);
    outages.fell_back(time_us(5), "the disk is full");
    outages.lost();
    const auto gap = outages.note(picture(8), time_us(8), true);
    ASSERT_TRUE(gap);
    EXPECT_EQ(gap->why, "the disk is full");
    EXPECT_EQ(gap->from_us, time_us(5)) << "what the disk did not keep is in it";
    EXPECT_EQ(outages.note(picture(18), time_us(18), false)->why, "no video");
    outages.forget();
    EXPECT_FALSE(outages.note(picture(30), time_us(30), true));
}

TEST(RecordingPlans, SayWhatOfATimeLiesInTheirHours)
{
    setenv("TZ", "UTC", 1);
    tzset();
    using Spans = std::vector<std::pair<int64_t, int64_t>>;
    const int64_t to_us = kDay_us + 24 * kHour_us;
    RecordingPlan plan;
    EXPECT_EQ(planned_within(plan, kDay_us, to_us), (Spans{{kDay_us, to_us}}));
    plan.mode = RecordingMode::kHours;
    plan.hours = {{.from_min = 22 * 60, .to_min = 6 * 60}, {.from_min = 12 * 60, .to_min = 12 * 60 + 1}};
    const int64_t noon_us = kDay_us + 12 * kHour_us;
    EXPECT_EQ(planned_within(plan, kDay_us + 5, to_us - 5), (Spans{{kDay_us + 5, kDay_us + 6 * kHour_us},
                                                                   {noon_us, noon_us + 60 * kSecond_us},
                                                                   {kDay_us + 22 * kHour_us, to_us - 5}}));
    plan.mode = RecordingMode::kNever;
    EXPECT_TRUE(planned_within(plan, kDay_us, to_us).empty());
}

} // namespace
