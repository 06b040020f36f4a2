/* record_media.c - the system, decoder, display and HDMI modules of the recording platform in C. */
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include "board_io.h"
#include "media_state.h"
#include "mi_disp.h"
#include "mi_hdmi.h"
#include "mi_vdec.h"
#include "recording.h"

enum { DEVICES = 4, LAYERS = 4, TEXT = 160 };

static MI_VDEC_ChnAttr decoder_attrs[MOST_CHANNELS];
static MI_VDEC_OutputPortAttr decoder_outputs[MOST_CHANNELS];
static MI_DISP_PubAttr display_devices[DEVICES];
static MI_DISP_VideoLayerAttr layers[LAYERS];
static MI_DISP_InputPortAttr input_ports[DEVICES][MI_DISP_INPUT_PORTS];
static MI_HDMI_Attr hdmi_attr;

/* Devices count from -1. */
static size_t device_index(int32_t device)
{
    return (size_t)(device + 1) % DEVICES;
}

#define RECORDED(name, ...)                                                                                  \
    {                                                                                                        \
        return record_call(name, __VA_ARGS__);                                                               \
    }

int32_t MI_SYS_Init(void) RECORDED("MI_SYS_Init", "%s", "")

    int32_t MI_SYS_GetVersion(MI_SYS_Version *version)
{
    const int32_t result = record_call("MI_SYS_GetVersion", "%s", "");
    if (result != MI_SUCCESS) return result;
    memset(version, HANDED_OUT_BYTE, sizeof *version);
    strcpy(version->text, "recording platform");
    return result;
}

int32_t MI_SYS_GetCurPts(uint64_t *pts)
{
    const int32_t result = record_call("MI_SYS_GetCurPts", "%s", "");
    if (result == MI_SUCCESS) *pts = 0;
    return result;
}

int32_t MI_SYS_InitPtsBase(uint64_t base) RECORDED("MI_SYS_InitPtsBase", "%" PRIu64, base)

    int32_t MI_SYS_SyncPts(uint64_t pts) RECORDED("MI_SYS_SyncPts", "%" PRIu64, pts)

        static const char *port_text(char text[TEXT], const MI_SYS_ChnPort *port)
{
    static const struct {
        uint32_t module;
        const char *name;
    } names[] = {{MI_MODULE_VENC, "venc"},
                 {MI_MODULE_VDEC, "vdec"},
                 {MI_MODULE_DIVP, "divp"},
                 {MI_MODULE_DISP, "disp"}};
    const char *name = "?";
    for (size_t i = 0; i < sizeof names / sizeof names[0]; ++i)
        if (names[i].module == port->module) name = names[i].name;
    snprintf(text, TEXT, "{%s,%d,%u,%u}", name, (int)port->device, port->channel, port->port);
    return text;
}

int32_t MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                           uint32_t sink_rate)
{
    char from[TEXT], to[TEXT];
    int32_t result = record_call("MI_SYS_BindChnPort", "%s %s %u %u", port_text(from, source),
                                 port_text(to, sink), source_rate, sink_rate);
    if (result == MI_SUCCESS) result = refuse_bind(source, sink);
    if (result == MI_SUCCESS) bind_ports(source, sink);
    return result;
}

int32_t MI_SYS_UnBindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    char from[TEXT], to[TEXT];
    int32_t result =
        record_call("MI_SYS_UnBindChnPort", "%s %s", port_text(from, source), port_text(to, sink));
    if (result == MI_SUCCESS) result = refuse_unbind(source, sink);
    if (result == MI_SUCCESS) unbind_ports(source, sink);
    return result;
}

int32_t MI_SYS_SetChnOutputPortDepth(const MI_SYS_ChnPort *port, uint32_t user_depth, uint32_t queue_depth)
{
    char at[TEXT];
    return record_call("MI_SYS_SetChnOutputPortDepth", "%s %u %u", port_text(at, port), user_depth,
                       queue_depth);
}

static const char *codec_text(uint32_t codec)
{
    return codec == MI_VDEC_CODEC_H264 ? "h264" : codec == MI_VDEC_CODEC_H265 ? "h265" : "another codec";
}

int32_t MI_VDEC_CreateChn(uint32_t channel, const MI_VDEC_ChnAttr *attr)
{
    int32_t result = record_call(
        "MI_VDEC_CreateChn", "%u {%s buffer %u priority %u max %ux%u mode %u references %u buffers %u}",
        channel, codec_text(attr->codec), attr->stream_buffer_bytes, attr->priority, attr->max_width,
        attr->max_height, attr->video_mode, attr->reference_frames, attr->decode_buffers);
    if (result == MI_SUCCESS) result = refuse_create(&decoders, channel);
    if (result != MI_SUCCESS) return result;
    decoders.exists[channel] = true;
    decoders.started[channel] = false;
    decoder_attrs[channel] = *attr;
    decoder_outputs[channel] = (MI_VDEC_OutputPortAttr){0}; /* a new channel delivers the stream's own size */
    return result;
}

