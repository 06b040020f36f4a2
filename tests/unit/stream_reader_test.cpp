/* Positioning readers and reading frame by frame. */
#include "recording_expect.h"
#include "stream_support.h"

#include <cstdio>

using namespace stream_test;

namespace
{

constexpr uint32_t kNeverWritten = static_cast<uint32_t>(-3);

/* --- Positioning ------------------------------------------------------------------------- */

TEST(StreamStartPos, OfAnEmptyChannelIsEntryZero)
{
    const StreamChannel &channel = make_pool(0, {100, 1000, 20});
    StreamReader reader;
    memset(&reader, 0xEE, sizeof reader);
    EXPECT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    EXPECT_EQ(reader.index, 0u);
    EXPECT_EQ(reader.last_index, 0u);
    EXPECT_EQ(reader.block_index, 0u);
    EXPECT_EQ(reader.block_count, 0u);
    EXPECT_EQ(reader.index_circle, 0u);
    EXPECT_EQ(reader.index_num, 20u);
    EXPECT_EQ(reader.p_stream_index, channel.p_stream_index);
    EXPECT_EQ(reader.data_start, 0u);
    EXPECT_EQ(reader.data_end, 0u);
    EXPECT_EQ(reader.data_circle, kNeverWritten);
    EXPECT_EQ(reader.p_buf_data, channel.p_buf_data);
}

TEST(StreamStartPos, AReaderPlacedOnAnEmptyChannelGetsEveryFrameFromTheFirstOn)
{
    make_pool(0, {100, 1000, 40});
    StreamReader start, last;
    ASSERT_EQ(kx_stream_getStartPos(0, &start, 0), 0);
    ASSERT_EQ(kx_stream_getLastPos(0, &last, 0), 0);
    EXPECT_EQ(next_frame(start), -1);
    for (int64_t i = 1; i <= 5; ++i)
        ASSERT_EQ(put(static_cast<uint64_t>(i), 50, 0), 0);
    for (StreamReader *reader : {&start, &last}) {
        for (int64_t i = 1; i <= 5; ++i)
            EXPECT_EQ(next_frame(*reader), i);
        EXPECT_EQ(next_frame(*reader), -1);
    }
}

TEST(StreamStartPos, InTheFirstLapIsEntryZeroWhileALargestFrameFits)
{
    make_pool(0, {100, 1000, 40});
    for (uint64_t i = 1; i <= 9; ++i)
        ASSERT_EQ(put(i, 100, 0), 0);
    StreamReader reader;
    EXPECT_EQ(kx_stream_getStartPos(0, &reader, 0), 0); // 100 bytes are left, just enough
    EXPECT_EQ(next_frame(reader), 1);
    ASSERT_EQ(put(10, 1, 0), 0);
    EXPECT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    EXPECT_EQ(next_frame(reader), 2) << "99 are not: the first frame whose start is safe";
}

TEST(StreamStartPos, SearchesFromTwelveEntriesAheadOfTheWriterKeyFrameOrNot)
{
    make_pool(0, {80, 100000, 20}); // only the index ring limits
    StreamChannel &channel = *nvrhal::find_stream_channel(0, 0);
    for (uint64_t i = 0; i < 50; ++i)
        ASSERT_EQ(put(i, 10, 0), 0);
    channel.p_stream_index[channel.cur_index].data_circle = 1; // as if the data ring had wrapped
    for (int i = 0; i < 20; ++i)
        channel.p_stream_index[i].data_circle = 1;
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    EXPECT_EQ(reader.index, (49u + 12) % 20);
    EXPECT_EQ(reader.last_index, reader.index);
    EXPECT_EQ(reader.block_index, reader.index);
    EXPECT_EQ(reader.data_start, reader.data_end);
    EXPECT_EQ(next_frame(reader), 41) << "49 + 12 - 20";
}

TEST(StreamStartPos, FailsWhenNothingIsAtASafeDistance)
{
    make_pool(0, {100, 150, 20});
    ASSERT_EQ(put(0, 100), 0);
    StreamReader reader{};
    EXPECT_EQ(kx_stream_getStartPos(0, &reader, 0), -1);
    // Entry 0 is the newest; the last one looked at, 19, was never written (lap -3).
    EXPECT_PRINTED_WITHOUT_PREFIX("t_index = 0 cat not change to safe diff -400 safe diff 100");
}

TEST(StreamLastPos, IsTheNewestFrame)
{
    const StreamChannel &channel = make_pool(0, {100, 250, 40});
    for (uint64_t i = 0; i < 7; ++i)
        ASSERT_EQ(put(i, 100, 0), 0);
    StreamReader reader;
    memset(&reader, 0xEE, sizeof reader);
    EXPECT_EQ(kx_stream_getLastPos(0, &reader, 0), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("data start 0 index start 6 data_circle 3 index circle 0");
    EXPECT_EQ(reader.index, 6u);
    EXPECT_EQ(reader.last_index, 6u);
    EXPECT_EQ(reader.block_index, 6u);
    EXPECT_EQ(reader.block_count, 0u);
    EXPECT_EQ(reader.index_num, 40u);
    EXPECT_EQ(reader.data_start, 0u);
    EXPECT_EQ(reader.data_end, 0u);
    EXPECT_EQ(reader.data_circle, 3u);
    EXPECT_EQ(reader.p_stream_index, channel.p_stream_index);
    EXPECT_EQ(reader.p_buf_data, channel.p_buf_data);
    EXPECT_EQ(next_frame(reader), 6) << "the entry positioned on, not the one after it";
    EXPECT_EQ(next_frame(reader), -1);
    ASSERT_EQ(put(7, 100, 0), 0);
    EXPECT_EQ(next_frame(reader), 7);
}

TEST(StreamLastPos, OfAnEmptyChannelIsEntryZero)
{
    make_pool(0, {100, 250, 40});
    StreamReader reader;
    EXPECT_EQ(kx_stream_getLastPos(0, &reader, 0), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("data start 0 index start 0 data_circle -3 index circle 0");
    EXPECT_EQ(reader.data_circle, kNeverWritten);
}

/* --- Reading ------------------------------------------------------------------------------ */

TEST(StreamRead, FollowsTheWriterAroundBothRings)
{
    make_pool(0, {100, 1000, 30});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    for (uint64_t i = 0; i < 1000; ++i) {
        ASSERT_EQ(put(i, 1 + static_cast<uint32_t>(i * 37 % 100), 0), 0);
        ASSERT_EQ(next_frame(reader), static_cast<int64_t>(i));
        ASSERT_EQ(reader.index, reader.last_index);
        ASSERT_EQ(next_frame(reader), -1);
    }
}

TEST(StreamRead, TellsTypeAndTimeByTheEntry)
{
    make_pool(0, {100, 1000, 30});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    ASSERT_EQ(put(0xFFFFFFF0u, 33, 5), 0);
    ASSERT_EQ(kx_stream_getOneFrame(0, 0, &reader, 0), 33);
    EXPECT_EQ(reader.p_stream_index[reader.last_index].frame_type, 5);
    EXPECT_EQ(reader.p_stream_index[reader.last_index].timestamp, 0xFFFFFFF0u);
}

TEST(StreamRead, AnOverrunReaderGoesOnAtTheOldestSafeKeyFrame)
{
    make_pool(0, {100, 1000, 60});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    for (uint64_t i = 0; i < 35; ++i) // more than three laps; every fifth is a key frame
        ASSERT_EQ(put(i, 100, i % 5 == 0), 0);
    // Ring: 30..34 in this lap, 25..29 before; the safe ones start 100 bytes ahead: from 26 on.
    EXPECT_EQ(next_frame(reader), 30);
    EXPECT_EQ(next_frame(reader), 31);
}

TEST(StreamRead, WithNoSafeKeyFrameStaysWhereItIs)
{
    make_pool(0, {100, 1000, 60});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    ASSERT_EQ(put(0, 100, 1), 0);
    ASSERT_EQ(next_frame(reader), 0);
    for (uint64_t i = 1; i < 25; ++i)
        ASSERT_EQ(put(i, 100, 0), 0);
    const auto before = image(&reader, sizeof reader);
    EXPECT_EQ(kx_stream_getOneFrame(0, 0, &reader, 0), 0);
    EXPECT_EQ(image(&reader, sizeof reader), before);
    ASSERT_EQ(put(25, 100, 1), 0);
    EXPECT_EQ(next_frame(reader), -1) << "the newest entry ends the search and is not looked at";
    ASSERT_EQ(put(26, 100, 0), 0);
    EXPECT_EQ(next_frame(reader), 25);
}

TEST(StreamRead, IsInStepAtExactlyTheSafeDistance)
{
    make_pool(0, {100, 1000, 60});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    ASSERT_EQ(put(0, 100, 0), 0);
    ASSERT_EQ(next_frame(reader), 0); // the reader stands at byte 100
    for (uint64_t i = 1; i < 10; ++i)
        ASSERT_EQ(put(i, 100, 0), 0);
    StreamReader close = reader;
    EXPECT_EQ(next_frame(close), 1) << "writer at byte 1000: 100 bytes are between them";
    ASSERT_EQ(put(10, 1, 0), 0);
    EXPECT_EQ(next_frame(reader), -1) << "writer at byte 1 of the next lap: 99 bytes, and no key frame";
}

TEST(StreamRead, KeepsTwelveEntriesAwayFromTheWriter)
{
    make_pool(0, {80, 100000, 20});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    ASSERT_EQ(put(0, 1, 0), 0);
    ASSERT_EQ(next_frame(reader), 0);
    for (uint64_t i = 1; i <= 8; ++i)
        ASSERT_EQ(put(i, 1, 0), 0);
    StreamReader behind = reader;
    EXPECT_EQ(next_frame(behind), 1) << "20 - 8 = 12 entries are left";
    ASSERT_EQ(put(9, 1, 0), 0);
    EXPECT_EQ(next_frame(reader), -1) << "11 are too few, and there is no key frame";
}

TEST(StreamRead, NeverDeliversTwiceAfterResynchronising)
{
    make_pool(0, {80, 100000, 20});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    int64_t last = -1;
    for (uint64_t i = 0; i < 500; ++i) {
        ASSERT_EQ(put(i, 1 + i % 7, 1), 0);
        if (i % 13 != 0) continue;
        const int64_t got = next_frame(reader);
        ASSERT_GT(got, last);
        last = got;
    }
}

TEST(StreamRead, ARingOfFewEntriesDeliversNothingTwice)
{
    for (int32_t entries = 1; entries <= 13; ++entries) {
        make_pool(0, {80, 10000, entries});
        StreamReader reader;
        ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
        int64_t last = -1;
        for (uint64_t i = 0; i < 100; ++i) {
            ASSERT_EQ(put(i, 1 + i % 7, i % 3 == 0), 0);
            for (int64_t got = next_frame(reader); got != -1; got = next_frame(reader)) {
                ASSERT_GT(got, last) << entries << " entries";
                last = got;
            }
        }
        EXPECT_GT(last, 90) << entries << " entries: the reader keeps up";
    }
}

/* --- Skipping ----------------------------------------------------------------------------- */

TEST(StreamSkip, ABacklogAboveTheLimitGoesToTheNextKeyFrame)
{
    make_pool(0, {100, 10000, 60});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    ASSERT_EQ(put(0, 10, 1), 0);
    ASSERT_EQ(next_frame(reader, 3), 0);
    for (uint64_t i = 1; i <= 4; ++i)
        ASSERT_EQ(put(i, 10, i == 3), 0);
    StreamReader patient = reader, strict = reader, always = reader;
    EXPECT_EQ(next_frame(patient, 0), 1) << "0 = every frame";
    EXPECT_EQ(next_frame(patient, 4), 2) << "a backlog of 3 is not above 4";
    EXPECT_EQ(next_frame(strict, 3), 3) << "a backlog of 4 is above 3";
    EXPECT_EQ(strict.index, 3u);
    EXPECT_EQ(next_frame(strict, 3), 4);
    EXPECT_EQ(next_frame(always, -1), 3);
}

TEST(StreamSkip, ANegativeLimitWithoutABacklogDoesNotGoBack)
{
    make_pool(0, {100, 10000, 20});
    for (uint64_t i = 0; i < 50; ++i)
        ASSERT_EQ(put(i, 10, 1), 0);
    StreamReader reader;
    ASSERT_EQ(kx_stream_getLastPos(0, &reader, 0), 0);
    EXPECT_EQ(next_frame(reader, -1), 49) << "not an older key frame";
    EXPECT_EQ(next_frame(reader, INT32_MIN), -1);
    ASSERT_EQ(put(50, 10, 0), 0);
    EXPECT_EQ(next_frame(reader, INT32_MIN), 50);
}

TEST(StreamSkip, WithoutAKeyFrameBehindItGoesOnFrameByFrame)
{
    make_pool(0, {100, 10000, 60});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    for (uint64_t i = 0; i <= 8; ++i)
        ASSERT_EQ(put(i, 10, i == 8), 0);
    EXPECT_EQ(next_frame(reader, 2), 0) << "freshly positioned: the entry itself; the newest is not searched";
    EXPECT_EQ(next_frame(reader, 2), 1);
}

TEST(StreamSkip, TheBacklogCountsAcrossTheIndexWrap)
{
    make_pool(0, {100, 10000, 20});
    for (uint64_t i = 0; i < 17; ++i)
        ASSERT_EQ(put(i, 10, 0), 0);
    StreamReader reader;
    ASSERT_EQ(kx_stream_getLastPos(0, &reader, 0), 0);
    ASSERT_EQ(next_frame(reader), 16);
    for (uint64_t i = 17; i < 23; ++i)
        ASSERT_EQ(put(i, 10, i == 21), 0);
    StreamReader at_limit = reader;
    EXPECT_EQ(next_frame(at_limit, 6), 17);
    EXPECT_EQ(next_frame(reader, 5), 21);
}

/* --- Wrap-around of the counters ------------------------------------------------------------ */

TEST(StreamCounters, LapsBeyond32BitsStayRight)
{
    for (uint32_t before_wrap = 0; before_wrap < 8; ++before_wrap) {
        StreamChannel &channel = make_pool(0, {100, 1000, 30});
        channel.data_circle = 0u - before_wrap;
        channel.index_circle = 0u - before_wrap;
        ASSERT_EQ(put(0, 50, 1), 0);
        StreamReader close, slow;
        ASSERT_EQ(kx_stream_getLastPos(0, &close, 0), 0);
        slow = close;
        int64_t last = -1;
        for (uint64_t i = 0; i < 400; ++i) {
            ASSERT_EQ(next_frame(close), static_cast<int64_t>(i));
            if (i % 40 == 0) {
                const int64_t got = next_frame(slow); // overrun again and again
                ASSERT_GT(got, last);
                last = got;
            }
            ASSERT_EQ(put(i + 1, 1 + static_cast<uint32_t>(i * 61 % 100), 1), 0);
        }
    }
}

} // namespace
