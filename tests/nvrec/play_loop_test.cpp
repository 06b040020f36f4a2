/* "nvrec play --loop": what follows the end of the files on the screen, refresh by refresh. */
#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console/exit_code.h"
#include "nvrec_run.h"
#include "play/player.h"
#include "play_clips.h"
#include "running_wall.h"
#include "stamp.h"
#include "vboard.h"

namespace
{

using namespace nvrec;
using nvrec_test::clip;
using nvrec_test::RunningWall;
using stamp::Stamp;

/* Of the clips: five seconds of 25 frames; the stamp channel of a recording is 20 and its number. */
constexpr uint32_t kRate = 25;
constexpr double kLastSecond_s = 4;
constexpr uint32_t kOfLastSecond = 4 * kRate;

/* A place of the screen, and the stamps that stood there one after the other. */
class Watched
{
public:
    Watched(int x, int y, int w, int h) : x_(x), y_(y), w_(w), h_(h)
    {
        EXPECT_EQ(vboard_display_follow(0, look, this), 0);
    }
    ~Watched() { vboard_display_follow(0, nullptr, nullptr); }
    Watched(const Watched &) = delete;
    Watched &operator=(const Watched &) = delete;

    /* Wait until there were pictures of which each of these holds, in this order. */
    bool wait_for(const std::vector<std::function<bool(const Stamp &)>> &order)
    {
        std::unique_lock guard(lock_);
        return changed_.wait_for(guard, nvrec_test::kPatience, [&] {
            auto at = stamps_.begin();
            return std::ranges::all_of(order, [&](const auto &holds) {
                at = std::find_if(at, stamps_.end(), holds);
                return at != stamps_.end();
            });
        });
    }

    /* Whether there was such a picture so far. */
    bool was_there(const std::function<bool(const Stamp &)> &holds)
    {
        const std::scoped_lock guard(lock_);
        return std::ranges::any_of(stamps_, holds);
    }

private:
    static void look(const vboard_picture *picture, void *self)
    {
        auto &watched = *static_cast<Watched *>(self);
        const uint32_t stride = picture->stride[0];
        const auto seen =
            stamp::read(picture->plane[0] + static_cast<size_t>(watched.y_) * stride + watched.x_,
                        static_cast<int>(stride), watched.w_, watched.h_);
        const std::scoped_lock guard(watched.lock_);
        if (!seen || (!watched.stamps_.empty() && watched.stamps_.back() == *seen)) return;
        watched.stamps_.push_back(*seen);
        watched.changed_.notify_one();
    }

    const int x_, y_, w_, h_;
    std::mutex lock_; /* guards what follows */
    std::condition_variable changed_;
    std::vector<Stamp> stamps_;
};

auto before_the_last_second(uint32_t channel)
{
    return [channel](const Stamp &seen) { return seen.channel == channel && seen.frame < kOfLastSecond; };
}

auto in_the_last_second(uint32_t channel)
{
    return [channel](const Stamp &seen) { return seen.channel == channel && seen.frame >= kOfLastSecond; };
}

std::unique_ptr<RunningWall> play_in_a_loop(const std::vector<std::string> &files)
{
    WallOptions options;
    options.channels = static_cast<int>(std::min<size_t>(files.size(), Playback::kPlayers));
    auto wall = std::make_unique<RunningWall>(options);
    PlayerOptions player;
    player.files = files;
    player.seek_s = kLastSecond_s;
    player.loop = true;
    wall->wall().add(std::make_unique<Player>(player));
    return wall;
}

TEST(NvrecPlayLoop, BeginsAgainAtTheEnd)
{
    const auto wall = play_in_a_loop({clip("play_0.h264")});
    Watched screen(0, 0, 1920, 1080);
    ASSERT_TRUE(wall->start());
    EXPECT_TRUE(screen.wait_for({in_the_last_second(20), before_the_last_second(20)}));
    EXPECT_EQ(wall->end(), kExitDone);
}

/* What is recorded of a time of day begins again at the time that was asked for. */
TEST(NvrecPlayLoop, BeginsAgainAtTheTimeOfDay)
{
    const ScratchDirectory scratch;
    const std::string path = scratch.file("ch00-main-20261121-140500.mp4");
    std::filesystem::copy_file(clip("play_reordered.mp4"), path);
    PlayerOptions player;
    player.plan = plan_of_files({path});
    ASSERT_TRUE(player.plan.has_base);
    player.at_us = player.plan.base_us + static_cast<int64_t>(kLastSecond_s * 1e6);
    player.loop = true;
    WallOptions options;
    options.channels = 1;
    RunningWall wall(options);
    wall.wall().add(std::make_unique<Player>(player));
    Watched screen(0, 0, 1920, 1080);
    ASSERT_TRUE(wall.start());
    constexpr uint32_t kMiddle = kOfLastSecond + kRate / 2;
    EXPECT_TRUE(screen.wait_for({[](const Stamp &seen) { return seen.frame > kMiddle; },
                                 [](const Stamp &seen) { return seen.frame < kMiddle; },
                                 [](const Stamp &seen) { return seen.frame > kMiddle; }}));
    EXPECT_FALSE(screen.was_there(before_the_last_second(20)));
    EXPECT_EQ(wall.end(), kExitDone);
}

/* Of the first eight files only the last is there: it plays in the eighth of nine panes. */
TEST(NvrecPlayLoop, TheFirstPageFollowsTheLast)
{
    std::vector<std::string> files(Playback::kPlayers - 1, clip("absent.mp4"));
    files.push_back(clip("play_1.h265"));
    files.push_back(clip("play_0.h264"));
    const auto wall = play_in_a_loop(files);
    {
        Watched pane(640, 720, 640, 360);
        ASSERT_TRUE(wall->start());
        EXPECT_TRUE(pane.wait_for({in_the_last_second(21)}));
    }
    {
        Watched screen(0, 0, 1920, 1080);
        EXPECT_TRUE(screen.wait_for({in_the_last_second(20)})) << "the second page";
    }
    Watched pane(640, 720, 640, 360);
    EXPECT_TRUE(pane.wait_for({before_the_last_second(21)})) << "the first page from its beginning";
    EXPECT_EQ(wall->end(), kExitInputFailed) << "for the files that are not there";
}

} // namespace
