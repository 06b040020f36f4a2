/* scenario_support.h - scenarios from texts, and a board in memory that does what a test says. For tests. */
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

#include "scenario/command.h"
#include "scenario/player.h"

namespace scenario_test
{

using namespace vboard_app;
using namespace vboard_app::scenario;
using nlohmann::json;

/* A folder of its own for each test. */
class Folder
{
public:
    Folder() : path_("/tmp/vboard-scenario-test-" + std::to_string(getpid()))
    {
        std::filesystem::create_directories(path_);
    }
    ~Folder() { std::filesystem::remove_all(path_); }

    std::string file(const std::string &name) const { return path_ + "/" + name; }

    std::string write(const std::string &name, const std::string &text) const
    {
        std::ofstream(file(name), std::ios::binary) << text;
        return file(name);
    }

private:
    const std::string path_;
};

/* "LINE: text" of everything that is wrong with a scenario's text. */
inline std::vector<std::string> problems_of(const std::string &text)
{
    const Folder folder;
    Problems problems;
    read_scenario(folder.write("some.yaml", text), {}, problems);
    std::vector<std::string> lines;
    for (const Problem &one : problems.sorted())
        lines.push_back(std::to_string(one.line) + ": " + one.text);
    return lines;
}

/* The board that the test has in its hands: its clock stands, and every step of it calls `on_step`. */
class FakeBoard final : public Board
{
public:
    json request(const std::string &name, const json &with) override
    {
        requests.push_back(name + " " + with.dump());
        if (refuses == name) throw RequestError("refused", "the board does not want to");
        if (name == "clock.step") {
            us += with.at("by").get<int64_t>();
            if (on_step) on_step(us);
        }
        if (name == "board") return {{"starts", 1}, {"boot_reason", "power"}, {"power", "on"}};
        if (name != "state") return json::object();
        json told = state;
        told["clock"] = {{"us", us + 5'000'000}, {"wall_us", us + 77'000'000}, {"taken", true}};
        return told;
    }
    Picture picture(const int *, bool) override
    {
        Picture gray;
        gray.width = gray.height = 16;
        gray.bytes.assign(16 * 16 * 3 / 2, 128);
        std::fill_n(gray.bytes.begin(), 256, luma);
        return gray;
    }
    void listen(Listener) override {}

    int64_t us = 0;
    uint8_t luma = 16;
    json state = json::object();
    std::string refuses;
    std::function<void(int64_t us)> on_step;
    std::vector<std::string> requests;
};

class FakeSession final : public Session
{
public:
    explicit FakeSession(FakeBoard &board) : board_(board) {}
    Board &board() override { return board_; }
    std::optional<ProgramEnd> ended() override
    {
        return end ? end : signalled && ends ? ended_well() : std::nullopt;
    }
    void send_signal(int) override { signalled = true; }
    void stop() override {}
    std::vector<std::string> take_log() override { return std::exchange(log, {}); }
    std::vector<Call> take_calls(uint64_t &) override { return std::exchange(calls, {}); }

    std::optional<ProgramEnd> end;
    bool signalled = false, ends = true;
    std::vector<std::string> log;
    std::vector<Call> calls;

private:
    static std::optional<ProgramEnd> ended_well()
    {
        ProgramEnd well;
        well.status = 0;
        return well;
    }
    FakeBoard &board_;
};

/* Plays a text on such a board. `set_up` has the session before the first look. */
class Playing
{
public:
    Outcome play(const std::string &text, const std::function<void(FakeSession &)> &set_up = {})
    {
        Problems problems;
        auto scenario = read_scenario(folder.write("some.yaml", text), {}, problems);
        for (const Problem &one : problems.sorted())
            ADD_FAILURE() << one.line << ": " << one.text;
        if (!scenario) return {};
        PlayOrders orders;
        orders.output_folder = folder.file("out");
        orders.end_patience = std::chrono::milliseconds(300);
        const Launcher launcher = [&](const Scenario &) {
            auto session = std::make_unique<FakeSession>(board);
            if (set_up) set_up(*session);
            return session;
        };
        return scenario::play(*scenario, launcher, orders);
    }

    const Folder folder;
    FakeBoard board;
};

} // namespace scenario_test
