/* seam_display.c - recorded calls of the media interface: display and HDMI. */
#define RECORDS_SEAM
#include "seam_account.h"

#include <string.h>

/* ----------------------------------------------------------------------------------- display --- */

static bool *device_flag(bool *flags, int32_t device)
{
    return device >= -1 && device < DEVICES - 1 ? &flags[device + 1] : NULL;
}

static void set_device_flag(bool *flags, int32_t device, bool value)
{
    pthread_mutex_lock(&account_lock);
    bool *flag = device_flag(flags, device);
    if (flag != NULL) *flag = value;
    pthread_mutex_unlock(&account_lock);
}

static void set_port_flag(bool flags[DEVICES][MI_DISP_INPUT_PORTS], int32_t device, uint32_t port, bool value)
{
    pthread_mutex_lock(&account_lock);
    if (device >= -1 && device < DEVICES - 1 && port < MI_DISP_INPUT_PORTS) flags[device + 1][port] = value;
    pthread_mutex_unlock(&account_lock);
}

static int32_t pub_done(const CallMark *mark, int32_t result, int32_t device, const MI_DISP_PubAttr *attr)
{
    if (attr == NULL) return done(mark, result, "%d, null", device);
    if (result != 0 && strstr(mark->name, "Get") != NULL) return done(mark, result, "%d, attr", device);
    return done(mark, result, "%d, {background 0x%06x, interface %u, timing %u, rate %u}", device,
                attr->background, attr->interface_type, attr->timing, attr->frame_rate);
}

int32_t rec_MI_DISP_SetPubAttr(int32_t device, const MI_DISP_PubAttr *attr)
{
    BEGIN("MI_DISP_SetPubAttr");
    return pub_done(&mark, MI_DISP_SetPubAttr(device, attr), device, attr);
}

int32_t rec_MI_DISP_GetPubAttr(int32_t device, MI_DISP_PubAttr *attr)
{
    BEGIN("MI_DISP_GetPubAttr");
    return pub_done(&mark, MI_DISP_GetPubAttr(device, attr), device, attr);
}

int32_t rec_MI_DISP_Enable(int32_t device)
{
    BEGIN("MI_DISP_Enable");
    const int32_t result = MI_DISP_Enable(device);
    if (result == 0) set_device_flag(account.device_on, device, true);
    return DONE(result, "%d", device);
}

int32_t rec_MI_DISP_Disable(int32_t device)
{
    BEGIN("MI_DISP_Disable");
    const int32_t result = MI_DISP_Disable(device);
    if (result == 0) set_device_flag(account.device_on, device, false);
    return DONE(result, "%d", device);
}

int32_t rec_MI_DISP_BindVideoLayer(uint32_t layer, int32_t device)
{
    BEGIN("MI_DISP_BindVideoLayer");
    const int32_t result = MI_DISP_BindVideoLayer(layer, device);
    if (result == 0 && layer < LAYERS) {
        set_flag(account.layer_bound, LAYERS, layer, true);
        account.layer_device[layer] = device;
    }
    return DONE(result, "%u, %d", layer, device);
}

int32_t rec_MI_DISP_UnBindVideoLayer(uint32_t layer, int32_t device)
{
    BEGIN("MI_DISP_UnBindVideoLayer");
    const int32_t result = MI_DISP_UnBindVideoLayer(layer, device);
    if (result == 0) set_flag(account.layer_bound, LAYERS, layer, false);
    return DONE(result, "%u, %d", layer, device);
}

static int32_t layer_done(const CallMark *mark, int32_t result, uint32_t layer,
                          const MI_DISP_VideoLayerAttr *attr)
{
    if (attr == NULL) return done(mark, result, "%u, null", layer);
    if (result != 0 && strstr(mark->name, "Get") != NULL) return done(mark, result, "%u, attr", layer);
    return done(mark, result, "%u, {at %u,%u %u x %u, of %u x %u, format %u}", layer, attr->window.x,
                attr->window.y, attr->window.width, attr->window.height, attr->width, attr->height,
                attr->pixel_format);
}

int32_t rec_MI_DISP_SetVideoLayerAttr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr)
{
    BEGIN("MI_DISP_SetVideoLayerAttr");
    return layer_done(&mark, MI_DISP_SetVideoLayerAttr(layer, attr), layer, attr);
}

