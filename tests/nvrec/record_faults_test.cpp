/* "nvrec record" when it is killed, and where it cannot write or read: what is left, and what goes on. */
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>

#include "nvrec_run.h"
#include "record_files.h"
#include "record_run.h"

namespace
{

using namespace nvrec_test;

/* Kill the recorder while its cameras run, at a random moment. */
class NvrecRecordKilled : public NvrecRecord, public testing::WithParamInterface<int>
{
protected:
    /* A fragment of an MP4 file; a cluster of an MKV file, behind which the next one has begun. */
    bool has_whole_part(int channel) const
    {
        constexpr std::string_view kCluster = "\x1F\x43\xB6\x75"; /* the element's identifier */
        const std::vector<std::string> paths = files_of_channel(channel);
        if (paths.empty()) return false;
        if (paths[0].ends_with(".mp4")) return fragments_of(paths[0]).whole > 0;
        const std::string bytes = file_text(paths[0]);
        const size_t first = bytes.find(kCluster);
        return first != std::string::npos && bytes.find(kCluster, first + 1) != std::string::npos;
    }

    void kill_somewhere(const std::string &format)
    {
        std::mt19937 random(static_cast<unsigned>(GetParam()));
        const int moment_ms = std::uniform_int_distribution(200, 2600)(random);
        std::printf("round %d: killed %d ms after its files had begun\n", GetParam(), moment_ms);
        Process recorder(
            command({"--format", format, "--speed", "2", "--loop", "-p", scratch_.file("first.png") + ",0.5"},
                    camera_files()));
        ASSERT_TRUE(scratch_.wait_for("first.png"));
        for (int channel = 0; channel < 4; ++channel)
            ASSERT_TRUE(wait_until([&] { return has_whole_part(channel); })) << "channel " << channel;
        poll(nullptr, 0, moment_ms); /* the random moment itself is what is tested */
        recorder.signal(SIGKILL);
        ASSERT_EQ(recorder.wait(), 128 + SIGKILL);
    }
};

TEST_P(NvrecRecordKilled, AnMp4PlaysUpToItsLastWholeFragment)
{
    kill_somewhere("mp4");
    for (int channel = 0; channel < 4; ++channel) {
        ASSERT_EQ(files_of_channel(channel).size(), 1u);
        const std::string path = files_of_channel(channel)[0];
        const Fragments fragments = fragments_of(path);
        const std::vector<std::string> pictures = picture_checksums(path);
        EXPECT_GE(fragments.whole, 1) << path;
        EXPECT_GE(static_cast<int>(pictures.size()), fragments.pictures) << path;
        EXPECT_EQ(fragments.pictures, fragments.whole * kFramesPerKey) << path;
        EXPECT_TRUE(begins_with_key_frame(path));
        expect_beginning_of(picture_checksums(clip(kCameras[channel].file)), pictures, path);
    }
}

TEST_P(NvrecRecordKilled, AnMkvPlaysUpToItsLastWholeCluster)
{
    kill_somewhere("mkv");
    for (int channel = 0; channel < 4; ++channel) {
        ASSERT_EQ(files_of_channel(channel).size(), 1u);
        const std::string path = files_of_channel(channel)[0];
        const std::vector<std::string> pictures = picture_checksums(path);
        EXPECT_GE(pictures.size(), static_cast<size_t>(kFramesPerKey)) << path;
        EXPECT_TRUE(begins_with_key_frame(path));
        expect_beginning_of(picture_checksums(clip(kCameras[channel].file)), pictures, path);
    }
}

INSTANTIATE_TEST_SUITE_P(Rounds, NvrecRecordKilled, testing::Range(1, 6));

TEST_F(NvrecRecord, ADirectoryThatCannotBeMadeLeavesTheWallRunning)
{
    Process process({NVREC_PROGRAM, "record", "--window", "off", "--log", scratch_.file("log"), "--json",
                     scratch_.file("report.json"), "--dir", "/proc/none", "--as-fast-as-can",
                     clip("camera0.mp4")});
    EXPECT_EQ(process.wait(), 5);
    EXPECT_NE(process.errors.find("nothing is recorded: /proc/none"), std::string::npos) << process.errors;
    EXPECT_EQ(reported(file_text(scratch_.file("report.json")), 0, "sent"), kClipFrames);
}

TEST_F(NvrecRecord, ADirectoryThatComesLateIsRecordedTo)
{
    std::ofstream(files()) << "a file is in its place";
    Process process(command({"--loop", "-p", scratch_.file("first.png,1")}, {clip("camera0.mp4")}));
    ASSERT_TRUE(scratch_.wait_for("first.png"));
    std::filesystem::remove(files());
    std::filesystem::create_directory(files());
    EXPECT_TRUE(wait_until([this] { return !files_of_channel(0).empty(); }));
    process.signal(SIGINT);
    EXPECT_EQ(process.wait(), 5) << process.errors;
    EXPECT_NE(process.errors.find("nothing is recorded: " + files()), std::string::npos) << process.errors;
    ASSERT_EQ(files_of_channel(0).size(), 1u) << process.errors;
    EXPECT_FALSE(picture_checksums(files_of_channel(0)[0]).empty());
}

TEST_F(NvrecRecord, AFileThatCannotBeWrittenAnyMoreLeavesTheWallRunning)
{
    /* A limit on the size of files stands for a full disk: writing fails in the middle. */
    std::string line = "trap '' XFSZ; ulimit -f 200; exec \"$@\"";
    std::vector<std::string> limited = {"bash", "-c", line, "bash"};
    for (const std::string &word : command({"--as-fast-as-can"}, {clip("camera0.mp4"), clip("network1.mp4")}))
        limited.push_back(word);
    Process process(limited);
    EXPECT_EQ(process.wait(), 5) << process.errors;
    EXPECT_NE(process.errors.find("channel 0: not recorded: " + files() + "/ch00-main-"), std::string::npos)
        << process.errors;
    EXPECT_NE(process.errors.find("File too large"), std::string::npos) << process.errors;
    json_ = file_text(scratch_.file("report.json"));
    for (int channel : {0, 1}) {
        EXPECT_EQ(reported(json_, channel, "sent"), kClipFrames);
        expect_sums(channel, "main");
    }
    /* What was written before that can be played. */
    const std::vector<std::string> pictures = picture_checksums(files_of_channel(0)[0]);
    EXPECT_GE(pictures.size(), static_cast<size_t>(kFramesPerKey));
    expect_beginning_of(picture_checksums(clip("camera0.mp4")), pictures, "the file that was cut off");
}

TEST_F(NvrecRecord, ANetworkStreamThatCannotBeOpenedLeavesTheOthersRunning)
{
    EXPECT_EQ(record({"--as-fast-as-can", "--network", "0=" + clip("absent.mp4")}, {clip("camera0.mp4")}), 3);
    EXPECT_NE(errors_.find("channel 0, network stream: cannot open"), std::string::npos) << errors_;
    EXPECT_EQ(recorded(json_, 0, "main", "written"), kClipFrames);
    EXPECT_EQ(recorded(json_, 0, "network", "written"), 0);
}

} // namespace
