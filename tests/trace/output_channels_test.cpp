/* Single channels of the output: display buffers cleared and bound, and inputs without a signal. */
#include <gtest/gtest.h>

#include "ad_driver.h"
#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

/* Answer for the analog front end: the channels whose bit is set have lost their signal. */
void lose(uint64_t channels)
{
    platform.node("/dev/vc0725dev").ioctl(AD_GET_LOSS).fills([channels](recording::Args &call) {
        auto &record = call.record<AdVideoLoss>(2);
        const uint32_t channel = record.chip * 4 + record.input;
        record.lost = channels >> channel & 1 ? channel + 1 : 0; // any value but 0 says so
    });
}

} // namespace

TEST(ClearDisplay, FlushesEightDecodersWhateverN)
{
    globalVoDev = 1;
    g_vi_chn_num = 4;
    EXPECT_EQ(ext_clear_disp(), 0);
    std::string expected;
    for (const char *channel : {"0", "1", "2", "3", "4", "5", "6", "7"})
        for (const char *call : {"MI_VDEC_StopChn ", "MI_VDEC_StartChn ", "MI_DISP_ClearInputPortBuffer 1 "})
            expected += call + std::string(channel) + (call[3] == 'D' ? " 1\n" : "\n");
    EXPECT_EQ(platform.calls() + "\n", expected);
}

