/* board_graph_test.cpp - bindings: what is refused, and what reaches a port after a change. */
#include "board_rig.h"
#include "mi_divp.h"

using namespace rig;

namespace
{

class Graph : public Board
{
};

TEST_F(Graph, NeedsTheMediaSystem)
{
    EXPECT_EQ(bind(0, 0), code(MI_MODULE_SYS, MI_REASON_NOT_READY));
}

TEST_F(Graph, RefusesAbsentEndsSecondBindingsAndWrongPairs)
{
    power_up();
    const int32_t absent = code(MI_MODULE_SYS, MI_REASON_ABSENT);
    EXPECT_EQ(bind(0, 0), absent); // no decoder yet
    start_channel(0, MI_VDEC_CODEC_H264);
    start_channel(1, MI_VDEC_CODEC_H264);
    EXPECT_EQ(bind(64, 0), absent);
    EXPECT_EQ(bind(0, 16), absent);
    EXPECT_EQ(bind(0, 0, 3), absent);
    EXPECT_EQ(bind(0, 0, -2), absent);
    EXPECT_EQ(bind(0, 0), MI_SUCCESS);
    EXPECT_EQ(bind(0, 0), code(MI_MODULE_SYS, MI_REASON_EXISTS));
    EXPECT_EQ(bind(1, 0), code(MI_MODULE_SYS, MI_REASON_EXISTS));
    EXPECT_EQ(bind(0, 1), MI_SUCCESS); // one source, two sinks
    EXPECT_EQ(bind(0, 0, 2), MI_SUCCESS);
    EXPECT_EQ(bind(1, 0, -1), MI_SUCCESS);

    const MI_SYS_ChnPort decoder = vdec_end(0);
    const MI_SYS_ChnPort port = disp_end(5);
    const MI_SYS_ChnPort zero = {};
    EXPECT_EQ(MI_SYS_BindChnPort(&port, &decoder, 15, 15), code(MI_MODULE_SYS, MI_REASON_UNSUPPORTED));
    EXPECT_EQ(MI_SYS_BindChnPort(&zero, &port, 15, 15), code(MI_MODULE_SYS, MI_REASON_UNSUPPORTED));
    EXPECT_EQ(MI_SYS_BindChnPort(nullptr, &port, 15, 15), code(MI_MODULE_SYS, MI_REASON_NULL_POINTER));
    EXPECT_EQ(MI_SYS_BindChnPort(&decoder, nullptr, 15, 15), code(MI_MODULE_SYS, MI_REASON_NULL_POINTER));
}

TEST_F(Graph, UnbindsOnlyWhatIsBoundThisWay)
{
    power_up();
    start_channel(0, MI_VDEC_CODEC_H264);
    start_channel(1, MI_VDEC_CODEC_H264);
    const int32_t absent = code(MI_MODULE_SYS, MI_REASON_ABSENT);
    EXPECT_EQ(unbind(0, 0), absent);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    EXPECT_EQ(unbind(1, 0), absent);
    EXPECT_EQ(unbind(0, 1), absent);
    EXPECT_EQ(unbind(0, 0, 2), absent);
    const MI_SYS_ChnPort zero = {};
    const MI_SYS_ChnPort port = disp_end(0);
    EXPECT_EQ(MI_SYS_UnBindChnPort(&zero, &port), absent);
    EXPECT_EQ(unbind(0, 0), MI_SUCCESS);
    EXPECT_EQ(unbind(0, 0), absent);
}

TEST_F(Graph, UnbindingWhatIsNotBoundIsNeitherPrintedNorCounted)
{
    power_up();
    start_channel(0, MI_VDEC_CODEC_H264);
    const uint64_t refusals = vboard_refusal_count();
    testing::internal::CaptureStderr();
    EXPECT_EQ(unbind(0, 0), code(MI_MODULE_SYS, MI_REASON_ABSENT));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(vboard_refusal_count(), refusals);
    EXPECT_EQ(unbind(1, 0), code(MI_MODULE_SYS, MI_REASON_ABSENT)); // no such decoder: a mistake
    EXPECT_EQ(unbind(0, 16), code(MI_MODULE_SYS, MI_REASON_ABSENT));
    EXPECT_EQ(vboard_refusal_count(), refusals + 2);
}

TEST_F(Graph, TheDecoderIsOneDeviceWhateverNumberTheSourceNames)
{
    power_up();
    start_channel(3, MI_VDEC_CODEC_H264);
    MI_SYS_ChnPort source = vdec_end(3);
    source.device = 2; // the library names the display's number here
    const MI_SYS_ChnPort sink = disp_end(3, 2);
    EXPECT_EQ(MI_SYS_BindChnPort(&source, &sink, 15, 15), MI_SUCCESS);
    EXPECT_EQ(MI_SYS_UnBindChnPort(&source, &sink), MI_SUCCESS);
}

TEST_F(Graph, ABindingOutlivesTheDecoderThatFeedsIt)
{
    const Stream stream = load_stream("h264_640x360");
    power_up();
    start_channel(0, MI_VDEC_CODEC_H265);
    open_window(0, 0, 0, 640, 360);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    ASSERT_EQ(MI_VDEC_StopChn(0), MI_SUCCESS);
    ASSERT_EQ(MI_VDEC_DestroyChn(0), MI_SUCCESS);
    start_channel(0, stream.codec);
    send_and_settle(0, stream.frames[0]);
    EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 0u);
    EXPECT_EQ(counters(0).recreations, 1u);
    EXPECT_EQ(unbind(0, 0), MI_SUCCESS);
}

