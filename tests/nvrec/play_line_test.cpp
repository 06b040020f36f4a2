/* The time line under the running recorder: the mouse and the keys go along recordings. */
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "controls/controls.h"
#include "nvrec_run.h"
#include "nvrhal/input_nodes.h"
#include "play/play_screen.h"
#include "play/player.h"
#include "play_clips.h"
#include "running_wall.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace
{

using namespace nvrec;
using nvrec_test::clip;
using nvrec_test::RunningWall;

constexpr int64_t kSecond_us = 1'000'000;
constexpr auto kSoon = std::chrono::seconds(20); /* ends a test whose place does not come */

/* Where playback is, and its line on the screen. */
struct Whereabouts {
    int64_t position_us = 0;
    bool paused = false;
    Rect line;
};

/* Tells it at every turn. */
class Follower final : public Module
{
public:
    Follower(const Player &player, const PlayScreen &screen) : player_(player), screen_(screen) {}

    bool start(WallControl &) override { return true; }

    Clock::time_point take_turn(Clock::time_point now) override
    {
        const std::scoped_lock guard(lock_);
        at_ = {player_.playback().position_us(), player_.playback().paused(), screen_.time_line()->place()};
        seen_ = player_.playing();
        changed_.notify_all();
        return now + std::chrono::milliseconds(20);
    }

    bool wait_for(const std::function<bool(const Whereabouts &)> &holds)
    {
        std::unique_lock guard(lock_);
        return changed_.wait_for(guard, kSoon, [&] { return seen_ && holds(at_); });
    }

    /* As it was laid at the last turn; the wall's thread may lay it anew any time. */
    Rect line()
    {
        const std::scoped_lock guard(lock_);
        return at_.line;
    }

private:
    const Player &player_;
    const PlayScreen &screen_;
    std::mutex lock_; /* guards what follows */
    std::condition_variable changed_;
    Whereabouts at_;
    bool seen_ = false;
};

/* A camera of which five seconds were recorded, and five more ten minutes later. */
class TimeLineOnTheScreen : public testing::Test
{
protected:
    void SetUp() override
    {
        PlayerOptions options;
        for (const char *time : {"140500", "141500"}) {
            options.files.push_back(scratch_.file("ch00-main-20261121-" + std::string(time) + ".mp4"));
            std::filesystem::copy_file(clip("play_reordered.mp4"), options.files.back());
        }
        WallOptions wall;
        wall.channels = 1;
        wall_ = std::make_unique<RunningWall>(wall);
        ControlOptions controls;
        controls.socket = "none";
        controls.watchdog_s = 0;
        add_controls(wall_->wall(), controls);
        auto player = std::make_unique<Player>(options);
        PlayScreenOptions screen;
        screen.mode = OverlayMode::kOn;
        auto play_screen = std::make_unique<PlayScreen>(screen, *player);
        auto follower = std::make_unique<Follower>(*player, *play_screen);
        follower_ = follower.get();
        wall_->wall().add(std::move(play_screen));
        wall_->wall().add(std::move(player));
        wall_->wall().add(std::move(follower));
        ASSERT_TRUE(wall_->start());
        ASSERT_TRUE(follower_->wait_for([](const Whereabouts &) { return true; }));
    }

    void TearDown() override
    {
        if (!wall_) return;
        EXPECT_EQ(wall_->end(), 0);
    }

    /* At a share of the screen's width, on the bars of the line. */
    void move_along(double share)
    {
        const Rect line = follower_->line();
        wall_->after([&] { vboard_mouse_move(static_cast<int>(share * line.w), line.y + line.h / 2); });
    }
    void press_line(double share)
    {
        move_along(share);
        wall_->after(
            [] {
                vboard_mouse_buttons(MOUSE_LEFT_DOWN);
                vboard_mouse_buttons(0);
            },
            2);
    }

    static void key(const char *name) { ASSERT_EQ(vboard_panel_press_named(name), 0); }

    bool comes_to(int64_t from_us, int64_t to_us, bool paused)
    {
        return follower_->wait_for([=](const Whereabouts &at) {
            return from_us <= at.position_us && at.position_us <= to_us && at.paused == paused;
        });
    }

    static constexpr int64_t kEnd_us = 605 * kSecond_us;

    ScratchDirectory scratch_;
    std::unique_ptr<RunningWall> wall_;
    Follower *follower_ = nullptr;
};

/* The line shows an hour, a quarter of it before the beginning: its right end is half an hour on. */
TEST_F(TimeLineOnTheScreen, APressBehindTheLastRecordingGoesToItsEndAndStandsThere)
{
    press_line(0.9);
    ASSERT_TRUE(comes_to(kEnd_us - kSecond_us, kEnd_us, true));
    press_line(0.2);
    EXPECT_TRUE(comes_to(0, 4 * kSecond_us, false)) << "and from there to the beginning, where it runs";
}

TEST_F(TimeLineOnTheScreen, DraggingEndsWhereTheMouseIsLetGo)
{
    move_along(0.2);
    wall_->after([] { vboard_mouse_buttons(MOUSE_LEFT_DOWN); });
    for (int percent = 30; percent <= 90; percent += 10)
        move_along(percent / 100.0);
    wall_->after([] { vboard_mouse_buttons(0); });
    EXPECT_TRUE(comes_to(kEnd_us - kSecond_us, kEnd_us, true));
}

TEST_F(TimeLineOnTheScreen, AKeyBehindTheLastRecordingGoesToItsEndAndStandsThere)
{
    for (int i = 0; i < 12; ++i)
        key("right"); /* a minute each */
    ASSERT_TRUE(comes_to(kEnd_us - kSecond_us, kEnd_us, true));
    key("play");
    EXPECT_EQ(wall_->wait_for_end(), 0) << "who goes on there has come to the end";
    wall_.reset();
}

TEST_F(TimeLineOnTheScreen, KeysGoAsFarAsIsSeenOnTheLine)
{
    key("pause");
    ASSERT_TRUE(comes_to(0, 5 * kSecond_us, true));
    key("right");
    ASSERT_TRUE(comes_to(60 * kSecond_us, 65 * kSecond_us, true)) << "a minute, of an hour";
    key("down");
    key("right");
    ASSERT_TRUE(comes_to(70 * kSecond_us, 75 * kSecond_us, true)) << "ten seconds, of ten minutes";
    key("menu");
    key("down"); /* which is nobody's now */
    key("left");
    EXPECT_TRUE(comes_to(60 * kSecond_us, 65 * kSecond_us, true)) << "ten seconds, without a line";
}

} // namespace
