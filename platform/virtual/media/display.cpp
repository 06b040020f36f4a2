/* display.cpp - settings of display devices, layers and input ports. */
#include "media/display.h"

#include "media/call.h"
#include "media/display_state.h"
#include "media/modules.h"
#include "media/output_timing.h"

namespace vboard
{
namespace
{

constexpr uint32_t kMaxRate_hz = 240;
constexpr uint32_t kMaxLayerSide = 4096; // pixels

int32_t no_device(int32_t device)
{
    return refuse(MI_MODULE_DISP, MI_REASON_BAD_DEVICE, "display device %d", device);
}

int32_t no_record()
{
    return refuse(MI_MODULE_DISP, MI_REASON_NULL_POINTER, "no record");
}

// Run `step` on an existing device, layer or port, under the display lock.
template <typename Step> int32_t with_device(int32_t number, Step step)
{
    const int index = device_index(number);
    if (index < 0) return no_device(number);
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    return step(display, display.devices[static_cast<size_t>(index)]);
}

template <typename Step> int32_t with_layer(uint32_t number, Step step)
{
    if (number >= kLayers) return refuse(MI_MODULE_DISP, MI_REASON_BAD_CHANNEL, "video layer %u", number);
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    return step(display, display.layers[number]);
}

template <typename Step> int32_t with_port(int32_t device, uint32_t port, Step step)
{
    return with_device(device, [&](DisplayState &display, Device &unit) -> int32_t {
        if (port >= MI_DISP_INPUT_PORTS)
            return refuse(MI_MODULE_DISP, MI_REASON_BAD_CHANNEL, "input port %d", static_cast<int32_t>(port));
        return step(display, unit, unit.ports[port]);
    });
}

bool lies_within(const MI_Rect &part, uint32_t width, uint32_t height)
{
    return uint32_t{part.x} + part.width <= width && uint32_t{part.y} + part.height <= height;
}

} // namespace

DisplayState &display_state()
{
    // Never destroyed: workers may still run when the process ends without vboard_reset.
    static DisplayState *display = new DisplayState;
    return *display;
}

int device_index(int32_t device)
{
    const int64_t index = int64_t{device} - kFirstDevice;
    return index >= 0 && index < kDevices ? static_cast<int>(index) : -1;
}

Device *find_device(DisplayState &display, int32_t number)
{
    const int index = device_index(number);
    return index < 0 ? nullptr : &display.devices[static_cast<size_t>(index)];
}

PortPlace place_of_ports(const DisplayState &display, const Device &device)
{
    const auto number = static_cast<int32_t>(&device - display.devices.data()) + kFirstDevice;
    const Layer &pip = display.layers[kPipLayer];
    if (number == kPipPortsDevice && pip.device)
        return {&pip, &display.devices[static_cast<size_t>(device_index(*pip.device))]};
    for (uint32_t layer = 0; layer < kLayers; ++layer)
        if (layer != kPipLayer && display.layers[layer].device == number)
            return {&display.layers[layer], &device};
    return {nullptr, &device};
}

bool is_visible(const DisplayState &display, const Device &device, const InputPort &port)
{
    const PortPlace place = place_of_ports(display, device);
    if (!place.output->enabled || !port.enabled || port.hidden) return false;
    return place.layer != nullptr && place.layer->enabled && port.attr.window.width > 0 &&
           port.attr.window.height > 0;
}

int32_t display_set_attr(int32_t device, const MI_DISP_PubAttr *attr)
{
    if (attr == nullptr) return no_record();
    return with_device(device, [&](DisplayState &, Device &unit) -> int32_t {
        if (find_output_timing(attr->timing) == nullptr)
            return refuse(MI_MODULE_DISP, MI_REASON_UNSUPPORTED, "output timing %u", attr->timing);
        if (attr->frame_rate > kMaxRate_hz)
            return refuse(MI_MODULE_DISP, MI_REASON_BAD_VALUE, "%u frames per second", attr->frame_rate);
        if (unit.enabled && attr->timing != unit.attr.timing)
            return refuse(MI_MODULE_DISP, MI_REASON_NOT_PERMITTED,
                          "timing %u for device %d, which runs with %u", attr->timing, device,
                          unit.attr.timing);
        unit.attr = *attr;
        unit.has_attr = true;
        return MI_SUCCESS;
    });
}

int32_t display_get_attr(int32_t device, MI_DISP_PubAttr *attr)
{
    if (attr == nullptr) return no_record();
    return with_device(device, [&](DisplayState &, Device &unit) -> int32_t {
        if (!unit.has_attr)
            return refuse(MI_MODULE_DISP, MI_REASON_NOT_READY, "device %d has no attributes", device);
        *attr = unit.attr;
        return MI_SUCCESS;
    });
}

int32_t display_enable(int32_t device, bool enable)
{
    return with_device(device, [&](DisplayState &display, Device &unit) -> int32_t {
        if (enable && !unit.has_attr)
            return refuse(MI_MODULE_DISP, MI_REASON_NOT_READY, "device %d has no attributes", device);
        for (InputPort &port : unit.ports)
            settle(display, unit, port);
        unit.enabled = enable;
        return MI_SUCCESS;
    });
}

int32_t layer_bind(uint32_t layer, int32_t device)
{
    if (device_index(device) < 0) return no_device(device);
    return with_layer(layer, [&](DisplayState &, Layer &unit) -> int32_t {
        if (unit.device)
            return refuse(MI_MODULE_DISP, MI_REASON_EXISTS, "layer %u is on device %d", layer, *unit.device);
        unit.device = device;
        return MI_SUCCESS;
    });
}

int32_t layer_unbind(uint32_t layer, int32_t device)
{
    if (device_index(device) < 0) return no_device(device);
    return with_layer(layer, [&](DisplayState &, Layer &unit) -> int32_t {
        if (unit.device != device)
            return refuse(MI_MODULE_DISP, MI_REASON_ABSENT, "layer %u is not on device %d", layer, device);
        if (unit.enabled)
            return refuse(MI_MODULE_DISP, MI_REASON_NOT_PERMITTED, "layer %u is enabled", layer);
        unit.device.reset();
        return MI_SUCCESS;
    });
}

int32_t layer_set_attr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr)
{
    if (attr == nullptr) return no_record();
    return with_layer(layer, [&](DisplayState &display, Layer &unit) -> int32_t {
        if (attr->pixel_format != MI_PIXEL_YUV420_SEMIPLANAR && attr->pixel_format != MI_PIXEL_YUV420_LAYER)
            return refuse(MI_MODULE_DISP, MI_REASON_UNSUPPORTED, "pixel format %u", attr->pixel_format);
        if (attr->width == 0 || attr->height == 0 || attr->width > kMaxLayerSide ||
            attr->height > kMaxLayerSide || attr->window.width == 0 || attr->window.height == 0)
            return refuse(MI_MODULE_DISP, MI_REASON_BAD_VALUE, "a layer of %u x %u in a window of %u x %u",
                          attr->width, attr->height, attr->window.width, attr->window.height);
        if (unit.device) {
            const Device &device = display.devices[static_cast<size_t>(device_index(*unit.device))];
            const OutputTiming *timing = device.has_attr ? find_output_timing(device.attr.timing) : nullptr;
            if (timing != nullptr && !lies_within(attr->window, timing->width, timing->height))
                return refuse(MI_MODULE_DISP, MI_REASON_BAD_VALUE,
                              "window %u,%u %u x %u of layer %u leaves the %u x %u output", attr->window.x,
                              attr->window.y, attr->window.width, attr->window.height, layer, timing->width,
                              timing->height);
        }
        unit.attr = *attr;
        unit.has_attr = true;
        return MI_SUCCESS;
    });
}

