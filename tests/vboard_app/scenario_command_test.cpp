/* scenario_command_test.cpp - "vboard test": exit status, output, JUnit; and recording. */
#include <sstream>

#include <tinyxml2.h>

#include "scenario/recorder.h"
#include "scenario_support.h"

namespace
{

using namespace scenario_test;

struct Result {
    int status;
    std::string out, err;
};

Result run(std::vector<std::string> arguments, FakeBoard &board)
{
    arguments.insert(arguments.begin(), "test");
    std::vector<char *> argv;
    for (std::string &one : arguments)
        argv.push_back(one.data());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status =
        run_tests(static_cast<int>(argv.size()), argv.data(), [&](std::vector<std::string> program) {
            return [&board, program](const Scenario &) -> std::unique_ptr<Session> {
                if (program.front() == "absent") throw LaunchError("\"absent\" is not found");
                board.us = 0;
                return std::make_unique<FakeSession>(board);
            };
        });
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

class TestCommand : public testing::Test
{
protected:
    const Folder folder;
    std::string good =
        folder.write("good.yaml", "board: {clock: stepped}\nexpect:\n  - {at: 1s, boot: power}\n");
    std::string bad = folder.write("bad.yaml", "board: {clock: stepped}\nexpect:\n  - {at: 1s, starts: 7}\n");
    std::string wrong = folder.write("wrong.yaml", "exepct:\n  - {at: 1s, starts: 7}\n");
    std::string out = folder.file("out");
    FakeBoard board;
};

TEST_F(TestCommand, EndsWithZeroOnlyWhenAllHold)
{
    EXPECT_EQ(run({good, "--output", out, "--", "program"}, board).status, 0);
    const Result result = run({good, bad, "--output", out, "--", "program"}, board);
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("PASS  good"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("FAIL  bad"), std::string::npos) << result.out;
    EXPECT_NE(
        result.out.find(bad + ":3: {at: 1s, starts: 7}\n      at 1.00 s: the program was started 1 times"),
        std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("1 passed, 1 failed"), std::string::npos);
}

TEST_F(TestCommand, PlaysNothingWhenAFileIsWrong)
{
    const Result result = run({good, wrong, "--", "program"}, board);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, wrong + ":1: a scenario has no key \"exepct\" (did you mean \"expect\"?)\n");
    EXPECT_TRUE(board.requests.empty());
}

TEST_F(TestCommand, TellsABoardThatCannotBeHadApart)
{
    const Result result = run({good, "--", "absent"}, board);
    EXPECT_EQ(result.status, 125);
    EXPECT_NE(result.out.find("\"absent\" is not found"), std::string::npos);
}

TEST_F(TestCommand, WantsAProgramAndSomethingToPlay)
{
    EXPECT_EQ(run({good}, board).status, 2);
    EXPECT_EQ(run({"--", "program"}, board).status, 2);
    EXPECT_EQ(run({good, "--only", "nothing", "--", "program"}, board).status, 2);
    EXPECT_EQ(run({good, "--list"}, board).out, "good  " + good + "\n");
}

TEST_F(TestCommand, WritesJUnit)
{
    const std::string file = out + ".xml";
    EXPECT_EQ(
        run({good, bad, "--repeat", "2", "--junit", file, "--output", out, "--", "program"}, board).status,
        1);
    tinyxml2::XMLDocument document;
    ASSERT_EQ(document.LoadFile(file.c_str()), tinyxml2::XML_SUCCESS);
    const auto *suite = document.FirstChildElement("testsuite");
    ASSERT_NE(suite, nullptr);
    EXPECT_STREQ(suite->Attribute("tests"), "4");
    EXPECT_STREQ(suite->Attribute("failures"), "2");
    const auto *last = suite->LastChildElement("testcase");
    EXPECT_STREQ(last->Attribute("name"), "bad [2 of 2]");
    EXPECT_NE(last->FirstChildElement("failure"), nullptr);
}

TEST_F(TestCommand, PlaysWhatWasRecordedTwentyTimesAlike)
{
    RecordingStart start;
    start.stepped = true;
    start.program_began_us = 5'000'000;
    ScenarioRecorder recorder(folder.file("mine.yaml"), start);
    EXPECT_EQ(recorder.add("press", {{"button", "menu"}}, 6'500'000), "{at: 1500ms, press: \"menu\"}");
    EXPECT_EQ(recorder.add("click", {{"x", 1}, {"y", 2}, {"button", "left"}, {"times", 1}}, 7'000'000),
              "{at: 2s, click: {button: \"left\", times: 1, x: 1, y: 2}}");
    EXPECT_EQ(recorder.add("clock.step", {{"by", 1}}, 7'000'000), "");
    std::string picture;
    recorder.expect(board.picture(nullptr, false), {0, 0, 8, 8}, 2, 8'000'000, picture);
    EXPECT_EQ(picture, "mine-1.png");
    recorder.write();
    EXPECT_THROW(recorder.expect(board.picture(nullptr, false), {0, 0, 80, 8}, 2, 8'000'000, picture),
                 RequestError);

    const Result held = run({folder.file("mine.yaml"), "--repeat", "20", "--output", out, "--", "p"}, board);
    EXPECT_NE(held.out.find("20 passed, 0 failed"), std::string::npos) << held.out;
    board.luma = 200;
    const Result failed =
        run({folder.file("mine.yaml"), "--repeat", "20", "--output", out, "--", "p"}, board);
    EXPECT_NE(failed.out.find("0 passed, 20 failed"), std::string::npos) << failed.out;
}

} // namespace
