/* vdec_create: decoder channels of start-up, and vdec_open_chn under it. */
#include <string>

#include "core/output_timing.h"
#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

constexpr int32_t kCreateRefused = static_cast<int32_t>(0xA0080003);

TEST(CreateDecoders, OneCameraGetsTwoChannelsOnAGridOfTwo)
{
    g_vi_chn_num = 1;
    EXPECT_EQ(vdec_create(1, 2), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VDEC_CreateChn 0 {h265 buffer 1048576 priority 0 max 1920x1080 mode 1 references 2 buffers 2}
        MI_VDEC_StartChn 0
        MI_VDEC_SetOutputPortAttr 0 {960x540}
        MI_VDEC_CreateChn 1 {h265 buffer 1048576 priority 0 max 1920x1080 mode 1 references 2 buffers 2}
        MI_VDEC_StartChn 1
        MI_VDEC_SetOutputPortAttr 1 {960x540}
    )"));
    EXPECT_PRINTED_IN_ORDER(R"(
        u32Square=2,s32Cnt=2
        MI_VDEC_CreateChn chnn=0 MI_SUCCESS
        MI_VDEC_StartChn chnn=0 MI_SUCCESS
    )");
}

struct DecoderRow {
    int32_t count;
    const char *side, *output;
};

TEST(CreateDecoders, SizesTheOutputByTheGridOfTheCount)
{
    constexpr DecoderRow kRows[] = {
        {1, "1", "{1920x1080}"}, {2, "2", "{960x540}"},  {4, "2", "{960x540}"},  {5, "3", "{640x360}"},
        {9, "3", "{640x360}"},   {10, "4", "{480x270}"}, {16, "4", "{480x270}"}, {17, "5", "{384x216}"},
        {25, "5", "{384x216}"},  {26, "6", "{320x180}"}, {36, "6", "{320x180}"}, {37, "0", "{0x0}"},
        {100, "0", "{0x0}"},
    };
    for (const DecoderRow &row : kRows) {
        SCOPED_TRACE(row.count);
        platform.reset();
        recording::forget_printed();
        g_vi_chn_num = row.count - 1;
        EXPECT_EQ(vdec_create(1, row.count), 0);
        EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), static_cast<unsigned>(row.count));
        std::string last = std::to_string(row.count - 1);
        EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr " + last + " " + row.output), 1u);
        EXPECT_PRINTED_WITHOUT_PREFIX("u32Square=" + std::string(row.side) +
                                      ",s32Cnt=" + std::to_string(row.count));
    }
}

TEST(CreateDecoders, KeepsTheOutputEven)
{
    enNorm_vga = 10; // 1366x768, grid of 3: 455x256
    EXPECT_EQ(vdec_create(0, 9), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 8 {454x256}"), 1u);
    EXPECT_EQ(recording::times_printed(
                  "stVdecOutAttr.u16Width=454,stVdecOutAttr.u16Height=256,stVdispOutRect.u16PicW=454,"
                  "stVdispOutRect.u16PicH=256"),
              9u);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn 0 {h264 buffer 1048576 priority 0 max 1366x768 mode 1 "
                             "references 2 buffers 2}"),
              1u);
}

TEST(CreateDecoders, NeverCreatesMoreThanOneBeyondTheCameras)
{
    g_vi_chn_num = 2;
    EXPECT_EQ(vdec_create(1, 20), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 3u);
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 2 {384x216}"), 1u) << "the grid is still that of 20";
}

TEST(CreateDecoders, WithoutChannelsDoesNothing)
{
    EXPECT_EQ(vdec_create(1, 0), 0);
    EXPECT_EQ(vdec_create(1, -4), 0);
    EXPECT_EQ(platform.calls(), "");
}

TEST(CreateDecoders, StopsAtTheFirstChannelThatCannotBeCreated)
{
    platform.script("MI_VDEC_CreateChn").nth(3).returns(kCreateRefused);
    EXPECT_EQ(vdec_create(1, 5), -1);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "HI_MPI_VDEC_CreateChn failed errno 0xa0080003,chnid:2 ");
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "create vdec chn failed!");
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 3u);
    EXPECT_EQ(platform.count("MI_VDEC_StopChn"), 0u) << "the earlier ones run on";
    EXPECT_EQ(platform.count("MI_VDEC_DestroyChn"), 0u);
}

TEST(CreateDecoders, StopsAtTheFirstChannelThatCannotBeStarted)
{
    platform.script("MI_VDEC_StartChn").nth(2).returns(kCreateRefused);
    EXPECT_EQ(vdec_create(1, 5), -1);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "MI_VDEC_StartChn failed errno 0xa0080003 ");
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr"), 1u);
}

TEST(CreateDecoders, ReturnsTheCodeOfAFailingOutputPort)
{
    platform.script("MI_VDEC_SetOutputPortAttr").nth(2).returns(kCreateRefused);
    EXPECT_EQ(vdec_create(1, 5), kCreateRefused);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 2u);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "MI_VDEC_SetOutputPortAttr failed errno 0xa0080003 ");
}

