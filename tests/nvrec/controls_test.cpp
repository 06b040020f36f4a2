/*
 * The recorder's hands and ears in one process with the board: keys and mouse arrive, the buzzer and
 * the lamp do as they are told, the watchdog starves with a thread that hangs.
 */
#include <array>
#include <atomic>
#include <condition_variable>
#include <ctime>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "controls/health.h"
#include "controls/indicators.h"
#include "controls/key_names.h"
#include "controls/keys.h"
#include "controls/keys_navigation.h"
#include "nvrhal.h"
#include "stand_in_wall.h"
#include "start_board.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;

constexpr uint32_t kBuzzer = BOARD_LINE_BUZZER;
constexpr int32_t kPatience_ms = 20000;
constexpr int64_t kSecond_us = 1000000;

/* A wall without a screen, whose rings can be waited for. */
class FakeWall final : public nvrec_test::StandInWall
{
public:
    using StandInWall::StandInWall;

    void wake() override
    {
        const std::scoped_lock guard(lock_);
        ++rings_;
        rung_.notify_all();
    }

    /* Give a module turns, one a ring, until it holds; false when nobody rings any more. */
    template <typename Done> bool turn_until(Module &module, Done done)
    {
        for (;;) {
            module.take_turn(Clock::now());
            if (done()) return true;
            std::unique_lock guard(lock_);
            if (!rung_.wait_for(guard, 20s, [this] { return rings_ > 0; })) return false;
            rings_ = 0;
        }
    }

private:
    std::mutex lock_;
    std::condition_variable rung_;
    int rings_ = 0;
};

TEST(KeyNames, EveryButtonIsFoundByItsNameAndByItsKeyCode)
{
    for (const Button &button : buttons()) {
        ASSERT_NE(button_named(button.name), nullptr);
        EXPECT_EQ(button_named(button.name)->key, button.key) << button.name;
        ASSERT_NE(button_sending(button.key_code), nullptr);
        EXPECT_EQ(button_sending(button.key_code)->key, button.key) << button.name;
    }
    EXPECT_EQ(button_named("MENU"), button_named("menu"));
    EXPECT_EQ(button_named("menue"), nullptr);
    EXPECT_EQ(button_sending(0), nullptr) << "what the queue's unwritten slots hold";
}

TEST(KeyNames, ThePcHasEveryKeyOfTheWindow)
{
    for (const Button &button : buttons()) {
        const vboard_window_key key = {button.pc_key, button.ir_code};
        EXPECT_EQ(vboard_window_set_keys(&key, 1), 0) << button.pc_key;
    }
    const vboard_window_key absent = {"Any key", 1};
    EXPECT_EQ(vboard_window_set_keys(&absent, 1), -1);
    EXPECT_EQ(vboard_window_set_keys(nullptr, 1), -1);
}

TEST(RecorderKeys, EveryButtonOfTheRemoteArrivesThroughTheLibrary)
{
    FakeWall wall(4);
    Keys keys;
    ASSERT_TRUE(keys.start(wall));
    /* The library's reader opens the receiver on its own thread: press until it listens. */
    std::atomic<bool> done = false;
    std::thread hand([&] {
        while (!keys.press(*button_named("menu"), Keys::Way::kRemote, 200ms)) {
        }
        for (const Button &button : buttons())
            EXPECT_TRUE(keys.press(button, Keys::Way::kRemote, 20s)) << button.name;
        done = true;
        wall.wake();
    });
    EXPECT_TRUE(wall.turn_until(keys, [&] { return done.load(); }));
    hand.join();
    ASSERT_GT(wall.keys.size(), buttons().size());
    size_t at = wall.keys.size() - buttons().size();
    for (const Button &button : buttons())
        EXPECT_EQ(wall.keys.at(at++), button.key) << button.name;
    keys.stop();
}

TEST(RecorderKeys, PanelKeysComeOnTheSameRoad)
{
    FakeWall wall(4);
    Keys keys;
    ASSERT_TRUE(keys.start(wall));
    vboard_panel_press(button_named("layout")->key_code);
    vboard_panel_press(button_named("5")->key_code);
    vboard_panel_press(7); /* no key of ours */
    vboard_panel_press(button_named("back")->key_code);
    EXPECT_TRUE(wall.turn_until(keys, [&] { return wall.keys.size() == 3; }));
    EXPECT_EQ(wall.keys, (std::vector<Key>{Key::kNextLayout, button_named("5")->key, Key::kBack}));
    vboard_panel_stat panel;
    ASSERT_EQ(vboard_panel_get_stat(&panel), 0);
    EXPECT_EQ(panel.keys_taken, 4u);
}