int32_t layer_get_attr(uint32_t layer, MI_DISP_VideoLayerAttr *attr)
{
    if (attr == nullptr) return no_record();
    return with_layer(layer, [&](DisplayState &, Layer &unit) -> int32_t {
        *attr = unit.attr;
        return MI_SUCCESS;
    });
}

int32_t layer_enable(uint32_t layer, bool enable)
{
    return with_layer(layer, [&](DisplayState &, Layer &unit) -> int32_t {
        if (enable && !unit.has_attr)
            return refuse(MI_MODULE_DISP, MI_REASON_NOT_READY, "layer %u has no attributes", layer);
        unit.enabled = enable;
        return MI_SUCCESS;
    });
}

int32_t port_set_attr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    if (attr == nullptr) return no_record();
    return with_port(device, port, [&](DisplayState &display, Device &unit, InputPort &input) -> int32_t {
        const Layer *layer = place_of_ports(display, unit).layer;
        if (layer != nullptr && layer->has_attr &&
            !lies_within(attr->window, layer->attr.width, layer->attr.height))
            return refuse(MI_MODULE_DISP, MI_REASON_BAD_VALUE,
                          "window %u,%u %u x %u of port %u leaves the %u x %u layer", attr->window.x,
                          attr->window.y, attr->window.width, attr->window.height, port, layer->attr.width,
                          layer->attr.height);
        input.attr = *attr;
        return MI_SUCCESS;
    });
}

