/* points_disp_layer.c - display layers and ports: settings, order and refusals. */
#include <string.h>

#include "disp_settings.h"
#include "points.h"
#include "record.h"

/* -------------------------------------------------------------------------------------- layers --- */

POINT(bind_layer, "disp.bind-layer.succeeds", "MI_DISP_BindVideoLayer MI_DISP_UnBindVideoLayer",
      "a layer is put on a device, taken off, and put on another one")
{
    NEED(MI_SYS_Init());
    OK(MI_DISP_BindVideoLayer(LAYER, DEV));
    OK(MI_DISP_UnBindVideoLayer(LAYER, DEV));
    OK(MI_DISP_BindVideoLayer(LAYER, 2));
    OK(MI_DISP_UnBindVideoLayer(LAYER, 2));
}

POINT(bind_layer_twice, "disp.bind-layer.twice-exists", "MI_DISP_BindVideoLayer",
      "a layer that is on a device gives EXISTS")
{
    NEED(MI_SYS_Init());
    NEED(MI_DISP_BindVideoLayer(LAYER, DEV));
    REFUSED(MI_DISP_BindVideoLayer(LAYER, DEV), MI_MODULE_DISP, MI_REASON_EXISTS);
    REFUSED(MI_DISP_BindVideoLayer(LAYER, 2), MI_MODULE_DISP, MI_REASON_EXISTS);
}

POINT(bind_layer_bad, "disp.bind-layer.refusals", "MI_DISP_BindVideoLayer",
      "no such layer gives BAD_CHANNEL, no such device BAD_DEVICE")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_BindVideoLayer(NO_LAYER, DEV), MI_MODULE_DISP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DISP_BindVideoLayer(LAYER, NO_DEVICE), MI_MODULE_DISP, MI_REASON_BAD_DEVICE);
}

POINT(unbind_layer_absent, "disp.unbind-layer.absent", "MI_DISP_UnBindVideoLayer",
      "a layer that is not on that device gives ABSENT, and stays where it is")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_UnBindVideoLayer(LAYER, DEV), MI_MODULE_DISP, MI_REASON_ABSENT);
    NEED(MI_DISP_BindVideoLayer(LAYER, DEV));
    REFUSED(MI_DISP_UnBindVideoLayer(LAYER, 2), MI_MODULE_DISP, MI_REASON_ABSENT);
    OK(MI_DISP_UnBindVideoLayer(LAYER, DEV));
}

POINT(unbind_layer_enabled, "disp.unbind-layer.enabled", "MI_DISP_UnBindVideoLayer",
      "taking an enabled layer off its device gives NOT_PERMITTED")
{
    need_display(DEV);
    REFUSED(MI_DISP_UnBindVideoLayer(LAYER, DEV), MI_MODULE_DISP, MI_REASON_NOT_PERMITTED);
    NEED(MI_DISP_DisableVideoLayer(LAYER));
    OK(MI_DISP_UnBindVideoLayer(LAYER, DEV));
}

POINT(unbind_layer_bad, "disp.unbind-layer.refusals", "MI_DISP_UnBindVideoLayer",
      "no such layer gives BAD_CHANNEL, no such device BAD_DEVICE")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_UnBindVideoLayer(NO_LAYER, DEV), MI_MODULE_DISP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DISP_UnBindVideoLayer(LAYER, NO_DEVICE), MI_MODULE_DISP, MI_REASON_BAD_DEVICE);
}

