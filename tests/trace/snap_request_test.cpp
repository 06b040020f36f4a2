/* ext_get_jpeg_stream: the pipeline built, one picture fetched, the pipeline taken down. */
#include <cstring>

#include "media_call_count.h"
#include "snap_refusal.h"
#include "snap_request.h"

using namespace snap_test;
using recording::platform;
using recording::trace;

namespace
{

constexpr int32_t kEncoderRefused = static_cast<int32_t>(0xA0020003);

std::string pipeline(const std::string &decoder)
{
    return R"(
        MI_VDEC_GetChnAttr )" +
           decoder + R"(
        MI_DIVP_CreateChn 0 {max 1920x1080 noise 0 deinterlace 0 rotation 0 crop 0,0 0x0 mirror 0 flip 0}
        MI_DIVP_GetOutputPortAttr 0 0
        MI_DIVP_SetOutputPortAttr 0 0 {352x288 format 11 compression 0}
        MI_VENC_CreateChn 2 {codec 4 max 352x288 buffer 101376 size 352x288 by_frame 1 restart 6}
        MI_VENC_GetJpegParam 2
        MI_VENC_SetJpegParam 2 {quality 50}
        MI_SYS_SetChnOutputPortDepth {divp,0,0,0} 0 3
        MI_VENC_GetChnDevid 2
        MI_SYS_BindChnPort {divp,0,0,0} {venc,0,2,0} 10 10
        MI_DIVP_StartChn 0
        MI_SYS_BindChnPort {vdec,0,)" +
           decoder + R"(,0} {divp,0,0,0} 10 10
        MI_VENC_StartRecvPic 2
        MI_VENC_GetStream 2 40
        board_time_us
        MI_VENC_ReleaseStream 2
        MI_VENC_ResetChn 2
        MI_VENC_StopRecvPic 2
        MI_VENC_GetChnDevid 2
        MI_SYS_UnBindChnPort {divp,0,0,0} {venc,0,2,0}
        MI_SYS_UnBindChnPort {vdec,0,)" +
           decoder + R"(,0} {divp,0,0,0}
        MI_VENC_DestroyChn 2
        MI_DIVP_StopChn 0
        MI_DIVP_DestroyChn 0
    )";
}

const char kRebuild[] = R"(
    MI_VDEC_StopChn 4
    MI_VDEC_GetChnAttr 4
    MI_VDEC_DestroyChn 4
    MI_VDEC_CreateChn 4 {h265 buffer 1048576 priority 0 max 1920x1080 mode 1 references 2 buffers 2}
    MI_VDEC_StartChn 4
)";

TEST(Snapshot, DoesNothingUntilItIsEnabled)
{
    FrameInfo frame, before;
    std::memset(&frame, 0x5A, sizeof frame);
    before = frame;
    EXPECT_EQ(ext_get_jpeg_stream(&frame), 0);
    EXPECT_EQ(ext_get_jpeg_stream(nullptr), 0);
    EXPECT_EQ(std::memcmp(&frame, &before, sizeof frame), 0);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(cur_snap_chnn, 255);
}

TEST(Snapshot, OfALiveChannelTapsItsDecoder)
{
    prepare();
    platform.set_time_us(1700000000123456);
    FrameInfo frame = request(2);
    frame.stream_id = 77;
    EXPECT_EQ(ext_get_jpeg_stream(&frame), 0);
    EXPECT_EQ(platform.calls(), trace(pipeline("2")));
    EXPECT_EQ(frame.frame_type, 1u);
    EXPECT_EQ(frame.media, 17u);
    EXPECT_EQ(frame.width, 352u);
    EXPECT_EQ(frame.height, 288u);
    EXPECT_EQ(frame.channel, 2u);
    EXPECT_EQ(frame.stream_id, 77u);
    EXPECT_EQ(uint64_t{frame.local_time}, 1700000000123456u); // a copy: the field is 4-byte aligned
    ASSERT_NE(frame.data, nullptr);
    ASSERT_GE(frame.length, 2u);
    EXPECT_EQ(std::memcmp(frame.data, "\xFF\xD8", 2), 0);
    EXPECT_EQ(cur_snap_chnn, 255);
    EXPECT_PRINTED_IN_ORDER(R"(
        EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEsnap.c,ext_get_jpeg_stream,#
        EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEsnap.c,venc_snap_start,#
        pFrameInfo->width=352,288
        EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEsnap.c,venc_snap_process,#
        jpeg_size=#
        EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEsnap.c,venc_snap_stop,#
    )");
    EXPECT_EQ(ext_release_jpeg_buf(&frame), 0);
}

