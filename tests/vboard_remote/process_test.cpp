/* process_test.cpp - the program with the agent in it as a process: its start, children, and ends. */
#include "driven.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <unistd.h>

namespace
{

Driven::How not_booted()
{
    Driven::How how;
    how.boot = false;
    return how;
}

} // namespace

TEST(Boot, HoldsBeforeTheProgramBegins)
{
    Driven program(not_booted());
    const json hello = program.read_message().content;
    EXPECT_EQ(hello["event"], "hello");
    EXPECT_EQ(hello["data"]["linked"], true);
    EXPECT_EQ(hello["data"]["pid"], program.pid());
    EXPECT_EQ(program.ask("state")["error"]["code"], "refused"); // not yet
    const json answer =
        program.ask("boot", {{"boot_reason", "watchdog"},
                             {"rtc", {{"seconds", 1000000000}, {"at_wall_us", 5000000}}},
                             {"battery", true},
                             {"monitor", false},
                             {"analog", {{{"input", 3}, {"lost", true}, {"moving", 4}}}},
                             {"stepped", {{"board_us", 7000000}, {"wall_us", 8000000}}},
                             {"pacing", "step"},
                             {"faults", {{{"call", "board_open"}, {"nth", 1}, {"count", 1}, {"code", -9}}}},
                             {"line_buffered", true}});
    EXPECT_TRUE(answer.contains("ok")) << answer;
    EXPECT_EQ(program.read_line(), "ready");
    const json state = program.ask("state")["ok"];
    EXPECT_EQ(state["watchdog"]["boot_reason"], "watchdog");
    EXPECT_EQ(state["rtc"]["seconds"], 1000000003);
    EXPECT_EQ(state["monitor"]["plugged"], false);
    EXPECT_EQ(state["analog"]["inputs"][3]["lost"], true);
    EXPECT_EQ(state["analog"]["inputs"][3]["moving"], 4);
    EXPECT_EQ(state["clock"], (json{{"us", 7000000}, {"wall_us", 8000000}, {"taken", true}}));
    EXPECT_EQ(program.tell("clock"), "7000000 8000000");
    EXPECT_EQ(program.tell("node /dev/rtc0").substr(0, 2), "-9");
    EXPECT_EQ(program.ask("clock.picture")["ok"]["ports"], 0);  // step pacing
    EXPECT_EQ(program.ask("boot")["error"]["code"], "refused"); // once
}

TEST(Boot, OrdersThatCannotBeCarriedOutAreToldAndTheProgramBegins)
{
    Driven program(not_booted());
    program.read_message();
    const json error = program.ask("boot", {{"boot_reason", "hunger"}})["error"];
    EXPECT_EQ(error["code"], "bad_parameter");
    EXPECT_EQ(error["parameter"], "boot_reason");
    EXPECT_EQ(program.read_line(), "ready");
}

TEST(Process, ChildrenInheritNothing)
{
    Driven::How how;
    how.environment = {"KEPT=yes"};
    Driven program(how);
    EXPECT_EQ(program.tell("environment"), "- -");
    program.say("system env; echo end; ls /proc/self/fd; echo end");
    bool kept = false;
    for (std::string line = program.read_line(); line != "end"; line = program.read_line()) {
        ASSERT_NE(line.front(), '(');
        EXPECT_EQ(line.find("LD_PRELOAD"), std::string::npos) << line;
        EXPECT_EQ(line.find("VBOARD"), std::string::npos) << line;
        kept = kept || line == "KEPT=yes";
    }
    EXPECT_TRUE(kept);
    std::string descriptors;
    for (std::string line = program.read_line(); line != "end"; line = program.read_line())
        descriptors += line + " ";
    EXPECT_EQ(descriptors, "0 1 2 3 "); // 3 is the folder that ls reads
    EXPECT_EQ(program.read_line(), "0");
}

TEST(Process, WhatElseWasPreloadedIsLeftToTheChildren)
{
    Driven::How how;
    how.preload_more = ":libdl.so.2 libm.so.6";
    Driven program(how);
    EXPECT_EQ(program.tell("environment"), "libdl.so.2:libm.so.6 -");
}