POINT(layer_kept, "disp.layer-attr.as-set", "MI_DISP_SetVideoLayerAttr MI_DISP_GetVideoLayerAttr",
      "a layer's attributes are read as they were set, of each layer for itself")
{
    MI_DISP_VideoLayerAttr read;
    NEED(MI_SYS_Init());
    for (uint32_t layer = 0; layer < 4; ++layer) {
        const MI_DISP_VideoLayerAttr set = {{(uint16_t)(8 * layer), 16, 640, 360},
                                            1280 + 2 * layer,
                                            720,
                                            layer % 2 ? MI_PIXEL_YUV420_SEMIPLANAR : MI_PIXEL_YUV420_LAYER,
                                            0};
        OK(MI_DISP_SetVideoLayerAttr(layer, &set));
    }
    for (uint32_t layer = 0; layer < 4; ++layer) {
        memset(&read, 0xEE, sizeof read);
        OK(MI_DISP_GetVideoLayerAttr(layer, &read));
        HOLDS(read.window.x == 8 * layer && read.window.y == 16 && read.window.width == 640 &&
                  read.window.height == 360 && read.width == 1280 + 2 * layer && read.height == 720 &&
                  read.pixel_format == (layer % 2 ? MI_PIXEL_YUV420_SEMIPLANAR : MI_PIXEL_YUV420_LAYER),
              "%s is not what was set", last_call_text());
    }
}

POINT_WITH(FRESH, layer_unset, "disp.layer-attr.unset", "MI_DISP_GetVideoLayerAttr",
           "a layer that was never set reads zeros")
{
    MI_DISP_VideoLayerAttr read;
    static const MI_DISP_VideoLayerAttr zeros;
    memset(&read, 0xEE, sizeof read);
    NEED(MI_SYS_Init());
    OK(MI_DISP_GetVideoLayerAttr(LAYER, &read));
    HOLDS(memcmp(&read, &zeros, sizeof read) == 0, "%s", last_call_text());
}

POINT(layer_outside, "disp.layer-attr.outside", "MI_DISP_SetVideoLayerAttr",
      "a window that leaves the output of the layer's device, or an empty one, gives BAD_VALUE")
{
    MI_DISP_VideoLayerAttr attr = usual_layer;
    need_display(DEV);
    attr.window.x = 2;
    REFUSED(MI_DISP_SetVideoLayerAttr(LAYER, &attr), MI_MODULE_DISP, MI_REASON_BAD_VALUE);
    attr = usual_layer;
    attr.window.height = 0;
    REFUSED(MI_DISP_SetVideoLayerAttr(LAYER, &attr), MI_MODULE_DISP, MI_REASON_BAD_VALUE);
    attr = usual_layer;
    attr.width = 0;
    REFUSED(MI_DISP_SetVideoLayerAttr(LAYER, &attr), MI_MODULE_DISP, MI_REASON_BAD_VALUE);
}

POINT(layer_format, "disp.layer-attr.bad-format", "MI_DISP_SetVideoLayerAttr",
      "an unknown pixel format gives UNSUPPORTED, and the attributes stay")
{
    MI_DISP_VideoLayerAttr attr = usual_layer, read;
    NEED(MI_SYS_Init());
    NEED(MI_DISP_SetVideoLayerAttr(LAYER, &usual_layer));
    attr.pixel_format = 77;
    REFUSED(MI_DISP_SetVideoLayerAttr(LAYER, &attr), MI_MODULE_DISP, MI_REASON_UNSUPPORTED);
    NEED(MI_DISP_GetVideoLayerAttr(LAYER, &read));
    HOLDS(read.pixel_format == usual_layer.pixel_format, "the refused format is in force");
}

POINT(layer_refused, "disp.layer-attr.refusals", "MI_DISP_SetVideoLayerAttr MI_DISP_GetVideoLayerAttr",
      "no record gives NULL_POINTER, no such layer BAD_CHANNEL")
{
    MI_DISP_VideoLayerAttr attr = usual_layer;
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_SetVideoLayerAttr(LAYER, NULL), MI_MODULE_DISP, MI_REASON_NULL_POINTER);
    REFUSED(MI_DISP_GetVideoLayerAttr(LAYER, NULL), MI_MODULE_DISP, MI_REASON_NULL_POINTER);
    REFUSED(MI_DISP_SetVideoLayerAttr(NO_LAYER, &attr), MI_MODULE_DISP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DISP_GetVideoLayerAttr(NO_LAYER, &attr), MI_MODULE_DISP, MI_REASON_BAD_CHANNEL);
}

