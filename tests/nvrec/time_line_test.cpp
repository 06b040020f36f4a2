/* The time line: which place a point of it stands for, and when it has to be painted anew. */
#include <gtest/gtest.h>

#include "screen/time_line.h"
#include "screen/time_line_texts.h"

namespace
{

using namespace nvrec;

constexpr int64_t kSecondOfPlay_us = 1'000'000;
constexpr Rect kScreen = {0, 0, 1920, 1080};

TimeLineState two_cameras_at(int64_t position_us)
{
    TimeLineState state;
    state.rows = {{"yard", {{0, 3600 * kSecondOfPlay_us}}}, {"gate", {{0, 60 * kSecondOfPlay_us}}}};
    state.position_us = position_us;
    return state;
}

TEST(TimeLine, StandsAtTheLowerEdge)
{
    TimeLine line(nullptr, kScreen, 24);
    line.set(two_cameras_at(0));
    EXPECT_EQ(line.place().bottom(), kScreen.bottom());
    EXPECT_EQ(line.place().w, kScreen.w);
    EXPECT_LT(line.place().h, kScreen.h / 5);
}

TEST(TimeLine, PointsStandForTheirPlace)
{
    TimeLine line(nullptr, kScreen, 24);
    line.set(two_cameras_at(1800 * kSecondOfPlay_us));
    const int y = line.place().y + line.place().h / 2;
    for (const int64_t place_us :
         {1500 * kSecondOfPlay_us, 1800 * kSecondOfPlay_us, 2400 * kSecondOfPlay_us}) {
        const auto at_us = line.time_at(line.x_of(place_us), y);
        ASSERT_TRUE(at_us);
        EXPECT_NEAR(static_cast<double>(*at_us), static_cast<double>(place_us),
                    static_cast<double>(line.shown_span_us()) / 1000);
    }
    EXPECT_FALSE(line.time_at(10, y)) << "the names";
    EXPECT_FALSE(line.time_at(960, 10)) << "the pictures";
}

TEST(TimeLine, NeverStandsForAPlaceBeforeTheBeginning)
{
    TimeLine line(nullptr, kScreen, 24);
    line.set(two_cameras_at(0));
    for (int x = 0; x < kScreen.w; ++x)
        EXPECT_GE(line.time_at(x, line.place().y + line.place().h / 2).value_or(0), 0) << x;
}

TEST(TimeLine, ShowsALongerOrAShorterTimeWithinItsTable)
{
    TimeLine line(nullptr, kScreen, 24);
    line.set(two_cameras_at(0));
    const int64_t before_us = line.shown_span_us();
    EXPECT_FALSE(line.step_span(1).empty());
    EXPECT_GT(line.shown_span_us(), before_us);
    line.step_span(-1);
    EXPECT_EQ(line.shown_span_us(), before_us);
    for (int i = 0; i < 20; ++i)
        line.step_span(-1);
    EXPECT_TRUE(line.step_span(-1).empty()) << "the shortest";
    EXPECT_GT(line.shown_span_us(), 0);
}

TEST(TimeLine, KeepsThePositionInSightHoweverFarItGoes)
{
    TimeLine line(nullptr, kScreen, 24);
    for (int64_t position_us = 0; position_us < 7 * 3600 * kSecondOfPlay_us;
         position_us += 97 * kSecondOfPlay_us) {
        line.set(two_cameras_at(position_us));
        const auto at_us = line.time_at(line.x_of(position_us), line.place().y + line.place().h / 2);
        ASSERT_TRUE(at_us) << position_us;
        EXPECT_NEAR(static_cast<double>(*at_us), static_cast<double>(position_us), 10e6) << position_us;
    }
}

TEST(TimeLine, AStepIsSeenOnALineOfAnyLength)
{
    TimeLine line(nullptr, kScreen, 24);
    line.set(two_cameras_at(0));
    for (int i = 0; i < 20; ++i)
        line.step_span(-1);
    do {
        EXPECT_GE(line.shown_span_us(), 20 * line.step_us()) << line.shown_span_us();
        EXPECT_LE(line.shown_span_us(), 60 * line.step_us()) << line.shown_span_us();
    } while (!line.step_span(1).empty());
}

TEST(TimeLine, SpeaksBothLanguages)
{
    TimeLineState state = two_cameras_at(0);
    state.speed = 2;
    EXPECT_EQ(time_line_heading(state, "14:05", Language::kEnglish), "Playing 2x    14:05");
    EXPECT_EQ(time_line_heading(state, "14:05", Language::kChinese), "正在播放 2x    14:05");
    state.paused = state.in_gap = true;
    EXPECT_EQ(time_line_heading(state, "14:05", Language::kEnglish), "Paused    14:05    Not recorded");
    EXPECT_EQ(time_line_heading(state, "14:05", Language::kChinese), "已暂停    14:05    无录像");
}

} // namespace
