/* display_scene.cpp - which pictures a device's output shows, and where: what a composition draws. */
#include <algorithm>

#include "media/call.h"
#include "media/canvas.h"
#include "media/display_state.h"
#include "media/output_timing.h"
#include "media/pane_geometry.h"

namespace vboard
{
namespace
{

// The visible windows of `owner`'s ports that `output` shows, from pane slot `first_slot` on.
void add_panes(const DisplayState &display, Device &owner, const Device &output, uint32_t first_slot,
               Scene &scene)
{
    const PortPlace place = place_of_ports(display, owner);
    if (place.output != &output) return;
    for (uint32_t port = 0; port < MI_DISP_INPUT_PORTS; ++port) {
        InputPort &input = owner.ports[port];
        if (input.current == nullptr || !is_visible(display, owner, input)) continue;
        const Rect window = output_window(input.attr.window, place.layer->attr, scene.width, scene.height);
        if (window.width < 2 || window.height < 2) continue;
        const Rect crop =
            picture_crop(input.zoom, input.attr, input.current->width(), input.current->height());
        scene.panes.push_back({first_slot + port, window, crop, input.current});
        mark_seen(input);
    }
}

// The size of a device's output, also where no timing was ever set.
void set_output_size(const Device &device, Scene &scene)
{
    const OutputTiming *timing = device.has_attr ? find_output_timing(device.attr.timing) : nullptr;
    scene.width = timing != nullptr ? timing->width : kUsualWidth_px;
    scene.height = timing != nullptr ? timing->height : kUsualHeight_px;
}

} // namespace

std::optional<PaneAhead> pane_ahead(const DisplayState &display, const Device &device, uint32_t port,
                                    const PictureRefPtr &ref)
{
    const PortPlace place = place_of_ports(display, device);
    const InputPort &input = device.ports[port];
    if (place.output != &device || !is_visible(display, device, input)) return std::nullopt;
    if (display.layers[kPipLayer].enabled) return std::nullopt;
    Scene size;
    set_output_size(device, size);
    const auto window_of = [&](const InputPort &of) {
        return output_window(of.attr.window, place.layer->attr, size.width, size.height);
    };
    const Rect window = window_of(input);
    if (window.width < 2 || window.height < 2) return std::nullopt;
    for (const InputPort &other : device.ports)
        if (&other != &input && is_visible(display, device, other) && overlap(window_of(other), window))
            return std::nullopt;
    const Rect crop = picture_crop(input.zoom, input.attr, ref->width(), ref->height());
    return PaneAhead{
        {port, window, crop, ref}, size.width, size.height, device.steps + 1 + input.queue.size()};
}

Scene display_scene(int32_t device)
{
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    Device &unit = *find_device(display, device);
    Scene scene;
    set_output_size(unit, scene);
    scene.step = unit.steps;
    const uint32_t colour = unit.enabled && unit.attr.background != 0 ? unit.attr.background : 0x800080;
    scene.background[0] = static_cast<uint8_t>(std::clamp<uint32_t>(colour >> 8 & 0xff, 16, 235));
    scene.background[1] = static_cast<uint8_t>(colour & 0xff);
    scene.background[2] = static_cast<uint8_t>(colour >> 16 & 0xff);
    if (!unit.enabled) return scene;
    add_panes(display, unit, unit, 0, scene);
    Device &pip = *find_device(display, kPipPortsDevice);
    if (&pip != &unit) add_panes(display, pip, unit, MI_DISP_INPUT_PORTS, scene); // over the others
    return scene;
}

int port_read_place(int32_t device, uint32_t port, vboard_port_place *place)
{
    if (!display_port_exists(device, port) || place == nullptr)
        return refuse_plainly("no place of port %u of display device %d", port, device);
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    const Device &unit = *find_device(display, device);
    const InputPort &input = unit.ports[port];
    *place = {};
    if (!is_visible(display, unit, input)) return 0;
    const PortPlace on = place_of_ports(display, unit);
    Scene size;
    set_output_size(*on.output, size);
    const Rect window = output_window(input.attr.window, on.layer->attr, size.width, size.height);
    if (window.width < 2 || window.height < 2) return 0;
    place->seen = 1;
    place->device = static_cast<int32_t>(on.output - display.devices.data()) + kFirstDevice;
    place->x = static_cast<uint32_t>(window.x);
    place->y = static_cast<uint32_t>(window.y);
    place->width = static_cast<uint32_t>(window.width);
    place->height = static_cast<uint32_t>(window.height);
    return 0;
}

} // namespace vboard
