/* board_state.cpp - see board_state.h. */
#include "controls/board_state.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "console/text.h"
#include "host/host.h"
#include "nvrhal.h"
#include "wall/module.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr size_t kInputsPerChip = 4;

struct LineName {
    uint32_t line;
    const char *name;
};

constexpr LineName kLines[] = {
    {BOARD_LINE_WIFI_POWER, "Wi-Fi power"}, {BOARD_LINE_WIFI_RESET, "Wi-Fi reset"},
    {BOARD_LINE_BUZZER, "buzzer"},          {BOARD_LINE_RECORD, "record"},
    {BOARD_LINE_DISK_LED, "disk LED"},
};

std::string level_text(uint32_t line)
{
    const std::optional<int> level = host::output_line_level(line);
    return !level ? "not configured" : *level == 1 ? "high" : "low";
}

void add_lines(std::vector<BoardRow> *rows)
{
    for (const LineName &line : kLines)
        rows->push_back({"line", text("%u %s", line.line, line.name), level_text(line.line)});
}

void add_panel(const host::BoardState::Panel &panel, std::vector<BoardRow> *rows)
{
    rows->push_back({"lamp", "record",
                     text("%s, %llu changes", panel.record_lamp_lit ? "lit" : "dark",
                          static_cast<Count>(panel.lamp_changes))});
    rows->push_back({"panel", "keys",
                     text("%llu taken, %llu empty polls", static_cast<Count>(panel.keys_taken),
                          static_cast<Count>(panel.empty_polls))});
}

void add_watchdog(const host::BoardState::Watchdog &watchdog, std::vector<BoardRow> *rows)
{
    std::string state = "disabled";
    if (watchdog.expired) {
        state = text("expired %.1f s ago", watchdog.expired_ago_s);
    } else if (watchdog.enabled) {
        state = text("enabled, %.1f of %u s left", watchdog.left_s, watchdog.timeout_s);
    }
    rows->push_back({"watchdog", "state", state});
    rows->push_back({"watchdog", "feeds", text("%llu", static_cast<Count>(watchdog.feeds))});
    rows->push_back({"watchdog", "last boot", watchdog.reset_the_board ? "watchdog" : "power on"});
}

/* The clock as an application sees it: when it has lost its time it cannot be read. */
void add_clock(std::vector<BoardRow> *rows)
{
    std::array<int32_t, 9> tm = {};
    const bool read = ext_rtc_time_system(tm.data(), 0) == 0;
    rows->push_back({"clock", "time",
                     read
                         ? text("%04d-%02d-%02d %02d:%02d:%02d UTC", tm[5], tm[4], tm[3], tm[2], tm[1], tm[0])
                         : "lost (battery)"});
}

void add_chips(const host::BoardState::Chips &chips, std::vector<BoardRow> *rows)
{
    rows->push_back({"chips", "video",
                     text("norm %u, motion detection %s", chips.norm, chips.detects_motion ? "on" : "off")});
    rows->push_back(
        {"chips", "audio",
         text("rate code %u, playback %u, volume %u, format %u, bit width %u, mute %u", chips.rate_code,
              chips.playback, chips.volume, chips.format, chips.bitwidth, chips.mute)});
    for (size_t first = 0; first < chips.inputs.size(); first += kInputsPerChip) {
        std::string state;
        for (size_t i = first; i < std::min(first + kInputsPerChip, chips.inputs.size()); ++i) {
            const host::BoardState::ChipInput &input = chips.inputs[i];
            state += text("%s%zu %s", state.empty() ? "" : ", ", i, input.lost ? "lost" : "signal");
            if (input.moving_blocks != 0) state += text(" (%u blocks move)", input.moving_blocks);
        }
        rows->push_back({"chips", text("inputs of %zu", first / kInputsPerChip), state});
    }
}

void add_monitor(const host::BoardState::Monitor &monitor, std::vector<BoardRow> *rows)
{
    rows->push_back({"monitor", "plug", monitor.plugged_in ? "plugged in" : "unplugged"});
    rows->push_back({"monitor", "signal", monitor.has_signal ? "yes" : "no"});
}

} // namespace

std::vector<BoardRow> board_rows()
{
    std::vector<BoardRow> rows;
    const std::optional<host::BoardState> board = host::board_state();
    if (!board) {
        add_clock(&rows);
        rows.push_back({"board", "devices", "they cannot be read back on this board"});
        return rows;
    }
    add_lines(&rows);
    add_panel(board->panel, &rows);
    add_watchdog(board->watchdog, &rows);
    add_clock(&rows);
    add_chips(board->chips, &rows);
    add_monitor(board->monitor, &rows);
    rows.push_back({"board", "refused calls", text("%llu", static_cast<Count>(board->refused_calls))});
    return rows;
}

std::vector<BoardRow> wall_rows(const WallControl &wall)
{
    const std::vector<std::string> names = layout_names();
    const int enlarged = wall.enlarged();
    const auto cameras =
        std::ranges::count_if(wall.cameras(), [](const auto &camera) { return camera->has_camera(); });
    return {
        {"wall", "layout", names.at(static_cast<size_t>(wall.layout()))},
        {"wall", "selected", text("channel %d", wall.selected())},
        {"wall", "whole screen", enlarged < 0 ? "the layout" : text("channel %d", enlarged)},
        {"wall", "cameras", text("%td", cameras)},
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
