/* trace_timeline_test.cpp - a trace on a time line, and the command's errors. */
#include "trace/timeline.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <nlohmann/json.hpp>

#include "trace/command.h"
#include "trace/trace_event_file.h"
#include "trace/trace_reader.h"
#include "trace_files.h"

namespace
{

using namespace vboard_app;
using nlohmann::json;

class Timeline : public testing::Test
{
protected:
    json of(const std::string &trace)
    {
        const TimelineReport report = write_timeline(folder_.write("t", trace), folder_.path("o"), options_);
        EXPECT_TRUE(report.complaints.empty());
        return json::parse(folder_.read("o"));
    }
    // Events of a kind: "name @row from+duration", in the order of the file.
    static std::string shown(const json &whole, const char *kind)
    {
        std::map<std::pair<int, int>, std::string> rows;
        std::string all;
        for (const json &event : whole["traceEvents"])
            if (event["name"] == "thread_name") rows[{event["pid"], event["tid"]}] = event["args"]["name"];
        for (const json &event : whole["traceEvents"]) {
            if (event["ph"] != kind) continue;
            all += event["name"].get<std::string>() + " @" + rows[{event["pid"], event["tid"]}] + " " +
                   event["ts"].dump();
            if (event.contains("dur")) all += "+" + event["dur"].dump();
            all += "\n";
        }
        return all;
    }
    std::string complaint(const std::string &trace, const std::string &output)
    {
        try {
            write_timeline(trace, output, options_);
        } catch (const TraceError &error) {
            return error.what();
        }
        return "none";
    }

    ScratchFolder folder_;
    TimelineOptions options_;
};

TEST_F(Timeline, HasThreadsAndChannelsInRows)
{
    const json whole = of("1000 MI_VDEC_StopChn 0 = 0 ; thread 1, 100 us\n"
                          "1200 MI_VDEC_StopChn 1 = 0 ; thread 2, 250 us\n"
                          "1300 MI_VDEC_StartChn 0 = 0 ; thread 1, 50 us\n");
    EXPECT_EQ(shown(whole, "X"), "MI_VDEC_StopChn @thread 1 900+100\nMI_VDEC_StopChn @VDEC 0 900+100\n"
                                 "MI_VDEC_StopChn @thread 2 950+250\nMI_VDEC_StopChn @VDEC 1 950+250\n"
                                 "MI_VDEC_StartChn @thread 1 1250+50\nMI_VDEC_StartChn @VDEC 0 1250+50\n");
    options_.channels = false;
    EXPECT_EQ(shown(of("1000 MI_SYS_Init = 0 ; thread 1, 100 us\n"), "X"), "MI_SYS_Init @thread 1 900+100\n");
    options_.channels = true;
    options_.threads = false;
    EXPECT_EQ(shown(of("1000 MI_SYS_Init = 0 ; thread 1, 100 us\n"), "X"), "MI_SYS_Init @SYS 900+100\n");
}

TEST_F(Timeline, PutsCallsThatOverlapInFurtherRows)
{
    options_.threads = false;
    EXPECT_EQ(shown(of("1000 MI_VDEC_StopChn 0 = 0 ; thread 1, 100 us\n"
                       "1010 MI_VDEC_StartChn 0 = 0 ; thread 2, 100 us\n"
                       "1020 MI_VDEC_DestroyChn 0 = 0 ; thread 3, 20 us\n"),
                    "X"),
              "MI_VDEC_StopChn @VDEC 0 900+100\nMI_VDEC_StartChn @VDEC 0 (2) 910+100\nMI_VDEC_DestroyChn "
              "@VDEC 0 1000+20\n");
}

TEST_F(Timeline, KeepsTheCallsOfAThreadApartWhenTheClockStands)
{
    options_.channels = false;
    EXPECT_EQ(shown(of("1000 MI_VDEC_StopChn 0 = 0 ; thread 1, 100 us\n"
                       "1000 MI_VDEC_StartChn 0 = 0 ; thread 1, 500 us\n"
                       "30 MI_VDEC_StopChn 0 = 0 ; thread 1, 50 us\n"),
                    "X"),
              "MI_VDEC_StopChn @thread 1 900+100\nMI_VDEC_StartChn @thread 1 1000+0\nMI_VDEC_StopChn @thread "
              "1 0+30\n");
}

TEST_F(Timeline, ShowsCallsWithoutDurationFailuresAndEventsAsInstants)
{
    const json whole =
        of("1000 MI_VDEC_StartChn 7 = 0xa0080005\n"
           "1050 MI_VDEC_StopChn 7 = 0xa0080005 (absent)\n1100 event remote {code=0x6a95ff00 state=0}\n");
    EXPECT_EQ(shown(whole, "i"), "MI_VDEC_StartChn @VDEC 7 1000\nMI_VDEC_StartChn (VDEC 7) @failures 1000\n"
                                 "MI_VDEC_StopChn @VDEC 7 1050\n"
                                 "remote @events 1100\n");
    EXPECT_EQ(shown(whole, "X"), "");
    for (const json &event : whole["traceEvents"]) {
        if (event["name"] == "MI_VDEC_StartChn") {
            EXPECT_EQ(event["cat"], "failed");
            EXPECT_EQ(event["args"],
                      json::parse(R"x({"channel": 7, "result": "0xa0080005 (VDEC: absent)", "line": 1})x"));
        }
        if (event["name"] == "remote") {
            EXPECT_EQ(event["args"], json::parse(R"({"code": "0x6a95ff00", "state": 0, "line": 3})"));
        }
    }
}

TEST_F(Timeline, HasTheFieldsOfACall)
{
    const json whole = of("5 MI_VDEC_SendStream 1 {length=9 pts=18446744073709551615 end_of_frame=0 "
                          "end_of_stream=0 crc32=12345678} -1 = 0\n"
                          "6 board_run_command \"echo \xff\"\x01\\\" = 0\n");
    for (const json &event : whole["traceEvents"]) {
        if (event["name"] == "MI_VDEC_SendStream") {
            EXPECT_EQ(event["args"],
                      json::parse(R"({"channel": 1, "stream": {"length": 9, "pts": "18446744073709551615",
                "end_of_frame": 0, "end_of_stream": 0, "crc32": "12345678"}, "timeout_ms": -1, "result": "0", "line": 1})"));
        }
        if (event["name"] == "board_run_command") {
            EXPECT_EQ(event["args"]["command"], "echo \ufffd\"\x01\\");
        }
    }
}

