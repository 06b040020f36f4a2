/* ext_change_display_slave: the layout of the secondary output, where no decoder is touched. */
#include <cerrno>
#include <cstring>

#include "view/layout_state.h"
#include "view_frame.h"

using namespace view_test;
using recording::platform;
using recording::trace;

namespace
{

/* The secondary output's record stands directly before the exported ones. */
BindArgs saved_secondary_layout()
{
    BindArgs saved;
    auto slot = reinterpret_cast<uintptr_t>(old_global_bindarg) - sizeof saved;
    std::memcpy(&saved, reinterpret_cast<const void *>(slot), sizeof saved);
    return saved;
}

TEST(SecondaryLayout, HidesEveryPortAndShowsThePanes)
{
    g_vi_chn_num = 3;
    globalVoDev = -1;
    cur_display_chnn = 0x42;
    zoom_channel = 5;
    MI_DISP_InputPortAttr before = {{1, 2, 3, 4}, 704, 576};
    MI_DISP_SetInputPortAttr(-1, 2, &before);
    platform.forget();
    DispAttrib panes[] = {pane(2, 641, 361, 959, 539), pane(0, 0, 0, 960, 540, 2), pane(1, 9, 9, 9, 9, 3)};
    EXPECT_EQ(ext_change_display_slave(panes, 3), 0);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_DISP_HideInputPort -1 0
        MI_DISP_HideInputPort -1 1
        MI_DISP_HideInputPort -1 2
        MI_DISP_GetInputPortAttr -1 0
        MI_DISP_SetInputPortAttr -1 0 {window 0,0 960x540 source 0x0}
        MI_DISP_ShowInputPort -1 0
        MI_DISP_GetInputPortAttr -1 2
        MI_DISP_SetInputPortAttr -1 2 {window 640,360 958x538 source 704x576}
        MI_DISP_ShowInputPort -1 2
    )"));
    EXPECT_EQ(cur_display_chnn, 0x42);
    EXPECT_EQ(set_bind_para[2][2].x, 640u);
    EXPECT_EQ(set_bind_para[2][2].h, 538u);
    EXPECT_EQ(set_bind_para[2][1].w, 8u);
    EXPECT_EQ(set_bind_para[1][2].x, 0u);
    EXPECT_PRINTED_IN_ORDER(R"(
        ChnnNum=3,zoom_channel=5,pDispAttrib[0]=2
        Chn[0]:x:0 y:0 w:960 h:540!
        Chn[1]:x:9 y:9 w:9 h:9!
        Chn[2]:x:641 y:361 w:959 h:539!
    )");
}

TEST(SecondaryLayout, SavesTheRecordBeforeTheExportedOnes)
{
    g_vi_chn_num = 3;
    globalVoDev = -1;
    DispAttrib panes[] = {pane(2, 0, 0, 64, 64, 1), pane(1, 9, 9, 9, 9, 3)};
    EXPECT_EQ(ext_change_display_slave(panes, 2), 0);
    BindArgs expected = {}, saved = saved_secondary_layout();
    expected.chn[1] = 1;
    expected.chn[2] = 2;
    expected.vo_dev = static_cast<uint32_t>(-1);
    expected.chn_num = 3;
    expected.bind_status[1] = 3;
    expected.bind_status[2] = 1;
    EXPECT_EQ(std::memcmp(&saved, &expected, sizeof saved), 0);
    static const BindArgs zero = {};
    EXPECT_EQ(std::memcmp(&old_global_bindarg[0], &zero, sizeof zero), 0);
}

