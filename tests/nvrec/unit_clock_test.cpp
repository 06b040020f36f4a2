/* When the recorder's units are due: what time stamps of containers and their absence mean. */
#include <vector>

#include <gtest/gtest.h>

#include "camera/unit_clock.h"

namespace
{

using nvrec::UnitClock;

constexpr int64_t kFrame_us = 40'000;

UnitClock::PacketTimes both(int64_t dts_us, int64_t pts_us)
{
    return {.pts_us = pts_us, .dts_us = dts_us, .pts_behind_dts_us = pts_us - dts_us, .key = false};
}

UnitClock clock_of_25()
{
    UnitClock clock;
    clock.set_stream(25, 0);
    clock.begin();
    return clock;
}

TEST(NvrecUnitClock, ABareStreamRunsAtItsRate)
{
    UnitClock clock = clock_of_25();
    for (int64_t unit = 0; unit < 3; ++unit) {
        const UnitClock::Stamp stamp = clock.stamp({});
        EXPECT_EQ(stamp.due_us, unit * kFrame_us);
        EXPECT_EQ(stamp.pts_us, unit * kFrame_us);
    }
    EXPECT_EQ(clock.next_number(), 3);
}

TEST(NvrecUnitClock, StampsCountFromTheFirstUnitOn)
{
    UnitClock clock = clock_of_25();
    EXPECT_FALSE(clock.offset_us());
    UnitClock::Stamp stamp = clock.stamp(both(900'000'000, 900'080'000));
    EXPECT_EQ(stamp.due_us, 0);
    EXPECT_EQ(stamp.pts_us, 80'000);
    EXPECT_EQ(clock.offset_us(), -900'000'000);
    EXPECT_EQ(clock.first_pts_us(), 900'080'000);
    stamp = clock.stamp(both(900'040'000, 900'200'000));
    EXPECT_EQ(stamp.due_us, 40'000);
    EXPECT_EQ(stamp.pts_us, 200'000);
}

TEST(NvrecUnitClock, DueTimesNeverFallBack)
{
    UnitClock clock = clock_of_25();
    clock.stamp(both(1'000'000, 1'000'000));
    clock.stamp(both(1'100'000, 1'100'000));
    EXPECT_EQ(clock.stamp(both(1'020'000, 1'020'000)).due_us, 100'000);
}

TEST(NvrecUnitClock, WithoutDecodingTimesUnitsAreDueAsMuchEarlierAsTheyAreHeldBack)
{
    UnitClock clock;
    clock.set_stream(25, 2);
    clock.begin();
    const UnitClock::Stamp first = clock.stamp({.pts_us = 500'000, .dts_us = {}, .key = true});
    EXPECT_EQ(first.due_us, 0);
    EXPECT_EQ(first.pts_us, 2 * kFrame_us);
    const UnitClock::Stamp second = clock.stamp({.pts_us = 660'000, .dts_us = {}, .key = false});
    EXPECT_EQ(second.due_us, kFrame_us) << "by the count of units";
    EXPECT_EQ(second.pts_us, 6 * kFrame_us);
}

TEST(NvrecUnitClock, JoinedFilesGoOnOneFrameLater)
{
    UnitClock clock = clock_of_25();
    clock.stamp(both(3'600'000'000, 3'600'000'000));
    clock.stamp(both(3'600'040'000, 3'600'040'000));
    EXPECT_EQ(clock.stamp(both(1'000, 1'000)).due_us, 2 * kFrame_us) << "an hour back";
    EXPECT_EQ(clock.stamp(both(41'000, 41'000)).due_us, 3 * kFrame_us);
    EXPECT_EQ(clock.offset_us(), 2 * kFrame_us - 1'000) << "sound goes with its pictures";
    clock.set_may_be_joined(true);
    EXPECT_EQ(clock.stamp(both(7'200'000'000, 7'200'000'000)).due_us, 4 * kFrame_us) << "two hours forward";
    EXPECT_EQ(clock.stamp(both(7'200'040'000, 7'200'040'000)).due_us, 5 * kFrame_us);
}

TEST(NvrecUnitClock, APauseInARecordingStays)
{
    UnitClock clock = clock_of_25();
    clock.stamp(both(0, 0));
    EXPECT_EQ(clock.stamp(both(60'000'000, 60'000'000)).due_us, 60'000'000);
}

TEST(NvrecUnitClock, PicturesBeforeAnEditListsBeginningAreDueWithIt)
{
    UnitClock clock = clock_of_25();
    UnitClock::PacketTimes before = both(0, 0);
    before.before_start = true;
    EXPECT_EQ(clock.stamp(before).due_us, 0);
    before.dts_us = before.pts_us = kFrame_us;
    EXPECT_EQ(clock.stamp(before).due_us, 0);
    EXPECT_EQ(clock.stamp(both(2 * kFrame_us, 2 * kFrame_us)).due_us, 0);
    EXPECT_EQ(clock.stamp(both(3 * kFrame_us, 3 * kFrame_us)).due_us, kFrame_us);
    EXPECT_EQ(clock.offset_us(), -2 * kFrame_us);
}

TEST(NvrecUnitClock, AFileThatBeginsAgainGoesOnOneFrameLater)
{
    UnitClock clock = clock_of_25();
    clock.stamp(both(7'000, 7'000));
    clock.stamp(both(47'000, 47'000));
    clock.begin_again();
    EXPECT_EQ(clock.stamp(both(7'000, 7'000)).due_us, 2 * kFrame_us);
    EXPECT_EQ(clock.stamp(both(47'000, 47'000)).due_us, 3 * kFrame_us);
}

TEST(NvrecUnitClock, ACameraThatComesBackGoesOnAfterTheTimeItWasAway)
{
    UnitClock clock = clock_of_25();
    clock.stamp(both(0, 0));
    clock.stamp(both(kFrame_us, kFrame_us));
    clock.begin_after(5'000'000);
    EXPECT_EQ(clock.stamp(both(123, 123)).due_us, kFrame_us + 5'000'000);
}

TEST(NvrecUnitClock, AfterASeekTimesArePlacesInTheFile)
{
    UnitClock clock = clock_of_25();
    for (int64_t unit = 0; unit < 100; ++unit)
        clock.stamp(both(unit * kFrame_us, unit * kFrame_us));
    clock.go_to_places();
    EXPECT_EQ(clock.stamp(both(25 * kFrame_us, 25 * kFrame_us)).due_us, 1'000'000);
    EXPECT_EQ(clock.number_at(1'000'000), 25);
}

} // namespace
