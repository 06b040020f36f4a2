/* Output device and display buffers: the switch, its sizes, single ports, video loss, settings. */
#include <gtest/gtest.h>

#include "ad_driver.h"
#include "gui_screen.h"
#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

/* A board without a framebuffer, which is none of a switch's failures. */
int32_t change_device(int32_t type, int32_t width, int32_t height)
{
    platform.node("/dev/fb0").fails_to_open();
    return ext_change_output_device(&type, &width, &height);
}

/* What stands in memory there; it may be behind an array, which the address sanitizer would report. */
__attribute__((no_sanitize_address)) std::vector<uint8_t> bytes_at(uintptr_t address, size_t size)
{
    const volatile auto *at = reinterpret_cast<const volatile uint8_t *>(address);
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < size; ++i)
        bytes.push_back(uint8_t{at[i]});
    return bytes;
}

struct SizeRow {
    int32_t width, height;
    uint32_t value;
};

constexpr SizeRow kSizes[] = {
    {720, 576, 7},    {720, 480, 6},    {720, 0, 6},    {800, 600, 18}, {800, 1, 18},    {1024, 768, 19},
    {1024, 0, 19},    {1280, 1024, 20}, {1280, 720, 9}, {1280, 800, 9}, {1440, 900, 22}, {1440, 0, 22},
    {1920, 1080, 20}, {2560, 1440, 20}, {0, 0, 20},     {-1, -1, 20},   {721, 576, 20},
};

void PrintTo(const SizeRow &row, std::ostream *out)
{
    *out << row.width << "x" << row.height;
}

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

class OutputSize : public testing::TestWithParam<SizeRow>
{
};

TEST_P(OutputSize, ChoosesTheOutputValue)
{
    const SizeRow &row = GetParam();
    EXPECT_EQ(change_device(0, row.width, row.height), 0);
    EXPECT_EQ(enNorm_vga, row.value);
    EXPECT_EQ(globalVoDev, 0);
    EXPECT_EQ(DdvrInputParam.vo_dev_type, 0);
    EXPECT_EQ(DdvrInputParam.gui_width, row.width);
    EXPECT_EQ(DdvrInputParam.gui_height, row.height);
    EXPECT_EQ(platform.calls({"MI_"}), "");
}

INSTANTIATE_TEST_SUITE_P(EachSize, OutputSize, testing::ValuesIn(kSizes));

TEST(OutputSwitch, TypeThreeIsTheSecondaryOutputAndKeepsTheTiming)
{
    globalVoDev = 2;
    enNorm_vga = 4;
    EXPECT_EQ(change_device(3, 1280, 720), 0);
    EXPECT_EQ(globalVoDev, -1);
    EXPECT_EQ(enNorm_vga, 4u);
    EXPECT_EQ(DdvrInputParam.vo_dev_type, 3);
    EXPECT_EQ(DdvrInputParam.gui_width, 1280);
    EXPECT_EQ(DdvrInputParam.gui_height, 720);
    EXPECT_EQ(platform.calls({"MI_"}), ""); // the further output is not taken down
}

TEST(OutputSwitch, TakesNothingDownWhenItComesFromAnotherDevice)
{
    for (const int32_t device : {-1, 0, 1, 3}) {
        globalVoDev = device;
        EXPECT_EQ(change_device(2, 1280, 720), 0);
        EXPECT_EQ(globalVoDev, 0); // whatever the type, but for 3
    }
    EXPECT_EQ(platform.calls({"MI_"}), "");
}