TEST(PortBuffers, Clear2ClearsOnTheCurrentDeviceAndReportsOnlyErrors)
{
    globalVoDev = 2;
    platform.script("MI_DISP_ClearInputPortBuffer").returns(3);
    EXPECT_EQ(ext_vo_buffer_clear2(4), 0);
    EXPECT_EQ(platform.calls(), "MI_DISP_ClearInputPortBuffer 2 3 1");
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(PortBuffers, Clear2CountsChannelsFromOne)
{
    EXPECT_EQ(ext_vo_buffer_clear2(1), 0);
    EXPECT_EQ(ext_vo_buffer_clear2(16), 0);
    EXPECT_EQ(platform.calls(), "MI_DISP_ClearInputPortBuffer 0 0 1\nMI_DISP_ClearInputPortBuffer 0 15 1");
    EXPECT_EQ(recording::printed_text(), "");
    platform.script("MI_DISP_ClearInputPortBuffer").returns(-3);
    EXPECT_EQ(ext_vo_buffer_clear2(0), 0); // port -1
    EXPECT_EQ(platform.count("MI_DISP_ClearInputPortBuffer 0 4294967295 1") +
                  platform.count("MI_DISP_ClearInputPortBuffer 0 -1 1"),
              1u);
    EXPECT_PRINTED_WITHOUT_PREFIX("File:vdec_venc.c,Line:#    MI_VDEC_ReleaseUserData exe error [-3]");
}

// The decoder that is reset has the display device's number, not the channel's.
TEST(PortBuffers, Clear3ResetsTheDecoderWithTheDevicesNumber)
{
    EXPECT_EQ(ext_vo_buffer_clear3(5, 1), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_ClearInputPortBuffer 0 5 1
        MI_VDEC_StopChn 0
        MI_VDEC_StartChn 0
    )"));
    platform.forget();
    globalVoDev = 2;
    EXPECT_EQ(ext_vo_buffer_clear3(5, 0), 0);
    EXPECT_EQ(platform.calls(), "MI_VDEC_StopChn 2\nMI_VDEC_StartChn 2");
    platform.forget();
    ext_vo_buffer_clear3(5, 1);
    ext_vo_buffer_clear3(5, 2); // clears nothing: only 1 does
    EXPECT_EQ(platform.calls({"MI_DISP_"}), "MI_DISP_ClearInputPortBuffer 2 5 1");
    EXPECT_EQ(platform.count("MI_VDEC_StopChn 2"), 2u);
}

TEST(PortBuffers, Clear3DoesNothingOutsideLiveView)
{
    ext_vo_buffer_clear3(8, 1);
    ext_vo_buffer_clear3(0xFFFFFFFF, 1);
    vo_for_ezoom = 1;
    EXPECT_EQ(ext_vo_buffer_clear3(0, 1), 0);
    vo_for_ezoom = 7; // any value but 0
    EXPECT_EQ(ext_vo_buffer_clear3(0, 1), 0);
    vo_for_ezoom = 0;
    playback_status = 1;
    EXPECT_EQ(ext_vo_buffer_clear3(0, 1), 0);
    EXPECT_EQ(platform.calls(), "");
    playback_status = 2;
    ext_vo_buffer_clear3(0, 0);
    EXPECT_EQ(platform.count("MI_VDEC_StopChn"), 1u);
}

TEST(PortBuffers, Clear3ReportsARefusedClear)
{
    platform.script("MI_DISP_ClearInputPortBuffer").returns(-3);
    EXPECT_EQ(ext_vo_buffer_clear3(5, 1), 0);
    EXPECT_PRINTED("File:vdec_venc.c,Line:#    MI_VDEC_ReleaseUserData exe error [-3]");
    EXPECT_EQ(platform.count("MI_VDEC_StartChn 0"), 1u);
}

TEST(PortBuffers, CreateBindsTheDecoderOrTheOneBehindTheSpare)
{
    globalVoDev = 2; // the ports are the main output's all the same
    EXPECT_EQ(ext_vo_buffer_create1(7), 0);
    EXPECT_EQ(ext_vo_buffer_create2(7), 0);
    EXPECT_EQ(ext_vo_buffer_create1(8), 0);
    EXPECT_EQ(ext_vo_buffer_create2(8), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_SYS_BindChnPort {vdec,0,7,0} {disp,0,7,0} 15 15
        MI_SYS_BindChnPort {vdec,0,9,0} {disp,0,7,0} 15 15
    )"));
    EXPECT_EQ(recording::times_printed("[vdec_venc.c:#]-debug-vo_bind_vpss chnn:7 "), 1u);
}

TEST(PortBuffers, CreateKnowsTheOnlyChannelAndNoneWithoutChannels)
{
    g_vi_chn_num = 1;
    ext_vo_buffer_create1(0);
    ext_vo_buffer_create1(1);
    for (const int32_t none : {0, -1}) {
        g_vi_chn_num = none;
        ext_vo_buffer_create1(0);
        ext_vo_buffer_create2(0);
    }
    EXPECT_EQ(platform.calls(), "MI_SYS_BindChnPort {vdec,0,0,0} {disp,0,0,0} 15 15");
}

TEST(VideoLoss, AsksEveryLiveInput)
{
    lose(0x82);
    uint32_t mask[2] = {0xEE, 0xEE};
    EXPECT_EQ(ext_get_video_loss_status(mask), 0);
    EXPECT_EQ(mask[0], 0x82u);
    EXPECT_EQ(mask[1], 0u);
    EXPECT_EQ(platform.count("board_ioctl /dev/vc0725dev 0xc00c7604"), 8u);
}

TEST(VideoLoss, IsNoneWhereTheDriverSaysNothing)
{
    uint32_t mask[2] = {0xEE, 0xEE};
    EXPECT_EQ(ext_get_video_loss_status(mask), 0);
    EXPECT_EQ(mask[0] | mask[1], 0u);
}

TEST(VideoLoss, IsNoneWithoutLiveChannels)
{
    g_vi_chn_num = 0;
    uint32_t mask[2] = {0xEE, 0xEE};
    EXPECT_EQ(ext_get_video_loss_status(mask), 0);
    EXPECT_EQ(mask[0] | mask[1], 0u);
    EXPECT_EQ(platform.calls(), "");
}

TEST(VideoLoss, KeepsTheBitsFoundBeforeAFailure)
{
    lose(0xFF);
    platform.script("board_ioctl").nth(3).returns(-1);
    uint32_t mask[2] = {0xEE, 0xEE};
    EXPECT_EQ(ext_get_video_loss_status(mask), -1);
    EXPECT_EQ(mask[0], 3u);
    EXPECT_EQ(mask[1], 0u);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "ad_get_loss Failed!!");
    EXPECT_EQ(ext_get_video_loss_status(nullptr), -1);
}

// The bit is a signed 32-bit value that is widened.
TEST(VideoLoss, Channel31FillsTheUpperWord)
{
    g_vi_chn_num = 40;
    lose(uint64_t{1} << 30 | uint64_t{3} << 32);
    uint32_t mask[2];
    EXPECT_EQ(ext_get_video_loss_status(mask), 0);
    EXPECT_EQ(mask[0], 0x40000000u);
    EXPECT_EQ(mask[1], 0u); // channels from 32 on have no bit
    lose(uint64_t{1} << 31);
    EXPECT_EQ(ext_get_video_loss_status(mask), 0);
    EXPECT_EQ(mask[0], 0x80000000u);
    EXPECT_EQ(mask[1], 0xFFFFFFFFu);
}
