/* Gathering blocks. The module's skip and time words outlive a test only within one process. */
#include "recording_expect.h"
#include "stream_support.h"

using namespace stream_test;
using recording::Args;
using recording::platform;

namespace
{

constexpr uint32_t kManyBytes = 0x10000000;

int32_t put_at(uint32_t timestamp, uint32_t length, uint32_t type = 0, int32_t pool = 0)
{
    const std::vector<uint8_t> bytes(length, static_cast<uint8_t>(timestamp));
    const StreamProducerFrame frame = one_piece(0, type, bytes.data(), length, timestamp);
    return kx_stream_sendFrameToPool(&frame, pool);
}

class StreamBlock : public testing::Test
{
protected:
    void SetUp() override
    {
        channel_ = &make_pool(0, {100, 1000, 60});
        ASSERT_EQ(kx_stream_getStartPos(0, &reader_, 0), 0);
    }

    int32_t block(uint32_t byte_target) { return kx_stream_getBlock(0, byte_target, &reader_, 0); }

    void expect_block(uint32_t start, uint32_t end, uint32_t last_index)
    {
        EXPECT_EQ(reader_.data_start, start);
        EXPECT_EQ(reader_.data_end, end);
        EXPECT_EQ(reader_.last_index, last_index);
    }

    StreamChannel *channel_ = nullptr;
    StreamReader reader_{};
};

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

TEST_F(StreamBlock, StepsOfUpTo59AreNoJump)
{
    uint32_t time = 0xFFFFFFF0u; // and the stamps may wrap around
    for (int32_t step : {0, 59, -59, 0, 59}) {
        time += static_cast<uint32_t>(step);
        ASSERT_EQ(put_at(time, 50), 0);
    }
    EXPECT_EQ(block(250), 2);
    expect_block(0, 250, 4);
}

TEST_F(StreamBlock, EndsBeforeATimeJumpAndGoesOnAtTheKeyFrameAfterIt)
{
    for (int32_t step : {60, -60}) {
        SetUp();
        const uint32_t after = 1000 + static_cast<uint32_t>(step);
        ASSERT_EQ(put_at(1000, 50, 1), 0);
        ASSERT_EQ(put_at(1000, 50), 0);
        ASSERT_EQ(put_at(after, 50), 0);
        ASSERT_EQ(put_at(after, 50), 0);
        ASSERT_EQ(put_at(after, 50, 1), 0);
        ASSERT_EQ(put_at(after, 50), 0);
        EXPECT_EQ(block(300), 4);
        expect_block(0, 100, 1);
        EXPECT_EQ(block(100), 2);
        EXPECT_EQ(reader_.index, 4u) << "two frames after the jump are stepped over";
        EXPECT_EQ(reader_.last_index, 5u);
        EXPECT_EQ(reader_.data_start, 200u);
        EXPECT_EQ(reader_.data_end, 300u);
    }
    EXPECT_EQ(platform.count("board_sleep_us"), 0u);
}

TEST_F(StreamBlock, StepsOverTheFramesAfterAJumpOnlyOnce)
{
    ASSERT_EQ(put_at(0, 50, 1), 0);
    for (uint32_t i = 1; i < 9; ++i) // the jump is at frame 1, the next key frame is frame 3
        ASSERT_EQ(put_at(1000, 50, i == 3), 0);
    ASSERT_EQ(block(kManyBytes), 4);
    expect_block(0, 50, 0);
    for (uint32_t i = 3; i < 9; i += 2) {
        EXPECT_EQ(block(100), 2);
        EXPECT_EQ(reader_.index, i) << "nothing is left out behind the key frame";
        expect_block(i * 50, (i + 2) * 50, i + 1);
    }
}

TEST_F(StreamBlock, ABatchThatIsBegunAndNotFullStandsAtTheEndOfTheOneBefore)
{
    for (uint32_t i = 0; i < 4; ++i)
        ASSERT_EQ(put_at(i, 50), 0);
    ASSERT_EQ(block(100), 2);
    expect_block(0, 100, 1);
    EXPECT_EQ(block(kManyBytes), 0);
    EXPECT_EQ(reader_.data_start, 100u) << "start and end are equal: the batch is not taken yet";
    EXPECT_EQ(reader_.data_end, 100u);
    EXPECT_EQ(reader_.index, 2u);
    EXPECT_EQ(reader_.block_index, 3u);
    EXPECT_EQ(reader_.block_count, 1u);
    ASSERT_EQ(put_at(4, 50), 0);
    EXPECT_EQ(block(kManyBytes), 0);
    EXPECT_EQ(reader_.block_index, 4u) << "the scan goes on where it stopped";
    EXPECT_EQ(reader_.block_count, 2u);
}

TEST_F(StreamBlock, ATimeJumpMayStandAtTheStartOfTheIndexRing)
{
    // Frames 0 to 57 in blocks of one, so that the next batch begins with entry 58 of 60.
    for (uint32_t i = 0; i < 58; ++i) {
        ASSERT_EQ(put_at(1000, 10, 1), 0);
        ASSERT_EQ(block(1), 2);
    }
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(put_at(1000, 10), 0);
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(put_at(5000, 10, i == 2), 0);
    EXPECT_EQ(block(kManyBytes), 4);
    expect_block(580, 600, 59);
    EXPECT_EQ(reader_.index_circle, 0u);
    EXPECT_EQ(block(10), 2);
    EXPECT_EQ(reader_.index, 2u) << "the key frame";
    expect_block(620, 630, 2);
    EXPECT_EQ(reader_.index_circle, 1u);
}

TEST_F(StreamBlock, TheSearchForAKeyFrameGoesAroundTheIndexRing)
{
    for (uint32_t i = 0; i < 57; ++i) {
        ASSERT_EQ(put_at(1000, 10, 1), 0);
        ASSERT_EQ(block(1), 2);
    }
    ASSERT_EQ(put_at(1000, 10), 0);
    for (int i = 0; i < 4; ++i) // entries 58, 59, 0 and 1
        ASSERT_EQ(put_at(5000, 10, i == 3), 0);
    EXPECT_EQ(block(kManyBytes), 4);
    expect_block(570, 580, 57);
    EXPECT_EQ(block(10), 2);
    EXPECT_EQ(reader_.index, 1u);
    expect_block(610, 620, 1);
}

TEST_F(StreamBlock, WaitsForTheKeyFrameAfterAJumpAMillisecondAtATime)
{
    ASSERT_EQ(put_at(0, 50, 1), 0);
    ASSERT_EQ(put_at(60, 50), 0);
    int naps = 0;
    platform.script("board_sleep_us").with("1000").fills([&](Args &) {
        ++naps;
        if (naps == 3 || naps == 5) {
            EXPECT_EQ(put_at(naps == 3 ? 61 : 62, 50, naps == 5), 0);
        }
    });
    EXPECT_EQ(block(200), 4);
    EXPECT_EQ(naps, 5);
    EXPECT_EQ(platform.count("board_sleep_us"), 5u);
    expect_block(0, 50, 0);
    EXPECT_EQ(block(10), 2);
    expect_block(150, 200, 3);
}

TEST_F(StreamBlock, AJumpAtTheFirstFrameOfABatchIsNone)
{
    ASSERT_EQ(put_at(0, 100, 1), 0);
    EXPECT_EQ(block(500), 0);         // an unfinished batch remembers time 0
    for (uint32_t i = 0; i < 30; ++i) // the writer overruns it; time goes on far from there
        ASSERT_EQ(put_at(5000, 100, 1), 0);
    EXPECT_EQ(block(100), 2);
    EXPECT_EQ(reader_.index, reader_.last_index);
    EXPECT_EQ(reader_.data_end - reader_.data_start, 100u);
}

TEST_F(StreamBlock, TimeIsComparedOnlyWithinABatch)
{
    ASSERT_EQ(put_at(0, 50, 1), 0);
    EXPECT_EQ(block(10), 2);
    ASSERT_EQ(put_at(9000, 50), 0);
    EXPECT_EQ(block(10), 2);
    expect_block(50, 100, 1);
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
