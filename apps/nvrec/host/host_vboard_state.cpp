/* host_vboard_state.cpp - host.h over the board in software: what its devices stand at. */
#include "host/host.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace nvrec::host
{
namespace
{

constexpr double kSecond_us = 1e6;

BoardState::Panel panel_state()
{
    vboard_panel_stat stat = {};
    vboard_panel_get_stat(&stat);
    return {stat.record_lamp != 0, stat.lamp_changes, stat.keys_taken, stat.empty_polls};
}

BoardState::Watchdog watchdog_state()
{
    vboard_watchdog_stat stat = {};
    vboard_watchdog_get_stat(&stat);
    BoardState::Watchdog state = {};
    state.enabled = stat.enabled != 0;
    state.expired = stat.expired != 0;
    state.expired_ago_s = static_cast<double>(vboard_clock_us() - stat.expired_at_us) / kSecond_us;
    state.left_s = static_cast<double>(stat.remaining_us) / kSecond_us;
    state.timeout_s = stat.timeout_s;
    state.feeds = stat.feeds;
    state.reset_the_board = stat.boot_reason == VBOARD_BOOT_WATCHDOG;
    return state;
}

BoardState::Chips chips_state()
{
    vboard_ad_stat stat = {};
    vboard_ad_get_stat(&stat);
    BoardState::Chips state = {};
    state.norm = stat.norm;
    state.detects_motion = stat.motion_started != 0;
    state.rate_code = stat.rate_code;
    state.playback = stat.playback;
    state.volume = stat.volume;
    state.format = stat.format;
    state.bitwidth = stat.bitwidth;
    state.mute = stat.mute;
    for (uint32_t channel = 0; channel < VBOARD_AD_CHANNELS; ++channel) {
        vboard_ad_input input = {};
        vboard_ad_get_input(channel, &input);
        state.inputs.push_back({input.lost != 0, input.moving});
    }
    return state;
}

} // namespace

std::optional<BoardState> board_state()
{
    BoardState state = {};
    state.panel = panel_state();
    state.watchdog = watchdog_state();
    state.chips = chips_state();
    state.monitor = {vboard_monitor_is_plugged() == 1, vboard_monitor_has_signal() == 1};
    state.refused_calls = vboard_refusal_count();
    return state;
}

std::optional<int> output_line_level(uint32_t line)
{
    const int level = vboard_gpio_level(line);
    if (level < 0) return std::nullopt;
    return level;
}

bool watchdog_has_expired()
{
    vboard_watchdog_stat stat = {};
    return vboard_watchdog_get_stat(&stat) == 0 && stat.expired != 0;
}

} // namespace nvrec::host
