/*
 * Display bring-up: device, video layer, and one input port a camera in an even grid of panes.
 *
 * Two roads. start_disp runs once at start-up and takes the timing through the table. vo_start runs
 * for the GUI, uses enNorm_vga as a display output value as it stands, and first stops what could
 * still feed what it changes: ports before the layer, the layer before the device.
 * UI thread.
 */
#include "core/checked_call.h"
#include "core/device_state.h"
#include "core/log.h"
#include "core/output_timing.h"
#include "core/selection_state.h"
#include "mi_disp.h"
#include "mi_vdec.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "sdk3531Lib.c";

constexpr int32_t kMainDevice = 0;
constexpr int32_t kFurtherDevice = 2;
constexpr uint32_t kMainLayer = 0;
constexpr uint32_t kFurtherDeviceLayer = 3;
constexpr uint32_t kStartBackground = 0x800080; // black as the display's registers take it
constexpr int32_t kHdmiOnlyGuiWidth = 2560;     // more than the VGA converter can do
constexpr int32_t kMostPorts = NVRHAL_DISPLAY_PORTS;
static_assert(kMostPorts == MI_DISP_INPUT_PORTS);
constexpr int32_t kFlagDevices = 16; // devices that have started and laid-out flags
constexpr uint32_t kStartFailed = static_cast<uint32_t>(-1);
constexpr uint32_t kPlatformCallFailed = 1;

// Set once a device has been started, or its panes computed, and never cleared. Slot 0 is device
// -1, slot d + 1 device d. UI thread only.
uint32_t vo_start_flag[1 + kFlagDevices];
uint32_t vo_setxy_flag[1 + kFlagDevices];

/** A device's flag; a device beyond the table counts as not set, and a mark on it is dropped. */
bool is_marked(const uint32_t (&flags)[1 + kFlagDevices], int32_t dev)
{
    return dev >= -1 && dev < kFlagDevices && flags[dev + 1] != 0;
}

void mark(uint32_t (&flags)[1 + kFlagDevices], int32_t dev)
{
    if (dev >= -1 && dev < kFlagDevices) flags[dev + 1] = 1;
}

/** Window of a pane: its corner rounded to even once more, its size as it was computed or stored. */
MI_Rect window_at_even_corner(const PaneRect &pane)
{
    return {static_cast<uint16_t>(even(pane.x)), static_cast<uint16_t>(even(pane.y)),
            static_cast<uint16_t>(pane.w), static_cast<uint16_t>(pane.h)};
}

/** Configure, enable and clear one port of the start-up grid. False when a call failed. */
bool start_grid_port(uint32_t port, const PaneRect &pane)
{
    MI_DISP_InputPortAttr attr = {};
    MI_VDEC_OutputPortAttr decoder_output = {};

    if (failed_test("MI_DISP_GetInputPortAttr(0, u32InputPort, &stInputPortAttr)",
                    MI_DISP_GetInputPortAttr(kMainDevice, port, &attr)))
        return false;
    attr.window = window_at_even_corner(pane);
    if (MI_VDEC_GetOutputPortAttr(port, &decoder_output) != 0) decoder_output = {};
    attr.source_width = decoder_output.width;
    attr.source_height = decoder_output.height;
    if (failed_test("MI_DISP_SetInputPortAttr(0, u32InputPort, &stInputPortAttr)",
                    MI_DISP_SetInputPortAttr(kMainDevice, port, &attr)))
        return false;
    if (failed_test("MI_DISP_GetInputPortAttr(0, u32InputPort, &stInputPortAttr)",
                    MI_DISP_GetInputPortAttr(kMainDevice, port, &attr)))
        return false;
    log_line("ENABLE");
    if (failed_test("MI_DISP_EnableInputPort(0, u32InputPort)", MI_DISP_EnableInputPort(kMainDevice, port)))
        return false;
    if (failed_test("MI_DISP_SetInputPortSyncMode(0, u32InputPort, E_MI_DISP_SYNC_MODE_FREE_RUN)",
                    MI_DISP_SetInputPortSyncMode(kMainDevice, port, E_MI_DISP_SYNC_MODE_FREE_RUN)))
        return false;
    if (failed_test("MI_DISP_ClearInputPortBuffer(0, u32InputPort, TRUE)",
                    MI_DISP_ClearInputPortBuffer(kMainDevice, port, 1)))
        return false;
    log_text("port %u source %ux%u window %u,%u %ux%u\n", port, attr.source_width, attr.source_height,
             attr.window.x, attr.window.y, attr.window.width, attr.window.height);
    return true;
}

/** A call on a port of vo_start_chn, under whose name a failure is printed. The call's code. */
#define failed_port_call(call)                                                                               \
    failed_call(call, log_text("%s(%d):failed with %#x!\n", "vo_start_chn", __LINE__, failed_code))

