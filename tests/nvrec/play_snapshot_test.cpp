/* A snapshot while recordings play, with a board whose encoder does not give its picture back. */
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "console/exit_code.h"
#include "nvrec_run.h"
#include "nvrhal/limits.h"
#include "play/player.h"
#include "play/snapshot.h"
#include "play_clips.h"
#include "stamps.h"
#include "vboard.h"
#include "wall/wall.h"

namespace
{

using namespace nvrec;
using nvrec_test::clip;

constexpr unsigned kFirstCamera = 1; /* stamp channel of camera 0 */

/* Takes a picture of camera 0 at the first turn, when the cameras run, and ends the wall. */
class SnapshotAtOnce final : public Module
{
public:
    SnapshotAtOnce(Snapshots &snapshots, std::string path) : snapshots_(snapshots), path_(std::move(path)) {}

    bool start(WallControl &wall) override
    {
        wall_ = &wall;
        return true;
    }

    Clock::time_point take_turn(Clock::time_point /*now*/) override
    {
        if (std::exchange(taken_, true)) return Clock::time_point::max();
        EXPECT_EQ(vboard_fault_set("MI_VENC_ReleaseStream", 1, 1, -1), 0);
        wall_->end(snapshots_.take(0, path_, std::chrono::seconds(30)));
        return Clock::time_point::max();
    }

    bool busy() const override { return !taken_; }

private:
    Snapshots &snapshots_;
    const std::string path_;
    WallControl *wall_ = nullptr;
    bool taken_ = false;
};

/* During playback the library answers 0 all the same; its picture is gone, and is asked for again. */
TEST(NvrecPlaySnapshot, IsTakenAgainWhenTheEncoderKeptItsPicture)
{
    ScratchDirectory scratch;
    const std::string path = scratch.file("picture.jpg");
    WallOptions options;
    options.window = WindowMode::kOff;
    options.log_path = "-";
    options.inputs = {clip("play_camera_0.h265")};
    options.feed.loop = true;
    options.wait_for_all = true;
    options.channels = 1;
    PlayerOptions player;
    player.files = {clip("play_0.h264")};
    player.loop = true;

    Wall wall(options);
    wall.add(std::make_unique<Player>(player));
    auto snapshots = std::make_unique<Snapshots>(".");
    Snapshots &taker = *snapshots;
    wall.add(std::move(snapshots));
    wall.add(std::make_unique<SnapshotAtOnce>(taker, path));
    ASSERT_EQ(wall.run(), kExitDone);

    const Picture picture = read_picture(path);
    ASSERT_EQ(picture.width, NVRHAL_SNAPSHOT_WIDTH);
    EXPECT_EQ(nvrec_test::stamp_in(picture, 0, 0, NVRHAL_SNAPSHOT_WIDTH, NVRHAL_SNAPSHOT_HEIGHT)
                  .value_or(stamp::Stamp{})
                  .channel,
              kFirstCamera);
}

} // namespace
