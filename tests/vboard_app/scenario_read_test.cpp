/* scenario_read_test.cpp - scenario files: what is accepted, and what is told of mistakes. */
#include "scenario_support.h"

namespace
{

using namespace scenario_test;
using Lines = std::vector<std::string>;

std::optional<Scenario> read(const std::string &text)
{
    const Folder folder;
    write_png(folder.file("menu.png"), black_image(1280, 1080));
    Problems problems;
    auto scenario = read_scenario(folder.write("some.yaml", text), {}, problems);
    for (const Problem &one : problems.sorted())
        ADD_FAILURE() << one.line << ": " << one.text;
    return scenario;
}

TEST(ScenarioFile, HasStepsAtTimesAndAfterEventsAndExpectationsOfAllKinds)
{
    const auto scenario = read(R"(
board: {monitor: plugged, faults: [{call: MI_VDEC_StartChn, nth: 1, count: 1, code: -1}]}
steps:
  - {at: 2s, press: menu}
  - {after: {log: "menu"}, monitor: "off"}
  - {at: 6s, monitor: "on"}
expect:
  - {at: 5s, pane: 0, channel: 1, moving: true}
  - {at: 7s, screen: menu.png, region: [800, 300, 320, 480], difference: 2%}
  - {call: MI_DISP_Enable, never: true}
)");
    ASSERT_TRUE(scenario);
    EXPECT_TRUE(scenario->board.plugged);
    EXPECT_FALSE(scenario->board.stepped);
    ASSERT_EQ(scenario->board.faults.size(), 1u);
    EXPECT_EQ(scenario->board.faults[0].call, "MI_VDEC_StartChn");
    ASSERT_EQ(scenario->steps.size(), 3u);
    EXPECT_EQ(scenario->steps[0].when.at_us, 2'000'000);
    EXPECT_EQ(scenario->steps[0].request.name, "press");
    EXPECT_EQ(scenario->steps[0].request.parameters, json({{"button", "menu"}}));
    ASSERT_TRUE(scenario->steps[1].when.after);
    EXPECT_EQ(scenario->steps[1].request.parameters, json({{"plug", "off"}}));
    ASSERT_EQ(scenario->expectations.size(), 3u);
    EXPECT_EQ(scenario->expectations[2].line, 10);
    EXPECT_TRUE(scenario->expectations[2].never);
    EXPECT_TRUE(scenario->needs_calls);
}

TEST(ScenarioFile, GivesARequestItsValuesAloneInOrderOrByName)
{
    const auto scenario = read("steps:\n"
                               "  - {at: 1s, click: [100, 200]}\n"
                               "  - {click: {x: 1, y: 2, times: 2}}\n"
                               "  - {clock.step: 40ms}\n"
                               "  - {clock.take: true}\n"
                               "  - {send: TERM}\n");
    ASSERT_TRUE(scenario);
    EXPECT_EQ(scenario->steps[0].request.parameters.at("y"), 200);
    EXPECT_EQ(scenario->steps[1].request.parameters.at("times"), 2);
    EXPECT_EQ(scenario->steps[2].request.parameters.at("by"), 40'000);
    EXPECT_EQ(scenario->steps[3].request.name, "clock.take");
    EXPECT_EQ(scenario->steps[4].signal, 15);
}

TEST(ScenarioFile, EveryMistakeIsToldWithItsLineAndTheNearestName)
{
    EXPECT_EQ(
        problems_of("borad: {}\n"
                    "board: {moniter: plugged, step: 2}\n"
                    "steps:\n"
                    "  - {at: 2, press: menu}\n"
                    "  - {at: 2s, pres: menu}\n"
                    "  - {at: 2s, press: menu, panel: menu}\n"
                    "  - {at: 1s, monitor: of}\n"
                    "expect:\n"
                    "  - {at: 5s, pane: 99, moving: perhaps}\n"
                    "  - {call: MI_DISP_Enabel}\n"
                    "  - {call: MI_VDEC_StartChn, with: {chanel: 1}}\n"
                    "  - {at: 1s}\n"),
        (Lines{
            R"(1: a scenario has no key "borad" (did you mean "board"?))",
            R"(2: "step" is "2", not a duration of at most a day with its unit, as 40ms, 2s or 1m)",
            R"(2: "board" has no key "moniter" (did you mean "monitor"?))",
            R"(4: "at" is "2", not a duration of at most a day with its unit, as 40ms, 2s or 1m)",
            R"(5: a step has no key "pres" (did you mean "press"?))",
            R"(6: a step does one thing; this one has "press" and "panel")",
            R"(7: monitor: "plug" is "of", not one of on, off (did you mean "off"?))",
            R"(9: "pane" is "99", not an integer from 0 to 15)",
            R"(9: "moving" is "perhaps", not true or false)",
            R"(10: there is no platform call "MI_DISP_Enabel" (did you mean "MI_DISP_Enable"?))",
            R"(11: "with" has no key "chanel" (did you mean "channel"?))",
            "12: an expectation expects nothing: it wants one of screen, pane, log, call, lamp, watchdog, "
            "decoder, memory, state, boot, starts, exit",
        }));
}

TEST(ScenarioFile, WhatIsNoTreeOfKeysIsToldAndHarmsNothing)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "1: it is empty"},
        {"just a text\n", "1: a scenario is a single value, not a group of keys"},
        {"- a\n- b\n", "1: a scenario is a list, not a group of keys"},
        {"steps: &a [*a]\n", "1: an alias lies within what it stands for"},
        {"steps: " + std::string(2000, '[') + "\n", "1: it is nested deeper than 24 levels"},
        {"name: a\nname: b\n", R"(2: the key "name" stands here twice; the first time in line 1)"},
        {"steps: 3\n", R"(1: "steps" is a single value, not a list)"},
        {"steps: [3]\n", "1: a step is a single value, not a group of keys"},
        {"expect: [~]\n", "1: an expectation is nothing, not a group of keys"},
        {"lasts: 99999999999999999999s\n",
         R"(1: "lasts" is "99999999999999999999s", not a duration of at most a day with its unit, as 40ms, 2s or 1m)"},
        {"expect: [{memory: .nan}]\n",
         R"(1: "memory" is ".nan", not a number or a bound as ">= 50" or "< 200 MB")"},
        {"expect: [{memory: nan}]\n",
         R"(1: "memory" is "nan", not a number or a bound as ">= 50" or "< 200 MB")"},
        {"? [a]\n: b\n", "1: a key is a list, not a text"},
        {"name: ${WHERE}\n", R"(1: nothing is defined as "WHERE"; give it with --define WHERE=VALUE)"},
        {std::string("name: a\0b\n", 10), "0: it has zero bytes in it: it is no text"},
        {"name: a\n---\nname: b\n", "0: it holds more than one document"},
    };
    for (const auto &[text, problem] : cases) {
        const Lines lines = problems_of(text);
        ASSERT_FALSE(lines.empty()) << text.substr(0, 60);
        EXPECT_EQ(lines[0], problem) << text.substr(0, 60);
    }
}

