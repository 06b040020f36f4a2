/* The display and HDMI modules of the recording platform. */
#include "record_call.h"

using recording::MediaState;
using recording::platform;
using recording::record_call;
using recording::record_plain_call;

extern "C" {

int32_t MI_DISP_SetPubAttr(int32_t device, const MI_DISP_PubAttr *attr)
{
    return record_call(
        "MI_DISP_SetPubAttr",
        [=](MediaState &media) {
            if (attr) media.display_devices[device] = *attr;
        },
        device, attr);
}

int32_t MI_DISP_GetPubAttr(int32_t device, MI_DISP_PubAttr *attr)
{
    return record_call(
        "MI_DISP_GetPubAttr",
        [=](MediaState &media) {
            if (attr) *attr = media.display_devices[device];
        },
        device, attr);
}

int32_t MI_DISP_Enable(int32_t device)
{
    return record_plain_call("MI_DISP_Enable", device);
}

int32_t MI_DISP_Disable(int32_t device)
{
    return record_plain_call("MI_DISP_Disable", device);
}

int32_t MI_DISP_BindVideoLayer(uint32_t layer, int32_t device)
{
    return record_plain_call("MI_DISP_BindVideoLayer", layer, device);
}

int32_t MI_DISP_UnBindVideoLayer(uint32_t layer, int32_t device)
{
    return record_plain_call("MI_DISP_UnBindVideoLayer", layer, device);
}

int32_t MI_DISP_SetVideoLayerAttr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr)
{
    return record_call(
        "MI_DISP_SetVideoLayerAttr",
        [=](MediaState &media) {
            if (attr) media.layers[layer] = *attr;
        },
        layer, attr);
}

int32_t MI_DISP_GetVideoLayerAttr(uint32_t layer, MI_DISP_VideoLayerAttr *attr)
{
    return record_call(
        "MI_DISP_GetVideoLayerAttr",
        [=](MediaState &media) {
            if (attr) *attr = media.layers[layer];
        },
        layer, attr);
}

int32_t MI_DISP_EnableVideoLayer(uint32_t layer)
{
    return record_plain_call("MI_DISP_EnableVideoLayer", layer);
}

int32_t MI_DISP_DisableVideoLayer(uint32_t layer)
{
    return record_plain_call("MI_DISP_DisableVideoLayer", layer);
}

int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    return record_call(
        "MI_DISP_SetInputPortAttr",
        [=](MediaState &media) {
            if (attr) media.input_ports[{device, port}] = *attr;
        },
        device, port, attr);
}

int32_t MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr)
{
    return record_call(
        "MI_DISP_GetInputPortAttr",
        [=](MediaState &media) {
            if (attr) *attr = media.input_ports[{device, port}];
        },
        device, port, attr);
}

int32_t MI_DISP_EnableInputPort(int32_t device, uint32_t port)
{
    return record_plain_call("MI_DISP_EnableInputPort", device, port);
}

int32_t MI_DISP_DisableInputPort(int32_t device, uint32_t port)
{
    return record_plain_call("MI_DISP_DisableInputPort", device, port);
}

int32_t MI_DISP_SetInputPortSyncMode(int32_t device, uint32_t port, uint32_t mode)
{
    return record_plain_call("MI_DISP_SetInputPortSyncMode", device, port, mode);
}

int32_t MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all)
{
    return record_plain_call("MI_DISP_ClearInputPortBuffer", device, port, all);
}

int32_t MI_DISP_ShowInputPort(int32_t device, uint32_t port)
{
    return record_plain_call("MI_DISP_ShowInputPort", device, port);
}

int32_t MI_DISP_HideInputPort(int32_t device, uint32_t port)
{
    return record_plain_call("MI_DISP_HideInputPort", device, port);
}

int32_t MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window)
{
    return record_plain_call("MI_DISP_SetZoomInWindow", device, port, window);
}

int32_t MI_HDMI_Init(const MI_HDMI_InitParam *param)
{
    return record_call(
        "MI_HDMI_Init",
        [=](MediaState &media) {
            if (param) media.hdmi_registration = *param;
        },
        param);
}

int32_t MI_HDMI_DeInit(void)
{
    return record_plain_call("MI_HDMI_DeInit");
}

int32_t MI_HDMI_Open(uint32_t device)
{
    return record_plain_call("MI_HDMI_Open", device);
}

int32_t MI_HDMI_Close(uint32_t device)
{
    return record_plain_call("MI_HDMI_Close", device);
}

int32_t MI_HDMI_SetAvMute(uint32_t device, int32_t mute)
{
    return record_plain_call("MI_HDMI_SetAvMute", device, mute);
}

int32_t MI_HDMI_SetAttr(uint32_t device, const MI_HDMI_Attr *attr)
{
    return record_call(
        "MI_HDMI_SetAttr",
        [=](MediaState &media) {
            if (attr) media.hdmi_attr = *attr;
        },
        device, attr);
}

int32_t MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr)
{
    return record_call(
        "MI_HDMI_GetAttr",
        [=](MediaState &media) {
            if (attr) *attr = media.hdmi_attr;
        },
        device, attr);
}

int32_t MI_HDMI_GetSinkInfo(uint32_t device, MI_HDMI_SinkInfo *info)
{
    return record_call(
        "MI_HDMI_GetSinkInfo",
        [=](MediaState &) {
            if (info) *info = {1, 1, 1920, 1080};
        },
        device, info);
}

int32_t MI_HDMI_Start(uint32_t device)
{
    return record_plain_call("MI_HDMI_Start", device);
}

int32_t MI_HDMI_Stop(uint32_t device)
{
    return record_plain_call("MI_HDMI_Stop", device);
}

} // extern "C"
