/*
 * display.h - display devices, layers and input ports: settings, and the pictures that ports hold.
 * What a device looks like is composed from a Scene by canvas.h, only when someone looks.
 *
 * One lock guards all of it (the display lock). It is taken inside the locks of the graph, of a
 * canvas and of a decoder channel, and nothing is locked inside it but the clock's state.
 */
#ifndef VBOARD_DISPLAY_H
#define VBOARD_DISPLAY_H

#include <atomic>
#include <cstdint>
#include <vector>

#include "media/picture_ref.h"
#include "mi_disp.h"
#include "vboard.h"

namespace vboard
{

constexpr int32_t kFirstDevice = -1;
constexpr int kDevices = 4; // -1, 0, 1, 2
constexpr uint32_t kLayers = 4;
constexpr uint32_t kStepQueue = 1; // pictures a port queues under step pacing

/* 0 to 3 for devices -1 to 2; -1 for any other number. */
int device_index(int32_t device);

/* ---- device face ---- */

int32_t display_set_attr(int32_t device, const MI_DISP_PubAttr *attr);
int32_t display_get_attr(int32_t device, MI_DISP_PubAttr *attr);
int32_t display_enable(int32_t device, bool enable);
int32_t layer_bind(uint32_t layer, int32_t device);
int32_t layer_unbind(uint32_t layer, int32_t device);
int32_t layer_set_attr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr);
int32_t layer_get_attr(uint32_t layer, MI_DISP_VideoLayerAttr *attr);
int32_t layer_enable(uint32_t layer, bool enable);
int32_t port_set_attr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr);
int32_t port_get_attr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr);
int32_t port_enable(int32_t device, uint32_t port, bool enable);
int32_t port_set_sync(int32_t device, uint32_t port, uint32_t mode);
int32_t port_clear(int32_t device, uint32_t port, bool all);
int32_t port_show(int32_t device, uint32_t port, bool show);
int32_t port_set_zoom(int32_t device, uint32_t port, const MI_Rect *window);

/* ---- the binding graph's side ---- */

struct PictureSource {
    MI_ModuleId module;
    uint32_t channel;
    bool operator==(const PictureSource &) const = default;
};

bool display_port_exists(int32_t device, uint32_t port);
void display_port_bind(int32_t device, uint32_t port, PictureSource source);
void display_port_unbind(int32_t device, uint32_t port);

/*
 * A picture for a port. Ignored when the port is off or fed by another source by now. Under step
 * pacing waits while the port's queue is full, until `abandoned`.
 */
void display_take(int32_t device, uint32_t port, PictureSource source, const PictureRefPtr &ref,
                  const std::atomic<bool> &abandoned);

/*
 * Wait until display_take of a picture would not wait: decoding can be held back instead of a decoded
 * picture.
 */
void display_wait_room(int32_t device, uint32_t port, PictureSource source,
                       const std::atomic<bool> &abandoned);

/* Wake sources that wait in display_take or display_wait_room, to look at `abandoned`. */
void display_wake_sources();

/* ---- what a device looks like ---- */

struct Rect {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const Rect &) const = default;
};

constexpr uint32_t kPaneSlots = 2 * MI_DISP_INPUT_PORTS;

/* One visible window, in output pixels, all even and inside the output. */
struct Pane {
    uint32_t slot; // the device's ports, then those of the picture in picture
    Rect window;
    Rect crop; // part of the delivered picture
    PictureRefPtr ref;
};

/* A pane that will be visible after a step to come, on an output of this size. */
struct PaneAhead {
    Pane pane;
    int width, height;
    uint64_t step;
};

struct Scene {
    uint64_t step = 0;          // steps made under step pacing
    int width = 0, height = 0;  // output size
    uint8_t background[3] = {}; // Y, U, V
    std::vector<Pane> panes;    // drawn in this order, later over earlier
};

/* What is visible now; marks the pictures as seen. */
Scene display_scene(int32_t device);

/* Refreshes per second of a device. */
uint32_t display_refresh_hz(int32_t device);
bool display_is_enabled(int32_t device);

/* ---- control face ---- */

int display_set_pacing(int32_t device, uint32_t pacing);
int display_advance(int32_t device); // the taking half of a step
int display_wait_queued(int32_t device, uint32_t mask, uint32_t pictures, int32_t timeout_ms);
int display_wait_taken(int32_t device, uint32_t mask, uint64_t pictures, int32_t timeout_ms);
int display_mark(int32_t device);
int port_read_stat(int32_t device, uint32_t port, vboard_port_stat *stat);
int port_read_place(int32_t device, uint32_t port, vboard_port_place *place);

/* Decide for pictures on screen whether a refresh has shown them by now. */
void display_settle_fates();

} // namespace vboard

#endif
