/* "nvrec snapshot" as a user runs it: the right camera's picture, whatever the wall shows meanwhile. */
#include <filesystem>

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

constexpr unsigned kFirstCamera = 1; /* stamp channel of camera 0 */
constexpr unsigned kFirstFile = 20;

/* Of both codecs. */
const std::vector<std::string> kCameras = {clip("play_camera_0.h265"), clip("play_camera_1.h264")};

class NvrecSnapshot : public testing::Test
{
protected:
    int run(const std::string &subcommand, std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {NVREC_PROGRAM, subcommand, "--log", scratch_.file("log")});
        Process process(arguments);
        const int status = process.wait();
        words_ = process.output + process.errors;
        return status;
    }

    int snapshot(std::vector<std::string> arguments, const std::vector<std::string> &inputs = kCameras)
    {
        arguments.insert(arguments.begin(), {"--output", path()});
        arguments.insert(arguments.end(), inputs.begin(), inputs.end());
        return run("snapshot", arguments);
    }

    std::string path() const { return scratch_.file("shots/picture.jpg"); }

    void expect_camera(int channel) const
    {
        const Picture picture = read_picture(path());
        ASSERT_EQ(picture.width, NVRHAL_SNAPSHOT_WIDTH) << words_;
        ASSERT_EQ(picture.height, NVRHAL_SNAPSHOT_HEIGHT);
        const auto seen = stamp_in(picture, 0, 0, NVRHAL_SNAPSHOT_WIDTH, NVRHAL_SNAPSHOT_HEIGHT);
        ASSERT_TRUE(seen.has_value()) << "no stamp of camera " << channel;
        EXPECT_EQ(seen->channel, kFirstCamera + static_cast<unsigned>(channel));
    }

    ScratchDirectory scratch_;
    std::string words_;
};

TEST_F(NvrecSnapshot, OfAChannelInLiveView)
{
    for (const int channel : {0, 1}) {
        ASSERT_EQ(snapshot({"--channel", std::to_string(channel)}), 0) << words_;
        expect_camera(channel);
    }
}

TEST_F(NvrecSnapshot, InTheCamerasOwnSize)
{
    for (const int channel : {0, 1}) { /* of both codecs */
        ASSERT_EQ(snapshot({"--size", "camera", "--channel", std::to_string(channel)}), 0) << words_;
        const Picture picture = read_picture(path());
        ASSERT_EQ(picture.width, 640) << words_;
        ASSERT_EQ(picture.height, 360);
        const auto seen = stamp_in(picture, 0, 0, 640, 360);
        ASSERT_TRUE(seen.has_value());
        EXPECT_EQ(seen->channel, kFirstCamera + static_cast<unsigned>(channel));
    }
    EXPECT_EQ(file_text(path()).substr(0, 3), "\xFF\xD8\xFF") << "a JPEG file";
    EXPECT_EQ(snapshot({"--size", "huge"}), 2);
}

TEST_F(NvrecSnapshot, IsNotWrittenUnderTheNameOfAnotherKindOfPicture)
{
    Process nvrec({NVREC_PROGRAM, "snapshot", kCameras[0], "-f", scratch_.file("shot.PNG")});
    EXPECT_EQ(nvrec.wait(), 2);
    EXPECT_NE(nvrec.errors.find("a snapshot is a JPEG picture, name it .jpg"), std::string::npos)
        << nvrec.errors;
    EXPECT_FALSE(std::filesystem::exists(scratch_.file("shot.PNG")));
}

TEST_F(NvrecSnapshot, OfAHiddenChannel)
{
    const std::vector<std::string> inputs = {kCameras[0], kCameras[0], kCameras[0], kCameras[1]};
    ASSERT_EQ(snapshot({"--layout", "1", "--channel", "3", "-p", scratch_.file("wall.png")}, inputs), 0)
        << words_;
    expect_camera(1);
    const auto shown = stamp_in(read_picture(scratch_.file("wall.png")), 0, 0, 1920, 1080);
    ASSERT_TRUE(shown.has_value());
    EXPECT_EQ(shown->channel, kFirstCamera) << "the wall shows camera 0 alone";
}