TEST_F(Timeline, HasThePartThatIsAskedFor)
{
    options_.from_us = 1000; // since the first line
    options_.to_us = 2000;
    const json whole = of("1000 board_open \"/dev/rtc0\" 2 = 5\n2000 board_ioctl 5 1 data = 0\n3000 "
                          "MI_SYS_Init = 0\n4000 MI_SYS_Init = -1\n");
    EXPECT_EQ(shown(whole, "i"), "board_ioctl @/dev/rtc0 2000\nMI_SYS_Init @SYS 3000\n");
}

TEST_F(Timeline, OfNothingIsEmpty)
{
    const json whole = of("");
    for (const json &event : whole["traceEvents"])
        EXPECT_EQ(event["ph"], "M");
}

TEST_F(Timeline, LeavesNothingBehindWhenItFails)
{
    const std::string trace = folder_.write("t", "1 MI_SYS_Init = 0\n");
    EXPECT_EQ(complaint(trace, trace), trace + " is the trace itself");
    EXPECT_EQ(folder_.read("t"), "1 MI_SYS_Init = 0\n");
    EXPECT_EQ(complaint(trace, folder_.path("no/o")), folder_.path("no/o") + ": No such file or directory");
    EXPECT_EQ(complaint(trace, "/dev/full"), "/dev/full: No space left on device");
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
    const std::string output = folder_.write("o", "from before");
    EXPECT_NE(complaint(folder_.write("bad", "x\ny\n"), output), "none");
    EXPECT_EQ(folder_.read("o"), "from before");
    // A disk that is full in the middle of it.
    std::string many;
    for (int line = 0; line < 20000; ++line)
        many += "1 MI_SYS_Init = 0\n";
    folder_.write("t", many);
    const rlimit small = {200000, RLIM_INFINITY};
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_EQ(complaint(trace, output), output + ": File too large");
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_FALSE(std::filesystem::exists(output));
}

