/* Layouts that are refused, and platform failures in the middle of one. */
#include <cerrno>
#include <cstring>

#include "view_frame.h"

using namespace view_test;
using recording::platform;

namespace
{

bool lock_is_held()
{
    if (pthread_mutex_trylock(&global_bindargLock) == EBUSY) return true;
    pthread_mutex_unlock(&global_bindargLock);
    return false;
}

TEST(LayoutRefusal, OfABadCountHidesAllChannelsFromIntake)
{
    create_decoders(4);
    DispAttrib panes[5] = {pane(0, 0, 0, 960, 540)};
    for (int32_t count : {0, -1, 5, INT32_MAX, INT32_MIN}) {
        SCOPED_TRACE(count);
        cur_display_chnn = 255;
        EXPECT_EQ(ext_change_display_format(panes, count), -1);
        EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "vo chn num " + std::to_string(count) + " is err!");
        EXPECT_EQ(cur_display_chnn, 0);
    }
    EXPECT_EQ(platform.calls(), "");
}

TEST(LayoutRefusal, OfMissingPanes)
{
    create_decoders(4);
    for (int32_t count : {1, 4}) {
        EXPECT_EQ(ext_change_display_format(nullptr, count), -1);
    }
    EXPECT_EQ(platform.calls(), "");
    globalVoDev = -1;
    EXPECT_EQ(ext_change_display_slave(nullptr, 1), -1);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_FALSE(lock_is_held());
}

TEST(LayoutRefusal, OfTheSecondaryDeviceIsSilentButHidesAllChannels)
{
    create_decoders(4);
    globalVoDev = -1;
    DispAttrib single = pane(0, 0, 0, 960, 540);
    EXPECT_EQ(ext_change_display_format(&single, 1), 0);
    EXPECT_EQ(ext_change_display_format(&single, 99), 0) << "the device is looked at before the count";
    EXPECT_EQ(cur_display_chnn, 0);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(recording::printed_text(), "");
}

TEST(LayoutFailure, OfAPortThatWillNotStopIsOnlyReported)
{
    create_decoders(2);
    platform.script("MI_DISP_DisableInputPort").nth(1).returns(-5);
    platform.script("MI_DISP_ClearInputPortBuffer").returns(-5);
    DispAttrib single = pane(1, 0, 0, 960, 540);
    EXPECT_EQ(ext_change_display_format(&single, 1), 0);
    EXPECT_PRINTED_AS_ERROR("vdec_venc.c", "vo hide channel 0 failed with errno -5!");
    EXPECT_EQ(platform.count("MI_DISP_DisableInputPort"), 2u);
}

TEST(LayoutFailure, OfTheDecoderIsOnlyReported)
{
    create_decoders(2);
    platform.script("MI_VDEC_GetOutputPortAttr").returns(-6);
    platform.script("MI_VDEC_GetChnAttr").fills([](recording::Args &args) {
        args.record<MI_VDEC_ChnAttr>(1).max_width = 333; // a failing call may leave anything behind
        args.result = -6;
    });
    platform.script("MI_VDEC_SetOutputPortAttr").returns(-6);
    DispAttrib panes[] = {pane(0, 0, 0, 960, 540), pane(1, 960, 0, 960, 540)};
    EXPECT_EQ(ext_change_display_format(panes, 2), 0);
    EXPECT_PRINTED_WITHOUT_PREFIX("MI_VDEC_GetOutputPortAttr,vdec_venc.c,#");
    EXPECT_PRINTED_WITHOUT_PREFIX("MI_VDEC_GetChnAttr,vdec_venc.c,#");
    EXPECT_PRINTED_WITHOUT_PREFIX("MI_VDEC_SetOutputPortAttr,vdec_venc.c,#");
    // Without the stream's size the decoder is asked for no size at all.
    EXPECT_EQ(platform.count("MI_VDEC_SetOutputPortAttr 0 {0x0}"), 1u);
    EXPECT_EQ(platform.count("MI_DISP_SetInputPortAttr 0 1 {window 960,0 960x540 source 960x540}"), 1u);
    EXPECT_EQ(platform.time_us(), 200000);
}

struct DisplayRow {
    const char *call, *message;
};

/* Deliberate: the lock stays held and the record is not saved. */
TEST(LayoutFailure, OfTheDisplayReturnsAtOnceWithTheLockHeld)
{
    constexpr DisplayRow kRows[] = {
        {"MI_DISP_GetInputPortAttr", "Get channel 1 attr failed with errno 0xa00f0003!"},
        {"MI_DISP_SetInputPortAttr", "Set channel 1 attr failed with errno 0xa00f0003!"},
        {"MI_DISP_EnableInputPort", "MI_DISP_EnableInputPort channel 1 failed with errno 0xa00f0003!"},
    };
    for (const DisplayRow &row : kRows) {
        SCOPED_TRACE(row.call);
        recording::Outcome outcome = recording::in_fresh_process([&row]() -> int64_t {
            create_decoders(3);
            platform.script(row.call).nth(2).returns(kDisplayRefused);
            std::memset(&old_global_bindarg[0], 0x55, sizeof(BindArgs));
            DispAttrib panes[] = {pane(0, 0, 0, 64, 64), pane(1, 64, 0, 64, 64), pane(2, 0, 64, 64, 64)};
            int32_t result = ext_change_display_format(panes, 3);
            bool saved = old_global_bindarg[0].chn_num != 0x55555555;
            bool stopped = platform.count("MI_DISP_GetInputPortAttr 0 2") == 0;
            return result == -1 && !saved && stopped && lock_is_held() &&
                   recording::times_printed(row.message) == 1 &&
                   recording::printed_as_error("vdec_venc.c", row.message);
        });
        EXPECT_TRUE(outcome.finished) << outcome.death;
        EXPECT_EQ(outcome.result, 1);
    }
}

} // namespace