TEST(Snapshot, DuringPlaybackUsesTheSpareDecoderRebuiltAndStopsItAfterwards)
{
    prepare();
    playback_status = 1;
    FrameInfo frame = request(2);
    EXPECT_EQ(ext_get_jpeg_stream(&frame), 0);
    EXPECT_EQ(platform.calls(), trace(kRebuild + pipeline("4") + "MI_VDEC_StopChn 4"));
    ext_release_jpeg_buf(&frame);
}

TEST(Snapshot, DuringPlaybackFindsTheSpareDecoderBehindTheCameras)
{
    for (int32_t cameras : {1, 3}) {
        prepare();
        g_vi_chn_num = cameras;
        playback_status = 1;
        FrameInfo frame = request(0);
        EXPECT_EQ(ext_get_jpeg_stream(&frame), 0);
        const std::string spare = std::to_string(cameras);
        EXPECT_EQ(platform.count("MI_VDEC_CreateChn " + spare), 1u);
        EXPECT_EQ(platform.count("MI_SYS_BindChnPort {vdec,0," + spare + ",0} {divp,0,0,0}"), 1u);
        EXPECT_EQ(platform.count("MI_VDEC_StopChn " + spare), 2u);
        ext_release_jpeg_buf(&frame);
    }
}

/* The channel is marked while the snapshot runs, so that intake decodes it though it is not shown. */
TEST(Snapshot, LetsAHiddenChannelsFramesIn)
{
    prepare();
    cur_display_chnn = 0;
    std::vector<uint8_t> bytes(100);
    FrameInfo video = {};
    video.media = FRAME_MEDIA_VIDEO;
    video.length = 100;
    video.data = bytes.data();
    video.channel = 2;
    int32_t seen = 0;
    platform.script("MI_VENC_GetStream").once().returns(kEncoderRefused).fills([&](recording::Args &) {
        seen = cur_snap_chnn;
        ext_send_stream(&video, 1, 0, 0);
    });
    FrameInfo frame = request(2);
    EXPECT_EQ(ext_get_jpeg_stream(&frame), 0);
    EXPECT_EQ(seen, 2);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream 2"), 1u);
    platform.forget();
    ext_send_stream(&video, 1, 0, 0);
    EXPECT_EQ(platform.count("MI_VDEC_SendStream"), 0u);
    ext_release_jpeg_buf(&frame);
}

TEST(Snapshot, OfAPictureTooSmallFailsAndTakesDownWhatThereIs)
{
    const struct {
        uint16_t width, height;
        int32_t result;
    } rows[] = {{352, 288, 0}, {351, 288, 31}, {352, 287, 31}, {176, 144, 31}};
    for (const auto &row : rows) {
        platform.reset();
        prepare(row.width, row.height);
        SnapSize size = {};
        EXPECT_EQ(venc_snap_start(2, 2, &size), row.result);
        EXPECT_EQ(size.width, 352u);
        EXPECT_EQ(size.height, 288u);
        if (row.result == 0) continue;
        EXPECT_EQ(recording::media_calls(), 1u);
        EXPECT_PRINTED("@ #: not support wh[352, 288]");
        MI_DIVP_DestroyChn(0);
        platform.forget();
        FrameInfo frame = request(2);
        EXPECT_EQ(ext_get_jpeg_stream(&frame), -1);
        EXPECT_PRINTED_AS_ERROR("snap.c", "venc_snap_start fail=31");
        EXPECT_EQ(platform.count("MI_DIVP_DestroyChn"), 1u);
        EXPECT_EQ(frame.data, nullptr);
        EXPECT_EQ(cur_snap_chnn, 255);
    }
}