class TraceCommand : public testing::Test
{
protected:
    int status(std::vector<std::string> words)
    {
        words.insert(words.begin(), "trace");
        std::vector<char *> argv;
        for (std::string &word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int result = trace_command(static_cast<int>(words.size()), argv.data());
        output_ = testing::internal::GetCapturedStdout();
        error_ = testing::internal::GetCapturedStderr();
        return result;
    }

    ScratchFolder folder_;
    std::string output_, error_;
};

TEST_F(TraceCommand, HasTheExitStatusOfDiff)
{
    const std::string a = folder_.write("a", "1 MI_SYS_Init = 0\n"),
                      b = folder_.write("b", "1 MI_SYS_Init = -1\n");
    EXPECT_EQ(status({"diff", a, a}), 0);
    EXPECT_EQ(output_ + error_, "");
    EXPECT_EQ(status({"diff", a, b}), 1);
    EXPECT_NE(output_, "");
    EXPECT_EQ(status({"diff", "-q", a, b}), 1);
    EXPECT_EQ(output_ + error_, "");
    EXPECT_EQ(status({"diff", a, folder_.path("none")}), 2);
    EXPECT_EQ(error_, "vboard trace: " + folder_.path("none") + ": No such file or directory\n");
    EXPECT_EQ(status({"diff", "--ignore", "x", "--only", "MI_", a, b}), 1);
}

TEST_F(TraceCommand, SaysInOneLineWhatIsWrongWithItsArguments)
{
    for (const std::vector<std::string> &words :
         std::vector<std::vector<std::string>>{{},
                                               {"nothing"},
                                               {"diff", "a"},
                                               {"summary", "--sort", "colour", "a"},
                                               {"timeline", "--from", "x", "a"},
                                               {"summary", "a", "b"},
                                               {"timeline", "--rows", "x", "a"}}) {
        EXPECT_EQ(status(words), 2);
        EXPECT_EQ(error_.find("vboard trace: "), 0u) << error_;
        EXPECT_EQ(std::count(error_.begin(), error_.end(), '\n'), 1) << error_;
        EXPECT_EQ(output_, "");
    }
    EXPECT_EQ(status({"--help"}), 0);
    EXPECT_NE(output_.find("summary"), std::string::npos);
}

TEST_F(TraceCommand, WritesTheSummaryAsJson)
{
    const std::string path = folder_.write(
        "t", "1000000 MI_VDEC_StartChn 0 = 0xa0080005 ; thread 1, 30 us\n2000000 MI_SYS_Init = 0\n");
    ASSERT_EQ(status({"summary", "--json", "--sort", "name", path}), 0);
    const json whole = json::parse(output_);
    EXPECT_EQ(whole["calls"], 2);
    EXPECT_EQ(whole["failed"], 1);
    EXPECT_EQ(whole["by_call"][0]["name"], "MI_SYS_Init");
    EXPECT_TRUE(whole["by_call"][0]["mean_us"].is_null());
    EXPECT_EQ(whole["by_call"][1]["max_us"], 30);
    EXPECT_EQ(whole["by_call"][1]["per_second"], 1.0);
    EXPECT_EQ(whole["by_call"][1]["failures"],
              json::parse(R"([{"result": "0xa0080005", "meaning": "VDEC: absent", "count": 1}])"));
}

TEST_F(TraceCommand, TellsWhatItPassedOver)
{
    const std::string path = folder_.write("t", "1 MI_SYS_Init = 0\noops\n2 MI_SYS_Init = 0");
    EXPECT_EQ(status({"timeline", path, "-o", folder_.path("o")}), 0);
    EXPECT_EQ(error_, "vboard trace: " + path +
                          ": line 2: no time at its beginning\n"
                          "vboard trace: " +
                          path + ": line 3: cut off, the line has no end\n");
    EXPECT_EQ(output_, folder_.path("o") + ": 1 calls, 0 of them failed, 0 events\n");
    EXPECT_EQ(status({"timeline", path}), 0);
    EXPECT_EQ(output_, folder_.read("o"));
}

} // namespace
