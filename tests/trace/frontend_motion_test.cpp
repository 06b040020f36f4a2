/* Motion: the chips' own detection, and the library's maps block by block. */
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "ad_driver.h"
#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;

namespace
{

struct Area {
    std::array<uint8_t, 58> bytes = {};

    Area &cell(uint32_t row, uint32_t column)
    {
        bytes[4 + row * 3 + column / 8] |= static_cast<uint8_t>(1u << column % 8);
        return *this;
    }
};

size_t marks(uint32_t channel)
{
    const VdaChannel &block = vda_chn[channel];
    return static_cast<size_t>(std::count(std::begin(block.map), std::end(block.map), 1));
}

void set_size(uint32_t channel, uint32_t width, uint32_t height)
{
    major_stream[channel].width = width;
    major_stream[channel].height = height;
}

} // namespace

TEST(ChipMotion, StartsWithEmptyAreasThenSensitivitySix)
{
    platform.describe_request(AD_MOTION_SET_AREA, [](const void *argument) {
        const AdMotionArea &area = *static_cast<const AdMotionArea *>(argument);
        const bool empty =
            std::all_of(std::begin(area.mask), std::end(area.mask), [](uint8_t b) { return b == 0; });
        return std::to_string(area.chip) + "," + std::to_string(area.input) + (empty ? " empty" : " watched");
    });
    platform.describe_request(AD_MOTION_SET_SENSITIVITY, [](const void *argument) {
        const AdMotionSensitivity &s = *static_cast<const AdMotionSensitivity *>(argument);
        return std::to_string(s.chip) + "," + std::to_string(s.input) + " " + std::to_string(s.sensitivity);
    });
    std::string expected = "board_open /dev/vc0725dev rdwr";
    for (const char *request : {" 0x42827612 ", " 0x40087611 "})
        for (int chip = 0; chip < 2; ++chip)
            for (int input = 0; input < 4; ++input)
                expected += std::string("\nboard_ioctl /dev/vc0725dev") + request + std::to_string(chip) +
                            "," + std::to_string(input) + (request[10] == '2' ? " empty" : " 6");
    expected += "\nboard_ioctl /dev/vc0725dev 0x7614 0\nboard_close /dev/vc0725dev";
    EXPECT_EQ(InitMotion(), 0);
    EXPECT_EQ(platform.calls(), expected);
}

TEST(ChipMotion, StopsAtEachRefusal)
{
    for (unsigned nth = 1; nth <= 17; ++nth) {
        platform.reset();
        platform.script("board_ioctl").nth(nth).returns(-1);
        EXPECT_EQ(InitMotion(), -1);
        EXPECT_EQ(platform.count("board_ioctl"), nth);
        EXPECT_EQ(platform.node(AD_NODE).open_count(), 0u);
    }
    EXPECT_PRINTED_AS_ERROR("vc0725.c", "ioctl Set motion area failure");
    EXPECT_PRINTED_AS_ERROR("vc0725.c", "set motion sensivity fail");
    EXPECT_PRINTED_AS_ERROR("vc0725.c", "open motion failure");
    platform.reset();
    platform.node(AD_NODE).fails_to_open();
    EXPECT_EQ(InitMotion(), -1);
    EXPECT_PRINTED("open VC0725 (/dev/vc0725dev) fail");
}

