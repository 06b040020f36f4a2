/* disp.cpp - entry points of the display module. */
#include "mi_disp.h"

#include "media/call.h"
#include "media/display.h"

using namespace vboard;

namespace
{

CallSite set_pub_site{"MI_DISP_SetPubAttr"};
CallSite get_pub_site{"MI_DISP_GetPubAttr"};
CallSite enable_site{"MI_DISP_Enable"};
CallSite disable_site{"MI_DISP_Disable"};
CallSite bind_layer_site{"MI_DISP_BindVideoLayer"};
CallSite unbind_layer_site{"MI_DISP_UnBindVideoLayer"};
CallSite set_layer_site{"MI_DISP_SetVideoLayerAttr"};
CallSite get_layer_site{"MI_DISP_GetVideoLayerAttr"};
CallSite enable_layer_site{"MI_DISP_EnableVideoLayer"};
CallSite disable_layer_site{"MI_DISP_DisableVideoLayer"};
CallSite set_port_site{"MI_DISP_SetInputPortAttr"};
CallSite get_port_site{"MI_DISP_GetInputPortAttr"};
CallSite enable_port_site{"MI_DISP_EnableInputPort"};
CallSite disable_port_site{"MI_DISP_DisableInputPort"};
CallSite sync_site{"MI_DISP_SetInputPortSyncMode"};
CallSite clear_site{"MI_DISP_ClearInputPortBuffer"};
CallSite show_site{"MI_DISP_ShowInputPort"};
CallSite hide_site{"MI_DISP_HideInputPort"};
CallSite zoom_site{"MI_DISP_SetZoomInWindow"};

} // namespace

extern "C" {

int32_t MI_DISP_SetPubAttr(int32_t device, const MI_DISP_PubAttr *attr)
{
    return platform_call(
        set_pub_site, [&] { return display_set_attr(device, attr); }, device, attr);
}

int32_t MI_DISP_GetPubAttr(int32_t device, MI_DISP_PubAttr *attr)
{
    return platform_call(
        get_pub_site, [&] { return display_get_attr(device, attr); }, device, attr);
}

int32_t MI_DISP_Enable(int32_t device)
{
    return platform_call(
        enable_site, [&] { return display_enable(device, true); }, device);
}

int32_t MI_DISP_Disable(int32_t device)
{
    return platform_call(
        disable_site, [&] { return display_enable(device, false); }, device);
}

int32_t MI_DISP_BindVideoLayer(uint32_t layer, int32_t device)
{
    return platform_call(
        bind_layer_site, [&] { return layer_bind(layer, device); }, layer, device);
}

int32_t MI_DISP_UnBindVideoLayer(uint32_t layer, int32_t device)
{
    return platform_call(
        unbind_layer_site, [&] { return layer_unbind(layer, device); }, layer, device);
}

int32_t MI_DISP_SetVideoLayerAttr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr)
{
    return platform_call(
        set_layer_site, [&] { return layer_set_attr(layer, attr); }, layer, attr);
}

int32_t MI_DISP_GetVideoLayerAttr(uint32_t layer, MI_DISP_VideoLayerAttr *attr)
{
    return platform_call(
        get_layer_site, [&] { return layer_get_attr(layer, attr); }, layer, attr);
}

int32_t MI_DISP_EnableVideoLayer(uint32_t layer)
{
    return platform_call(
        enable_layer_site, [&] { return layer_enable(layer, true); }, layer);
}

int32_t MI_DISP_DisableVideoLayer(uint32_t layer)
{
    return platform_call(
        disable_layer_site, [&] { return layer_enable(layer, false); }, layer);
}

int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    return platform_call(
        set_port_site, [&] { return port_set_attr(device, port, attr); }, device, port, attr);
}

int32_t MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr)
{
    return platform_call(
        get_port_site, [&] { return port_get_attr(device, port, attr); }, device, port, attr);
}

int32_t MI_DISP_EnableInputPort(int32_t device, uint32_t port)
{
    return platform_call(
        enable_port_site, [&] { return port_enable(device, port, true); }, device, port);
}

int32_t MI_DISP_DisableInputPort(int32_t device, uint32_t port)
{
    return platform_call(
        disable_port_site, [&] { return port_enable(device, port, false); }, device, port);
}

int32_t MI_DISP_SetInputPortSyncMode(int32_t device, uint32_t port, uint32_t mode)
{
    return platform_call(
        sync_site, [&] { return port_set_sync(device, port, mode); }, device, port, mode);
}

int32_t MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all)
{
    return platform_call(
        clear_site, [&] { return port_clear(device, port, all != 0); }, device, port, all);
}

int32_t MI_DISP_ShowInputPort(int32_t device, uint32_t port)
{
    return platform_call(
        show_site, [&] { return port_show(device, port, true); }, device, port);
}

int32_t MI_DISP_HideInputPort(int32_t device, uint32_t port)
{
    return platform_call(
        hide_site, [&] { return port_show(device, port, false); }, device, port);
}

int32_t MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window)
{
    return platform_call(
        zoom_site, [&] { return port_set_zoom(device, port, window); }, device, port, window);
}

} // extern "C"
