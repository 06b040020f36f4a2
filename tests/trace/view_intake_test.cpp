/* ext_send_stream: gates, codec changes, picture sizes and delivery. */
#include "view_frame.h"

using namespace view_test;
using recording::platform;
using recording::trace;

namespace
{

class Intake : public RunningDecoders
{
};

class IntakeCodec : public RunningDecoders
{
};

TEST_F(Intake, HandsAFrameToTheDecoderOfItsChannel)
{
    std::vector<uint8_t> bytes = {0, 0, 0, 1, 0x40, 0x01};
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 3, bytes);
    EXPECT_EQ(ext_send_stream(&frame, 1, 0, 0), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VDEC_GetChnStat 3
        MI_VDEC_SendStream 3 {6 bytes pts 1234605616436508552 eof 0 eos 0} 20
    )"));
    ASSERT_EQ(platform.bytes_sent("MI_VDEC_SendStream").size(), 1u);
    EXPECT_EQ(platform.bytes_sent("MI_VDEC_SendStream")[0], bytes);
}

TEST_F(Intake, RecordsThePictureSizeForBothStreams)
{
    ASSERT_EQ(send_video(2), 0);
    EXPECT_EQ(major_stream[2].width, 1280u);
    EXPECT_EQ(major_stream[2].height, 720u);
    EXPECT_EQ(minor_stream[2].width, 1280u);
    EXPECT_EQ(minor_stream[2].height, 720u);
    EXPECT_EQ(major_stream[1].width, 0u);
    EXPECT_EQ(minor_stream[3].width, 0u);
}

TEST_F(Intake, RecordsThePictureSizeOfHiddenChannelsToo)
{
    cur_display_chnn = 0;
    ASSERT_EQ(send_video(2), 0);
    EXPECT_EQ(major_stream[2].width, 1280u);
}

TEST_F(Intake, DoesNotRecreateForAChangeOfSize)
{
    std::vector<uint8_t> bytes(10);
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 0, bytes);
    ASSERT_EQ(ext_send_stream(&frame, 1, 0, 0), 0);
    frame.width = 640;
    frame.height = 360;
    ASSERT_EQ(ext_send_stream(&frame, 1, 0, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 0u);
    EXPECT_EQ(major_stream[0].width, 640u);
}

TEST_F(Intake, RefusesBadLengthsOfEveryKind)
{
    for (uint32_t media : {0u, 1u, 2u, 3u}) {
        for (uint32_t length : {0u, NVRHAL_MAX_SEND_BYTES + 1u, 0x80000000u, UINT32_MAX}) {
            SCOPED_TRACE(std::to_string(media) + ": " + std::to_string(length));
            std::vector<uint8_t> bytes(16);
            FrameInfo frame = frame_of(media, 0, bytes);
            frame.length = length;
            EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), -1);
        }
    }
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(recording::printed_text(), "") << "the length is looked at before the kind";
}

