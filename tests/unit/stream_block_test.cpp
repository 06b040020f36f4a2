/* Gathering blocks: where they end, and what a reader that was overrun is given. */
#include "recording_expect.h"
#include "stream_blocks.h"

using namespace stream_test;

namespace
{

TEST_F(StreamBlock, NothingToBeHad)
{
    EXPECT_EQ(block(10), 0) << "empty";
    ASSERT_EQ(put_at(1, 50, 1), 0);
    EXPECT_EQ(block(10), 2);
    EXPECT_EQ(block(10), 0) << "up to date";
}

TEST_F(StreamBlock, EndsWithTheFrameThatReachesTheTarget)
{
    for (uint32_t i = 0; i < 6; ++i)
        ASSERT_EQ(put_at(i, 50), 0);
    EXPECT_EQ(block(120), 2);
    expect_block(0, 150, 2);
    EXPECT_EQ(block(50), 2);
    expect_block(150, 200, 3);
    EXPECT_EQ(reader_.index, 3u) << "the first frame of the batch";
    EXPECT_EQ(reader_.p_buf_data, channel_->p_buf_data);
    EXPECT_EQ(block(100), 2);
    expect_block(200, 300, 5);
}

TEST_F(StreamBlock, GoesOnWithAnUnfinishedBatch)
{
    ASSERT_EQ(put_at(0, 50), 0);
    EXPECT_EQ(block(120), 0);
    EXPECT_EQ(reader_.block_index, 0u);
    EXPECT_EQ(reader_.data_start, reader_.data_end);
    ASSERT_EQ(put_at(1, 50), 0);
    EXPECT_EQ(block(120), 0);
    EXPECT_EQ(reader_.block_index, 1u);
    EXPECT_EQ(reader_.block_count, 1u);
    ASSERT_EQ(put_at(2, 50), 0);
    EXPECT_EQ(block(120), 2);
    expect_block(0, 150, 2);
}

TEST_F(StreamBlock, GathersAtMostAThirdOfTheIndexRingAndOne)
{
    for (uint32_t i = 0; i < 45; ++i)
        ASSERT_EQ(put_at(i, 10), 0);
    EXPECT_EQ(block(kManyBytes), 2);
    expect_block(0, 210, 20); // 60 / 3 + 1 frames
    EXPECT_EQ(block(kManyBytes), 2);
    expect_block(210, 420, 41);
    EXPECT_EQ(block(kManyBytes), 0);
}

TEST_F(StreamBlock, EndsWithTheLastFrameOfALap)
{
    for (uint32_t i = 0; i < 8; ++i)
        ASSERT_EQ(put_at(i, 100), 0);
    EXPECT_EQ(block(750), 2);
    expect_block(0, 800, 7);
    ASSERT_EQ(put_at(8, 100), 0);
    ASSERT_EQ(put_at(9, 60), 0);
    EXPECT_EQ(block(kManyBytes), 0) << "frame 9 may not be the last of its lap";
    ASSERT_EQ(put_at(10, 50), 0); // does not fit in the last 40 bytes
    EXPECT_EQ(block(kManyBytes), 2);
    expect_block(800, 960, 9);
    EXPECT_EQ(reader_.data_circle, 0u);
    EXPECT_EQ(block(10), 2);
    expect_block(0, 50, 10);
    EXPECT_EQ(reader_.data_circle, 1u);
}

TEST_F(StreamBlock, WholeLapRequestTakesAllUpToTheNewest)
{
    for (uint32_t i = 0; i < 8; ++i)
        ASSERT_EQ(put_at(i, 100), 0);
    EXPECT_EQ(block(STREAM_BLOCK_WHOLE_LAP), 3);
    expect_block(0, 800, 7);
    EXPECT_EQ(block(STREAM_BLOCK_WHOLE_LAP), 0);
}

TEST_F(StreamBlock, WholeLapRequestTakesTheRestOfAnEarlierLapFirst)
{
    for (uint32_t i = 0; i < 8; ++i)
        ASSERT_EQ(put_at(i, 100), 0);
    ASSERT_EQ(block(650), 2);
    expect_block(0, 700, 6);
    for (uint32_t i = 8; i < 13; ++i)
        ASSERT_EQ(put_at(i, 95), 0); // 8 and 9 end the lap at 990
    EXPECT_EQ(block(STREAM_BLOCK_WHOLE_LAP), 2);
    expect_block(700, 990, 9);
    EXPECT_EQ(reader_.data_circle, 0u);
    EXPECT_EQ(block(STREAM_BLOCK_WHOLE_LAP), 3);
    expect_block(0, 285, 12);
    EXPECT_EQ(reader_.data_circle, 1u);
}

TEST_F(StreamBlock, AnOverrunReaderGoesOnAtASafeKeyFrame)
{
    for (uint32_t i = 0; i < 35; ++i)
        ASSERT_EQ(put_at(i, 100, i == 31), 0);
    EXPECT_EQ(block(200), 2);
    expect_block(100, 300, 32);
    EXPECT_EQ(reader_.index, 31u);
    EXPECT_EQ(reader_.data_circle, 3u);
}

TEST_F(StreamBlock, AnOverrunReaderMayBeginABatchThatIsNotFullYet)
{
    for (uint32_t i = 0; i < 95; ++i) // more than nine data laps, more than one of the index
        ASSERT_EQ(put_at(i, 100, i == 91), 0);
    EXPECT_EQ(block(kManyBytes), 0);
    EXPECT_EQ(reader_.index, 31u);
    EXPECT_EQ(reader_.last_index, 31u);
    EXPECT_EQ(reader_.index_circle, 1u);
    EXPECT_EQ(reader_.data_circle, 9u);
    EXPECT_EQ(reader_.data_start, 100u);
    EXPECT_EQ(reader_.data_end, 100u);
    EXPECT_EQ(reader_.block_index, 34u);
    EXPECT_EQ(reader_.block_count, 3u);
    ASSERT_EQ(put_at(95, 100), 0);
    EXPECT_EQ(block(500), 2);
    expect_block(100, 600, 35);
}

TEST_F(StreamBlock, AnOverrunReaderWithoutAKeyFrameIsReported)
{
    for (uint32_t i = 0; i < 35; ++i)
        ASSERT_EQ(put_at(i, 100), 0);
    EXPECT_EQ(block(200), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("ch 0 can not change to safe diff i frame 2");
}

TEST_F(StreamBlock, ARingOfFewEntriesIsGatheredOnlyOnce)
{
    for (int32_t entries = 1; entries <= 12; ++entries) {
        make_pool(1, {80, 10000, entries});
        StreamReader reader{};
        ASSERT_EQ(kx_stream_getStartPos(0, &reader, 1), 0);
        int64_t last = -1;
        for (uint32_t i = 0; i < 40; ++i) {
            ASSERT_EQ(put_at(i, 10, 1, 1), 0);
            while (kx_stream_getBlock(0, 1, &reader, 1) == 2) {
                const auto got = static_cast<int64_t>(reader.p_stream_index[reader.last_index].timestamp);
                ASSERT_GT(got, last) << entries << " entries";
                last = got;
            }
        }
        EXPECT_GT(last, 30) << entries << " entries";
    }
}

TEST_F(StreamBlock, SubPoolReadsItsOwnRing)
{
    make_pool(1, {100, 1000, 60});
    StreamReader reader{};
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 1), 0);
    ASSERT_EQ(put_at(0, 70, 1, 1), 0);
    EXPECT_EQ(kx_stream_getBlock(0, 10, &reader, 1), 2);
    EXPECT_EQ(reader.data_end, 70u);
}