int32_t rec_MI_DISP_GetVideoLayerAttr(uint32_t layer, MI_DISP_VideoLayerAttr *attr)
{
    BEGIN("MI_DISP_GetVideoLayerAttr");
    return layer_done(&mark, MI_DISP_GetVideoLayerAttr(layer, attr), layer, attr);
}

int32_t rec_MI_DISP_EnableVideoLayer(uint32_t layer)
{
    BEGIN("MI_DISP_EnableVideoLayer");
    const int32_t result = MI_DISP_EnableVideoLayer(layer);
    if (result == 0) set_flag(account.layer_on, LAYERS, layer, true);
    return DONE(result, "%u", layer);
}

int32_t rec_MI_DISP_DisableVideoLayer(uint32_t layer)
{
    BEGIN("MI_DISP_DisableVideoLayer");
    const int32_t result = MI_DISP_DisableVideoLayer(layer);
    if (result == 0) set_flag(account.layer_on, LAYERS, layer, false);
    return DONE(result, "%u", layer);
}

static int32_t port_done(const CallMark *mark, int32_t result, int32_t device, uint32_t port,
                         const MI_DISP_InputPortAttr *attr)
{
    if (attr == NULL) return done(mark, result, "%d, %u, null", device, port);
    if (result != 0 && strstr(mark->name, "Get") != NULL)
        return done(mark, result, "%d, %u, attr", device, port);
    return done(mark, result, "%d, %u, {at %u,%u %u x %u, source %u x %u}", device, port, attr->window.x,
                attr->window.y, attr->window.width, attr->window.height, attr->source_width,
                attr->source_height);
}

int32_t rec_MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    BEGIN("MI_DISP_SetInputPortAttr");
    const int32_t result = MI_DISP_SetInputPortAttr(device, port, attr);
    if (result == 0) set_port_flag(account.port_touched, device, port, true);
    return port_done(&mark, result, device, port, attr);
}

int32_t rec_MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr)
{
    BEGIN("MI_DISP_GetInputPortAttr");
    return port_done(&mark, MI_DISP_GetInputPortAttr(device, port, attr), device, port, attr);
}

int32_t rec_MI_DISP_EnableInputPort(int32_t device, uint32_t port)
{
    BEGIN("MI_DISP_EnableInputPort");
    const int32_t result = MI_DISP_EnableInputPort(device, port);
    if (result == 0) set_port_flag(account.port_on, device, port, true);
    return DONE(result, "%d, %u", device, port);
}

int32_t rec_MI_DISP_DisableInputPort(int32_t device, uint32_t port)
{
    BEGIN("MI_DISP_DisableInputPort");
    const int32_t result = MI_DISP_DisableInputPort(device, port);
    if (result == 0) set_port_flag(account.port_on, device, port, false);
    return DONE(result, "%d, %u", device, port);
}

int32_t rec_MI_DISP_SetInputPortSyncMode(int32_t device, uint32_t port, uint32_t mode)
{
    BEGIN("MI_DISP_SetInputPortSyncMode");
    const int32_t result = MI_DISP_SetInputPortSyncMode(device, port, mode);
    return DONE(result, "%d, %u, %u", device, port, mode);
}

int32_t rec_MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all)
{
    BEGIN("MI_DISP_ClearInputPortBuffer");
    const int32_t result = MI_DISP_ClearInputPortBuffer(device, port, all);
    return DONE(result, "%d, %u, %d", device, port, all);
}

int32_t rec_MI_DISP_ShowInputPort(int32_t device, uint32_t port)
{
    BEGIN("MI_DISP_ShowInputPort");
    const int32_t result = MI_DISP_ShowInputPort(device, port);
    return DONE(result, "%d, %u", device, port);
}

int32_t rec_MI_DISP_HideInputPort(int32_t device, uint32_t port)
{
    BEGIN("MI_DISP_HideInputPort");
    const int32_t result = MI_DISP_HideInputPort(device, port);
    if (result == 0) set_port_flag(account.port_touched, device, port, true);
    return DONE(result, "%d, %u", device, port);
}

