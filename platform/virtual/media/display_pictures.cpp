/*
 * display_pictures.cpp - the pictures that input ports hold: taking them, stepping, and what became
 * of them.
 *
 * A picture counts as shown when a refresh falls into its time on screen. Nothing runs at the
 * refresh rate for that: it is worked out when the picture goes, from the board clock.
 */
#include <algorithm>

#include "media/call.h"
#include "media/canvas.h"
#include "media/clock.h"
#include "media/display_state.h"
#include "media/modules.h"
#include "media/output_timing.h"

namespace vboard
{
namespace
{

uint32_t refresh_hz(const Device &device)
{
    if (device.attr.frame_rate != 0) return device.attr.frame_rate;
    const OutputTiming *timing = device.has_attr ? find_output_timing(device.attr.timing) : nullptr;
    return timing != nullptr ? timing->rate_hz : 60;
}

void put_on_screen(const DisplayState &display, const Device &device, InputPort &port, PictureRefPtr ref)
{
    settle(display, device, port);
    if (port.current != nullptr && !port.current_seen) ++port.dropped;
    port.current = std::move(ref);
    port.current_seen = false;
    port.current_since_us = clock_now_us();
}

void drop_queue(InputPort &port)
{
    port.dropped += port.queue.size();
    port.queue.clear();
    port.room.notify_all();
}

bool is_wanted(const InputPort &port, PictureSource source, const std::atomic<bool> &abandoned)
{
    return port.enabled && port.source == source && !abandoned.load(std::memory_order_acquire);
}

bool is_full(const Device &device, const InputPort &port)
{
    return device.pacing == VBOARD_PACING_STEP && port.queue.size() >= kStepQueue;
}

void tell_waiters(DisplayState &display)
{
    const bool any_met = std::any_of(display.waits.begin(), display.waits.end(),
                                     [](const PictureWait *wait) { return wait->is_met(); });
    if (any_met) display.arrived.notify_all();
}

} // namespace

void mark_seen(InputPort &port)
{
    if (port.current == nullptr || port.current_seen) return;
    port.current_seen = true;
    ++port.shown;
    port.current->mark_seen();
}

void settle(const DisplayState &display, const Device &device, InputPort &port)
{
    if (port.current == nullptr || port.current_seen || device.pacing == VBOARD_PACING_STEP) return;
    if (!is_visible(display, device, port)) return;
    const int64_t rate = refresh_hz(*place_of_ports(display, device).output);
    const int64_t refresh_then = port.current_since_us * rate / 1000000;
    const int64_t refresh_now = clock_now_us() * rate / 1000000;
    if (refresh_now > refresh_then) mark_seen(port);
}

void drop_pictures(DisplayState &display, Device &device, InputPort &port, bool screen)
{
    drop_queue(port);
    if (screen) put_on_screen(display, device, port, nullptr);
}

bool display_port_exists(int32_t device, uint32_t port)
{
    return device_index(device) >= 0 && port < MI_DISP_INPUT_PORTS;
}

void display_port_bind(int32_t device, uint32_t port, PictureSource source)
{
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    find_device(display, device)->ports[port].source = source;
}

void display_port_unbind(int32_t device, uint32_t port)
{
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    InputPort &input = find_device(display, device)->ports[port];
    input.source.reset();
    // What is on screen stays there; what was still to come from the old source does not.
    drop_queue(input);
}

void display_wait_room(int32_t device, uint32_t port, PictureSource source,
                       const std::atomic<bool> &abandoned)
{
    DisplayState &display = display_state();
    std::unique_lock lock(display.mutex);
    Device &unit = *find_device(display, device);
    InputPort &input = unit.ports[port];
    input.room.wait(lock, [&] { return !is_wanted(input, source, abandoned) || !is_full(unit, input); });
}

void display_take(int32_t device, uint32_t port, PictureSource source, const PictureRefPtr &ref,
                  const std::atomic<bool> &abandoned)
{
    DisplayState &display = display_state();
    std::unique_lock lock(display.mutex);
    Device &unit = *find_device(display, device);
    InputPort &input = unit.ports[port];
    input.room.wait(lock, [&] { return !is_wanted(input, source, abandoned) || !is_full(unit, input); });
    if (!is_wanted(input, source, abandoned)) return;
    if (unit.pacing == VBOARD_PACING_STEP) {
        if (const auto ahead = pane_ahead(display, unit, port, ref)) {
            // Drawn by the worker that has just decoded it, while it is in the processor's cache. Should
            // anything change meanwhile, the step draws it again.
            lock.unlock();
            canvas_draw_ahead(device, *ahead);
            lock.lock();
            if (!is_wanted(input, source, abandoned)) return;
        }
    }
    ++input.taken;
    if (unit.pacing == VBOARD_PACING_STEP)
        input.queue.push_back(ref);
    else
        put_on_screen(display, unit, input, ref);
    tell_waiters(display);
}

void display_wake_sources()
{
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    for (Device &device : display.devices)
        for (InputPort &port : device.ports)
            port.room.notify_all();
}

uint32_t display_refresh_hz(int32_t device)
{
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    return refresh_hz(*find_device(display, device));
}

int display_set_pacing(int32_t device, uint32_t pacing)
{
    if (device_index(device) < 0 || pacing > VBOARD_PACING_STEP)
        return refuse_plainly("pacing %u for display device %d", pacing, device);
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    Device &unit = *find_device(display, device);
    unit.pacing = pacing;
    for (InputPort &port : unit.ports)
        drop_queue(port);
    return 0;
}

int display_advance(int32_t device)
{
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    Device *unit = find_device(display, device);
    if (unit == nullptr || unit->pacing != VBOARD_PACING_STEP)
        return refuse_plainly("display device %d is not in step pacing", device);
    ++unit->steps;
    int advanced = 0;
    for (InputPort &port : unit->ports) {
        if (port.queue.empty()) continue;
        put_on_screen(display, *unit, port, std::move(port.queue.front()));
        port.queue.pop_front();
        if (is_visible(display, *unit, port)) mark_seen(port);
        port.room.notify_all();
        ++advanced;
    }
    return advanced;
}

static int wait_for_pictures(int32_t device, PictureWait wait, int32_t timeout_ms)
{
    DisplayState &display = display_state();
    std::unique_lock lock(display.mutex);
    const Device *unit = find_device(display, device);
    if (unit == nullptr || (wait.queued && unit->pacing != VBOARD_PACING_STEP))
        return refuse_plainly("display device %d is not in step pacing", device);
    wait.device = unit;
    display.waits.push_back(&wait);
    const bool met = wait_real(display.arrived, lock, timeout_ms, [&] { return wait.is_met(); });
    std::erase(display.waits, &wait);
    return met ? 0 : -1;
}

int display_wait_queued(int32_t device, uint32_t mask, uint32_t pictures, int32_t timeout_ms)
{
    if (pictures > kStepQueue) return refuse_plainly("a port never queues %u pictures", pictures);
    return wait_for_pictures(device, {nullptr, mask, true, pictures}, timeout_ms);
}

int display_wait_taken(int32_t device, uint32_t mask, uint64_t pictures, int32_t timeout_ms)
{
    return wait_for_pictures(device, {nullptr, mask, false, pictures}, timeout_ms);
}

int display_mark(int32_t device)
{
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    Device *unit = find_device(display, device);
    if (unit == nullptr) return refuse_plainly("display device %d", device);
    for (InputPort &port : unit->ports)
        port.marked_taken = port.taken;
    return 0;
}

int port_read_stat(int32_t device, uint32_t port, vboard_port_stat *stat)
{
    if (!display_port_exists(device, port) || stat == nullptr)
        return refuse_plainly("no state of port %u of display device %d", port, device);
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    Device &unit = *find_device(display, device);
    InputPort &input = unit.ports[port];
    settle(display, unit, input);
    *stat = {};
    stat->enabled = input.enabled ? 1 : 0;
    stat->hidden = input.hidden ? 1 : 0;
    stat->bound = input.source ? 1 : 0;
    if (input.source) stat->source_channel = input.source->channel;
    stat->queued = static_cast<uint32_t>(input.queue.size());
    stat->taken = input.taken;
    stat->shown = input.shown;
    stat->dropped = input.dropped;
    if (input.current == nullptr) return 0;
    stat->has_picture = 1;
    stat->picture_width = static_cast<uint32_t>(input.current->width());
    stat->picture_height = static_cast<uint32_t>(input.current->height());
    stat->picture_pts = input.current->picture().pts;
    return 0;
}

void display_settle_fates()
{
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    for (Device &device : display.devices)
        for (InputPort &port : device.ports)
            settle(display, device, port);
}

void display_reset()
{
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    for (Device &device : display.devices) {
        device.has_attr = false;
        device.enabled = false;
        device.attr = {};
        device.pacing = VBOARD_PACING_REALTIME;
        device.steps = 0;
        for (InputPort &port : device.ports) {
            drop_queue(port);
            port.current.reset();
            port.source.reset();
            port.attr = {};
            port.zoom = {};
            port.enabled = port.hidden = port.current_seen = false;
            port.taken = port.shown = port.dropped = port.marked_taken = 0;
        }
    }
    display.layers = {};
}

} // namespace vboard
