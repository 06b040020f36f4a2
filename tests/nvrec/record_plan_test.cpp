/*
 * When and by which way a stream is recorded: plans, what is held for an event, the packet queue
 * beside the pools, and files at the end of daylight saving.
 */
#include <algorithm>
#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

#include "frame_pools.h"
#include "nvrhal.h"
#include "record/frame_route.h"
#include "record/held_frames.h"
#include "record/packet_queue.h"
#include "record/plan.h"
#include "record/recent_rate.h"
#include "record/segment.h"

namespace
{

using namespace nvrec;

constexpr int64_t kSecond_us = 1'000'000;

void set_zone(const char *zone)
{
    setenv("TZ", zone, 1);
    tzset();
}

/* 2026-11-22 was a Sunday. */
int64_t utc_us(int day, int hour, int minute)
{
    tm parts = {};
    parts.tm_year = 2026 - 1900;
    parts.tm_mon = 10;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    return timegm(&parts) * kSecond_us;
}

TEST(RecordingPlans, HoursGoByLocalTimeAndBeyondMidnight)
{
    set_zone("UTC");
    RecordingPlan plan;
    plan.mode = RecordingMode::kHours;
    plan.hours.push_back(
        {{false, true, true, true, true, true, false}, 22 * 60, 6 * 60}); /* Monday to Friday */
    EXPECT_FALSE(is_planned(plan, utc_us(22, 23, 0))) << "Sunday";
    EXPECT_FALSE(is_planned(plan, utc_us(23, 5, 59))) << "Sunday's night";
    EXPECT_FALSE(is_planned(plan, utc_us(23, 21, 59)));
    EXPECT_TRUE(is_planned(plan, utc_us(23, 22, 0))) << "Monday";
    EXPECT_TRUE(is_planned(plan, utc_us(24, 5, 59)));
    EXPECT_FALSE(is_planned(plan, utc_us(24, 6, 0)));
    EXPECT_TRUE(is_planned(plan, utc_us(28, 5, 0))) << "Friday's night";
    set_zone("Asia/Kolkata");
    EXPECT_TRUE(is_planned(plan, utc_us(23, 16, 30))) << "22:00 there";
    EXPECT_FALSE(is_planned(plan, utc_us(23, 16, 29)));
    plan.hours = {{}};
    EXPECT_TRUE(is_planned(plan, utc_us(22, 0, 0))) << "the whole day";
    plan.hours.clear();
    EXPECT_FALSE(is_planned(plan, utc_us(22, 0, 0)));
}

TEST(RecordingPlans, AlwaysIsEverAndTheOthersAreNot)
{
    RecordingPlan plan;
    EXPECT_TRUE(is_planned(plan, utc_us(22, 12, 0)));
    for (const RecordingMode mode : {RecordingMode::kEvent, RecordingMode::kNever}) {
        plan.mode = mode;
        EXPECT_FALSE(is_planned(plan, utc_us(22, 12, 0)));
    }
}

/* Europe set its clocks back on 2026-10-25 at 01:00 UTC: 02:00 to 03:00 came twice. */
TEST(Segments, TheHourThatComesTwiceHasTwoFilesWithTwoNames)
{
    set_zone("Europe/Berlin");
    tm parts = {};
    parts.tm_year = 2026 - 1900;
    parts.tm_mon = 9;
    parts.tm_mday = 25;
    parts.tm_min = 30;
    const int64_t first_us = timegm(&parts) * kSecond_us, second_us = first_us + kHour_s * kSecond_us;
    EXPECT_NE(segment_of(first_us, kHour_s), segment_of(second_us, kHour_s));
    EXPECT_NE(segment_of(first_us, 86'400), segment_of(second_us, 86'400));
    EXPECT_EQ(segment_name(3, "main", first_us), "ch03-main-20261025-023000");
    EXPECT_EQ(segment_name(3, "main", second_us), "ch03-main-20261025-023000+0100");
    EXPECT_EQ(segment_name(3, "main", second_us + kHour_s * kSecond_us), "ch03-main-20261025-033000");
    EXPECT_EQ(segment_name(3, "main", first_us - kHour_s * kSecond_us), "ch03-main-20261025-013000");
}

TEST(RecentRates, AreNoneWhereTheCountFell)
{
    const Clock::time_point begin{};
    RecentRate rate;
    rate.note(begin, 1'000'000);
    EXPECT_DOUBLE_EQ(rate.per_s(begin + std::chrono::seconds(10), 3'000'000).value_or(-1), 200'000);
    EXPECT_DOUBLE_EQ(rate.per_s(begin + std::chrono::seconds(10), 999'999).value_or(-1), 0);
}

PoolFrame frame_of(size_t bytes, bool key, int64_t number)
{
    PoolFrame frame;
    frame.bytes.assign(bytes, static_cast<uint8_t>(number));
    frame.key = key;
    frame.pts_us = frame.dts_us = number * kSecond_us;
    return frame;
}

TEST(HeldFrames, CoverTheTimeThatIsAskedForByWholeGroups)
{
    HeldFrames held(1'000'000);
    held.add(frame_of(10, false, 0), 5 * kSecond_us);
    EXPECT_TRUE(held.empty()) << "nothing can be shown before a key frame";
    for (int64_t number = 1; number <= 30; ++number)
        held.add(frame_of(10, number % 4 == 1, number), 5 * kSecond_us);
    /* From second 25 on: the group that begins there. */
    EXPECT_EQ(held.from_us(), 25 * kSecond_us);
    held.add(frame_of(10, false, 31), 5 * kSecond_us);
    EXPECT_EQ(held.from_us(), 25 * kSecond_us) << "the next group begins too late";
    EXPECT_EQ(held.take().size(), 7u);
    EXPECT_TRUE(held.empty());
}

TEST(HeldFrames, AreBoundedInBytes)
{
    HeldFrames held(1000);
    for (int64_t number = 0; number < 100; ++number) {
        held.add(frame_of(90, number % 5 == 0, number), 60 * kSecond_us);
        EXPECT_LE(held.bytes(), 1000u);
    }
    EXPECT_EQ(held.take().front().key, true);
    held.add(frame_of(2000, true, 0), kSecond_us);
    EXPECT_TRUE(held.empty()) << "one that is too large";
}

/* Groups of 16 Mbit/s, five seconds long. */
TEST(HeldFrames, CoverTheSecondsBeforeOfACameraOfAHighRate)
{
    HeldFrames held(kMostHeld_bytes);
    for (int64_t number = 0; number < 25; ++number) {
        held.add(frame_of(2'000'000, number % 5 == 0, number), 5 * kSecond_us);
        ASSERT_FALSE(held.empty());
        EXPECT_LE(held.from_us(), std::max<int64_t>(number - 5, 0) * kSecond_us) << number;
    }
}

TEST(HeldFrames, GoOnBehindAGroupThatIsTooLarge)
{
    HeldFrames held(1000);
    for (int64_t number = 0; number < 20; ++number) /* and with it the one before */
        held.add(frame_of(90, number == 0 || number == 5, number), 60 * kSecond_us);
    EXPECT_TRUE(held.empty());
    EXPECT_EQ(held.bytes(), 0u);
    held.add(frame_of(90, true, 20), 60 * kSecond_us);
    held.add(frame_of(90, false, 21), 60 * kSecond_us);
    EXPECT_EQ(held.bytes(), 180u);
    EXPECT_EQ(held.from_us(), 20 * kSecond_us);
}

TEST(HeldFrames, BeginAnewBehindAHole)
{
    HeldFrames held(1000);
    held.add(frame_of(10, true, 1), kSecond_us);
    PoolFrame frame = frame_of(10, true, 2);
    frame.after_gap = true;
    held.add(std::move(frame), 10 * kSecond_us);
    EXPECT_EQ(held.from_us(), 2 * kSecond_us);
}

TEST(PacketQueues, KeepOrderAndCount)
{
    PoolEvent event;
    PacketQueue queue(10'000, event);
    for (int64_t number = 0; number < 50; ++number)
        EXPECT_EQ(queue.put(frame_of(100, number % 10 == 0, number)), 0);
    PoolFrame frame;
    for (int64_t number = 0; number < 50; ++number) {
        ASSERT_TRUE(queue.take(&frame));
        EXPECT_EQ(frame.pts_us, number * kSecond_us);
        EXPECT_FALSE(frame.after_gap);
    }
    EXPECT_FALSE(queue.take(&frame));
    EXPECT_EQ(queue.counters().stored, 50u);
    EXPECT_EQ(queue.counters().read, 50u);
}

TEST(PacketQueues, OverwriteTheirOldestAndGoOnAtAKeyFrame)
{
    PoolEvent event;
    PacketQueue queue(10'000, event);
    for (int64_t number = 0; number < 205; ++number)
        queue.put(frame_of(100, number % 10 == 0, number));
    PoolFrame frame;
    ASSERT_TRUE(queue.take(&frame));
    EXPECT_TRUE(frame.key);
    EXPECT_TRUE(frame.after_gap);
    EXPECT_EQ(frame.pts_us, 110 * kSecond_us) << "of 100 that fit, the first key frame";
    int taken = 1;
    while (queue.take(&frame)) {
        EXPECT_FALSE(frame.after_gap);
        ++taken;
    }
    const PoolCounters counters = queue.counters();
    EXPECT_EQ(counters.stored, 205u);
    EXPECT_EQ(counters.read, static_cast<uint64_t>(taken));
    EXPECT_EQ(counters.lost, counters.stored - counters.read);
    EXPECT_EQ(counters.resynchronised, 1u);
}

TEST(PacketQueues, RefuseWhatWouldFillThem)
{
    PoolEvent event;
    PacketQueue queue(10'000, event);
    queue.put(frame_of(100, true, 0));
    EXPECT_EQ(queue.put(frame_of(5001, false, 1)), -1);
    EXPECT_EQ(queue.put(frame_of(0, false, 2)), -1);
    queue.put(frame_of(100, false, 3));
    queue.put(frame_of(100, true, 4));
    PoolFrame frame;
    ASSERT_TRUE(queue.take(&frame));
    ASSERT_TRUE(queue.take(&frame));
    EXPECT_EQ(frame.pts_us, 4 * kSecond_us) << "what refers to a missing frame is passed over";
    EXPECT_TRUE(frame.after_gap);
    EXPECT_EQ(queue.counters().refused, 2u);
    EXPECT_EQ(queue.counters().lost, 1u);
}

/* Pools of eight channels, as start-up makes them. */
class FrameRoutes : public testing::Test
{
protected:
    void SetUp() override { begin_frame_pool(STREAM_POOL_MAIN, NVRHAL_MAX_CAMERAS); }

    static AccessUnit unit_of(size_t bytes, bool key, int64_t number)
    {
        AccessUnit unit;
        unit.bytes.assign(bytes, static_cast<uint8_t>(number));
        unit.key = key;
        unit.pts_us = unit.due_us = number * 40'000;
        return unit;
    }

    /* Frames of 10 kB, key frames of so many bytes, and each read right behind. */
    static void expect_all(int channel, size_t key_bytes, bool beside)
    {
        PoolEvent event;
        FrameRoute route(channel, PoolStream::kMain, event);
        PoolFrame frame;
        EXPECT_FALSE(route.take(&frame));
        for (int64_t number = 0; number < 300; ++number) {
            const bool key = number % 25 == 20;
            EXPECT_EQ(route.put(unit_of(key ? key_bytes : 10'000, key, number),
                                {Codec::kH264, 3840, 2160, 25, false}),
                      0);
            if (number % 3 != 2) continue;
            for (int64_t taken = number - 2; taken <= number; ++taken) {
                ASSERT_TRUE(route.take(&frame)) << taken;
                EXPECT_EQ(frame.pts_us, taken * 40'000);
                EXPECT_EQ(frame.bytes.size(), taken % 25 == 20 ? key_bytes : 10'000);
                EXPECT_FALSE(frame.after_gap);
            }
        }
        EXPECT_EQ(route.beside_the_pool(), beside);
        EXPECT_EQ(route.counters().read, 300u);
        EXPECT_EQ(route.counters().stored, 300u);
        EXPECT_EQ(route.counters().refused, 0u);
    }
};

TEST_F(FrameRoutes, GoThroughThePoolWhereItHasAPlace)
{
    expect_all(3, 100'000, false);
}

TEST_F(FrameRoutes, GoBesideThePoolFromALargeKeyFrameOn)
{
    expect_all(3, NVRHAL_MAIN_FRAME_BYTES + 1, true);
    expect_all(4, 1'500'000, true);
}

TEST_F(FrameRoutes, GoBesideThePoolFromChannelEightOn)
{
    expect_all(8, 50'000, true);
    expect_all(15, 1'500'000, true);
}

TEST_F(FrameRoutes, TellOnceWhatWasTooLarge)
{
    PoolEvent event;
    FrameRoute route(0, PoolStream::kMain, event);
    route.put(unit_of(NVRHAL_MAIN_FRAME_BYTES + 1, true, 0), {});
    EXPECT_EQ(route.take_too_large_bytes(), NVRHAL_MAIN_FRAME_BYTES + 1u);
    route.put(unit_of(NVRHAL_MAIN_FRAME_BYTES + 2, true, 0), {});
    EXPECT_EQ(route.take_too_large_bytes(), 0u);
}

} // namespace
