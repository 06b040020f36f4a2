/* board_session.cpp - see board_session.h. */
#include "scenario/board_session.h"

#include <mutex>

#include "board/board_process.h"
#include "trace/call_line.h"

namespace vboard_app::scenario
{
namespace
{

using nlohmann::json;
using namespace std::chrono_literals;

constexpr auto kBootPatience = 20s;
constexpr int64_t kBoardBegins_us = 1'000'000; // the clock that a stepped program finds; 0 looks like "never"

/* Members of records stand beside their record: "stream" and "stream.length". */
void add_arguments(Call &call, const CallLine &line)
{
    for (const CallField &argument : line.arguments) {
        call.arguments.emplace_back(argument.name, argument.text);
        for (const CallField &member : line.members(argument))
            call.arguments.emplace_back(std::string(argument.name) + "." + std::string(member.name),
                                        member.text);
    }
}

std::optional<Call> call_of(const std::string &text)
{
    CallLine line;
    if (!parse_call(text, line).empty() || line.event) return {};
    Call call;
    call.at_us = line.time_us;
    call.name = line.name;
    if (line.channel) call.channel = static_cast<int>(*line.channel);
    call.failed = line.failed;
    call.result = line.result;
    add_arguments(call, line);
    return call;
}

class BoardSession final : public Session
{
public:
    BoardSession(const Scenario &scenario, std::vector<std::string> program)
        : process_(options_of(scenario, std::move(program)))
    {
        process_.listen([this](const std::string &event, const json &data) { take_event(event, data); });
        try {
            process_.start();
        } catch (const StartError &error) {
            throw LaunchError(error.what());
        }
        if (process_.wait_booted(kBootPatience)) return;
        const auto ending = process_.wait_ended(0ms);
        throw LaunchError(ending && !ending->message.empty() ? ending->message
                                                             : "the program does not begin");
    }

    ~BoardSession() override
    {
        process_.stop();
        process_.listen({});
    }

    Board &board() override { return process_; }

    std::optional<ProgramEnd> ended() override
    {
        const auto ending = process_.wait_ended(0ms);
        if (!ending) return {};
        ProgramEnd end;
        if (ending->how == Ending::How::exited)
            end.status = ending->status;
        else if (ending->how == Ending::How::signalled)
            end.signal = ending->status;
        else
            end.status = ending->exit_status();
        return end;
    }

    void send_signal(int signal) override { process_.send_signal(signal); }
    void stop() override { process_.stop(); }

    std::vector<std::string> take_log() override
    {
        const std::scoped_lock guard(mutex_);
        return std::move(log_);
    }

    std::vector<Call> take_calls(uint64_t &lost) override
    {
        try {
            process_.request("calls.follow",
                             {{"on", true}}); // those that wait to be sent come before the answer
        } catch (const RequestError &) {
            // The program has ended, or is started again.
        }
        const std::scoped_lock guard(mutex_);
        lost += calls_lost_;
        calls_lost_ = 0;
        return std::move(calls_);
    }

private:
    BoardOptions options_of(const Scenario &scenario, std::vector<std::string> program)
    {
        const BoardStart &start = scenario.board;
        BoardOptions options;
        options.program = std::move(program);
        options.program.insert(options.program.end(), scenario.arguments.begin(), scenario.arguments.end());
        options.line_buffered = true;
        options.output = [this](bool, const std::string &line) {
            const std::scoped_lock guard(mutex_);
            log_.push_back(line);
        };
        options.monitor_plugged = start.plugged;
        if (start.stepped) options.stepped = SteppedBoot{kBoardBegins_us, start.wall_us};
        options.step_pacing = start.step_pacing;
        options.faults = start.faults;
        options.rtc_seconds = start.rtc_seconds;
        options.rtc_battery = start.rtc_battery;
        options.analog = start.analog;
        options.follow_calls = scenario.needs_calls;
        return options;
    }

    void take_event(const std::string &event, const json &data)
    {
        if (event != "calls") return;
        const std::scoped_lock guard(mutex_);
        calls_lost_ += data.value("lost", uint64_t{0});
        for (const json &told : data.value("calls", json::array()))
            if (auto call = call_of(told.value("text", ""))) calls_.push_back(std::move(*call));
    }

    std::mutex mutex_; // guards what follows
    std::vector<std::string> log_;
    std::vector<Call> calls_;
    uint64_t calls_lost_ = 0;

    BoardProcess process_; // last: it calls back until it is gone
};

} // namespace

Launcher board_launcher(std::vector<std::string> program)
{
    return [program = std::move(program)](const Scenario &scenario) -> std::unique_ptr<Session> {
        return std::make_unique<BoardSession>(scenario, program);
    };
}

} // namespace vboard_app::scenario
