/* decoder_test.cpp - decoder channels: states, attributes, and the pictures they give. */
#include <cstring>
#include <ostream>
#include <thread>

#include "decoder_board.h"

using namespace rig;

namespace
{

TEST_F(Decoder, NeedsTheMediaSystem)
{
    const MI_VDEC_ChnAttr attr = channel_attr(MI_VDEC_CODEC_H264);
    EXPECT_EQ(MI_VDEC_CreateChn(0, &attr), code(MI_MODULE_VDEC, MI_REASON_NOT_READY));
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    EXPECT_EQ(MI_VDEC_CreateChn(0, &attr), MI_SUCCESS);
}

TEST_F(Decoder, RefusesWhatItsStateDoesNotAllow)
{
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    const MI_VDEC_ChnAttr attr = channel_attr(MI_VDEC_CODEC_H264);
    const Bytes byte(1);
    const int32_t absent = code(MI_MODULE_VDEC, MI_REASON_ABSENT);
    MI_VDEC_ChnStat stat;
    MI_VDEC_ChnAttr read;
    MI_VDEC_OutputPortAttr output = {};
    EXPECT_EQ(MI_VDEC_StartChn(5), absent);
    EXPECT_EQ(MI_VDEC_StopChn(5), absent);
    EXPECT_EQ(MI_VDEC_DestroyChn(5), absent);
    EXPECT_EQ(MI_VDEC_GetChnAttr(5, &read), absent);
    EXPECT_EQ(MI_VDEC_GetChnStat(5, &stat), absent);
    EXPECT_EQ(MI_VDEC_GetOutputPortAttr(5, &output), absent);
    EXPECT_EQ(MI_VDEC_SetOutputPortAttr(5, &output), absent);
    EXPECT_EQ(send(5, byte), absent);

    ASSERT_EQ(MI_VDEC_CreateChn(5, &attr), MI_SUCCESS);
    EXPECT_EQ(MI_VDEC_CreateChn(5, &attr), code(MI_MODULE_VDEC, MI_REASON_EXISTS));
    EXPECT_EQ(send(5, byte), code(MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED));
    EXPECT_EQ(MI_VDEC_StopChn(5), MI_SUCCESS);
    EXPECT_EQ(MI_VDEC_StartChn(5), MI_SUCCESS);
    EXPECT_EQ(MI_VDEC_StartChn(5), MI_SUCCESS);
    EXPECT_EQ(MI_VDEC_DestroyChn(5), code(MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED));
    EXPECT_EQ(MI_VDEC_StopChn(5), MI_SUCCESS);
    EXPECT_EQ(MI_VDEC_DestroyChn(5), MI_SUCCESS);
    EXPECT_EQ(MI_VDEC_CreateChn(5, &attr), MI_SUCCESS);
}

TEST_F(Decoder, RefusesChannelsItDoesNotHave)
{
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    const MI_VDEC_ChnAttr attr = channel_attr(MI_VDEC_CODEC_H264);
    const Bytes byte(1);
    for (const uint32_t channel : {64u, 65u, 0x7fffffffu, 0xffffffffu}) {
        EXPECT_EQ(MI_VDEC_CreateChn(channel, &attr), code(MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL));
        EXPECT_EQ(MI_VDEC_StopChn(channel), code(MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL));
        EXPECT_EQ(send(channel, byte), code(MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL));
    }
    EXPECT_EQ(MI_VDEC_CreateChn(63, &attr), MI_SUCCESS);
}

TEST_F(Decoder, RefusesNullRecordsAndBadFields)
{
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    const int32_t null = code(MI_MODULE_VDEC, MI_REASON_NULL_POINTER);
    const int32_t bad = code(MI_MODULE_VDEC, MI_REASON_BAD_VALUE);
    EXPECT_EQ(MI_VDEC_CreateChn(0, nullptr), null);
    MI_VDEC_ChnAttr attr = channel_attr(3);
    EXPECT_EQ(MI_VDEC_CreateChn(0, &attr), bad);
    attr = channel_attr(MI_VDEC_CODEC_H264, 2);
    EXPECT_EQ(MI_VDEC_CreateChn(0, &attr), bad);
    attr = channel_attr(MI_VDEC_CODEC_H264, MI_VDEC_MODE_FRAME, 0);
    EXPECT_EQ(MI_VDEC_CreateChn(0, &attr), bad);

    start_channel(0, MI_VDEC_CODEC_H264, MI_VDEC_MODE_FRAME, 1000);
    EXPECT_EQ(MI_VDEC_GetChnAttr(0, nullptr), null);
    EXPECT_EQ(MI_VDEC_GetChnStat(0, nullptr), null);
    EXPECT_EQ(MI_VDEC_GetOutputPortAttr(0, nullptr), null);
    EXPECT_EQ(MI_VDEC_SetOutputPortAttr(0, nullptr), null);
    EXPECT_EQ(MI_VDEC_SendStream(0, nullptr, 0), null);
    MI_VDEC_Stream stream = {};
    stream.length_bytes = 10;
    EXPECT_EQ(MI_VDEC_SendStream(0, &stream, 0), null);
    const uint8_t byte = 0;
    stream.address = &byte;
    stream.length_bytes = 0;
    EXPECT_EQ(MI_VDEC_SendStream(0, &stream, 0), bad);
    EXPECT_EQ(send(0, Bytes(1001)), bad);
    EXPECT_EQ(counters(0).sends_refused, 4u);
}

TEST_F(Decoder, GivesBackTheAttributesOfItsCreation)
{
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    MI_VDEC_ChnAttr attr = channel_attr(MI_VDEC_CODEC_H265);
    attr.max_width = 1366;
    ASSERT_EQ(MI_VDEC_CreateChn(2, &attr), MI_SUCCESS);
    MI_VDEC_ChnAttr read = {};
    ASSERT_EQ(MI_VDEC_GetChnAttr(2, &read), MI_SUCCESS);
    EXPECT_EQ(memcmp(&attr, &read, sizeof attr), 0);
    MI_VDEC_OutputPortAttr output = {1, 1};
    ASSERT_EQ(MI_VDEC_GetOutputPortAttr(2, &output), MI_SUCCESS);
    EXPECT_EQ(output.width, 0);
    EXPECT_EQ(output.height, 0);
    output = {960, 540};
    ASSERT_EQ(MI_VDEC_SetOutputPortAttr(2, &output), MI_SUCCESS);
    output = {};
    ASSERT_EQ(MI_VDEC_GetOutputPortAttr(2, &output), MI_SUCCESS);
    EXPECT_EQ(output.width, 960);
}

struct PixelCase {
    const char *stream;
    int window_width, window_height;