POINT(layer_enable, "disp.enable-layer.succeeds", "MI_DISP_EnableVideoLayer MI_DISP_DisableVideoLayer",
      "a layer is shown and dropped; doing either twice is accepted")
{
    need_display(DEV);
    OK(MI_DISP_EnableVideoLayer(LAYER));
    OK(MI_DISP_DisableVideoLayer(LAYER));
    OK(MI_DISP_DisableVideoLayer(LAYER));
    OK(MI_DISP_EnableVideoLayer(LAYER));
}

POINT_WITH(FRESH, layer_enable_unset, "disp.enable-layer.unset", "MI_DISP_EnableVideoLayer",
           "enabling a layer without attributes gives NOT_READY")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_EnableVideoLayer(LAYER), MI_MODULE_DISP, MI_REASON_NOT_READY);
}

POINT(layer_enable_bad, "disp.enable-layer.bad-layer", "MI_DISP_EnableVideoLayer MI_DISP_DisableVideoLayer",
      "no such layer gives BAD_CHANNEL")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_DISP_EnableVideoLayer(NO_LAYER), MI_MODULE_DISP, MI_REASON_BAD_CHANNEL);
    REFUSED(MI_DISP_DisableVideoLayer(NO_LAYER), MI_MODULE_DISP, MI_REASON_BAD_CHANNEL);
}

/* --------------------------------------------------------------------------------------- ports --- */

POINT(port_kept, "disp.port-attr.as-set", "MI_DISP_SetInputPortAttr MI_DISP_GetInputPortAttr",
      "a port's attributes are read as they were set, of each of the sixteen for itself")
{
    need_display(DEV);
    for (uint32_t port = 0; port < MI_DISP_INPUT_PORTS; ++port) {
        const uint16_t at = (uint16_t)(16 * port);
        const MI_DISP_InputPortAttr set = {
            {at, (uint16_t)(at + 4), 320, 200}, (uint16_t)(352 + 2 * port), 288};
        OK(MI_DISP_SetInputPortAttr(DEV, port, &set));
    }
    for (uint32_t port = 0; port < MI_DISP_INPUT_PORTS; ++port) {
        MI_DISP_InputPortAttr read;
        memset(&read, 0xEE, sizeof read);
        OK(MI_DISP_GetInputPortAttr(DEV, port, &read));
        HOLDS(read.window.x == 16 * port && read.window.y == 16 * port + 4 && read.window.width == 320 &&
                  read.window.height == 200 && read.source_width == 352 + 2 * port &&
                  read.source_height == 288,
              "%s is not what was set", last_call_text());
    }
}

POINT(port_devices, "disp.port-attr.own-device", "MI_DISP_SetInputPortAttr MI_DISP_GetInputPortAttr",
      "the ports of the devices are different ones")
{
    MI_DISP_InputPortAttr read;
    NEED(MI_SYS_Init());
    for (int i = 0; i < 4; ++i) {
        const MI_DISP_InputPortAttr set = {{(uint16_t)(2 * i), 0, 64, 64}, 0, 0};
        OK(MI_DISP_SetInputPortAttr(devices[i], PORT, &set));
    }
    for (int i = 0; i < 4; ++i) {
        OK(MI_DISP_GetInputPortAttr(devices[i], PORT, &read));
        HOLDS(read.window.x == 2 * i, "%s: the window of another device", last_call_text());
    }
}

POINT_WITH(FRESH, port_unset, "disp.port-attr.unset", "MI_DISP_GetInputPortAttr",
           "a port that was never set reads zeros")
{
    MI_DISP_InputPortAttr read;
    static const MI_DISP_InputPortAttr zeros;
    memset(&read, 0xEE, sizeof read);
    NEED(MI_SYS_Init());
    OK(MI_DISP_GetInputPortAttr(DEV, PORT, &read));
    HOLDS(memcmp(&read, &zeros, sizeof read) == 0, "%s", last_call_text());
}

