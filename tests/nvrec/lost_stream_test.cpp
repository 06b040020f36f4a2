/* A camera whose main stream dies while its sub stream is seen: that nothing is recorded does not stay
 * hidden. */
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>

#include "controls/control_socket.h"
#include "nvrec_run.h"

using namespace nvrec;

namespace
{

#ifdef NVREC_RTSP_CAMERA

/* A camera, and where it is. */
struct Served {
    Served() : process({NVREC_RTSP_CAMERA, NVREC_CLIP, "h264"})
    {
        int port = 0;
        EXPECT_EQ(std::sscanf(process.read_line().c_str(), "port %d", &port), 1);
        address = "rtsp://127.0.0.1:" + std::to_string(port) + "/camera";
    }

    Process process;
    std::string address;
};

/* For fifteen seconds at most. */
template <typename Holds> bool comes_true(Holds holds)
{
    for (int i = 0; i < 300; ++i) {
        if (holds()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

TEST(LostStream, AMainStreamThatDiesBehindItsSubStreamIsTold)
{
    ScratchDirectory scratch;
    Served main_stream, sub_stream;
    std::ofstream(scratch.file("nvrec.toml"))
        << "[screen]\nwindow = \"off\"\nlayout = \"2x2\"\n[control]\nsocket = \"socket\"\n"
        << "[log]\nfile = \"log\"\n[board]\nchannels = 4\nwatchdog = 0\n[record]\ndirectory = \"rec\"\n"
        << "[[camera]]\nname = \"yard\"\nmain = \"" << main_stream.address << "\"\nsub = \""
        << sub_stream.address << "\"\n";
    Process recorder({NVREC_PROGRAM, "run", scratch.file("nvrec.toml")});
    std::string status;
    auto says = [&](const std::vector<std::string> &members) {
        const auto reply = ask_recorder(scratch.file("socket"), "status json");
        status = reply ? reply->text : "no answer";
        for (const std::string &member : members) {
            if (status.find(member) == std::string::npos) return false;
        }
        return true;
    };
    auto logged = [&](const char *line) {
        return file_text(scratch.file("log")).find(line) != std::string::npos;
    };
    ASSERT_TRUE(comes_true([&] {
        return says({R"("stream": "sub")", R"("main_state": "live")", R"("state": "runs")"});
    })) << status;
    main_stream.process.signal(SIGSTOP);
    EXPECT_TRUE(comes_true([&] {
        return says({R"("state": "live")", R"("main_state": "silent")", R"("state": "waiting")"});
    })) << status;
    EXPECT_TRUE(comes_true([&] { return logged("(yard): its main stream is lost"); }));
    EXPECT_FALSE(logged("its video is lost")) << "the pane shows pictures";
    main_stream.process.signal(SIGCONT);
    EXPECT_TRUE(comes_true([&] { return logged("(yard): its main stream is back"); }));
    EXPECT_TRUE(comes_true([&] {
        return says({R"("main_state": "live")", R"("state": "runs")"});
    })) << status;
    recorder.signal(SIGTERM);
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors;
}

#else

TEST(LostStream, AMainStreamThatDiesBehindItsSubStreamIsTold)
{
    GTEST_SKIP() << "built without libgstrtspserver-1.0-dev: no network camera to read";
}

#endif

} // namespace