TEST(ChipMotion, PassesTheCallersRecords)
{
    AdMotionArea area = {1, 2, {0xFF}};
    AdMotionSensitivity sensitivity = {1, 2, {}, 9};
    AdMotionQuery query = {};
    const auto same = [](const auto &sent) {
        return [&sent](const void *record) {
            return std::string(std::memcmp(record, &sent, sizeof sent) == 0 ? "the caller's" : "another");
        };
    };
    platform.describe_request(AD_MOTION_SET_AREA, same(area));
    platform.describe_request(AD_MOTION_SET_SENSITIVITY, same(sensitivity));
    platform.node(AD_NODE).ioctl(AD_MOTION_GET_AREA).fills([](recording::Args &call) {
        call.record<AdMotionQuery>(2).result = 5;
    });
    EXPECT_EQ(SetMotionArea(&area), 0);
    EXPECT_EQ(SetMotionSensivity(&sensitivity), 0);
    EXPECT_EQ(GetMotionArea(&query), 0);
    EXPECT_EQ(query.result, 5u);
    EXPECT_EQ(platform.calls({"board_ioctl"}), recording::trace(R"(
        board_ioctl /dev/vc0725dev 0x42827612 the caller's
        board_ioctl /dev/vc0725dev 0x40087611 the caller's
        board_ioctl /dev/vc0725dev 0xc0087613 *
    )"));
    EXPECT_EQ(platform.node(AD_NODE).open_count(), 0u);
}

/* The texts about motion are the chip start's; a single request that fails only says so by its result. */
TEST(ChipMotion, SingleRequestsFailSilently)
{
    AdMotionArea area = {};
    AdMotionSensitivity sensitivity = {};
    AdMotionQuery query = {};
    for (const bool opens : {true, false}) {
        platform.reset();
        recording::forget_printed();
        if (opens)
            platform.script("board_ioctl").returns(-1);
        else
            platform.node(AD_NODE).fails_to_open();
        EXPECT_EQ(SetMotionArea(&area), -1);
        EXPECT_EQ(SetMotionSensivity(&sensitivity), -1);
        EXPECT_EQ(GetMotionArea(&query), -1);
        EXPECT_EQ(platform.count("board_open /dev/vc0725dev"), 3u);
        EXPECT_EQ(platform.node(AD_NODE).open_count(), 0u);
        EXPECT_EQ(recording::printed_text(), "");
    }
}

TEST(ChipMotion, AsksNothingOfADriverThatIsNotThere)
{
    platform.node(AD_NODE).fails_to_open();
    AdMotionArea area = {};
    AdMotionSensitivity sensitivity = {};
    AdMotionQuery query = {};
    EXPECT_EQ(SetMotionArea(&area), -1);
    EXPECT_EQ(SetMotionSensivity(&sensitivity), -1);
    EXPECT_EQ(GetMotionArea(&query), -1);
    EXPECT_EQ(InitMotion(), -1);
    EXPECT_EQ(platform.count("board_open /dev/vc0725dev"), 4u);
    EXPECT_EQ(platform.calls({"board_ioctl", "board_close"}), "");
    EXPECT_EQ(recording::times_printed("[vc0725.c]-#: open VC0725 (/dev/vc0725dev) fail"), 1u)
        << "the chip start's";
}

TEST(ChipMotion, RefusesNullRecordsWithoutOpening)
{
    EXPECT_EQ(SetMotionArea(nullptr), -1);
    EXPECT_EQ(GetMotionArea(nullptr), -1);
    EXPECT_EQ(SetMotionSensivity(nullptr), -1);
    EXPECT_EQ(platform.calls(), "");
}

TEST(MotionMap, OneCellOf960By576MarksFiveBytesOnFourRows)
{
    set_size(3, 960, 576);
    ext_set_motion_sensitive(0, 10);
    EXPECT_EQ(ext_set_motion_area(3, Area().cell(1, 2).bytes.data()), 0);
    EXPECT_EQ(marks(3), 20u);
    const uint32_t first = 2 * (960 / 22) / 8 + 120 * (1 * (576 / 18) / 8);
    EXPECT_EQ(first, 490u);
    for (uint32_t row = 0; row < 4; ++row)
        for (uint32_t i = 0; i < 5; ++i)
            EXPECT_EQ(vda_chn[3].map[first + row * 120 + i], 1) << row << ' ' << i;
    EXPECT_EQ(vda_chn[3].threshold, 11u); // 21 blocks, 55 percent
    EXPECT_EQ(vda_flag, 1u);
    EXPECT_EQ(platform.calls(), "");
}

/* Each of the 396 cells by itself, in pictures whose sizes the grid divides well and badly. */
TEST(MotionMap, MarksTheBlocksOfEveryCell)
{
    for (const auto &[width, height] :
         {std::pair{704u, 576u}, std::pair{960u, 576u}, std::pair{640u, 360u}, std::pair{352u, 288u},
          std::pair{177u, 145u}, std::pair{720u, 480u}}) {
        set_size(1, width, height);
        for (uint32_t row = 0; row < 18; ++row) {
            for (uint32_t column = 0; column < 22; ++column) {
                std::vector<uint8_t> expected(9000);
                const uint32_t left = column * (width / 22) / 8;
                const uint32_t top = row * (height / 18) / 8;
                for (uint32_t y = top; y < top + height / 144; ++y)
                    for (uint32_t x = left; x < left + width / 176; ++x)
                        if (y * (width / 8) + x < expected.size()) expected[y * (width / 8) + x] = 1;
                ASSERT_EQ(ext_set_motion_area(1, Area().cell(row, column).bytes.data()), 0);
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), vda_chn[1].map))
                    << width << "x" << height << " cell " << row << "," << column;
            }
        }
    }
}

TEST(MotionMap, AnEmptyAreaClearsTheMap)
{
    set_size(0, 960, 576);
    ext_set_motion_area(0, Area().cell(0, 0).bytes.data());
    EXPECT_GT(marks(0), 0u);
    EXPECT_EQ(ext_set_motion_area(0, Area().bytes.data()), 0);
    EXPECT_EQ(marks(0), 0u);
    EXPECT_EQ(vda_chn[0].threshold, 0u);
}

