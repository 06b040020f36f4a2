/* re_create_vdec, and the flush of the last single picture by the next single layout. */
#include "view_frame.h"

using namespace view_test;
using recording::platform;
using recording::trace;

namespace
{

constexpr int32_t kFlushRefused = static_cast<int32_t>(0xA0080009);

TEST(FlushDecoder, RebuildsAChannelWithItsAttributesAndItsOutputSize)
{
    create_decoders(4, 704, 576);
    MI_VDEC_OutputPortAttr size = {320, 240};
    MI_VDEC_SetOutputPortAttr(3, &size);
    platform.forget();
    EXPECT_EQ(re_create_vdec(3), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_VDEC_GetOutputPortAttr 3
        MI_VDEC_StopChn 3
        MI_SYS_UnBindChnPort {vdec,0,3,0} {disp,0,3,0}
        MI_VDEC_GetChnAttr 3
        MI_VDEC_DestroyChn 3
        MI_VDEC_CreateChn 3 {h265 buffer 524288 priority 0 max 704x576 mode 1 references 2 buffers 2}
        MI_VDEC_SetOutputPortAttr 3 {320x240}
        MI_SYS_BindChnPort {vdec,0,3,0} {disp,0,3,0} 15 15
        MI_VDEC_StartChn 3
    )"));
}

TEST(FlushDecoder, GoesOnWithoutTheOutputSize)
{
    create_decoders(1);
    platform.script("MI_VDEC_GetOutputPortAttr").once().fills([](recording::Args &args) {
        args.record<MI_VDEC_OutputPortAttr>(1) = {77, 55}; // a failing call may leave anything behind
        args.result = kFlushRefused;
    });
    platform.script("MI_VDEC_SetOutputPortAttr").once().returns(kFlushRefused);
    EXPECT_EQ(re_create_vdec(0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 0 {0x0}"), 1u);
    EXPECT_PRINTED_IN_ORDER(
        "MI_VDEC_GetOutputPortAttr,vdec_venc.c,#\nMI_VDEC_SetOutputPortAttr,vdec_venc.c,#");
    EXPECT_EQ(platform.count("MI_VDEC_StartChn"), 1u);
}

TEST(FlushDecoder, DoesNotCheckTheStopNorTheBindings)
{
    platform.be_lenient(); // a decoder that would not stop cannot be destroyed
    create_decoders(1);
    platform.script("MI_VDEC_StopChn").returns(kFlushRefused);
    platform.script("MI_SYS_UnBindChnPort").returns(kFlushRefused);
    platform.script("MI_SYS_BindChnPort").returns(kFlushRefused);
    EXPECT_EQ(re_create_vdec(0), 0);
    EXPECT_EQ(platform.count("MI_VDEC_StartChn"), 1u);
}

struct StopRow {
    const char *call, *message;
};

TEST(FlushDecoder, ReturnsTheCodeOfWhatCannotBeDone)
{
    constexpr StopRow kRows[] = {
        {"MI_VDEC_GetChnAttr", "MI_VDEC_GetChnAttr failed errno 0xa0080009,chnid:2 "},
        {"MI_VDEC_DestroyChn", "MI_VDEC_DestroyChn failed errno 0xa0080009,chnid:2 "},
        {"MI_VDEC_CreateChn", "MI_VDEC_CreateChn failed errno 0xa0080009,chnid:2 "},
        {"MI_VDEC_StartChn", "MI_VDEC_StartChn failed errno 0xa0080009 "},
    };
    create_decoders(3);
    for (const StopRow &row : kRows) {
        SCOPED_TRACE(row.call);
        platform.forget();
        platform.have_decoders(3); // the row before may have destroyed it
        platform.script(row.call).once().returns(kFlushRefused);
        EXPECT_EQ(re_create_vdec(2), kFlushRefused);
        EXPECT_PRINTED_AS_ERROR("vdec_venc.c", row.message);
        std::string since = platform.calls_since(row.call);
        EXPECT_EQ(since.find('\n'), std::string::npos) << since;
    }
}

TEST(SingleView, FlushesThePreviousSingleChannelFirst)
{
    create_decoders(3);
    DispAttrib first = pane(0, 0, 0, 1920, 1080), second = pane(2, 0, 0, 1920, 1080);
    ASSERT_EQ(ext_change_display_format(&first, 1), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn 0"), 1u);
    platform.forget();
    EXPECT_EQ(ext_change_display_format(&second, 1), 0);
    std::string calls = platform.calls();
    EXPECT_EQ(calls.find("MI_VDEC_GetOutputPortAttr 0"), 0u) << "the flush comes before all else";
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn 0"), 1u);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn 2"), 1u);
    EXPECT_LT(calls.find("MI_VDEC_StartChn 0"), calls.find("MI_DISP_DisableInputPort 0 0"));
}

TEST(SingleView, IsForgottenByALayoutOfSeveralPanes)
{
    create_decoders(3);
    DispAttrib single = pane(0, 0, 0, 1920, 1080);
    DispAttrib two[] = {pane(1, 0, 0, 960, 540), pane(2, 960, 0, 960, 540)};
    ASSERT_EQ(ext_change_display_format(&single, 1), 0);
    ASSERT_EQ(ext_change_display_format(two, 2), 0);
    platform.forget();
    EXPECT_EQ(ext_change_display_format(two, 1), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn 0"), 0u);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn 1"), 1u);
}

TEST(SingleView, LeavesTheLayoutUnchangedWhenTheFlushFails)
{
    create_decoders(3);
    DispAttrib first = pane(0, 0, 0, 1920, 1080), second = pane(2, 0, 0, 1920, 1080);
    ASSERT_EQ(ext_change_display_format(&first, 1), 0);
    platform.forget();
    platform.script("MI_VDEC_StartChn").once().returns(kFlushRefused);
    EXPECT_EQ(ext_change_display_format(&second, 1), kFlushRefused);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "MI_VDEC_StartChn failed errno 0xa0080009 ");
    EXPECT_EQ(recording::times_printed("MI_VDEC_StartChn failed errno 0xa0080009 "), 2u)
        << "by the flush and by the layout";
    EXPECT_EQ(platform.calls({"MI_DISP_"}), "");
    EXPECT_EQ(cur_display_chnn, 0);
    EXPECT_EQ(zoom_channel, 2u);
    // The first channel still counts as the single one: it is flushed again.
    platform.forget();
    EXPECT_EQ(ext_change_display_format(&second, 1), 0);
    EXPECT_EQ(platform.count("MI_VDEC_CreateChn 0"), 1u);
}

TEST(SingleView, SurvivesAChannelThatDoesNotExist)
{
    create_decoders(2);
    DispAttrib single = pane(65535, 0, 0, 1920, 1080);
    EXPECT_EQ(ext_change_display_format(&single, 1), 0);
    EXPECT_EQ(cur_display_chnn, 0);
    EXPECT_EQ(zoom_channel, 65535u);
    platform.script("MI_VDEC_GetChnAttr").returns(kFlushRefused);
    EXPECT_EQ(ext_change_display_format(&single, 1), kFlushRefused);
}

} // namespace