TEST(OutputSwitch, TakesTheFurtherOutputDownFirst)
{
    globalVoDev = 2;
    g_vi_chn_num = 2;
    EXPECT_EQ(change_device(1, 1280, 720), 0);
    EXPECT_EQ(platform.calls({"MI_"}), trace(R"(
        MI_SYS_UnBindChnPort {0,0,0,0} {disp,2,0,0}
        MI_SYS_UnBindChnPort {0,0,0,0} {disp,2,1,0}
        MI_DISP_DisableInputPort 2 0
        MI_DISP_DisableInputPort 2 1
        MI_SYS_BindChnPort {vdec,0,0,0} {disp,0,0,0} 15 15
        MI_SYS_BindChnPort {vdec,0,1,0} {disp,0,1,0} 15 15
    )"));
    EXPECT_NOT_PRINTED("vo_stop_chn failed!");
    EXPECT_EQ(globalVoDev, 0);
    EXPECT_EQ(enNorm_vga, 9u);
}

TEST(OutputSwitch, GoesOnWhenTheFurtherOutputFails)
{
    globalVoDev = 2;
    g_vi_chn_num = 2;
    platform.have_decoders(3);
    platform.script("MI_DISP_DisableInputPort").returns(-5);
    platform.script("MI_SYS_BindChnPort").nth(1).returns(-6);
    EXPECT_EQ(change_device(1, 1024, 768), 0);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "vo_stop_chn failed!");
    EXPECT_PRINTED_IN_ORDER(R"(
        [vdec_venc.c]-#: HI_MPI_SYS_Bind failed with 0xfffffffa!
        [vdec_venc.c]-#: vdec(vdch=0) bind vpss(vpssg=0) failed!
    )");
    EXPECT_NOT_PRINTED("failed with 0xfffffffa!");
    EXPECT_NOT_PRINTED("vdec(vdch=1) bind vpss(vpssg=1) failed!");
    EXPECT_EQ(platform.count("MI_SYS_BindChnPort"), 2u);
    EXPECT_EQ(globalVoDev, 0);
}

TEST(OutputSwitch, SetsTheFramebufferUpAnew)
{
    gui_test::plug_framebuffer();
    const int32_t type = 0, width = 1280, height = 720;
    EXPECT_EQ(ext_change_output_device(&type, &width, &height), 0);
    EXPECT_EQ(ext_change_output_device(&type, &width, &height), 0);
    EXPECT_EQ(platform.count("board_open /dev/fb0"), 2u);
    EXPECT_EQ(platform.count("board_ioctl /dev/fb0 0x40344669 {0 0 1280 720 1280 720 0 0 0 0 0 0 15}"), 2u);
}

TEST(OutputSwitch, FailsWithTheFramebuffer)
{
    platform.script("board_map").returns(-1);
    const int32_t type = 0, width = 1280, height = 720;
    EXPECT_EQ(ext_change_output_device(&type, &width, &height), -1);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "fb_init err -1!");
    EXPECT_EQ(enNorm_vga, 9u); // the choice stands
}

TEST(OutputSwitch, RefusesNull)
{
    const int32_t value = 3;
    EXPECT_EQ(ext_change_output_device(nullptr, &value, &value), -1);
    EXPECT_EQ(ext_change_output_device(&value, nullptr, &value), -1);
    EXPECT_EQ(ext_change_output_device(&value, &value, nullptr), -1);
    EXPECT_EQ(globalVoDev, 0);
    EXPECT_EQ(platform.calls(), "");
}

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

TEST(RecordOutput, BindsAndUnbindsDeviceTwo)
{
    platform.have_decoders(4);
    EXPECT_EQ(ext_record_enable(3, 1), 0);
    EXPECT_EQ(ext_record_enable(3, 0), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_SYS_BindChnPort {vdec,2,3,0} {disp,2,3,0} 15 15
        MI_SYS_UnBindChnPort {vdec,2,3,0} {disp,2,3,0}
        MI_DISP_ClearInputPortBuffer 2 3 1
    )"));
    EXPECT_NOT_PRINTED("vo_unbind_vpss failed!");
}

TEST(RecordOutput, ReportsFailuresAndAnswersZero)
{
    for (const char *call : {"MI_SYS_BindChnPort", "MI_SYS_UnBindChnPort", "MI_DISP_ClearInputPortBuffer"})
        platform.script(call).returns(-3);
    EXPECT_EQ(ext_record_enable(3, 9), 0);
    EXPECT_EQ(ext_record_enable(3, 0), 0);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "vo_unbind_vpss failed!");
    EXPECT_PRINTED("File:vdec_venc.c,Line:#    MI_VDEC_ReleaseUserData exe error [-3]");
    EXPECT_EQ(platform.count("MI_DISP_ClearInputPortBuffer 2 3 1"), 1u);
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

