/*
 * The recorder's indicators and supervision in one process with the board: the buzzer and the lamp do as
 * they are told, the watchdog starves with a thread that hangs.
 */
#include <atomic>
#include <chrono>
#include <ctime>

#include <gtest/gtest.h>

#include "controls/health.h"
#include "controls/indicators.h"
#include "fake_wall.h"
#include "nvrhal.h"
#include "start_board.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;
using nvrec_test::FakeWall;

constexpr uint32_t kBuzzer = BOARD_LINE_BUZZER;
constexpr int32_t kPatience_ms = 20000;
constexpr int64_t kSecond_us = 1000000;

class RecorderIndicators : public testing::Test
{
protected:
    void SetUp() override
    {
        start_board();
        EXPECT_EQ(vboard_gpio_level(kBuzzer), 1) << "start-up leaves it high";
    }

    FakeWall wall_{4};
    Indicators indicators_;
};

TEST_F(RecorderIndicators, TheBuzzerSoundsForALossAndNotForEver)
{
    ASSERT_TRUE(indicators_.start(wall_));
    EXPECT_EQ(vboard_gpio_level(kBuzzer), 0) << "nothing is lost yet";
    auto now = Clock::now();
    indicators_.take_turn(now);
    EXPECT_EQ(vboard_gpio_level(kBuzzer), 0);

    ASSERT_EQ(vboard_ad_set_loss(2, 1), 0);
    indicators_.take_turn(now += 1s);
    EXPECT_EQ(vboard_gpio_level(kBuzzer), 1);
    indicators_.take_turn(now += 9s);
    EXPECT_EQ(vboard_gpio_level(kBuzzer), 1);
    indicators_.take_turn(now += 1s);
    EXPECT_EQ(vboard_gpio_level(kBuzzer), 0) << "ten seconds are enough";

    ASSERT_EQ(vboard_ad_set_loss(0, 1), 0);
    indicators_.take_turn(now += 1s);
    EXPECT_EQ(vboard_gpio_level(kBuzzer), 1) << "another camera is news";
    ASSERT_EQ(vboard_ad_set_loss(0, 0), 0);
    ASSERT_EQ(vboard_ad_set_loss(2, 0), 0);
    indicators_.take_turn(now += 1s);
    EXPECT_EQ(vboard_gpio_level(kBuzzer), 0) << "all are back";
}

TEST_F(RecorderIndicators, AnInputBeyondTheCamerasIsNobodysLoss)
{
    ASSERT_TRUE(indicators_.start(wall_));
    ASSERT_EQ(vboard_ad_set_loss(4, 1), 0);
    indicators_.take_turn(Clock::now());
    EXPECT_EQ(vboard_gpio_level(kBuzzer), 0);
}

TEST_F(RecorderIndicators, AnotherCameraHasNotLostTheVideoOfTheOneBefore)
{
    ASSERT_TRUE(indicators_.start(wall_));
    ASSERT_EQ(vboard_ad_set_loss(1, 1), 0);
    auto now = Clock::now();
    testing::internal::CaptureStderr();
    indicators_.take_turn(now);
    ASSERT_EQ(vboard_ad_set_loss(1, 0), 0);
    indicators_.on_camera_replaced(1);
    indicators_.take_turn(now += 1s);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("channel 1: its video is lost"), std::string::npos) << said;
    EXPECT_EQ(said.find("its video is back"), std::string::npos) << said;
    EXPECT_EQ(vboard_gpio_level(kBuzzer), 0);
}

TEST_F(RecorderIndicators, TheLampBlinksWhileItRecords)
{
    ASSERT_TRUE(indicators_.start(wall_));
    vboard_clock_take();
    wall_.set_recording(true);
    indicators_.take_turn(Clock::now());
    for (int i = 0; i < 4; ++i) {
        ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
        ASSERT_EQ(vboard_clock_step_us(kSecond_us / 2), 0);
    }
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    vboard_panel_stat panel;
    ASSERT_EQ(vboard_panel_get_stat(&panel), 0);
    EXPECT_EQ(panel.lamp_changes, 4u) << "dark at first, so the first half second changes nothing";

    wall_.set_recording(false);
    indicators_.take_turn(Clock::now());
    ASSERT_EQ(vboard_panel_get_stat(&panel), 0);
    EXPECT_EQ(panel.record_lamp, 1u) << "steady";
    vboard_clock_release();
}

TEST_F(RecorderIndicators, AClockThatHasLostItsTimeIsSetFromTheSystems)
{
    vboard_rtc_fail_battery();
    int32_t tm[9] = {};
    ASSERT_EQ(ext_rtc_time_system(tm, 0), -1);
    ASSERT_TRUE(indicators_.start(wall_));
    ASSERT_EQ(ext_rtc_time_system(tm, 0), 0);
    EXPECT_NEAR(static_cast<double>(vboard_rtc_get()), static_cast<double>(std::time(nullptr)), 60.0);
}