/** Write one pane's window to its port; the source size 0 stands for "as delivered". */
int32_t set_port_window(int32_t dev, int32_t port, const PaneRect &pane)
{
    MI_DISP_InputPortAttr attr = {};
    attr.window = window_at_even_corner(pane);
    return MI_DISP_SetInputPortAttr(dev, static_cast<uint32_t>(port), &attr);
}

/** First time: compute the panes, keep them and enable their ports. */
int32_t lay_ports_out(int32_t dev, int32_t port_count, uint32_t width, uint32_t height)
{
    PaneRect(&panes)[kPaneChannels] = set_bind_para[pane_bank(dev)];
    for (int32_t port = 0; port < port_count; ++port) {
        panes[port] = grid_pane(grid_side(port_count), static_cast<uint32_t>(port), width, height);
        if (failed_port_call(set_port_window(dev, port, panes[port]))) return -1;
        log_line("ENABLE");
        if (failed_port_call(MI_DISP_EnableInputPort(dev, static_cast<uint32_t>(port)))) return -1;
    }
    mark(vo_setxy_flag, dev);
    return 0;
}

/** Later times: apply the kept panes again. */
int32_t reapply_ports(int32_t dev, int32_t port_count)
{
    // Only the main and the secondary device give up at the first failure; a further device goes
    // on and reports success, on purpose.
    const bool stops = dev == kMainDevice || dev == -1;
    const PaneRect(&panes)[kPaneChannels] = set_bind_para[pane_bank(dev)];
    for (int32_t port = 0; port < port_count; ++port) {
        if (failed_port_call(set_port_window(dev, port, panes[port])) && stops) return -1;
        if (failed_port_call(MI_DISP_EnableInputPort(dev, static_cast<uint32_t>(port))) && stops) return -1;
    }
    return 0;
}

} // namespace

uint32_t start_disp(int32_t port_count)
{
    const ScreenSize screen = look_up_output_timing();
    const uint32_t side = grid_side(port_count);

    const char *name = shown_timing_name(D_DispTiming);
    if (name == nullptr) {
        log_error_line(kSource, "Unsupported timing!");
        return kStartFailed;
    }
    log_line(name);

    MI_DISP_PubAttr pub = {};
    pub.background = kStartBackground;
    pub.interface_type = MI_DISP_INTERFACE_DEFAULT;
    pub.timing = D_DispTiming;
    if (failed_test("MI_DISP_SetPubAttr(DispDev, &stPubAttr)", MI_DISP_SetPubAttr(kMainDevice, &pub)))
        return kPlatformCallFailed;
    if (failed_test("MI_DISP_Enable(DispDev)", MI_DISP_Enable(kMainDevice))) return kPlatformCallFailed;

    MI_DISP_VideoLayerAttr layer = {};
    layer.window = {0, 0, screen.width, screen.height};
    layer.width = screen.width;
    layer.height = screen.height;
    layer.pixel_format = MI_PIXEL_YUV420_LAYER;
    if (failed_test("MI_DISP_BindVideoLayer(DispLayer, DispDev)",
                    MI_DISP_BindVideoLayer(kMainLayer, kMainDevice)))
        return kPlatformCallFailed;
    if (failed_test("MI_DISP_SetVideoLayerAttr(DispLayer, &stLayerAttr)",
                    MI_DISP_SetVideoLayerAttr(kMainLayer, &layer)))
        return kPlatformCallFailed;
    if (failed_test("MI_DISP_GetVideoLayerAttr(DispLayer, &stLayerAttr)",
                    MI_DISP_GetVideoLayerAttr(kMainLayer, &layer)))
        return kPlatformCallFailed;
    log_text("[%s %d]Get Video Layer Size [%d, %d] !!!\n", __func__, __LINE__, static_cast<int>(layer.width),
             static_cast<int>(layer.height));
    log_text("[%s %d]Get Video Layer DispWin [%d, %d, %d, %d] !!!\n", __func__, __LINE__, layer.window.x,
             layer.window.y, layer.window.width, layer.window.height);
    if (failed_test("MI_DISP_EnableVideoLayer(DispLayer)", MI_DISP_EnableVideoLayer(kMainLayer)))
        return kPlatformCallFailed;

    // The code in the message is that of a second attempt.
    if (failed_call(ST_Hdmi_Start(0, D_HdmiTiming), log_exec_failure(ST_Hdmi_Start(0, D_HdmiTiming))))
        return kPlatformCallFailed;

    log_text("InputPortNum=%d\n", port_count);
    for (int32_t port = 0; port < port_count; ++port) {
        const uint32_t index = static_cast<uint32_t>(port);
        if (!start_grid_port(index, grid_pane(side, index, screen.width, screen.height)))
            return kPlatformCallFailed;
    }
    return 0;
}

