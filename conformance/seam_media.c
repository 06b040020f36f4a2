/*
 * seam_media.c - recorded calls of the media interface: system, decoder, display, scaler, encoder, HDMI
 * and audio, and the account of what they set up.
 */
#define RECORDS_SEAM
#include "seam.h"

#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "record.h"

enum { CHANNELS = 64, BINDINGS = 64, DEVICES = 4, LAYERS = 4 };

/* What is set up at present, as the results of the calls tell. Guarded by the lock. */
static pthread_mutex_t account_lock = PTHREAD_MUTEX_INITIALIZER;
static struct Account {
    bool decoder[CHANNELS], scaler[CHANNELS], encoder[CHANNELS];
    bool binding_used[BINDINGS];
    MI_SYS_ChnPort source[BINDINGS], sink[BINDINGS];
    bool device_on[DEVICES], port_on[DEVICES][MI_DISP_INPUT_PORTS],
        port_touched[DEVICES][MI_DISP_INPUT_PORTS];
    bool layer_on[LAYERS], layer_bound[LAYERS];
    int32_t layer_device[LAYERS];
    bool hdmi_initialised, hdmi_open, hdmi_started, hdmi_muted;
    bool audio_on[8];
} account;

static void set_flag(bool *flags, uint32_t count, uint32_t index, bool value)
{
    pthread_mutex_lock(&account_lock);
    if (index < count) flags[index] = value;
    pthread_mutex_unlock(&account_lock);
}

LIKE_PRINTF(3, 4)
static int32_t done(const CallMark *mark, int32_t result, const char *format, ...)
{
    char arguments[LINE_BYTES], code[48];
    va_list values;
    va_start(values, format);
    vsnprintf(arguments, sizeof arguments, format, values);
    va_end(values);
    call_ends(mark, result == 0, result_text(result, code, sizeof code), "%s", arguments);
    return result;
}

#define BEGIN(name) const CallMark mark = call_begins(name)
#define DONE(...)   done(&mark, __VA_ARGS__)

/* ------------------------------------------------------------------------------------ system --- */

int32_t rec_MI_SYS_Init(void)
{
    BEGIN("MI_SYS_Init");
    const int32_t result = MI_SYS_Init();
    return DONE(result, "%s", "");
}

int32_t rec_MI_SYS_GetVersion(MI_SYS_Version *version)
{
    BEGIN("MI_SYS_GetVersion");
    const int32_t result = MI_SYS_GetVersion(version);
    return DONE(result, "%s", version == NULL ? "null" : "version");
}

int32_t rec_MI_SYS_GetCurPts(uint64_t *pts)
{
    BEGIN("MI_SYS_GetCurPts");
    const int32_t result = MI_SYS_GetCurPts(pts);
    if (pts == NULL) return DONE(result, "null");
    return DONE(result, "%llu", (unsigned long long)*pts);
}

int32_t rec_MI_SYS_InitPtsBase(uint64_t base)
{
    BEGIN("MI_SYS_InitPtsBase");
    const int32_t result = MI_SYS_InitPtsBase(base);
    return DONE(result, "%llu", (unsigned long long)base);
}

int32_t rec_MI_SYS_SyncPts(uint64_t pts)
{
    BEGIN("MI_SYS_SyncPts");
    const int32_t result = MI_SYS_SyncPts(pts);
    return DONE(result, "%llu", (unsigned long long)pts);
}

static const char *end_text(const MI_SYS_ChnPort *end, char *buffer, size_t size)
{
    if (end == NULL) return "null";
    snprintf(buffer, size, "{module %u, %d, %u, %u}", end->module, (int)end->device, end->channel, end->port);
    return buffer;
}

static bool same_end(const MI_SYS_ChnPort *a, const MI_SYS_ChnPort *b)
{
    return memcmp(a, b, sizeof *a) == 0;
}

int32_t rec_MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                               uint32_t sink_rate)
{
    char from[64], to[64];
    BEGIN("MI_SYS_BindChnPort");
    const int32_t result = MI_SYS_BindChnPort(source, sink, source_rate, sink_rate);
    pthread_mutex_lock(&account_lock);
    for (int i = 0; result == 0 && source != NULL && sink != NULL && i < BINDINGS; ++i) {
        if (account.binding_used[i]) continue;
        account.binding_used[i] = true;
        account.source[i] = *source;
        account.sink[i] = *sink;
        break;
    }
    pthread_mutex_unlock(&account_lock);
    return DONE(result, "%s, %s, %u, %u", end_text(source, from, sizeof from), end_text(sink, to, sizeof to),
                source_rate, sink_rate);
}

