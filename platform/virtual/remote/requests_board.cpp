/*
 * requests_board.cpp - requests of what stands around the board: monitor, analog cables, clock chip; of
 * faults and traces; and "boot", which sets all that up before the program begins.
 */
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <mutex>

#include "board_functions.h"
#include "requests.h"

namespace vboard_remote
{
namespace
{

using nlohmann::json;

constexpr int64_t kLastSecond = 253402300799; // of the year 9999
constexpr int64_t kSecond_us = 1000000;
constexpr int64_t kLatest_us = int64_t{1000} * 365 * 86400 * kSecond_us; // a thousand years

struct Trace {
    std::mutex mutex;
    std::string file;
};

Trace &trace()
{
    static auto *state = new Trace;
    return *state;
}

Answer monitor(const Parameters &with, Context &)
{
    if (with.one_of("plug", {"on", "off"}) == 0)
        vboard_monitor_plug();
    else
        vboard_monitor_unplug();
    return {};
}

Answer analog(const Parameters &with, Context &)
{
    const auto input = static_cast<uint32_t>(with.integer("input", 0, VBOARD_AD_CHANNELS - 1));
    const bool lost = with.boolean_or("lost", false);
    const uint32_t moving = with.has("moving") ? with.word("moving") : 0;
    if (with.has("lost")) checked([&] { return vboard_ad_set_loss(input, lost ? 1 : 0); });
    if (with.has("moving")) checked([&] { return vboard_ad_set_motion(input, moving); });
    return {};
}

Answer rtc(const Parameters &with, Context &)
{
    const bool fails = with.has("battery") && with.one_of("battery", {"fail"}) == 0;
    if (with.has("seconds")) vboard_rtc_set(with.integer("seconds", 0, kLastSecond));
    if (fails) vboard_rtc_fail_battery();
    return {};
}

Answer set_fault(const Parameters &with, Context &)
{
    const std::string call = with.text("call");
    const auto nth = static_cast<uint32_t>(with.integer_or("nth", 1, UINT32_MAX, 1));
    const auto count = static_cast<uint32_t>(with.integer_or("count", 0, UINT32_MAX, 1));
    const auto code = static_cast<int32_t>(with.integer_or("code", INT32_MIN, INT32_MAX, -1));
    checked([&] { return vboard_fault_set(call.c_str(), nth, count, code); });
    return {};
}

Answer clear_fault(const Parameters &with, Context &)
{
    const std::string call = with.has("call") ? with.text("call") : "";
    checked([&] {
        vboard_fault_clear(with.has("call") ? call.c_str() : nullptr);
        return own_refusal().empty() ? 0 : -1;
    });
    return {};
}

Answer fault_calls(const Parameters &, Context &)
{
    std::vector<const char *> names(vboard_call_names(nullptr, 0));
    names.resize(std::min(names.size(), vboard_call_names(names.data(), names.size())));
    std::sort(names.begin(), names.end(), [](const char *a, const char *b) { return strcmp(a, b) < 0; });
    return {{{"calls", names}}, {}};
}

Answer loud(const Parameters &with, Context &)
{
    vboard_set_loud(with.boolean("on") ? 1 : 0);
    return {};
}

Answer start_trace(const Parameters &with, Context &)
{
    const std::string file = with.file();
    const std::lock_guard guard(trace().mutex);
    checked([&] { return vboard_trace_start_timed(file.c_str()); });
    trace().file = file;
    return {{{"file", file}}, {}};
}

Answer stop_trace(const Parameters &, Context &)
{
    const std::lock_guard guard(trace().mutex);
    vboard_trace_stop();
    trace().file.clear();
    return {};
}

Answer record_sound(const Parameters &with, Context &)
{
    const std::string file = with.file();
    const uint32_t device = with.audio_device();
    checked([&] { return vboard_audio_open_wav(device, file.c_str()); });
    return {};
}

Answer close_sound(const Parameters &with, Context &)
{
    const uint32_t device = with.audio_device();
    checked([&] { return vboard_audio_close(device); });
    return {};
}

// The clock chip went on while the program was not there. A part of a second is lost; it never goes back.
void set_rtc(const Parameters &then)
{
    const int64_t seconds = then.integer("seconds", 0, kLastSecond);
    const int64_t passed_us = vboard_clock_wall_us() - then.integer("at_wall_us", 0, kLatest_us);
    vboard_rtc_set(seconds + std::max<int64_t>(0, passed_us + kSecond_us - 1) / kSecond_us);
}

Answer boot(const Parameters &with, Context &context)
{
    if (with.has("line_buffered") && with.boolean("line_buffered")) setvbuf(stdout, nullptr, _IOLBF, 0);
    if (with.has("stepped")) {
        const json times = with.object("stepped");
        const Parameters stepped(times);
        const int64_t board_us = stepped.integer("board_us", 0, kLatest_us);
        const int64_t wall_us = stepped.integer("wall_us", 0, kLatest_us);
        checked([&] { return vboard_clock_take_at(board_us, wall_us); });
    }
    if (with.has("boot_reason"))
        checked([&] {
            return vboard_watchdog_set_boot_reason(
                static_cast<uint32_t>(with.one_of("boot_reason", {"power", "watchdog"})));
        });
    if (with.has("rtc")) {
        const json then = with.object("rtc");
        set_rtc(Parameters(then));
    }
    if (!with.boolean_or("battery", true)) vboard_rtc_fail_battery();
    if (!with.boolean_or("monitor", true)) vboard_monitor_unplug();
    for (const json &input : with.list("analog"))
        if (input.is_object()) analog(Parameters(input), context);
    if (with.has("pacing")) {
        const size_t mode = with.one_of("pacing", {"realtime", "step"});
        checked([&] { return vboard_display_set_pacing(0, static_cast<uint32_t>(mode)); });
    }
    for (const json &fault : with.list("faults"))
        if (fault.is_object()) set_fault(Parameters(fault), context);
    if (with.boolean_or("follow_calls", false)) follow_calls(true, context);
    return {};
}

} // namespace

std::string traced_file()
{
    const std::lock_guard guard(trace().mutex);
    return trace().file;
}

const Request kBoardRequests[] = {{"boot", boot, false},
                                  {"monitor", monitor, false},
                                  {"analog", analog, false},
                                  {"rtc", rtc, false},
                                  {"fault", set_fault, false},
                                  {"fault.clear", clear_fault, false},
                                  {"fault.calls", fault_calls, false},
                                  {"loud", loud, false},
                                  {"trace.start", start_trace, false},
                                  {"trace.stop", stop_trace, false},
                                  {"audio.record", record_sound, false},
                                  {"audio.close", close_sound, false},
                                  {nullptr, nullptr, false}};

} // namespace vboard_remote
