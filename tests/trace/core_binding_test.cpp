/* Bindings between decoder channels and display ports. */
#include <string>

#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;
using recording::trace;

namespace
{

constexpr int32_t kBindRefused = static_cast<int32_t>(0xA0010005);

TEST(BindPort, ConnectsAChannelToAPortOfTheDevice)
{
    platform.have_decoders(6);
    EXPECT_EQ(vo_bind_vpss(0, 3, 5, 99), 0);
    EXPECT_EQ(vo_bind_vpss(2, 0, 1, 0), 0);
    EXPECT_EQ(vo_bind_vpss(-1, 0, 1, 0), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_SYS_BindChnPort {vdec,0,5,0} {disp,0,3,0} 15 15
        MI_SYS_BindChnPort {vdec,2,1,0} {disp,2,0,0} 15 15
        MI_SYS_BindChnPort {vdec,-1,1,0} {disp,-1,0,0} 15 15
    )"));
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(BindPort, SaysWhatFailed)
{
    platform.script("MI_SYS_BindChnPort").returns(kBindRefused);
    EXPECT_EQ(vo_bind_vpss(0, 3, 5, 0), -1);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "failed with 0xa0010005!");
}

TEST(UnbindPort, DisconnectsWhatBindConnected)
{
    platform.have_decoders(6);
    ASSERT_EQ(vo_bind_vpss(2, 3, 5, 99), 0);
    platform.forget();
    EXPECT_EQ(vo_unbind_vpss(2, 3, 5, 99), 0);
    EXPECT_EQ(platform.calls(), "MI_SYS_UnBindChnPort {vdec,2,5,0} {disp,2,3,0}");
    EXPECT_PRINTED_WITHOUT_PREFIX("unbind vpss success! ");
}

TEST(UnbindPort, SaysWhatFailed)
{
    platform.script("MI_SYS_UnBindChnPort").returns(kBindRefused);
    EXPECT_EQ(vo_unbind_vpss(0, 3, 5, 0), -1);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "failed with 0xa0010005!");
    EXPECT_NOT_PRINTED("unbind vpss success! ");
}

TEST(BindAll, ConnectsChannelsAndPortsOfTheSameNumber)
{
    platform.have_decoders(6);
    EXPECT_EQ(vdec_bind_vpss(2), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_SYS_BindChnPort {vdec,0,0,0} {disp,0,0,0} 15 15
        MI_SYS_BindChnPort {vdec,0,1,0} {disp,0,1,0} 15 15
    )"));
}

TEST(BindAll, StopsAtTheFirstFailure)
{
    platform.have_decoders(6);
    platform.script("MI_SYS_BindChnPort").nth(2).returns(kBindRefused);
    EXPECT_EQ(vdec_bind_vpss(4), -1);
    EXPECT_EQ(platform.count("MI_SYS_BindChnPort"), 2u);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "HI_MPI_SYS_Bind failed with 0xa0010005!");
}

TEST(BindAll, OfNothingSucceeds)
{
    EXPECT_EQ(vdec_bind_vpss(0), 0);
    EXPECT_EQ(vdec_bind_vpss(-3), 0);
    EXPECT_EQ(platform.calls(), "");
}

TEST(UnbindDecoder, NamesChannelAndPort)
{
    platform.have_decoders(5);
    const MI_SYS_ChnPort first = {MI_MODULE_VDEC, 0, 4, 0}, second = {MI_MODULE_VDEC, 0, 4, 1};
    const MI_SYS_ChnPort port_7 = {MI_MODULE_DISP, 0, 7, 0}, port_9 = {MI_MODULE_DISP, 0, 9, 0};
    ASSERT_EQ(MI_SYS_BindChnPort(&first, &port_7, 15, 15), 0);
    ASSERT_EQ(MI_SYS_BindChnPort(&second, &port_9, 15, 15), 0);
    platform.forget();
    EXPECT_EQ(vdec_unbind_vpss(4, 7), 0);
    EXPECT_EQ(vdec_unbind_vo(4, 1, 9), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_SYS_UnBindChnPort {vdec,0,4,0} {disp,0,7,0}
        MI_SYS_UnBindChnPort {vdec,0,4,1} {disp,0,9,0}
    )"));
}

TEST(UnbindDecoder, SaysWhatFailed)
{
    platform.script("MI_SYS_UnBindChnPort").returns(kBindRefused);
    EXPECT_EQ(vdec_unbind_vpss(4, 7), -1);
    EXPECT_EQ(vdec_unbind_vo(4, 1, 9), -1);
    EXPECT_EQ(recording::times_printed("HI_MPI_SYS_UnBind failed with 0xa0010005!"), 2u);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "HI_MPI_SYS_UnBind failed with 0xa0010005!");
}

TEST(UnbindWhateverFeedsAPort, PassesTheResultOn)
{
    platform.script("MI_SYS_UnBindChnPort").nth(1).returns(0); // it knows what an empty source means
    platform.script("MI_SYS_UnBindChnPort").nth(2).returns(kBindRefused);
    EXPECT_EQ(vo_unbind_vi(2, 6), 0);
    EXPECT_EQ(platform.calls(), "MI_SYS_UnBindChnPort {0,0,0,0} {disp,2,6,0}");
    EXPECT_EQ(vo_unbind_vi(2, 6), kBindRefused);
}

} // namespace
