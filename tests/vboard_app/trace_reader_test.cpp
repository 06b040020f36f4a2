/* trace_reader_test.cpp - files of calls: whole ones, damaged ones, and files that are something else. */
#include "trace/trace_reader.h"

#include <gtest/gtest.h>

#include "trace/summary.h"
#include "trace_files.h"

namespace
{

using namespace vboard_app;

struct Read {
    std::vector<std::string> names;
    std::vector<std::string> complaints;
};

Read read_all(const std::string &path)
{
    TraceReader reader(path);
    Read all;
    CallLine call;
    for (TraceReader::Found found; (found = reader.next(call)) != TraceReader::Found::kEnd;)
        all.names.push_back(found == TraceReader::Found::kCall ? std::string(call.name) : "broken");
    all.complaints = reader.complaints();
    return all;
}

std::string complaint_about(const std::string &path)
{
    try {
        read_all(path);
    } catch (const TraceError &error) {
        return error.what();
    }
    return "none";
}

class ATraceFile : public testing::Test
{
protected:
    ScratchFolder folder_;
};

TEST_F(ATraceFile, IsReadLineByLine)
{
    const std::string path =
        folder_.write("t", "1 MI_SYS_Init = 0\n2 event plug {plugged=0}\n3 MI_HDMI_DeInit = 0\n");
    const Read all = read_all(path);
    EXPECT_EQ(all.names, (std::vector<std::string>{"MI_SYS_Init", "plug", "MI_HDMI_DeInit"}));
    EXPECT_TRUE(all.complaints.empty());
}

TEST_F(ATraceFile, KnowsWhereEachLineStands)
{
    TraceReader reader(folder_.write("t", "1 MI_SYS_Init = 0\n22 MI_SYS_Init = 0\n\n3 MI_SYS_Init = 0\n"));
    CallLine call;
    const std::pair<uint64_t, uint64_t> places[] = {{1, 0}, {2, 18}, {3, 37}, {4, 38}};
    for (const auto &[number, offset] : places) {
        ASSERT_NE(reader.next(call), TraceReader::Found::kEnd);
        EXPECT_EQ(reader.line_number(), number);
        EXPECT_EQ(reader.offset(), offset);
    }
    EXPECT_EQ(reader.next(call), TraceReader::Found::kEnd);
}

TEST_F(ATraceFile, MayBeEmpty)
{
    EXPECT_TRUE(read_all(folder_.write("t", "")).names.empty());
}

TEST_F(ATraceFile, TellsItsBrokenLinesAndGoesOn)
{
    const std::string path =
        folder_.write("t", "1 MI_SYS_Init = 0\nhello\n2 MI_SYS_Init =\n3 MI_SYS_Init = 0\n");
    const Read all = read_all(path);
    EXPECT_EQ(all.names, (std::vector<std::string>{"MI_SYS_Init", "broken", "broken", "MI_SYS_Init"}));
    EXPECT_EQ(all.complaints, (std::vector<std::string>{path + ": line 2: no time at its beginning",
                                                        path + ": line 3: no result"}));
}

TEST_F(ATraceFile, TellsTenBrokenLinesAndHowManyMore)
{
    std::string text = "1 MI_SYS_Init = 0\n";
    for (int line = 0; line < 200; ++line)
        text += "x\n";
    const std::string path = folder_.write("t", text);
    const Read all = read_all(path);
    ASSERT_EQ(all.complaints.size(), 11u);
    EXPECT_EQ(all.complaints[10], path + ": 190 further lines are broken");
}

TEST_F(ATraceFile, ThatWasCutOffIsReadUpToThere)
{
    const std::string path = folder_.write("t", "1 MI_SYS_Init = 0\n2 MI_SYS_Init = 0");
    const Read all = read_all(path);
    EXPECT_EQ(all.names, (std::vector<std::string>{"MI_SYS_Init", "broken"}));
    EXPECT_EQ(all.complaints, (std::vector<std::string>{path + ": line 2: cut off, the line has no end"}));
}

TEST_F(ATraceFile, MayHaveALineWithoutAnEnd)
{
    // Longer than the reader's chunks, and than any line that is taken.
    const std::string path =
        folder_.write("t", "1 MI_SYS_Init = 0\n2 board_run_command \"" + std::string(3000000, 'x') +
                               "\" = 0\n3 MI_SYS_Init = 0\n");
    const Read all = read_all(path);
    EXPECT_EQ(all.names, (std::vector<std::string>{"MI_SYS_Init", "broken", "MI_SYS_Init"}));
    EXPECT_EQ(all.complaints, (std::vector<std::string>{path + ": line 2: the line is too long"}));
}

TEST_F(ATraceFile, ThatIsNoneIsRefusedAtOnce)
{
    std::string text;
    for (int line = 0; line < 100000; ++line)
        text += "not a call\n";
    const std::string path = folder_.write("t", text);
    EXPECT_EQ(complaint_about(path), path + " is no call trace: line 1: no time at its beginning");
    EXPECT_EQ(complaint_about(folder_.write("u", std::string(300000, '\0'))),
              folder_.path("u") + " is no call trace: line 1: cut off, the line has no end");
    EXPECT_EQ(complaint_about(folder_.write("v", "{}\n")),
              folder_.path("v") + " is no call trace: line 1: no time at its beginning");
}

TEST_F(ATraceFile, ThatIsMissingOrNoFileIsToldByItsName)
{
    EXPECT_EQ(complaint_about(folder_.path("none")), folder_.path("none") + ": No such file or directory");
    EXPECT_EQ(complaint_about(folder_.path("")), folder_.path("") + ": Is a directory");
}

TEST_F(ATraceFile, IsSummarised)
{
    const std::string path = folder_.write("t", "1000000 MI_VDEC_StartChn 0 = 0 ; thread 1, 10 us\n"
                                                "2000000 MI_VDEC_StartChn 1 = 0xa0080005 ; thread 1, 30 us\n"
                                                "3000000 MI_VDEC_StartChn 1 = 0xa0080005 ; thread 2, 20 us\n"
                                                "4000000 MI_SYS_Init = 0 ; thread 1, 500 us\n"
                                                "5000000 event plug {plugged=0}\n"
                                                "oops\n");
    const TraceSummary summary = summarise(path, SummaryOrder::kCount);
    EXPECT_EQ(summary.calls, 4u);
    EXPECT_EQ(summary.events, 1u);
    EXPECT_EQ(summary.failed, 2u);
    EXPECT_EQ(summary.timed, 4u);
    EXPECT_DOUBLE_EQ(summary.seconds(), 4);
    EXPECT_EQ(summary.complaints.size(), 1u);
    ASSERT_EQ(summary.by_call.size(), 3u);
    const CallSummary &starts = summary.by_call[0];
    EXPECT_EQ(starts.name, "MI_VDEC_StartChn");
    EXPECT_EQ(starts.count, 3u);
    EXPECT_EQ(starts.failures, (std::map<std::string, uint64_t>{{"0xa0080005", 2}}));
    EXPECT_EQ(starts.first_us, 1000000);
    EXPECT_EQ(starts.last_us, 3000000);
    EXPECT_EQ(starts.total_us, 60);
    EXPECT_EQ(starts.longest_us, 30);
    EXPECT_EQ(summary.by_call[1].name, "MI_SYS_Init");
    EXPECT_EQ(summary.by_call[2].name, "event plug");
    EXPECT_EQ(
        summary_text(summary),
        "4 calls, 2 failed, and 1 event in 4.000 s\n"
        "\n"
        "     calls  per second    failed     first s      last s     mean us      max us    total ms  name\n"
        "         3         0.8         2       0.000       2.000        20.0          30       0.060  "
        "MI_VDEC_StartChn\n"
        "                                  2 times 0xa0080005 (VDEC: absent)\n"
        "         1         0.2         0       3.000       3.000       500.0         500       0.500  "
        "MI_SYS_Init\n"
        "         1         0.2         0       4.000       4.000           -           -           -  event "
        "plug\n");
}

TEST_F(ATraceFile, IsSummarisedInTheOrderThatIsAskedFor)
{
    const std::string path = folder_.write("t", "1 MI_VDEC_StartChn 0 = 0 ; thread 1, 10 us\n"
                                                "2 MI_VDEC_StartChn 1 = 0 ; thread 1, 10 us\n"
                                                "3 MI_VDEC_StopChn 1 = -1 ; thread 2, 15 us\n"
                                                "0 MI_SYS_Init = 0 ; thread 1, 12 us\n");
    const std::pair<SummaryOrder, const char *> firsts[] = {
        {SummaryOrder::kCount, "MI_VDEC_StartChn"}, {SummaryOrder::kFailed, "MI_VDEC_StopChn"},
        {SummaryOrder::kTotal, "MI_VDEC_StartChn"}, {SummaryOrder::kLongest, "MI_VDEC_StopChn"},
        {SummaryOrder::kName, "MI_SYS_Init"},       {SummaryOrder::kFirst, "MI_SYS_Init"},
    };
    for (const auto &[order, first] : firsts)
        EXPECT_EQ(summarise(path, order).by_call.front().name, first) << static_cast<int>(order);
}

} // namespace