uint32_t vo_start(int32_t dev, uint32_t, uint32_t frame_rate, uint32_t pixel_format, int32_t port_count)
{
    MI_DISP_PubAttr attr = {};
    if (dev == kMainDevice) {
        attr.interface_type = DdvrInputParam.gui_width == kHdmiOnlyGuiWidth ? MI_DISP_INTERFACE_HDMI
                                                                            : MI_DISP_INTERFACE_VGA_HDMI;
        attr.timing = load_word(enNorm_vga); // as it stands: a timing code is read as an output value
    }

    // Ports first: neither layer nor device can change while a port still feeds them.
    if (vo_stop_chn(kMainDevice, port_count) != 0) log_error_line(kSource, "vo_stop_chn failed!");
    if (!is_marked(vo_start_flag, dev) && vo_enable(dev, &attr, frame_rate, pixel_format) != 0) {
        log_error_line(kSource, "vo_start_devlayer failed!");
        return kStartFailed;
    }
    if (vo_start_chn(kMainDevice, &attr, port_count) != 0) {
        log_error_line(kSource, "vo_start_chn failed!");
        return kStartFailed;
    }
    mark(vo_start_flag, dev);
    return 0;
}

int32_t vo_enable(int32_t dev, const MI_DISP_PubAttr *attr, uint32_t frame_rate, uint32_t pixel_format)
{
    if (attr == nullptr) return -1;
    if (frame_rate == 0) {
        log_error(kSource, "vo u32SrcFrmRate invaild! %d!\n", static_cast<int>(frame_rate));
        return -1;
    }

    const uint32_t layer = dev == kFurtherDevice ? kFurtherDeviceLayer : kMainLayer;
    if (dev == kMainDevice) log_text("DHD0 the vo dev is %d \n", dev);
    if (dev == kFurtherDevice) log_text("DSD0 the vo dev is %d \n", dev);
    log_text("the vo dev is %d ,vo layer is %d!!!!!!!!!!!!!!\n", dev, static_cast<int>(layer));

    if (failed_call(MI_DISP_DisableVideoLayer(layer), log_code(kSource, "failed with %#x!\n"))) return -1;
    if (failed_call(MI_DISP_Disable(dev), log_code(kSource, "failed with %#x!\n"))) return -1;
    if (failed_call(MI_DISP_SetPubAttr(dev, attr), log_code(kSource, "failed with %#x!\n"))) return -1;
    if (failed_call(MI_DISP_Enable(dev), log_code(kSource, "failed with %#x!\n"))) return -1;

    uint32_t width = 0, height = 0, rate = 0;
    const int32_t known = vo_get_wh(attr->timing, &width, &height, &rate);
    log_text("the vo sync is %d   u32Width:%d  32Height:%d  u32Frm:%d !\n", static_cast<int>(attr->timing),
             static_cast<int>(width), static_cast<int>(height), static_cast<int>(rate));
    if (known != 0) return -1;

    MI_DISP_VideoLayerAttr layer_attr = {};
    layer_attr.window = {0, 0, static_cast<uint16_t>(width), static_cast<uint16_t>(height)};
    layer_attr.width = width;
    layer_attr.height = height;
    layer_attr.pixel_format = pixel_format;
    if (failed_call(MI_DISP_SetVideoLayerAttr(layer, &layer_attr),
                    log_error(kSource, "failed with %#x %d,%d,%d,%d !\n", failed_code, static_cast<int>(rate),
                              static_cast<int>(width), static_cast<int>(height), dev)))
        return -1;
    if (failed_call(MI_DISP_EnableVideoLayer(layer), log_code(kSource, "failed with %#x!\n"))) return -1;
    return 0;
}

int32_t vo_disable(int32_t dev, uint32_t layer)
{
    if (failed_call(MI_DISP_DisableVideoLayer(layer), log_code(kSource, "failed with %#x!\n"))) return -1;
    if (failed_call(MI_DISP_Disable(dev), log_code(kSource, "failed with %#x!\n"))) return -1;
    return 0;
}

int32_t vo_start_chn(int32_t dev, const MI_DISP_PubAttr *attr, int32_t port_count)
{
    if (attr == nullptr) return -1;
    if (port_count < 1 || port_count > kMostPorts) {
        log_error(kSource, "failed with %#x!\n", 0u);
        return -1;
    }
    uint32_t width = 0, height = 0, rate = 0;
    if (vo_get_wh(attr->timing, &width, &height, &rate) != 0) return -1;
    if (is_marked(vo_setxy_flag, dev)) return reapply_ports(dev, port_count);
    return lay_ports_out(dev, port_count, width, height);
}

int32_t vo_stop_chn(int32_t dev, int32_t port_count)
{
    int32_t result = 0;
    for (int32_t port = 0; port < port_count; ++port) {
        log_line("DISENABLE");
        result = failed_call(
            MI_DISP_DisableInputPort(dev, static_cast<uint32_t>(port)),
            log_text("[%s-%d] Vo fault to unbind vpss errno is 0x%x\n", kSource, __LINE__, failed_code));
    }
    return result;
}