TEST(Snapshot, ReportsAFetchThatFails)
{
    prepare();
    platform.script("MI_VENC_StartRecvPic").returns(kEncoderRefused);
    FrameInfo frame = request(2);
    EXPECT_EQ(ext_get_jpeg_stream(&frame), -1);
    EXPECT_PRINTED_AS_ERROR("snap.c", "venc_snap_process[2] err 0xffffffff");
    EXPECT_EQ(frame.data, nullptr);
    EXPECT_EQ(cur_snap_chnn, 255);
}

TEST(Snapshot, TapsTheLiveDecoderInEveryStateButPlayback)
{
    for (uint32_t state : {0u, 2u}) {
        prepare();
        playback_status = state;
        FrameInfo frame = request(2);
        EXPECT_EQ(ext_get_jpeg_stream(&frame), 0);
        EXPECT_EQ(platform.count("MI_VDEC_StopChn"), 0u);
        EXPECT_EQ(platform.count("MI_SYS_BindChnPort {vdec,0,2,0} {divp,0,0,0}"), 1u);
        ext_release_jpeg_buf(&frame);
    }
}

TEST(Snapshot, DuringPlaybackUnbindsTheSpareDecoderWhenThePipelineFails)
{
    prepare();
    playback_status = 1;
    platform.script("MI_DIVP_StartChn").returns(kEncoderRefused);
    FrameInfo frame = request(2);
    EXPECT_EQ(ext_get_jpeg_stream(&frame), -1);
    EXPECT_EQ(platform.count("MI_SYS_UnBindChnPort {vdec,0,4,0} {divp,0,0,0}"), 1u);
    EXPECT_EQ(platform.count("MI_VENC_DestroyChn 2"), 1u);
}

/* During playback the result is that of the stop, whatever became of the picture. */
TEST(Snapshot, DuringPlaybackAnswersForTheStopAlone)
{
    prepare();
    playback_status = 1;
    platform.script("MI_VENC_StartRecvPic").once().returns(kEncoderRefused);
    FrameInfo lost = request(2);
    EXPECT_EQ(ext_get_jpeg_stream(&lost), 0);
    EXPECT_EQ(lost.data, nullptr);
    EXPECT_EQ(lost.length, 0u);

    platform.script("MI_VDEC_StopChn").nth(2).returns(kEncoderRefused);
    FrameInfo taken = request(2);
    EXPECT_EQ(ext_get_jpeg_stream(&taken), kEncoderRefused);
    EXPECT_NE(taken.data, nullptr);
    EXPECT_PRINTED_AS_ERROR("snap.c", "MI_VDEC_StartChn failed errno 0xa0020003 "); // so on purpose
    ext_release_jpeg_buf(&taken);
}

/* The result is 0 then as well, and the address is not: only the length tells. */
TEST(Snapshot, OfAPictureThatCouldNotBeReleasedHasNoLength)
{
    for (uint32_t state : {0u, 1u}) {
        prepare();
        playback_status = state;
        platform.script("MI_VENC_ReleaseStream").once().returns(kEncoderRefused);
        FrameInfo frame = request(2);
        EXPECT_EQ(ext_get_jpeg_stream(&frame), state == 1 ? 0 : -1);
        EXPECT_NE(frame.data, nullptr);
        EXPECT_EQ(frame.length, 0u);
    }
}

TEST(Snapshot, DuringPlaybackStartsTheSpareDecoderWithWhatCouldBeRead)
{
    platform.be_lenient(); // a decoder that would not stop cannot be destroyed
    prepare();
    playback_status = 1;
    for (const char *call : {"MI_VDEC_StopChn", "MI_VDEC_GetChnAttr", "MI_VDEC_DestroyChn"}) {
        platform.script(call).once().returns(kEncoderRefused);
        FrameInfo frame = request(2);
        ext_get_jpeg_stream(&frame);
        EXPECT_PRINTED_AS_ERROR("snap.c", std::string(call) + " failed errno 0xa0020003,chnid:4 ");
        EXPECT_GE(platform.count("MI_VDEC_StartChn 4"), 1u);
        ext_release_jpeg_buf(&frame);
        platform.forget();
    }
}

