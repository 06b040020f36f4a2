/* trace_diff_test.cpp - two traces compared. */
#include "trace/diff.h"

#include <gtest/gtest.h>

#include <random>

#include "trace/differences.h"
#include "trace_files.h"

namespace
{

using namespace vboard_app;
using Sequence = std::vector<uint64_t>;

// `a` with every difference carried out.
Sequence carried_out(const Sequence &a, const Sequence &b, const std::vector<Difference> &all)
{
    Sequence made;
    size_t at = 0;
    for (const Difference &one : all) {
        made.insert(made.end(), a.begin() + static_cast<ptrdiff_t>(at),
                    a.begin() + static_cast<ptrdiff_t>(one.a_from));
        made.insert(made.end(), b.begin() + static_cast<ptrdiff_t>(one.b_from),
                    b.begin() + static_cast<ptrdiff_t>(one.b_to));
        at = one.a_to;
    }
    made.insert(made.end(), a.begin() + static_cast<ptrdiff_t>(at), a.end());
    return made;
}

size_t size_of(const std::vector<Difference> &all)
{
    size_t sum = 0;
    for (const Difference &one : all)
        sum += one.a_to - one.a_from + one.b_to - one.b_from;
    return sum;
}

// Without windows, and in the plainest way: lines that are in one sequence only.
size_t smallest_difference(const Sequence &a, const Sequence &b)
{
    std::vector<std::vector<size_t>> same(a.size() + 1, std::vector<size_t>(b.size() + 1, 0));
    for (size_t i = 0; i < a.size(); ++i)
        for (size_t j = 0; j < b.size(); ++j)
            same[i + 1][j + 1] = a[i] == b[j] ? same[i][j] + 1 : std::max(same[i][j + 1], same[i + 1][j]);
    return a.size() + b.size() - 2 * same[a.size()][b.size()];
}

TEST(Differences, OfTheSameAreNone)
{
    EXPECT_TRUE(differences({}, {}).empty());
    const Sequence some = {1, 2, 3};
    EXPECT_TRUE(differences(some, some).empty());
}

TEST(Differences, AreTheSmallestWithinAWindow)
{
    std::mt19937 random(1);
    for (int run = 0; run < 300; ++run) {
        Sequence a, b;
        for (auto *side : {&a, &b})
            for (size_t size = random() % 40; side->size() < size;)
                side->push_back(random() % 5);
        const std::vector<Difference> all = differences(a, b);
        EXPECT_EQ(carried_out(a, b, all), b);
        EXPECT_EQ(size_of(all), smallest_difference(a, b));
    }
}

TEST(Differences, LeadFromOneToTheOtherWhateverTheWindow)
{
    std::mt19937 random(2);
    for (int run = 0; run < 300; ++run) {
        Sequence a, b;
        for (auto *side : {&a, &b})
            for (size_t size = random() % 200; side->size() < size;)
                side->push_back(random() % (run % 2 == 0 ? 3 : 1000));
        const std::vector<Difference> all = differences(a, b, 1 + random() % 9);
        EXPECT_EQ(carried_out(a, b, all), b);
        for (size_t at = 1; at < all.size(); ++at) { // ascending, with something the same in between
            EXPECT_GT(all[at].a_from, all[at - 1].a_to);
            EXPECT_GT(all[at].b_from, all[at - 1].b_to);
        }
    }
}

TEST(Differences, FindTheirWayBackAfterALongInsertion)
{
    Sequence a, b;
    for (uint64_t line = 0; line < 20000; ++line) {
        a.push_back(line);
        b.push_back(line);
        if (line == 5000)
            for (uint64_t added = 0; added < 1000; ++added)
                b.push_back(1000000 + added);
        if (line == 15000) b.back() = 7;
    }
    const std::vector<Difference> all = differences(a, b);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].a_from, 5001u);
    EXPECT_EQ(all[0].a_to, 5001u);
    EXPECT_EQ(all[0].b_to - all[0].b_from, 1000u);
    EXPECT_EQ(all[1].a_from, 15000u);
    EXPECT_EQ(all[1].a_to, 15001u);
}

class TraceDiff : public testing::Test
{
protected:
    // What is said about two traces, their names replaced by "a" and "b"; "" when they are the same.
    std::string said(const std::string &a, const std::string &b)
    {
        const std::string one = folder_.write("a", a), other = folder_.write("b", b);
        FILE *output = fopen(folder_.path("output").c_str(), "w");
        const bool are_same = diff_traces(one, other, options_, output, complaints_);
        fclose(output);
        std::string text = folder_.read("output");
        EXPECT_EQ(are_same, text.empty());
        for (const std::string &path : {one, other})
            for (size_t at; (at = text.find(path)) != std::string::npos;)
                text.replace(at, path.size(), path.substr(path.size() - 1));
        return text;
    }
    bool same(const std::string &a, const std::string &b)
    {
        options_.quiet = true;
        return diff_traces(folder_.write("a", a), folder_.write("b", b), options_, stdout, complaints_);
    }

