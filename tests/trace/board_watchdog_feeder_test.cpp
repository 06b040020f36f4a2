/* The thread that feeds the watchdog, on the stepped clock. */
#include <gtest/gtest.h>

#include <thread>

#include "board_thread_refusal.h"
#include "core/shared_word.h"
#include "nvrhal.h"
#include "recording_expect.h"
#include "watchdog_driver.h"
#include "watchdog_node.h"

using namespace watchdog_test;
using recording::platform;

namespace
{

constexpr int64_t kFeedPeriodUs = 3000000;

} // namespace

TEST(WatchdogFeeder, FeedsAtOnceAndEveryThreeSeconds)
{
    enable();
    Set_Wdt_Fing(1);
    EXPECT_EQ(wdt_feed_pt(), 0);
    for (unsigned round = 1; round <= 4; ++round) {
        ASSERT_TRUE(platform.wait_for_sleepers(1));
        EXPECT_EQ(feeds(), round);
        platform.step_us(kFeedPeriodUs - 1);
        EXPECT_EQ(feeds(), round);
        platform.step_us(1);
    }
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    EXPECT_EQ(platform.calls({"board_sleep_us"}).substr(0, 22), "board_sleep_us 3000000");
}

TEST(WatchdogFeeder, EndsWithinAPeriodOnceTheFlagIsCleared)
{
    enable();
    Set_Wdt_Fing(1);
    EXPECT_EQ(wdt_feed_pt(), 0);
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    ext_wdg_set(1); // clears the flag, and feeds
    platform.step_us(kFeedPeriodUs);
    ASSERT_TRUE(platform.wait_for_sleepers(1)); // the last 100 microseconds
    EXPECT_EQ(platform.count("board_sleep_us 100"), 1u);
    EXPECT_EQ(feeds(), 2u);
    platform.step_us(100);
    platform.step_us(10 * kFeedPeriodUs);
    EXPECT_EQ(feeds(), 2u);
}

TEST(WatchdogFeeder, FeedsOnceWhenTheFlagWasNeverSet)
{
    enable();
    EXPECT_EQ(wdt_feed_pt(), 0);
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    platform.step_us(kFeedPeriodUs);
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    EXPECT_EQ(feeds(), 1u);
    EXPECT_EQ(platform.count("board_sleep_us 100"), 1u);
}

TEST(WatchdogFeeder, EndsSilentlyWhenAFeedFails)
{
    enable();
    Set_Wdt_Fing(1);
    watchdog().ioctl(WDIOC_KEEPALIVE).from(2).returns(-1);
    EXPECT_EQ(wdt_feed_pt(), 0);
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    platform.forget();
    platform.let_all_sleeps_advance(true); // a thread that went on would feed for ever
    while (feeds() == 0)
        std::this_thread::yield();
    EXPECT_EQ(platform.calls(), "board_ioctl /dev/watchdog 0x80045705 0");
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(WatchdogFeeder, IsADetachedThreadOfSystemScope)
{
    enable();
    EXPECT_EQ(wdt_feed_pt(), 0);
    EXPECT_EQ(thread_refusal::scope, PTHREAD_SCOPE_SYSTEM);
    EXPECT_EQ(thread_refusal::detach_state, PTHREAD_CREATE_DETACHED);
    EXPECT_TRUE(platform.wait_for_sleepers(1));
}

TEST(WatchdogFeeder, NeedsAThread)
{
    enable();
    for (const auto refused : {&thread_refusal::create, &thread_refusal::attr_init,
                               &thread_refusal::attr_scope, &thread_refusal::attr_detach}) {
        *refused = true;
        EXPECT_EQ(wdt_feed_pt(), -1);
        *refused = false;
    }
    EXPECT_EQ(feeds(), 0u);
}

TEST(WatchdogFeeder, SharesTheDeviceWithTheApplicationsFeeds)
{
    enable();
    Set_Wdt_Fing(1);
    EXPECT_EQ(wdt_feed_pt(), 0);
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    std::thread application([] {
        for (int i = 0; i < 50; ++i)
            EXPECT_EQ(local_wdg_feed(), 0);
        ext_wdg_set(1);
    });
    platform.step_us(kFeedPeriodUs);
    application.join();
    EXPECT_GE(feeds(), 52u);
}
