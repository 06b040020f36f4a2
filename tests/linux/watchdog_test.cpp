/* The library's watchdog on an emulated one, through the real system calls. */
#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

#include "emulated_node.h"
#include "nvrhal.h"
#include "watchdog_driver.h"

namespace
{

/* A watchdog as its driver is described: options by value, the time-out by pointer. */
class LinuxWatchdog : public testing::Test
{
protected:
    int answer(const NodeRequest &request)
    {
        if (request.code() == refused) return -EIO;
        switch (request.code()) {
        case WDIOC_SETOPTIONS: log.push_back("option " + std::to_string(request.value())); return 0;
        case WDIOC_SETTIMEOUT:
            log.push_back("time-out " + std::to_string(request.record<int32_t>()));
            return 0;
        case WDIOC_KEEPALIVE: log.push_back("fed " + std::to_string(request.value())); return 0;
        default: return -ENOTTY;
        }
    }

    using Log = std::vector<std::string>;
    Log log;
    uint32_t refused = 0;
    const EmulatedNode node{WATCHDOG_NODE, [this](const NodeRequest &request) { return answer(request); }};
};

} // namespace

TEST_F(LinuxWatchdog, IsDisabledEnabledGivenItsTimeOutAndFed)
{
    EXPECT_EQ(local_wdg_init(), 0u);
    EXPECT_EQ(log, (Log{"option 1", "option 2", "time-out 100", "fed 0"}));
}

TEST_F(LinuxWatchdog, IsFedAndSwitchedOff)
{
    ASSERT_EQ(local_wdg_init(), 0u);
    log.clear();
    EXPECT_EQ(local_wdg_feed(), 0);
    EXPECT_EQ(local_wdg_set(0), 0);
    EXPECT_EQ(local_wdg_feed(), -1); // it does not run
    EXPECT_EQ(log, (Log{"fed 0", "option 1"}));
}

TEST_F(LinuxWatchdog, PassesTheRefusalOfAFeedOn)
{
    ASSERT_EQ(local_wdg_init(), 0u);
    refused = WDIOC_KEEPALIVE;
    EXPECT_EQ(local_wdg_feed(), -1);
}

TEST_F(LinuxWatchdog, PassesTheRefusalOfATimeOutOn)
{
    ASSERT_EQ(local_wdg_init(), 0u);
    refused = WDIOC_SETTIMEOUT;
    EXPECT_EQ(local_wdg_set_timeout(30), -1);
    refused = 0;
    EXPECT_EQ(local_wdg_set_timeout(30), 0);
    EXPECT_EQ(log.back(), "time-out 30");
}
