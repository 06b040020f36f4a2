/* A recorder whose configuration changes while it records: nothing of the files comes out of step. */
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>

#include "controls/control_socket.h"
#include "nvrec_run.h"
#include "record_files.h"

using namespace nvrec;

namespace
{

class ReloadOfARecorder : public testing::Test
{
protected:
    std::string file(const std::string &name) const { return scratch_.file(name); }

    void write_config(const std::string &cameras) const
    {
        std::ofstream(file("nvrec.toml"))
            << "[screen]\nwindow = \"off\"\n[control]\nsocket = \"socket\"\n[log]\nfile = \"log\"\n"
            << "[board]\nchannels = 2\nwatchdog = 0\n[record]\ndirectory = \"rec\"\n"
            << cameras;
    }

    /* Ask until the answer to "status json" says so. */
    bool status_says(const std::string &words) const
    {
        for (int i = 0; i < 300; ++i) {
            const auto reply = ask_recorder(file("socket"), "status json");
            if (reply && reply->text.find(words) != std::string::npos) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }

    std::string reload() const
    {
        const auto reply = ask_recorder(file("socket"), "reload");
        return reply ? reply->text : "no answer";
    }

    ScratchDirectory scratch_;
};

#ifdef NVREC_RTSP_CAMERA

/* The connection over UDP is a new one, and its times begin anywhere. */
TEST_F(ReloadOfARecorder, ALiveCameraThatIsConnectedAnewGoesOnAtItsRightTime)
{
    Process camera({NVREC_RTSP_CAMERA, NVREC_CLIP, "h264"});
    int port = 0;
    ASSERT_EQ(std::sscanf(camera.read_line().c_str(), "port %d", &port), 1);
    const std::string yard =
        "[[camera]]\nname = \"yard\"\nmain = \"rtsp://127.0.0.1:" + std::to_string(port) + "/camera\"\n";
    write_config(yard + "transport = \"tcp\"\n");
    Process recorder({NVREC_PROGRAM, "run", file("nvrec.toml")});
    ASSERT_TRUE(status_says("\"state\": \"runs\"")) << recorder.errors;
    std::this_thread::sleep_for(std::chrono::seconds(2));
    write_config(yard + "transport = \"udp\"\n");
    EXPECT_EQ(reload(), "camera \"yard\": connected anew\n");
    EXPECT_EQ(reload(), "nothing has changed\n");
    ASSERT_TRUE(status_says("\"state\": \"live\""));
    std::this_thread::sleep_for(std::chrono::seconds(3));
    recorder.signal(SIGTERM);
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors;

    const std::vector<std::string> files = files_of(file("rec"), "ch00-main-");
    ASSERT_EQ(files.size(), 2u) << "a file for each connection";
    for (const std::string &path : files) {
        const std::vector<double> times = picture_times(path);
        ASSERT_GT(times.size(), 10u) << path;
        for (size_t i = 1; i < times.size(); ++i)
            ASSERT_GT(times[i] - times[i - 1], 0.01) << path << ", picture " << i;
    }
}

#endif

/* As when a camera is taken down: retention may have its last file, and the list shows it as whole. */
TEST_F(ReloadOfARecorder, ACameraThatIsRemovedHasItsFileEnded)
{
    const std::string yard =
        std::string("[[camera]]\nname = \"yard\"\nmain = \"") + NVREC_CLIP + "\"\nloop = true\n";
    const std::string door =
        std::string("[[camera]]\nname = \"door\"\nmain = \"") + NVREC_CLIP + "\"\nloop = true\n";
    write_config(yard + door);
    Process recorder({NVREC_PROGRAM, "run", file("nvrec.toml")});
    ASSERT_TRUE(status_says("\"state\": \"runs\"")) << recorder.errors;
    std::this_thread::sleep_for(std::chrono::seconds(2));
    write_config(yard);
    EXPECT_EQ(reload(), "camera \"door\": removed\n");
    bool ended = false;
    for (int i = 0; i < 100 && !ended; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        Process list({NVREC_PROGRAM, "list", "--dir", file("rec"), "--camera", "door", "--files"});
        list.wait();
        ended = list.output.find("ch01-main-") != std::string::npos &&
                list.output.find("being written") == std::string::npos;
    }
    EXPECT_TRUE(ended) << "while the recorder runs";
    recorder.signal(SIGTERM);
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors;
}

/* What only a start takes up is said by every reload until then. */
TEST_F(ReloadOfARecorder, WhatNeedsARestartIsSaidAgain)
{
    const std::string yard =
        std::string("[[camera]]\nname = \"yard\"\nmain = \"") + NVREC_CLIP + "\"\nloop = true\n";
    write_config(yard);
    Process recorder({NVREC_PROGRAM, "run", file("nvrec.toml")});
    ASSERT_TRUE(status_says("\"state\": \"runs\"")) << recorder.errors;
    std::string text = file_text(file("nvrec.toml"));
    text.replace(text.find("directory = \"rec\""), 17, "directory = \"new\"");
    std::ofstream(file("nvrec.toml")) << text;
    EXPECT_EQ(reload(), "record: needs a restart\n");
    EXPECT_EQ(reload(), "record: needs a restart\n");
    recorder.signal(SIGTERM);
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors;
}

} // namespace