TEST_F(RecorderIndicators, AClockThatKeptItsTimeIsLeftAlone)
{
    vboard_rtc_set(1000000000);
    ASSERT_TRUE(indicators_.start(wall_));
    EXPECT_NEAR(static_cast<double>(vboard_rtc_get()), 1e9, 60.0);
}

/* The library's feeder and the health's own thread sleep on the taken board clock. */
class RecorderHealth : public RecorderIndicators
{
protected:
    static constexpr int kWatchdog_s = 10;
    static constexpr uint32_t kSleepers = 2;

    static vboard_watchdog_stat watchdog()
    {
        vboard_watchdog_stat stat = {};
        EXPECT_EQ(vboard_watchdog_get_stat(&stat), 0);
        return stat;
    }

    /* Both go to sleep; then three seconds pass. */
    static void pass_feed_period()
    {
        ASSERT_EQ(vboard_clock_wait_sleepers(kSleepers, kPatience_ms), 0);
        ASSERT_EQ(vboard_clock_step_us(3 * kSecond_us), 0);
    }
};

TEST_F(RecorderHealth, AThreadThatHangsStarvesTheWatchdog)
{
    vboard_clock_take();
    const Clock::time_point begin = Clock::now();
    std::atomic<Clock::rep> promise = (begin + 1h).time_since_epoch().count();
    Health health(kWatchdog_s, 1s);
    health.watch(
        "the camera", [&] { return Clock::time_point(Clock::duration(promise.load())); }, 1s);
    ASSERT_TRUE(health.start(wall_));
    EXPECT_EQ(watchdog().timeout_s, static_cast<uint32_t>(kWatchdog_s));

    for (int i = 0; i < 5; ++i)
        pass_feed_period();
    ASSERT_EQ(vboard_clock_wait_sleepers(kSleepers, kPatience_ms), 0);
    EXPECT_EQ(watchdog().expired, 0u) << "fifteen seconds, fed every three";

    promise = (begin - 1min).time_since_epoch().count(); /* it was to be heard from a minute ago */
    health.look(Clock::now());
    EXPECT_EQ(Wdt_Fing, 0);
    ASSERT_EQ(vboard_clock_step_us(3 * kSecond_us), 0);
    ASSERT_EQ(vboard_clock_wait_sleepers(kSleepers, kPatience_ms), 0); /* the feeder's farewell */
    ASSERT_EQ(vboard_clock_step_us(kSecond_us), 0);
    EXPECT_EQ(watchdog().expired, 0u);
    ASSERT_EQ(vboard_clock_step_us(kWatchdog_s * kSecond_us), 0);
    EXPECT_EQ(watchdog().expired, 1u);
    vboard_clock_release();
    health.stop();
}

/* The health's own thread looks too, at the board's time, which is before all of these. */
TEST_F(RecorderHealth, AMainThreadWithoutATurnStarvesTheWatchdogUntilItHasOneAgain)
{
    vboard_clock_take();
    const Clock::time_point begin = Clock::now() + 1h;
    Health health(kWatchdog_s, 1s);
    ASSERT_TRUE(health.start(wall_));
    health.take_turn(begin);
    health.look(begin + 29s);
    EXPECT_EQ(Wdt_Fing, 1);
    health.look(begin + 31s);
    EXPECT_EQ(Wdt_Fing, 0) << "half a minute without a turn";

    pass_feed_period();
    ASSERT_EQ(vboard_clock_wait_sleepers(kSleepers, kPatience_ms), 0); /* the feeder's farewell */
    ASSERT_EQ(vboard_clock_step_us(kSecond_us), 0);
    const uint64_t feeds = watchdog().feeds;
    health.take_turn(begin + 34s);
    health.look(begin + 34s);
    EXPECT_EQ(Wdt_Fing, 0) << "the feeder may not have ended yet";
    health.look(begin + 36s);
    EXPECT_EQ(Wdt_Fing, 1);
    for (int i = 0; i < 5; ++i)
        pass_feed_period();
    ASSERT_EQ(vboard_clock_wait_sleepers(kSleepers, kPatience_ms), 0);
    EXPECT_GE(watchdog().feeds, feeds + 5);
    EXPECT_EQ(watchdog().expired, 0u) << "nineteen seconds, of which it was not fed for four";
    vboard_clock_release();
    health.stop();
}

TEST_F(RecorderHealth, AnOrderlyEndSwitchesTheWatchdogOff)
{
    Health health(kWatchdog_s, 1s);
    ASSERT_TRUE(health.start(wall_));
    EXPECT_EQ(watchdog().enabled, 1u);
    health.stop();
    EXPECT_EQ(watchdog().enabled, 0u);
    EXPECT_EQ(Wdt_Fing, 0);
}

TEST_F(RecorderHealth, NoWatchdogWhenNoneIsWanted)
{
    Health health(0, 1s);
    ASSERT_TRUE(health.start(wall_));
    EXPECT_EQ(watchdog().enabled, 0u);
    EXPECT_EQ(Wdt_Fing, 0);
}

} // namespace