TEST_F(Graph, AnUnboundPortKeepsItsPictureAndTakesNoMore)
{
    const Stream stream = load_stream("h264_640x360");
    power_up();
    start_channel(0, stream.codec);
    open_window(0, 0, 0, 640, 360);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    send_and_settle(0, stream.frames[0]);
    ASSERT_EQ(unbind(0, 0), MI_SUCCESS);
    send_and_settle(0, stream.frames[1]);
    EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 0u);
    EXPECT_EQ(counters(0).dropped, 1u);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    send_and_settle(0, stream.frames[2]);
    EXPECT_EQ(stamp_at(look(), 0, 0, 640, 360)->frame, 2u);
}

TEST_F(Graph, UnbindingDropsWhatTheOldSourceHadQueued)
{
    const Stream stream = load_stream("h264_640x360");
    power_up();
    start_channel(0, stream.codec);
    open_window(0, 0, 0, 640, 360);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    for (size_t frame = 0; frame < 5; ++frame)
        ASSERT_EQ(send(0, stream.frames[frame]), MI_SUCCESS);
    ASSERT_EQ(vboard_display_wait_queued(0, 1, 1, kPatience_ms), 0);
    ASSERT_EQ(unbind(0, 0), MI_SUCCESS); // lets the blocked worker go as well
    ASSERT_EQ(vboard_decoder_wait_idle(0, kPatience_ms), 0);
    EXPECT_EQ(vboard_display_step(0), 0);
    EXPECT_TRUE(look().is_black());
}

TEST_F(Graph, OneDecoderFeedsTwoDevices)
{
    const Stream stream = load_stream("h264_640x360");
    power_up();
    power_up(kTiming720p50, 2);
    start_channel(0, stream.codec);
    open_window(0, 0, 0, 640, 360);
    open_window(4, 320, 180, 640, 360, 2);
    ASSERT_EQ(bind(0, 0), MI_SUCCESS);
    ASSERT_EQ(bind(0, 4, 2), MI_SUCCESS);
    send_and_settle(0, stream.frames[0]);
    EXPECT_TRUE(look(0).part(0, 0, 640, 360) == look(2).part(320, 180, 640, 360));
    EXPECT_EQ(look(2).width, 1280);
}

TEST_F(Graph, AlowerSinkRatePassesPicturesInThatProportion)
{
    const Stream stream = load_stream("h264_640x360");
    power_up();
    start_channel(0, stream.codec);
    open_window(0, 0, 0, 640, 360);
    const MI_SYS_ChnPort source = vdec_end(0);
    const MI_SYS_ChnPort sink = disp_end(0);
    ASSERT_EQ(MI_SYS_BindChnPort(&source, &sink, 30, 10), MI_SUCCESS);
    for (const Bytes &frame : stream.frames)
        send_and_settle(0, frame);
    EXPECT_EQ(port_state(0).taken, stream.frames.size() / 3);
}

TEST_F(Graph, OneDecoderFeedsMorePortsThanADeviceHas)
{
    const Stream stream = load_stream("h264_640x360");
    power_up();
    power_up(kTiming720p50, 2);
    start_channel(0, stream.codec);
    for (uint32_t port = 0; port < MI_DISP_INPUT_PORTS; ++port) {
        open_window(port, 0, 0, 640, 360);
        ASSERT_EQ(bind(0, port), MI_SUCCESS);
    }
    open_window(0, 0, 0, 640, 360, 2);
    ASSERT_EQ(bind(0, 0, 2), MI_SUCCESS);
    send_and_settle(0, stream.frames[0]);
    EXPECT_EQ(stamp_at(look(2), 0, 0, 640, 360)->frame, 0u);
}

TEST_F(Graph, ScalersBelongToDevice0)
{
    power_up();
    start_channel(0, MI_VDEC_CODEC_H264);
    MI_DIVP_ChnAttr attr = {};
    attr.max_width = 640;
    attr.max_height = 360;
    ASSERT_EQ(MI_DIVP_CreateChn(3, &attr), MI_SUCCESS);
    const MI_SYS_ChnPort source = vdec_end(0);
    const MI_SYS_ChnPort foreign = {MI_MODULE_DIVP, 1, 3, 0};
    const MI_SYS_ChnPort scaler = {MI_MODULE_DIVP, 0, 3, 0};
    EXPECT_EQ(MI_SYS_BindChnPort(&source, &foreign, 15, 15), code(MI_MODULE_SYS, MI_REASON_ABSENT));
    EXPECT_EQ(MI_SYS_BindChnPort(&source, &scaler, 15, 15), MI_SUCCESS);
}

TEST_F(Graph, AnAbsentScalerCannotBeBound)
{
    power_up();
    start_channel(0, MI_VDEC_CODEC_H264);
    const MI_SYS_ChnPort source = vdec_end(0);
    const MI_SYS_ChnPort scaler = {MI_MODULE_DIVP, 0, 0, 0};
    EXPECT_EQ(MI_SYS_BindChnPort(&source, &scaler, 15, 15), code(MI_MODULE_SYS, MI_REASON_ABSENT));
}

} // namespace
