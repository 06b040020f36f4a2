/* decoder_buffer_test.cpp - what a decoder channel is sent: the bounded buffer, stops, counters, times. */
#include <thread>

#include "decoder_board.h"

using namespace rig;

namespace
{

// Fill channel 0's buffer under step pacing: one picture queues at the display, then the decoder
// stands still and frees no more bytes.
void fill_buffer(const Bytes &frame)
{
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(send(0, frame), MI_SUCCESS);
    MI_VDEC_ChnStat stat = {};
    while (stat.left_stream_frames != 1) {
        ASSERT_EQ(MI_VDEC_GetChnStat(0, &stat), MI_SUCCESS);
        std::this_thread::yield();
    }
    int accepted = 0;
    while (send(0, frame, 0) == MI_SUCCESS)
        ASSERT_LT(++accepted, 1000);
}

// A queue of crumbs costs more than their bytes, so it ends before the buffer is full.
TEST_F(Decoder, TheNumberOfQueuedSendsIsBounded)
{
    const Stream stream = load_stream("h264_640x360");
    power_up();
    start_channel(0, stream.codec, MI_VDEC_MODE_FRAME, 60000);
    open_window(0, 0, 0, 640, 360);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    ASSERT_EQ(send(0, stream.frames[0]), MI_SUCCESS);
    ASSERT_EQ(vboard_display_wait_queued(0, 1, 1, kPatience_ms), 0); // nothing more is taken now
    const Bytes crumb(1);
    int accepted = 0;
    while (accepted < 60000 && send(0, crumb, 0) == MI_SUCCESS)
        ++accepted;
    EXPECT_GE(accepted, 4096);
    EXPECT_LE(accepted, 4097); // one may be in the worker's hands
}

TEST_F(Decoder, FullBufferRefusesAfterTheTimeOutOnTheBoardClock)
{
    const Stream stream = load_stream("h264_640x360");
    power_up();
    start_channel(0, stream.codec, MI_VDEC_MODE_FRAME, 60000);
    open_window(0, 0, 0, 640, 360);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    // A display that is never stepped holds the decoder back, so the buffer fills up.
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    const Bytes &frame = stream.frames[0];
    ASSERT_LT(frame.size(), 60000u);
    fill_buffer(frame);

    MI_VDEC_ChnStat stat = {};
    ASSERT_EQ(MI_VDEC_GetChnStat(0, &stat), MI_SUCCESS);
    EXPECT_GT(stat.left_stream_bytes, 60000u - frame.size());
    EXPECT_LE(stat.left_stream_bytes, 60000u);
    EXPECT_EQ(stat.left_stream_bytes, stat.left_stream_frames * frame.size());

    vboard_clock_take();
    std::thread sender([&] { EXPECT_EQ(send(0, frame, 20), code(MI_MODULE_VDEC, MI_REASON_BUFFER_FULL)); });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    ASSERT_EQ(vboard_clock_step_us(19999), 0);
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    ASSERT_EQ(vboard_clock_step_us(1), 0);
    sender.join();

    // Room made in time lets the sender in.
    std::thread patient([&] { EXPECT_EQ(send(0, frame, 20), MI_SUCCESS); });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    ASSERT_EQ(vboard_display_step(0), 1);
    patient.join();
}

TEST_F(Decoder, StopDiscardsWhatIsQueuedAndAStoppedSenderGoesHome)
{
    const Stream stream = load_stream("h264_640x360");
    power_up();
    start_channel(0, stream.codec, MI_VDEC_MODE_FRAME, 60000);
    open_window(0, 0, 0, 640, 360);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    fill_buffer(stream.frames[0]);
    vboard_clock_take();
    std::thread sender(
        [&] { EXPECT_EQ(send(0, stream.frames[0], 1000), code(MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED)); });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    ASSERT_EQ(MI_VDEC_StopChn(0), MI_SUCCESS);
    sender.join();
    MI_VDEC_ChnStat stat = {1, 1, 1};
    ASSERT_EQ(MI_VDEC_GetChnStat(0, &stat), MI_SUCCESS);
    EXPECT_EQ(stat.left_stream_bytes, 0u);
    EXPECT_EQ(stat.left_stream_frames, 0u);
    EXPECT_EQ(stat.left_pictures, 0u);
    EXPECT_EQ(counters(0).resets, 1u);
    ASSERT_EQ(MI_VDEC_StartChn(0), MI_SUCCESS);
    EXPECT_EQ(send(0, stream.frames[0], 0), MI_SUCCESS);
}

TEST_F(Decoder, AfterAStopPicturesComeFromAKeyFrameOn)
{
    const Stream stream = load_stream("h264_640x360"); // a key frame every 10
    show_channel_0(stream.codec);
    for (int frame = 0; frame < 3; ++frame)
        send_and_settle(0, stream.frames[static_cast<size_t>(frame)]);
    ASSERT_EQ(MI_VDEC_StopChn(0), MI_SUCCESS);
    ASSERT_EQ(MI_VDEC_StartChn(0), MI_SUCCESS);
    for (size_t frame = 3; frame < 10; ++frame) {
        send_and_settle(0, stream.frames[frame]);
        EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 2u); // the last good one stays
    }
    send_and_settle(0, stream.frames[10]);
    EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 10u);
}

TEST_F(Decoder, CountsSentDecodedShownAndDropped)
{
    const Stream stream = load_stream("h264_640x360");
    vboard_clock_take();
    show_channel_0(stream.codec);
    uint64_t bytes = 0;
    for (size_t frame = 0; frame < 10; ++frame) {
        send_and_settle(0, stream.frames[frame]);
        bytes += stream.frames[frame].size();
        // Two pictures a refresh of 60 Hz: the first of each pair is replaced unseen.
        if (frame % 2 == 1) {
            ASSERT_EQ(vboard_clock_step_us(16667), 0);
        }
    }
    const vboard_decoder_stat stat = counters(0);
    EXPECT_EQ(stat.frames_sent, 10u);
    EXPECT_EQ(stat.bytes_sent, bytes);
    EXPECT_EQ(stat.decoded, 10u);
    EXPECT_EQ(stat.shown, 5u);
    EXPECT_EQ(stat.dropped, 5u);
    EXPECT_EQ(port_state(0).shown, 5u);
    EXPECT_EQ(port_state(0).taken, 10u);
}

TEST_F(Decoder, KeepsTheTimeStampOfAFrame)
{
    const Stream stream = load_stream("h264_640x360");
    show_channel_0(stream.codec);
    ASSERT_EQ(send(0, stream.frames[0], -1, 0x123456789abcull), MI_SUCCESS);
    ASSERT_EQ(vboard_decoder_wait_idle(0, kPatience_ms), 0);
    EXPECT_EQ(port_state(0).picture_pts, 0x123456789abcull);
}

} // namespace
