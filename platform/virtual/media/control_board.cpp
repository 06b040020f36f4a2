/* control_board.cpp - the rest of the control face: counters, monitor, faults, traces, clock, reset. */
#include "media/call.h"
#include "media/canvas.h"
#include "media/clock.h"
#include "media/follow.h"
#include "media/modules.h"
#include "media/vdec_channel.h"
#include "vboard.h"

using namespace vboard;

extern "C" {

int vboard_decoder_get_stat(uint32_t channel, vboard_decoder_stat *stat)
{
    return vdec_read_counters(channel, stat);
}

int vboard_decoder_get_backlog(uint32_t channel, uint32_t *bytes, uint32_t *sends)
{
    return vdec_read_backlog(channel, bytes, sends);
}

int vboard_decoder_wait_idle(uint32_t channel, int32_t timeout_ms)
{
    return vdec_wait_idle(channel, timeout_ms);
}

int vboard_monitor_plug(void)
{
    hdmi_plug(true);
    return 0;
}

int vboard_monitor_unplug(void)
{
    hdmi_plug(false);
    return 0;
}

int vboard_monitor_is_plugged(void)
{
    return hdmi_is_plugged() ? 1 : 0;
}

int vboard_monitor_wait_events(int32_t timeout_ms)
{
    return hdmi_wait_events(timeout_ms);
}

int vboard_fault_set(const char *call, uint32_t nth, uint32_t count, int32_t code)
{
    return fault_set(call, nth, count, code);
}

void vboard_fault_clear(const char *call)
{
    fault_clear(call);
}

int vboard_fault_get_stat(vboard_fault_stat *stat)
{
    return fault_get_stat(stat);
}

int vboard_trace_start(const char *path)
{
    return trace_start(path, false);
}

void vboard_trace_stop(void)
{
    trace_stop();
}

uint64_t vboard_refusal_count(void)
{
    return refusal_count();
}

size_t vboard_last_refusal(char *text, size_t size)
{
    return last_refusal(text, size);
}

void vboard_set_loud(int loud)
{
    set_loud(loud != 0);
}

int64_t vboard_clock_us(void)
{
    return clock_now_us();
}

void vboard_clock_take(void)
{
    clock_take();
}

int vboard_clock_take_at(int64_t board_us, int64_t wall_us)
{
    if (!clock_take_at(board_us, wall_us))
        return refuse_plainly("the clock is taken, somebody waits on it, or a time is out of range");
    return 0;
}

void vboard_clock_release(void)
{
    clock_release();
}

int vboard_clock_step_us(int64_t microseconds)
{
    if (clock_step_us(microseconds) != 0)
        return refuse_plainly("the clock is not taken, or is to go backwards or beyond a hundred years");
    return 0;
}

int vboard_clock_wait_sleepers(uint32_t count, int32_t timeout_ms)
{
    return clock_wait_sleepers(count, timeout_ms);
}

int vboard_clock_is_taken(void)
{
    return clock_is_taken() ? 1 : 0;
}

int vboard_clock_follow(vboard_clock_follower follower, void *user)
{
    if (clock_follow(follower, user) != 0) return refuse_plainly("the clock is followed already");
    return 0;
}

void vboard_clock_add_sleeper(int64_t deadline_us)
{
    clock_add_sleeper(deadline_us);
}

void vboard_clock_remove_sleeper(int64_t deadline_us)
{
    clock_remove_sleeper(deadline_us);
}

int64_t vboard_clock_wall_us(void)
{
    return clock_wall_us();
}

void vboard_reset(void)
{
    fault_clear(nullptr);
    trace_stop();
    clock_release();
    follow_reset();
    vdec_reset();   // before the graph: its workers deliver along it
    scaler_reset(); // likewise
    venc_reset();
    graph_reset();
    display_reset();
    canvas_reset();
    hdmi_reset();
    ao_reset();
    nodes_reset();
    sys_reset();
}

} // extern "C"