    friend void PrintTo(const PixelCase &tested, std::ostream *out)
    {
        *out << tested.stream << " in " << tested.window_width << "x" << tested.window_height;
    }
};

class DecoderPixels : public Board, public testing::WithParamInterface<PixelCase>
{
};

TEST_P(DecoderPixels, EqualTheReferenceDecoderAndScalerFrameByFrame)
{
    const PixelCase &param = GetParam();
    const Stream stream = load_stream(param.stream);
    const std::vector<Picture> expected = reference_decode(stream);
    ASSERT_EQ(expected.size(), stream.frames.size());
    show_channel_0(stream.codec, MI_VDEC_MODE_FRAME, param.window_width, param.window_height);
    for (size_t frame = 0; frame < stream.frames.size(); ++frame) {
        send_and_settle(0, stream.frames[frame]);
        const Picture pane = look().part(0, 0, param.window_width, param.window_height);
        ASSERT_TRUE(pane == scaled(expected[frame], param.window_width, param.window_height))
            << "frame " << frame;
        const auto read = stamp_at(pane, 0, 0, pane.width, pane.height);
        ASSERT_TRUE(read) << "frame " << frame;
        ASSERT_EQ(read->frame, frame);
    }
    EXPECT_EQ(counters(0).decoded, stream.frames.size());
    EXPECT_EQ(counters(0).decode_errors, 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Streams, DecoderPixels,
    testing::Values(PixelCase{"h264_640x360", 640, 360}, PixelCase{"h264_640x360", 320, 180},
                    PixelCase{"h265_640x360", 480, 270}, PixelCase{"h264_704x576", 480, 270},
                    PixelCase{"h265_1280x720", 640, 360}, PixelCase{"h264_640x360", 1280, 720}));

TEST_F(Decoder, StreamModeTakesAnyCutOfTheByteStream)
{
    for (const char *name : {"h264_640x360", "h265_640x360"}) {
        for (const size_t cut : {size_t{1}, size_t{37}, size_t{1000}, size_t{100000}}) {
            vboard_reset();
            const Stream stream = load_stream(name);
            show_channel_0(stream.codec, MI_VDEC_MODE_STREAM);
            const Bytes all = stream.joined();
            const size_t length = cut == 1 ? std::min<size_t>(all.size(), 40000) : all.size();
            for (size_t at = 0; at < length; at += cut) {
                const size_t end = std::min(length, at + cut);
                ASSERT_EQ(send(0, Bytes(all.begin() + static_cast<ptrdiff_t>(at),
                                        all.begin() + static_cast<ptrdiff_t>(end))),
                          MI_SUCCESS);
            }
            ASSERT_EQ(vboard_decoder_wait_idle(0, kPatience_ms), 0);
            EXPECT_EQ(counters(0).decode_errors, 0u) << name << " cut " << cut;
            if (cut == 1)
                EXPECT_GT(counters(0).decoded, 0u);
            else // the last frame stays open until the next one begins
                EXPECT_EQ(counters(0).decoded, stream.frames.size() - 1) << name << " cut " << cut;
        }
    }
}

TEST_F(Decoder, StreamModeGivesTheLastFrameWhenASendEndsIt)
{
    const Stream stream = load_stream("h264_640x360");
    show_channel_0(stream.codec, MI_VDEC_MODE_STREAM);
    for (const Bytes &frame : stream.frames) {
        MI_VDEC_Stream piece = {};
        piece.address = frame.data();
        piece.length_bytes = static_cast<uint32_t>(frame.size());
        piece.end_of_frame = 1;
        ASSERT_EQ(MI_VDEC_SendStream(0, &piece, -1), MI_SUCCESS);
    }
    ASSERT_EQ(vboard_decoder_wait_idle(0, kPatience_ms), 0);
    EXPECT_EQ(counters(0).decoded, stream.frames.size());
}

TEST_F(Decoder, PicturesLeaveInDisplayOrderWithBFrames)
{
    const Stream stream = load_stream("h264_bframes");
    const std::vector<Picture> expected = reference_decode(stream);
    show_channel_0(stream.codec);
    ASSERT_EQ(vboard_display_set_pacing(0, VBOARD_PACING_STEP), 0);
    std::thread sender([&] {
        for (size_t frame = 0; frame < stream.frames.size(); ++frame) {
            MI_VDEC_Stream piece = {};
            piece.address = stream.frames[frame].data();
            piece.length_bytes = static_cast<uint32_t>(stream.frames[frame].size());
            piece.end_of_stream = frame + 1 == stream.frames.size() ? 1 : 0;
            EXPECT_EQ(MI_VDEC_SendStream(0, &piece, -1), MI_SUCCESS);
        }
    });
    for (const Picture &picture : expected) {
        EXPECT_EQ(vboard_display_wait_queued(0, 1, 1, kPatience_ms), 0);
        EXPECT_EQ(vboard_display_step(0), 1);
        EXPECT_TRUE(look().part(0, 0, 640, 360) == picture);
    }
    sender.join();
}

TEST_F(Decoder, JpegPicturesDecodeToLimitedRange)
{
    const Stream stream = load_stream("jpeg_320x240");
    show_channel_0(stream.codec, MI_VDEC_MODE_FRAME, 320, 240);
    for (size_t frame = 0; frame < stream.frames.size(); ++frame) {
        send_and_settle(0, stream.frames[frame]);
        const Picture pane = look().part(0, 0, 320, 240);
        const auto read = stamp_at(pane, 0, 0, 320, 240);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->frame, frame);
        // Full-range black of 16 in the stamp is limited-range 16 + 16 * 219 / 255 = 30.
        EXPECT_NEAR(pane.luma()[9 * 320 + 320 * 15 / 32], 30, 4);
    }
}

TEST_F(Decoder, OutputPortScalesDownButNeverUp)
{
    struct Case {
        const char *stream;
        uint16_t set_width, set_height;
        uint32_t width, height;
    };
    const Case cases[] = {
        {"h264_704x576", 960, 540, 704, 540}, {"h264_704x576", 0, 0, 704, 576},
        {"h264_704x576", 352, 288, 352, 288}, {"h264_704x576", 1920, 1080, 704, 576},
        {"h264_704x576", 0, 288, 704, 288},
    };
    for (const Case &one : cases) {
        vboard_reset();
        const Stream stream = load_stream(one.stream);
        show_channel_0(stream.codec);
        const MI_VDEC_OutputPortAttr output = {one.set_width, one.set_height};
        ASSERT_EQ(MI_VDEC_SetOutputPortAttr(0, &output), MI_SUCCESS);
        send_and_settle(0, stream.frames[0]);
        EXPECT_EQ(port_state(0).picture_width, one.width);
        EXPECT_EQ(port_state(0).picture_height, one.height);
    }
}

TEST_F(Decoder, AReducedPictureEnlargedAgainHasLostItsDetail)
{
    const Stream stream = load_stream("h264_704x576");
    const std::vector<Picture> expected = reference_decode(stream);
    show_channel_0(stream.codec, MI_VDEC_MODE_FRAME, 704, 576);
    const MI_VDEC_OutputPortAttr output = {176, 144};
    ASSERT_EQ(MI_VDEC_SetOutputPortAttr(0, &output), MI_SUCCESS);
    send_and_settle(0, stream.frames[0]);
    EXPECT_TRUE(look().part(0, 0, 704, 576) == scaled(scaled(expected[0], 176, 144), 704, 576));
}

TEST_F(Decoder, FollowsASizeChangeInMidStream)
{
    const Stream small = load_stream("h264_640x360");
    const Stream large = load_stream("h264_704x576");
    const std::vector<Picture> expected = reference_decode(large);
    show_channel_0(small.codec);
    send_and_settle(0, small.frames[0]);
    EXPECT_EQ(counters(0).width, 640u);
    send_and_settle(0, large.frames[0]);
    EXPECT_EQ(counters(0).width, 704u);
    EXPECT_EQ(counters(0).height, 576u);
    EXPECT_TRUE(look().part(0, 0, 640, 360) == scaled(expected[0], 640, 360));
    EXPECT_EQ(counters(0).decode_errors, 0u);
}

} // namespace