/* One text for both; the snapped channel stays marked. */
TEST(Snapshot, DuringPlaybackEndsWhenTheSpareDecoderCannotBeHad)
{
    for (const char *call : {"MI_VDEC_CreateChn", "MI_VDEC_StartChn"}) {
        cur_snap_chnn = 255;
        prepare();
        playback_status = 1;
        platform.script(call).once().returns(kEncoderRefused);
        FrameInfo frame = request(3);
        EXPECT_EQ(ext_get_jpeg_stream(&frame), kEncoderRefused);
        EXPECT_PRINTED_AS_ERROR("snap.c", "MI_VDEC_CreateChn failed errno 0xa0020003,chnid:4 ");
        EXPECT_EQ(platform.calls({"MI_DIVP_"}), "");
        EXPECT_EQ(cur_snap_chnn, 3);
    }
}

TEST(Snapshot, NamesTheEncodersDeviceInItsBinding)
{
    prepare();
    platform.script("MI_VENC_GetChnDevid").fills([](recording::Args &call) { call.record<uint32_t>(1) = 7; });
    FrameInfo frame = request(1);
    EXPECT_EQ(ext_get_jpeg_stream(&frame), 0);
    EXPECT_EQ(platform.count("MI_SYS_BindChnPort {divp,0,0,0} {venc,7,1,0} 10 10"), 1u);
    EXPECT_EQ(platform.count("MI_SYS_UnBindChnPort {divp,0,0,0} {venc,7,1,0}"), 1u);
    ext_release_jpeg_buf(&frame);
}

TEST(Snapshot, SetsTheWholeOutputOfTheScaler)
{
    prepare();
    platform.script("MI_DIVP_GetOutputPortAttr").fills([](recording::Args &call) {
        call.record<MI_DIVP_OutputPortAttr>(2) = {9, 9, 9, 9};
    });
    FrameInfo frame = request(1);
    EXPECT_EQ(ext_get_jpeg_stream(&frame), 0);
    EXPECT_EQ(platform.count("MI_DIVP_SetOutputPortAttr 0 0 {352x288 format 11 compression 0}"), 1u);
    ext_release_jpeg_buf(&frame);
}

TEST(Snapshot, KeepsTheOtherCodingParameters)
{
    prepare();
    platform.script("MI_VENC_GetJpegParam").fills([](recording::Args &call) {
        call.record<MI_VENC_JpegParam>(1) = {90, 1234};
    });
    FrameInfo frame = request(1);
    EXPECT_EQ(ext_get_jpeg_stream(&frame), 0);
    EXPECT_EQ(platform.count("MI_VENC_SetJpegParam 1 {quality 50 reserved 1234}"), 1u);
    ext_release_jpeg_buf(&frame);
}

TEST(Snapshot, GuardsItsRecords)
{
    prepare();
    EXPECT_EQ(ext_get_jpeg_stream(nullptr), -1);
    EXPECT_EQ(venc_snap_start(0, 0, nullptr), -1);
    EXPECT_EQ(venc_snap_process(0, nullptr), -1);
    EXPECT_EQ(ext_release_jpeg_buf(nullptr), 0);
    EXPECT_EQ(platform.calls(), "");
    for (const char *function :
         {"ext_get_jpeg_stream", "venc_snap_start", "venc_snap_process", "ext_release_jpeg_buf"})
        EXPECT_PRINTED("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEsnap.c," + std::string(function) + ",#");
}

TEST(Snapshot, BufferIsReleasedOnce)
{
    EXPECT_EQ(ext_set_snap_channel_enable(), 0);
    EXPECT_PRINTED("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEsnap.c,ext_set_snap_channel_enable,#");
    prepare();
    FrameInfo frame = request(0);
    EXPECT_EQ(ext_get_jpeg_stream(&frame), 0);
    ASSERT_NE(frame.data, nullptr);
    const void *data = frame.data;
    EXPECT_EQ(ext_release_jpeg_buf(&frame), 0);
    const void *freed = snap_refusal::last_freed;
    EXPECT_EQ(freed, data);
    EXPECT_EQ(frame.data, nullptr);
    EXPECT_EQ(ext_release_jpeg_buf(&frame), 0);
    EXPECT_EQ(recording::times_printed("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEsnap.c,ext_release_jpeg_buf,#"),
              2u);
}

} // namespace
