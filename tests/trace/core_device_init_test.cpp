/* Start-up of the device: what is derived from the block, and the order of the bring-up. */
#include "core/device_state.h"
#include "stream/pool.h"

#include "core_start.h"

using namespace core_test;
using recording::platform;
using recording::trace;

namespace
{

TEST(DeviceInit, BringsTheMediaSideUpInOrder)
{
    DeviceParams params = device_params(2);
    ASSERT_EQ(ext_device_init(&params), 0);
    EXPECT_EQ(media_calls(), trace(R"(
        MI_SYS_Init
        MI_SYS_GetVersion
        MI_SYS_GetCurPts
        MI_SYS_InitPtsBase 17375864351241762960
        MI_SYS_SyncPts 16222942846366480528
        MI_HDMI_Init {callback set user null}
        MI_HDMI_Open 0
        MI_VDEC_CreateChn 0 {h265 buffer 1048576 priority 0 max 1920x1080 mode 1 references 2 buffers 2}
        MI_VDEC_StartChn 0
        MI_VDEC_SetOutputPortAttr 0 {960x540}
        MI_VDEC_CreateChn 1 {h265 buffer 1048576 priority 0 max 1920x1080 mode 1 references 2 buffers 2}
        MI_VDEC_StartChn 1
        MI_VDEC_SetOutputPortAttr 1 {960x540}
        MI_VDEC_CreateChn 2 {h265 buffer 1048576 priority 0 max 1920x1080 mode 1 references 2 buffers 2}
        MI_VDEC_StartChn 2
        MI_VDEC_SetOutputPortAttr 2 {960x540}
        MI_DISP_SetPubAttr 0 {background 0x800080 interface 2 timing 16 rate 0}
        MI_DISP_Enable 0
        MI_DISP_BindVideoLayer 0 0
        MI_DISP_SetVideoLayerAttr 0 {window 0,0 1920x1080 size 1920x1080 format 12}
        MI_DISP_GetVideoLayerAttr 0
        MI_DISP_EnableVideoLayer 0
        MI_HDMI_SetAvMute 0 1
        MI_HDMI_SetAttr 0 {connected 0 video 1 timing 9 mode 0 colour 0 deep 0 audio 1 multichannel 0 rate 3 depth 16 coding 0 infoframes 0,0,0}
        MI_HDMI_Start 0
        MI_HDMI_SetAvMute 0 0
        MI_DISP_GetInputPortAttr 0 0
        MI_VDEC_GetOutputPortAttr 0
        MI_DISP_SetInputPortAttr 0 0 {window 0,0 960x540 source 960x540}
        MI_DISP_GetInputPortAttr 0 0
        MI_DISP_EnableInputPort 0 0
        MI_DISP_SetInputPortSyncMode 0 0 1
        MI_DISP_ClearInputPortBuffer 0 0 1
        MI_DISP_GetInputPortAttr 0 1
        MI_VDEC_GetOutputPortAttr 1
        MI_DISP_SetInputPortAttr 0 1 {window 960,0 960x540 source 960x540}
        MI_DISP_GetInputPortAttr 0 1
        MI_DISP_EnableInputPort 0 1
        MI_DISP_SetInputPortSyncMode 0 1 1
        MI_DISP_ClearInputPortBuffer 0 1 1
    )"));
}

TEST(DeviceInit, BringsEightCamerasUpAsTheGoldenTraceSays)
{
    DeviceParams params = device_params(8);
    ASSERT_EQ(ext_device_init(&params), 0);
    EXPECT_GOLDEN("start_up_8_cameras", media_calls());
}

TEST(DeviceInit, PrintsItsStages)
{
    DeviceParams params = device_params(4, 1280, 1024);
    ASSERT_EQ(ext_device_init(&params), 0);
    EXPECT_PRINTED_IN_ORDER(R"(
        sdk_init version:2020-07-21 13:00.
        videoPbChnnNum=7
        channel count 4
        HDMI start success.
        vdec_create
        start disp
        vdec bind
        wacthdog init success!!!
        init done!
    )");
    EXPECT_PRINTED_WITHOUT_PREFIX("init done!");
    EXPECT_PRINTED_WITHOUT_PREFIX("videoPbChnnNum=7");
}

TEST(DeviceInit, StartsTheAudioAfterTheDisplay)
{
    DeviceParams params = device_params(1);
    ASSERT_EQ(ext_device_init(&params), 0);
    std::string calls = platform.calls();
    size_t last_display = calls.rfind("MI_DISP_"), first_audio = calls.find("MI_AO_");
    ASSERT_NE(first_audio, std::string::npos);
    EXPECT_LT(last_display, first_audio);
    EXPECT_LT(first_audio, calls.find("board_run_command"));
    EXPECT_LT(calls.find("board_run_command"), calls.find("board_open /dev/watchdog"));
}

TEST(DeviceInit, KeepsTheWholeBlock)
{
    DeviceParams params = device_params(3);
    params.net_video_size[2] = 2;
    ASSERT_EQ(ext_device_init(&params), 0);
    EXPECT_EQ(std::memcmp(&DdvrInputParam, &params, 1068), 0);
    EXPECT_EQ(g_vi_chn_num, 3);
}

struct WidthRow {
    int32_t gui_width;
    uint32_t timing_code;
};

TEST(DeviceInit, DerivesTheTimingCodeFromTheGuiWidth)
{
    constexpr WidthRow kRows[] = {{800, 8},  {1024, 8}, {1280, 7}, {1440, 6},       {1920, 4},
                                  {2560, 4}, {0, 4},    {-1, 4},   {0x7FFFFFFF, 4}, {1281, 4}};
    for (const WidthRow &row : kRows) {
        SCOPED_TRACE(row.gui_width);
        recording::Outcome outcome = recording::in_fresh_process([&row]() -> int64_t {
            enNorm_vga = 13; // anything but the answer
            DeviceParams params = device_params(1, row.gui_width);
            bool started = ext_device_init(&params) == 0;
            return started && globalVoDev == 0 ? enNorm_vga : -1;
        });
        EXPECT_TRUE(outcome.finished) << outcome.death;
        EXPECT_EQ(outcome.result, row.timing_code);
    }
}

TEST(DeviceInit, SaysSoWhenEightHundredPixelsGetTheLargerOutput)
{
    DeviceParams params = device_params(1, 800, 600);
    ASSERT_EQ(ext_device_init(&params), 0);
    EXPECT_EQ(enNorm_vga, 8u);
    EXPECT_PRINTED_WITHOUT_PREFIX("voput out at #,sdk3531Lib.c!");
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr 0 {background 0x800080 interface 2 timing 19 rate 0}"), 1u);
}

TEST(DeviceInit, IsSilentAboutTheOutputForOtherWidths)
{
    DeviceParams params = device_params(1, 1024, 768);
    ASSERT_EQ(ext_device_init(&params), 0);
    EXPECT_NOT_PRINTED("voput out at #,@!");
}

TEST(DeviceInit, WithoutLocalOutputSelectsTheSecondaryDeviceAndKeepsTheTimingCode)
{
    DeviceParams params = device_params(1, 1280, 1024);
    params.vo_dev_type = 3;
    ASSERT_EQ(ext_device_init(&params), 0);
    EXPECT_EQ(globalVoDev, -1);
    EXPECT_EQ(enNorm_vga, 4u);
    EXPECT_EQ(platform.count("MI_DISP_SetPubAttr 0 {background 0x800080 interface 2 timing 16 rate 0}"), 1u);
}

TEST(DeviceInit, WithLocalOutputAgainSelectsTheMainDevice)
{
    globalVoDev = -1; // as a start without local output leaves it
    DeviceParams params = device_params(1);
    params.vo_dev_type = 0;
    ASSERT_EQ(ext_device_init(&params), 0);
    EXPECT_EQ(globalVoDev, 0);
}

TEST(DeviceInit, SetsTheMainStreamDefaultsOfTheCamerasOnly)
{
    for (StreamAttr &attr : major_stream)
        std::memset(&attr, 0x11, sizeof attr);
    DeviceParams params = device_params(3);
    ASSERT_EQ(ext_device_init(&params), 0);
    for (int channel = 0; channel < 3; ++channel) {
        SCOPED_TRACE(channel);
        const StreamAttr &attr = major_stream[channel];
        EXPECT_EQ(attr.size_class, 5u);
        EXPECT_EQ(attr.width, 960u);
        EXPECT_EQ(attr.height, 576u);
        EXPECT_EQ(attr.frame_rate, 30u);
        EXPECT_EQ(attr.encode_mode, 1u);
        EXPECT_EQ(attr.format, 11u);
        for (uint32_t word :
             {attr.unread_0[0], attr.unread_0[3], attr.quality_1, attr.quality_2, attr.quality_3})
            EXPECT_EQ(word, 0x11111111u);
    }
    EXPECT_EQ(major_stream[3].size_class, 0x11111111u);
    EXPECT_EQ(minor_stream[0].size_class, 0u);
}

TEST(DeviceInit, SetsTheDefaultFormatRateAndStandard)
{
    nvrhal::global_format_e = nvrhal::globalFrmRate = nvrhal::global_videofomat = 99;
    DeviceParams params = device_params(1);
    ASSERT_EQ(ext_device_init(&params), 0);
    EXPECT_EQ(nvrhal::global_format_e, 11u);
    EXPECT_EQ(nvrhal::globalFrmRate, 30u);
    EXPECT_EQ(nvrhal::global_videofomat, 0u);
}

struct PoolRow {
    int32_t pool, max_frame_len, data_size, index_num;
};

TEST(DeviceInit, SizesTheRingsOfEveryCamerasPools)
{
    // In numbers, not by the public constants' names: programs are compiled with these, and whoever
    // changes a constant is to see it here.
    constexpr PoolRow kRows[] = {
        {STREAM_POOL_SUB, 0x20000, 0x50000, 256},
        {STREAM_POOL_MAIN, 0x60000, 0xF0000, 768},
        {STREAM_POOL_AUDIO, 340, 13600, 40},
    };
    DeviceParams params = device_params(2);
    ASSERT_EQ(ext_device_init(&params), 0);
    for (const PoolRow &row : kRows) {
        for (int32_t camera : {0, 1}) {
            SCOPED_TRACE(std::to_string(row.pool) + " of camera " + std::to_string(camera));
            const StreamChannel *rings = nvrhal::find_stream_channel(camera, row.pool);
            ASSERT_NE(rings, nullptr);
            EXPECT_EQ(rings->max_frame_len, row.max_frame_len);
            EXPECT_EQ(rings->data_size, row.data_size);
            EXPECT_EQ(rings->index_num, row.index_num);
        }
        EXPECT_EQ(nvrhal::find_stream_channel(2, row.pool), nullptr);
    }
    EXPECT_EQ(nvrhal::g_pstream_ch, nvrhal::find_stream_channel(0, STREAM_POOL_AUDIO)) << "audio comes last";
}

TEST(DeviceInit, ClearsTheSavedLayouts)
{
    std::memset(old_global_bindarg, 0x77, sizeof old_global_bindarg);
    DeviceParams params = device_params(1);
    ASSERT_EQ(ext_device_init(&params), 0);
    static const BindArgs zero[3] = {};
    EXPECT_EQ(std::memcmp(old_global_bindarg, zero, sizeof zero), 0);
}

/* In a process of its own: the rings of the first start stay allocated, readers may hold them. */
TEST(DeviceInit, RunsTheWholeSequenceAgainWhenCalledTwice)
{
    recording::Outcome outcome = recording::in_fresh_process([]() -> int64_t {
        platform.be_lenient(); // a real platform has the decoders already, and ends the second start there
        DeviceParams first = device_params(1), second = device_params(2, 1440, 900);
        bool started = ext_device_init(&first) == 0 && ext_device_init(&second) == 0;
        return started && platform.count("MI_SYS_Init") == 2 &&
               platform.count("MI_VDEC_CreateChn") == 2 + 3 && enNorm_vga == 6 && g_vi_chn_num == 2;
    });
    EXPECT_TRUE(outcome.finished) << outcome.death;
    EXPECT_EQ(outcome.result, 1);
}

TEST(DeviceInit, RefusesAMissingBlock)
{
    EXPECT_EQ(ext_device_init(nullptr), -1);
    EXPECT_EQ(platform.calls({"MI_"}), "");
}

TEST(DeviceInit, FailsWithoutCamerasBecauseThePoolsDo)
{
    DeviceParams params = device_params(0);
    EXPECT_EQ(ext_device_init(&params), -1);
    EXPECT_EQ(g_vi_chn_num, 0);
    EXPECT_EQ(major_stream[0].width, 0u);
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "stream init failed with -#!");
    EXPECT_PRINTED_AS_ERROR("sdk3531Lib.c", "system init failed with -1!");
    EXPECT_EQ(platform.calls({"MI_"}), "");
}

TEST(DeviceInit, TakesANegativeCameraCountAsNone)
{
    DeviceParams params = device_params(-5);
    EXPECT_EQ(ext_device_init(&params), -1);
    EXPECT_EQ(major_stream[0].width, 0u);
    EXPECT_EQ(platform.calls({"MI_"}), "");
}

TEST(DeviceInit, SurvivesMoreCamerasThanItHasRoomFor)
{
    for (int32_t cameras : {17, 40, 300}) {
        SCOPED_TRACE(cameras);
        recording::Outcome outcome = recording::in_fresh_process([cameras]() -> int64_t {
            DeviceParams params = device_params(cameras);
            return ext_device_init(&params);
        });
        EXPECT_TRUE(outcome.finished) << outcome.death;
        EXPECT_TRUE(outcome.result == 0 || outcome.result == -1) << outcome.result;
    }
}

} // namespace