TEST(RecorderKeys, NoneIsLostOrMadeUpWhenTheQueueGoesRound)
{
    FakeWall wall(4);
    Keys keys;
    ASSERT_TRUE(keys.start(wall));
    const Button &up = *button_named("up");
    constexpr size_t kPresses = 300; /* twice round the writer's slots, once round the reader's */
    for (size_t i = 1; i <= kPresses; ++i) {
        vboard_panel_press(up.key_code);
        ASSERT_TRUE(wall.turn_until(keys, [&] { return wall.keys.size() >= i; })) << i;
    }
    EXPECT_EQ(wall.keys, std::vector<Key>(kPresses, Key::kUp));
}

TEST(RecorderKeys, NoPressOfTheMouseIsLostBehindMoves)
{
    FakeWall wall(4);
    Keys keys;
    ASSERT_TRUE(keys.start(wall));
    for (int i = 0; i < 5; ++i) {
        vboard_mouse_move(100 + i, 200);
        vboard_mouse_buttons(1);
        vboard_mouse_move(110 + i, 200);
        vboard_mouse_buttons(0);
        vboard_mouse_wheel(-1);
    }
    const auto presses = [&] {
        int count = 0;
        for (const PointerEvent &event : wall.pointers)
            count += event.pressed == 1;
        return count;
    };
    const auto turns = [&] {
        int count = 0;
        for (const PointerEvent &event : wall.pointers)
            count -= event.wheel;
        return count;
    };
    EXPECT_TRUE(wall.turn_until(keys, [&] { return turns() == 5; }));
    EXPECT_EQ(presses(), 5);
    EXPECT_EQ(wall.pointers.back().x, 114);
    EXPECT_EQ(wall.pointers.back().buttons, 0u);
}

TEST(RecorderKeys, ARecorderWithoutPanelReceiverAndMouseGoesOn)
{
    vboard_set_loud(0);
    ASSERT_EQ(vboard_fault_set("board_open", 1, 0, -1), 0);
    FakeWall wall(4);
    Keys keys;
    EXPECT_TRUE(keys.start(wall));
    vboard_ir_press(button_named("menu")->ir_code);
    keys.take_turn(Clock::now());
    EXPECT_TRUE(wall.keys.empty());
    EXPECT_FALSE(keys.press(*button_named("menu"), Keys::Way::kRemote, 50ms));
    keys.stop();
}

TEST(RecorderNavigation, TheLayoutKeyGoesThroughWhatIsWorthHaving)
{
    EXPECT_EQ(layout_after(Layout::kGrid2, 4), Layout::kOneAndFive);
    EXPECT_EQ(layout_after(Layout::kOneAndFive, 4), Layout::kOneAndSeven);
    EXPECT_EQ(layout_after(Layout::kOneAndSeven, 4), Layout::kGrid2) << "nine panes for four cameras are not";
    EXPECT_EQ(layout_after(Layout::kGrid4, 16), Layout::kGrid2);
    EXPECT_EQ(layout_after(Layout::kSingle, 1), Layout::kSingle) << "one camera has no other layout";
}

TEST(RecorderNavigation, ArrowsGoToTheNextPane)
{
    const auto grid = make_panes(Layout::kGrid3, 1920, 1080, 9);
    EXPECT_EQ(neighbour(grid, 4, 0, -1), 1);
    EXPECT_EQ(neighbour(grid, 4, 0, 1), 7);
    EXPECT_EQ(neighbour(grid, 4, -1, 0), 3);
    EXPECT_EQ(neighbour(grid, 4, 1, 0), 5);
    EXPECT_EQ(neighbour(grid, 8, 1, 0), 8) << "the edge holds";
    EXPECT_EQ(neighbour(grid, 15, 1, 0), 0) << "a camera without a pane";
    const auto large = make_panes(Layout::kOneAndFive, 1920, 1080, 6);
    EXPECT_EQ(neighbour(large, 5, 0, -1), 2);
    EXPECT_EQ(neighbour(large, 3, 0, -1), 0);
    EXPECT_EQ(neighbour({}, 3, 0, -1), 3);
}

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
