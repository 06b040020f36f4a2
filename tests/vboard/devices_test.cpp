/*
 * What the library drives on the virtual board, seen from the control face: the watchdog, the lines, the
 * lamp, and the threads behind them. All waiting is on the stepped board clock.
 */
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <thread>

#include "board_io.h"
#include "ir_driver.h"
#include "nvrhal.h"
#include "stepped_peripherals.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace
{

using namespace peripherals;

using Watchdog = Peripherals;
using Indicator = Peripherals;
using Threads = Peripherals;

/* Their set-up sleeps a millisecond on the test's own thread: the clock runs. */
class Lines : public testing::Test
{
};

vboard_watchdog_stat watchdog()
{
    vboard_watchdog_stat stat;
    EXPECT_EQ(vboard_watchdog_get_stat(&stat), 0);
    return stat;
}

TEST_F(Watchdog, RunsForAHundredSecondsAndIsSeenToExpire)
{
    ASSERT_EQ(local_wdg_init(), 0u);
    EXPECT_EQ(watchdog().enabled, 1u);
    EXPECT_EQ(watchdog().timeout_s, 100u);
    EXPECT_EQ(watchdog().feeds, 1u);
    step_us(100 * kSecond_us - 1);
    EXPECT_EQ(watchdog().expired, 0u);
    EXPECT_EQ(watchdog().remaining_us, 1);
    EXPECT_EQ(vboard_watchdog_wait_expired(0), -1);
    std::thread clock([] { vboard_clock_step_us(1); });
    EXPECT_EQ(vboard_watchdog_wait_expired(kPatience_ms), 0);
    clock.join();
    EXPECT_EQ(watchdog().expired, 1u);
    EXPECT_EQ(watchdog().boot_reason, static_cast<uint32_t>(VBOARD_BOOT_POWER));
    vboard_reset();
    EXPECT_EQ(watchdog().boot_reason, static_cast<uint32_t>(VBOARD_BOOT_WATCHDOG));
    EXPECT_EQ(watchdog().expired, 0u);
    vboard_reset();
    EXPECT_EQ(watchdog().boot_reason, static_cast<uint32_t>(VBOARD_BOOT_POWER));
}

TEST_F(Watchdog, IsKeptQuietByTheFeedingThreadUntilTheFlagIsCleared)
{
    ASSERT_EQ(local_wdg_init(), 0u);
    ASSERT_EQ(local_wdg_set_timeout(5), 0);
    Set_Wdt_Fing(1);
    ASSERT_EQ(wdt_feed_pt(), 0);
    for (int i = 0; i < 20; ++i) {
        wait_sleepers(1);
        step_us(3 * kSecond_us);
    }
    wait_sleepers(1);
    EXPECT_EQ(watchdog().expired, 0u);
    EXPECT_EQ(watchdog().feeds, 22u);
    Set_Wdt_Fing(0);
    step_us(3 * kSecond_us);
    wait_sleepers(1); // the thread's last 100 microseconds
    step_us(2 * kSecond_us);
    EXPECT_EQ(watchdog().expired, 1u);
}

TEST_F(Watchdog, DoesNotExpireWhileItIsSwitchedOff)
{
    ASSERT_EQ(local_wdg_init(), 0u);
    EXPECT_EQ(ext_wdg_set(0), 1u);
    step_us(1000 * kSecond_us);
    EXPECT_EQ(watchdog().expired, 0u);
    EXPECT_EQ(ext_wdg_set(1), 1u);
    step_us(100 * kSecond_us);
    EXPECT_EQ(watchdog().expired, 1u);
}

TEST_F(Lines, AreSetUpAndLoggedInOrder)
{
    ASSERT_EQ(local_gpio_init(), 0);
    EXPECT_EQ(vboard_gpio_level(25), 0);
    EXPECT_EQ(vboard_gpio_level(26), 0);
    for (const uint32_t line : {28u, 34u, 90u})
        EXPECT_EQ(vboard_gpio_level(line), 1) << line;
    EXPECT_EQ(vboard_gpio_level(27), -1);
    constexpr uint32_t kOrder[][3] = {{25, 1, 1}, {25, 0, 0}, {28, 1, 1}, {26, 1, 1},
                                      {26, 0, 1}, {90, 1, 1}, {34, 1, 1}};
    ASSERT_EQ(vboard_gpio_change_count(), 7u);
    for (uint32_t i = 0; i < 7; ++i) {
        vboard_gpio_change change;
        ASSERT_EQ(vboard_gpio_get_change(i, &change), 0);
        EXPECT_EQ(change.line, kOrder[i][0]);
        EXPECT_EQ(change.value, kOrder[i][1]);
        EXPECT_EQ(change.configured, kOrder[i][2]);
    }
    EXPECT_EQ(ext_buzzer_set(0), 0);
    EXPECT_EQ(vboard_gpio_level(28), 0);
}

TEST_F(Lines, RefuseToBeDrivenBeforeTheirSetUp)
{
    ASSERT_EQ(local_gpio_init(), 0);
    vboard_reset(); // closes the descriptor too
    EXPECT_EQ(ext_buzzer_set(1), -1);
    EXPECT_EQ(vboard_gpio_level(28), -1);
}

TEST_F(Indicator, BlinksThePanelsLampAndLeavesItLit)
{
    ASSERT_EQ(hi_start_record_proc(), 0);
    wait_sleepers(1);
    EXPECT_EQ(panel().record_lamp, 0u);
    for (uint32_t i = 1; i <= 4; ++i) {
        step_us(500000);
        wait_sleepers(1);
        EXPECT_EQ(panel().record_lamp, i % 2) << i;
        EXPECT_EQ(panel().lamp_changes, i);
    }
    EXPECT_EQ(hi_stop_record_proc(), 0); // the clock stands still: the thread is ended in its sleep
    EXPECT_EQ(panel().record_lamp, 1u);
    step_us(10 * kSecond_us);
    EXPECT_EQ(panel().lamp_changes, 5u);
}

TEST_F(Indicator, TellsThePanelAboutPolls)
{
    ASSERT_EQ(ext_keyboard_initial(), 0);
    uint32_t event[5];
    EXPECT_EQ(ext_keyboard_value(event), -1);
    EXPECT_EQ(ext_keyboard_value(event), -1);
    EXPECT_EQ(panel().empty_polls, 2u);
    EXPECT_EQ(panel().keys_taken, 0u);
}

/*
 * The library's three threads, started in every order and stopped in every order: whichever still
 * runs works on, and one that was stopped does nothing any more. The IR poll has no stop: it runs
 * to the end beside the others.
 */
TEST_F(Threads, StartAndStopInEveryOrder)
{
    enum { kBlinker, kFeeder, kPoll };
    ASSERT_EQ(local_wdg_init(), 0u);
    g_S32Irfd = board_open(IR_NODE, 0);
    std::array<int, 3> starts = {kBlinker, kFeeder, kPoll};
    bool polls = false;
    do {
        for (const int first_stopped : {kBlinker, kFeeder}) {
            uint32_t running = polls ? 1 : 0;
            for (const int thread : starts) {
                if (thread == kPoll && polls) continue; // it is started once
                switch (thread) {
                case kBlinker: ASSERT_EQ(hi_start_record_proc(), 0); break;
                case kFeeder:
                    Set_Wdt_Fing(1);
                    ASSERT_EQ(wdt_feed_pt(), 0);
                    break;
                default: ASSERT_EQ(localKey_init(), 1); polls = true;
                }
                wait_sleepers(++running);
            }
            bool blinks = true, feeds = true;
            for (const int stopped : {first_stopped, kBlinker + kFeeder - first_stopped}) {
                const uint32_t lamp_changes = panel().lamp_changes, fed = watchdog().feeds;
                for (int i = 0; i < 6; ++i) { // half seconds: a whole period of the feeder
                    step_us(500000);
                    wait_sleepers(running);
                }
                EXPECT_EQ(panel().lamp_changes - lamp_changes, blinks ? 6u : 0u);
                EXPECT_EQ(watchdog().feeds - fed, feeds ? 1u : 0u);
                if (stopped == kBlinker) {
                    EXPECT_EQ(hi_stop_record_proc(), 0);
                    blinks = false;
                } else {
                    Set_Wdt_Fing(0);
                    step_us(3 * kSecond_us); // the flag is looked at when the feeder wakes ...
                    wait_sleepers(running);
                    step_us(1000); // ... and then it sleeps a last time
                    feeds = false;
                }
                --running;
                if (running > 0) wait_sleepers(running);
            }
            const uint32_t lamp_changes = panel().lamp_changes, fed = watchdog().feeds;
            EXPECT_EQ(panel().record_lamp, 1u) << "lit when it does not blink";
            step_us(10 * kSecond_us);
            EXPECT_EQ(panel().lamp_changes, lamp_changes);
            EXPECT_EQ(watchdog().feeds, fed);

            vboard_ir_press(kPlay);
            for (int i = 0; i < 3; ++i) {
                wait_sleepers(1);
                step_us(200000); // longer than the poll's pause and its wait for a frame
            }
            wait_sleepers(1);
            EXPECT_EQ(__atomic_load_n(&key.code, __ATOMIC_RELAXED), 105u);
            __atomic_store_n(&key.code, 0, __ATOMIC_RELAXED);
        }
    } while (std::next_permutation(starts.begin(), starts.end()));
    EXPECT_EQ(watchdog().expired, 0u);
}

TEST_F(Peripherals, TheMemoryOfThePcIsNotOffered)
{
    for (const char *path : {"/dev/mem", "/dev/null", "/dev/watchdog0", "/etc/passwd"})
        EXPECT_EQ(board_open(path, 0), -1) << path;
}

} // namespace