// In numbers, not by the public constant's name: whoever changes that is to see it here.
TEST_F(Intake, AcceptsTheLargestLength)
{
    std::vector<uint8_t> bytes(655360, 0x11);
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 0, bytes);
    EXPECT_EQ(ext_send_stream(&frame, 1, 0, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 0 {655360 bytes"), 1u);
    frame.media = FRAME_MEDIA_AUDIO;
    EXPECT_EQ(ext_send_stream(&frame, 1, 0, 0), 0);
    EXPECT_EQ(platform.count("MI_AO_SendFrame"),
              (655360u - NVRHAL_SOUND_HEADER_BYTES) / NVRHAL_SOUND_UNIT_BYTES);
}

TEST_F(Intake, RefusesAnInvalidFrameAloud)
{
    std::vector<uint8_t> bytes(16);
    FrameInfo frame = frame_of(FRAME_MEDIA_NONE, 0, bytes);
    EXPECT_EQ(ext_send_stream(&frame, 1, 0, 0), -1);
    EXPECT_PRINTED_WITHOUT_PREFIX("FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF");
    EXPECT_EQ(platform.calls(), "");
}

TEST_F(Intake, IgnoresOtherKinds)
{
    std::vector<uint8_t> bytes(16);
    for (uint32_t media : {3u, 17u, 0x80000001u, UINT32_MAX}) {
        FrameInfo frame = frame_of(media, 0, bytes);
        EXPECT_EQ(ext_send_stream(&frame, 5, 50, 0), 0);
    }
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(major_stream[0].width, 0u);
}

TEST_F(Intake, RefusesAMissingRecord)
{
    EXPECT_EQ(ext_send_stream(nullptr, 1, 0, 0), -1);
    EXPECT_EQ(platform.calls(), "");
}

TEST_F(Intake, RefusesVideoOfChannelsThatDoNotExist)
{
    for (uint32_t channel : {17u, 18u, 255u, 0x7FFFFFFFu, 0x80000000u, UINT32_MAX}) {
        SCOPED_TRACE(channel);
        EXPECT_EQ(send_video(channel), -1);
    }
    EXPECT_EQ(platform.calls(), "");
}

TEST_F(Intake, ServesChannelsUpToSixteen)
{
    g_vi_chn_num = 16;
    for (uint32_t channel = 0; channel <= 16; ++channel)
        EXPECT_EQ(send_video(channel), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 16"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 0u) << "all channels start with codec code 1";
}

TEST_F(IntakeCodec, AChangeRecreatesTheDecoderOnce)
{
    std::vector<uint8_t> bytes(8);
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 4, bytes);
    EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), 0);
    EXPECT_EQ(decoder_calls(), trace(R"(
        MI_VDEC_StopChn 4
        MI_VDEC_DestroyChn 4
        MI_VDEC_CreateChn 4 {h264 buffer 1048576 priority 0 max 1920x1080 mode 0 references 2 buffers 2}
        MI_VDEC_StartChn 4
        MI_VDEC_GetChnStat 4
        MI_VDEC_SendStream 4 {8 bytes pts 1234605616436508552 eof 0 eos 0} 20
    )"));
    platform.forget();
    EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_DestroyChn"), 0u);
    EXPECT_EQ(ext_send_stream(&frame, 1, 0, 0), 0);
    EXPECT_EQ(platform.count(
                  "MI_VDEC_CreateChn 4 {h265 buffer 1048576 priority 0 max 1920x1080 mode 0 references 2 "
                  "buffers 2}"),
              1u);
}

TEST_F(IntakeCodec, CountsEveryNewCodeAsAChange)
{
    std::vector<uint8_t> bytes(8);
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 4, bytes);
    for (uint32_t code : {0u, 2u, 5u, UINT32_MAX}) // H.264, all of them
        EXPECT_EQ(ext_send_stream(&frame, code, 0, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 4u);
}

TEST_F(IntakeCodec, RemembersTheCodeEvenWhenTheDecoderCannotBeRecreated)
{
    platform.be_lenient(); // the decoder is gone, and would take no frame
    std::vector<uint8_t> bytes(8);
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 4, bytes);
    platform.script("MI_VDEC_CreateChn").returns(0xA008000C);
    EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), 0) << "the result of the recreation is not checked";
    EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream"), 2u);
}

/* The code is noted before the decoder is recreated: a frame that comes meanwhile changes nothing. */
TEST_F(IntakeCodec, NotesTheCodeBeforeTheRecreation)
{
    platform.be_lenient(); // a frame is sent to a decoder that is being recreated
    std::vector<uint8_t> bytes(8);
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 4, bytes);
    platform.script("MI_VDEC_DestroyChn").once().fills([&](recording::Args &) {
        EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), 0);
    });
    EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream"), 2u);
}

TEST_F(IntakeCodec, KeepsChannelsApart)
{
    std::vector<uint8_t> bytes(8);
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 4, bytes);
    ASSERT_EQ(ext_send_stream(&frame, 0, 0, 0), 0);
    platform.forget();
    frame.channel = 5;
    ASSERT_EQ(ext_send_stream(&frame, 1, 0, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 0u);
}

/* The codec is looked at before the display filter: a hidden channel's decoder follows too. */
TEST_F(IntakeCodec, FollowsTheStreamOfAHiddenChannel)
{
    cur_display_chnn = 0;
    std::vector<uint8_t> bytes(8);
    FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 1, bytes);
    EXPECT_EQ(ext_send_stream(&frame, 0, 0, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream"), 0u);
}

TEST_F(Intake, ReportsAFailingDecoder)
{
    platform.script("MI_VDEC_SendStream").returns(0xA008000F);
    EXPECT_EQ(send_video(3), -1);
    EXPECT_EQ(decoder_calls(), trace(R"(
        MI_VDEC_GetChnStat 3
        MI_VDEC_SendStream 3 {100 bytes pts 1234605616436508552 eof 0 eos 0} 20
        MI_VDEC_StopChn 3
        MI_VDEC_StartChn 3
    )"));
    EXPECT_PRINTED_WITHOUT_PREFIX("Chnn = 3 MI_VDEC_SendStream failed errno 0xa008000f  vdec_venc.c #");
    EXPECT_PRINTED_WITHOUT_PREFIX("vdec_send_stream fail!vdec_venc.c,#");
}

} // namespace
