/* The output device: the switch and its sizes, the recording output, and settings that go with it. */
#include <gtest/gtest.h>

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