    ScratchFolder folder_;
    DiffOptions options_;
    std::vector<std::string> complaints_;
};

TEST_F(TraceDiff, PassesOverTimesDurationsThreadsAndTimeStamps)
{
    const std::string a = "1 MI_VDEC_SendStream 1 {length=9 pts=5 end_of_frame=0 end_of_stream=0 crc32=0} 20 "
                          "= 0 ; thread 1, 5 us\n"
                          "2 MI_SYS_GetCurPts 100 = 0\n3 event plug {plugged=0}\n";
    const std::string b =
        "7 MI_VDEC_SendStream 1 {length=9 pts=6 end_of_frame=0 end_of_stream=0 crc32=0} 20 = 0\n"
        "8 MI_SYS_GetCurPts 200 = 0\n9 event plug {plugged=0}\n";
    EXPECT_EQ(said(a, b), "");
    options_.same.pts = true;
    EXPECT_FALSE(same(a, b));
}

TEST_F(TraceDiff, CountsEverythingElse)
{
    const std::string line =
        "1 MI_VDEC_SendStream 1 {length=9 pts=5 end_of_frame=0 end_of_stream=0 crc32=0} 20 = 0\n";
    EXPECT_TRUE(same(line, line));
    for (const auto &[from, to] : {std::pair("Stream 1", "Stream 2"),
                                   {"length=9", "length=8"},
                                   {"crc32=0", "crc32=-"},
                                   {"20 =", "21 ="},
                                   {"= 0\n", "= -1\n"},
                                   {"= 0\n", "= 0 (absent)\n"},
                                   {"MI_VDEC_", "MI_VENC_"}}) {
        std::string other = line;
        other.replace(other.find(from), strlen(from), to);
        EXPECT_FALSE(same(line, other)) << to;
    }
    EXPECT_FALSE(same(line, line + line));
    EXPECT_FALSE(same(line, ""));
    EXPECT_TRUE(same("", ""));
}

TEST_F(TraceDiff, ShowsWhereTheTracesPartAndInWhichFields)
{
    const std::string start =
        "1 MI_SYS_Init = 0\n2 MI_VDEC_StopChn 0 = 0\n3 MI_VDEC_StopChn 1 = 0\n4 MI_VDEC_StopChn 2 = 0\n";
    const std::string end = "9 MI_HDMI_DeInit = 0\n";
    EXPECT_EQ(said(start + "5 MI_VDEC_SetOutputPortAttr 3 {width=640 height=360} = 0\n" + end,
                   start + "6 MI_VDEC_SetOutputPortAttr 3 {width=320 height=360} = 0xa0080005\n" + end),
              "parts at a:5 and b:5\n"
              "         2  2 MI_VDEC_StopChn 0 = 0\n"
              "         3  3 MI_VDEC_StopChn 1 = 0\n"
              "         4  4 MI_VDEC_StopChn 2 = 0\n"
              "-        5  5 MI_VDEC_SetOutputPortAttr 3 {width=640 height=360} = 0\n"
              "+        5  6 MI_VDEC_SetOutputPortAttr 3 {width=320 height=360} = 0xa0080005\n"
              "  differs: attr.width, 640 and 320\n"
              "  differs: result, 0 and 0xa0080005 (VDEC: absent)\n"
              "1 difference; only in a: 1 line, only in b: 1 line\n");
}

TEST_F(TraceDiff, ShowsTheFirstDifferenceAndCountsTheOthers)
{
    const std::string a =
        "1 MI_SYS_Init = 0\n2 MI_VDEC_StopChn 1 = 0\n3 MI_VDEC_StopChn 2 = 0\n4 MI_VDEC_StopChn 3 = 0\n";
    const std::string b =
        "1 MI_SYS_Init = 0\n3 MI_VDEC_StopChn 2 = 0\n4 MI_VDEC_StopChn 3 = 0\n5 MI_VDEC_StopChn 4 = 0\n";
    EXPECT_EQ(said(a, b), "parts at a:2 and b:2\n"
                          "         1  1 MI_SYS_Init = 0\n"
                          "-        2  2 MI_VDEC_StopChn 1 = 0\n"
                          "2 differences; only in a: 1 line, only in b: 1 line\n");
    options_.all = true;
    options_.context = 1;
    EXPECT_EQ(said(a, b), "parts at a:2 and b:2\n"
                          "         1  1 MI_SYS_Init = 0\n"
                          "-        2  2 MI_VDEC_StopChn 1 = 0\n"
                          "parts at the end of a and b:4\n"
                          "         4  4 MI_VDEC_StopChn 3 = 0\n"
                          "+        4  5 MI_VDEC_StopChn 4 = 0\n"
                          "2 differences; only in a: 1 line, only in b: 1 line\n");
}