int32_t MI_VDEC_DestroyChn(uint32_t channel)
{
    int32_t result = record_call("MI_VDEC_DestroyChn", "%u", channel);
    if (result == MI_SUCCESS) result = refuse_destroy(&decoders, channel);
    if (result == MI_SUCCESS) decoders.exists[channel] = false;
    return result;
}

/* A call on a decoder that has to be there. */
static int32_t use_decoder(const char *name, uint32_t channel)
{
    const int32_t result = record_call(name, "%u", channel);
    return result == MI_SUCCESS ? refuse_use(&decoders, channel) : result;
}

int32_t MI_VDEC_StartChn(uint32_t channel)
{
    const int32_t result = use_decoder("MI_VDEC_StartChn", channel);
    if (result == MI_SUCCESS) decoders.started[channel] = true;
    return result;
}

int32_t MI_VDEC_StopChn(uint32_t channel)
{
    const int32_t result = use_decoder("MI_VDEC_StopChn", channel);
    if (result == MI_SUCCESS) decoders.started[channel] = false;
    return result;
}

int32_t MI_VDEC_GetChnAttr(uint32_t channel, MI_VDEC_ChnAttr *attr)
{
    const int32_t result = use_decoder("MI_VDEC_GetChnAttr", channel);
    if (result == MI_SUCCESS) *attr = decoder_attrs[channel];
    return result;
}

int32_t MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat)
{
    const int32_t result = use_decoder("MI_VDEC_GetChnStat", channel);
    if (result == MI_SUCCESS) memset(stat, 0, sizeof *stat);
    return result;
}

int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    const int32_t result = record_call("MI_VDEC_SendStream", "%u {%u bytes pts %" PRIu64 " eof %u eos %u} %d",
                                       channel, stream->length_bytes, (uint64_t)stream->pts,
                                       stream->end_of_frame, stream->end_of_stream, (int)timeout_ms);
    return result == MI_SUCCESS ? refuse_send(&decoders, channel) : result;
}

int32_t MI_VDEC_SetOutputPortAttr(uint32_t channel, const MI_VDEC_OutputPortAttr *attr)
{
    int32_t result =
        record_call("MI_VDEC_SetOutputPortAttr", "%u {%ux%u}", channel, attr->width, attr->height);
    if (result == MI_SUCCESS) result = refuse_use(&decoders, channel);
    if (result == MI_SUCCESS) decoder_outputs[channel] = *attr;
    return result;
}

int32_t MI_VDEC_GetOutputPortAttr(uint32_t channel, MI_VDEC_OutputPortAttr *attr)
{
    const int32_t result = use_decoder("MI_VDEC_GetOutputPortAttr", channel);
    if (result == MI_SUCCESS) *attr = decoder_outputs[channel];
    return result;
}

int32_t MI_DISP_SetPubAttr(int32_t device, const MI_DISP_PubAttr *attr)
{
    const int32_t result =
        record_call("MI_DISP_SetPubAttr", "%d {background 0x%x interface %u timing %u rate %u}", (int)device,
                    attr->background, attr->interface_type, attr->timing, attr->frame_rate);
    if (result == MI_SUCCESS) display_devices[device_index(device)] = *attr;
    return result;
}

int32_t MI_DISP_GetPubAttr(int32_t device, MI_DISP_PubAttr *attr)
{
    const int32_t result = record_call("MI_DISP_GetPubAttr", "%d", (int)device);
    if (result == MI_SUCCESS) *attr = display_devices[device_index(device)];
    return result;
}

int32_t MI_DISP_Enable(int32_t device) RECORDED("MI_DISP_Enable", "%d", (int)device)

    int32_t MI_DISP_Disable(int32_t device) RECORDED("MI_DISP_Disable", "%d", (int)device)

        int32_t MI_DISP_BindVideoLayer(uint32_t layer, int32_t device)
            RECORDED("MI_DISP_BindVideoLayer", "%u %d", layer, (int)device)

                int32_t MI_DISP_UnBindVideoLayer(uint32_t layer, int32_t device)
                    RECORDED("MI_DISP_UnBindVideoLayer", "%u %d", layer, (int)device)

                        int32_t MI_DISP_SetVideoLayerAttr(uint32_t layer, const MI_DISP_VideoLayerAttr *attr)
{
    const int32_t result =
        record_call("MI_DISP_SetVideoLayerAttr", "%u {window %u,%u %ux%u size %ux%u format %u}", layer,
                    attr->window.x, attr->window.y, attr->window.width, attr->window.height, attr->width,
                    attr->height, attr->pixel_format);
    if (result == MI_SUCCESS) layers[layer % LAYERS] = *attr;
    return result;
}

int32_t MI_DISP_GetVideoLayerAttr(uint32_t layer, MI_DISP_VideoLayerAttr *attr)
{
    const int32_t result = record_call("MI_DISP_GetVideoLayerAttr", "%u", layer);
    if (result == MI_SUCCESS) *attr = layers[layer % LAYERS];
    return result;
}

