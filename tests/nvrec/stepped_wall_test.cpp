/* The recorder in the board's time: a wall whose clock stands, and moves by the test's steps alone. */
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "nvrec_run.h"
#include "running_wall.h"
#include "vboard.h"

namespace
{

using namespace nvrec;
using nvrec_test::RunningWall;

constexpr int32_t kPatience_ms = 60'000; /* of real time; ends a hanging test */
constexpr int64_t kFrame_us = 40'000;    /* of the clip: 25 a second          */
constexpr uint32_t kThreads = 2;         /* that wait for a time: the wall's and the camera's */

/* Takes the clock when the wall stands and before its camera is fed. */
class ClockTaker final : public Module
{
public:
    bool start(WallControl &) override
    {
        vboard_clock_take();
        return true;
    }
};

class SteppedWall : public testing::Test
{
protected:
    void TearDown() override { vboard_clock_release(); }

    static void launch(RunningWall &wall)
    {
        wall.wall().add(std::make_unique<ClockTaker>());
        ASSERT_TRUE(wall.start());
    }

    /* All threads have done what there was to do, and wait for another time. */
    static bool all_wait() { return vboard_clock_wait_sleepers(kThreads, kPatience_ms) == 0; }

    static WallOptions one_camera()
    {
        WallOptions options;
        options.inputs = {std::string(NVREC_STREAMS) + "/play_camera_0.h265"};
        return options;
    }
};

TEST_F(SteppedWall, AFrameIsSentWhenTheClockReachesItAndNotBefore)
{
    RunningWall wall(one_camera());
    launch(wall);
    for (uint64_t frame = 0; frame < 20; ++frame) {
        ASSERT_TRUE(all_wait());
        ASSERT_EQ(wall.sent(0), frame + 1) << "the frame that is due now";
        ASSERT_EQ(vboard_clock_step_us(kFrame_us - 1), 0);
        ASSERT_TRUE(all_wait());
        ASSERT_EQ(wall.sent(0), frame + 1) << "a microsecond before the next one";
        ASSERT_EQ(vboard_clock_step_us(1), 0);
    }
    EXPECT_EQ(wall.end(), 0);
}

TEST_F(SteppedWall, ItLastsToTheMicrosecondAsLongAsItIsAskedTo)
{
    const ScratchDirectory scratch;
    WallOptions options = one_camera();
    options.duration_s = 0.99;
    options.json_path = scratch.file("report.json");
    RunningWall wall(options);
    launch(wall);
    for (int frame = 1; frame < 25; ++frame) {
        ASSERT_TRUE(all_wait());
        ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
    }
    ASSERT_TRUE(all_wait());
    ASSERT_EQ(vboard_clock_step_us(990'000 - 24 * kFrame_us - 1), 0);
    ASSERT_TRUE(all_wait()) << "a microsecond is left";
    ASSERT_EQ(vboard_clock_step_us(1), 0);
    EXPECT_EQ(wall.wait_for_end(), 0);
    const std::string json = file_text(options.json_path);
    EXPECT_NE(json.find("\"seconds\": 0.990,"), std::string::npos) << json;
    EXPECT_EQ(reported(json, 0, "sent"), 25);
}

} // namespace
