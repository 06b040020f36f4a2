/* scenario_play_test.cpp - playing: when what is done and judged, and what a failure tells. */
#include <fstream>

#include "scenario_support.h"

namespace
{

using namespace scenario_test;

constexpr char kStepped[] = "board: {clock: stepped}\n";

std::string with_head(const std::string &rest)
{
    return kStepped + rest;
}

TEST(ScenarioPlaying, DoesStepsAtTheirTimesAndLooksBeforeThem)
{
    Playing playing;
    std::vector<int64_t> presses;
    playing.board.on_step = [&](int64_t us) { playing.board.luma = us >= 1'010'000 ? 235 : 16; };
    const Outcome outcome =
        playing.play(with_head("lasts: 2s\nsteps:\n  - {at: 1015ms, press: menu}\nexpect: []\n"));
    EXPECT_TRUE(outcome.passed());
    EXPECT_EQ(outcome.board_us, 2'000'000);
    int64_t us = 0, pressed_at = -1;
    for (const std::string &request : playing.board.requests) {
        if (request.starts_with("clock.step")) us += json::parse(request.substr(11)).at("by").get<int64_t>();
        if (request.starts_with("press")) pressed_at = us;
    }
    EXPECT_EQ(pressed_at, 1'015'000) << "to the microsecond, whatever the length of the steps";
}

TEST(ScenarioPlaying, AStepWaitsForWhatItComesAfter)
{
    Playing playing;
    FakeSession *session = nullptr;
    playing.board.on_step = [&](int64_t us) {
        if (us == 400'000) session->log.push_back("the menu is open");
    };
    const Outcome outcome =
        playing.play(with_head("steps:\n  - {after: {log: menu, then: 100ms}, press: enter}\n"
                               "expect:\n  - {log: menu, times: 1}\n"),
                     [&](FakeSession &one) { session = &one; });
    EXPECT_TRUE(outcome.passed());
    EXPECT_EQ(outcome.board_us, 500'000);
}

TEST(ScenarioPlaying, AConditionThatDoesNotComeFailsInItsLine)
{
    Playing playing;
    const Outcome outcome =
        playing.play(with_head("steps:\n  - {after: {log: menu, within: 1s}, press: enter}\nexpect: []\n"));
    ASSERT_FALSE(outcome.passed());
    EXPECT_EQ(outcome.failures[0].line, 3);
    EXPECT_NE(outcome.failures[0].seen.find("did not come within 1.00 s"), std::string::npos);
}

struct Case {
    const char *expectation;
    bool holds;
    const char *seen;
};

/* The board: a monitor that gets its signal at 1 s, a lamp that blinks, a decoder at 25 pictures a second. */
json state_at(int64_t us)
{
    return {{"monitor", {{"signal", us >= 1'000'000}}},
            {"panel", {{"record_lamp", us / 500'000 % 2 == 1}}},
            {"gpio", {{{"line", 7}, {"level", 1}}}},
            {"watchdog", {{"enabled", true}, {"expired", false}, {"feeds", us / 3'000'000}}},
            {"decoders", {{{"channel", 0}, {"decoded", us / 40'000}, {"damaged", 0}}}},
            {"memory_kb", 100 * 1024}};
}

TEST(ScenarioPlaying, ExpectationsHoldOrFailWithWhatWasSeen)
{
    const Case cases[] = {
        {"{at: 2s, state: monitor.signal, is: true}", true, ""},
        {"{at: 500ms, state: monitor.signal, is: true}", false, "it is false"},
        {"{at: 500ms, within: 1s, state: monitor.signal, is: true}", true, ""},
        {"{at: 0, within: 500ms, state: monitor.signal, is: true}", false, "it is false"},
        {"{during: [1s, 3s], state: monitor.signal, is: true}", true, ""},
        {"{during: [500ms, 3s], state: monitor.signal, is: true}", false, "it is false"},
        {"{during: [0s, 900ms], never: true, state: monitor.signal, is: true}", true, ""},
        {"{during: [0s, 1s], never: true, state: monitor.signal, is: true}", false, "it was so"},
        {"{state: monitor.signal, is: true, never: true}", false, "it was so"},
        {"{at: 4s, lamp: record, blinks: true}", true, ""},
        {"{at: 4s, lamp: record, blinks: false}", false, "times"},
        {"{at: 4s, lamp: line 7, lit: true}", true, ""},
        {"{at: 4s, lamp: line 7, blinks: true}", false, "it changed 0 times within 3.00 s"},
        {"{at: 4s, lamp: line 8, lit: true}", false, "the line is no output yet"},
        {"{at: 4s, watchdog: fed, over: 3s}", true, ""},
        {"{at: 2500ms, watchdog: fed, over: 2s}", false, "was not fed within 2.00 s"},
        {"{at: 4s, watchdog: expired}", false, "it runs, and has been fed 1 times"},
        {"{at: 2s, decoder: 0, pictures: \">= 50\", damaged: 0}", true, ""},
        {"{at: 1960ms, decoder: 0, pictures: \">= 50\"}", false, "pictures is 49"},
        {"{at: 1s, decoder: 5, pictures: 0}", true, ""},
        {"{at: 4s, memory: \"< 100 MB\"}", false, "the program has 100 MB"},
        {"{at: 4s, memory: \"< 101 MB\"}", true, ""},
        {"{log: hello, times: 2}", true, ""},
        {"{log: hello, never: true}", false, "it wrote \"hello"},
        {"{at: 500ms, log: hello, times: 1}", true, ""},
        {"{during: [600ms, 900ms], log: hello}", false, "never"},
        {"{log: goodbye}", false, "the program wrote it never; its last line is \"hello again\""},
        {"{call: MI_VDEC_StartChn, with: {channel: 1}}", true, ""},
        {"{call: MI_VDEC_StartChn, with: {channel: \"> 1\"}}", false, "but with other fields 1 times"},
        {"{call: MI_VDEC_StopChn, never: true}", true, ""},
        {"{call: MI_VDEC_StartChn, never: true}", false,
         "it was called at 0.50 s: MI_VDEC_StartChn channel=1 = 0"},
        {"{exit: 0}", true, ""},
        {"{exit: 3}", false, "it ended with status 0"},
        {"{boot: power}", true, ""},
        {"{starts: 2}", false, "the program was started 1 times"},
        {"{at: 2s, screen: white.png, region: [0, 0, 8, 8]}", true, ""},
        {"{at: 2s, screen: white.png}", true, ""},
        {"{at: 500ms, screen: white.png}", false, "100.00 % of the pixels differ, 2 % may"},
        {"{at: 2s, screen: white.png, region: [10, 10, 8, 8]}", false, "the region leaves the screen"},
    };
    for (const Case &one : cases) {
        Playing playing;
        write_png(playing.folder.file("white.png"), [] {
            Image white = black_image(16, 16);
            std::fill(white.rgb.begin(), white.rgb.end(), uint8_t{255});
            return white;
        }());
        FakeSession *session = nullptr;
        playing.board.state = state_at(0);
        playing.board.on_step = [&](int64_t us) {
            playing.board.state = state_at(us);
            playing.board.luma = us >= 1'000'000 ? 235 : 16;
            if (us == 500'000) session->log.push_back("hello");
            if (us == 2'000'000) session->log.push_back("hello again");
            Call call;
            call.at_us = us + 5'000'000;
            call.name = "MI_VDEC_StartChn";
            call.arguments = {{"channel", "1"}};
            call.result = "0";
            if (us == 500'000) session->calls.push_back(call);
        };
        const Outcome outcome =
            playing.play(with_head(std::string("lasts: 4s\nexpect:\n  - ") + one.expectation + "\n"),
                         [&](FakeSession &fresh) { session = &fresh; });
        EXPECT_EQ(outcome.passed(), one.holds) << one.expectation;
        if (one.holds || outcome.failures.empty()) continue;
        EXPECT_EQ(outcome.failures[0].line, 4) << one.expectation;
        EXPECT_NE(outcome.failures[0].seen.find(one.seen), std::string::npos)
            << one.expectation << ": " << outcome.failures[0].seen;
    }
}

TEST(ScenarioPlaying, AFailureLeavesPictureAndOutputBehind)
{
    Playing playing;
    write_png(playing.folder.file("white.png"), black_image(16, 16));
    playing.board.luma = 235;
    const Outcome outcome = playing.play(with_head("expect:\n  - {at: 1s, screen: white.png}\n"),
                                         [](FakeSession &session) { session.log.push_back("a word"); });
    ASSERT_FALSE(outcome.passed());
    EXPECT_EQ(outcome.failures[0].picture, playing.folder.file("out/line-3.png"));
    std::string problem;
    const auto picture = read_png(outcome.failures[0].picture, problem);
    ASSERT_TRUE(picture) << problem;
    EXPECT_EQ(picture->width, 3 * 16 + 2 * 8);
    std::ifstream log(outcome.log_file);
    std::string line;
    std::getline(log, line);
    EXPECT_EQ(line, "0.00 s  a word");
}

TEST(ScenarioPlaying, AProgramThatEndsTooEarlyOrNotAtAllHasFailed)
{
    Playing early;
    const Outcome ended =
        early.play(with_head("expect:\n  - {at: 1s, boot: power}\n"), [](FakeSession &session) {
            ProgramEnd end;
            end.signal = 11;
            session.end = end;
        });
    ASSERT_FALSE(ended.passed());
    EXPECT_EQ(ended.failures[0].seen, "the program was ended by signal SEGV");

    Playing never;
    const Outcome hangs = never.play(with_head("expect:\n  - {at: 1s, boot: power}\n"),
                                     [](FakeSession &session) { session.ends = false; });
    ASSERT_FALSE(hangs.passed());
    EXPECT_NE(hangs.failures[0].seen.find("and was killed"), std::string::npos);
}

TEST(ScenarioPlaying, ARefusedStepFailsInItsLine)
{
    Playing playing;
    playing.board.refuses = "press";
    const Outcome outcome = playing.play(with_head("steps:\n  - {at: 1s, press: nonsense}\nexpect: []\n"));
    ASSERT_FALSE(outcome.passed());
    EXPECT_EQ(outcome.failures[0].line, 3);
    EXPECT_EQ(outcome.failures[0].seen, "the board does not want to");
}

} // namespace
