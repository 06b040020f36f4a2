/* The recorder's pieces: through the pool and out again, parameter sets, names of files, A-law. */
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "camera/sound.h"
#include "frame_pools.h"
#include "nvrhal.h"
#include "record/parameter_sets.h"
#include "record/pool_reader.h"
#include "record/segment.h"

namespace
{

using namespace nvrec;

constexpr int kChannels = 2;
constexpr uint32_t kLargestMainFrame_bytes = NVRHAL_MAIN_FRAME_BYTES;
constexpr int kKeyInterval = 5;

/* A main pool as start-up makes it, and a camera whose frames carry their number. */
class Pool : public testing::Test
{
protected:
    void SetUp() override
    {
        begin_frame_pool(STREAM_POOL_MAIN, kChannels);
        PoolFrame none;
        EXPECT_FALSE(reader_.take(&none)) << "the pool is empty";
    }

    int32_t put(size_t bytes)
    {
        AccessUnit unit;
        unit.bytes.assign(bytes, static_cast<uint8_t>(number_));
        unit.key = number_ % kKeyInterval == 0;
        unit.pts_us = kFirstStamp_us + 40'000 * number_ + 80'000;
        unit.due_us = kFirstStamp_us + 40'000 * number_;
        ++number_;
        return reader_.put(unit, {Codec::kH265, 640, 360, 25.0, false});
    }

