/* trace_repeat_test.cpp - two runs of one program leave the same trace, byte for byte. */
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace
{

std::string trace_of_a_run(const std::string &name)
{
    const std::string path = testing::TempDir() + "vboard_" + std::to_string(getpid()) + "_" + name;
    EXPECT_EQ(system((TRACE_PROGRAM " " + path + " >/dev/null").c_str()), 0);
    std::ifstream file(path, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    remove(path.c_str());
    return text;
}

size_t count(const std::string &text, const std::string &part)
{
    size_t found = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

TEST(Trace, IsTheSameInEveryRun)
{
    const std::string first = trace_of_a_run("first");
    const std::string second = trace_of_a_run("second");
    EXPECT_GT(std::count(first.begin(), first.end(), '\n'), 100);
    EXPECT_EQ(first.substr(0, 8), "1000000 ");
    EXPECT_TRUE(first == second);
    EXPECT_EQ(count(first, " event mouse {"), 3u);
    EXPECT_EQ(count(first, " event panel {code=109}"), 1u);
    EXPECT_EQ(count(first, " event remote {code=0x6a95ff00 state="), 2u);
    EXPECT_EQ(count(first, " event plug {"), 2u);
    EXPECT_EQ(count(first, "MI_VDEC_SendStream 1 {"), 20u);
    EXPECT_EQ(count(first, "MI_AO_SendFrame 3 0 {"), 1u);
    EXPECT_EQ(count(first, " crc32="), 21u);
    EXPECT_EQ(count(first, " crc32=-"), 0u);
}

} // namespace
