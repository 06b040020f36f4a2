/* board_state.cpp - see board_state.h. */
#include "controls/board_state.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "nvrhal.h"
#include "vboard.h"
#include "vboard_devices.h"
#include "wall/companion.h"
#include "wall/session.h"
#include "wall/text.h"

namespace nvrec
{
namespace
{

constexpr double kSecond_us = 1e6;
constexpr uint32_t kInputsPerChip = 4;

struct LineName {
    uint32_t line;
    const char *name;
};

constexpr LineName kLines[] = {
    {25, "25 Wi-Fi power"}, {26, "26 Wi-Fi reset"}, {28, "28 buzzer"}, {34, "34 record"}, {90, "90 disk LED"},
};

std::string level_text(uint32_t line)
{
    const int level = vboard_gpio_level(line);
    return level < 0 ? "not configured" : level == 1 ? "high" : "low";
}

void add_panel(std::vector<BoardRow> *rows)
{
    vboard_panel_stat panel;
    if (vboard_panel_get_stat(&panel) != 0) return;
    rows->push_back({"lamp", "record",
                     text("%s, %llu changes", panel.record_lamp != 0 ? "lit" : "dark",
                          static_cast<Count>(panel.lamp_changes))});
    rows->push_back({"panel", "keys",
                     text("%llu taken, %llu empty polls", static_cast<Count>(panel.keys_taken),
                          static_cast<Count>(panel.empty_polls))});
}

void add_watchdog(std::vector<BoardRow> *rows)
{
    vboard_watchdog_stat watchdog;
    if (vboard_watchdog_get_stat(&watchdog) != 0) return;
    std::string state = "disabled";
    if (watchdog.expired != 0) {
        const int64_t ago_us = vboard_clock_us() - watchdog.expired_at_us;
        state = text("expired %.1f s ago", static_cast<double>(ago_us) / kSecond_us);
    } else if (watchdog.enabled != 0) {
        state = text("enabled, %.1f of %u s left", static_cast<double>(watchdog.remaining_us) / kSecond_us,
                     watchdog.timeout_s);
    }
    rows->push_back({"watchdog", "state", state});
    rows->push_back({"watchdog", "feeds", text("%llu", static_cast<Count>(watchdog.feeds))});
    rows->push_back(
        {"watchdog", "last boot", watchdog.boot_reason == VBOARD_BOOT_WATCHDOG ? "watchdog" : "power on"});
}

/* As an application sees it: one that lost its time cannot be read. */
void add_clock(std::vector<BoardRow> *rows)
{
    std::array<int32_t, 9> tm = {};
    const bool read = ext_rtc_time_system(tm.data(), 0) == 0;
    rows->push_back({"clock", "time",
                     read
                         ? text("%04d-%02d-%02d %02d:%02d:%02d UTC", tm[5], tm[4], tm[3], tm[2], tm[1], tm[0])
                         : "lost (battery)"});
}

void add_chips(std::vector<BoardRow> *rows)
{
    vboard_ad_stat chips;
    if (vboard_ad_get_stat(&chips) != 0) return;
    rows->push_back(
        {"chips", "video",
         text("norm %u, motion detection %s", chips.norm, chips.motion_started != 0 ? "on" : "off")});
    rows->push_back(
        {"chips", "audio",
         text("rate code %u, playback %u, volume %u, format %u, bit width %u, mute %u", chips.rate_code,
              chips.playback, chips.volume, chips.format, chips.bitwidth, chips.mute)});
    for (uint32_t first = 0; first < VBOARD_AD_CHANNELS; first += kInputsPerChip) {
        std::string state;
        for (uint32_t channel = first; channel < first + kInputsPerChip; ++channel) {
            vboard_ad_input input = {};
            vboard_ad_get_input(channel, &input);
            state += text("%s%u %s", state.empty() ? "" : ", ", channel, input.lost != 0 ? "lost" : "signal");
            if (input.moving != 0) state += text(" (%u blocks move)", input.moving);
        }
        rows->push_back({"chips", text("inputs of %u", first / kInputsPerChip), state});
    }
}

void add_monitor(std::vector<BoardRow> *rows)
{
    rows->push_back({"monitor", "plug", vboard_monitor_is_plugged() == 1 ? "plugged in" : "unplugged"});
    rows->push_back({"monitor", "signal", vboard_monitor_has_signal() == 1 ? "yes" : "no"});
}

} // namespace

std::vector<BoardRow> board_rows()
{
    std::vector<BoardRow> rows;
    for (const LineName &line : kLines)
        rows.push_back({"line", line.name, level_text(line.line)});
    add_panel(&rows);
    add_watchdog(&rows);
    add_clock(&rows);
    add_chips(&rows);
    add_monitor(&rows);
    rows.push_back({"board", "refused calls", text("%llu", static_cast<Count>(vboard_refusal_count()))});
    return rows;
}

std::vector<BoardRow> wall_rows(const WallControl &wall)
{
    const std::vector<std::string> names = layout_names();
    const int enlarged = wall.enlarged();
    return {
        {"wall", "layout", names.at(static_cast<size_t>(wall.layout()))},
        {"wall", "selected", text("channel %d", wall.selected())},
        {"wall", "whole screen", enlarged < 0 ? "the layout" : text("channel %d", enlarged)},
        {"wall", "cameras", text("%zu", wall.cameras().size())},
        {"wall", "window", wall.window_is_open() ? "open" : "none"},
        {"wall", "records", wall.recording() ? "yes" : "no"},
    };
}

std::string board_text(const std::vector<BoardRow> &rows)
{
    size_t device_width = 0;
    size_t item_width = 0;
    for (const BoardRow &row : rows) {
        device_width = std::max(device_width, row.device.size());
        item_width = std::max(item_width, row.item.size());
    }
    std::string lines;
    for (const BoardRow &row : rows) {
        lines += row.device + std::string(device_width - row.device.size() + 2, ' ') + row.item +
                 std::string(item_width - row.item.size() + 2, ' ') + row.state + "\n";
    }
    return lines;
}

} // namespace nvrec
