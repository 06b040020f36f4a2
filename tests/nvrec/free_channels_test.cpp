/*
 * Channels of the board without a camera, and cameras that come and go on them: on the screen, in the
 * tables, under their names.
 */
#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>

#include "controls/control_socket.h"
#include "nvrec_run.h"

using namespace nvrec;

namespace
{

constexpr std::array<int, 3> kQuietGround = {0x10, 0x14, 0x18}; /* as a framebuffer of 15 bits has it */

class ChannelsOfARecorder : public testing::Test
{
protected:
    std::string file(const std::string &name) const { return scratch_.file(name); }

    static std::string camera(const std::string &name)
    {
        return "[[camera]]\nname = \"" + name + "\"\nmain = \"" + NVREC_CLIP + "\"\nloop = true\n";
    }

    void write_config(int channels, const std::string &cameras) const
    {
        std::ofstream(file("nvrec.toml"))
            << "[screen]\nwindow = \"off\"\noverlay = \"on\"\n[control]\nsocket = \"socket\"\n"
            << "[log]\nfile = \"log\"\n[record]\ndirectory = \"rec\"\n[board]\nwatchdog = 0\nchannels = "
            << channels << "\n"
            << cameras;
    }

    std::vector<std::string> run(const std::vector<std::string> &more) const
    {
        std::vector<std::string> all = {NVREC_PROGRAM, "run", file("nvrec.toml"), "--json", file("report")};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    std::string ask(const std::string &request) const
    {
        const auto reply = ask_recorder(file("socket"), request);
        if (!reply) return "no answer";
        std::string text = reply->text; /* a blank between two columns */
        text.erase(std::ranges::unique(text, [](char a, char b) { return a == ' ' && b == ' '; }).begin(),
                   text.end());
        return text;
    }

    /* Ask until the answer says so. */
    bool says(const std::string &request, const std::string &words) const
    {
        for (int i = 0; i < 300; ++i) {
            if (ask(request).find(words) != std::string::npos) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }

    static bool is_quiet(const Picture &picture, int x, int y)
    {
        const std::array<int, 3> pixel = picture.at(x, y);
        return std::ranges::equal(pixel, kQuietGround, [](int a, int b) { return std::abs(a - b) <= 8; });
    }

    /* Letters of the clock, in the upper part of a pane. */
    static int bright(const Picture &picture, int x, int y)
    {
        int count = 0;
        for (int row = y + 10; row < y + 80; ++row) {
            for (int column = x + 10; column < x + 950; ++column) {
                const std::array<int, 3> pixel = picture.at(column, row);
                count += std::ranges::all_of(pixel, [](int part) { return part > 200; });
            }
        }
        return count;
    }

    static size_t count(const std::string &text, const std::string &words)
    {
        size_t times = 0;
        for (size_t at = text.find(words); at != std::string::npos; at = text.find(words, at + 1))
            ++times;
        return times;
    }

    ScratchDirectory scratch_;
};

TEST_F(ChannelsOfARecorder, AFreePaneIsQuietAndHasTheClock)
{
    write_config(4, camera("yard") + camera("door") + camera("hall"));
    Process recorder(run({"-d", "2", "-p", file("wall.png")}));
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors;
    const Picture wall = read_picture(file("wall.png"));
    ASSERT_EQ(wall.width, 1920);
    EXPECT_GT(bright(wall, 960, 540), 100) << "the clock";
    EXPECT_TRUE(is_quiet(wall, 1000, 700));
    for (int x = 965; x < 1300; ++x)
        for (int y = 1030; y < 1075; ++y)
            ASSERT_TRUE(is_quiet(wall, x, y)) << "no name: " << x << "," << y;
    EXPECT_FALSE(is_quiet(wall, 40, 700)) << "a camera";
}

TEST_F(ChannelsOfARecorder, TheSmallestGridFitsTheCamerasThatThereAre)
{
    write_config(16, camera("yard") + camera("door"));
    Process recorder(run({"-d", "60"}));
    ASSERT_TRUE(says("board", "wall layout 2x2\n")) << ask("board");
    EXPECT_TRUE(says("board", "wall cameras 2\n")) << ask("board");
    write_config(16, camera("door"));
    EXPECT_EQ(ask("reload"), "camera \"yard\": removed\n");
    EXPECT_TRUE(says("board", "wall cameras 1\n"));
    EXPECT_TRUE(says("board", "wall layout 2x2\n")) << "it reaches to the second channel";
    EXPECT_TRUE(says("board", "wall selected channel 1\n")) << ask("board");
    EXPECT_EQ(ask("status json").find("\"channel\": 0"), std::string::npos);
    EXPECT_EQ(ask("event 0 x"), "there is no camera \"0\"");
    ask("key 1");
    EXPECT_TRUE(says("board", "wall whole screen the layout\n")) << "nothing is there";
    std::string many = camera("door");
    for (const char *name : {"a", "b", "c", "d"})
        many += camera(name);
    write_config(16, many);
    EXPECT_NE(ask("reload").find("camera \"d\": added as channel 4"), std::string::npos);
    EXPECT_TRUE(says("board", "wall layout 3x3\n"));
    write_config(16, camera("a"));
    ask("reload");
    EXPECT_TRUE(says("board", "wall layout 1\n"));
    recorder.signal(SIGTERM);
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors;
    const std::string report = file_text(file("report"));
    EXPECT_EQ(count(report, "\"channel\": "), 2u) << "the camera's, and its recording's: " << report;
    EXPECT_EQ(count(report, "\"channel\": 0"), 2u) << report;
}

TEST_F(ChannelsOfARecorder, ACameraThatTakesAFreedChannelLooksLikeAnyOtherAndCountsAnew)
{
    write_config(2, camera("yard") + camera("door"));
    Process recorder(run({"-d", "60", "-p", file("removed.png") + ",6"}));
    ASSERT_TRUE(says("status json", "\"state\": \"runs\"")) << recorder.errors;
    std::this_thread::sleep_for(std::chrono::seconds(2));
    write_config(2, camera("yard"));
    ASSERT_EQ(ask("reload"), "camera \"door\": removed\n");
    ASSERT_TRUE(scratch_.wait_for("removed.png"));
    const Picture removed = read_picture(file("removed.png"));
    ASSERT_EQ(removed.width, 1920);
    EXPECT_FALSE(is_quiet(removed, 40, 700)) << "the layout has room for one camera";
    write_config(2, camera("yard") + camera("hall"));
    ASSERT_EQ(ask("reload"), "camera \"hall\": added as channel 1\n");
    ASSERT_TRUE(says("status json", "\"name\": \"hall\""));
    std::this_thread::sleep_for(std::chrono::seconds(1));
    recorder.signal(SIGTERM);
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors;
    const std::string report = file_text(file("report"));
    EXPECT_GT(reported(report, 1, "sent"), 10);
    EXPECT_LE(reported(report, 1, "decoded"), reported(report, 1, "sent")) << report;
    const std::string recordings = report.substr(report.find("\"recordings\""));
    EXPECT_LE(reported(recordings, 1, "written"), reported(report, 1, "sent") + 1) << report;
    EXPECT_LT(reported(recordings, 1, "written") + 30, reported(recordings, 0, "written")) << report;
}

TEST_F(ChannelsOfARecorder, NamesOfTheCommandLineAreKnownEverywhere)
{
    Process recorder({NVREC_PROGRAM, "record", "--window", "off", "--loop", "--dir", file("rec"), "--control",
                      file("socket"), "--log", file("log"), "--watchdog", "0", "--name", "1=hall", "--name",
                      "0=\xc7\xb0\xc3\xc5", NVREC_CLIP, NVREC_CLIP});
    ASSERT_TRUE(says("status", "hall")) << ask("status");
    ASSERT_TRUE(says("status json", "\"state\": \"runs\"")) << "the index is open when a file is";
    EXPECT_NE(ask("status").find("\xe5\x89\x8d\xe9\x97\xa8"), std::string::npos)
        << "GB2312: " << ask("status");
    EXPECT_EQ(ask("event hall knock"), "");
    EXPECT_EQ(ask("event \xe5\x89\x8d\xe9\x97\xa8 knock"), "");
    EXPECT_EQ(ask("event hall \xff\xfe"), "the request is not in UTF-8");
    recorder.signal(SIGTERM);
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors;
    Process list({NVREC_PROGRAM, "list", "--dir", file("rec"), "--camera", "hall"});
    EXPECT_EQ(list.wait(), 0);
    EXPECT_NE(list.output.find("knock"), std::string::npos) << list.output;
}

/* Arguments that are refused, and what is said of them. */
TEST(NvrecCommandLine, NamesTheWrongWord)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong = {
        {{"bogus"}, "not expected: bogus"},
        {{"find", "--bogus"}, "not expected: --bogus"},
        {{"find"}, "--dir is required"},
        {{"wall", NVREC_CLIP, "--name", "9=x"}, "--name 9=x"},
        {{"wall", NVREC_CLIP, "--aspect", "9=fit"}, "--aspect for channel 9"},
        {{"wall", NVREC_CLIP, "-p", "a.bmp"}, "name it .png, .jpg or .jpeg: a.bmp"},
        {{"wall", NVREC_CLIP, "-p", ",1"}, "name it .png, .jpg or .jpeg: ,1"},
        {{"wall", NVREC_CLIP, "-p", "a.png,soon"}, "no number of seconds"},
        {{"event", "yard", "\xff"}, "the text is not in UTF-8"},
        {{"event", "\xff", "x"}, "the camera is not in UTF-8"},
    };
    for (const auto &[words, complaint] : wrong) {
        std::vector<std::string> all = {NVREC_PROGRAM};
        all.insert(all.end(), words.begin(), words.end());
        Process process(all);
        EXPECT_EQ(process.wait(), 2) << complaint;
        EXPECT_NE(process.errors.find(complaint), std::string::npos) << process.errors;
    }
}

} // namespace
