/* "nvrec record" as a user runs it, judged by other programs: what the cameras saw is in the files. */
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvrec_run.h"
#include "record_files.h"
#include "record_run.h"

namespace
{

using namespace nvrec_test;

/* The pictures' times lie as far apart as the camera took them. Containers round, MKV to 1 ms. */
void expect_even_times(const std::string &path, size_t pictures)
{
    const std::vector<double> times = picture_times(path);
    ASSERT_EQ(times.size(), pictures) << path;
    for (size_t i = 1; i < times.size(); ++i)
        ASSERT_NEAR(times[i] - times[i - 1], kFrame_s, 0.0021) << path << ", picture " << i;
}

class NvrecRecordFormats : public NvrecRecord, public testing::WithParamInterface<const char *>
{
};

TEST_P(NvrecRecordFormats, ACleanEndLeavesEveryPictureAndAllSound)
{
    const std::string format = GetParam();
    ASSERT_EQ(record({"--format", format, "--segment", kOneDay, "--as-fast-as-can", "--network",
                      "1=" + clip("network1.mp4")},
                     camera_files()),
              0)
        << output_ << errors_;
    for (int channel = 0; channel < 4; ++channel) {
        const Camera &camera = kCameras[channel];
        const std::vector<std::string> paths = files_of_channel(channel);
        ASSERT_EQ(paths.size(), 1u);
        const std::string &path = paths[0];
        EXPECT_TRUE(path.ends_with("." + format));
        EXPECT_EQ(picture_checksums(path), picture_checksums(clip(camera.file))) << path;
        EXPECT_TRUE(begins_with_key_frame(path));
        expect_even_times(path, kClipFrames);
        EXPECT_EQ(probe(path, "v:0", "codec_name"), camera.codec);
        if (format == "mp4") {
            EXPECT_EQ(probe(path, "v:0", "codec_tag_string"), camera.tag);
        }
        EXPECT_EQ(probe(path, "a:0", "codec_name"), camera.sound ? camera.sound : "");
        expect_sums(channel, "main");
        EXPECT_EQ(recorded(json_, channel, "main", "written"), kClipFrames);
        EXPECT_EQ(recorded(json_, channel, "main", "lost"), 0);
        EXPECT_EQ(recorded(json_, channel, "main", "bytes"),
                  static_cast<double>(std::filesystem::file_size(path)));
        if (!camera.sound) continue;
        expect_sums(channel, "sound");
        /* Blocks of 40 ms; the last one need not be full, and AAC begins with a little silence. */
        EXPECT_GE(recorded(json_, channel, "sound", "written"), 8000 / 40 - 15);
    }
    ASSERT_EQ(files_of_channel(1, "network").size(), 1u);
    EXPECT_EQ(picture_checksums(files_of_channel(1, "network")[0]), picture_checksums(clip("network1.mp4")));
    expect_sums(1, "network");
    EXPECT_NE(output_.find("resynchronised"), std::string::npos) << "the closing table";
}

INSTANTIATE_TEST_SUITE_P(Formats, NvrecRecordFormats, testing::Values("mp4", "mkv"),
                         [](const auto &named) { return std::string(named.param); });

/* All cameras end in the middle of their third fragment, and one that never answers keeps it running. */
TEST_F(NvrecRecord, AFragmentIsInTheFileAsSoonAsItIsWhole)
{
    constexpr int kWhole = 2;
    std::vector<std::string> cameras = camera_files();
    cameras.emplace_back("rtsp://127.0.0.1:1/camera");
    Process recorder(
        command({"--frames", std::to_string(kWhole * kFramesPerKey + kFramesPerKey / 2)}, cameras));
    for (int channel = 0; channel < 4; ++channel) {
        EXPECT_TRUE(wait_until([&] {
            const std::vector<std::string> paths = files_of_channel(channel);
            return paths.size() == 1 && fragments_of(paths[0]).whole >= kWhole;
        })) << "channel "
            << channel;
    }
    recorder.signal(SIGKILL);
    ASSERT_EQ(recorder.wait(), 128 + SIGKILL);
    for (int channel = 0; channel < 4; ++channel) {
        const std::string path = files_of_channel(channel).at(0);
        const Fragments fragments = fragments_of(path);
        EXPECT_EQ(fragments.whole, kWhole) << path;
        EXPECT_EQ(fragments.pictures, kWhole * kFramesPerKey) << path;
        expect_beginning_of(picture_checksums(clip(kCameras[channel].file)), picture_checksums(path), path);
    }
}

TEST_F(NvrecRecord, ANewFileBeginsAtTheFirstKeyFrameOfEverySlot)
{
    /* Eight seconds at twice their speed: four seconds of wall clock or more, so four slots or more. */
    ASSERT_EQ(record({"--segment", "1", "--speed", "2"}, camera_files()), 0) << output_ << errors_;
    const size_t at = json_.find("\"seconds\": ");
    ASSERT_NE(at, std::string::npos);
    const double lasted_s = std::strtod(json_.c_str() + at + 11, nullptr);
    for (int channel = 0; channel < 4; ++channel) {
        const std::vector<std::string> paths = files_of_channel(channel);
        EXPECT_GE(paths.size(), 4u);
        EXPECT_LE(static_cast<double>(paths.size()), lasted_s + 2) << "begun and ended within a second";
        EXPECT_EQ(recorded(json_, channel, "main", "written"), kClipFrames);
        std::vector<std::string> pictures;
        double sound_packets = 0;
        for (const std::string &path : paths) {
            EXPECT_TRUE(begins_with_key_frame(path)) << path;
            const std::vector<std::string> part = picture_checksums(path);
            expect_even_times(path, part.size());
            pictures.insert(pictures.end(), part.begin(), part.end());
            sound_packets += std::strtod(probe(path, "a:0", "nb_read_packets").c_str(), nullptr);
        }
        EXPECT_EQ(pictures, picture_checksums(clip(kCameras[channel].file)));
        EXPECT_EQ(sound_packets, kCameras[channel].sound ? recorded(json_, channel, "sound", "written") : 0);
    }
}

TEST_F(NvrecRecord, ACameraThatChangesItsSizeGoesOnInAnotherFile)
{
    ASSERT_EQ(record({"--as-fast-as-can"}, {clip("resized.ts")}), 0) << output_ << errors_;
    const std::vector<std::string> paths = files_of_channel(0);
    ASSERT_EQ(paths.size(), 2u);
    EXPECT_EQ(probe(paths[0], "v:0", "width,height"), "320,180");
    EXPECT_EQ(probe(paths[1], "v:0", "width,height"), "640,360");
    EXPECT_EQ(picture_checksums(paths[0]), picture_checksums(clip("part320x180.ts")));
    EXPECT_EQ(picture_checksums(paths[1]), picture_checksums(clip("part640x360.ts")));
}

TEST_F(NvrecRecord, FragmentsStayShortWhereKeyFramesAreFarApart)
{
    ASSERT_EQ(record({"--as-fast-as-can"}, {clip("sparse.mp4")}), 0) << output_ << errors_;
    ASSERT_EQ(files_of_channel(0).size(), 1u);
    const std::string path = files_of_channel(0)[0];
    const Fragments fragments = fragments_of(path);
    EXPECT_GE(fragments.whole, 4) << "eight seconds, two key frames, at most two seconds each";
    EXPECT_EQ(fragments.pictures, kClipFrames);
    EXPECT_EQ(picture_checksums(path), picture_checksums(clip("sparse.mp4")));
}

TEST_F(NvrecRecord, CommandLinesThatMakeNoSenseAreRefused)
{
    Process without_directory({NVREC_PROGRAM, "record", clip("camera0.mp4")});
    EXPECT_EQ(without_directory.wait(), 2);
    EXPECT_EQ(record({"--format", "avi"}, {clip("camera0.mp4")}), 2);
    EXPECT_EQ(record({"--segment", "0"}, {clip("camera0.mp4")}), 2);
    for (const char *network : {"1=address", "address", "0=", "-1=address", "=address", "0x=address"})
        EXPECT_EQ(record({"--network", network}, {clip("camera0.mp4")}), 2) << network;
    EXPECT_EQ(record({}, std::vector<std::string>(17, clip("camera0.mp4"))), 2);
    EXPECT_NE(errors_.find("17 inputs"), std::string::npos) << errors_;
}

#ifdef NVREC_RTSP_CAMERA

TEST_F(NvrecRecord, ANetworkCameraThatComesBackGoesOnInTheSameFileALittleLater)
{
    Process camera({NVREC_RTSP_CAMERA, clip("camera2.mp4"), "h265"});
    int port = 0;
    ASSERT_EQ(std::sscanf(camera.read_line().c_str(), "port %d", &port), 1);
    /* The session ends with the clip after 240 frames: 250 need a second one. */
    ASSERT_EQ(record({"--segment", kOneDay, "--frames", "250", "-d", "60"},
                     {"rtsp://127.0.0.1:" + std::to_string(port) + "/camera"}),
              0)
        << output_ << errors_;
    ASSERT_EQ(files_of_channel(0).size(), 1u);
    const std::string path = files_of_channel(0)[0];
    const std::vector<std::string> source = picture_checksums(clip("camera2.mp4"));
    std::vector<std::string> expected = source;
    expected.insert(expected.end(), source.begin(), source.begin() + 10);
    EXPECT_EQ(picture_checksums(path), expected);

    const std::vector<double> times = picture_times(path);
    ASSERT_EQ(times.size(), 250u);
    for (size_t i = 1; i < times.size(); ++i) {
        if (i == kClipFrames) continue;
        ASSERT_NEAR(times[i] - times[i - 1], kFrame_s, 0.01) << "picture " << i;
    }
    /* The pause before the second try is a second, and the file tells of it. */
    EXPECT_GE(times[kClipFrames] - times[kClipFrames - 1], 1.0);
    EXPECT_LE(times[kClipFrames] - times[kClipFrames - 1], 15.0);
    EXPECT_EQ(recorded(json_, 0, "main", "written"), 250);
}

#else

TEST_F(NvrecRecord, ANetworkCameraThatComesBackGoesOnInTheSameFileALittleLater)
{
    GTEST_SKIP() << "built without libgstrtspserver-1.0-dev: no network camera to record";
}

#endif

} // namespace
