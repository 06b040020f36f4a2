/* snap_scaler_test.cpp - the board's scaler by itself: states, sizes, crops, queue, bindings. */
#include "board_rig.h"
#include "mi_divp.h"

using namespace rig;

namespace
{

class ScalerChannel : public Board
{
protected:
    static MI_SYS_ChnPort end(uint32_t channel = 0) { return {MI_MODULE_DIVP, 0, channel, 0}; }

    static void create(MI_DIVP_ChnAttr attr = {1920, 1080, 0, 0, 0, {0, 0, 0, 0}, 0, 0, {0, 0}})
    {
        ASSERT_EQ(MI_DIVP_CreateChn(0, &attr), MI_SUCCESS);
    }

    static int32_t set_output(uint32_t width, uint32_t height, uint32_t format = MI_PIXEL_YUV420_SEMIPLANAR,
                              uint32_t compression = 0)
    {
        const MI_DIVP_OutputPortAttr output = {width, height, format, compression};
        return MI_DIVP_SetOutputPortAttr(0, 0, &output);
    }

    /* Decoder 0 -> scaler 0 -> display port 0. */
    static void connect(int width, int height)
    {
        open_window(0, 0, 0, width, height);
        ASSERT_EQ(set_output(static_cast<uint32_t>(width), static_cast<uint32_t>(height)), MI_SUCCESS);
        const MI_SYS_ChnPort scaler = end(), display = disp_end(0), decoder = vdec_end(0);
        ASSERT_EQ(MI_SYS_BindChnPort(&scaler, &display, 10, 10), MI_SUCCESS);
        ASSERT_EQ(MI_DIVP_StartChn(0), MI_SUCCESS);
        ASSERT_EQ(MI_SYS_BindChnPort(&decoder, &scaler, 10, 10), MI_SUCCESS);
    }

