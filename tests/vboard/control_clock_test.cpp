/* control_clock_test.cpp - the board's clock: taken, stepped, slept on, followed; the media clock on it. */
#include <atomic>
#include <thread>
#include <vector>

#include "board_io.h"
#include "control_board.h"

using namespace rig;

namespace
{

TEST_F(Control, TheClockStandsStillWhenTakenAndMovesByStepsOnly)
{
    EXPECT_EQ(vboard_clock_step_us(1), -1);
    vboard_clock_take();
    const int64_t before = vboard_clock_us();
    const int64_t wall = board_time_us();
    EXPECT_EQ(vboard_clock_us(), before);
    EXPECT_EQ(vboard_clock_step_us(-1), -1);
    ASSERT_EQ(vboard_clock_step_us(1234567), 0);
    EXPECT_EQ(vboard_clock_us(), before + 1234567);
    EXPECT_EQ(board_time_us(), wall + 1234567);
    vboard_clock_release();
    EXPECT_GE(vboard_clock_us(), before + 1234567);
}

TEST_F(Control, AClockTakenAtATimeStandsThere)
{
    EXPECT_EQ(vboard_clock_take_at(-1, 0), -1);
    EXPECT_EQ(vboard_clock_take_at(0, INT64_MAX), -1);
    ASSERT_EQ(vboard_clock_take_at(5000000, 1700000000000000), 0);
    EXPECT_EQ(vboard_clock_us(), 5000000);
    EXPECT_EQ(board_time_us(), 1700000000000000);
    EXPECT_EQ(vboard_clock_take_at(0, 0), -1); // taken
    ASSERT_EQ(vboard_clock_step_us(7), 0);
    EXPECT_EQ(vboard_clock_us(), 5000007);
    EXPECT_EQ(board_time_us(), 1700000000000007);
    vboard_clock_release();
    EXPECT_GE(vboard_clock_us(), 5000007);
    EXPECT_LT(vboard_clock_us(), 5000007 + 60000000);
    std::atomic<bool> woke = false;
    std::thread sleeper([&] {
        board_sleep_us(4000000);
        woke = true;
    });
    while (vboard_clock_wait_sleepers(1, 1) != 0)
        ASSERT_FALSE(woke);
    EXPECT_EQ(vboard_clock_take_at(0, 0), -1); // it would sleep for another time than it asked for
    vboard_clock_take();
    ASSERT_EQ(vboard_clock_step_us(4000000), 0);
    sleeper.join();
}

TEST_F(Control, ASleepEndsWhenTheClockIsSteppedPastIt)
{
    vboard_clock_take();
    const int64_t start = vboard_clock_us();
    int64_t woke = 0;
    std::thread sleeper([&] {
        board_sleep_us(100000);
        woke = vboard_clock_us();
    });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    ASSERT_EQ(vboard_clock_step_us(99999), 0);
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0); // still asleep
    ASSERT_EQ(vboard_clock_step_us(1), 0);
    sleeper.join();
    EXPECT_EQ(woke, start + 100000);
}

TEST_F(Control, ASleeperWakesWhenTheClockIsReleased)
{
    vboard_clock_take();
    std::thread sleeper([] { board_sleep_us(1000); });
    ASSERT_EQ(vboard_clock_wait_sleepers(1, kPatience_ms), 0);
    vboard_clock_release();
    sleeper.join();
}

TEST_F(Control, AFollowerIsToldOfEveryJumpOfTheClock)
{
    std::vector<int64_t> told;
    const auto follower = [](void *user) {
        static_cast<std::vector<int64_t> *>(user)->push_back(vboard_clock_us());
    };
    EXPECT_EQ(vboard_clock_is_taken(), 0);
    ASSERT_EQ(vboard_clock_follow(follower, &told), 0);
    EXPECT_EQ(vboard_clock_follow(follower, &told), -1);
    vboard_clock_take();
    EXPECT_EQ(vboard_clock_is_taken(), 1);
    const int64_t taken_at = vboard_clock_us();
    const int64_t wall = vboard_clock_wall_us();
    ASSERT_EQ(vboard_clock_step_us(40000), 0);
    EXPECT_EQ(vboard_clock_wall_us(), wall + 40000);
    EXPECT_EQ(told, (std::vector<int64_t>{taken_at, taken_at + 40000}));
    vboard_clock_release();
    EXPECT_EQ(told.size(), 3u);
    ASSERT_EQ(vboard_clock_follow(nullptr, nullptr), 0);
    vboard_clock_take();
    EXPECT_EQ(told.size(), 3u);
    vboard_clock_release();
    ASSERT_EQ(vboard_clock_follow(follower, &told), 0);
    ASSERT_EQ(vboard_clock_take_at(5, 6), 0);
    EXPECT_EQ(told.back(), 5);
    ASSERT_EQ(vboard_clock_follow(nullptr, nullptr), 0);
    vboard_clock_release();
}

TEST_F(Control, AnApplicationsOwnSleepersCountUntilTheirTimeOrTheirWaking)
{
    vboard_clock_take();
    const int64_t now = vboard_clock_us();
    EXPECT_EQ(vboard_clock_wait_sleepers(1, 0), -1);
    vboard_clock_add_sleeper(now + 10);
    vboard_clock_add_sleeper(now + 20);
    EXPECT_EQ(vboard_clock_wait_sleepers(2, 0), 0);
    ASSERT_EQ(vboard_clock_step_us(10), 0);
    EXPECT_EQ(vboard_clock_wait_sleepers(2, 0), -1) << "its time has come, so it is awake";
    EXPECT_EQ(vboard_clock_wait_sleepers(1, 0), 0);
    vboard_clock_remove_sleeper(now + 20);
    EXPECT_EQ(vboard_clock_wait_sleepers(1, 0), -1);
    vboard_clock_remove_sleeper(now + 10);
    vboard_clock_remove_sleeper(now + 10); // accepted
    vboard_clock_release();
}

TEST_F(Control, TheMediaClockRunsFromItsBaseAndNeverBackwards)
{
    uint64_t pts = 0;
    EXPECT_EQ(MI_SYS_GetCurPts(&pts), code(MI_MODULE_SYS, MI_REASON_NOT_READY));
    ASSERT_EQ(MI_SYS_Init(), MI_SUCCESS);
    vboard_clock_take();
    ASSERT_EQ(MI_SYS_InitPtsBase(0xF1237890F1237890ull), MI_SUCCESS);
    ASSERT_EQ(vboard_clock_step_us(5), 0);
    ASSERT_EQ(MI_SYS_SyncPts(0xE1237890E1237890ull), MI_SUCCESS); // behind: changes nothing
    ASSERT_EQ(MI_SYS_GetCurPts(&pts), MI_SUCCESS);
    EXPECT_EQ(pts, 0xF1237890F1237895ull);
    ASSERT_EQ(MI_SYS_SyncPts(0xF2237890F1237890ull), MI_SUCCESS);
    ASSERT_EQ(MI_SYS_GetCurPts(&pts), MI_SUCCESS);
    EXPECT_EQ(pts, 0xF2237890F1237890ull);
    MI_SYS_Version version = {};
    ASSERT_EQ(MI_SYS_GetVersion(&version), MI_SUCCESS);
    EXPECT_NE(version.text[0], '\0');
}

} // namespace