    /* All that is there: whole, in order, with the times that the camera gave. */
    int take_all()
    {
        int count = 0;
        for (PoolFrame frame; reader_.take(&frame); ++count) {
            const int64_t number = (frame.dts_us - kFirstStamp_us) / 40'000;
            EXPECT_GT(number, last_taken_);
            EXPECT_EQ(frame.after_gap, number != last_taken_ + 1);
            EXPECT_TRUE(frame.key || !frame.after_gap || refused_) << number;
            EXPECT_EQ(frame.key, number % kKeyInterval == 0);
            EXPECT_EQ(frame.pts_us, frame.dts_us + 80'000);
            EXPECT_EQ(frame.facts.codec, Codec::kH265);
            for (const uint8_t byte : frame.bytes)
                if (byte != static_cast<uint8_t>(number)) return ADD_FAILURE() << "frame " << number, count;
            last_taken_ = number;
        }
        return count;
    }

    /* Beyond 2^32: the pool keeps the low half only. */
    static constexpr int64_t kFirstStamp_us = 5'000'000'000;

    PoolEvent event_;
    PoolReader reader_{1, PoolStream::kMain, event_};
    int64_t number_ = 0, last_taken_ = -1;
    bool refused_ = false;
};

TEST_F(Pool, AReaderThatKeepsUpGetsEveryFrameWithItsTimes)
{
    int taken = 0;
    for (int i = 0; i < 2000; ++i) { /* many laps of both rings */
        ASSERT_EQ(put(static_cast<size_t>(500 + 37 * (i % 400))), 0);
        if (i % 7 == 0) taken += take_all();
    }
    taken += take_all();
    EXPECT_EQ(taken, 2000);
    const PoolCounters counters = reader_.counters();
    EXPECT_EQ(counters.stored, 2000u);
    EXPECT_EQ(counters.read, 2000u);
    EXPECT_EQ(counters.lost, 0u);
    EXPECT_EQ(counters.resynchronised, 0u);
}

TEST_F(Pool, AnOverrunReaderGoesOnAtAKeyFrameAndCountsWhatItLost)
{
    for (int i = 0; i < 10; ++i)
        put(20'000);
    EXPECT_EQ(take_all(), 10);
    for (int i = 0; i < 200; ++i) /* four megabytes through a ring of one */
        put(20'000);
    const int taken = take_all();
    EXPECT_GE(taken, 5);
    EXPECT_EQ(last_taken_, 209) << "up to the newest";
    const PoolCounters counters = reader_.counters();
    EXPECT_EQ(counters.stored, 210u);
    EXPECT_EQ(counters.read, 10u + static_cast<unsigned>(taken));
    EXPECT_EQ(counters.lost, counters.stored - counters.read);
    EXPECT_EQ(counters.resynchronised, 1u);
}

TEST_F(Pool, AFrameThatIsTooLargeIsCountedAndMissed)
{
    EXPECT_EQ(put(1000), 0);
    EXPECT_EQ(put(kLargestMainFrame_bytes + 1), -1);
    EXPECT_EQ(put(kLargestMainFrame_bytes), 0);
    refused_ = true; /* the frame behind it is there, and it is no key frame */
    EXPECT_EQ(take_all(), 2);
    const PoolCounters counters = reader_.counters();
    EXPECT_EQ(counters.stored, 2u);
    EXPECT_EQ(counters.refused, 1u);
    EXPECT_EQ(counters.read, 2u);
    EXPECT_EQ(counters.lost, 0u);
    EXPECT_EQ(counters.resynchronised, 1u);
}

TEST_F(Pool, WhatIsLeftWhenTheReaderGivesUpIsLost)
{
    for (int i = 0; i < 3; ++i)
        put(1000);
    reader_.give_up();
    EXPECT_EQ(reader_.counters().lost, 3u);
    reader_.wait_for_reader(); /* returns: nobody will come */
}

TEST(ParameterSets, AreTakenFromKeyFramesOfBothCodecs)
{
    const std::vector<uint8_t> h264 = {0, 0,    0, 1, 0x09, 0xf0, 0, 0,    0, 1,    0x67, 1, 2, 0,    0,
                                       1, 0x68, 3, 0, 0,    0,    1, 0x06, 9, 0x80, 0,    0, 1, 0x65, 4};
    EXPECT_EQ(parameter_sets_of(h264, Codec::kH264),
              (std::vector<uint8_t>{0, 0, 0, 1, 0x67, 1, 2, 0, 0, 0, 1, 0x68, 3}));
    const std::vector<uint8_t> h265 = {0, 0, 1, 0x40, 1,    7, 0, 0, 0, 1, 0x42, 1,
                                       8, 0, 0, 1,    0x44, 1, 9, 0, 0, 1, 0x26, 1};
    EXPECT_EQ(parameter_sets_of(h265, Codec::kH265),
              (std::vector<uint8_t>{0, 0, 0, 1, 0x40, 1, 7, 0, 0, 0, 1, 0x42, 1, 8, 0, 0, 0, 1, 0x44, 1, 9}));
    std::vector<uint8_t> twice = h264;
    twice.insert(twice.begin(), h264.begin(), h264.end());
    EXPECT_EQ(parameter_sets_of(twice, Codec::kH264), parameter_sets_of(h264, Codec::kH264));
    for (const std::vector<uint8_t> &none : {std::vector<uint8_t>{},
                                             {0, 0, 1},
                                             {0, 0, 0, 1},
                                             {1, 2, 3, 4, 5},
                                             {0, 0, 1, 0x65, 1},
                                             {0, 0, 0, 0, 0}})
        EXPECT_TRUE(parameter_sets_of(none, Codec::kH264).empty());
}

TEST(Segments, ANewSlotBeginsWithTheLocalHour)
{
    setenv("TZ", "Asia/Kolkata", 1); /* five and a half hours east: its hours begin on the half hour */
    tzset();
    constexpr int64_t k14h_us = 1'795'249'800'000'000; /* 2026-11-21 08:30 UTC */
    EXPECT_NE(segment_slot(k14h_us - 1, kHour_s), segment_slot(k14h_us, kHour_s));
    EXPECT_EQ(segment_slot(k14h_us, kHour_s), segment_slot(k14h_us + 3'599'999'999, kHour_s));
    EXPECT_EQ(segment_slot(k14h_us, kHour_s) + 1, segment_slot(k14h_us + 3'600'000'000, kHour_s));
    EXPECT_EQ(segment_name(3, "main", k14h_us), "ch03-main-20261121-140000");
}

TEST(Segments, ANameThatIsTakenGetsANumber)
{
    std::string directory = std::filesystem::temp_directory_path() / "nvrec-names-XXXXXX";
    ASSERT_NE(mkdtemp(directory.data()), nullptr);
    for (const char *expected : {"/a.mp4", "/a-2.mp4", "/a-3.mp4"}) {
        const std::string path = free_segment_path(directory, "a", ".mp4");
        EXPECT_EQ(path, directory + expected);
        std::ofstream(path).put('x');
    }
    std::filesystem::remove_all(directory);
}

/* Levels and codes of the standard's table: the ends of its segments, and what lies beside zero. */
TEST(Alaw, FollowsTheStandardsTable)
{
    constexpr std::pair<int, int> kLevels[] = {{0, 0xd5},    {15, 0xd5},   {16, 0xd4},    {511, 0xca},
                                               {512, 0xf5},  {1023, 0xfa}, {1024, 0xe5},  {2048, 0x95},
                                               {4096, 0x85}, {8192, 0xb5}, {16384, 0xa5}, {32767, 0xaa},
                                               {-1, 0x55},   {-16, 0x55},  {-17, 0x54},   {-32768, 0x2a}};
    for (const auto &[level, code] : kLevels)
        EXPECT_EQ(alaw_of(static_cast<int16_t>(level)), code) << level;
}

} // namespace
