/* "nvrec wall" as a user runs it: every pane shows its own camera, and the table tells the truth. */
#include <csignal>

#include <gtest/gtest.h>

#include "nvrec_run.h"
#include "nvrhal/limits.h"
#include "wall_run.h"

namespace
{

using namespace nvrec_test;

TEST_F(NvrecWall, FourCamerasOfBothCodecsEachInTheirOwnPane)
{
    ASSERT_EQ(
        wall({"--layout", "2x2", "--as-fast-as-can", "-p", scratch_.file("wall.png"), clip("colour0.h264"),
              clip("colour1.h265"), clip("colour2.h264.mp4"), clip("colour3.h265.mp4")}),
        0)
        << last_words();
    const Picture picture = read_picture(scratch_.file("wall.png"));
    ASSERT_EQ(picture.width, 1920);
    ASSERT_EQ(picture.height, 1080);
    for (int i = 0; i < 4; ++i) {
        expect_pane_shows(picture, {i % 2 * 960, i / 2 * 540, 960, 540}, static_cast<size_t>(i));
        EXPECT_EQ(reported(json_, i, "sent"), kClipFrames);
        EXPECT_EQ(reported(json_, i, "refused"), 0);
        EXPECT_EQ(reported(json_, i, "resets"), 0);
        EXPECT_EQ(reported(json_, i, "width"), 352);
        EXPECT_EQ(reported(json_, i, "height"), 288);
        /* A decoder made for another codec takes the byte stream, whose last picture waits for more. */
        EXPECT_GE(reported(json_, i, "decoded"), kClipFrames - 1);
        EXPECT_LE(reported(json_, i, "decoded"), kClipFrames);
    }
    EXPECT_NE(output_.find("codec"), std::string::npos) << "the closing table";
    EXPECT_EQ(output_.find("EEEEEE"), std::string::npos) << "the library's log stays out of it";
    EXPECT_NE(file_text(scratch_.file("log")).find("init done!"), std::string::npos);
}

/* 352 x 288 in 960 x 540: as high as the pane, with bars on both sides. */
TEST_F(NvrecWall, APictureKeepsItsShapeUnlessItIsToBeStretched)
{
    ASSERT_EQ(wall({"--layout", "2x2", "--as-fast-as-can", "--aspect", "fit", "--aspect", "1=stretch", "-p",
                    scratch_.file("wall.png"), clip("colour0.h264"), clip("colour1.h265")}),
              0)
        << last_words();
    const Picture picture = read_picture(scratch_.file("wall.png"));
    ASSERT_EQ(picture.width, 1920);
    expect_pane_shows(picture, {150, 0, 660, 540}, 0);
    expect_pane_shows(picture, {960, 0, 960, 540}, 1);
    for (const int x : {0, 75, 147, 813, 900, 959})
        EXPECT_TRUE(near(picture.at(x, 270), {0, 0, 0})) << x;
}

TEST_F(NvrecWall, ASinglePictureKeepsItsShapeToo)
{
    for (const auto &[aspect, pane] :
         {std::pair("fit", Pane{300, 0, 1320, 1080}), {"0=stretch", Pane{0, 0, 1920, 1080}}}) {
        ASSERT_EQ(wall({"--as-fast-as-can", "--aspect", "fit", "--aspect", aspect, "-p",
                        scratch_.file("wall.png"), clip("colour4.h264")}),
                  0)
            << last_words();
        const Picture picture = read_picture(scratch_.file("wall.png"));
        ASSERT_EQ(picture.width, 1920);
        expect_pane_shows(picture, pane, 4);
        EXPECT_EQ(near(picture.at(100, 540), {0, 0, 0}), pane.x > 0);
    }
    EXPECT_EQ(wall({"--aspect", "wide", clip("colour4.h264")}), 2);
    EXPECT_EQ(wall({"--aspect", "16=fit", clip("colour4.h264")}), 2);
}

TEST_F(NvrecWall, OneAndFiveOnAnotherOutput)
{
    ASSERT_EQ(wall({"--layout", "1+5", "--output", "1280x1024", "--as-fast-as-can", "-p",
                    scratch_.file("wall.png"), clip("colour0.h264"), clip("colour1.h265"),
                    clip("colour2.h264"), clip("colour3.h265"), clip("colour4.h264"), clip("colour5.h265")}),
              0)
        << last_words();
    const Picture picture = read_picture(scratch_.file("wall.png"));
    ASSERT_EQ(picture.width, 1280);
    ASSERT_EQ(picture.height, 1024);
    expect_pane_shows(picture, {0, 0, 852, 682}, 0);
    expect_pane_shows(picture, {852, 0, 428, 340}, 1);
    expect_pane_shows(picture, {852, 340, 428, 342}, 2);
    expect_pane_shows(picture, {0, 682, 426, 342}, 3);
    expect_pane_shows(picture, {426, 682, 426, 342}, 4);
    expect_pane_shows(picture, {852, 682, 428, 342}, 5);
}

TEST_F(NvrecWall, ASingleCameraFillsTheScreen)
{
    for (const char *name : {"colour4.h264", "colour4.h265"}) {
        ASSERT_EQ(wall({"--as-fast-as-can", "-p", scratch_.file("wall.png"), clip(name)}), 0) << last_words();
        const Picture picture = read_picture(scratch_.file("wall.png"));
        ASSERT_EQ(picture.width, 1920);
        expect_pane_shows(picture, {0, 0, 1920, 1080}, 4);
    }
}

TEST_F(NvrecWall, SixteenCamerasRunAtOnce)
{
    std::vector<std::string> arguments = {"--as-fast-as-can", "-p", scratch_.file("wall.png")};
    for (int i = 0; i < NVRHAL_MAX_CAMERAS; ++i)
        arguments.push_back(clip("colour" + std::to_string(i % 6) + (i % 2 ? ".h265" : ".h264")));
    ASSERT_EQ(wall(arguments), 0) << last_words();
    const Picture picture = read_picture(scratch_.file("wall.png"));
    ASSERT_EQ(picture.width, 1920);
    for (int i = 0; i < NVRHAL_MAX_CAMERAS; ++i)
        expect_pane_shows(picture, {i % 4 * 480, i / 4 * 270, 480, 270}, static_cast<size_t>(i % 6));
}

TEST_F(NvrecWall, AnInputThatCannotBeOpenedLeavesTheOthersRunning)
{
    EXPECT_EQ(wall({"--layout", "2x2", "--as-fast-as-can", "-p", scratch_.file("wall.png"),
                    clip("colour0.h264"), clip("absent.mp4"), clip("motion_jpeg.mkv"), clip("colour3.h265")}),
              3);
    EXPECT_NE(errors_.find("channel 1: " + clip("absent.mp4") + ": cannot open: No such file"),
              std::string::npos)
        << errors_;
    EXPECT_NE(errors_.find("its codec is mjpeg"), std::string::npos) << errors_;
    const Picture picture = read_picture(scratch_.file("wall.png"));
    ASSERT_EQ(picture.width, 1920);
    expect_pane_shows(picture, {0, 0, 960, 540}, 0);
    expect_pane_shows(picture, {960, 540, 960, 540}, 3);
    EXPECT_EQ(reported(json_, 0, "sent"), kClipFrames);
    EXPECT_EQ(reported(json_, 1, "sent"), 0);
    EXPECT_EQ(reported(json_, 3, "sent"), kClipFrames);
}

TEST_F(NvrecWall, CommandLinesThatMakeNoSenseAreRefused)
{
    EXPECT_EQ(wall({}), 2);
    EXPECT_EQ(wall({"--layout", "2x3", clip("colour0.h264")}), 2);
    EXPECT_EQ(wall({"--output", "640x480", clip("colour0.h264")}), 2);
    EXPECT_EQ(wall({"--speed", "0", clip("colour0.h264")}), 2);
    EXPECT_EQ(wall({"--speed", "2", "--as-fast-as-can", clip("colour0.h264")}), 2);
    EXPECT_EQ(wall(std::vector<std::string>(17, clip("colour0.h264"))), 2);
    EXPECT_NE(errors_.find("17 inputs"), std::string::npos) << errors_;
}

TEST_F(NvrecWall, APictureWithoutATimeBehindItsCommaIsRefused)
{
    for (const char *when : {"", "abc", "-1", "1s", "nan", "1e300"}) {
        EXPECT_EQ(wall({"-p", scratch_.file("x.png,") + when, clip("colour0.h264")}), 2) << when;
        EXPECT_NE(errors_.find("behind the comma"), std::string::npos) << errors_;
    }
    EXPECT_EQ(wall({"-p", scratch_.file("front, left.png"), "--as-fast-as-can", clip("colour0.h264")}), 0);
    expect_pane_shows(read_picture(scratch_.file("front, left.png")), {0, 0, 1920, 1080}, 0);
}

TEST_F(NvrecWall, NothingToShowIsAnError)
{
    EXPECT_EQ(wall({clip("absent.mp4"), clip("empty.h264")}), 3);
    EXPECT_NE(errors_.find("no input could be opened"), std::string::npos) << errors_;
}

TEST_F(NvrecWall, APictureThatCannotBeWrittenIsAnError)
{
    EXPECT_EQ(wall({"--as-fast-as-can", "-p", "/proc/none/wall.png", clip("colour0.h264")}), 5);
    EXPECT_NE(errors_.find("/proc/none/wall.png"), std::string::npos) << errors_;
}

TEST_F(NvrecWall, APictureIsJpegWhereItsNameSaysSo)
{
    for (const char *name : {"wall.jpg", "wall.JPEG"}) {
        ASSERT_EQ(wall({"--as-fast-as-can", "-p", scratch_.file(name), clip("colour4.h264")}), 0);
        EXPECT_EQ(file_text(scratch_.file(name)).substr(0, 3), "\xFF\xD8\xFF");
        const Picture picture = read_picture(scratch_.file(name));
        ASSERT_EQ(picture.width, 1920);
        ASSERT_EQ(picture.height, 1080);
        expect_pane_shows(picture, {0, 0, 1920, 1080}, 4);
    }
    EXPECT_EQ(wall({"--as-fast-as-can", "-p", "/proc/none/wall.jpg", clip("colour0.h264")}), 5);
}

TEST_F(NvrecWall, AWindowThatCannotBeHadIsAnError)
{
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER"})
        unsetenv(name);
    Process process({NVREC_PROGRAM, "wall", "--window", "on", "--log", scratch_.file("log"), "--control",
                     "none", clip("colour0.h264")});
    EXPECT_EQ(process.wait(), 4);
    EXPECT_NE(process.errors.find("no window could be opened: there is no screen"), std::string::npos)
        << process.errors;
}

TEST_F(NvrecWall, EndsAfterTheFramesAskedForAndBeginsFilesAgain)
{
    ASSERT_EQ(wall({"--as-fast-as-can", "--loop", "--frames", "100", clip("colour0.h264"),
                    clip("colour1.h265.mp4")}),
              0)
        << last_words();
    for (int channel : {0, 1}) {
        EXPECT_EQ(reported(json_, channel, "sent"), 100);
        EXPECT_EQ(reported(json_, channel, "passes"), 3);
    }
}

TEST_F(NvrecWall, FeedsAtTheStreamsOwnFrameRate)
{
    /* 30 frames at 30 a second, twice as fast: the last is due after 29 / 60 s, never sooner. */
    ASSERT_EQ(wall({"--speed", "2", clip("colour0.h264")}), 0) << last_words();
    const size_t at = json_.find("\"seconds\": ");
    ASSERT_NE(at, std::string::npos);
    constexpr double kPrinted_s = 0.001; /* the report's last digit */
    EXPECT_GE(std::strtod(json_.c_str() + at + 11, nullptr), 29.0 / 60 - kPrinted_s);
    EXPECT_EQ(reported(json_, 0, "sent"), kClipFrames);
    EXPECT_GE(reported(json_, 0, "shown"), 1);
}

TEST_F(NvrecWall, CtrlCEndsWithTheTable)
{
    Process process(command({"--loop", "-p", scratch_.file("first.png") + ",0.1", clip("colour0.h265")}));
    ASSERT_TRUE(scratch_.wait_for("first.png"));
    process.signal(SIGINT);
    EXPECT_EQ(process.wait(), 0);
    EXPECT_NE(process.output.find("decoded"), std::string::npos) << process.output;
    EXPECT_GE(reported(file_text(scratch_.file("report.json")), 0, "sent"), 1);
}

} // namespace