TEST_F(TraceDiff, ByChannelPassesOverTheTurnsThatThreadsTake)
{
    const std::string a = "1 MI_VDEC_StopChn 0 = 0\n2 MI_VDEC_StartChn 0 = 0\n3 MI_VDEC_StopChn 1 = 0\n4 "
                          "MI_VDEC_StartChn 1 = 0\n";
    const std::string b = "1 MI_VDEC_StopChn 1 = 0\n2 MI_VDEC_StopChn 0 = 0\n3 MI_VDEC_StartChn 1 = 0\n4 "
                          "MI_VDEC_StartChn 0 = 0\n";
    EXPECT_NE(said(a, b), "");
    options_.by_channel = true;
    EXPECT_EQ(said(a, b), "");
    EXPECT_EQ(said(a, b + "5 MI_VDEC_StopChn 0 = 0\n"),
              "VDEC 0 parts at the end of a and b:5\n"
              "         1  1 MI_VDEC_StopChn 0 = 0\n"
              "         2  2 MI_VDEC_StartChn 0 = 0\n"
              "+        5  5 MI_VDEC_StopChn 0 = 0\n"
              "VDEC 0: 1 difference; only in a: 0 lines, only in b: 1 line\n"
              "1 of 2 channels differ\n");
}

TEST_F(TraceDiff, ByChannelANodeIsTheSameWithAnyDescriptor)
{
    const std::string a =
        "1 board_open \"/dev/a\" 0 = 3\n2 board_open \"/dev/b\" 0 = 4\n3 board_close 3 = 0\n";
    const std::string b =
        "1 board_open \"/dev/b\" 0 = 3\n2 board_open \"/dev/a\" 0 = 4\n3 board_close 4 = 0\n";
    EXPECT_FALSE(same(a, b));
    options_.by_channel = true;
    EXPECT_TRUE(same(a, b));
    EXPECT_FALSE(same(a, b + "4 board_close 3 = 0\n"));
    EXPECT_FALSE(same("1 board_open \"/dev/a\" 0 = 3\n", "1 board_open \"/dev/a\" 0 = -1\n"));
}

TEST_F(TraceDiff, LeavesOutCallsAndFieldsAsAsked)
{
    const std::string a = "1 MI_VDEC_GetChnStat 0 {bytes=1 frames=1 pictures=0} = 0\n2 MI_SYS_Init = 0\n";
    const std::string b = "1 MI_VDEC_GetChnStat 0 {bytes=2 frames=1 pictures=0} = 0\n2 MI_SYS_Init = 0\n3 "
                          "board_sleep_us 5 = 0\n";
    EXPECT_FALSE(same(a, b));
    options_.same.without = {"MI_VDEC_", "board_"};
    EXPECT_TRUE(same(a, b));
    options_.same.without = {"board_"};
    EXPECT_FALSE(same(a, b));
    options_.same.ignored = {"stat.bytes"};
    EXPECT_TRUE(same(a, b));
    options_.same.ignored = {"stream.bytes"};
    EXPECT_FALSE(same(a, b));
    options_.same.ignored = {"bytes"};
    EXPECT_TRUE(same(a, b));
    options_.same = {};
    options_.same.only = {"MI_SYS_"};
    EXPECT_TRUE(same(a, b));
}

TEST_F(TraceDiff, ComparesBrokenLinesAsTheyStand)
{
    const std::string call = "1 MI_SYS_Init = 0\n";
    EXPECT_TRUE(same(call + "oops\n" + call, call + "oops\n" + call));
    EXPECT_EQ(complaints_.size(), 2u);
    EXPECT_FALSE(same(call + "oops\n" + call, call + "oh\n" + call));
    EXPECT_FALSE(same(call + "oops\n" + call, call + call));
}

TEST_F(TraceDiff, WantsFiles)
{
    const std::string good = folder_.write("a", "1 MI_SYS_Init = 0\n");
    EXPECT_THROW(diff_traces(good, folder_.path("none"), options_, stdout, complaints_), TraceError);
    EXPECT_THROW(diff_traces("-", good, options_, stdout, complaints_), TraceError);
    EXPECT_THROW(diff_traces(good, folder_.write("b", "x\n"), options_, stdout, complaints_), TraceError);
}

} // namespace
