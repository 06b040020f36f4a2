/* "--listen": a camera's sound comes out of the audio output as it went into the camera. */
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <numbers>

#include <gtest/gtest.h>

#include "nvrec_run.h"

namespace
{

constexpr int kRate_hz = 48000; /* of the audio output */

std::string clip(const std::string &name)
{
    return std::string(NVREC_CLIPS) + "/" + name;
}

/* A sound file's samples, -1 to 1, as the ffmpeg tool reads them. */
std::vector<double> samples_of(const std::string &path)
{
    Process reader({"ffmpeg", "-nostdin", "-v", "error", "-i", path, "-f", "s16le", "-ac", "1", "-ar",
                    std::to_string(kRate_hz), "-"});
    EXPECT_EQ(reader.wait(), 0) << reader.errors;
    std::vector<double> samples;
    for (size_t at = 0; at + 1 < reader.output.size(); at += 2) {
        int16_t sample;
        std::memcpy(&sample, reader.output.data() + at, sizeof sample);
        samples.push_back(sample / 32768.0);
    }
    return samples;
}

/* Mean power of a stretch, and of what of it is a sine of that frequency. */
struct Power {
    double all, tone;
};

Power power_of(const std::vector<double> &samples, size_t from, size_t count, double frequency_hz)
{
    double sum = 0, sine = 0, cosine = 0;
    for (size_t i = 0; i < count; ++i) {
        const double phase = 2 * std::numbers::pi * frequency_hz * static_cast<double>(i) / kRate_hz;
        const double sample = samples.at(from + i);
        sum += sample * sample;
        sine += sample * std::sin(phase);
        cosine += sample * std::cos(phase);
    }
    const double n = static_cast<double>(count);
    return {sum / n, 2 * (sine * sine + cosine * cosine) / (n * n)};
}

class NvrecListen : public testing::Test
{
protected:
    int wall(const std::vector<std::string> &options, const std::vector<std::string> &inputs,
             const std::string &subcommand = "wall")
    {
        std::vector<std::string> command = {
            NVREC_PROGRAM, subcommand,           "--window", "off",
            "--log",       scratch_.file("log"), "--json",   scratch_.file("report.json")};
        command.insert(command.end(), options.begin(), options.end());
        command.insert(command.end(), inputs.begin(), inputs.end());
        Process process(command);
        const int status = process.wait();
        output_ = process.output;
        errors_ = process.errors;
        return status;
    }

    /* Three seconds of a camera with a tone of 1 kHz. */
    void expect_tone(const std::string &camera, const std::string &subcommand,
                     const std::vector<std::string> &more)
    {
        std::vector<std::string> options = {"--listen", "1", "--listen-wav", scratch_.file("heard.wav"),
                                            "--frames", "90"};
        options.insert(options.end(), more.begin(), more.end());
        ASSERT_EQ(wall(options, {clip("camera2.mp4"), clip(camera)}, subcommand), 0) << output_ << errors_;
        const std::vector<double> heard = samples_of(scratch_.file("heard.wav"));
        ASSERT_GE(heard.size(), size_t{2} * kRate_hz);
        ASSERT_LE(heard.size(), size_t{4} * kRate_hz);

        /* A second from the middle: whole periods, away from where the codec swings in. */
        const Power power = power_of(heard, kRate_hz / 2, kRate_hz, 1000);
        EXPECT_GT(power.tone, 0.98 * power.all) << "something else than the tone is in it";
        const std::vector<double> sent = samples_of(clip(camera));
        const Power source = power_of(sent, kRate_hz / 2, kRate_hz, 1000);
        EXPECT_NEAR(10 * std::log10(power.tone / source.tone), 0, 1.0) << "dB louder than in the camera";
        EXPECT_NE(output_.find("sound of channel 1: "), std::string::npos) << output_;
        EXPECT_NE(output_.find(" 0 blocks of 40 ms dropped"), std::string::npos) << output_;
    }

    ScratchDirectory scratch_;
    std::string output_, errors_;
};

TEST_F(NvrecListen, PlaysTheAacOfACamera)
{
    expect_tone("camera0.mp4", "wall", {});
}

TEST_F(NvrecListen, PlaysTheAlawOfACamera)
{
    expect_tone("camera3.mkv", "wall", {});
}

TEST_F(NvrecListen, PlaysWhileItRecords)
{
    expect_tone("camera0.mp4", "record", {"--dir", scratch_.file("files")});
}

TEST_F(NvrecListen, ACameraWithoutSoundIsSaidToBeSo)
{
    EXPECT_EQ(wall({"--listen", "0", "--listen-wav", scratch_.file("heard.wav"), "--as-fast-as-can"},
                   {clip("camera2.mp4")}),
              0);
    EXPECT_NE(errors_.find("channel 0: it comes without sound"), std::string::npos) << errors_;
    EXPECT_TRUE(samples_of(scratch_.file("heard.wav")).empty());
}

TEST_F(NvrecListen, AWavThatCannotBeWrittenLeavesTheWallRunning)
{
    EXPECT_EQ(wall({"--listen", "0", "--listen-wav", "/proc/none/heard.wav", "--as-fast-as-can"},
                   {clip("camera0.mp4")}),
              5);
    EXPECT_NE(errors_.find("cannot write /proc/none/heard.wav"), std::string::npos) << errors_;
    EXPECT_EQ(reported(file_text(scratch_.file("report.json")), 0, "sent"), 240);
}

TEST_F(NvrecListen, CommandLinesThatMakeNoSenseAreRefused)
{
    EXPECT_EQ(wall({"--listen", "1"}, {clip("camera0.mp4")}), 2);
    EXPECT_EQ(wall({"--listen", "-2"}, {clip("camera0.mp4")}), 2);
    EXPECT_EQ(wall({"--listen-wav", scratch_.file("heard.wav")}, {clip("camera0.mp4")}), 2);
}

} // namespace