int32_t rec_MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window)
{
    BEGIN("MI_DISP_SetZoomInWindow");
    const int32_t result = MI_DISP_SetZoomInWindow(device, port, window);
    if (result == 0) set_port_flag(account.port_touched, device, port, true);
    if (window == NULL) return DONE(result, "%d, %u, null", device, port);
    return DONE(result, "%d, %u, {%u,%u %u x %u}", device, port, window->x, window->y, window->width,
                window->height);
}

/* -------------------------------------------------------------------------------------- HDMI --- */

static void set_one(bool *flag, bool value)
{
    set_flag(flag, 1, 0, value);
}

int32_t rec_MI_HDMI_Init(const MI_HDMI_InitParam *param)
{
    BEGIN("MI_HDMI_Init");
    const int32_t result = MI_HDMI_Init(param);
    if (result == 0) set_one(&account.hdmi_initialised, true);
    return DONE(result, "%s",
                param == NULL             ? "null"
                : param->callback != NULL ? "{callback}"
                                          : "{no callback}");
}

int32_t rec_MI_HDMI_DeInit(void)
{
    BEGIN("MI_HDMI_DeInit");
    const int32_t result = MI_HDMI_DeInit();
    if (result == 0) set_one(&account.hdmi_initialised, false);
    return DONE(result, "%s", "");
}

int32_t rec_MI_HDMI_Open(uint32_t device)
{
    BEGIN("MI_HDMI_Open");
    const int32_t result = MI_HDMI_Open(device);
    if (result == 0) set_one(&account.hdmi_open, true);
    return DONE(result, "%u", device);
}

int32_t rec_MI_HDMI_Close(uint32_t device)
{
    BEGIN("MI_HDMI_Close");
    const int32_t result = MI_HDMI_Close(device);
    if (result == 0) set_one(&account.hdmi_open, false);
    return DONE(result, "%u", device);
}

int32_t rec_MI_HDMI_SetAvMute(uint32_t device, int32_t mute)
{
    BEGIN("MI_HDMI_SetAvMute");
    const int32_t result = MI_HDMI_SetAvMute(device, mute);
    if (result == 0) set_one(&account.hdmi_muted, mute != 0);
    return DONE(result, "%u, %d", device, mute);
}

static int32_t hdmi_done(const CallMark *mark, int32_t result, uint32_t device, const MI_HDMI_Attr *attr)
{
    if (attr == NULL) return done(mark, result, "%u, null", device);
    if (result != 0 && strstr(mark->name, "Get") != NULL) return done(mark, result, "%u, attr", device);
    return done(mark, result, "%u, {video %u, timing %u, audio %u, rate %u, depth %u}", device,
                attr->video_enabled, attr->video_timing, attr->audio_enabled, attr->audio_sample_rate,
                attr->audio_bit_depth);
}

int32_t rec_MI_HDMI_SetAttr(uint32_t device, const MI_HDMI_Attr *attr)
{
    BEGIN("MI_HDMI_SetAttr");
    return hdmi_done(&mark, MI_HDMI_SetAttr(device, attr), device, attr);
}

int32_t rec_MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr)
{
    BEGIN("MI_HDMI_GetAttr");
    return hdmi_done(&mark, MI_HDMI_GetAttr(device, attr), device, attr);
}

int32_t rec_MI_HDMI_GetSinkInfo(uint32_t device, MI_HDMI_SinkInfo *info)
{
    BEGIN("MI_HDMI_GetSinkInfo");
    const int32_t result = MI_HDMI_GetSinkInfo(device, info);
    if (info == NULL || result != 0) return DONE(result, "%u, %s", device, info == NULL ? "null" : "info");
    return DONE(result, "%u, {connected %u, hdmi %u, %u x %u}", device, info->connected, info->hdmi,
                info->preferred_width, info->preferred_height);
}

int32_t rec_MI_HDMI_Start(uint32_t device)
{
    BEGIN("MI_HDMI_Start");
    const int32_t result = MI_HDMI_Start(device);
    if (result == 0) set_one(&account.hdmi_started, true);
    return DONE(result, "%u", device);
}

int32_t rec_MI_HDMI_Stop(uint32_t device)
{
    BEGIN("MI_HDMI_Stop");
    const int32_t result = MI_HDMI_Stop(device);
    if (result == 0) set_one(&account.hdmi_started, false);
    return DONE(result, "%u", device);
}
