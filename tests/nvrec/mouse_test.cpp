/* The board's mouse in front of the running recorder: clicks, the wheel and dragging. */
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "controls/controls.h"
#include "nvrec_run.h"
#include "nvrhal.h"
#include "nvrhal/input_nodes.h"
#include "play/player.h"
#include "play/zoom.h"
#include "play_clips.h"
#include "running_wall.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace
{

using namespace nvrec;
using nvrec_test::clip;
using nvrec_test::RunningWall;

/* A part of the picture in pixels of the screen, as the library is asked for it. */
struct Part {
    int x, y, w, h;
    bool operator==(const Part &) const = default;

    friend void PrintTo(const Part &part, std::ostream *out)
    {
        *out << part.x << "," << part.y << " " << part.w << "x" << part.h;
    }
};

constexpr Part kWhole = {0, 0, 0, 0}; /* how the display is told to let go */
constexpr Part kNoCall = {-1, -1, -1, -1};

void press(uint32_t button)
{
    vboard_mouse_buttons(button);
    vboard_mouse_buttons(0);
}

/* Two cameras, or two files, in the left and the right upper quarter of the screen. */
class NvrecMouse : public testing::Test
{
protected:
    static ControlOptions controls()
    {
        ControlOptions options;
        options.socket = "none";
        options.watchdog_s = 0;
        return options;
    }

    void start_cameras()
    {
        WallOptions options;
        options.inputs = {clip("play_camera_0.h265"), clip("play_camera_1.h264")};
        options.feed.loop = true;
        wall_ = std::make_unique<RunningWall>(options);
        add_modules(nullptr);
    }

    void start_files()
    {
        WallOptions options;
        options.channels = 2;
        wall_ = std::make_unique<RunningWall>(options);
        PlayerOptions player;
        player.files = {clip("play_0.h264"), clip("play_1.h265")};
        player.loop = true;
        add_modules(std::make_unique<Player>(player));
    }

    void TearDown() override
    {
        ASSERT_TRUE(wall_);
        EXPECT_EQ(wall_->end(), 0);
    }

    auto move(int x, int y)
    {
        return wall_->after([=] { vboard_mouse_move(x, y); });
    }
    auto click(uint32_t button = MOUSE_LEFT_DOWN)
    {
        return wall_->after([=] { press(button); }, 2);
    }
    auto click_twice()
    {
        return wall_->after(
            [] {
                press(MOUSE_LEFT_DOWN);
                press(MOUSE_LEFT_DOWN);
            },
            4);
    }

    /* The part of the picture that the display was told last because of this. */
    Part part_after(const std::function<void()> &hand)
    {
        const std::string path = scratch_.file("calls");
        EXPECT_EQ(vboard_trace_start(path.c_str()), 0);
        wall_->after(hand);
        vboard_trace_stop();
        const std::string calls = file_text(path);
        const size_t call = calls.rfind("MI_DISP_SetZoomInWindow");
        const size_t record = call == std::string::npos ? call : calls.find('{', call);
        Part part = kNoCall;
        if (record != std::string::npos)
            std::sscanf(calls.c_str() + record, "{x=%d y=%d w=%d h=%d}", &part.x, &part.y, &part.w, &part.h);
        return part;
    }
    Part part_after_wheel(int notches)
    {
        return part_after([=] { vboard_mouse_wheel(notches); });
    }
    Part part_after_move(int x, int y)
    {
        return part_after([=] { vboard_mouse_move(x, y); });
    }

    ScratchDirectory scratch_;
    std::unique_ptr<RunningWall> wall_;

private:
    /* In the order of the recorder itself. */
    void add_modules(std::unique_ptr<Player> player)
    {
        add_controls(wall_->wall(), controls());
        if (player) wall_->wall().add(std::move(player));
        wall_->wall().add(std::make_unique<Zoom>(ZoomOptions()));
        ASSERT_TRUE(wall_->start());
    }
};

TEST_F(NvrecMouse, AClickSelectsAndTwoShowTheCameraAlone)
{
    start_cameras();
    move(1440, 270);
    auto state = click();
    EXPECT_EQ(state.selected, 1);
    EXPECT_EQ(state.enlarged, -1);
    move(480, 270);
    state = click();
    EXPECT_EQ(state.selected, 0);
    EXPECT_EQ(state.enlarged, -1) << "two clicks, but on two cameras";
    move(480, 810);
    state = click_twice();
    EXPECT_EQ(state.enlarged, -1) << "no camera there";
    move(1440, 270);
    EXPECT_EQ(click_twice().enlarged, 1);
    EXPECT_EQ(click_twice().enlarged, -1) << "and back";
    EXPECT_EQ(click_twice().enlarged, 1);
    EXPECT_EQ(click(MOUSE_RIGHT_DOWN).enlarged, -1) << "without a menu, the layout";
}

TEST_F(NvrecMouse, TwoClicksShowAFileAloneWhileFilesPlay)
{
    start_files();
    move(1440, 270);
    auto state = click_twice();
    EXPECT_EQ(state.selected, 1);
    EXPECT_EQ(state.enlarged, 1);
    EXPECT_EQ(click_twice().enlarged, -1);
}

/*
 * A notch is a quarter nearer. The part as fractions of the picture goes to the library in pixels of
 * the screen, whose even numbers the display gets.
 */
TEST_F(NvrecMouse, TheWheelZoomsAroundThePointer)
{
    start_cameras();
    move(480, 270);
    EXPECT_EQ(part_after_wheel(1), (Part{96, 54, 1536, 864})) << "0.05, 0.05, 0.8 x 0.8";
    EXPECT_EQ(__atomic_load_n(&vo_for_ezoom, __ATOMIC_RELAXED), 1u);
    EXPECT_EQ(move(1440, 810).enlarged, 0);
    EXPECT_EQ(part_after_wheel(1), (Part{326, 184, 1228, 690})) << "0.17, 0.17, 0.64 x 0.64";
    EXPECT_EQ(part_after_wheel(-1), (Part{96, 54, 1536, 864}));
    EXPECT_EQ(part_after_wheel(-1), kWhole);
    EXPECT_EQ(__atomic_load_n(&vo_for_ezoom, __ATOMIC_RELAXED), 0u);
    EXPECT_EQ(move(480, 270).enlarged, -1) << "the layout is back";
    EXPECT_EQ(part_after_wheel(-1), kNoCall) << "there is nothing wider than the layout";
    move(480, 810);
    EXPECT_EQ(part_after_wheel(1), kNoCall) << "no camera there";
}

TEST_F(NvrecMouse, DraggingMovesTheZoomedPartWithinThePicture)
{
    start_cameras();
    move(1440, 270);
    EXPECT_EQ(part_after_wheel(2), (Part{518, 96, 1228, 690})) << "0.27, 0.09, 0.64 x 0.64";
    move(960, 540);
    EXPECT_EQ(part_after([] { vboard_mouse_buttons(MOUSE_LEFT_DOWN); }), kNoCall);
    EXPECT_EQ(part_after_move(1056, 540), (Part{456, 96, 1228, 690})) << "the picture goes with the pointer";
    EXPECT_EQ(part_after_move(1056, 648), (Part{456, 28, 1228, 690}));
    EXPECT_EQ(part_after_move(1056, 1079), (Part{456, 0, 1228, 690})) << "and ends at its edge";
    EXPECT_EQ(wall_->after([] { vboard_mouse_buttons(0); }).enlarged, 1) << "the camera that was pointed at";
    EXPECT_EQ(part_after_move(960, 540), kNoCall) << "nothing is held any more";
}

} // namespace
