/* Going to a place in a recorded file: the key frame at or before it, whatever the container. */
#include <chrono>
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "camera/input.h"

namespace
{

using namespace nvrec;

constexpr int kKeyInterval = 20; /* frames, of 60 in all */
constexpr double kFrame_us = 1e6 / 30;

int64_t frame_time_us(double frame)
{
    return std::llround(frame * kFrame_us);
}

class InputSeek : public testing::TestWithParam<const char *>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(input_.open(std::chrono::seconds(10))) << input_.error();
        ASSERT_EQ(input_.read_key(&unit_), Input::Read::kUnit);
    }

    Input input_{std::string(NVREC_CLIPS) + "/" + GetParam()};
    AccessUnit unit_;
};

TEST_P(InputSeek, LandsOnTheKeyFrameAtOrBeforeThePlace)
{
    struct Row {
        double frame; /* sought */
        int key;      /* landed on */
    };
    for (const Row &row :
         {Row{45.5, 40}, Row{40.5, 40}, Row{39.5, 20}, Row{5, 0}, Row{0, 0}, Row{1000, 40}}) {
        ASSERT_TRUE(input_.seek(frame_time_us(row.frame), &unit_)) << row.frame << ": " << input_.error();
        EXPECT_TRUE(unit_.key);
        /* Containers keep times in units of their own: MKV in milliseconds. */
        EXPECT_NEAR(static_cast<double>(unit_.due_us), row.key * kFrame_us, 1500) << row.frame;
    }
}

TEST_P(InputSeek, ReadsOnFromThereToTheEnd)
{
    ASSERT_TRUE(input_.seek(frame_time_us(25), &unit_)) << input_.error();
    int frames = 1;
    int64_t last_us = unit_.due_us;
    while (input_.read(&unit_) == Input::Read::kUnit) {
        EXPECT_GT(unit_.due_us, last_us);
        EXPECT_EQ(unit_.key, frames % kKeyInterval == 0);
        last_us = unit_.due_us;
        ++frames;
    }
    EXPECT_EQ(frames, 40);
    /* From behind the end back to the beginning. */
    ASSERT_TRUE(input_.seek(0, &unit_)) << input_.error();
    EXPECT_EQ(unit_.due_us, 0);
}

INSTANTIATE_TEST_SUITE_P(Files, InputSeek,
                         testing::Values("plain.h264", "h264.mp4", "h264.mkv", "h265.mp4", "h265.mkv",
                                         "reordered.h264", "reordered.h265"));

TEST(InputSeekFails, WhereThereIsNothingToGoTo)
{
    AccessUnit unit;
    Input closed(std::string(NVREC_CLIPS) + "/plain.h264");
    EXPECT_FALSE(closed.seek(0, &unit));
    EXPECT_FALSE(closed.error().empty());
}

} // namespace