TEST_F(StreamBlock, AudioPoolJudgesByTheAudioRingAndGathersFromTheSubRing)
{
    make_pool(1, {100, 1000, 60});
    const StreamChannel &sub = *nvrhal::find_stream_channel(0, 1);
    make_pool(2, {100, 1000, 60});
    StreamReader reader{};
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 2), 0);
    ASSERT_EQ(put_at(0, 70, 1, 1), 0);
    ASSERT_EQ(put_at(1, 71, 1, 1), 0);
    EXPECT_EQ(kx_stream_getBlock(0, 10, &reader, 2), 0) << "no audio yet";
    ASSERT_EQ(put_at(0, 33, 1, 2), 0);
    EXPECT_EQ(kx_stream_getBlock(0, 100, &reader, 2), 2);
    EXPECT_EQ(reader.data_end, 141u) << "two frames of the sub stream";
    EXPECT_EQ(reader.p_buf_data, sub.p_buf_data) << "the ring that the offsets belong to";
}

TEST_F(StreamBlock, AudioPoolWithoutASubPoolGivesNothing)
{
    make_pool(2, {100, 1000, 60});
    StreamReader reader{};
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 2), 0);
    ASSERT_EQ(put_at(0, 33, 1, 2), 0);
    EXPECT_EQ(kx_stream_getBlock(0, 10, &reader, 2), 0);
    make_pool(1, {100, 1000, 60});
    EXPECT_EQ(kx_stream_getBlock(0, 10, &reader, 2), 0) << "and an empty one neither";
}

} // namespace
