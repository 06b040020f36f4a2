/* The output lines: the set-up's order, each of its failures, and the buzzer. */
#include <gtest/gtest.h>

#include "gpio_driver.h"
#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

void show_lines()
{
    for (const unsigned long request : {GPIO_CONFIGURE_OUTPUT, GPIO_DRIVE})
        platform.describe_request(request, [](const void *argument) {
            const GpioLine &line = *static_cast<const GpioLine *>(argument);
            std::string text = "{";
            text += std::to_string(line.line) + " " + std::to_string(line.value);
            return text + "}";
        });
}

constexpr const char *kSetUp[] = {
    "board_ioctl /dev/ms_gpio 0xc0045001 {25 1}", "board_ioctl /dev/ms_gpio 0x40045004 {25 0}",
    "board_ioctl /dev/ms_gpio 0xc0045001 {28 1}", "board_ioctl /dev/ms_gpio 0xc0045001 {26 1}",
    "board_ioctl /dev/ms_gpio 0xc0045001 {26 0}", "board_ioctl /dev/ms_gpio 0xc0045001 {90 1}",
    "board_ioctl /dev/ms_gpio 0xc0045001 {34 1}",
};

constexpr const char *kFailures[] = {
    "WIFI_POWER_CTR out1 init failed!",
    "start wifi failed!",
    "BUZZER_CTR  init failed!",
    "WIFI_RESET_CTR init failed!",
    "WIFI_RESET_CTR init failed!",
    "HDD_LED_CTR init failed!",
    "REC_CTR init failed!",
};

/* The calls of a set-up that ends after `requests` of its seven requests. */
std::string set_up_calls(size_t requests)
{
    std::string text =
        "board_run_command \"insmod ms_gpio.ko\"\nboard_sleep_us 1000\nboard_open /dev/ms_gpio rdwr";
    for (size_t i = 0; i < requests; ++i)
        text += std::string("\n") + kSetUp[i];
    return text;
}

} // namespace

TEST(OutputLines, AreSetUpInThisOrder)
{
    show_lines();
    EXPECT_EQ(local_gpio_init(), 0);
    EXPECT_EQ(platform.calls(), set_up_calls(7));
    EXPECT_EQ(recording::printed_text(), "");
}

class OutputLineFailure : public testing::TestWithParam<unsigned>
{
};

TEST_P(OutputLineFailure, StopsTheSetUpThereAndLeavesTheLinesBefore)
{
    const unsigned request = GetParam();
    show_lines();
    platform.script("board_ioctl").nth(request + 1).returns(-1);
    EXPECT_EQ(local_gpio_init(), -1);
    EXPECT_EQ(platform.calls(), set_up_calls(request + 1));
    EXPECT_PRINTED_AS_ERROR("misc.c", kFailures[request]);
}

INSTANTIATE_TEST_SUITE_P(EachRequest, OutputLineFailure, testing::Range(0u, 7u));

TEST(OutputLines, AreSetUpAlsoWhenTheModuleWasLoadedBefore)
{
    platform.script("board_run_command").returns(1);
    EXPECT_EQ(local_gpio_init(), 0);
}

TEST(OutputLines, CannotBeSetUpWithoutTheDriver)
{
    platform.node("/dev/ms_gpio").fails_to_open();
    EXPECT_EQ(local_gpio_init(), -1);
    EXPECT_EQ(platform.calls(), set_up_calls(0));
    EXPECT_PRINTED_AS_ERROR("misc.c", "gpio07 open failed!");
}

// Below 1 counts as not open, so a descriptor of 0 does not do.
TEST(OutputLines, CannotBeSetUpOnDescriptorZero)
{
    platform.node("/dev/ms_gpio").opens_as(0);
    EXPECT_EQ(local_gpio_init(), -1);
    EXPECT_PRINTED("gpio07 open failed!");
    EXPECT_EQ(platform.calls({"board_ioctl"}), "");
}

TEST(OutputLines, AreSetUpOnDescriptorOne)
{
    platform.node("/dev/ms_gpio").opens_as(1);
    EXPECT_EQ(local_gpio_init(), 0);
    EXPECT_EQ(local_gpio_init(), 0);
    EXPECT_EQ(platform.count("board_open"), 1u);
}

TEST(OutputLines, KeepTheDriverOpenForASecondSetUp)
{
    EXPECT_EQ(local_gpio_init(), 0);
    EXPECT_EQ(local_gpio_init(), 0);
    EXPECT_EQ(platform.count("board_open"), 1u);
    EXPECT_EQ(platform.count("board_run_command"), 2u);
}

TEST(Buzzer, DrivesItsLine)
{
    show_lines();
    local_gpio_init();
    platform.forget();
    EXPECT_EQ(ext_buzzer_set(1), 0);
    EXPECT_EQ(ext_buzzer_set(0), 0);
    EXPECT_EQ(ext_buzzer_set(77), 0); // whatever the driver makes of it
    EXPECT_EQ(platform.calls(), trace(R"(
        board_ioctl /dev/ms_gpio 0x40045004 {28 1}
        board_ioctl /dev/ms_gpio 0x40045004 {28 0}
        board_ioctl /dev/ms_gpio 0x40045004 {28 77}
    )"));
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(Buzzer, ReportsARefusal)
{
    local_gpio_init();
    platform.script("board_ioctl").returns(-1);
    EXPECT_EQ(ext_buzzer_set(1), -1);
    EXPECT_PRINTED_AS_ERROR("misc.c", "misc.c # gpio set failed!");
}
