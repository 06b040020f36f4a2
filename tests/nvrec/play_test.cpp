/* "nvrec play" as a user runs it: the files' pictures are on the screen, and the cameras' again after. */
#include <csignal>

#include <gtest/gtest.h>

#include "nvrec_run.h"
#include "nvrhal/limits.h"
#include "play_clips.h"
#include "stamps.h"

namespace
{

using nvrec_test::clip;
using nvrec_test::stamp_in;
using stamp::Stamp;

/* Of the clips that the list file orders: 25 frames a second, a key frame a second, five seconds. */
constexpr uint32_t kRate = 25;
constexpr unsigned kFirstFile = 20; /* stamp channel of file 0; cameras begin with 1 */
constexpr uint32_t kFrames = 125;
constexpr uint32_t kLast = kFrames - 1;

const std::vector<std::string> kFiles = {clip("play_0.h264"), clip("play_1.h265")};
const std::vector<std::string> kCameras = {"--live", clip("play_camera_0.h265"), "--live",
                                           clip("play_camera_1.h264")};

class NvrecPlay : public testing::Test
{
protected:
    int play(std::vector<std::string> arguments, const std::vector<std::string> &files = kFiles)
    {
        std::vector<std::string> whole = {NVREC_PROGRAM,    "play",        "--window",  "off",
                                          "--log",          file("log"),   "--json",    file("report.json"),
                                          "--snapshot-dir", file("shots"), "--control", "none"};
        whole.insert(whole.end(), arguments.begin(), arguments.end());
        whole.insert(whole.end(), files.begin(), files.end());
        Process process(whole);
        const int status = process.wait();
        output_ = process.output;
        errors_ = process.errors;
        return status;
    }

    std::string file(const std::string &name) const { return scratch_.file(name); }

    /* "-p" for a picture of that name at a time; without a time at the end. */
    std::vector<std::string> picture(const std::string &name, const std::string &at = {}) const
    {
        return {"-p", file(name + ".png") + (at.empty() ? "" : "," + at)};
    }

    Picture taken(const std::string &name) const { return read_picture(file(name + ".png")); }

    std::string words() const { return output_ + errors_; }

