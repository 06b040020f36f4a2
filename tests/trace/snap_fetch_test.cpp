/* venc_snap_process: waiting for the encoder, copying its packs, leaving it reset and stopped. */
#include <algorithm>
#include <cstring>

#include "snap_refusal.h"
#include "snap_request.h"

using namespace snap_test;
using recording::platform;
using recording::trace;

namespace
{

constexpr int32_t kFetchRefused = static_cast<int32_t>(0xA0020010);

/** Encoder 2 is there, as the pipeline leaves it. */
class SnapshotFetch : public testing::Test
{
protected:
    SnapshotFetch() { platform.media.encoders.create(2); }
};

/** Every stream from now on is one pack of these bytes. */
void deliver(std::vector<uint8_t> &bytes, uint32_t offset = 0, uint32_t count = 1)
{
    platform.script("MI_VENC_GetStream").fills([&bytes, offset, count](recording::Args &call) {
        auto &stream = call.record<MI_VENC_Stream>(1);
        EXPECT_EQ(stream.pack_count, 1u); // room for one
        stream.packs[0].address = bytes.data();
        stream.packs[0].length_bytes = static_cast<uint32_t>(bytes.size());
        stream.packs[0].offset_bytes = offset;
        stream.pack_count = count;
    });
}

TEST_F(SnapshotFetch, CopiesThePackWithWhatLiesBeforeItsOffset)
{
    std::vector<uint8_t> bytes = {1, 2, 3, 4, 5, 6, 7};
    deliver(bytes, 3);
    FrameInfo frame = {};
    EXPECT_EQ(venc_snap_process(2, &frame), 0);
    ASSERT_EQ(frame.length, 7u);
    EXPECT_EQ(std::memcmp(frame.data, bytes.data(), 7), 0);
    EXPECT_PRINTED("jpeg_size=7");
    EXPECT_EQ(frame.media, 17u);
    EXPECT_EQ(frame.width, 0u); // the request's to fill
    ext_release_jpeg_buf(&frame);
}

TEST_F(SnapshotFetch, NeverReadsMorePacksThanItHasRoomFor)
{
    std::vector<uint8_t> bytes = {1, 2, 3};
    for (uint32_t count : {2u, 1000u}) {
        platform.forget();
        deliver(bytes, 0, count);
        FrameInfo frame = {};
        EXPECT_EQ(venc_snap_process(2, &frame), 0);
        EXPECT_EQ(frame.length, 3u);
        EXPECT_EQ(recording::times_printed("jpeg_size=3"), 1u);
        ext_release_jpeg_buf(&frame);
    }
}

/* A failing encoder may have changed the descriptor: it is prepared anew for every attempt. */
TEST_F(SnapshotFetch, OffersRoomForOnePackAtEveryAttempt)
{
    std::vector<uint8_t> bytes = {1, 2, 3};
    deliver(bytes);
    platform.script("MI_VENC_GetStream").once().returns(kFetchRefused).fills([](recording::Args &call) {
        call.record<MI_VENC_Stream>(1).pack_count = 0;
    });
    FrameInfo frame = {};
    EXPECT_EQ(venc_snap_process(2, &frame), 0);
    EXPECT_EQ(frame.length, 3u);
    ext_release_jpeg_buf(&frame);
}

/* Like an empty picture: the reset that follows drops the stream. */
TEST_F(SnapshotFetch, FailsWithoutMemoryForThePicture)
{
    std::vector<uint8_t> bytes = {1, 2, 3};
    deliver(bytes);
    FrameInfo frame = {};
    snap_refusal::memory = true;
    const int32_t result = venc_snap_process(2, &frame);
    snap_refusal::memory = false;
    EXPECT_EQ(result, -1);
    EXPECT_PRINTED_AS_ERROR("snap.c", "jpeg proc malloc fail!");
    EXPECT_EQ(frame.data, nullptr);
    EXPECT_EQ(frame.length, 0u);
    EXPECT_EQ(frame.media, 17u);
    EXPECT_EQ(platform.calls_since("MI_VENC_GetStream"), trace(R"(
        MI_VENC_GetStream 2 40
        board_time_us
        MI_VENC_ResetChn 2
        MI_VENC_StopRecvPic 2
    )"));
}

TEST_F(SnapshotFetch, TriesAgainTenMillisecondsAfterEachFailure)
{
    platform.script("MI_VENC_GetStream").returns(kFetchRefused);
    platform.script("MI_VENC_GetStream").from(4).returns(0);
    unsigned said_before_the_pause = 9;
    platform.script("board_sleep_us").once().fills([&](recording::Args &) {
        said_before_the_pause = recording::times_printed("MI_VENC_GetStream wait");
    });
    FrameInfo frame = {};
    EXPECT_EQ(venc_snap_process(2, &frame), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VENC_StartRecvPic 2
        MI_VENC_GetStream 2 40
        board_sleep_us 10000
        MI_VENC_GetStream 2 40
        board_sleep_us 10000
        MI_VENC_GetStream 2 40
        board_sleep_us 10000
        MI_VENC_GetStream 2 40
        board_time_us
        MI_VENC_ReleaseStream 2
        MI_VENC_ResetChn 2
        MI_VENC_StopRecvPic 2
    )"));
    EXPECT_EQ(recording::times_printed("MI_VENC_GetStream wait"), 3u);
    EXPECT_EQ(said_before_the_pause, 0u);
    ext_release_jpeg_buf(&frame);
}

TEST_F(SnapshotFetch, GivesUpAfterFiftyAttempts)
{
    platform.script("MI_VENC_GetStream").returns(kFetchRefused);
    FrameInfo frame = {};
    EXPECT_EQ(venc_snap_process(2, &frame), -1);
    EXPECT_EQ(platform.count("MI_VENC_GetStream 2 40"), 50u);
    EXPECT_EQ(platform.time_us(), 500000);
    EXPECT_EQ(recording::times_printed("MI_VENC_GetStream wait"), 50u);
    EXPECT_PRINTED_AS_ERROR("snap.c", "MI_VENC_GetStream failed with 0xa0020010!");
    EXPECT_EQ(platform.calls_since("MI_VENC_ResetChn"), trace(R"(
        MI_VENC_ResetChn 2
        MI_VENC_StopRecvPic 2
    )"));
    EXPECT_EQ(frame.data, nullptr);
}

TEST_F(SnapshotFetch, TakesTheLastOfFiftyAttempts)
{
    platform.script("MI_VENC_GetStream").returns(kFetchRefused);
    platform.script("MI_VENC_GetStream").from(50).returns(0);
    FrameInfo frame = {};
    EXPECT_EQ(venc_snap_process(2, &frame), 0);
    EXPECT_EQ(recording::times_printed("MI_VENC_GetStream wait"), 49u);
    ext_release_jpeg_buf(&frame);
}

/* The reset that follows drops the stream; it is not released. */
TEST_F(SnapshotFetch, FailsOnAnEmptyPictureWithoutReleasingIt)
{
    std::vector<uint8_t> bytes;
    for (uint32_t count : {0u, 1u}) {
        platform.forget();
        deliver(bytes, 0, count);
        FrameInfo frame = {};
        EXPECT_EQ(venc_snap_process(2, &frame), -1);
        EXPECT_PRINTED_AS_ERROR("snap.c", "MI_VENC_GetStream size is 0 0!");
        EXPECT_EQ(platform.count("MI_VENC_ReleaseStream"), 0u);
        EXPECT_EQ(platform.count("MI_VENC_ResetChn"), 1u);
        EXPECT_EQ(frame.data, nullptr);
        EXPECT_EQ(frame.media, 0u);
    }
}

/* The data field keeps the freed address; a length of 0 tells that there is no picture. */
TEST_F(SnapshotFetch, FreesTheBufferWhenTheReleaseFailsAndKeepsItsAddress)
{
    platform.script("MI_VENC_ReleaseStream").returns(kFetchRefused);
    FrameInfo frame = {};
    EXPECT_EQ(venc_snap_process(2, &frame), -1);
    const void *freed = snap_refusal::last_freed;
    EXPECT_EQ(frame.data, freed);
    EXPECT_PRINTED_AS_ERROR("snap.c", "MI_VENC_ReleaseStream failed with 0xa0020010!");
    EXPECT_NE(frame.data, nullptr);
    EXPECT_EQ(frame.length, 0u);
    EXPECT_EQ(platform.count("MI_VENC_ResetChn"), 1u);
    EXPECT_EQ(platform.count("MI_VENC_StopRecvPic"), 1u);
}

TEST_F(SnapshotFetch, ResetsAndStopsAnEncoderThatDidNotStart)
{
    platform.script("MI_VENC_StartRecvPic").returns(kFetchRefused);
    platform.script("MI_VENC_StopRecvPic").returns(kFetchRefused);
    FrameInfo frame = {};
    EXPECT_EQ(venc_snap_process(2, &frame), -1);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VENC_StartRecvPic 2
        MI_VENC_ResetChn 2
        MI_VENC_StopRecvPic 2
    )"));
    EXPECT_PRINTED_AS_ERROR("snap.c", "MI_VENC_StartRecvPic faild with0xa0020010!");
    EXPECT_PRINTED_AS_ERROR("snap.c", "MI_VENC_StopRecvPic fail = 0xa0020010");
}

} // namespace
