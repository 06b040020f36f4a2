/* What the board tells of cameras is an event each time that it begins, and goes on while it lasts. */
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "controls/event_inputs.h"
#include "nvrhal.h"
#include "stand_in_wall.h"
#include "start_board.h"
#include "vboard_devices.h"

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;

class BoardEvents : public testing::Test
{
protected:
    void SetUp() override
    {
        start_board();
        ASSERT_TRUE(inputs_.start(wall_));
    }

    /* So many blocks move at the camera, and a second has passed. */
    void pass_second(uint32_t blocks)
    {
        ASSERT_EQ(vboard_ad_set_motion(2, blocks), 0);
        inputs_.take_turn(now_ += 1s);
    }

    nvrec_test::StandInWall wall_{4};
    std::vector<std::string> told_;
    int lasting_ = 0;
    EventInputs inputs_{{{2, true, true, 5s}, {3, true, false, 5s}},
                        [this](int channel, const std::string &kind, const std::string &text) {
                            told_.push_back(std::to_string(channel) + " " + kind + " " + text);
                        },
                        [this](int channel) { lasting_ += channel == 2; }};
    Clock::time_point now_ = Clock::now();
};

TEST_F(BoardEvents, MotionIsLookedForWhereItIsWanted)
{
    vboard_ad_stat chips = {};
    ASSERT_EQ(vboard_ad_get_stat(&chips), 0);
    EXPECT_EQ(chips.motion_started, 1u);
    vboard_ad_input input = {};
    ASSERT_EQ(vboard_ad_get_input(2, &input), 0);
    EXPECT_GT(input.area_bits, 0u) << "there is no motion in an area of nothing";
    pass_second(0);
    EXPECT_EQ(told_, std::vector<std::string>{});
    ASSERT_EQ(vboard_ad_set_motion(3, 9), 0); /* whose motion nobody wants */
    pass_second(7);
    EXPECT_EQ(told_, std::vector<std::string>{"2 motion 7 blocks move"});
}

TEST_F(BoardEvents, MotionThatLastsIsOneEventAndWhatIsRecordedForItGoesOn)
{
    for (int second = 0; second <= 60; ++second)
        pass_second(7);
    EXPECT_EQ(told_.size(), 1u);
    EXPECT_EQ(lasting_, 12) << "every five seconds";
}

TEST_F(BoardEvents, MotionThatPausesForAMomentIsOneEvent)
{
    for (int second = 0; second <= 60; ++second)
        pass_second(second % 2 == 0 ? 7 : 0);
    EXPECT_EQ(told_.size(), 1u);
    EXPECT_EQ(lasting_, 30) << "each time that it comes back: the seconds behind it count from there";
    for (int second = 0; second < 5; ++second)
        pass_second(0);
    pass_second(7);
    EXPECT_EQ(told_.size(), 2u) << "after a while of nothing it is another one";
}

TEST_F(BoardEvents, MotionThatLastsOverAReloadIsOneEvent)
{
    pass_second(7);
    inputs_.set({{2, true, true, 5s}, {3, true, false, 5s}});
    for (int second = 0; second <= 10; ++second)
        pass_second(7);
    EXPECT_EQ(told_.size(), 1u);
}

} // namespace
