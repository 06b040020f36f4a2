/* The two timing tables: library code to output timing, and output value to size. */
#include <string>

#include "nvrhal.h"
#include "recording_expect.h"

namespace
{

struct TimingRow {
    uint32_t code, display, hdmi;
    uint16_t width, height;
};

constexpr TimingRow kTimings[] = {
    {1, 8, 4, 1280, 720},     {2, 9, 5, 1280, 720},    {3, 15, 7, 1920, 1080},   {4, 16, 9, 1920, 1080},
    {5, 26, 39, 1600, 1200},  {6, 22, 38, 1440, 900},  {7, 20, 37, 1280, 1024},  {8, 19, 36, 1024, 768},
    {9, 23, 40, 1280, 800},   {10, 21, 41, 1366, 768}, {11, 24, 42, 1680, 1050}, {12, 28, 17, 2560, 1440},
    {13, 30, 13, 3840, 2160},
};

struct SizeRow {
    uint32_t value, width, height, rate;
};

constexpr SizeRow kSizes[] = {
    {0, 720, 576, 25},    {1, 720, 480, 30},    {6, 720, 480, 60},    {7, 720, 576, 50},
    {8, 1280, 720, 50},   {9, 1280, 720, 60},   {10, 1920, 1080, 24}, {11, 1920, 1080, 25},
    {12, 1920, 1080, 30}, {13, 1920, 1080, 50}, {14, 1920, 1080, 60}, {15, 1920, 1080, 50},
    {16, 1920, 1080, 60}, {18, 800, 600, 60},   {19, 1024, 768, 60},  {20, 1280, 1024, 60},
    {21, 1366, 768, 60},  {22, 1440, 900, 60},  {23, 1280, 800, 60},  {24, 1680, 1050, 60},
    {26, 1600, 1200, 60}, {27, 1920, 1200, 60}, {28, 2560, 1440, 30},
};

TEST(TimingTable, GivesEveryCodeItsDisplayValueHdmiValueAndSize)
{
    for (const TimingRow &row : kTimings) {
        SCOPED_TRACE(row.code);
        uint32_t hdmi = 999, display = 999;
        uint16_t width = 1, height = 1;
        vo_timing_lookup(row.code, &hdmi, &display, &width, &height);
        EXPECT_EQ(display, row.display);
        EXPECT_EQ(hdmi, row.hdmi);
        EXPECT_EQ(width, row.width);
        EXPECT_EQ(height, row.height);
    }
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(TimingTable, LeavesTheOutputsAloneForAnUnknownCode)
{
    for (uint32_t code : {0u, 14u, 15u, 0x7FFFFFFFu}) {
        SCOPED_TRACE(code);
        uint32_t hdmi = 901, display = 902;
        uint16_t width = 903, height = 904;
        vo_timing_lookup(code, &hdmi, &display, &width, &height);
        EXPECT_EQ(hdmi, 901u);
        EXPECT_EQ(display, 902u);
        EXPECT_EQ(width, 903);
        EXPECT_EQ(height, 904);
        EXPECT_PRINTED("Unspport Ap timing (" + std::to_string(code) + ")");
    }
}

TEST(TimingTable, SurvivesTheLargestCode)
{
    uint32_t hdmi = 1, display = 2;
    uint16_t width = 3, height = 4;
    vo_timing_lookup(UINT32_MAX, &hdmi, &display, &width, &height);
    EXPECT_EQ(hdmi, 1u);
    EXPECT_EQ(width, 3);
}

TEST(TimingTable, SkipsOutputsThatTheCallerDoesNotWant)
{
    uint16_t width = 0;
    vo_timing_lookup(4, nullptr, nullptr, &width, nullptr);
    EXPECT_EQ(width, 1920);
}

TEST(OutputSize, IsKnownForEveryValueOfTheTable)
{
    for (const SizeRow &row : kSizes) {
        SCOPED_TRACE(row.value);
        uint32_t width = 0, height = 0, rate = 0;
        EXPECT_EQ(vo_get_wh(row.value, &width, &height, &rate), 0);
        EXPECT_EQ(width, row.width);
        EXPECT_EQ(height, row.height);
        EXPECT_EQ(rate, row.rate);
    }
    EXPECT_NOT_PRINTED("vo enIntfSync not support!");
}

TEST(OutputSize, IsRefusedForEveryOtherValue)
{
    unsigned refusals = 0;
    for (uint32_t value : {2u, 3u, 4u, 5u, 17u, 25u, 29u, 30u, 31u, 255u, 0x80000000u, UINT32_MAX}) {
        SCOPED_TRACE(value);
        uint32_t width = 0, height = 0, rate = 0;
        EXPECT_EQ(vo_get_wh(value, &width, &height, &rate), -1);
        EXPECT_EQ(recording::times_printed("vo enIntfSync not support!"), ++refusals);
    }
}

TEST(OutputSize, SurvivesMissingOutputs)
{
    uint32_t width = 0;
    vo_get_wh(16, &width, nullptr, nullptr);
    EXPECT_EQ(vo_get_wh(17, nullptr, nullptr, nullptr), -1);
}

TEST(SetWh, IsANoOpThatReturnsOne)
{
    PaneRect rects[16] = {};
    for (uint32_t mode : {0u, 11u, UINT32_MAX})
        EXPECT_EQ(vo_set_wh(rects, 1920, 1080, mode), 1);
    EXPECT_EQ(vo_set_wh(nullptr, 0, 0, 5), 1);
    EXPECT_EQ(recording::platform.calls(), "");
}

} // namespace