TEST(SecondaryLayout, OfOnePaneSelectsTheZoomChannel)
{
    g_vi_chn_num = 4;
    globalVoDev = -1;
    zoom_arg_pre[2] = 7;
    DispAttrib single = pane(3, 0, 0, 64, 64);
    zoom_channel = 2;
    EXPECT_EQ(ext_change_display_slave(&single, 1), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("ChnnNum=1,zoom_channel=2,pDispAttrib[0]=3"); // the one before
    EXPECT_EQ(zoom_channel, 3u);
    EXPECT_EQ(zoom_arg_pre[0], 3u);
    EXPECT_EQ(zoom_arg_pre[1], 3u);
    EXPECT_EQ(zoom_arg_pre[2], 0u);
}

TEST(SecondaryLayout, OfSeveralPanesKeepsTheZoomChannel)
{
    g_vi_chn_num = 4;
    globalVoDev = -1;
    zoom_channel = 2;
    zoom_arg_pre[0] = 9;
    DispAttrib panes[] = {pane(0, 0, 0, 64, 64), pane(1, 64, 0, 64, 64)};
    EXPECT_EQ(ext_change_display_slave(panes, 2), 0);
    EXPECT_EQ(zoom_channel, 2u);
    EXPECT_EQ(zoom_arg_pre[0], 9u);
}

TEST(SecondaryLayout, MarksAsManyPanesAsChannelsHaveNone)
{
    g_vi_chn_num = 16;
    globalVoDev = -1;
    const DispAttrib panes[16] = {};
    for (int32_t count : {1, 4, 15, 16}) {
        SCOPED_TRACE(count);
        for (uint32_t &mark : nvrhal::spare_pane_marks)
            mark = 9;
        ASSERT_EQ(ext_change_display_slave(panes, count), 0);
        for (int32_t i = 0; i < NVRHAL_MAX_DECODERS; ++i)
            EXPECT_EQ(nvrhal::spare_pane_marks[i], i < 16 - count ? 1u : 0u) << i;
    }
}

/* The panes are recorded without the lock, the ports are changed and the record is saved under it. */
TEST(SecondaryLayout, ChangesThePortsUnderTheLock)
{
    g_vi_chn_num = 2;
    globalVoDev = -1;
    unsigned held = 0;
    for (const char *call : {"MI_DISP_HideInputPort", "MI_DISP_GetInputPortAttr", "MI_DISP_ShowInputPort"})
        platform.script(call).fills(
            [&](recording::Args &) { held += pthread_mutex_trylock(&global_bindargLock) == EBUSY; });
    DispAttrib single = pane(1, 0, 0, 64, 64);
    ASSERT_EQ(ext_change_display_slave(&single, 1), 0);
    EXPECT_EQ(held, 4u);
    EXPECT_EQ(pthread_mutex_trylock(&global_bindargLock), 0);
    pthread_mutex_unlock(&global_bindargLock);
}

TEST(SecondaryLayout, DoesNothingOnOtherDevices)
{
    g_vi_chn_num = 4;
    DispAttrib single = pane(3, 0, 0, 64, 64);
    for (int32_t device : {0, 1, 2}) {
        globalVoDev = device;
        EXPECT_EQ(ext_change_display_slave(&single, 1), 0);
        EXPECT_EQ(ext_change_display_slave(&single, 0), 0);
    }
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(zoom_channel, 0u);
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(SecondaryLayout, RefusesABadCount)
{
    g_vi_chn_num = 4;
    globalVoDev = -1;
    cur_display_chnn = 0x11;
    DispAttrib panes[5] = {pane(0, 0, 0, 64, 64)};
    for (int32_t count : {0, -1, 5, INT32_MAX, INT32_MIN}) {
        SCOPED_TRACE(count);
        EXPECT_EQ(ext_change_display_slave(panes, count), -1);
        EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "vo chn num " + std::to_string(count) + " is err!");
    }
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(cur_display_chnn, 0x11);
}

struct FailureRow {
    const char *call, *message;
};

/* The live channels end before the spare decoder's. */
TEST(SecondaryLayout, LeavesChannelsWithoutACameraAlone)
{
    g_vi_chn_num = 2;
    globalVoDev = -1;
    DispAttrib panes[] = {pane(2, 640, 360, 960, 540), pane(1, 0, 0, 64, 64)};
    EXPECT_EQ(ext_change_display_slave(panes, 2), 0);
    EXPECT_NOT_PRINTED("Chn[2]:x:640 y:360 w:960 h:540!");
    EXPECT_PRINTED("Chn[1]:x:0 y:0 w:64 h:64!");
    EXPECT_EQ(set_bind_para[2][2].w, 0u);
    EXPECT_EQ(saved_secondary_layout().chn[2], 0u);
    EXPECT_EQ(saved_secondary_layout().bind_status[2], 0u);
    EXPECT_EQ(platform.count("MI_DISP_ShowInputPort -1 2"), 0u);
}

/* Deliberate: the lock stays held and the record is not saved. */
TEST(SecondaryLayout, FailsAtOnceWithTheLockHeld)
{
    constexpr FailureRow kRows[] = {
        {"MI_DISP_HideInputPort", "vo hide channel 1 failed with errno 0xa00f0003!"},
        {"MI_DISP_GetInputPortAttr", "Get channel 1 attr failed with errno 0xa00f0003!"},
        {"MI_DISP_SetInputPortAttr", "Set channel 1 attr failed with errno 0xa00f0003!"},
        {"MI_DISP_ShowInputPort", "vo show channel 1 failed with errno 0xa00f0003!"},
    };
    for (const FailureRow &row : kRows) {
        SCOPED_TRACE(row.call);
        recording::Outcome outcome = recording::in_fresh_process([&row]() -> int64_t {
            g_vi_chn_num = 3;
            globalVoDev = -1;
            platform.script(row.call).nth(2).returns(kDisplayRefused);
            DispAttrib panes[] = {pane(0, 0, 0, 64, 64), pane(1, 64, 0, 64, 64), pane(2, 0, 64, 64, 64)};
            int32_t result = ext_change_display_slave(panes, 3);
            bool saved = saved_secondary_layout().chn_num != 0;
            bool held = pthread_mutex_trylock(&global_bindargLock) == EBUSY;
            return result == -1 && !saved && held && platform.count(row.call) == 2 &&
                   recording::times_printed(row.message) == 1 &&
                   recording::printed_as_error("vdec_venc.c", row.message);
        });
        EXPECT_TRUE(outcome.finished) << outcome.death;
        EXPECT_EQ(outcome.result, 1);
    }
}

} // namespace