TEST_F(NvrecSnapshot, DuringPlayback)
{
    for (const int channel : {0, 1}) {
        ASSERT_EQ(snapshot({"--during-playback", "--play", clip("play_1.h265"), "--play", clip("play_0.h264"),
                            "--channel", std::to_string(channel), "-p", scratch_.file("wall.png")}),
                  0)
            << words_;
        expect_camera(channel);
        const auto left = stamp_in(read_picture(scratch_.file("wall.png")), 0, 0, 960, 540);
        ASSERT_TRUE(left.has_value());
        EXPECT_EQ(left->channel, kFirstFile + 1) << "the recording is on the screen, not the camera";
    }
}

TEST_F(NvrecSnapshot, DuringPlaybackOfTheInputsThemselves)
{
    ASSERT_EQ(snapshot({"--during-playback", "--channel", "1"}), 0) << words_;
    expect_camera(1);
}

TEST_F(NvrecSnapshot, FromAScriptIntoTheSnapshotDirectory)
{
    ASSERT_EQ(run("play", {"--window", "off", "--control", "none", "--snapshot-dir", scratch_.file("shots"),
                           "--live", kCameras[0], "--live", kCameras[1], "--do", "0.5:snapshot 1,0.6:end",
                           clip("play_1.h265")}),
              0)
        << words_;
    const std::string said = "snapshot of channel 1: ";
    const size_t at = words_.find(said);
    ASSERT_NE(at, std::string::npos) << words_;
    const std::string path = words_.substr(at + said.size(), words_.find('\n', at) - at - said.size());
    EXPECT_NE(path.find("/shots/channel1-"), std::string::npos);
    const Picture picture = read_picture(path);
    ASSERT_EQ(picture.width, NVRHAL_SNAPSHOT_WIDTH);
    EXPECT_EQ(
        stamp_in(picture, 0, 0, NVRHAL_SNAPSHOT_WIDTH, NVRHAL_SNAPSHOT_HEIGHT).value_or(Stamp{}).channel,
        kFirstCamera + 1);

    const std::string large = path.substr(0, path.size() - 4) + "-640x360.jpg";
    EXPECT_NE(words_.find("snapshot of channel 1, 640x360: " + large), std::string::npos) << words_;
    const Picture beside = read_picture(large);
    ASSERT_EQ(beside.width, 640);
    EXPECT_EQ(stamp_in(beside, 0, 0, 640, 360).value_or(Stamp{}).channel, kFirstCamera + 1);
}

TEST_F(NvrecSnapshot, OfACameraWithoutAPictureFails)
{
    EXPECT_EQ(snapshot({"--channel", "1"}, {kCameras[0], clip("absent.mp4")}), 3);
    EXPECT_NE(words_.find("its input is not open"), std::string::npos) << words_;
    EXPECT_EQ(file_text(path()), "");
}

TEST_F(NvrecSnapshot, ThatCannotBeWrittenFails)
{
    EXPECT_EQ(run("snapshot", {"--output", "/proc/none/picture.jpg", kCameras[0]}), 5);
    EXPECT_NE(words_.find("cannot write /proc/none/picture.jpg"), std::string::npos) << words_;
}

TEST_F(NvrecSnapshot, CommandLinesThatMakeNoSenseAreRefused)
{
    EXPECT_EQ(run("snapshot", {"--channel", "0", kCameras[0]}), 2);
    EXPECT_EQ(snapshot({"--channel", "2"}), 2);
    EXPECT_NE(words_.find("channel 2 of 2 inputs"), std::string::npos) << words_;
    EXPECT_EQ(snapshot({"--channel", "-1"}), 2);
    EXPECT_EQ(snapshot({"--play", clip("play_0.h264")}), 2);
}

} // namespace
