/*
 * board_functions.h - the control faces of the board, as weak references: the agent is not linked with
 * libvboard, so that a program without it is told and not given one. They are null in such a program,
 * and nothing of them may be called before board_is_linked().
 */
#ifndef VBOARD_REMOTE_BOARD_FUNCTIONS_H
#define VBOARD_REMOTE_BOARD_FUNCTIONS_H

#include "board_io.h"
#include "vboard.h"
#include "vboard_audio.h"
#include "vboard_calls.h"
#include "vboard_devices.h"
#include "vboard_nodes.h"

/* FUNCTION(name) for each that the agent calls. */
/* clang-format off */
#define VBOARD_REMOTE_FUNCTIONS(FUNCTION) \
    FUNCTION(vboard_ad_get_input) \
    FUNCTION(vboard_ad_get_stat) \
    FUNCTION(vboard_ad_set_loss) \
    FUNCTION(vboard_ad_set_motion) \
    FUNCTION(vboard_audio_close) \
    FUNCTION(vboard_audio_get_level) \
    FUNCTION(vboard_audio_get_stat) \
    FUNCTION(vboard_audio_open_wav) \
    FUNCTION(vboard_audio_wait_played) \
    FUNCTION(vboard_call_names) \
    FUNCTION(vboard_calls_follow) \
    FUNCTION(vboard_clock_is_taken) \
    FUNCTION(vboard_clock_release) \
    FUNCTION(vboard_clock_step_us) \
    FUNCTION(vboard_clock_take) \
    FUNCTION(vboard_clock_take_at) \
    FUNCTION(vboard_clock_us) \
    FUNCTION(vboard_clock_wait_sleepers) \
    FUNCTION(vboard_clock_wall_us) \
    FUNCTION(vboard_decoder_get_backlog) \
    FUNCTION(vboard_decoder_get_stat) \
    FUNCTION(vboard_decoder_wait_idle) \
    FUNCTION(vboard_display_capture) \
    FUNCTION(vboard_display_get_size) \
    FUNCTION(vboard_display_mark) \
    FUNCTION(vboard_display_set_pacing) \
    FUNCTION(vboard_display_step) \
    FUNCTION(vboard_display_wait_queued) \
    FUNCTION(vboard_display_wait_taken) \
    FUNCTION(vboard_fault_clear) \
    FUNCTION(vboard_fault_get_stat) \
    FUNCTION(vboard_fault_set) \
    FUNCTION(vboard_faults) \
    FUNCTION(vboard_gpio_change_count) \
    FUNCTION(vboard_gpio_get_change) \
    FUNCTION(vboard_gpio_level) \
    FUNCTION(vboard_image_free) \
    FUNCTION(vboard_ir_hold) \
    FUNCTION(vboard_ir_press) \
    FUNCTION(vboard_ir_press_named) \
    FUNCTION(vboard_ir_release) \
    FUNCTION(vboard_ir_send) \
    FUNCTION(vboard_last_refusal) \
    FUNCTION(vboard_monitor_capture) \
    FUNCTION(vboard_monitor_has_signal) \
    FUNCTION(vboard_monitor_is_plugged) \
    FUNCTION(vboard_monitor_plug) \
    FUNCTION(vboard_monitor_unplug) \
    FUNCTION(vboard_monitor_wait_events) \
    FUNCTION(vboard_mouse_buttons) \
    FUNCTION(vboard_mouse_move) \
    FUNCTION(vboard_mouse_wheel) \
    FUNCTION(vboard_node_exists) \
    FUNCTION(vboard_node_follow) \
    FUNCTION(vboard_node_pending) \
    FUNCTION(vboard_panel_get_stat) \
    FUNCTION(vboard_panel_press) \
    FUNCTION(vboard_panel_press_named) \
    FUNCTION(vboard_port_get_place) \
    FUNCTION(vboard_port_get_stat) \
    FUNCTION(vboard_refusal_count) \
    FUNCTION(vboard_refusals_follow) \
    FUNCTION(vboard_rtc_fail_battery) \
    FUNCTION(vboard_rtc_get) \
    FUNCTION(vboard_rtc_is_set) \
    FUNCTION(vboard_rtc_set) \
    FUNCTION(vboard_set_loud) \
    FUNCTION(vboard_trace_start_timed) \
    FUNCTION(vboard_trace_stop) \
    FUNCTION(vboard_watchdog_get_stat) \
    FUNCTION(vboard_watchdog_set_boot_reason) \
    FUNCTION(vboard_watchdog_wait_expired) \
    FUNCTION(board_close) \
    FUNCTION(board_ioctl) \
    FUNCTION(board_map) \
    FUNCTION(board_open) \
    FUNCTION(board_read) \
    FUNCTION(board_unmap)
/* clang-format on */

/* What is declared takes no parentheses. NOLINTNEXTLINE(bugprone-macro-parentheses) */
#define VBOARD_REMOTE_WEAK(name) extern "C" __attribute__((weak)) decltype(name) name;
VBOARD_REMOTE_FUNCTIONS(VBOARD_REMOTE_WEAK)
#undef VBOARD_REMOTE_WEAK

namespace vboard_remote
{

/* Whether the program has the board, with all that is called here. */
bool board_is_linked();

} // namespace vboard_remote

#endif