    static void send_through(const Bytes &bytes)
    {
        ASSERT_EQ(vboard_display_mark(0), 0);
        ASSERT_EQ(send(0, bytes), MI_SUCCESS);
        ASSERT_EQ(vboard_display_wait_taken(0, 1, 1, kPatience_ms), 0);
    }
};

TEST_F(ScalerChannel, NeedsTheMediaSystemAndItsSteps)
{
    const MI_DIVP_ChnAttr attr = {640, 360, 0, 0, 0, {0, 0, 0, 0}, 0, 0, {0, 0}};
    EXPECT_EQ(MI_DIVP_CreateChn(0, &attr), code(MI_MODULE_DIVP, MI_REASON_NOT_READY));
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    const int32_t absent = code(MI_MODULE_DIVP, MI_REASON_ABSENT);
    MI_DIVP_OutputPortAttr output = {};
    EXPECT_EQ(MI_DIVP_StartChn(0), absent);
    EXPECT_EQ(MI_DIVP_StopChn(0), absent);
    EXPECT_EQ(MI_DIVP_DestroyChn(0), absent);
    EXPECT_EQ(MI_DIVP_GetOutputPortAttr(0, 0, &output), absent);
    EXPECT_EQ(set_output(64, 64), absent);
    EXPECT_EQ(MI_DIVP_CreateChn(16, &attr), code(MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL));
    EXPECT_EQ(MI_DIVP_CreateChn(0, nullptr), code(MI_MODULE_DIVP, MI_REASON_NULL_POINTER));

    ASSERT_EQ(MI_DIVP_CreateChn(0, &attr), MI_SUCCESS);
    EXPECT_EQ(MI_DIVP_CreateChn(0, &attr), code(MI_MODULE_DIVP, MI_REASON_EXISTS));
    EXPECT_EQ(MI_DIVP_StartChn(0), code(MI_MODULE_DIVP, MI_REASON_NOT_READY));
    EXPECT_EQ(set_output(64, 64), MI_SUCCESS);
    EXPECT_EQ(MI_DIVP_GetOutputPortAttr(0, 0, &output), MI_SUCCESS);
    EXPECT_EQ(output.width, 64u);
    EXPECT_EQ(MI_DIVP_GetOutputPortAttr(0, 1, &output), code(MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL));
    EXPECT_EQ(MI_DIVP_StartChn(0), MI_SUCCESS);
    EXPECT_EQ(MI_DIVP_StartChn(0), MI_SUCCESS);
    EXPECT_EQ(MI_DIVP_DestroyChn(0), code(MI_MODULE_DIVP, MI_REASON_NOT_PERMITTED));
    EXPECT_EQ(MI_DIVP_StopChn(0), MI_SUCCESS);
    EXPECT_EQ(MI_DIVP_StopChn(0), MI_SUCCESS);
    EXPECT_EQ(MI_DIVP_DestroyChn(0), MI_SUCCESS);
}

TEST_F(ScalerChannel, RefusesWhatItCannotDo)
{
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    const int32_t bad = code(MI_MODULE_DIVP, MI_REASON_BAD_VALUE);
    const int32_t unsupported = code(MI_MODULE_DIVP, MI_REASON_UNSUPPORTED);
    const struct {
        MI_DIVP_ChnAttr attr;
        int32_t result;
    } rows[] = {
        {{0, 360, 0, 0, 0, {0, 0, 0, 0}, 0, 0, {0, 0}}, bad},
        {{640, 5000, 0, 0, 0, {0, 0, 0, 0}, 0, 0, {0, 0}}, bad},
        {{640, 360, 1, 0, 0, {0, 0, 0, 0}, 0, 0, {0, 0}}, unsupported},
        {{640, 360, 0, 1, 0, {0, 0, 0, 0}, 0, 0, {0, 0}}, unsupported},
        {{640, 360, 0, 0, 1, {0, 0, 0, 0}, 0, 0, {0, 0}}, unsupported},
        {{640, 360, 0, 0, 0, {0, 0, 0, 0}, 1, 0, {0, 0}}, unsupported},
        {{640, 360, 0, 0, 0, {0, 0, 0, 0}, 0, 1, {0, 0}}, unsupported},
        {{640, 360, 0, 0, 0, {1, 0, 64, 64}, 0, 0, {0, 0}}, bad},
        {{640, 360, 0, 0, 0, {600, 0, 64, 64}, 0, 0, {0, 0}}, bad},
    };
    for (const auto &row : rows)
        EXPECT_EQ(MI_DIVP_CreateChn(0, &row.attr), row.result);
    create();
    EXPECT_EQ(set_output(0, 288), bad);
    EXPECT_EQ(set_output(353, 288), bad);
    EXPECT_EQ(set_output(352, 8192), bad);
    EXPECT_EQ(set_output(352, 288, MI_PIXEL_YUV420_LAYER), unsupported);
    EXPECT_EQ(set_output(352, 288, MI_PIXEL_YUV420_SEMIPLANAR, 1), unsupported);
    const MI_SYS_ChnPort port = end(), other = end(3);
    EXPECT_EQ(MI_SYS_SetChnOutputPortDepth(&port, 0, 3), MI_SUCCESS);
    EXPECT_EQ(MI_SYS_SetChnOutputPortDepth(&port, 0, 1000), bad);
    EXPECT_EQ(MI_SYS_SetChnOutputPortDepth(&other, 0, 3), code(MI_MODULE_DIVP, MI_REASON_ABSENT));
}

TEST_F(ScalerChannel, ScalesDownAndUp)
{
    power_up();
    start_channel(0, MI_VDEC_CODEC_H264);
    const Stream stream = load_stream("h264_640x360");
    const Picture picture = reference_decode(stream)[0];
    for (const auto &[width, height] : {std::pair{352, 288}, std::pair{960, 540}, std::pair{640, 360}}) {
        create();
        connect(width, height);
        send_through(stream.frames[0]);
        EXPECT_EQ(look().part(0, 0, width, height), scaled(picture, width, height));
        const MI_SYS_ChnPort scaler = end(), display = disp_end(0), decoder = vdec_end(0);
        EXPECT_EQ(MI_SYS_UnBindChnPort(&decoder, &scaler), MI_SUCCESS);
        EXPECT_EQ(MI_SYS_UnBindChnPort(&scaler, &display), MI_SUCCESS);
        EXPECT_EQ(MI_DIVP_StopChn(0), MI_SUCCESS);
        EXPECT_EQ(MI_DIVP_DestroyChn(0), MI_SUCCESS);
    }
}

TEST_F(ScalerChannel, CutsAPartOut)
{
    power_up();
    start_channel(0, MI_VDEC_CODEC_H264);
    const Stream stream = load_stream("h264_640x360");
    create({640, 360, 0, 0, 0, {64, 32, 320, 180}, 0, 0, {0, 0}});
    connect(160, 90);
    send_through(stream.frames[0]);
    EXPECT_EQ(look().part(0, 0, 160, 90),
              scaled(reference_decode(stream)[0].part(64, 32, 320, 180), 160, 90));
}

/* Scaled twice where the decoder's output port is smaller than the stream and differs from the output. */
TEST_F(ScalerChannel, StartsFromThePictureThatTheDecoderDelivers)
{
    power_up();
    start_channel(0, MI_VDEC_CODEC_H264);
    const MI_VDEC_OutputPortAttr delivered = {320, 180};
    ASSERT_EQ(MI_VDEC_SetOutputPortAttr(0, &delivered), MI_SUCCESS);
    const Stream stream = load_stream("h264_640x360");
    create();
    connect(352, 288);
    send_through(stream.frames[0]);
    EXPECT_EQ(look().part(0, 0, 352, 288), scaled(scaled(reference_decode(stream)[0], 320, 180), 352, 288));
}

TEST_F(ScalerChannel, TakesNothingLargerThanItWasMadeFor)
{
    power_up();
    vboard_set_loud(0);
    start_channel(0, MI_VDEC_CODEC_H264);
    create({320, 180, 0, 0, 0, {0, 0, 0, 0}, 0, 0, {0, 0}});
    connect(352, 288);
    send_and_settle(0, load_stream("h264_640x360").frames[0]);
    EXPECT_EQ(port_state(0).taken, 0u);
}

/* A sink that stands still holds the scaler back, and the scaler drops; the decoder goes on. */
TEST_F(ScalerChannel, NeverHoldsItsDecoderBack)
{
    power_up();
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    start_channel(0, MI_VDEC_CODEC_H264);
    create();
    const MI_SYS_ChnPort scaler = end();
    ASSERT_EQ(MI_SYS_SetChnOutputPortDepth(&scaler, 0, 3), MI_SUCCESS);
    connect(352, 288);
    const Stream stream = load_stream("h264_640x360");
    for (const Bytes &frame : stream.frames)
        send_and_settle(0, frame);
    EXPECT_EQ(counters(0).decoded, stream.frames.size());
    EXPECT_EQ(MI_DIVP_StopChn(0), MI_SUCCESS); // also while its worker waits for the port
}

TEST_F(ScalerChannel, BindingsNeedBothEnds)
{
    power_up();
    start_channel(0, MI_VDEC_CODEC_H264);
    const MI_SYS_ChnPort scaler = end(), decoder = vdec_end(0), display = disp_end(0);
    EXPECT_EQ(MI_SYS_BindChnPort(&decoder, &scaler, 10, 10), code(MI_MODULE_SYS, MI_REASON_ABSENT));
    EXPECT_EQ(MI_SYS_BindChnPort(&scaler, &display, 10, 10), code(MI_MODULE_SYS, MI_REASON_ABSENT));
    create();
    EXPECT_EQ(MI_SYS_BindChnPort(&decoder, &scaler, 10, 10), MI_SUCCESS);
    EXPECT_EQ(MI_SYS_BindChnPort(&decoder, &scaler, 10, 10), code(MI_MODULE_SYS, MI_REASON_EXISTS));
    EXPECT_EQ(MI_SYS_BindChnPort(&scaler, &decoder, 10, 10), code(MI_MODULE_SYS, MI_REASON_UNSUPPORTED));
}

} // namespace
