/* Zoom and picture-in-picture with every platform call failing once, at every place. */
#include "failure_sweep.h"
#include "view_frame.h"

using namespace view_test;
using sweep::Expectation;
using sweep::Undisturbed;

namespace
{

void prepare_cameras()
{
    create_decoders(3);
}

TEST(FailureSweep, ZoomWindow)
{
    auto expect = [](const Undisturbed &run, size_t index) -> Expectation {
        Expectation expected = {1, {}, {"]exec function failed\n"}, false};
        if (run.names[index] == "MI_DISP_SetZoomInWindow") expected.following = {"MI_DISP_SetZoomInWindow"};
        return expected;
    };
    EXPECT_EQ(sweep::fail_every_call(
                  prepare_cameras, [] { return ext_vidoe_image_zoom(0, 0, 0, 64, 64); }, expect),
              3u);
}

TEST(FailureSweep, ZoomLayout)
{
    auto act = []() -> int64_t {
        DispAttrib panes[] = {pane(0, 0, 0, 64, 64), pane(1, 64, 0, 64, 64)};
        return ext_change_zoom_format(panes, 2);
    };
    auto expect = [](const Undisturbed &run, size_t index) -> Expectation {
        const std::string &name = run.names[index];
        if (name == "MI_DISP_HideInputPort" || name == "MI_DISP_ShowInputPort")
            return {0, run.from(index + 1), {"failed with errno 0xa00900ee!\n"}, false};
        return {-1, {}, {"attr failed with errno 0xa00900ee!\n"}, false};
    };
    EXPECT_EQ(sweep::fail_every_call(prepare_cameras, act, expect), 3u + 2 * 3);
}

TEST(FailureSweep, SecondaryZoomLayout)
{
    auto act = []() -> int64_t {
        DispAttrib panes[] = {pane(0, 0, 0, 64, 64), pane(1, 64, 0, 64, 64)};
        return ext_change_zoom_slave(panes, 2);
    };
    auto expect = [](const Undisturbed &, size_t) -> Expectation {
        return {-1, {}, {"failed with errno 0xa00900ee!\n"}, false};
    };
    EXPECT_EQ(sweep::fail_every_call(prepare_cameras, act, expect), 4u);
}

TEST(FailureSweep, PictureInPicture)
{
    auto expect = [](const Undisturbed &, size_t) -> Expectation {
        return {-1, {}, {"failed with errno 0xa00900ee!\n"}, false};
    };
    EXPECT_EQ(sweep::fail_every_call([] {}, [] { return local_bind_pip(0, 0, 0, 64, 64); }, expect), 4u);
    EXPECT_EQ(sweep::fail_every_call([] {}, [] { return local_unbind_pip(0); }, expect), 2u);
}

TEST(FailureSweep, ZoomTakesPositiveCodesForFailuresToo)
{
    DispAttrib panes[] = {pane(0, 0, 0, 64, 64), pane(1, 64, 0, 64, 64)};
    sweep::fail_every_call_positively(prepare_cameras, [] { return ext_vidoe_image_zoom(0, 0, 0, 64, 64); });
    sweep::fail_every_call_positively(prepare_cameras, [&] { return ext_change_zoom_format(panes, 2); });
    sweep::fail_every_call_positively(prepare_cameras, [&] { return ext_change_zoom_slave(panes, 2); });
    sweep::fail_every_call_positively([] {}, [] { return local_bind_pip(1, 0, 0, 64, 64); });
    sweep::fail_every_call_positively([] {}, [] { return local_unbind_pip(1); });
}

} // namespace
