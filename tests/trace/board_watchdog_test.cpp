/* The watchdog: its start, its switch, its time-out, and single feeds. */
#include <gtest/gtest.h>

#include "nvrhal.h"
#include "recording_expect.h"
#include "watchdog_driver.h"
#include "watchdog_node.h"

using recording::platform;
using recording::trace;

using namespace watchdog_test;

namespace
{

constexpr uint32_t kFailed = 0xFFFFFFFF;

void show_requests()
{
    platform.describe_request(WDIOC_SETTIMEOUT, [](const void *seconds) {
        std::string text = "{";
        text += std::to_string(*static_cast<const int32_t *>(seconds));
        return text + "}";
    });
}

} // namespace

TEST(Watchdog, IsOpenedQuietedEnabledAndFedAtStart)
{
    show_requests();
    watchdog().ioctl(WDIOC_SETOPTIONS).with("/dev/watchdog 0x80045704 1").returns(0);
    EXPECT_EQ(local_wdg_init(), 0u);
    EXPECT_EQ(platform.calls(), trace(R"(
        board_open /dev/watchdog rdwr
        board_ioctl /dev/watchdog 0x80045704 1
        board_ioctl /dev/watchdog 0x80045704 2
        board_ioctl /dev/watchdog 0xc0045706 {100}
        board_ioctl /dev/watchdog 0x80045705 0
    )"));
    EXPECT_PRINTED_WITHOUT_PREFIX("misc.c,#,--------------------------init watchdog success!");
    EXPECT_NOT_PRINTED("When Open Watchdog,Disable Watchdog Failed!");
    EXPECT_EQ(watchdog().open_count(), 1u);
}

TEST(Watchdog, WorksOnDescriptorZero)
{
    watchdog().opens_as(0);
    EXPECT_EQ(local_wdg_init(), 0u);
    EXPECT_EQ(local_wdg_open(), 0);
    EXPECT_EQ(platform.count("board_open /dev/watchdog"), 1u);
}

TEST(Watchdog, CannotStartWithoutADevice)
{
    watchdog().fails_to_open();
    EXPECT_EQ(local_wdg_open(), -1);
    platform.forget();
    EXPECT_EQ(local_wdg_init(), kFailed);
    EXPECT_PRINTED_AS_ERROR("misc.c", "open WDG Failed!");
    EXPECT_EQ(platform.calls(), "board_open /dev/watchdog rdwr");
    EXPECT_NOT_PRINTED("misc.c,#,--------------------------init watchdog success!");
}

TEST(Watchdog, CountsAsEnabledBeforeTheFirstSwitch)
{
    EXPECT_EQ(local_wdg_feed(), -1); // not open, and not said to be disabled
    EXPECT_NOT_PRINTED("watchdog not enabled!");
}

// A refused first disable leaves it counting as enabled: it is fed instead of being enabled.
TEST(Watchdog, IsOnlyFedAtStartWhenItRefusedToBeQuieted)
{
    show_requests();
    watchdog().ioctl(WDIOC_SETOPTIONS).returns(-1);
    EXPECT_EQ(local_wdg_init(), 0u);
    EXPECT_EQ(platform.calls(), trace(R"(
        board_open /dev/watchdog rdwr
        board_ioctl /dev/watchdog 0x80045704 1
        board_ioctl /dev/watchdog 0x80045705 0
        board_ioctl /dev/watchdog 0x80045705 0
        board_ioctl /dev/watchdog 0xc0045706 {100}
        board_ioctl /dev/watchdog 0x80045705 0
    )"));
    EXPECT_PRINTED_AS_ERROR("misc.c", "watchdog enable/disable (0) fail!");
}

TEST(Watchdog, StartFailsWhenItCouldNotBeEnabled)
{
    platform.script("board_ioctl").with("/dev/watchdog 0x80045704 2").returns(-1);
    EXPECT_EQ(local_wdg_init(), kFailed); // the time-out is refused: it counts as disabled
    EXPECT_PRINTED_IN_ORDER(R"(
        watchdog enable/disable (1) fail!
        watchdog not enabled!)");
    EXPECT_EQ(feeds(), 0u);
}

TEST(Watchdog, StartFailsWithTheTimeout)
{
    watchdog().ioctl(WDIOC_SETTIMEOUT).returns(-1);
    EXPECT_EQ(local_wdg_init(), kFailed);
    EXPECT_PRINTED_AS_ERROR("misc.c", "watchdog set timeout Failed!!");
    EXPECT_EQ(feeds(), 0u);
}

TEST(Watchdog, StartFailsWithTheFeed)
{
    watchdog().ioctl(WDIOC_KEEPALIVE).returns(-1);
    EXPECT_EQ(local_wdg_init(), kFailed);
}

TEST(Watchdog, OpenKeepsWhatIsOpen)
{
    enable();
    EXPECT_EQ(local_wdg_open(), 0);
    EXPECT_EQ(platform.calls(), "board_ioctl /dev/watchdog 0x80045704 1");
}

TEST(Watchdog, IsFedWhenItIsEnabledTwice)
{
    enable();
    EXPECT_EQ(local_wdg_set(1), 0);
    EXPECT_EQ(platform.calls(), "board_ioctl /dev/watchdog 0x80045705 0");
    EXPECT_EQ(ext_wdg_set(1), 1u);
    EXPECT_EQ(feeds(), 2u);
}

TEST(Watchdog, IsEnabledTwiceThoughTheFeedFails)
{
    enable();
    watchdog().ioctl(WDIOC_KEEPALIVE).returns(-5);
    EXPECT_EQ(local_wdg_set(1), 0);
    EXPECT_EQ(feeds(), 1u);
}

TEST(Watchdog, AFeedIsTakenOrNot)
{
    enable();
    watchdog().ioctl(WDIOC_KEEPALIVE).once().returns(-5);
    EXPECT_EQ(local_wdg_feed(), -1);
    watchdog().ioctl(WDIOC_KEEPALIVE).once().returns(3);
    EXPECT_EQ(local_wdg_feed(), 0);
}

TEST(Watchdog, TheFlagIsClearedBeforeTheSwitch)
{
    enable();
    Set_Wdt_Fing(1);
    int flag_when_switched = -1;
    platform.describe_request(WDIOC_SETOPTIONS, [&](const void *) {
        flag_when_switched = Wdt_Fing;
        return std::string("switched");
    });
    EXPECT_EQ(ext_wdg_set(0), 1u);
    EXPECT_EQ(flag_when_switched, 0);
}

TEST(Watchdog, IsDisabledWhateverItCountsAs)
{
    enable();
    EXPECT_EQ(local_wdg_set(0), 0);
    EXPECT_EQ(local_wdg_set(0), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        board_ioctl /dev/watchdog 0x80045704 1
        board_ioctl /dev/watchdog 0x80045704 1
    )"));
}

TEST(Watchdog, AnyOtherValueEnables)
{
    enable();
    local_wdg_set(0);
    platform.forget();
    EXPECT_EQ(local_wdg_set(-7), 0);
    EXPECT_EQ(platform.calls(), "board_ioctl /dev/watchdog 0x80045704 2");
    EXPECT_EQ(local_wdg_feed(), 0);
}

TEST(Watchdog, ARefusedDisableIsSwallowedAndFed)
{
    enable();
    watchdog().ioctl(WDIOC_SETOPTIONS).returns(-1);
    EXPECT_EQ(local_wdg_set(0), 0);
    EXPECT_EQ(feeds(), 1u);
    EXPECT_EQ(local_wdg_feed(), 0); // still counts as enabled
    EXPECT_EQ(ext_wdg_set(0), 1u);
}

TEST(Watchdog, ARefusedEnableIsSwallowedAndNotFed)
{
    enable();
    local_wdg_set(0);
    watchdog().ioctl(WDIOC_SETOPTIONS).returns(-1);
    platform.forget();
    EXPECT_EQ(local_wdg_set(1), 0);
    EXPECT_PRINTED("watchdog enable/disable (1) fail!");
    EXPECT_EQ(feeds(), 0u);
    EXPECT_EQ(local_wdg_feed(), -1);
}

TEST(Watchdog, CannotBeFedWhileDisabled)
{
    enable();
    local_wdg_set(0);
    platform.forget();
    EXPECT_EQ(local_wdg_feed(), -1);
    EXPECT_PRINTED_AS_ERROR("misc.c", "watchdog not enabled!");
    EXPECT_EQ(platform.calls(), "");
}

TEST(Watchdog, TimeoutsNeedAnOpenEnabledDevice)
{
    EXPECT_EQ(local_wdg_set_timeout(5), -1);
    EXPECT_NOT_PRINTED("watchdog not enabled!");
    enable();
    show_requests();
    EXPECT_EQ(local_wdg_set_timeout(5), 0);
    EXPECT_EQ(platform.calls(), "board_ioctl /dev/watchdog 0xc0045706 {5}");
    watchdog().ioctl(WDIOC_SETTIMEOUT).once().returns(7);
    EXPECT_EQ(local_wdg_set_timeout(5), 7); // the device's own result
    local_wdg_set(0);
    EXPECT_EQ(local_wdg_set_timeout(5), -1);
    EXPECT_PRINTED("watchdog not enabled!");
}

TEST(Watchdog, SwitchingBeforeStartOnlyClearsTheFlag)
{
    Set_Wdt_Fing(1);
    EXPECT_EQ(ext_wdg_set(1), 1u);
    EXPECT_EQ(ext_wdg_set(0), 1u);
    EXPECT_EQ(Wdt_Fing, 0);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(local_wdg_set(1), -1);
}

TEST(Watchdog, TheFlagKeepsTheLowByte)
{
    Set_Wdt_Fing(0x1FF);
    EXPECT_EQ(Wdt_Fing, 0xFF);
    Set_Wdt_Fing(0x100);
    EXPECT_EQ(Wdt_Fing, 0);
}