POINT(port_outside, "disp.port-attr.outside", "MI_DISP_SetInputPortAttr",
      "a window that leaves the layer gives BAD_VALUE, and the attributes stay")
{
    MI_DISP_InputPortAttr attr = usual_port, read;
    need_display(DEV);
    NEED(MI_DISP_SetInputPortAttr(DEV, PORT, &usual_port));
    attr.window.x = SCREEN_WIDTH - 318;
    REFUSED(MI_DISP_SetInputPortAttr(DEV, PORT, &attr), MI_MODULE_DISP, MI_REASON_BAD_VALUE);
    attr = usual_port;
    attr.window.y = SCREEN_HEIGHT - 238;
    REFUSED(MI_DISP_SetInputPortAttr(DEV, PORT, &attr), MI_MODULE_DISP, MI_REASON_BAD_VALUE);
    NEED(MI_DISP_GetInputPortAttr(DEV, PORT, &read));
    HOLDS(memcmp(&read, &usual_port, sizeof read) == 0, "the refused window is in force");
    attr.window = (MI_Rect){0, 0, SCREEN_WIDTH, SCREEN_HEIGHT};
    OK(MI_DISP_SetInputPortAttr(DEV, PORT, &attr));
}

/* Every port call with a device and a port that do not exist. */
static void each_port_refused(int32_t device, uint32_t port, uint32_t reason)
{
    MI_DISP_InputPortAttr attr = usual_port;
    const MI_Rect whole = {0, 0, 0, 0};
    REFUSED(MI_DISP_SetInputPortAttr(device, port, &attr), MI_MODULE_DISP, reason);
    REFUSED(MI_DISP_GetInputPortAttr(device, port, &attr), MI_MODULE_DISP, reason);
    REFUSED(MI_DISP_EnableInputPort(device, port), MI_MODULE_DISP, reason);
    REFUSED(MI_DISP_DisableInputPort(device, port), MI_MODULE_DISP, reason);
    REFUSED(MI_DISP_SetInputPortSyncMode(device, port, E_MI_DISP_SYNC_MODE_FREE_RUN), MI_MODULE_DISP, reason);
    REFUSED(MI_DISP_ClearInputPortBuffer(device, port, 1), MI_MODULE_DISP, reason);
    REFUSED(MI_DISP_ShowInputPort(device, port), MI_MODULE_DISP, reason);
    REFUSED(MI_DISP_HideInputPort(device, port), MI_MODULE_DISP, reason);
    REFUSED(MI_DISP_SetZoomInWindow(device, port, &whole), MI_MODULE_DISP, reason);
}

#define PORT_CALLS                                                                                           \
    "MI_DISP_SetInputPortAttr MI_DISP_GetInputPortAttr MI_DISP_EnableInputPort MI_DISP_DisableInputPort "    \
    "MI_DISP_SetInputPortSyncMode MI_DISP_ClearInputPortBuffer MI_DISP_ShowInputPort MI_DISP_HideInputPort " \
    "MI_DISP_SetZoomInWindow"

POINT(port_bad, "disp.port.bad-port", PORT_CALLS, "each call to a port beyond the last one gives BAD_CHANNEL")
{
    need_display(DEV);
    each_port_refused(DEV, NO_PORT, MI_REASON_BAD_CHANNEL);
    each_port_refused(DEV, MI_DISP_INPUT_PORTS, MI_REASON_BAD_CHANNEL);
}

POINT(port_bad_device, "disp.port.bad-device", PORT_CALLS,
      "each call to a port of no device gives BAD_DEVICE")
{
    need_display(DEV);
    each_port_refused(NO_DEVICE, PORT, MI_REASON_BAD_DEVICE);
    each_port_refused(-2, PORT, MI_REASON_BAD_DEVICE);
}

