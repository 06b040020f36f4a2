/* The guide's recorder as its user runs it, over the virtual board: what it shows, writes and plays. */
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include "nvrec_run.h"
#include "stamps.h"

namespace
{

constexpr int kCameras = 4;
constexpr int kWidth = 1920, kHeight = 1080;

using Rgb = std::array<int, 3>;
constexpr Rgb kWhite = {255, 255, 255}, kYellow = {255, 255, 0}, kAlmostBlack = {8, 8, 8};

/* Five bits a component, through the display's colours and back. */
bool near(const Rgb &seen, const Rgb &expected)
{
    constexpr int kRounding = 16;
    for (size_t i = 0; i < 3; ++i)
        if (std::abs(seen[i] - expected[i]) > kRounding) return false;
    return true;
}

std::string camera_file(int channel)
{
    return std::string(RECORDER_STREAMS) + "/recorder_" + std::to_string(channel) +
           (channel % 2 == 0 ? ".h264" : ".h265");
}

/* From one frame of a camera on to another. The cameras' files begin again after 1000 frames. */
unsigned frames_between(const stamp::Stamp &from, const stamp::Stamp &to)
{
    constexpr unsigned kFramesOfAFile = 1000;
    return (to.frame + kFramesOfAFile - from.frame) % kFramesOfAFile;
}

class RecorderExample : public testing::Test
{
protected:
    /* Four cameras of both codecs, the first two with sound. "%" in an order is the directory. */
    void run(const std::vector<std::string> &orders)
    {
        std::vector<std::string> command = {RECORDER_PROGRAM, scratch_.path()};
        for (int channel = 0; channel < kCameras; ++channel)
            command.push_back(camera_file(channel) + ",320x180" + (channel < 2 ? "," RECORDER_TONE : ""));
        for (std::string order : orders) {
            const size_t place = order.find('%');
            if (place != std::string::npos) order.replace(place, 1, scratch_.path() + "/");
            command.push_back(order);
        }
        Process process(command);
        EXPECT_EQ(process.wait(), 0) << process.errors;
        EXPECT_EQ(process.output, "") << "the library's log goes to its file";
        EXPECT_EQ(process.errors.find("recorder: cannot"), std::string::npos) << process.errors;
        EXPECT_EQ(process.errors.find("refused"), std::string::npos) << process.errors;
    }

    Picture picture(const std::string &name) const
    {
        Picture seen = read_picture(scratch_.file(name));
        EXPECT_EQ(seen.width, kWidth) << name;
        EXPECT_EQ(seen.height, kHeight) << name;
        return seen;
    }

    static std::optional<stamp::Stamp> pane_stamp(const Picture &seen, int channel)
    {
        return nvrec_test::stamp_in(seen, channel % 2 * kWidth / 2, channel / 2 * kHeight / 2, kWidth / 2,
                                    kHeight / 2);
    }

    static void expect_every_camera(const Picture &seen)
    {
        for (int channel = 0; channel < kCameras; ++channel) {
            const auto stamp = pane_stamp(seen, channel);
            ASSERT_TRUE(stamp.has_value()) << "pane " << channel;
            EXPECT_EQ(stamp->channel, static_cast<unsigned>(channel));
        }
    }

