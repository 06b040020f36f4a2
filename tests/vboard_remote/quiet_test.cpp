/* quiet_test.cpp - a program is quiet when all its threads wait. */
#include "driven.h"

#include <gtest/gtest.h>

#include <chrono>

namespace
{

using Steady = std::chrono::steady_clock;

bool is_quiet(Driven &program, int timeout_ms)
{
    return program.ask("wait.quiet", {{"timeout", timeout_ms}}).contains("ok");
}

} // namespace

TEST(Quiet, WhileItWaitsForItsInput)
{
    Driven program;
    EXPECT_TRUE(is_quiet(program, 5000));
}

TEST(Quiet, NotWhileItWorks)
{
    Driven program;
    const Steady::time_point began = Steady::now();
    program.say("spin 600");
    while (is_quiet(program, 0)) { // until it has begun
    }
    EXPECT_FALSE(is_quiet(program, 50));
    EXPECT_TRUE(is_quiet(program, 5000));
    EXPECT_GE(Steady::now() - began, std::chrono::milliseconds(600));
    EXPECT_EQ(program.read_line(), "spun");
}

TEST(Quiet, AfterAStepAllThatItWokeHasBeenDone)
{
    Driven program;
    program.ask("clock.take");
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(program.tell("sleep 20000"), "0");
        program.ask("wait.sleepers", {{"count", 1}});
        program.ask("clock.step", {{"by", 20000}});
        ASSERT_TRUE(is_quiet(program, 5000));
        // What the thread printed is there already: asking for more would find the answer to the next line.
        program.say("clock");
        EXPECT_EQ(program.read_line(), "slept");
        program.read_line();
    }
}

TEST(Quiet, IsFoundOutQuickly)
{
    Driven program;
    program.ask("clock.take");
    program.tell("setup");
    constexpr int kRounds = 200;
    const Steady::time_point began = Steady::now();
    for (int i = 0; i < kRounds; ++i)
        ASSERT_TRUE(is_quiet(program, 5000));
    const double each_ms = std::chrono::duration<double, std::milli>(Steady::now() - began).count() / kRounds;
    RecordProperty("ms", std::to_string(each_ms));
    printf("%.3f ms each\n", each_ms);
}