TEST(StreamSettings, StoreThreeQualityValues)
{
    EXPECT_EQ(ext_change_local_img_quality(16, 1, 2, 3), 0);
    EXPECT_EQ(ext_change_net_img_quality(15, 4, 5, 6), 0);
    EXPECT_EQ(major_stream[16].quality_1, 1u);
    EXPECT_EQ(major_stream[16].encode_mode, 0u);
    EXPECT_EQ(major_stream[16].quality_2, 2u);
    EXPECT_EQ(major_stream[16].quality_3, 3u);
    EXPECT_EQ(minor_stream[15].quality_1, 4u);
    EXPECT_EQ(minor_stream[15].quality_2, 5u);
    EXPECT_EQ(minor_stream[15].quality_3, 6u);
    for (const uint32_t channel : {16u, 17u, 0xFFFFFFFFu}) {
        EXPECT_EQ(ext_change_net_img_quality(channel, 1, 1, 1), 0);
        EXPECT_EQ(ext_change_local_img_quality(channel + 1, 1, 1, 1), 0);
    }
}

// Both branches of the size do the same.
TEST(StreamSettings, EveryNetworkSizeIs640By360)
{
    for (const uint32_t size : {2u, 0u, 9u}) {
        minor_stream[2] = {};
        EXPECT_EQ(ext_change_net_video_size(2, size), 0);
        EXPECT_EQ(DdvrInputParam.net_video_size[2], size);
        EXPECT_EQ(minor_stream[2].size_class, 1u);
        EXPECT_EQ(minor_stream[2].width, 640u);
        EXPECT_EQ(minor_stream[2].height, 360u);
    }
    const auto behind = reinterpret_cast<uintptr_t>(minor_stream) + sizeof minor_stream;
    const std::vector<uint8_t> before = bytes_at(behind, sizeof minor_stream[0]);
    EXPECT_EQ(ext_change_net_video_size(16, 5), 0) << "there are 16 network streams";
    EXPECT_EQ(bytes_at(behind, sizeof minor_stream[0]), before);
    EXPECT_EQ(ext_change_net_video_size(127, 5), 0);
    EXPECT_EQ(DdvrInputParam.net_video_size[127], 5u);
    EXPECT_EQ(ext_change_net_video_size(128, 5), 0);
    EXPECT_EQ(DdvrInputParam.vi_chn_num, 0);
    EXPECT_EQ(ext_change_net_video_size(0xFFFFFFFF, 5), 0);
}

TEST(PictureSettings, ShareOneTextAndChangeNothing)
{
    EXPECT_EQ(ext_set_voutdev_hue(1, 50), 0);
    EXPECT_EQ(ext_set_voutdev_contrast(1, 50), 0);
    EXPECT_EQ(ext_set_voutdev_saturation(1, 50), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("SetHuePlus channel 1 is 50!!!");
    EXPECT_EQ(recording::times_printed("SetHuePlus channel 1 is 50!!!"), 3u);
    EXPECT_EQ(platform.calls(), "");
}

TEST(OutputNoops, AnswerZeroAndDoNothing)
{
    int (*const noops[])(...) = {
        ext_vo_buffer_clear1,        ext_get_video_md_alarm,   ext_change_local_frame_quality,
        ext_change_net_frame_rate,   ext_change_default_rate,  ext_change_net_frame_quality,
        ext_change_local_frame_rate, ext_exchang_vga_hd_color, ext_change_qcif_channel,
        ext_change_local_video_size, ext_set_video_brightness, ext_set_video_hue,
        ext_set_video_contrast,      ext_set_video_saturation, ext_change_spot_display,
    };
    for (const auto noop : noops)
        EXPECT_EQ(noop(1, 2, "three"), 0);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(recording::printed_text(), "");
}
