/*
 * seam_media.c - recorded calls of the media interface: system and decoder; the account of what all of them
 * set up, and how it is undone.
 */
#define RECORDS_SEAM
#include "seam_account.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

pthread_mutex_t account_lock = PTHREAD_MUTEX_INITIALIZER;
struct Account account;

void set_flag(bool *flags, uint32_t count, uint32_t index, bool value)
{
    pthread_mutex_lock(&account_lock);
    if (index < count) flags[index] = value;
    pthread_mutex_unlock(&account_lock);
}

LIKE_PRINTF(3, 4)
int32_t done(const CallMark *mark, int32_t result, const char *format, ...)
{
    char arguments[LINE_BYTES], code[48];
    va_list values;
    va_start(values, format);
    vsnprintf(arguments, sizeof arguments, format, values);
    va_end(values);
    call_ends(mark, result == 0, result_text(result, code, sizeof code), "%s", arguments);
    return result;
}

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