TEST(ScenarioFile, AliasesThatMultiplyAndFilesWithoutEndAreRefused)
{
    std::string bomb = "a: &a [x, x, x, x, x, x, x, x, x, x]\n";
    for (char level = 'b'; level < 'j'; ++level) {
        const std::string before(1, static_cast<char>(level - 1));
        bomb += std::string(1, level) + ": &" + level + " [";
        for (int i = 0; i < 10; ++i)
            bomb += (i > 0 ? ", *" : "*") + before;
        bomb += "]\n";
    }
    ASSERT_EQ(problems_of(bomb).size(), 1u);
    EXPECT_NE(problems_of(bomb)[0].find("it holds more than 20000 values"), std::string::npos);
    EXPECT_EQ(problems_of(std::string(3 << 20, '#')), Lines{"0: it is larger than 1024 KiB"});
}

/* Every file that a damaged scenario can be is read to its end; what comes of it is of no interest. */
TEST(ScenarioFile, ReadsDamagedFilesWithoutHarm)
{
    const std::string whole =
        "board: {clock: stepped, faults: [{call: MI_SYS_Init, nth: 1}]}\nsteps:\n"
        "  - {after: {log: a, within: 1s}, click: [1, 2]}\nexpect:\n"
        "  - {during: [1s, 2s], pane: 0, channel: 1}\n  - {lamp: line 3, blinks: true}\n";
    uint32_t random = 1;
    size_t refused = 0;
    for (int round = 0; round < 400; ++round) {
        std::string text = whole;
        for (int change = 0; change < 3; ++change) {
            random = random * 1664525u + 1013904223u;
            const size_t at = (random >> 8) % text.size();
            const char letter = "{}[]:,&*!|>'\"%@`-?# \n\t0a~"[(random >> 3) % 25];
            if ((random & 1) != 0)
                text[at] = letter;
            else
                text.erase(at, 1 + (random >> 20) % 5);
        }
        refused += problems_of(text).empty() ? 0 : 1;
    }
    EXPECT_GT(refused, 200u);
}

TEST(ScenarioValues, AreDurationsSharesAndBounds)
{
    EXPECT_EQ(duration_of("40ms"), 40'000);
    EXPECT_EQ(duration_of("1.5s"), 1'500'000);
    EXPECT_EQ(duration_of("2"), std::nullopt);
    EXPECT_EQ(duration_of("-1s"), std::nullopt);
    EXPECT_EQ(duration_of("1e9s"), std::nullopt);
    EXPECT_EQ(duration_text(2'040'000), "2040ms");
    EXPECT_EQ(percent_of("2 %"), 2);
    EXPECT_EQ(percent_of("101%"), std::nullopt);
    EXPECT_TRUE(comparison_of("< 200 MB")->holds(199.0 * 1024 * 1024));
    EXPECT_FALSE(comparison_of("< 200 MB")->holds(200.0 * 1024 * 1024));
    EXPECT_TRUE(comparison_of(">= 50")->holds(50));
    EXPECT_FALSE(comparison_of("!= 50")->holds(50));
    EXPECT_FALSE(comparison_of("> x"));
    EXPECT_FALSE(comparison_of("> 5 parsecs"));
}

TEST(ScenarioImages, DifferByTheShareOfTheirPixels)
{
    Image one = black_image(10, 10);
    Image other = one;
    EXPECT_EQ(difference_percent(one, other), 0);
    other.at(3, 4)[1] = 16;
    EXPECT_EQ(difference_percent(one, other), 0) << "less than is seen";
    other.at(3, 4)[1] = 17;
    other.at(5, 5)[2] = 255;
    EXPECT_EQ(difference_percent(one, other), 2);
    EXPECT_EQ(difference_percent(one, black_image(10, 11)), 100);
    const Image all = side_by_side(other, one);
    EXPECT_EQ(all.width, 3 * 10 + 2 * 8);
    EXPECT_EQ(all.at(36 + 5, 5)[0], 255) << "where they differ is red";
    EXPECT_EQ(all.at(36 + 6, 5)[0], 0);
}

} // namespace
