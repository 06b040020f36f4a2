/* stepped_peripherals.h - the library on the virtual board's peripherals, on the stepped board clock. */
#pragma once

#include <cstdint>

#include <gtest/gtest.h>

#include "vboard.h"
#include "vboard_devices.h"

namespace peripherals
{

constexpr int32_t kPatience_ms = 10000;
constexpr int64_t kSecond_us = 1000000;
constexpr uint32_t kPlay = 0x649BFF00; // key 105

class Peripherals : public testing::Test
{
protected:
    void SetUp() override { vboard_clock_take(); }

    static void step_us(int64_t microseconds) { ASSERT_EQ(vboard_clock_step_us(microseconds), 0); }
    static void wait_sleepers(uint32_t count)
    {
        ASSERT_EQ(vboard_clock_wait_sleepers(count, kPatience_ms), 0);
    }
};

inline vboard_panel_stat panel()
{
    vboard_panel_stat stat;
    EXPECT_EQ(vboard_panel_get_stat(&stat), 0);
    return stat;
}

} // namespace peripherals
