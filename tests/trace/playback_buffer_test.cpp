/* ext_playback_get_buf and ext_playback_set_buf: one buffer out and in, by its length and kind; video. */
#include "audio/audio.h"
#include "core/device_state.h"
#include "playback_delivery.h"
#include "view_frame.h"

using namespace view_test;
using recording::platform;
using recording::trace;

namespace
{

class PlaybackSetBuf : public RunningDecoders
{
};

constexpr uint32_t kBufferBytes = NVRHAL_MAX_SEND_BYTES;

FrameInfo video_of(uint32_t channel, std::vector<uint8_t> &bytes, uint32_t rate_mode = 0)
{
    FrameInfo rec = frame_of(FRAME_MEDIA_VIDEO, channel, bytes);
    rec.display_rate = rate_mode;
    return rec;
}

/** How the calls of one video buffer of mode 0 begin. */
const char kRateRead[] = "MI_DISP_GetPubAttr 0\n";

void give_device_0(uint32_t frame_rate)
{
    MI_DISP_PubAttr attr = {0x112233, 5, 8, frame_rate};
    MI_DISP_SetPubAttr(0, &attr);
    platform.forget();
}

TEST(PlaybackGetBuf, HandsOutTheOneBuffer)
{
    FrameInfo first = {}, second = {};
    first.channel = 3;
    EXPECT_EQ(ext_playback_get_buf(&first), 0);
    EXPECT_EQ(ext_playback_get_buf(&second), 0);
    EXPECT_EQ(first.length, kBufferBytes);
    ASSERT_NE(first.data, nullptr);
    EXPECT_EQ(first.data, second.data);
    EXPECT_EQ(first.channel, 3u);
    static_cast<uint8_t *>(first.data)[0] = 1; // it is writable to its end
    static_cast<uint8_t *>(first.data)[kBufferBytes - 1] = 1;
    EXPECT_EQ(nvrhal::u32BufLen, kBufferBytes);
    EXPECT_EQ(ext_playback_get_buf(nullptr), -1);
}

TEST_F(PlaybackSetBuf, RefusesNull)
{
    EXPECT_EQ(ext_playback_set_buf(nullptr), -1);
    EXPECT_EQ(platform.calls(), "");
}

TEST_F(PlaybackSetBuf, ABadLengthIsTheFlushSignalWhateverTheKind)
{
    std::vector<uint8_t> bytes(8);
    globalVoDev = 2;
    for (uint32_t length : {0u, kBufferBytes + 1, 0xFFFFFFFFu})
        for (uint32_t media : {0u, 1u, 2u, 9u}) {
            FrameInfo rec = frame_of(media, 77, bytes);
            rec.length = length;
            platform.forget();
            EXPECT_EQ(deliver(rec), 1);
            EXPECT_EQ(platform.calls(), trace("MI_DISP_ClearInputPortBuffer 2 77 1"));
        }
}

TEST_F(PlaybackSetBuf, AFlushThatFailsIsSaid)
{
    std::vector<uint8_t> bytes;
    platform.script("MI_DISP_ClearInputPortBuffer").returns(kDisplayRefused);
    platform.script("MI_DISP_ClearInputPortBuffer").nth(2).returns(5); // any code but 0
    for (const char *code : {"a00f0003", "5"}) {
        FrameInfo rec = video_of(1, bytes);
        EXPECT_EQ(deliver(rec), -1);
        EXPECT_PRINTED("[vdec_venc.c-#] Vo fault to clear buffer errno is 0x" + std::string(code));
    }
}

TEST_F(PlaybackSetBuf, SendsVideoToItsDecoder)
{
    std::vector<uint8_t> bytes = {9, 8, 7, 6, 5};
    FrameInfo rec = video_of(7, bytes);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_EQ(platform.calls(), trace(std::string(kRateRead) + R"(
        MI_VDEC_SendStream 7 {5 bytes pts 1234605616436508552 eof 0 eos 0} 20
        MI_VDEC_GetChnStat 7
    )"));
    EXPECT_EQ(platform.bytes_sent("MI_VDEC_SendStream").at(0), bytes);
}

TEST_F(PlaybackSetBuf, TakesTheLongestBuffer)
{
    std::vector<uint8_t> bytes(kBufferBytes);
    FrameInfo rec = video_of(0, bytes);
    EXPECT_EQ(deliver(rec), 0);
    // In numbers, not by the public constant's name: whoever changes that is to see it here.
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 0 {655360 bytes"), 1u);
}

TEST_F(PlaybackSetBuf, ASendThatFailsResetsTheDecoder)
{
    std::vector<uint8_t> bytes(5);
    platform.script("MI_VDEC_SendStream").returns(kDisplayRefused);
    FrameInfo rec = video_of(4, bytes);
    EXPECT_EQ(deliver(rec), -1);
    EXPECT_EQ(platform.count("MI_VDEC_StartChn 4"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_GetChnStat"), 0u);
}

TEST_F(PlaybackSetBuf, DropsVideoOfChannel8ButHasTouchedTheDisplayRate)
{
    std::vector<uint8_t> bytes(5);
    give_device_0(30);
    for (uint32_t channel : {8u, 16u, 0xFFFFFFFFu}) {
        platform.forget();
        FrameInfo rec = video_of(channel, bytes, 2);
        EXPECT_EQ(deliver(rec), 0);
        EXPECT_EQ(platform.calls(), trace(R"(
            MI_DISP_GetPubAttr 0
            MI_DISP_SetPubAttr 0 {background 0x112233 interface 5 timing 8 rate 60}
        )"));
    }
}

TEST_F(PlaybackSetBuf, ShowsDoubleRateAtTwiceTheStandardsRate)
{
    std::vector<uint8_t> bytes(5);
    give_device_0(30);
    FrameInfo rec = video_of(0, bytes, 2);
    EXPECT_EQ(local_get_videoformat(), 0);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr 0 {background 0x112233 interface 5 timing 8 rate 60}"), 1u);
}

TEST_F(PlaybackSetBuf, DoublesTheRateOfTheVideoStandard)
{
    std::vector<uint8_t> bytes(5);
    const struct {
        uint32_t standard, rate;
    } rows[] = {{0, 60}, {1, 50}, {2, 60}, {0xFFFFFFFF, 60}}; // 1 is the one of 25 frames
    give_device_0(30);
    for (const auto &row : rows) {
        platform.forget();
        nvrhal::global_videofomat = row.standard;
        EXPECT_EQ(local_get_videoformat(), static_cast<int32_t>(row.standard));
        FrameInfo rec = video_of(0, bytes, 2);
        EXPECT_EQ(deliver(rec), 0);
        EXPECT_EQ(platform.count("MI_DISP_SetPubAttr 0 {background 0x112233 interface 5 timing 8 rate " +
                                 std::to_string(row.rate) + "}"),
                  1u)
            << row.standard;
    }
}

/* Only negative results are failures; what a platform counts otherwise is not. */
TEST_F(PlaybackSetBuf, SaysNothingOfPositiveResults)
{
    std::vector<uint8_t> video(5), control = {1, 1, 0, 0, 0, 0, 0, 0};
    for (const int32_t result : {0, 5}) {
        for (const char *call : {"MI_DISP_GetPubAttr", "MI_DISP_SetPubAttr", "MI_DISP_ClearInputPortBuffer"})
            platform.script(call).returns(result);
        for (uint32_t mode : {1u, 2u}) {
            FrameInfo rec = video_of(0, video, mode), clear = video_of(0, control, mode);
            EXPECT_EQ(deliver(rec), 0);
            EXPECT_EQ(deliver(clear), 0);
        }
    }
    EXPECT_EQ(recording::printed_text(), "");
}

TEST_F(PlaybackSetBuf, DoublesTheRateOfARecordReadWithAPositiveResult)
{
    std::vector<uint8_t> bytes(5);
    platform.script("MI_DISP_GetPubAttr").returns(5).fills([](recording::Args &call) {
        call.record<MI_DISP_PubAttr>(1) = {0x112233, 5, 8, 30};
    });
    FrameInfo rec = video_of(0, bytes, 2);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr 0 {background 0x112233 interface 5 timing 8 rate 60}"), 1u);
}

/* Once doubled, the display keeps its rate: no other mode writes it back. */
TEST_F(PlaybackSetBuf, LeavesTheDisplayRateInEveryOtherMode)
{
    std::vector<uint8_t> bytes(5);
    give_device_0(60);
    for (uint32_t mode : {0u, 1u, 3u, 4u, 0xFFFFFFFFu}) {
        FrameInfo rec = video_of(0, bytes, mode);
        EXPECT_EQ(deliver(rec), 0);
    }
    EXPECT_EQ(platform.count("MI_DISP_GetPubAttr 0"), 5u);
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr"), 0u);
}

TEST_F(PlaybackSetBuf, SetsTheRateOnAZeroedRecordWhenTheReadFailed)
{
    std::vector<uint8_t> bytes(5);
    give_device_0(30);
    platform.script("MI_DISP_GetPubAttr").returns(-9).fills([](recording::Args &call) {
        call.record<MI_DISP_PubAttr>(1) = {0xFFFFFF, 9, 9, 9}; // a driver that fails half way
    });
    FrameInfo rec = video_of(0, bytes, 2);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr 0 {background 0x0 interface 0 timing 0 rate 60}"), 1u);
    EXPECT_PRINTED("File:vdec_venc.c,Line:#    MI_DISP_GetPubAttr exe error [-9]");
    EXPECT_NOT_PRINTED("File:vdec_venc.c,Line:#    MI_DISP_SetPubAttr exe error [-9]");
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 0"), 1u);
}

/* Without a write, the second message carries the code of the read. */
TEST_F(PlaybackSetBuf, SaysTwiceThatTheReadFailedInOtherModes)
{
    std::vector<uint8_t> bytes(5);
    platform.script("MI_DISP_GetPubAttr").returns(-9);
    FrameInfo rec = video_of(0, bytes, 1);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_PRINTED_IN_ORDER(R"(
        File:vdec_venc.c,Line:#    MI_DISP_GetPubAttr exe error [-9]
        File:vdec_venc.c,Line:#    MI_DISP_SetPubAttr exe error [-9]
    )");
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr"), 0u);
}

TEST_F(PlaybackSetBuf, SaysThatTheRateCouldNotBeWrittenAndSendsTheFrame)
{
    std::vector<uint8_t> bytes(5);
    platform.script("MI_DISP_SetPubAttr").returns(-8);
    FrameInfo rec = video_of(0, bytes, 2);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_PRINTED("File:vdec_venc.c,Line:#    MI_DISP_SetPubAttr exe error [-8]");
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 0"), 1u);
}

TEST_F(PlaybackSetBuf, EightBytesMarkedOneOneClearThePort)
{
    std::vector<uint8_t> bytes = {1, 1, 3, 4, 5, 6, 7, 8};
    globalVoDev = -1;
    FrameInfo rec = video_of(6, bytes);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_GetPubAttr -1
        MI_DISP_ClearInputPortBuffer -1 6 1
    )"));
}

/* The text names another call. */
TEST_F(PlaybackSetBuf, AControlBufferReturnsZeroWhenTheClearFails)
{
    std::vector<uint8_t> bytes = {1, 1, 0, 0, 0, 0, 0, 0};
    platform.script("MI_DISP_ClearInputPortBuffer").returns(-5);
    FrameInfo rec = video_of(6, bytes);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_PRINTED("File:vdec_venc.c,Line:#    MI_VDEC_ReleaseUserData exe error [-5]");
}

TEST_F(PlaybackSetBuf, OtherBytesAndLengthsAreVideo)
{
    std::vector<std::vector<uint8_t>> frames = {{1, 2, 0, 0, 0, 0, 0, 0},
                                                {0, 1, 0, 0, 0, 0, 0, 0},
                                                {1, 1, 0, 0, 0, 0, 0},
                                                {1, 1, 0, 0, 0, 0, 0, 0, 0},
                                                {1}};
    for (std::vector<uint8_t> &bytes : frames) {
        platform.forget();
        FrameInfo rec = video_of(0, bytes);
        EXPECT_EQ(deliver(rec), 0);
        EXPECT_EQ(platform.count("MI_VDEC_SendStream 0"), 1u);
        EXPECT_EQ(platform.count("MI_DISP_ClearInputPortBuffer"), 0u);
    }
}

TEST_F(PlaybackSetBuf, VideoWithoutAnAddressIsLeftToTheDecoderToRefuse)
{
    FrameInfo rec = {};
    rec.media = FRAME_MEDIA_VIDEO;
    rec.length = 8;
    EXPECT_EQ(deliver(rec), 0); // the recording platform accepts it
    EXPECT_EQ(platform.count("MI_DISP_ClearInputPortBuffer"), 0u);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 0"), 1u);
}

TEST_F(PlaybackSetBuf, Kind0IsConsumedAndUnknownKindsAreRefused)
{
    std::vector<uint8_t> bytes(100);
    FrameInfo none = frame_of(FRAME_MEDIA_NONE, 0, bytes);
    EXPECT_EQ(deliver(none), 0);
    for (uint32_t media : {3u, 5u, 17u, 0xFFFFFFFFu}) {
        FrameInfo other = frame_of(media, 0, bytes);
        EXPECT_EQ(deliver(other), -1);
    }
    EXPECT_EQ(platform.calls(), "");
}

/* Buffers are taken whether or not playback owns the display. */
TEST_F(PlaybackSetBuf, WorksInLiveViewToo)
{
    std::vector<uint8_t> bytes(100);
    playback_status = 0;
    FrameInfo rec = video_of(0, bytes);
    EXPECT_EQ(deliver(rec), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 0"), 1u);
}

} // namespace
