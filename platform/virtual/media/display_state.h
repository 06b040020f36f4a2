/*
 * display_state.h - what display.cpp, display_pictures.cpp and display_scene.cpp share. Everything is
 * guarded by `mutex`.
 */
#ifndef VBOARD_DISPLAY_STATE_H
#define VBOARD_DISPLAY_STATE_H

#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

#include "media/display.h"

namespace vboard
{

constexpr uint32_t kPipLayer = 1;
constexpr int32_t kPipPortsDevice = 1; // whose ports lie on kPipLayer

struct InputPort {
    MI_DISP_InputPortAttr attr = {};
    MI_Rect zoom = {}; // 0 x 0 = the whole
    bool enabled = false;
    bool hidden = false;
    std::optional<PictureSource> source;

    PictureRefPtr current;           // on screen
    bool current_seen = false;       // by a refresh, a step or a look
    int64_t current_since_us = 0;    // board clock
    std::deque<PictureRefPtr> queue; // step pacing: next ones, oldest first
    std::condition_variable room;    // a place in `queue`, or a reason to stop waiting for one

    uint64_t taken = 0;
    uint64_t shown = 0;
    uint64_t dropped = 0;
    uint64_t marked_taken = 0; // `taken` at the last mark
};

struct Device {
    bool has_attr = false;
    bool enabled = false;
    MI_DISP_PubAttr attr = {};
    uint32_t pacing = VBOARD_PACING_REALTIME;
    uint64_t steps = 0; // made under step pacing
    std::array<InputPort, MI_DISP_INPUT_PORTS> ports;
};

struct Layer {
    bool has_attr = false;
    bool enabled = false;
    std::optional<int32_t> device; // bound to
    MI_DISP_VideoLayerAttr attr = {};
};

/* Someone in display_wait_queued or display_wait_taken. */
struct PictureWait {
    const Device *device;
    uint32_t mask;
    bool queued; // counts queued pictures; otherwise those taken since the mark
    uint64_t pictures;

    bool is_met() const
    {
        for (uint32_t port = 0; port < MI_DISP_INPUT_PORTS; ++port) {
            if ((mask >> port & 1) == 0) continue;
            const InputPort &input = device->ports[port];
            if ((queued ? input.queue.size() : input.taken - input.marked_taken) < pictures) return false;
        }
        return true;
    }
};

struct DisplayState {
    std::mutex mutex;
    std::array<Device, kDevices> devices; // by device_index
    std::array<Layer, kLayers> layers;
    std::vector<const PictureWait *> waits;
    std::condition_variable arrived; // a wait is met
};

DisplayState &display_state();

/* Null: no such device. */
Device *find_device(DisplayState &display, int32_t number);

/* Where the ports of a device lie, and which device's output shows them. */
struct PortPlace {
    const Layer *layer; // null = nowhere
    const Device *output;
};

/*
 * Ports lie on a layer that is bound to their device. Layer 1, the picture in picture, is the
 * exception: it carries the ports of device 1 wherever it is bound, over that device's own.
 */
PortPlace place_of_ports(const DisplayState &display, const Device &device);

/* Whether a picture in the port would be on the screen of the device that shows it. */
bool is_visible(const DisplayState &display, const Device &device, const InputPort &port);

/* The picture on screen counts as shown from now on. */
void mark_seen(InputPort &port);

/*
 * The pane that the next picture for a port's queue will have, if it can be drawn before its step:
 * nothing else may lie in its window.
 */
std::optional<PaneAhead> pane_ahead(const DisplayState &display, const Device &device, uint32_t port,
                                    const PictureRefPtr &ref);

/* Work out whether a refresh has shown the picture on screen by now; before anything hides it. */
void settle(const DisplayState &display, const Device &device, InputPort &port);

/* Let go of what a port holds; `screen` = also of the picture on screen. */
void drop_pictures(DisplayState &display, Device &device, InputPort &port, bool screen);

} // namespace vboard

#endif
