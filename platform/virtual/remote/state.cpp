/* state.cpp - everything that can be read off the board, as the request "state" gives it. */
#include <cstdio>
#include <unistd.h>

#include "board_functions.h"
#include "mi_disp.h"
#include "mi_vdec.h"
#include "nodes/openings.h"
#include "requests.h"

namespace vboard_remote
{
namespace
{

using nlohmann::json;

constexpr int32_t kDevices[] = {-1, 0, 1, 2};
constexpr uint32_t kLevelWindow_ms = 300;

json clock_state()
{
    return {{"us", vboard_clock_us()},
            {"wall_us", vboard_clock_wall_us()},
            {"taken", vboard_clock_is_taken() != 0}};
}

json monitor_state()
{
    uint32_t width = 0, height = 0;
    vboard_display_get_size(0, &width, &height);
    return {{"plugged", vboard_monitor_is_plugged() != 0},
            {"signal", vboard_monitor_has_signal() != 0},
            {"width", width},
            {"height", height}};
}

// Where the port is seen on its device's output: x, y, width, height; null where it is not.
json window_of(int32_t device, uint32_t port)
{
    vboard_port_place place = {};
    if (vboard_port_get_place(device, port, &place) != 0 || place.seen == 0) return nullptr;
    return {place.x, place.y, place.width, place.height};
}

json displays_state()
{
    json displays = json::array();
    for (const int32_t device : kDevices) {
        json ports = json::array();
        for (uint32_t number = 0; number < MI_DISP_INPUT_PORTS; ++number) {
            vboard_port_stat port = {};
            if (vboard_port_get_stat(device, number, &port) != 0) continue;
            if (port.enabled == 0 && port.bound == 0 && port.has_picture == 0 && port.taken == 0) continue;
            ports.push_back({{"port", number},
                             {"window", window_of(device, number)},
                             {"enabled", port.enabled != 0},
                             {"hidden", port.hidden != 0},
                             {"bound", port.bound != 0},
                             {"source_channel", port.source_channel},
                             {"has_picture", port.has_picture != 0},
                             {"queued", port.queued},
                             {"picture_width", port.picture_width},
                             {"picture_height", port.picture_height},
                             {"picture_pts", port.picture_pts},
                             {"taken", port.taken},
                             {"shown", port.shown},
                             {"dropped", port.dropped}});
        }
        if (!ports.empty()) displays.push_back({{"device", device}, {"ports", std::move(ports)}});
    }
    return displays;
}

json codec_name(uint32_t codec)
{
    switch (codec) {
    case MI_VDEC_CODEC_H264: return "h264";
    case MI_VDEC_CODEC_H265: return "h265";
    case MI_VDEC_CODEC_JPEG: return "jpeg";
    }
    return nullptr; // the board creates no decoder of another one
}

json decoders_state()
{
    json decoders = json::array();
    for (uint32_t number = 0; number < VBOARD_DECODER_CHANNELS; ++number) {
        vboard_decoder_stat decoder = {};
        uint32_t bytes = 0, sends = 0;
        if (vboard_decoder_get_stat(number, &decoder) != 0) continue;
        if (decoder.created == 0 && decoder.recreations == 0 && decoder.frames_sent == 0) continue;
        vboard_decoder_get_backlog(number, &bytes, &sends);
        decoders.push_back({{"channel", number},
                            {"created", decoder.created != 0},
                            {"started", decoder.started != 0},
                            {"codec", codec_name(decoder.codec)},
                            {"width", decoder.width},
                            {"height", decoder.height},
                            {"bytes_sent", decoder.bytes_sent},
                            {"frames_sent", decoder.frames_sent},
                            {"sends_refused", decoder.sends_refused},
                            {"decoded", decoder.decoded},
                            {"shown", decoder.shown},
                            {"dropped", decoder.dropped},
                            {"damaged", decoder.damaged},
                            {"decode_errors", decoder.decode_errors},
                            {"resets", decoder.resets},
                            {"recreations", decoder.recreations},
                            {"late", decoder.late},
                            {"backlog", sends},
                            {"backlog_bytes", bytes}});
    }
    return decoders;
}

json audio_state()
{
    json devices = json::array();
    for (uint32_t number = 0; number < VBOARD_AUDIO_DEVICES; ++number) {
        vboard_audio_stat audio = {};
        if (vboard_audio_get_stat(number, &audio) != 0 || audio.enabled == 0) continue;
        vboard_audio_level level = {VBOARD_AUDIO_SILENCE_DBFS, VBOARD_AUDIO_SILENCE_DBFS};
        vboard_audio_get_level(number, kLevelWindow_ms, &level);
        devices.push_back({{"device", number},
                           {"channel_enabled", audio.channel_enabled != 0},
                           {"decoding", audio.decoding != 0},
                           {"muted", audio.muted != 0},
                           {"volume_db", audio.volume_db},
                           {"rate_hz", audio.rate_hz},
                           {"input_rate_hz", audio.input_rate_hz},
                           {"queued", audio.queued},
                           {"capacity", audio.capacity},
                           {"blocks", audio.blocks},
                           {"played", audio.played},
                           {"clipped", audio.clipped},
                           {"ran_dry", audio.ran_dry},
                           {"peak_dbfs", level.peak_dbfs},
                           {"rms_dbfs", level.rms_dbfs}});
    }
    return devices;
}

json watchdog_state()
{
    vboard_watchdog_stat watchdog = {};
    vboard_watchdog_get_stat(&watchdog);
    return {{"enabled", watchdog.enabled != 0},
            {"timeout_s", watchdog.timeout_s},
            {"remaining_us", watchdog.remaining_us},
            {"feeds", watchdog.feeds},
            {"expired", watchdog.expired != 0},
            {"expired_at_us", watchdog.expired_at_us},
            {"boot_reason", watchdog.boot_reason == VBOARD_BOOT_WATCHDOG ? "watchdog" : "power"}};
}

json rtc_state()
{
    const bool is_set = vboard_rtc_is_set() != 0;
    return {{"seconds", is_set ? json(vboard_rtc_get()) : json()}, {"battery", is_set}};
}

json gpio_state()
{
    json lines = json::array();
    for (uint32_t line = 0; line < VBOARD_GPIO_LINES; ++line)
        if (const int level = vboard_gpio_level(line); level >= 0)
            lines.push_back({{"line", line}, {"level", level}});
    return lines;
}

json panel_state()
{
    vboard_panel_stat panel = {};
    vboard_panel_get_stat(&panel);
    return {{"record_lamp", panel.record_lamp != 0},
            {"lamp_changes", panel.lamp_changes},
            {"keys_taken", panel.keys_taken},
            {"empty_polls", panel.empty_polls}};
}

json analog_state()
{
    vboard_ad_stat chips = {};
    vboard_ad_get_stat(&chips);
    json inputs = json::array();
    for (uint32_t number = 0; number < VBOARD_AD_CHANNELS; ++number) {
        vboard_ad_input input = {};
        if (vboard_ad_get_input(number, &input) != 0) continue;
        inputs.push_back({{"input", number},
                          {"mode", input.mode},
                          {"lost", input.lost != 0},
                          {"sensitivity", input.sensitivity},
                          {"area_bits", input.area_bits},
                          {"moving", input.moving}});
    }
    return {{"norm", chips.norm},
            {"rate_code", chips.rate_code},
            {"playback", chips.playback},
            {"volume", chips.volume},
            {"format", chips.format},
            {"bitwidth", chips.bitwidth},
            {"mute", chips.mute},
            {"adjust", {chips.adjust[0], chips.adjust[1], chips.adjust[2]}},
            {"motion_started", chips.motion_started != 0},
            {"inputs", std::move(inputs)}};
}

json faults_state()
{
    vboard_fault_stat counters = {};
    vboard_fault_get_stat(&counters);
    std::vector<vboard_fault> faults(vboard_faults(nullptr, 0) + 8); // some may be set meanwhile
    faults.resize(std::min(faults.size(), vboard_faults(faults.data(), faults.size())));
    json list = json::array();
    for (const vboard_fault &fault : faults)
        list.push_back({{"call", fault.call},
                        {"nth", fault.nth},
                        {"count", fault.count},
                        {"code", fault.code},
                        {"seen", fault.seen},
                        {"fired", fault.fired}});
    return {{"set", counters.set},       {"refused", counters.refused}, {"fired", counters.fired},
            {"unused", counters.unused}, {"waiting", counters.waiting}, {"list", std::move(list)}};
}

json refusals_state()
{
    char text[1024];
    vboard_last_refusal(text, sizeof text);
    return {{"count", vboard_refusal_count()}, {"last", text}};
}

// Resident memory of the program; 0 when the system does not tell.
int64_t memory_kb()
{
    FILE *file = fopen("/proc/self/statm", "re");
    if (file == nullptr) return 0;
    long long whole = 0, resident = 0;
    if (fscanf(file, "%lld %lld", &whole, &resident) != 2) resident = 0;
    fclose(file);
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

json nodes_state()
{
    json nodes = json::array();
    for (const ProgramNode &node : program_nodes())
        nodes.push_back({{"path", node.path}, {"descriptor", node.descriptor}});
    return nodes;
}

} // namespace

json board_state()
{
    const std::string trace = traced_file();
    return {{"clock", clock_state()},
            {"monitor", monitor_state()},
            {"displays", displays_state()},
            {"decoders", decoders_state()},
            {"audio", audio_state()},
            {"watchdog", watchdog_state()},
            {"rtc", rtc_state()},
            {"gpio", gpio_state()},
            {"gpio_changes", vboard_gpio_change_count()},
            {"panel", panel_state()},
            {"analog", analog_state()},
            {"faults", faults_state()},
            {"refusals", refusals_state()},
            {"trace", trace.empty() ? json() : json(trace)},
            {"memory_kb", memory_kb()},
            {"nodes", nodes_state()}};
}

} // namespace vboard_remote
