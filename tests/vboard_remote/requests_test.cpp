/* requests_test.cpp - every request of the description that is the board's, and those of the host alone. */
#include "driven.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <unistd.h>

namespace
{

json description()
{
    return json::parse(std::ifstream(DESCRIPTION));
}

std::string scratch_file(const std::string &name)
{
    return (std::filesystem::temp_directory_path() / ("remote_" + std::to_string(getpid()) + "_" + name))
        .string();
}

// In this order they are all carried out by a board that the program has set up.
std::vector<std::pair<std::string, json>> sound_requests()
{
    return {{"state", json::object()},
            {"press", {{"button", "menu"}}},
            {"hold", {{"button", "up"}}},
            {"release", json::object()},
            {"ir", {{"code", 4294967295u}, {"state", 1}}},
            {"panel", {{"key", "menu"}}},
            {"mouse", {{"x", -3}, {"y", 4}, {"buttons", 7}, {"wheel", -100}}},
            {"click", {{"x", 10}, {"y", 20}, {"button", "right"}, {"times", 2}}},
            {"monitor", {{"plug", "off"}}},
            {"analog", {{"input", 15}, {"lost", true}, {"moving", 4294967295u}}},
            {"rtc", {{"seconds", 253402300799}}},
            {"fault", {{"call", "MI_VDEC_StartChn"}, {"nth", 2}, {"count", 0}, {"code", -2147483648}}},
            {"fault.clear", {{"call", "MI_VDEC_StartChn"}}},
            {"fault.calls", json::object()},
            {"loud", {{"on", false}}},
            {"trace.start", {{"file", scratch_file("trace.txt")}}},
            {"trace.stop", json::object()},
            {"gpio.changes", {{"first", 0}}},
            {"audio.level", {{"device", 3}, {"window", 10}}},
            {"audio.record", {{"file", scratch_file("sound.wav")}, {"device", 3}}},
            {"audio.close", {{"device", 3}}},
            {"mark", {{"device", 0}}},
            {"wait.idle", {{"channel", 0}, {"timeout", 1000}}},
            {"wait.taken", {{"ports", 65535}, {"pictures", 0}}},
            {"wait.events", json::object()},
            {"wait.quiet", json::object()},
            {"wait.played", {{"device", 3}}},
            {"pacing", {{"mode", "step"}}},
            {"wait.queued", {{"ports", 1}, {"pictures", 0}}},
            {"clock.picture", json::object()},
            {"clock.take", json::object()},
            {"clock.step", {{"by", 3153600000000000}}},
            {"wait.sleepers", {{"count", 0}}},
            {"clock.release", json::object()}};
}

// The names of "{a, b: about it, c}", at the outermost level.
std::set<std::string> fields_in(const std::string &record)
{
    std::set<std::string> names;
    std::string name;
    int depth = 0;
    bool in_name = true;
    for (const char letter : record) {
        if (letter == '}' && --depth == 0) break;
        if (letter == '{' && ++depth == 1) continue;
        if (depth != 1) continue;
        if (letter == ',' || letter == ':') {
            if (in_name && !name.empty()) names.insert(name);
            name.clear();
            in_name = letter == ',';
        } else if (in_name && letter != ' ') {
            name += letter;
        }
    }
    if (in_name && !name.empty()) names.insert(name);
    names.erase("pixels"); // the unit of the two before it
    return names;
}

std::set<std::string> keys_of(const json &object)
{
    std::set<std::string> keys;
    for (const auto &[key, value] : object.items())
        keys.insert(key);
    return keys;
}

class Requests : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::string made = program.tell("setup");
        ASSERT_EQ(made, "0 0 0");
    }

    json ok(const std::string &name, const json &with = json::object())
    {
        const json answer = program.ask(name, with);
        EXPECT_TRUE(answer.is_object() && answer.contains("ok")) << name << ": " << answer;
        return answer.is_object() ? answer.value("ok", json::object()) : json::object();
    }
    json refused(const std::string &name, const json &with = json::object())
    {
        const json answer = program.ask(name, with);
        EXPECT_TRUE(answer.is_object() && answer.contains("error")) << name << ": " << answer;
        return answer.is_object() ? answer.value("error", json::object()) : json::object();
    }
    json state() { return ok("state"); }

    Driven program;
};

} // namespace

TEST_F(Requests, EachOfTheDescriptionIsCarriedOut)
{
    std::set<std::string> done;
    const json api = description();
    std::map<std::string, json> described;
    for (const json &request : api["requests"])
        if (request["at"] == "board") described[request["name"]] = request;
    for (const auto &[name, with] : sound_requests()) {
        if (name == "wait.expired") continue;
        const json result = ok(name, with);
        const std::set<std::string> promised = keys_of(described[name].value("result", json::object()));
        EXPECT_EQ(keys_of(result), promised) << name;
        done.insert(name);
    }
    done.insert("wait.expired"); // Requests.TheWatchdogsExpiryIsWaitedForAndTold
    for (const auto &[name, request] : described)
        EXPECT_TRUE(done.contains(name)) << name;
    std::filesystem::remove(scratch_file("trace.txt"));
    std::filesystem::remove(scratch_file("sound.wav"));
}