int32_t MI_DISP_EnableVideoLayer(uint32_t layer) RECORDED("MI_DISP_EnableVideoLayer", "%u", layer)

    int32_t MI_DISP_DisableVideoLayer(uint32_t layer) RECORDED("MI_DISP_DisableVideoLayer", "%u", layer)

        int32_t MI_DISP_SetInputPortAttr(int32_t device, uint32_t port, const MI_DISP_InputPortAttr *attr)
{
    const int32_t result = record_call("MI_DISP_SetInputPortAttr", "%d %u {window %u,%u %ux%u source %ux%u}",
                                       (int)device, port, attr->window.x, attr->window.y, attr->window.width,
                                       attr->window.height, attr->source_width, attr->source_height);
    if (result == MI_SUCCESS) input_ports[device_index(device)][port % MI_DISP_INPUT_PORTS] = *attr;
    return result;
}

int32_t MI_DISP_GetInputPortAttr(int32_t device, uint32_t port, MI_DISP_InputPortAttr *attr)
{
    const int32_t result = record_call("MI_DISP_GetInputPortAttr", "%d %u", (int)device, port);
    if (result == MI_SUCCESS) *attr = input_ports[device_index(device)][port % MI_DISP_INPUT_PORTS];
    return result;
}

int32_t MI_DISP_EnableInputPort(int32_t device, uint32_t port)
    RECORDED("MI_DISP_EnableInputPort", "%d %u", (int)device, port)

        int32_t MI_DISP_DisableInputPort(int32_t device, uint32_t port)
            RECORDED("MI_DISP_DisableInputPort", "%d %u", (int)device, port)

                int32_t MI_DISP_SetInputPortSyncMode(int32_t device, uint32_t port, uint32_t mode)
                    RECORDED("MI_DISP_SetInputPortSyncMode", "%d %u %u", (int)device, port, mode)

                        int32_t MI_DISP_ClearInputPortBuffer(int32_t device, uint32_t port, int32_t all)
                            RECORDED("MI_DISP_ClearInputPortBuffer", "%d %u %d", (int)device, port, (int)all)

                                int32_t MI_DISP_ShowInputPort(int32_t device, uint32_t port)
                                    RECORDED("MI_DISP_ShowInputPort", "%d %u", (int)device, port)

                                        int32_t MI_DISP_HideInputPort(int32_t device, uint32_t port)
                                            RECORDED("MI_DISP_HideInputPort", "%d %u", (int)device, port)

                                                int32_t
    MI_DISP_SetZoomInWindow(int32_t device, uint32_t port, const MI_Rect *window)
        RECORDED("MI_DISP_SetZoomInWindow", "%d %u {%u,%u %ux%u}", (int)device, port, window->x, window->y,
                 window->width, window->height)

            int32_t MI_HDMI_Init(const MI_HDMI_InitParam *param)
                RECORDED("MI_HDMI_Init", "{callback %s user %s}", param->callback ? "set" : "null",
                         param->user_param ? "set" : "null")

                    int32_t MI_HDMI_DeInit(void) RECORDED("MI_HDMI_DeInit", "%s", "")

                        int32_t MI_HDMI_Open(uint32_t device) RECORDED("MI_HDMI_Open", "%u", device)

                            int32_t MI_HDMI_Close(uint32_t device) RECORDED("MI_HDMI_Close", "%u", device)

                                int32_t MI_HDMI_SetAvMute(uint32_t device, int32_t mute)
                                    RECORDED("MI_HDMI_SetAvMute", "%u %d", device, (int)mute)

                                        int32_t MI_HDMI_SetAttr(uint32_t device, const MI_HDMI_Attr *attr)
{
    const int32_t result =
        record_call("MI_HDMI_SetAttr",
                    "%u {connected %u video %u timing %u mode %u colour %u deep %u audio %u multichannel %u "
                    "rate %u depth %u "
                    "coding %u infoframes %u,%u,%u}",
                    device, attr->connected, attr->video_enabled, attr->video_timing, attr->output_mode,
                    attr->colour_type, attr->deep_colour, attr->audio_enabled, attr->audio_multichannel,
                    attr->audio_sample_rate, attr->audio_bit_depth, attr->audio_coding, attr->avi_infoframe,
                    attr->audio_infoframe, attr->spd_infoframe);
    if (result == MI_SUCCESS) hdmi_attr = *attr;
    return result;
}

int32_t MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr)
{
    const int32_t result = record_call("MI_HDMI_GetAttr", "%u", device);
    if (result == MI_SUCCESS) *attr = hdmi_attr;
    return result;
}

int32_t MI_HDMI_GetSinkInfo(uint32_t device, MI_HDMI_SinkInfo *info)
{
    const int32_t result = record_call("MI_HDMI_GetSinkInfo", "%u", device);
    if (result == MI_SUCCESS) *info = (MI_HDMI_SinkInfo){1, 1, 1920, 1080};
    return result;
}

int32_t MI_HDMI_Start(uint32_t device) RECORDED("MI_HDMI_Start", "%u", device)

    int32_t MI_HDMI_Stop(uint32_t device) RECORDED("MI_HDMI_Stop", "%u", device)