    ScratchDirectory scratch_;
    std::string output_, errors_;
};

std::vector<std::string> operator+(std::vector<std::string> a, const std::vector<std::string> &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/* Two panes of a 2x2 wall, left and right. */
std::optional<Stamp> left(const Picture &wall)
{
    return stamp_in(wall, 0, 0, 960, 540);
}

std::optional<Stamp> right(const Picture &wall)
{
    return stamp_in(wall, 960, 0, 960, 540);
}

TEST_F(NvrecPlay, ShowsTheLastPictureOfEveryFileAtTheEnd)
{
    ASSERT_EQ(play({"--speed", "2", "-p", file("end.png")}), 0) << words();
    EXPECT_EQ(left(taken("end")), (Stamp{kFirstFile, kLast}));
    EXPECT_EQ(right(taken("end")), (Stamp{kFirstFile + 1, kLast}));
    const std::string json = file_text(file("report.json"));
    for (const int number : {0, 1}) {
        EXPECT_EQ(reported(json, number, "sent"), kFrames);
        EXPECT_EQ(reported(json, number, "refused"), 0);
        EXPECT_EQ(reported(json, number, "decoded"), kFrames);
    }
    EXPECT_NE(output_.find("play_1.h265"), std::string::npos) << "the closing table";
}

TEST_F(NvrecPlay, CamerasAreShownBeforeAndAfter)
{
    ASSERT_EQ(play(kCameras + picture("before", "1.4") + picture("during", "2.1") + picture("after") +
                   std::vector<std::string>{"--do", "1.5:play,1.6:pause,1.6:seek 2,2.2:live,4.5:end"}),
              0)
        << words();
    EXPECT_EQ(left(taken("before")).value_or(Stamp{}).channel, 1u);
    EXPECT_EQ(right(taken("before")).value_or(Stamp{}).channel, 2u);
    EXPECT_EQ(left(taken("during")), (Stamp{kFirstFile, 2 * kRate}));
    EXPECT_EQ(right(taken("during")), (Stamp{kFirstFile + 1, 2 * kRate}));
    EXPECT_EQ(left(taken("after")).value_or(Stamp{}).channel, 1u);
    EXPECT_EQ(right(taken("after")).value_or(Stamp{}).channel, 2u);
    EXPECT_EQ(errors_, "");
}

TEST_F(NvrecPlay, PauseHoldsThePictureAndResumeGoesOn)
{
    ASSERT_EQ(play(picture("first", "1.6") + picture("second", "2.2") + picture("third") +
                   std::vector<std::string>{"--do", "1:pause,2.2:resume"}),
              0)
        << words();
    const auto first = left(taken("first"));
    ASSERT_TRUE(first.has_value());
    EXPECT_EQ(first->channel, kFirstFile);
    EXPECT_GT(first->frame, 0u);
    EXPECT_LT(first->frame, kLast);
    EXPECT_EQ(left(taken("second")), first);
    EXPECT_EQ(right(taken("second")), right(taken("first")));
    EXPECT_EQ(left(taken("third")), (Stamp{kFirstFile, kLast}));
}

TEST_F(NvrecPlay, GoesToTheKeyFrameBeforeThePlaceSought)
{
    /* Paused, so that the frame sought stays; from the one place to the other both ways. */
    ASSERT_EQ(play(picture("three", "1.4") + picture("one", "2.2") + picture("far", "3.0") +
                   std::vector<std::string>{"--do", "0.6:pause,0.6:seek 3.5,1.4:seek 1.9,2.2:skip 10,3:end"}),
              0)
        << words();
    const auto expect = [&](const std::string &name, uint32_t frame) {
        EXPECT_EQ(left(taken(name)), (Stamp{kFirstFile, frame})) << name;
        EXPECT_EQ(right(taken(name)), (Stamp{kFirstFile + 1, frame})) << name;
    };
    expect("three", 3 * kRate);
    expect("one", kRate);
    expect("far", 4 * kRate);
}

TEST_F(NvrecPlay, BeginsAtAPlace)
{
    ASSERT_EQ(play({"--seek", "4.2", "-p", file("end.png")}), 0) << words();
    EXPECT_EQ(left(taken("end")), (Stamp{kFirstFile, kLast}));
    EXPECT_EQ(reported(file_text(file("report.json")), 0, "sent"), 1 + kRate)
        << "key frame 0 before the jump, and the fifth second";
}

TEST_F(NvrecPlay, OnePictureAloneAndBackKeepsThePlace)
{
    ASSERT_EQ(play(picture("alone", "1.6") + picture("both", "2.8") +
                   std::vector<std::string>{"--do", "0.5:pause,0.6:seek 2,0.8:enlarge 1,1.8:back,2.8:end"}),
              0)
        << words();
    EXPECT_EQ(stamp_in(taken("alone"), 0, 0, 1920, 1080), (Stamp{kFirstFile + 1, 2 * kRate}));
    EXPECT_EQ(left(taken("both")), (Stamp{kFirstFile, 2 * kRate}));
    EXPECT_EQ(right(taken("both")), (Stamp{kFirstFile + 1, 2 * kRate}));
}

TEST_F(NvrecPlay, DoubleSpeedTakesHalfTheTimeAndNoLess)
{
    ASSERT_EQ(play({"--speed", "2"}), 0) << words();
    const std::string json = file_text(file("report.json"));
    const size_t at = json.find("\"seconds\": ");
    ASSERT_NE(at, std::string::npos);
    /* The last frame is due after 124 / 50 s, never sooner. */
    EXPECT_GE(std::strtod(json.c_str() + at + 11, nullptr), (kLast - 1) / (2.0 * kRate));
}

TEST_F(NvrecPlay, TheChosenFilesSoundIsWritten)
{
    ASSERT_EQ(
        play({"--hear", "1", "--seek", "3", "--wav", file("sound.wav")}, {kFiles[1], clip("play_sound.mp4")}),
        0)
        << words();
    /* Two seconds of 16-bit samples at 8 kHz at the least. */
    EXPECT_GE(file_text(file("sound.wav")).size(), 8000U * 2 * 18 / 10);
    EXPECT_EQ(play({"--wav", "/proc/none/sound.wav"}), 5);
    EXPECT_NE(errors_.find("cannot write /proc/none/sound.wav"), std::string::npos) << errors_;
}

TEST_F(NvrecPlay, NineFilesAreTwoPages)
{
    std::vector<std::string> files(NVRHAL_PLAYBACK_CHANNELS, kFiles[1]);
    files.push_back(kFiles[0]);
    ASSERT_EQ(play(picture("first", "1.9") + picture("second", "3.5") +
                       std::vector<std::string>{"--do", "0.1:pause,0.1:seek 1,1.9:page 2,3.5:end"},
                   files),
              0)
        << words();
    for (int i = 0; i < NVRHAL_PLAYBACK_CHANNELS; ++i)
        EXPECT_EQ(stamp_in(taken("first"), i % 3 * 640, i / 3 * 360, 640, 360),
                  (Stamp{kFirstFile + 1, kRate}))
            << i;
    EXPECT_EQ(stamp_in(taken("second"), 0, 0, 1920, 1080), (Stamp{kFirstFile, kRate}));
}

TEST_F(NvrecPlay, TheZoomedPictureIsTheCropOfTheRecording)
{
    /* The stamp is the top left quarter: enlarged to the screen its cells are twice as large. */
    ASSERT_EQ(
        play(picture("whole", "1.4") + picture("zoomed", "2.2") +
                 std::vector<std::string>{"--do", "0.3:pause,0.4:seek 1,1.5:zoom 0 0 0 320 180,2.2:end"},
             {kFiles[0]}),
        0)
        << words();
    const Picture whole = taken("whole"), zoomed = taken("zoomed");
    EXPECT_EQ(stamp_in(whole, 0, 0, 1920, 1080), (Stamp{kFirstFile, kRate}));
    EXPECT_FALSE(stamp_in(zoomed, 0, 0, 1920, 1080).has_value());
    /* As large as the crop: the stamp of a picture of twice the size. */
    EXPECT_EQ(nvrec_test::stamp_enlarged(zoomed, 2), (Stamp{kFirstFile, kRate}));
}

TEST_F(NvrecPlay, OnePageAfterTheOtherIsPlayed)
{
    /* Seven files of the first page are not there, and the second page begins when the eighth ends. */
    std::vector<std::string> files(7, clip("absent.mp4"));
    files.push_back(kFiles[1]);
    files.push_back(kFiles[0]);
    ASSERT_EQ(play({"--speed", "2", "--seek", "3", "-p", file("end.png")}, files), 3) << words();
    EXPECT_EQ(stamp_in(taken("end"), 0, 0, 1920, 1080), (Stamp{kFirstFile, kLast}));
    EXPECT_EQ(reported(file_text(file("report.json")), 8, "sent"), kFrames);
}

TEST_F(NvrecPlay, ObeysTheRemoteControl)
{
    std::vector<std::string> command = {NVREC_PROGRAM,
                                        "play",
                                        "--window",
                                        "off",
                                        "--log",
                                        file("log"),
                                        "--control",
                                        file("socket"),
                                        "--loop",
                                        "-p",
                                        file("begun.png") + ",0.3",
                                        "-p",
                                        file("end.png")};
    Process recorder(command + kFiles);
    ASSERT_TRUE(scratch_.wait_for("begun.png"));
    for (const char *key : {"pause", "previous", "enter"}) {
        Process press({NVREC_PROGRAM, "key", key, "--control", file("socket")});
        ASSERT_EQ(press.wait(), 0) << key << ": " << press.errors;
    }
    recorder.signal(SIGINT);
    ASSERT_EQ(recorder.wait(), 0) << recorder.errors;
    EXPECT_EQ(stamp_in(taken("end"), 0, 0, 1920, 1080), (Stamp{kFirstFile, 0}));
}

TEST_F(NvrecPlay, AFileThatCannotBeOpenedLeavesTheOthersPlaying)
{
    EXPECT_EQ(play({"--speed", "2", "-p", file("end.png")}, {kFiles[0], clip("absent.mp4")}), 3) << words();
    EXPECT_NE(errors_.find("file 1: " + clip("absent.mp4") + ": cannot open"), std::string::npos) << errors_;
    EXPECT_EQ(stamp_in(taken("end"), 0, 0, 1920, 1080), (Stamp{kFirstFile, kLast}));
}

TEST_F(NvrecPlay, NothingToPlayIsAnError)
{
    EXPECT_EQ(play({}, {clip("absent.mp4")}), 3);
    EXPECT_NE(errors_.find("no file could be opened"), std::string::npos) << errors_;
}

TEST_F(NvrecPlay, CommandLinesThatMakeNoSenseAreRefused)
{
    EXPECT_EQ(play({}, {}), 2);
    EXPECT_EQ(play({"--speed", "3"}), 2);
    EXPECT_EQ(play({"--do", "1:dance"}), 2);
    EXPECT_NE(errors_.find("unknown verb"), std::string::npos) << errors_;
    EXPECT_EQ(play({"--do", "pause"}), 2);
    EXPECT_EQ(play({"--do", "1:seek"}), 2);
    for (const char *item :
         {"1:speed 3", "1:speed 0", "1:speed -1", "1:seek -1", "1:seek 1e300", "1:skip -1e300", "1e300:play",
          "1:enlarge -1", "1:enlarge 2", "1:enlarge 0.5", "1:hear -2", "1:hear 2", "1:page 0", "1:page 2",
          "1:snapshot 16", "1:zoom 0 0 0 1 1", "1:zoom 0 -1 0 32 32", "1:zoom 0 1e300 0 32 32"}) {
        EXPECT_EQ(play({"--do", item}), 2) << item;
        EXPECT_NE(errors_.find(std::string("--do: \"") + item), std::string::npos) << errors_;
    }
    for (const char *seconds : {"1e300", "inf", "nan", "-1"}) {
        EXPECT_EQ(play({"-d", seconds}), 2) << seconds;
        EXPECT_EQ(play({"--seek", seconds}), 2) << seconds;
    }
    EXPECT_EQ(play({"--zoom", "1,2,3"}), 2);
    EXPECT_EQ(play({}, std::vector<std::string>(17, kFiles[0])), 2);
}

} // namespace
