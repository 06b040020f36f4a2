/* watchdog_node.h - the watchdog's device and what it was fed. For trace tests. */
#pragma once

#include <gtest/gtest.h>

#include "nvrhal.h"
#include "recording_expect.h"

namespace watchdog_test
{

inline recording::Node watchdog()
{
    return recording::platform.node("/dev/watchdog");
}

inline void enable()
{
    ASSERT_EQ(local_wdg_init(), 0u);
    recording::platform.forget();
}

inline unsigned feeds()
{
    return recording::platform.count("board_ioctl /dev/watchdog 0x80045705");
}

} // namespace watchdog_test