int32_t port_get_attr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr)
{
    if (attr == nullptr) return no_record();
    return with_port(device, port, [&](DisplayState &, Device &, InputPort &input) -> int32_t {
        *attr = input.attr;
        return MI_SUCCESS;
    });
}

int32_t port_enable(int32_t device, uint32_t port, bool enable)
{
    return with_port(device, port, [&](DisplayState &display, Device &unit, InputPort &input) -> int32_t {
        if (input.enabled && !enable) drop_pictures(display, unit, input, true);
        input.enabled = enable;
        return MI_SUCCESS;
    });
}

int32_t port_set_sync(int32_t device, uint32_t port, uint32_t mode)
{
    return with_port(device, port, [&](DisplayState &, Device &, InputPort &) -> int32_t {
        if (mode != E_MI_DISP_SYNC_MODE_FREE_RUN)
            return refuse(MI_MODULE_DISP, MI_REASON_UNSUPPORTED, "sync mode %u", mode);
        return MI_SUCCESS;
    });
}

int32_t port_clear(int32_t device, uint32_t port, bool all)
{
    return with_port(device, port, [&](DisplayState &display, Device &unit, InputPort &input) -> int32_t {
        drop_pictures(display, unit, input, all);
        return MI_SUCCESS;
    });
}

int32_t port_show(int32_t device, uint32_t port, bool show)
{
    return with_port(device, port, [&](DisplayState &display, Device &unit, InputPort &input) -> int32_t {
        settle(display, unit, input);
        input.hidden = !show;
        return MI_SUCCESS;
    });
}

int32_t port_set_zoom(int32_t device, uint32_t port, const MI_Rect *window)
{
    if (window == nullptr) return no_record();
    return with_port(device, port, [&](DisplayState &, Device &, InputPort &input) -> int32_t {
        const bool knows_source = input.attr.source_width != 0 && input.attr.source_height != 0;
        if (knows_source && !lies_within(*window, input.attr.source_width, input.attr.source_height))
            return refuse(MI_MODULE_DISP, MI_REASON_BAD_VALUE,
                          "zoom window %u,%u %u x %u leaves the %u x %u source of port %u", window->x,
                          window->y, window->width, window->height, input.attr.source_width,
                          input.attr.source_height, port);
        input.zoom = *window;
        return MI_SUCCESS;
    });
}

bool display_is_enabled(int32_t device)
{
    const int index = device_index(device);
    if (index < 0) return false;
    DisplayState &display = display_state();
    const std::lock_guard guard(display.mutex);
    return display.devices[static_cast<size_t>(index)].enabled;
}

} // namespace vboard
