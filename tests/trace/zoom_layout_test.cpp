/* ext_change_zoom_format and ext_change_zoom_slave: panes placed anew, no decoder touched. */
#include "media_call_count.h"
#include "view/layout_state.h"
#include "view_frame.h"

using namespace view_test;
using recording::platform;
using recording::trace;

namespace
{

TEST(ZoomLayout, HidesEveryPortThenPlacesPaneIOnPortI)
{
    g_vi_chn_num = 3;
    globalVoDev = 2;
    cur_display_chnn = 0x42;
    MI_DISP_InputPortAttr before = {{1, 2, 3, 4}, 704, 576};
    MI_DISP_SetInputPortAttr(2, 1, &before);
    platform.forget();
    DispAttrib panes[] = {pane(2, 641, 361, 959, 539), pane(9, 1, 3, 5, 7)};
    EXPECT_EQ(ext_change_zoom_format(panes, 2), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_HideInputPort 2 0
        MI_DISP_HideInputPort 2 1
        MI_DISP_HideInputPort 2 2
        MI_DISP_GetInputPortAttr 2 0
        MI_DISP_SetInputPortAttr 2 0 {window 641,361 959x539 source 0x0}
        MI_DISP_ShowInputPort 2 0
        MI_DISP_GetInputPortAttr 2 1
        MI_DISP_SetInputPortAttr 2 1 {window 1,3 5x7 source 704x576}
        MI_DISP_ShowInputPort 2 1
    )"));
    EXPECT_EQ(cur_display_chnn, 0x42);
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(ZoomLayout, EndsAtThePortThatCannotBePlaced)
{
    const struct {
        const char *call, *text;
    } rows[] = {{"MI_DISP_GetInputPortAttr", "Get channel 1 attr failed with errno 0xa00f0003!"},
                {"MI_DISP_SetInputPortAttr", "Set channel 1 attr failed with errno 0xa00f0003!"}};
    g_vi_chn_num = 3;
    DispAttrib panes[] = {pane(0, 0, 0, 64, 64), pane(1, 64, 0, 64, 64), pane(2, 0, 64, 64, 64)};
    for (const auto &row : rows) {
        platform.forget();
        platform.script(row.call).nth(2).returns(kDisplayRefused);
        EXPECT_EQ(ext_change_zoom_format(panes, 3), -1);
        EXPECT_PRINTED_AS_ERROR("vdec_venc.c", row.text);
        EXPECT_EQ(platform.count("MI_DISP_ShowInputPort"), 1u); // pane 0 stays, nothing is undone
        EXPECT_EQ(platform.count(row.call), 2u);
    }
}

TEST(ZoomLayout, OfNoPanesHidesEverything)
{
    g_vi_chn_num = 2;
    for (int32_t count : {0, -1}) {
        platform.forget();
        EXPECT_EQ(ext_change_zoom_format(nullptr, count), 0);
        EXPECT_EQ(platform.calls(), trace(R"(
            MI_DISP_HideInputPort 0 0
            MI_DISP_HideInputPort 0 1
        )"));
    }
}

TEST(ZoomLayout, HidesThePortOfEveryCamera)
{
    g_vi_chn_num = 40; // more than any layout has panes
    EXPECT_EQ(ext_change_zoom_format(nullptr, 0), 0);
    EXPECT_EQ(platform.count("MI_DISP_HideInputPort"), 40u);
    EXPECT_EQ(platform.count("MI_DISP_HideInputPort 0 39"), 1u);
}

TEST(ZoomLayout, RefusesPanesThatAreNotThere)
{
    EXPECT_EQ(ext_change_zoom_format(nullptr, 1), -1);
    EXPECT_EQ(ext_change_zoom_slave(nullptr, 1), -1);
    EXPECT_EQ(platform.calls(), "");
}

TEST(ZoomLayout, GoesOnWhenAPortCannotBeHiddenOrShown)
{
    g_vi_chn_num = 2;
    DispAttrib panes[] = {pane(0, 0, 0, 64, 64), pane(1, 64, 0, 64, 64)};
    platform.script("MI_DISP_HideInputPort").returns(kDisplayRefused);
    platform.script("MI_DISP_ShowInputPort").returns(kDisplayRefused);
    EXPECT_EQ(ext_change_zoom_format(panes, 2), 0);
    for (const char *text : {"vo hide channel 0 failed with errno 0xa00f0003!",
                             "vo hide channel 1 failed with errno 0xa00f0003!",
                             "vo show channel 0 failed with errno 0xa00f0003!",
                             "vo show channel 1 failed with errno 0xa00f0003!"})
        EXPECT_PRINTED_AS_ERROR("vdec_venc.c", text);
}

/* Port and rectangle have the number of the pane count, not of a pane. */
TEST(SecondaryZoom, ShowsThePortBehindThePanesAtTheRectangleLeftThere)
{
    globalVoDev = -1;
    g_vi_chn_num = 8;
    set_bind_para[2][2] = {10, 20, 30, 40};
    DispAttrib panes[] = {pane(5, 641, 361, 959, 539), pane(6, 3, 5, 7, 9)};
    EXPECT_EQ(ext_change_zoom_slave(panes, 2), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_HideInputPort -1 6
        MI_DISP_GetInputPortAttr -1 2
        MI_DISP_SetInputPortAttr -1 2 {window 10,20 30x40 source 0x0}
        MI_DISP_ShowInputPort -1 2
    )"));
    EXPECT_EQ(set_bind_para[2][0].x, 640u);
    EXPECT_EQ(set_bind_para[2][0].y, 360u);
    EXPECT_EQ(set_bind_para[2][0].w, 958u);
    EXPECT_EQ(set_bind_para[2][0].h, 538u);
    EXPECT_EQ(set_bind_para[2][1].x, 2u);
    EXPECT_EQ(set_bind_para[2][2].x, 10u);
}

TEST(SecondaryZoom, OfNoPanesUsesChannelAndRectangle0)
{
    globalVoDev = 0;
    set_bind_para[2][0] = {2, 4, 6, 8};
    for (int32_t count : {0, -7}) {
        platform.forget();
        EXPECT_EQ(ext_change_zoom_slave(nullptr, count), 0);
        EXPECT_EQ(platform.calls(), trace(R"(
            MI_DISP_HideInputPort 0 0
            MI_DISP_GetInputPortAttr 0 0
            MI_DISP_SetInputPortAttr 0 0 {window 2,4 6x8 source 0x0}
            MI_DISP_ShowInputPort 0 0
        )"));
    }
    EXPECT_EQ(set_bind_para[2][0].h, 8u);
}

TEST(SecondaryZoom, StoresUpTo31RectanglesIntoTheSpareBank)
{
    std::vector<DispAttrib> panes;
    for (uint16_t i = 0; i < 33; ++i)
        panes.push_back(pane(i, static_cast<uint16_t>(100 + 2 * i), 0, 2, 2));
    EXPECT_EQ(ext_change_zoom_slave(panes.data(), 32), -1);
    EXPECT_EQ(ext_change_zoom_slave(panes.data(), 33), -1);
    EXPECT_EQ(ext_change_zoom_slave(panes.data(), INT32_MAX), -1);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(set_bind_para[2][0].x, 0u);

    set_bind_para[3][15] = {8, 8, 8, 8};
    EXPECT_EQ(ext_change_zoom_slave(panes.data(), 31), 0);
    EXPECT_EQ(set_bind_para[2][15].x, 130u);
    EXPECT_EQ(set_bind_para[3][0].x, 132u);
    EXPECT_EQ(set_bind_para[3][14].x, 160u);
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr 0 31 {window 8,8 8x8"), 1u);
}

TEST(SecondaryZoom, MarksThePanesChannelsThatDecodersHave)
{
    constexpr uint16_t kLast = NVRHAL_MAX_DECODERS - 1;
    DispAttrib panes[] = {pane(3, 0, 0, 64, 64), pane(kLast, 64, 0, 64, 64), pane(kLast + 1, 0, 64, 64, 64),
                          pane(0xFFFF, 64, 64, 64, 64)};
    EXPECT_EQ(ext_change_zoom_slave(panes, 4), 0);
    for (int32_t channel = 0; channel < nvrhal::kSparePaneMarks; ++channel)
        EXPECT_EQ(nvrhal::spare_pane_marks[channel], channel == 3 || channel == kLast ? 1u : 0u) << channel;
    static_assert(nvrhal::kSparePaneMarks == NVRHAL_MAX_DECODERS);
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(SecondaryZoom, StopsAtTheFirstFailure)
{
    const struct {
        const char *call, *text;
        unsigned calls;
    } rows[] = {
        {"MI_DISP_HideInputPort", "vo hide channel 5 failed with errno 0xa00f0003!", 1},
        {"MI_DISP_GetInputPortAttr", "Get channel 1 attr failed with errno 0xa00f0003!", 2},
        {"MI_DISP_SetInputPortAttr", "Set channel 1 attr failed with errno 0xa00f0003!", 3},
        {"MI_DISP_ShowInputPort", "vo show channel 1 failed with errno 0xa00f0003!", 4},
    };
    DispAttrib panes[] = {pane(5, 0, 0, 64, 64)};
    for (const auto &row : rows) {
        platform.forget();
        platform.script(row.call).once().returns(kDisplayRefused);
        EXPECT_EQ(ext_change_zoom_slave(panes, 1), -1);
        EXPECT_PRINTED_AS_ERROR("vdec_venc.c", row.text);
        EXPECT_EQ(recording::media_calls(), row.calls);
    }
}

} // namespace
