/* One decoder channel's life: recreated, reset, stopped, drained and destroyed, fed. */
#include <vector>

#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

constexpr int32_t kChannelRefused = static_cast<int32_t>(0xA0080009);

TEST(RecreateDecoder, MapsTheCodecCode)
{
    platform.have_decoders(4);
    for (uint32_t code : {0u, 1u, 2u, 5u, UINT32_MAX}) {
        SCOPED_TRACE(code);
        platform.forget();
        EXPECT_EQ(vdec_recreate(3, code), 0);
        std::string type = code == 1 ? "h265" : "h264";
        EXPECT_EQ(platform.calls(),
                  trace("MI_VDEC_StopChn 3\nMI_VDEC_DestroyChn 3\nMI_VDEC_CreateChn 3 {" + type +
                        " buffer 1048576 priority 0 max 1920x1080 mode 0 references 2 buffers "
                        "2}\nMI_VDEC_StartChn 3"));
    }
}

TEST(RecreateDecoder, ReturnsTheFirstFailure)
{
    platform.have_decoders(4);
    platform.script("MI_VDEC_StopChn").once().returns(kChannelRefused);
    EXPECT_EQ(vdec_recreate(3, 1), kChannelRefused);
    EXPECT_EQ(platform.calls(), "MI_VDEC_StopChn 3");
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "stopRecvStream VDEC fail for 0xa0080009!");

    platform.script("MI_VDEC_DestroyChn").once().returns(kChannelRefused);
    EXPECT_EQ(vdec_recreate(3, 1), kChannelRefused);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn"), 0u);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", " VDEC DestroyChn fail for 0xa0080009!");

    platform.script("MI_VDEC_CreateChn").once().returns(kChannelRefused);
    EXPECT_NE(vdec_recreate(3, 1), 0);
    EXPECT_EQ(platform.count("MI_VDEC_StartChn"), 0u);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "create vdec chn failed!");
}

TEST(CreateOneDecoder, HasTheScreensSizeAndNoOutputSizeOfItsOwn)
{
    enNorm_vga = 1;
    EXPECT_EQ(vdec_create_chnn(2, 6), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VDEC_CreateChn 6 {jpeg buffer 1048576 priority 0 max 1280x720 mode 0 references 0 buffers 0}
        MI_VDEC_StartChn 6
    )"));
    platform.script("MI_VDEC_StartChn").once().returns(kChannelRefused);
    EXPECT_EQ(vdec_create_chnn(1, 6), -1);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "create vdec chn failed!");
}

TEST(ResetDecoder, StopsAndStarts)
{
    platform.have_decoders(6);
    EXPECT_EQ(vdec_resetchn(5), 0);
    EXPECT_EQ(platform.calls(), "MI_VDEC_StopChn 5\nMI_VDEC_StartChn 5");
}

TEST(ResetDecoder, StartsEvenWhenTheStopFails)
{
    platform.have_decoders(6);
    platform.script("MI_VDEC_StopChn").once().returns(kChannelRefused);
    EXPECT_EQ(vdec_resetchn(5), 0);
    EXPECT_EQ(platform.count("MI_VDEC_StartChn"), 1u);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "HI_MPI_VDEC_StopRecvStream failed errno 0xa0080009");
    platform.script("MI_VDEC_StartChn").once().returns(kChannelRefused);
    EXPECT_NE(vdec_resetchn(5), 0);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "HI_MPI_VDEC_StartRecvStream failed errno 0xa0080009");
}

TEST(ResetDecoder, ResetsAllCamerasButNotTheSpareChannel)
{
    platform.have_decoders(6);
    g_vi_chn_num = 3;
    platform.script("MI_VDEC_StopChn").nth(1).returns(kChannelRefused);
    platform.script("MI_VDEC_StartChn").nth(2).returns(kChannelRefused);
    vdec_resetallchn();
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VDEC_StopChn 0
        MI_VDEC_StartChn 0
        MI_VDEC_StopChn 1
        MI_VDEC_StartChn 1
        MI_VDEC_StopChn 2
        MI_VDEC_StartChn 2
    )"));
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "HI_MPI_VDEC_StopRecvStream failed errno 0xa0080009");
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "HI_MPI_VDEC_StartRecvStream failed errno 0xa0080009, 1");
}

TEST(StopDecoder, StopsOneOrAllCameras)
{
    platform.have_decoders(6);
    EXPECT_EQ(vdec_stopdecrecv(4), 0);
    EXPECT_EQ(platform.calls(), "MI_VDEC_StopChn 4");
    platform.forget();
    platform.script("MI_VDEC_StopChn").once().returns(kChannelRefused);
    EXPECT_NE(vdec_stopdecrecv(4), 0);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "HI_MPI_VDEC_StopRecvStream failed errno 0xa0080009");

    platform.forget();
    g_vi_chn_num = 3;
    platform.script("MI_VDEC_StopChn").nth(2).returns(kChannelRefused);
    vdec_stopalldecchn();
    EXPECT_EQ(platform.calls(), "MI_VDEC_StopChn 0\nMI_VDEC_StopChn 1\nMI_VDEC_StopChn 2");
    EXPECT_EQ(recording::times_printed("HI_MPI_VDEC_StopRecvStream failed errno 0xa0080009"), 1u);
}