TEST(MotionMap, LevelsTurnIntoPercentages)
{
    constexpr uint32_t kPercents[] = {3, 3, 5, 8, 10, 15, 20, 25, 30, 50, 55, 25, 25};
    set_size(0, 960, 576);
    Area all;
    for (uint32_t row = 0; row < 18; ++row)
        for (uint32_t column = 0; column < 22; ++column)
            all.cell(row, column);
    for (uint32_t level = 0; level < 13; ++level) {
        EXPECT_EQ(ext_set_motion_sensitive(99, level), 0);
        EXPECT_EQ(g_sensitive, level);
        ext_set_motion_area(0, all.bytes.data());
        EXPECT_EQ(vda_chn[0].threshold, 396 * 21 * kPercents[level] / 100) << level;
    }
    ext_set_motion_sensitive(0, 0xFFFFFFFF);
    ext_set_motion_area(0, all.bytes.data());
    EXPECT_EQ(vda_chn[0].threshold, 396u * 21 * 25 / 100);
}

TEST(MotionMap, AnAreaTooSmallForItsPercentageNeedsTwoBlocks)
{
    set_size(0, 352, 240); // a cell counts 4 blocks, 3 percent of which are none
    ext_set_motion_area(0, Area().cell(0, 0).bytes.data());
    EXPECT_EQ(vda_chn[0].threshold, 2u);
}

TEST(MotionMap, AThresholdOfOneStaysOne)
{
    set_size(0, 960, 576);
    EXPECT_EQ(g_sensitive, 0u);
    ext_set_motion_sensitive(0, 2);
    ext_set_motion_area(0, Area().cell(0, 0).bytes.data());
    EXPECT_EQ(vda_chn[0].threshold, 1u); // 21 blocks, 5 percent
}

// The divisor of the count is not that of the map's rows.
TEST(MotionMap, CountsByAHundredAndTwentiethOfTheHeight)
{
    set_size(0, 176, 120);
    ext_set_motion_sensitive(0, 9);
    ext_set_motion_area(
        0, Area().cell(0, 0).cell(0, 1).cell(0, 2).cell(0, 3).cell(0, 4).cell(0, 5).bytes.data());
    EXPECT_EQ(marks(0), 0u); // no whole 144th of the height
    EXPECT_EQ(vda_chn[0].threshold, 3u);
}

TEST(MotionMap, IgnoresTheHeaderAndTheBitsBehindColumn21)
{
    set_size(0, 960, 576);
    Area area;
    std::fill(area.bytes.begin(), area.bytes.begin() + 4, 0xFF);
    for (uint32_t row = 0; row < 18; ++row)
        area.bytes[4 + row * 3 + 2] = 0xC0;
    ext_set_motion_area(0, area.bytes.data());
    EXPECT_EQ(marks(0), 0u);
    EXPECT_EQ(vda_chn[0].threshold, 0u);
}

TEST(MotionMap, DropsWhatLiesBehindItButCountsIt)
{
    set_size(0, 1920, 1080); // 240 bytes a row: the map holds 37 rows of 135
    ext_set_motion_sensitive(0, 10);
    ext_set_motion_area(0, Area().cell(17, 21).bytes.data());
    EXPECT_EQ(marks(0), 0u);
    EXPECT_EQ(vda_chn[0].threshold, 9u * 1920 / 176 * 55 / 100);
    EXPECT_EQ(vda_chn[1].unread[0], 0u); // the next channel's block is whole
    set_size(0, 0xFFFFFFFF, 0xFFFFFFFF);
    Area all;
    std::fill(all.bytes.begin(), all.bytes.end(), 0xFF);
    EXPECT_EQ(ext_set_motion_area(0, all.bytes.data()), 0);
    EXPECT_EQ(marks(0), 9000u);
}

TEST(MotionMap, ChannelsWithoutAStreamHaveEmptyMaps)
{
    vda_chn[17].map[5] = 1;
    EXPECT_EQ(ext_set_motion_area(17, Area().cell(0, 0).bytes.data()), 0);
    EXPECT_EQ(marks(17), 0u);
    EXPECT_EQ(vda_flag, 1u);
}

TEST(MotionMap, ChannelsFrom128OnStoreNothing)
{
    const auto before = std::make_unique<std::array<uint8_t, sizeof vda_chn>>();
    std::memcpy(before->data(), vda_chn, sizeof vda_chn);
    for (const uint32_t channel : {128u, 129u, 0xFFFFFFFFu})
        EXPECT_EQ(ext_set_motion_area(channel, Area().cell(0, 0).bytes.data()), 0);
    EXPECT_EQ(std::memcmp(before->data(), vda_chn, sizeof vda_chn), 0);
    EXPECT_EQ(vda_flag, 0u);
    EXPECT_EQ(ext_set_motion_area(0, nullptr), -1);
}