TEST_F(Requests, TheStateHoldsWhatTheDescriptionSays)
{
    ok("fault", {{"call", "board_open"}, {"nth", 3}});
    program.tell("open /dev/KeyBoard");
    json described;
    const json api = description();
    for (const json &request : api["requests"])
        if (request["name"] == "state") described = request["result"];
    const json now = state();
    EXPECT_EQ(keys_of(now), keys_of(described));
    for (const auto &[name, value] : now.items()) {
        const std::string about = described[name];
        const size_t open = about.find('{');
        if (open == std::string::npos) continue;
        const json record = value.is_array() ? (value.empty() ? json() : value[0]) : value;
        if (record.is_object()) {
            EXPECT_EQ(keys_of(record), fields_in(about.substr(open))) << name;
        }
    }
    EXPECT_EQ(now["decoders"].size(), 1u);
    EXPECT_EQ(now["decoders"][0]["codec"], "h264");
    EXPECT_EQ(now["audio"].size(), 1u);
    EXPECT_EQ(now["audio"][0]["device"], 3);
    EXPECT_EQ(now["nodes"][0]["path"], "/dev/KeyBoard");
    EXPECT_EQ(now["faults"]["list"][0]["call"], "board_open");
    EXPECT_EQ(now["faults"]["list"][0]["seen"], 1);
    EXPECT_EQ(now["analog"]["inputs"].size(), 16u);
    EXPECT_GT(now["memory_kb"], 1000);
}

TEST_F(Requests, WhatIsSetIsInTheState)
{
    ok("monitor", {{"plug", "off"}});
    EXPECT_EQ(state()["monitor"]["plugged"], false);
    ok("monitor", {{"plug", "on"}});
    EXPECT_EQ(state()["monitor"]["plugged"], true);
    ok("analog", {{"input", 5}, {"lost", true}});
    ok("analog", {{"input", 5}, {"moving", 9}});
    const json input = state()["analog"]["inputs"][5];
    EXPECT_EQ(input["lost"], true);
    EXPECT_EQ(input["moving"], 9);
    ok("clock.take");
    ok("rtc", {{"seconds", 1000000000}});
    EXPECT_EQ(state()["rtc"]["seconds"], 1000000000);
    ok("clock.step", {{"by", 5000000}});
    EXPECT_EQ(state()["rtc"]["seconds"], 1000000005);
    ok("rtc", {{"battery", "fail"}});
    EXPECT_EQ(state()["rtc"], (json{{"seconds", nullptr}, {"battery", false}}));
    const std::string file = scratch_file("state_trace.txt");
    ok("trace.start", {{"file", file}});
    EXPECT_EQ(state()["trace"], file);
    program.tell("node /dev/rtc0");
    ok("trace.stop");
    EXPECT_EQ(state()["trace"], nullptr);
    std::string line;
    std::getline(std::ifstream(file), line);
    EXPECT_NE(line.find("board_open \"/dev/rtc0\" 2 = 10"), std::string::npos) << line;
    EXPECT_NE(line.find(" ; thread 1, "), std::string::npos) << line;
    EXPECT_EQ(line.substr(line.size() - 3), " us");
    std::filesystem::remove(file);
}

TEST_F(Requests, AFaultMakesTheProgramsCallFail)
{
    ok("fault", {{"call", "board_open"}, {"code", -7}});
    EXPECT_EQ(program.tell("node /dev/rtc0").substr(0, 2), "-7");
    EXPECT_EQ(state()["faults"]["list"][0]["fired"], 1);
    ok("fault", {{"call", "board_open"}, {"count", 0}, {"code", -8}});
    EXPECT_EQ(program.tell("node /dev/rtc0").substr(0, 2), "-8");
    EXPECT_EQ(program.tell("node /dev/rtc0").substr(0, 2), "-8");
    ok("fault.clear");
    EXPECT_NE(program.tell("node /dev/rtc0").front(), '-');
    const json names = ok("fault.calls")["calls"];
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_NE(std::find(names.begin(), names.end(), "MI_VDEC_StartChn"), names.end());
}

TEST_F(Requests, TheBoardsOwnWordsSayWhyItRefuses)
{
    json error = refused("press", {{"button", "menuu"}});
    EXPECT_EQ(error["code"], "refused");
    EXPECT_NE(error["message"].get<std::string>().find("did you mean \"menu\"?"), std::string::npos);
    error = refused("hold", {{"button", "menuu"}});
    EXPECT_NE(error["message"].get<std::string>().find("did you mean \"menu\"?"), std::string::npos);
    error = refused("fault", {{"call", "MI_NOTHING"}});
    EXPECT_NE(error["message"].get<std::string>().find("MI_NOTHING"), std::string::npos);
    EXPECT_EQ(refused("fault.clear", {{"call", "MI_NOTHING"}})["code"], "refused");
    EXPECT_EQ(refused("clock.step", {{"by", 1}})["code"], "refused"); // it runs
    EXPECT_EQ(refused("clock.picture")["code"], "refused");           // not in step pacing
    EXPECT_EQ(refused("wait.idle", {{"channel", 9}})["code"], "refused");
    EXPECT_EQ(refused("audio.level", {{"device", 4}})["code"], "refused");
    EXPECT_EQ(refused("trace.start", {{"file", "/nonexistent/trace"}})["code"], "refused");
    EXPECT_EQ(refused("trace.start", {{"file", "trace"}})["code"], "bad_parameter");
}

