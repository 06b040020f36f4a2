/* A press on the time line that is held and moved: how often it goes somewhere. */
#include <gtest/gtest.h>

#include "play/line_drag.h"

namespace
{

using namespace nvrec;
using std::chrono::milliseconds;

constexpr Clock::time_point kStart{std::chrono::seconds(100)};

TEST(LineDrag, APressGoesToItsPlaceAtOnce)
{
    LineDrag drag;
    EXPECT_FALSE(drag.move(5, kStart)) << "a mouse that passes by";
    EXPECT_EQ(drag.press(7), 7);
    EXPECT_TRUE(drag.held());
    EXPECT_FALSE(drag.release()) << "where it has gone already";
    EXPECT_FALSE(drag.held());
}

TEST(LineDrag, AMovementEveryTenMillisecondsIsAFewJumpsASecond)
{
    LineDrag drag;
    ASSERT_TRUE(drag.press(0));
    drag.went(kStart);
    int jumps = 0;
    for (int i = 1; i <= 100; ++i) {
        const Clock::time_point now = kStart + milliseconds(10 * i);
        if (!drag.move(i, now)) continue;
        ++jumps;
        drag.went(now);
    }
    EXPECT_GE(jumps, 2);
    EXPECT_LE(jumps, 5);
}

TEST(LineDrag, ASlowJumpIsFollowedByTimeForOtherThings)
{
    LineDrag drag;
    ASSERT_TRUE(drag.press(0));
    drag.went(kStart + milliseconds(2000)); /* it took two seconds */
    EXPECT_FALSE(drag.move(1, kStart + milliseconds(2001)));
}

TEST(LineDrag, TheLastPlaceIsGoneToInAnyCase)
{
    LineDrag drag;
    ASSERT_TRUE(drag.press(0));
    drag.went(kStart);
    EXPECT_EQ(drag.due_at(), Clock::time_point::max());
    EXPECT_FALSE(drag.move(8, kStart + milliseconds(10)));
    EXPECT_EQ(drag.waiting(), 8);
    const Clock::time_point due = drag.due_at();
    EXPECT_FALSE(drag.take_due(due - milliseconds(1)));
    EXPECT_EQ(drag.take_due(due), 8) << "of a mouse that is held still";
    EXPECT_FALSE(drag.waiting());
    drag.went(due);
    EXPECT_FALSE(drag.move(9, due + milliseconds(10)));
    EXPECT_EQ(drag.release(), 9) << "of a mouse that is let go";
    EXPECT_EQ(drag.due_at(), Clock::time_point::max());
}

} // namespace