    ScratchDirectory scratch_;
};

TEST_F(RecorderExample, ShowsEveryCameraAndEnlargesTheOneClickedOn)
{
    run({"2.5:picture=%wall.png", "2.6:click=1400,200", "3.2:picture=%clicked.png", "3.3:press=enter",
         "5.5:picture=%single.png", "5.6:panel=enter", "8:picture=%grid.png", "8.1:state=%state",
         "8.2:quit"});
    const Picture wall = picture("wall.png"), clicked = picture("clicked.png");
    expect_every_camera(wall);
    EXPECT_TRUE(near(wall.at(400, 1), kYellow)) << "the first camera is selected";
    EXPECT_TRUE(near(wall.at(1300, 1), kWhite));
    EXPECT_TRUE(near(clicked.at(400, 1), kWhite));
    EXPECT_TRUE(near(clicked.at(1300, 1), kYellow));
    EXPECT_TRUE(near(clicked.at(1690, 10), kAlmostBlack)) << "the clock's ground";

    const auto single = nvrec_test::stamp_in(picture("single.png"), 0, 0, kWidth, kHeight);
    ASSERT_TRUE(single.has_value());
    EXPECT_EQ(single->channel, 1u);
    expect_every_camera(picture("grid.png"));

    const std::string state = file_text(scratch_.file("state"));
    EXPECT_NE(state.find("watchdog on\n"), std::string::npos) << state;
    EXPECT_NE(state.find("buzzer 0\n"), std::string::npos) << state;
    const size_t feeds = state.find("feeds "), lamp = state.find("lamp changes ");
    ASSERT_NE(feeds, std::string::npos);
    ASSERT_NE(lamp, std::string::npos);
    EXPECT_GE(std::atoi(state.c_str() + feeds + std::strlen("feeds ")), 3) << "start-up and every 3 s";
    EXPECT_GE(std::atoi(state.c_str() + lamp + std::strlen("lamp changes ")), 4) << "twice a second";
    EXPECT_NE(file_text(scratch_.file("library.log")).find("init done!"), std::string::npos);
}

TEST_F(RecorderExample, ZoomsIntoTheSelectedCamera)
{
    run({"0.5:press=right", "1:press=zoom", "3.2:picture=%middle.png", "3.3:press=left", "3.4:press=left",
         "3.5:press=up", "3.6:press=up", "4.2:picture=%corner.png", "4.3:press=zoom", "6.8:picture=%grid.png",
         "6.9:quit"});
    EXPECT_FALSE(nvrec_test::stamp_enlarged(picture("middle.png"), 2).has_value());
    const auto corner = nvrec_test::stamp_enlarged(picture("corner.png"), 2);
    ASSERT_TRUE(corner.has_value()) << "the upper left quarter, enlarged to the screen";
    EXPECT_EQ(corner->channel, 1u);
    expect_every_camera(picture("grid.png"));
}

TEST_F(RecorderExample, PlaysARecordingOfAnotherCodecAndComesBackToTheCameras)
{
    run({"1:press=right", "4:press=play", "5.2:press=pause", "5.7:picture=%paused.png",
         "6.2:picture=%still.png", "6.3:press=snapshot", "7:press=play", "8:picture=%on.png",
         "8.1:press=stop", "10.5:picture=%grid.png", "10.6:press=snapshot", "11.2:quit"});
    constexpr unsigned kFramesPerSecond = 25;
    const auto stamp_of = [this](const char *name) {
        return nvrec_test::stamp_in(picture(name), 0, 0, kWidth, kHeight);
    };
    const auto paused = stamp_of("paused.png"), still = stamp_of("still.png"), on = stamp_of("on.png");
    ASSERT_TRUE(paused && still && on);
    EXPECT_EQ(paused->channel, 1u) << "H.265, on the decoder of an H.264 camera";
    EXPECT_LT(paused->frame, 3 * kFramesPerSecond) << "from the recording's beginning";
    EXPECT_EQ(*still, *paused);
    EXPECT_GT(on->frame, paused->frame);

    const Picture grid = picture("grid.png");
    expect_every_camera(grid);
    EXPECT_GT(frames_between(*on, *pane_stamp(grid, 1)), 2 * kFramesPerSecond)
        << "the cameras went on meanwhile";

    for (const char *name : {"snapshot0.jpg", "snapshot1.jpg"}) {
        const Picture jpeg = read_picture(scratch_.file(name));
        ASSERT_EQ(jpeg.width, 352) << name;
        ASSERT_EQ(jpeg.height, 288) << name;
        const auto stamp = nvrec_test::stamp_in(jpeg, 0, 0, 352, 288);
        ASSERT_TRUE(stamp.has_value()) << name;
        EXPECT_EQ(stamp->channel, 1u) << name;
        EXPECT_GT(frames_between(*on, *stamp), kFramesPerSecond)
            << name << ": the camera's picture, not the recording's";
    }
}

TEST_F(RecorderExample, RecordsWhatTheCamerasSendAndPlaysTheirSound)
{
    run({"0:wav=%sound.wav", "4:quit"});
    for (int channel = 0; channel < kCameras; ++channel) {
        const std::string sent = file_text(camera_file(channel));
        const std::string name = "channel" + std::to_string(channel) + (channel % 2 == 0 ? ".h264" : ".h265");
        const std::string written = file_text(scratch_.file(name));
        EXPECT_GT(written.size(), sent.size() / 20) << name << ": two seconds of forty at the least";
        EXPECT_EQ(sent.compare(0, written.size(), written), 0) << name << ": the camera's own bytes";
    }
    const std::string tone = file_text(RECORDER_TONE), sound = file_text(scratch_.file("channel0.alaw"));
    EXPECT_GT(sound.size(), 2 * 8000u);
    EXPECT_EQ(tone.compare(0, sound.size(), sound), 0);

    const std::string wav = file_text(scratch_.file("sound.wav"));
    constexpr size_t kHeader = 44, kRate = 48000;
    ASSERT_GT(wav.size(), kHeader + 2 * sizeof(int16_t) * kRate) << "two seconds at the least";
    std::vector<int16_t> samples((wav.size() - kHeader) / sizeof(int16_t));
    std::memcpy(samples.data(), wav.data() + kHeader, samples.size() * sizeof(int16_t));
    size_t crossings = 0; /* in the second second: the tone runs by then */
    for (size_t i = kRate; i < 2 * kRate; ++i)
        crossings += (samples[i] < 0) != (samples[i - 1] < 0);
    EXPECT_NEAR(static_cast<double>(crossings), 2 * 440, 20);
}

TEST_F(RecorderExample, RefusesWhatItCannotOpen)
{
    Process process({RECORDER_PROGRAM, scratch_.path(), scratch_.file("absent.h264")});
    EXPECT_EQ(process.wait(), 2);
    EXPECT_NE(process.errors.find("cannot open"), std::string::npos);
}

} // namespace