TEST_F(Requests, WhatDoesNotComeInTimeIsTold)
{
    EXPECT_EQ(refused("wait.taken", {{"ports", 1}, {"pictures", 1}, {"timeout", 50}})["code"], "timed_out");
    EXPECT_EQ(refused("wait.expired", {{"timeout", 0}})["code"], "timed_out");
    EXPECT_EQ(refused("wait.sleepers", {{"count", 1}, {"timeout", 50}})["code"], "timed_out");
}

TEST_F(Requests, WaitingHoldsNobodyUp)
{
    std::vector<uint64_t> waiting;
    for (int i = 0; i < 40; ++i)
        waiting.push_back(program.send("wait.expired", {{"timeout", 600000}}));
    state();
    int busy = 0;
    for (int i = 32; i < 40; ++i)
        if (program.answer(waiting[static_cast<size_t>(i)])["error"]["code"] == "busy") ++busy;
    EXPECT_EQ(busy, 8); // 32 at a time
    state();
    EXPECT_EQ(program.tell("environment"), "- -");
}

TEST_F(Requests, TheWatchdogsExpiryIsWaitedForAndTold)
{
    ok("clock.take");
    const std::string watchdog = program.tell("open /dev/watchdog");
    EXPECT_EQ(program.tell("ioctl seconds " + watchdog + " 2"), "0");
    EXPECT_EQ(program.tell("ioctl enable " + watchdog), "0");
    const uint64_t waiting = program.send("wait.expired");
    const int64_t now_us = ok("clock.step", {{"by", 1999999}})["us"];
    EXPECT_EQ(state()["watchdog"]["expired"], false);
    EXPECT_EQ(state()["watchdog"]["remaining_us"], 1);
    ok("clock.step", {{"by", 1}});
    EXPECT_TRUE(program.answer(waiting).contains("ok"));
    EXPECT_EQ(program.event("watchdog"), (json{{"expired_at_us", now_us + 1}}));
}

TEST_F(Requests, PicturesComeBehindTheAnswer)
{
    const json monitor = ok("picture");
    EXPECT_EQ(monitor, (json{{"width", 1920}, {"height", 1080}, {"blank", true}}));
    ASSERT_EQ(program.blob.size(), 1920u * 1080 * 3 / 2);
    EXPECT_EQ(program.blob[0], 16);
    EXPECT_EQ(program.blob.back(), 128);
    EXPECT_EQ(ok("picture", {{"device", 1}, {"settled", true}})["blank"], false);
    EXPECT_EQ(refused("picture", {{"device", 3}})["code"], "bad_parameter");
}

TEST_F(Requests, CallsAndRefusalsAreToldWhileSomebodyAsks)
{
    ok("loud", {{"on", false}});
    ok("calls.follow", {{"on", true}});
    ok("refusals.follow", {{"on", true}});
    program.tell("node /dev/nothing");
    const json calls = program.event("calls");
    ASSERT_EQ(calls["calls"].size(), 1u);
    const json &call = calls["calls"][0];
    EXPECT_EQ(call["name"], "board_open");
    EXPECT_EQ(call["arguments"], "\"/dev/nothing\" 2");
    EXPECT_EQ(call["result"], "-1");
    EXPECT_EQ(call["failed"], true);
    EXPECT_EQ(call["thread"], 1);
    EXPECT_GE(call["duration_us"], 0);
    EXPECT_EQ(call["text"], std::to_string(call["time_us"].get<int64_t>()) +
                                " board_open \"/dev/nothing\" 2 = -1 ; thread 1, " +
                                std::to_string(call["duration_us"].get<int64_t>()) + " us");
    EXPECT_EQ(calls["lost"], 0);
    EXPECT_EQ(program.event("refusal")["text"], "board_open: this board has no device node \"/dev/nothing\"");
    ok("calls.follow", {{"on", false}});
    ok("refusals.follow", {{"on", false}});
    program.tell("node /dev/nothing");
    state();
    EXPECT_EQ(program.event("calls", 200), nullptr);
    EXPECT_EQ(program.event("refusal", 0), nullptr);
}

TEST_F(Requests, ABurstOfCallsLosesSomeAndHoldsNobodyUp)
{
    ok("loud", {{"on", false}});
    ok("calls.follow", {{"on", true}});
    // The channel is not read meanwhile: its buffer, and then the agent's, are full soon.
    program.tell("calls 100000");
    uint64_t told = 0, lost = 0;
    while (told + lost < 100000) {
        const json calls = program.event("calls", 2000);
        if (calls.is_null()) break;
        told += calls["calls"].size();
        lost += calls["lost"].get<uint64_t>();
    }
    EXPECT_EQ(told + lost, 100000u);
    EXPECT_GE(told, 4096u);
    EXPECT_GT(lost, 0u);
}