int32_t rec_MI_SYS_UnBindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    char from[64], to[64];
    BEGIN("MI_SYS_UnBindChnPort");
    const int32_t result = MI_SYS_UnBindChnPort(source, sink);
    pthread_mutex_lock(&account_lock);
    for (int i = 0; result == 0 && source != NULL && sink != NULL && i < BINDINGS; ++i)
        if (account.binding_used[i] && same_end(&account.source[i], source) &&
            same_end(&account.sink[i], sink))
            account.binding_used[i] = false;
    pthread_mutex_unlock(&account_lock);
    return DONE(result, "%s, %s", end_text(source, from, sizeof from), end_text(sink, to, sizeof to));
}

int32_t rec_MI_SYS_SetChnOutputPortDepth(const MI_SYS_ChnPort *port, uint32_t user_depth,
                                         uint32_t queue_depth)
{
    char at[64];
    BEGIN("MI_SYS_SetChnOutputPortDepth");
    const int32_t result = MI_SYS_SetChnOutputPortDepth(port, user_depth, queue_depth);
    return DONE(result, "%s, %u, %u", end_text(port, at, sizeof at), user_depth, queue_depth);
}

/* ----------------------------------------------------------------------------------- decoder --- */

static const char *vdec_attr_text(const MI_VDEC_ChnAttr *attr, char *buffer, size_t size)
{
    if (attr == NULL) return "null";
    snprintf(buffer, size, "{codec %u, %u bytes, up to %u x %u, mode %u, %u + %u}", attr->codec,
             attr->stream_buffer_bytes, attr->max_width, attr->max_height, attr->video_mode,
             attr->reference_frames, attr->decode_buffers);
    return buffer;
}

int32_t rec_MI_VDEC_CreateChn(uint32_t channel, const MI_VDEC_ChnAttr *attr)
{
    char text[128];
    BEGIN("MI_VDEC_CreateChn");
    const int32_t result = MI_VDEC_CreateChn(channel, attr);
    if (result == 0) set_flag(account.decoder, CHANNELS, channel, true);
    return DONE(result, "%u, %s", channel, vdec_attr_text(attr, text, sizeof text));
}

