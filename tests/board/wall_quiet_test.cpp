/* wall_quiet_test.cpp - a wall on which nothing goes wrong is not told that anything did. */
#include "wall_session.h"

using namespace wall;

namespace
{

class QuietWall : public Wall
{
};

TEST_F(QuietWall, HealthyLayoutsRefuseNothing)
{
    std::vector<Camera> cameras;
    cameras.emplace_back("wall_0_h264");
    cameras.emplace_back("wall_1_h265");
    start(2);
    const uint64_t refusals = vboard_refusal_count();
    testing::internal::CaptureStderr();
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(lay_out(grid(2, 2)), 0);
        meet(cameras);
        ASSERT_EQ(lay_out({pane(1, {0, 0, 1920, 1080})}), 0);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(vboard_refusal_count(), refusals);
}

} // namespace
