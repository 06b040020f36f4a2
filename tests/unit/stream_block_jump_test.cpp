/* Blocks at jumps of time. The module's skip and time words outlive a test only within one process. */
#include "recording_expect.h"
#include "stream_blocks.h"

using namespace stream_test;
using recording::Args;
using recording::platform;

namespace
{

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

} // namespace