int32_t rec_MI_VDEC_DestroyChn(uint32_t channel)
{
    BEGIN("MI_VDEC_DestroyChn");
    const int32_t result = MI_VDEC_DestroyChn(channel);
    if (result == 0) set_flag(account.decoder, CHANNELS, channel, false);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VDEC_StartChn(uint32_t channel)
{
    BEGIN("MI_VDEC_StartChn");
    const int32_t result = MI_VDEC_StartChn(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VDEC_StopChn(uint32_t channel)
{
    BEGIN("MI_VDEC_StopChn");
    const int32_t result = MI_VDEC_StopChn(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VDEC_GetChnAttr(uint32_t channel, MI_VDEC_ChnAttr *attr)
{
    char text[128];
    BEGIN("MI_VDEC_GetChnAttr");
    const int32_t result = MI_VDEC_GetChnAttr(channel, attr);
    return DONE(result, "%u, %s", channel,
                result == 0 || attr == NULL ? vdec_attr_text(attr, text, sizeof text) : "attr");
}

int32_t rec_MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat)
{
    BEGIN("MI_VDEC_GetChnStat");
    const int32_t result = MI_VDEC_GetChnStat(channel, stat);
    if (stat == NULL || result != 0) return DONE(result, "%u, %s", channel, stat == NULL ? "null" : "stat");
    return DONE(result, "%u, {%u bytes, %u frames, %u pictures}", channel, stat->left_stream_bytes,
                stat->left_stream_frames, stat->left_pictures);
}

int32_t rec_MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    BEGIN("MI_VDEC_SendStream");
    const int32_t result = MI_VDEC_SendStream(channel, stream, timeout_ms);
    if (stream == NULL) return DONE(result, "%u, null, %d", channel, timeout_ms);
    return DONE(result, "%u, {%s, %u bytes, pts %llu, ends %u %u}, %d", channel,
                stream->address == NULL ? "null" : "data", stream->length_bytes,
                (unsigned long long)stream->pts, stream->end_of_frame, stream->end_of_stream, timeout_ms);
}

int32_t rec_MI_VDEC_SetOutputPortAttr(uint32_t channel, const MI_VDEC_OutputPortAttr *attr)
{
    BEGIN("MI_VDEC_SetOutputPortAttr");
    const int32_t result = MI_VDEC_SetOutputPortAttr(channel, attr);
    if (attr == NULL) return DONE(result, "%u, null", channel);
    return DONE(result, "%u, {%u x %u}", channel, attr->width, attr->height);
}

int32_t rec_MI_VDEC_GetOutputPortAttr(uint32_t channel, MI_VDEC_OutputPortAttr *attr)
{
    BEGIN("MI_VDEC_GetOutputPortAttr");
    const int32_t result = MI_VDEC_GetOutputPortAttr(channel, attr);
    if (attr == NULL || result != 0) return DONE(result, "%u, %s", channel, attr == NULL ? "null" : "attr");
    return DONE(result, "%u, {%u x %u}", channel, attr->width, attr->height);
}

/* ---------------------------------------------------------------------------- scaler, encoder --- */

int32_t rec_MI_DIVP_CreateChn(uint32_t channel, const MI_DIVP_ChnAttr *attr)
{
    BEGIN("MI_DIVP_CreateChn");
    const int32_t result = MI_DIVP_CreateChn(channel, attr);
    if (result == 0) set_flag(account.scaler, CHANNELS, channel, true);
    if (attr == NULL) return DONE(result, "%u, null", channel);
    return DONE(result, "%u, {up to %u x %u, part %u,%u %u x %u}", channel, attr->max_width, attr->max_height,
                attr->crop.x, attr->crop.y, attr->crop.width, attr->crop.height);
}

int32_t rec_MI_DIVP_DestroyChn(uint32_t channel)
{
    BEGIN("MI_DIVP_DestroyChn");
    const int32_t result = MI_DIVP_DestroyChn(channel);
    if (result == 0) set_flag(account.scaler, CHANNELS, channel, false);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr)
{
    BEGIN("MI_DIVP_GetOutputPortAttr");
    const int32_t result = MI_DIVP_GetOutputPortAttr(channel, port, attr);
    if (attr == NULL || result != 0)
        return DONE(result, "%u, %u, %s", channel, port, attr == NULL ? "null" : "attr");
    return DONE(result, "%u, %u, {%u x %u, format %u}", channel, port, attr->width, attr->height,
                attr->pixel_format);
}

int32_t rec_MI_DIVP_SetOutputPortAttr(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr)
{
    BEGIN("MI_DIVP_SetOutputPortAttr");
    const int32_t result = MI_DIVP_SetOutputPortAttr(channel, port, attr);
    if (attr == NULL) return DONE(result, "%u, %u, null", channel, port);
    return DONE(result, "%u, %u, {%u x %u, format %u}", channel, port, attr->width, attr->height,
                attr->pixel_format);
}

int32_t rec_MI_DIVP_StartChn(uint32_t channel)
{
    BEGIN("MI_DIVP_StartChn");
    const int32_t result = MI_DIVP_StartChn(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_DIVP_StopChn(uint32_t channel)
{
    BEGIN("MI_DIVP_StopChn");
    const int32_t result = MI_DIVP_StopChn(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr)
{
    BEGIN("MI_VENC_CreateChn");
    const int32_t result = MI_VENC_CreateChn(channel, attr);
    if (result == 0) set_flag(account.encoder, CHANNELS, channel, true);
    if (attr == NULL) return DONE(result, "%u, null", channel);
    return DONE(result, "%u, {codec %u, %u x %u of %u x %u, %u bytes, restart %u}", channel, attr->codec,
                attr->width, attr->height, attr->max_width, attr->max_height, attr->stream_buffer_bytes,
                attr->restart_rows);
}

int32_t rec_MI_VENC_DestroyChn(uint32_t channel)
{
    BEGIN("MI_VENC_DestroyChn");
    const int32_t result = MI_VENC_DestroyChn(channel);
    if (result == 0) set_flag(account.encoder, CHANNELS, channel, false);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VENC_ResetChn(uint32_t channel)
{
    BEGIN("MI_VENC_ResetChn");
    const int32_t result = MI_VENC_ResetChn(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param)
{
    BEGIN("MI_VENC_GetJpegParam");
    const int32_t result = MI_VENC_GetJpegParam(channel, param);
    if (param == NULL || result != 0)
        return DONE(result, "%u, %s", channel, param == NULL ? "null" : "param");
    return DONE(result, "%u, {quality %u}", channel, param->quality);
}

int32_t rec_MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param)
{
    BEGIN("MI_VENC_SetJpegParam");
    const int32_t result = MI_VENC_SetJpegParam(channel, param);
    if (param == NULL) return DONE(result, "%u, null", channel);
    return DONE(result, "%u, {quality %u}", channel, param->quality);
}

int32_t rec_MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device)
{
    BEGIN("MI_VENC_GetChnDevid");
    const int32_t result = MI_VENC_GetChnDevid(channel, device);
    if (device == NULL || result != 0)
        return DONE(result, "%u, %s", channel, device == NULL ? "null" : "device");
    return DONE(result, "%u, %u", channel, *device);
}

int32_t rec_MI_VENC_StartRecvPic(uint32_t channel)
{
    BEGIN("MI_VENC_StartRecvPic");
    const int32_t result = MI_VENC_StartRecvPic(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VENC_StopRecvPic(uint32_t channel)
{
    BEGIN("MI_VENC_StopRecvPic");
    const int32_t result = MI_VENC_StopRecvPic(channel);
    return DONE(result, "%u", channel);
}

int32_t rec_MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    BEGIN("MI_VENC_GetStream");
    const int32_t result = MI_VENC_GetStream(channel, stream, timeout_ms);
    if (stream == NULL) return DONE(result, "%u, null, %d", channel, timeout_ms);
    if (result != 0 || stream->packs == NULL || stream->pack_count == 0)
        return DONE(result, "%u, {room for %u}, %d", channel, stream->pack_count, timeout_ms);
    return DONE(result, "%u, {%u packs, the first of %u bytes, pts %llu, number %u}, %d", channel,
                stream->pack_count, stream->packs[0].length_bytes, (unsigned long long)stream->packs[0].pts,
                stream->sequence, timeout_ms);
}

int32_t rec_MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream)
{
    BEGIN("MI_VENC_ReleaseStream");
    const int32_t result = MI_VENC_ReleaseStream(channel, stream);
    if (stream == NULL) return DONE(result, "%u, null", channel);
    return DONE(result, "%u, {number %u}", channel, stream->sequence);
}

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

/* ------------------------------------------------------------------------------------- audio --- */

int32_t rec_MI_AO_SetPubAttr(uint32_t device, const MI_AO_PubAttr *attr)
{
    BEGIN("MI_AO_SetPubAttr");
    const int32_t result = MI_AO_SetPubAttr(device, attr);
    if (attr == NULL) return DONE(result, "%u, null", device);
    return DONE(result, "%u, {%u Hz, width %u, %u x %u samples, %u channels}", device, attr->sample_rate,
                attr->bit_width, attr->frame_count, attr->samples_per_frame, attr->channels);
}

int32_t rec_MI_AO_Enable(uint32_t device)
{
    BEGIN("MI_AO_Enable");
    const int32_t result = MI_AO_Enable(device);
    if (result == 0) set_flag(account.audio_on, 8, device, true);
    return DONE(result, "%u", device);
}

int32_t rec_MI_AO_EnableChn(uint32_t device, uint32_t channel)
{
    BEGIN("MI_AO_EnableChn");
    const int32_t result = MI_AO_EnableChn(device, channel);
    return DONE(result, "%u, %u", device, channel);
}

int32_t rec_MI_AO_SetAdecAttr(uint32_t device, uint32_t channel, const MI_AO_AdecAttr *attr)
{
    BEGIN("MI_AO_SetAdecAttr");
    const int32_t result = MI_AO_SetAdecAttr(device, channel, attr);
    if (attr == NULL) return DONE(result, "%u, %u, null", device, channel);
    return DONE(result, "%u, %u, {codec %u, %u Hz, mode %u}", device, channel, attr->codec, attr->sample_rate,
                attr->sound_mode);
}

int32_t rec_MI_AO_EnableAdec(uint32_t device, uint32_t channel)
{
    BEGIN("MI_AO_EnableAdec");
    const int32_t result = MI_AO_EnableAdec(device, channel);
    return DONE(result, "%u, %u", device, channel);
}

int32_t rec_MI_AO_EnableReSmp(uint32_t device, uint32_t channel, uint32_t input_rate)
{
    BEGIN("MI_AO_EnableReSmp");
    const int32_t result = MI_AO_EnableReSmp(device, channel, input_rate);
    return DONE(result, "%u, %u, %u", device, channel, input_rate);
}

int32_t rec_MI_AO_SetMute(uint32_t device, int32_t mute)
{
    BEGIN("MI_AO_SetMute");
    const int32_t result = MI_AO_SetMute(device, mute);
    return DONE(result, "%u, %d", device, mute);
}

int32_t rec_MI_AO_SetVolume(uint32_t device, int32_t volume_db)
{
    BEGIN("MI_AO_SetVolume");
    const int32_t result = MI_AO_SetVolume(device, volume_db);
    return DONE(result, "%u, %d", device, volume_db);
}

int32_t rec_MI_AO_SendFrame(uint32_t device, uint32_t channel, const MI_AO_Frame *frame, int32_t timeout_ms)
{
    BEGIN("MI_AO_SendFrame");
    const int32_t result = MI_AO_SendFrame(device, channel, frame, timeout_ms);
    if (frame == NULL) return DONE(result, "%u, %u, null, %d", device, channel, timeout_ms);
    return DONE(result, "%u, %u, {%s, %u bytes}, %d", device, channel,
                frame->data[0] == NULL ? "null" : "data", frame->length_bytes, timeout_ms);
}

/* -------------------------------------------------------------------------------------- undo --- */

void seam_undo_media(void)
{
    if (account.hdmi_muted && account.hdmi_open) rec_MI_HDMI_SetAvMute(0, 0);
    if (account.hdmi_started) rec_MI_HDMI_Stop(0);
    if (account.hdmi_open) rec_MI_HDMI_Close(0);
    if (account.hdmi_initialised) rec_MI_HDMI_DeInit();
    for (int i = 0; i < BINDINGS; ++i)
        if (account.binding_used[i]) rec_MI_SYS_UnBindChnPort(&account.source[i], &account.sink[i]);
    for (uint32_t channel = 0; channel < CHANNELS; ++channel) {
        if (account.encoder[channel]) {
            rec_MI_VENC_ResetChn(channel);
            rec_MI_VENC_StopRecvPic(channel);
            rec_MI_VENC_DestroyChn(channel);
        }
        if (account.scaler[channel]) {
            rec_MI_DIVP_StopChn(channel);
            rec_MI_DIVP_DestroyChn(channel);
        }
        if (account.decoder[channel]) {
            rec_MI_VDEC_StopChn(channel);
            rec_MI_VDEC_DestroyChn(channel);
        }
    }
    static const MI_Rect whole = {0, 0, 0, 0};
    static const MI_DISP_InputPortAttr nowhere = {{0, 0, 0, 0}, 0, 0};
    for (int32_t device = -1; device < DEVICES - 1; ++device)
        for (uint32_t port = 0; port < MI_DISP_INPUT_PORTS; ++port) {
            if (account.port_touched[device + 1][port]) {
                rec_MI_DISP_SetZoomInWindow(device, port, &whole);
                rec_MI_DISP_ShowInputPort(device, port);
                rec_MI_DISP_SetInputPortAttr(device, port, &nowhere);
            }
            if (account.port_on[device + 1][port]) rec_MI_DISP_DisableInputPort(device, port);
        }
    for (uint32_t layer = 0; layer < LAYERS; ++layer) {
        if (account.layer_on[layer]) rec_MI_DISP_DisableVideoLayer(layer);
        if (account.layer_bound[layer]) rec_MI_DISP_UnBindVideoLayer(layer, account.layer_device[layer]);
    }
    for (int32_t device = -1; device < DEVICES - 1; ++device)
        if (account.device_on[device + 1]) rec_MI_DISP_Disable(device);
    for (uint32_t device = 0; device < 8; ++device)
        if (account.audio_on[device]) {
            rec_MI_AO_SetMute(device, 0);
            rec_MI_AO_SetVolume(device, 0);
        }
    const struct Account nothing = {0};
    bool audio_on[8];
    memcpy(audio_on, account.audio_on, sizeof audio_on);
    account = nothing;
    memcpy(account.audio_on, audio_on, sizeof audio_on); /* the interface has no call that ends it */
}