TEST(CreateDecoders, RefusesACodecThatDoesNotExist)
{
    for (uint32_t codec : {3u, 4u, 0x80000000u, UINT32_MAX}) {
        SCOPED_TRACE(codec);
        EXPECT_EQ(vdec_create(codec, 2), -1);
    }
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "err type ");
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "create vdec chn failed!");
    EXPECT_EQ(platform.calls(), "");
}

TEST(CreateDecoders, UsesNoSizeForATimingNeverLookedUp)
{
    enNorm_vga = 99;
    EXPECT_EQ(vdec_create(1, 2), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("Unspport Ap timing (99)");
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 0 {0x0}"), 1u);
}

TEST(CreateDecoders, KeepsTheTimingValuesForTheDisplay)
{
    enNorm_vga = 8;
    ASSERT_EQ(vdec_create(1, 0), 0) << "looked up even when there is nothing to create";
    EXPECT_EQ(nvrhal::D_HdmiTiming, 36u);
    EXPECT_EQ(nvrhal::D_DispTiming, 19u);
}

TEST(CreateDecoders, KeepsTheSizeOfTheLastKnownTiming)
{
    enNorm_vga = 1;
    ASSERT_EQ(vdec_create(1, 1), 0);
    platform.reset();
    enNorm_vga = 99;
    EXPECT_EQ(vdec_create(1, 1), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 0 {1280x720}"), 1u);
}

struct BufferRow {
    uint16_t width, height;
    uint32_t buffer;
};

TEST(OpenDecoder, SizesTheStreamBufferByThePicture)
{
    constexpr BufferRow kRows[] = {
        {720, 576, 0x80000},    {720, 578, 0x100000},   {352, 288, 0x80000},
        {0, 0, 0x80000},        {1920, 1080, 0x100000}, {1920, 1088, 0x100000},
        {1922, 1088, 0x200000}, {2040, 1024, 0x100000}, // 2040 * 1024 = 0x1FE000
        {2042, 1024, 0x200000}, {2560, 1440, 0x200000}, {65535, 65535, 0x200000},
    };
    for (const BufferRow &row : kRows) {
        SCOPED_TRACE(std::to_string(row.width) + "x" + std::to_string(row.height));
        platform.reset();
        EXPECT_EQ(vdec_open_chn(7, &row.width, &row.height, 0, 1), 0);
        EXPECT_EQ(platform.calls(), "MI_VDEC_CreateChn 7 {h264 buffer " + std::to_string(row.buffer) +
                                        " priority 0 max " + std::to_string(row.width) + "x" +
                                        std::to_string(row.height) +
                                        " mode 1 references 2 buffers 2}\nMI_VDEC_StartChn 7");
    }
}

TEST(OpenDecoder, KeepsNoReferencesForJpeg)
{
    uint16_t width = 704, height = 576;
    EXPECT_EQ(vdec_open_chn(1, &width, &height, 2, 0), 0);
    EXPECT_EQ(
        platform.calls({"MI_VDEC_CreateChn"}),
        "MI_VDEC_CreateChn 1 {jpeg buffer 524288 priority 0 max 704x576 mode 0 references 0 buffers 0}");
}

TEST(OpenDecoder, TakesTheVideoModeAsItIsGivenForEveryCodec)
{
    uint16_t width = 704, height = 576;
    constexpr const char *kCodecs[] = {"h264", "h265", "jpeg"};
    for (uint32_t codec : {0u, 1u, 2u}) {
        for (uint32_t mode : {0u, 1u}) {
            SCOPED_TRACE(std::string(kCodecs[codec]) + " in mode " + std::to_string(mode));
            platform.reset();
            EXPECT_EQ(vdec_open_chn(1, &width, &height, codec, mode), 0);
            const std::string frames = codec == 2 ? "0" : "2";
            EXPECT_EQ(platform.calls({"MI_VDEC_CreateChn"}),
                      std::string("MI_VDEC_CreateChn 1 {") + kCodecs[codec] +
                          " buffer 524288 priority 0 max 704x576 mode " + std::to_string(mode) +
                          " references " + frames + " buffers " + frames + "}");
        }
    }
}

TEST(OpenDecoder, PassesThePlatformsCodeThrough)
{
    uint16_t width = 704, height = 576;
    platform.script("MI_VDEC_CreateChn").once().returns(kCreateRefused);
    EXPECT_EQ(vdec_open_chn(1, &width, &height, 1, 0), kCreateRefused);
    EXPECT_EQ(platform.count("MI_VDEC_StartChn"), 0u);
    platform.script("MI_VDEC_StartChn").once().returns(kCreateRefused);
    EXPECT_EQ(vdec_open_chn(1, &width, &height, 1, 0), kCreateRefused);
    EXPECT_NOT_PRINTED("MI_VDEC_StartChn chnn=1 MI_SUCCESS");
}

TEST(OpenDecoder, RefusesMissingSizesAndUnknownCodecs)
{
    uint16_t size = 704;
    EXPECT_EQ(vdec_open_chn(1, nullptr, &size, 1, 0), -1);
    EXPECT_EQ(vdec_open_chn(1, &size, nullptr, 1, 0), -1);
    EXPECT_EQ(vdec_open_chn(1, &size, &size, 3, 0), -1);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "err type ");
    EXPECT_EQ(platform.calls(), "");
}

} // namespace
