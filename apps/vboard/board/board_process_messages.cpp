/* board_process_messages.cpp - see board_process.h: what the agent says, and what it is told. */
#include <csignal>
#include <ctime>

#include "board/board_process_self.h"

namespace vboard_app
{
namespace
{

int64_t wall_clock_us()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}

} // namespace

uint64_t BoardProcess::Self::send(const std::string &name, const json &with)
{
    const uint64_t id = next_id++;
    outbox += packed_message({{"id", id}, {"do", name}, {"with", with}});
    return id;
}

void BoardProcess::Self::take_message(const Message &message)
{
    const json content = json::parse(message.json, nullptr, false);
    if (!content.is_object()) return;
    if (content.contains("id")) return take_answer(content, message);
    if (!content.contains("event") || !content["event"].is_string()) return;
    const std::string event = content["event"];
    const json data = content.value("data", json::object());
    if (event == "hello")
        take_hello(data);
    else
        take_event(event, data);
}

void BoardProcess::Self::take_answer(const json &content, const Message &message)
{
    if (!content["id"].is_number_unsigned()) return;
    const uint64_t id = content["id"];
    const auto answer = std::make_shared<Pending>();
    answer->done = true;
    if (content.contains("error") && content["error"].is_object()) {
        const json &error = content["error"];
        answer->error_code = error.value("code", "refused");
        answer->error_message = error.value("message", "");
        answer->error_parameter = error.value("parameter", "");
    } else {
        answer->ok = content.value("ok", json::object());
        answer->blob = message.blob;
    }

    if (id == boot_id) return take_boot_answer(*answer);
    if (id == last_state_id) {
        last_state_id = 0;
        if (answer->error_code.empty()) keep_outside(answer->ok);
        kill_deadline = Clock::now();
        return;
    }
    {
        std::lock_guard lock(mutex);
        const auto waiting = pending.find(id);
        if (waiting == pending.end()) return; // whoever asked has given up
        *waiting->second = std::move(*answer);
        pending.erase(waiting);
    }
    changed.notify_all();
}

void BoardProcess::Self::take_hello(const json &data)
{
    said_hello = true;
    if (data.value("linked", false)) return send_boot();
    end_how = Ending::How::not_linked;
    end_of_life = "\"" + options.program.front() + "\" is not linked with libvboard.so";
    kill_program();
}

json BoardProcess::Self::boot_orders()
{
    json faults = json::array();
    if (starts == 1)
        for (const BootFault &fault : options.faults)
            faults.push_back(
                {{"call", fault.call}, {"nth", fault.nth}, {"count", fault.count}, {"code", fault.code}});
    json stepped;
    if (options.stepped)
        stepped = {{"board_us", options.stepped->board_us},
                   {"wall_us", starts == 1 ? options.stepped->wall_us : wall_us}};
    if (starts == 1 && options.rtc_seconds)
        rtc = {{"seconds", *options.rtc_seconds},
               {"at_wall_us", options.stepped ? options.stepped->wall_us : wall_clock_us()}};
    return {{"boot_reason", watchdog_boot ? "watchdog" : "power"},
            {"rtc", battery ? rtc : json()},
            {"battery", battery},
            {"monitor", monitor_plugged},
            {"analog", analog},
            {"stepped", stepped},
            {"pacing", options.step_pacing ? "step" : "realtime"},
            {"faults", faults},
            {"line_buffered", options.line_buffered},
            {"follow_calls", options.follow_calls}};
}

void BoardProcess::Self::send_boot()
{
    std::lock_guard lock(mutex);
    boot_id = send("boot", boot_orders());
}

void BoardProcess::Self::take_boot_answer(const Pending &answer)
{
    boot_id = 0;
    if (!answer.error_code.empty()) {
        end_how = Ending::How::failed;
        end_of_life = "the board cannot be set up: " + answer.error_message;
        return kill_program();
    }
    {
        std::lock_guard lock(mutex);
        phase = Phase::on;
    }
    changed.notify_all();
    tell_board();
}

void BoardProcess::Self::take_event(const std::string &event, const json &data)
{
    if (event == "watchdog") {
        expired = true;
        begin_kill(Clock::now());
        return;
    }
    tell(event, data);
}

/* What is kept over a reboot, from the result of the request "state". */
void BoardProcess::Self::keep_outside(const json &state)
{
    try {
        wall_us = state.at("clock").at("wall_us");
        monitor_plugged = state.at("monitor").at("plugged").get<bool>();
        battery = state.at("rtc").at("battery").get<bool>();
        const json &seconds = state.at("rtc").at("seconds");
        rtc = seconds.is_null() ? json() : json{{"seconds", seconds}, {"at_wall_us", wall_us}};
        json inputs = json::array();
        for (const json &input : state.at("analog").at("inputs"))
            inputs.push_back(
                {{"input", input.at("input")}, {"lost", input.at("lost")}, {"moving", input.at("moving")}});
        analog = inputs;
    } catch (const json::exception &) {
        // An agent of another version: what was known before is kept.
    }
}

void BoardProcess::Self::fail_pending(const std::string &code, const std::string &message)
{
    {
        std::lock_guard lock(mutex);
        for (auto &[id, waiting] : pending) {
            waiting->error_code = code;
            waiting->error_message = message;
            waiting->done = true;
        }
        pending.clear();
        outbox.clear();
    }
    changed.notify_all();
}

void BoardProcess::Self::tell(const std::string &event, const json &data)
{
    std::lock_guard lock(listener_mutex);
    if (listener) listener(event, data);
}

void BoardProcess::Self::tell_board()
{
    tell("board", told());
}

} // namespace vboard_app
