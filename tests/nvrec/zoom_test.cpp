/* The recorder's zoom: where its window goes, and "--zoom" as a user gives it. */
#include <csignal>

#include <gtest/gtest.h>

#include "nvrec_run.h"
#include "play/zoom.h"
#include "stamps.h"

namespace
{

using namespace nvrec;
using stamp::Stamp;

void expect_window(const ZoomWindow &window, double x, double y, double w, double h)
{
    constexpr double kRounding = 1e-9;
    EXPECT_NEAR(window.x, x, kRounding);
    EXPECT_NEAR(window.y, y, kRounding);
    EXPECT_NEAR(window.w, w, kRounding);
    EXPECT_NEAR(window.h, h, kRounding);
}

TEST(ZoomWindow, KeepsThePointUnderThePointerWhereItIs)
{
    ZoomWindow window;
    window.scale_around(0.25, 0.5, 2);
    expect_window(window, 0.125, 0.25, 0.5, 0.5);
    const auto [x, y] = window.point_at(0.25, 0.5);
    EXPECT_DOUBLE_EQ(x, 0.25);
    EXPECT_DOUBLE_EQ(y, 0.5);
    window.scale_around(0.25, 0.5, 0.5);
    expect_window(window, 0, 0, 1, 1);
    EXPECT_TRUE(window.is_whole());
}

TEST(ZoomWindow, StaysInsideThePicture)
{
    ZoomWindow window = {.x = 0.25, .y = 0.25, .w = 0.5, .h = 0.5};
    window.move(1, -1);
    expect_window(window, 0.5, 0, 0.5, 0.5);
    window.scale_around(1, 0, 0.75); /* the corner stays */
    EXPECT_NEAR(window.x + window.w, 1, 1e-9);
    EXPECT_NEAR(window.y, 0, 1e-9);
    window.scale_around(0.5, 0.5, 0.01);
    expect_window(window, 0, 0, 1, 1);
    window.scale_around(0.5, 0.5, 1e6);
    expect_window(window, 0.5 - 1.0 / 64, 0.5 - 1.0 / 64, 1.0 / 32, 1.0 / 32);
}

TEST(ZoomRect, TakesFourNumbersAndNothingElse)
{
    const auto rect = zoom_rect("16,0,320,180");
    ASSERT_TRUE(rect.has_value());
    EXPECT_EQ(rect->x, 16);
    EXPECT_EQ(rect->y, 0);
    EXPECT_EQ(rect->w, 320);
    EXPECT_EQ(rect->h, 180);
    for (const char *text :
         {"", "1,2,3", "1,2,3,4,5", "1,2,3,4x", "-1,0,4,4", "0,0,0,4", "0,0,4,0", "a,b,c,d"})
        EXPECT_FALSE(zoom_rect(text).has_value()) << text;
}

class NvrecZoom : public testing::Test
{
protected:
    int wall(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {NVREC_PROGRAM, "wall", "--window", "off", "--control", "none",
                                             "--log", scratch_.file("log"), "-p", scratch_.file("wall.png")});
        arguments.insert(arguments.end(), {std::string(NVREC_STREAMS) + "/play_camera_0.h265",
                                           std::string(NVREC_STREAMS) + "/play_camera_1.h264"});
        Process process(arguments);
        const int status = process.wait();
        words_ = process.output + process.errors;
        return status;
    }

    ScratchDirectory scratch_;
    std::string words_;
};

/* Cameras of 640 x 360: the stamp fills their first quarter. */
TEST_F(NvrecZoom, ShowsThePartOfTheChannelAsked)
{
    for (const int channel : {0, 1}) {
        ASSERT_EQ(wall({"--zoom", "0,0,320,180", "--zoom-channel", std::to_string(channel)}), 0) << words_;
        const auto seen = nvrec_test::stamp_enlarged(read_picture(scratch_.file("wall.png")), 2);
        ASSERT_TRUE(seen.has_value()) << channel;
        EXPECT_EQ(seen->channel, 1U + static_cast<unsigned>(channel));
    }
    ASSERT_EQ(wall({"--zoom", "320,180,320,180"}), 0) << words_;
    EXPECT_FALSE(nvrec_test::stamp_enlarged(read_picture(scratch_.file("wall.png")), 2).has_value());
}

/* The middle half, and four steps of an eighth of it to the left and up: the first quarter. */
TEST_F(NvrecZoom, TheRemoteControlZoomsAndMoves)
{
    const std::string socket = scratch_.file("socket");
    Process recorder({NVREC_PROGRAM, "wall", "--window", "off", "--log", scratch_.file("log"), "--control",
                      socket, "--loop", "--snapshot-dir", scratch_.file("shots"), "-p",
                      scratch_.file("begun.png") + ",0.3", "-p", scratch_.file("wall.png"),
                      std::string(NVREC_STREAMS) + "/play_camera_0.h265",
                      std::string(NVREC_STREAMS) + "/play_camera_1.h264"});
    ASSERT_TRUE(scratch_.wait_for("begun.png"));
    for (const char *key : {"zoom", "left", "left", "left", "left", "up", "up", "up", "up", "snapshot"}) {
        Process press({NVREC_PROGRAM, "key", key, "--control", socket});
        ASSERT_EQ(press.wait(), 0) << key << ": " << press.errors;
    }
    recorder.signal(SIGINT);
    ASSERT_EQ(recorder.wait(), 0) << recorder.errors;
    const auto seen = nvrec_test::stamp_enlarged(read_picture(scratch_.file("wall.png")), 2);
    EXPECT_EQ(seen.value_or(Stamp{}).channel, 1U);
    EXPECT_NE(recorder.output.find("snapshot of channel 0: " + scratch_.file("shots")), std::string::npos)
        << recorder.output << recorder.errors;
}

TEST_F(NvrecZoom, OfAPartOutsideThePictureIsRefused)
{
    EXPECT_EQ(wall({"--zoom", "320,180,322,180"}), 2);
    EXPECT_NE(words_.find("the part leaves the picture of 640 x 360"), std::string::npos) << words_;
    EXPECT_EQ(wall({"--zoom", "0,0,320,180", "--zoom-channel", "2"}), 2);
    EXPECT_NE(words_.find("there is no channel 2"), std::string::npos) << words_;
}

} // namespace