TEST(DestroyDecoder, WithoutWaitingStopsAndDestroys)
{
    for (int32_t wait : {0, 2, -1}) {
        platform.forget();
        platform.have_decoders(3);
        EXPECT_EQ(vdec_wait_destroy_chn(2, wait, 0), 0);
        EXPECT_EQ(platform.calls(), "MI_VDEC_StopChn 2\nMI_VDEC_DestroyChn 2");
    }
}

TEST(DestroyDecoder, DrainsFirstWhenAskedTo)
{
    platform.have_decoders(3);
    const std::vector<MI_VDEC_ChnStat> states = {{900, 2, 3}, {0, 0, 1}, {0, 0, 0}};
    size_t asked = 0;
    platform.script("MI_VDEC_GetChnStat").fills([&](recording::Args &args) {
        args.record<MI_VDEC_ChnStat>(1) = states.at(asked++);
    });
    EXPECT_EQ(vdec_wait_destroy_chn(2, 1, 0), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VDEC_StopChn 2
        board_sleep_us 40000
        MI_VDEC_GetChnStat 2
        board_sleep_us 40000
        MI_VDEC_GetChnStat 2
        board_sleep_us 40000
        MI_VDEC_GetChnStat 2
        MI_VDEC_DestroyChn 2
    )"));
    EXPECT_EQ(platform.time_us(), 120000);
    EXPECT_PRINTED_WITHOUT_PREFIX("had no stream and pic left");
    EXPECT_EQ(recording::times_printed("had no stream and pic left"), 1u);
}

TEST(DestroyDecoder, WaitsForTheStreamAsWellAsForThePictures)
{
    platform.have_decoders(3);
    const std::vector<MI_VDEC_ChnStat> states = {{500, 1, 0}, {0, 0, 0}};
    size_t asked = 0;
    platform.script("MI_VDEC_GetChnStat").fills([&](recording::Args &args) {
        args.record<MI_VDEC_ChnStat>(1) = states.at(asked++);
    });
    EXPECT_EQ(vdec_wait_destroy_chn(2, 1, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_GetChnStat"), 2u);
}

TEST(DestroyDecoder, WaitsWithoutALimit)
{
    platform.have_decoders(3);
    unsigned rounds = 0;
    platform.script("MI_VDEC_GetChnStat").fills([&](recording::Args &args) {
        args.record<MI_VDEC_ChnStat>(1).left_pictures = ++rounds < 5000 ? 1 : 0;
    });
    EXPECT_EQ(vdec_wait_destroy_chn(2, 1, 0), 0);
    EXPECT_EQ(rounds, 5000u);
    EXPECT_EQ(platform.time_us(), 5000 * 40000ll);
}

TEST(DestroyDecoder, StopsAtItsFirstFailure)
{
    platform.have_decoders(3);
    platform.script("MI_VDEC_StopChn").once().returns(kChannelRefused);
    EXPECT_NE(vdec_wait_destroy_chn(2, 1, 0), 0);
    EXPECT_EQ(platform.calls(), "MI_VDEC_StopChn 2");
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "MI_VDEC_StopChn failed errno 0xa0080009 ");

    platform.script("MI_VDEC_GetChnStat").once().returns(kChannelRefused);
    EXPECT_NE(vdec_wait_destroy_chn(2, 1, 0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_DestroyChn"), 0u);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "MI_VDEC_GetChnStat failed errno 0xa0080009 ");

    platform.script("MI_VDEC_DestroyChn").once().returns(kChannelRefused);
    EXPECT_NE(vdec_wait_destroy_chn(2, 0, 0), 0);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "MI_VDEC_DestroyChn failed errno 0xa0080009 ");
}

TEST(FeedDecoder, SendsWithTwentyMilliseconds)
{
    platform.have_decoders(3);
    const uint8_t bytes[] = {0, 0, 0, 1, 0x65};
    MI_VDEC_Stream stream = {bytes, sizeof bytes, 77, 0, 0};
    EXPECT_EQ(vdec_send_stream(2, &stream), 0);
    EXPECT_EQ(platform.calls(), "MI_VDEC_SendStream 2 {5 bytes pts 77 eof 0 eos 0} 20");
}

TEST(FeedDecoder, ResetsTheChannelWhenASendFails)
{
    platform.have_decoders(3);
    const uint8_t bytes[] = {1};
    MI_VDEC_Stream stream = {bytes, sizeof bytes, 77, 0, 0};
    platform.script("MI_VDEC_SendStream").returns(0xA008000F);
    EXPECT_EQ(vdec_send_stream(2, &stream), -1);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VDEC_SendStream 2 {1 bytes pts 77 eof 0 eos 0} 20
        MI_VDEC_StopChn 2
        MI_VDEC_StartChn 2
    )"));
    EXPECT_PRINTED_WITHOUT_PREFIX("Chnn = 2 MI_VDEC_SendStream failed errno 0xa008000f  vdec_venc.c #");
}

TEST(FeedDecoder, SurvivesAMissingRecord)
{
    vdec_send_stream(2, nullptr);
    EXPECT_LE(platform.count("MI_VDEC_SendStream"), 1u);
}

} // namespace
