/* snap_test.cpp - snapshots on the virtual board: the right picture of the right frame, and no leak. */
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>

#include "playback_session.h"
#include "process_counts.h"
#include "snap_pictures.h"

using namespace session;
using snap_test::decode_jpeg;
using snap_test::full_range;
using snap_test::psnr_db;

namespace
{

constexpr double kLeastPsnr_db = 30;
constexpr uint32_t kSpareDecoder = kCameras;

/* A taken snapshot; its buffer goes with it. */
struct Snapshot {
    FrameInfo frame = {};
    int32_t result = 0;

    Snapshot() = default;
    Snapshot(const Snapshot &) = delete;
    Snapshot &operator=(const Snapshot &) = delete;
    ~Snapshot() { ext_release_jpeg_buf(&frame); }
};

class SnapshotOnTheBoard : public Session
{
protected:
    void SetUp() override
    {
        Session::SetUp();
        ASSERT_EQ(ext_set_snap_channel_enable(), 0);
    }

    /*
     * Take a snapshot; `send` runs as soon as the library waits for the encoder's picture, so that
     * what it sends is the picture taken. The clock stands still meanwhile.
     */
    static void take(uint32_t channel, Snapshot &snapshot, const std::function<void()> &send)
    {
        vboard_clock_take();
        snapshot.frame.channel = channel;
        std::thread taker([&] { snapshot.result = ext_get_jpeg_stream(&snapshot.frame); });
        EXPECT_EQ(vboard_clock_wait_sleepers(1, rig::kPatience_ms), 0);
        send();
        taker.join();
        vboard_clock_release();
    }
};

/* The snapshot is a scaled `picture` with this stamp. */
void expect_picture(const Snapshot &snapshot, const rig::Picture &picture, stamp::Stamp stamp)
{
    ASSERT_EQ(snapshot.result, 0);
    ASSERT_NE(snapshot.frame.data, nullptr);
    EXPECT_EQ(snapshot.frame.width, uint32_t{NVRHAL_SNAPSHOT_WIDTH});
    EXPECT_EQ(snapshot.frame.height, uint32_t{NVRHAL_SNAPSHOT_HEIGHT});
    const rig::Picture seen = decode_jpeg(snapshot.frame.data, snapshot.frame.length);
    ASSERT_EQ(seen.width, NVRHAL_SNAPSHOT_WIDTH);
    ASSERT_EQ(seen.height, NVRHAL_SNAPSHOT_HEIGHT);
    EXPECT_EQ(stamp::read(seen.luma(), seen.width, seen.width, seen.height), stamp);
    const rig::Picture expected = rig::scaled(picture, NVRHAL_SNAPSHOT_WIDTH, NVRHAL_SNAPSHOT_HEIGHT);
    EXPECT_GE(psnr_db(seen, full_range(expected)), kLeastPsnr_db);
}

TEST_F(SnapshotOnTheBoard, OfAShownChannelIsTheFrameSentNext)
{
    show_live(3);
    const rig::Stream stream = live_stream(1);
    Snapshot snapshot;
    take(1, snapshot, [&] { EXPECT_EQ(send_live(1, stream.frames[3]), 0); });
    expect_picture(snapshot, rig::reference_decode(stream)[3], {1, 3});
    settle(1);
    EXPECT_EQ(stamp_of(rig::look(), 1), (stamp::Stamp{1, 3})) << "the wall shows it, too";
}

/* The picture is delivered at the pane's size, 960 x 540, and scaled from there. */
TEST_F(SnapshotOnTheBoard, OfALargePictureShowsTheWholeOfIt)
{
    show_live(1);
    const rig::Stream large = rig::load_stream("session_large_h265");
    Snapshot snapshot;
    take(0, snapshot, [&] { EXPECT_EQ(send_live(0, large.frames[0]), 0); });
    expect_picture(snapshot, rig::reference_decode(large)[0], {30, 0});
}

TEST_F(SnapshotOnTheBoard, OfAHiddenChannelNeedsNoPane)
{
    ASSERT_EQ(lay_out_single(0), 0);
    const rig::Stream stream = live_stream(2);
    Snapshot snapshot;
    take(2, snapshot, [&] { EXPECT_EQ(send_live(2, stream.frames[0]), 0); });
    expect_picture(snapshot, rig::reference_decode(stream)[0], {2, 0});

    const uint64_t decoded = rig::counters(2).decoded;
    EXPECT_EQ(send_live(2, stream.frames[1]), 0); // hidden again: dropped before the decoder
    EXPECT_EQ(rig::counters(2).decoded, decoded);
}

TEST_F(SnapshotOnTheBoard, DuringPlaybackIsTheLiveChannelAndDisturbsNoPane)
{
    show_live(3);
    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    ASSERT_EQ(play(1, recording(1).frames[0]), 0);
    settle(1);
    const rig::Stream stream = live_stream(1);
    Snapshot snapshot;
    take(1, snapshot, [&] {
        EXPECT_EQ(send_live(0, live_stream(0).frames[0]), -1) << "another channel stays out";
        EXPECT_EQ(send_live(1, stream.frames[10]), 0); // a key frame: the spare decoder starts anew
    });
    expect_picture(snapshot, rig::reference_decode(stream)[10], {1, 10});
    EXPECT_EQ(stamp_of(rig::look(), 1), (stamp::Stamp{kFirstRecording + 1, 1000}));
    EXPECT_EQ(rig::counters(kSpareDecoder).started, 0u);
    EXPECT_EQ(play(1, recording(1).frames[1]), 0);
    settle(1);
    EXPECT_EQ(stamp_of(rig::look(), 1), (stamp::Stamp{kFirstRecording + 1, 1001}));
}

/* The spare decoder keeps its codec, H.265 from start-up: the application changes it for its cameras. */
TEST_F(SnapshotOnTheBoard, DuringPlaybackOfH264CamerasNeedsASpareDecoderForThem)
{
    show_live(1);
    ASSERT_EQ(ext_playback_start(0xF, 0), 0);
    ASSERT_EQ(vdec_recreate(kSpareDecoder, 0), 0);
    const rig::Stream stream = rig::load_stream("h264_640x360");
    Snapshot snapshot;
    take(1, snapshot, [&] { // a byte-stream decoder gives a picture when the next frame begins
        EXPECT_EQ(send_live(1, stream.frames[0], kH264), 0);
        EXPECT_EQ(send_live(1, stream.frames[1], kH264), 0);
    });
    expect_picture(snapshot, rig::reference_decode(stream)[0], {1, 0});
}

TEST_F(SnapshotOnTheBoard, CarriesTheWallClockAndTheQualityAskedFor)
{
    show_live(1);
    Snapshot snapshot;
    const int64_t before_us = local_get_curtime();
    take(0, snapshot, [] { EXPECT_EQ(send_live(0, live_stream(0).frames[1]), 0); });
    EXPECT_GE(static_cast<int64_t>(snapshot.frame.local_time), before_us);
    EXPECT_LE(static_cast<int64_t>(snapshot.frame.local_time), local_get_curtime());
    EXPECT_EQ(snap_test::first_luma_step(snapshot.frame.data, snapshot.frame.length), 16u); // of quality 50
}

TEST_F(SnapshotOnTheBoard, OfASilentChannelGivesUpAfterFiftyWaits)
{
    show_live(1);
    const HurriedClock hurried;
    const int64_t before_us = vboard_clock_us();
    Snapshot snapshot;
    EXPECT_EQ(ext_get_jpeg_stream(&snapshot.frame), -1);
    EXPECT_EQ(snapshot.frame.data, nullptr);
    EXPECT_GE(vboard_clock_us() - before_us, 50 * 50000);
    EXPECT_EQ(cur_snap_chnn, 255);
}

TEST_F(SnapshotOnTheBoard, OfAChannelThatDoesNotExistFailsAndTheNextOneWorks)
{
    show_live(1);
    for (uint32_t channel : {40u, 255u, 0xFFFFFFFFu}) {
        FrameInfo frame = {};
        frame.channel = channel;
        EXPECT_EQ(ext_get_jpeg_stream(&frame), -1);
        EXPECT_EQ(frame.data, nullptr);
    }
    Snapshot snapshot;
    take(0, snapshot, [] { EXPECT_EQ(send_live(0, live_stream(0).frames[1]), 0); });
    expect_picture(snapshot, rig::reference_decode(live_stream(0))[1], {0, 1});
}

/* Every step of the pipeline refused once: the rest is taken down, and the next snapshot works. */
TEST_F(SnapshotOnTheBoard, RecoversFromEveryRefusal)
{
    show_live(1);
    vboard_set_loud(0);
    const rig::Stream stream = live_stream(0);
    uint32_t next = 1;
    for (const char *call :
         {"MI_VDEC_GetChnAttr", "MI_DIVP_CreateChn", "MI_DIVP_GetOutputPortAttr", "MI_DIVP_SetOutputPortAttr",
          "MI_VENC_CreateChn", "MI_VENC_GetJpegParam", "MI_VENC_SetJpegParam", "MI_SYS_SetChnOutputPortDepth",
          "MI_VENC_GetChnDevid", "MI_SYS_BindChnPort", "MI_DIVP_StartChn", "MI_VENC_StartRecvPic"}) {
        ASSERT_EQ(vboard_fault_set(call, 1, 1, -77), 0);
        FrameInfo frame = {};
        EXPECT_EQ(ext_get_jpeg_stream(&frame), -1) << call;
        EXPECT_EQ(frame.data, nullptr) << call;
        vboard_fault_clear(call);
        Snapshot snapshot;
        take(0, snapshot, [&] { EXPECT_EQ(send_live(0, stream.frames[next]), 0); });
        EXPECT_EQ(snapshot.result, 0) << call;
        ++next;
    }
    vboard_set_loud(1);
}

TEST_F(SnapshotOnTheBoard, AThousandInARowLeakNothing)
{
    show_live(1);
    const rig::Stream stream = live_stream(3);
    size_t bytes = 0, threads = 0, descriptors = 0;
    for (size_t i = 0; i < 1000; ++i) {
        Snapshot snapshot;
        take(3, snapshot, [&] { EXPECT_EQ(send_live(3, stream.frames[i % stream.frames.size()]), 0); });
        ASSERT_EQ(snapshot.result, 0) << i;
        ASSERT_NE(snapshot.frame.data, nullptr);
        if (i != 100) continue;
        bytes = process_counts::allocated_bytes();
        threads = process_counts::threads();
        descriptors = process_counts::descriptors();
    }
    EXPECT_EQ(process_counts::threads(), threads);
    EXPECT_EQ(process_counts::descriptors(), descriptors);
    // One image a snapshot, about 10 KiB, would be 9 MiB.
    EXPECT_TRUE(!process_counts::kCountsBytes || process_counts::allocated_bytes() < bytes + (256 << 10))
        << bytes << " bytes were allocated, now " << process_counts::allocated_bytes();
}

} // namespace