POINT(port_null, "disp.port.null",
      "MI_DISP_SetInputPortAttr MI_DISP_GetInputPortAttr MI_DISP_SetZoomInWindow",
      "a missing record gives NULL_POINTER")
{
    need_display(DEV);
    REFUSED(MI_DISP_SetInputPortAttr(DEV, PORT, NULL), MI_MODULE_DISP, MI_REASON_NULL_POINTER);
    REFUSED(MI_DISP_GetInputPortAttr(DEV, PORT, NULL), MI_MODULE_DISP, MI_REASON_NULL_POINTER);
    REFUSED(MI_DISP_SetZoomInWindow(DEV, PORT, NULL), MI_MODULE_DISP, MI_REASON_NULL_POINTER);
}

POINT(port_repeated, "disp.port.repeated",
      "MI_DISP_EnableInputPort MI_DISP_DisableInputPort MI_DISP_ShowInputPort "
      "MI_DISP_HideInputPort MI_DISP_ClearInputPortBuffer",
      "enabling, disabling, showing, hiding and clearing are accepted twice, in any state")
{
    need_display(DEV);
    OK(MI_DISP_DisableInputPort(DEV, PORT));
    OK(MI_DISP_ClearInputPortBuffer(DEV, PORT, 1));
    for (int i = 0; i < 2; ++i)
        OK(MI_DISP_HideInputPort(DEV, PORT));
    for (int i = 0; i < 2; ++i)
        OK(MI_DISP_EnableInputPort(DEV, PORT));
    for (int i = 0; i < 2; ++i)
        OK(MI_DISP_ShowInputPort(DEV, PORT));
    for (int i = 0; i < 2; ++i)
        OK(MI_DISP_ClearInputPortBuffer(DEV, PORT, i));
    for (int i = 0; i < 2; ++i)
        OK(MI_DISP_DisableInputPort(DEV, PORT));
}

POINT(port_sync, "disp.sync-mode.free-run", "MI_DISP_SetInputPortSyncMode",
      "free running is accepted, an unknown mode gives UNSUPPORTED")
{
    need_display(DEV);
    OK(MI_DISP_SetInputPortSyncMode(DEV, PORT, E_MI_DISP_SYNC_MODE_FREE_RUN));
    REFUSED(MI_DISP_SetInputPortSyncMode(DEV, PORT, 77), MI_MODULE_DISP, MI_REASON_UNSUPPORTED);
}

POINT(zoom_outside, "disp.zoom.outside", "MI_DISP_SetZoomInWindow",
      "a zoom window that leaves the port's source gives BAD_VALUE; the whole source is accepted")
{
    const MI_Rect inside = {0, 0, 352, 288}, wide = {2, 0, 352, 288}, high = {0, 200, 100, 90};
    need_display(DEV);
    NEED(MI_DISP_SetInputPortAttr(DEV, PORT, &usual_port));
    OK(MI_DISP_SetZoomInWindow(DEV, PORT, &inside));
    REFUSED(MI_DISP_SetZoomInWindow(DEV, PORT, &wide), MI_MODULE_DISP, MI_REASON_BAD_VALUE);
    REFUSED(MI_DISP_SetZoomInWindow(DEV, PORT, &high), MI_MODULE_DISP, MI_REASON_BAD_VALUE);
}

const Point *const disp_layer_points[] = {
    &point_bind_layer,
    &point_bind_layer_twice,
    &point_bind_layer_bad,
    &point_unbind_layer_absent,
    &point_unbind_layer_enabled,
    &point_unbind_layer_bad,
    &point_layer_kept,
    &point_layer_unset,
    &point_layer_outside,
    &point_layer_format,
    &point_layer_refused,
    &point_layer_enable,
    &point_layer_enable_unset,
    &point_layer_enable_bad,
    &point_port_kept,
    &point_port_devices,
    &point_port_unset,
    &point_port_outside,
    &point_port_bad,
    &point_port_bad_device,
    &point_port_null,
    &point_port_repeated,
    &point_port_sync,
    &point_zoom_outside,
    NULL,
};