TEST(Process, APreloadedAgentThatNobodyAskedForTouchesNothing)
{
    Driven::How how;
    how.remote = false;
    how.environment = {"LD_PRELOAD=" AGENT_LIBRARY};
    Driven program(how);
    EXPECT_EQ(program.tell("environment"), AGENT_LIBRARY " -");
    EXPECT_EQ(threads_of(program.pid()).size(), 1u);
    EXPECT_EQ(descriptors_of(program.pid()), (std::vector<std::string>{"0", "1", "2"}));
    EXPECT_EQ(program.tell("open /dev/KeyBoard"), "-1 ENOENT"); // the PC has none, and the board is not asked
}

TEST(Process, ABoardThatNobodyAskedToBeRemoteCostsNothing)
{
    Driven::How alone;
    alone.remote = false;
    Driven quiet(alone), led;
    // Both have been through the same.
    EXPECT_EQ(quiet.tell("setup"), led.tell("setup"));
    EXPECT_EQ(descriptors_of(quiet.pid()), (std::vector<std::string>{"0", "1", "2"}));
    EXPECT_EQ(descriptors_of(led.pid()).size(), 4u); // its channel
    const size_t threads = threads_of(quiet.pid()).size();
    EXPECT_EQ(threads, 2u); // its own, and that of its decoder
    EXPECT_EQ(threads_of(led.pid()).size(), threads + 3);
    EXPECT_EQ(quiet.tell("open /dev/mouse"), "-1 ENOENT"); // the PC has none, and the board is not asked

    Driven::How asks;
    asks.remote = false;
    asks.environment = {"VBOARD_REMOTE_FD=0"}; // libvboard reads no variable
    Driven ignorant(asks);
    EXPECT_EQ(ignorant.tell("environment"), "- 0");
    EXPECT_EQ(ignorant.tell("setup"), "0 0 0");
    EXPECT_EQ(threads_of(ignorant.pid()).size(), threads);
}

TEST(Process, AProgramWithoutTheBoardIsTold)
{
    Driven::How how = not_booted();
    how.command = {UNLINKED_PROGRAM};
    Driven program(how);
    const json hello = program.read_message().content;
    EXPECT_EQ(hello["data"]["linked"], false);
    EXPECT_EQ(threads_of(program.pid()).size(), 1u); // it waits to be ended, and has not begun
    program.close_channel();
    EXPECT_EQ(program.read_line(), "ready"); // nobody is there any more: it runs as ever
    EXPECT_EQ(program.wait(), 3);
}

TEST(Process, AWrongDescriptorIsNoChannel)
{
    for (const char *descriptor : {"0", "nonsense", "-1", "99", "999999999999999999999", "1048575"}) {
        Driven::How how = not_booted();
        how.descriptor = descriptor;
        Driven program(how);
        EXPECT_EQ(program.read_line(), "ready") << descriptor;
        EXPECT_EQ(program.tell("environment"), "- -");
        EXPECT_EQ(threads_of(program.pid()).size(), 1u);
    }
}

TEST(Process, GoesOnWhenTheOtherEndIsGone)
{
    Driven program;
    EXPECT_EQ(program.tell("setup"), "0 0 0");
    program.ask("calls.follow", {{"on", true}});
    program.send("wait.expired", {{"timeout", 600000}});
    program.close_channel();
    for (int i = 0; i < 100; ++i)
        EXPECT_NE(program.tell("node /dev/rtc0").front(), '-');
    EXPECT_EQ(program.tell("exit 5"), "(end)");
    EXPECT_EQ(program.wait(), 5);
}

TEST(Process, GoesOnWhenItIsLeftBeforeItBegins)
{
    Driven program(not_booted());
    program.close_channel();
    EXPECT_EQ(program.read_line(), "ready");
    EXPECT_EQ(program.tell("setup"), "0 0 0");
}

TEST(Process, EndsWithItsOwnStatusAndItsLastCallsAreTold)
{
    Driven program;
    program.ask("calls.follow", {{"on", true}});
    program.say("node /dev/rtc0");
    program.say("exit 42");
    const json calls = program.event("calls");
    ASSERT_TRUE(calls.is_object());
    EXPECT_EQ(calls["calls"][0]["name"], "board_open");
    EXPECT_EQ(program.read_message().content, nullptr);
    EXPECT_EQ(program.wait(), 42);
}
