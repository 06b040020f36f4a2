/* The system and decoder modules of the recording platform. */
#include "record_call.h"

using recording::MediaState;
using recording::platform;
using recording::record_call;
using recording::record_plain_call;
using recording::record_refusable_call;

extern "C" {

int32_t MI_SYS_Init(void)
{
    return record_plain_call("MI_SYS_Init");
}

int32_t MI_SYS_GetVersion(MI_SYS_Version *version)
{
    return record_call(
        "MI_SYS_GetVersion",
        [=](MediaState &) {
            if (!version) return;
            recording::fill_with_pattern(*version);
            std::strcpy(version->text, "recording platform");
        },
        version);
}

int32_t MI_SYS_GetCurPts(uint64_t *pts)
{
    return record_call(
        "MI_SYS_GetCurPts",
        [=](MediaState &) {
            if (pts) *pts = static_cast<uint64_t>(platform.time_us());
        },
        pts);
}

int32_t MI_SYS_InitPtsBase(uint64_t base)
{
    return record_plain_call("MI_SYS_InitPtsBase", base);
}

int32_t MI_SYS_SyncPts(uint64_t pts)
{
    return record_plain_call("MI_SYS_SyncPts", pts);
}

int32_t MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                           uint32_t sink_rate)
{
    return record_refusable_call(
        "MI_SYS_BindChnPort", [=](const MediaState &media) { return media.refuse_bind(source, sink); },
        [=](MediaState &media) { media.bind(source, sink); }, source, sink, source_rate, sink_rate);
}

int32_t MI_SYS_UnBindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    return record_refusable_call(
        "MI_SYS_UnBindChnPort", [=](const MediaState &media) { return media.refuse_unbind(source, sink); },
        [=](MediaState &media) { media.unbind(source, sink); }, source, sink);
}

int32_t MI_SYS_SetChnOutputPortDepth(const MI_SYS_ChnPort *port, uint32_t user_depth, uint32_t queue_depth)
{
    return record_plain_call("MI_SYS_SetChnOutputPortDepth", port, user_depth, queue_depth);
}

int32_t MI_VDEC_CreateChn(uint32_t channel, const MI_VDEC_ChnAttr *attr)
{
    return record_refusable_call(
        "MI_VDEC_CreateChn", [=](const MediaState &media) { return media.decoders.refuse_create(channel); },
        [=](MediaState &media) {
            media.decoders.create(channel);
            if (attr) media.decoder_attrs[channel] = *attr;
            media.decoder_outputs.erase(channel); // a new channel delivers the stream's own size
        },
        channel, attr);
}

int32_t MI_VDEC_DestroyChn(uint32_t channel)
{
    return record_refusable_call(
        "MI_VDEC_DestroyChn", [=](const MediaState &media) { return media.decoders.refuse_destroy(channel); },
        [=](MediaState &media) {
            media.decoders.destroy(channel);
            media.decoder_attrs.erase(channel);
        },
        channel);
}

int32_t MI_VDEC_StartChn(uint32_t channel)
{
    return record_refusable_call(
        "MI_VDEC_StartChn", [=](const MediaState &media) { return media.decoders.refuse_use(channel); },
        [=](MediaState &media) { media.decoders.start(channel, true); }, channel);
}

int32_t MI_VDEC_StopChn(uint32_t channel)
{
    return record_refusable_call(
        "MI_VDEC_StopChn", [=](const MediaState &media) { return media.decoders.refuse_use(channel); },
        [=](MediaState &media) { media.decoders.start(channel, false); }, channel);
}

int32_t MI_VDEC_GetChnAttr(uint32_t channel, MI_VDEC_ChnAttr *attr)
{
    return record_refusable_call(
        "MI_VDEC_GetChnAttr", [=](const MediaState &media) { return media.decoders.refuse_use(channel); },
        [=](MediaState &media) {
            if (attr) *attr = media.decoder_attrs[channel];
        },
        channel, attr);
}

int32_t MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat)
{
    return record_refusable_call(
        "MI_VDEC_GetChnStat", [=](const MediaState &media) { return media.decoders.refuse_use(channel); },
        [=](MediaState &) {
            if (stat) *stat = {};
        },
        channel, stat);
}

int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    if (stream) platform.keep_bytes("MI_VDEC_SendStream", stream->address, stream->length_bytes);
    return record_refusable_call(
        "MI_VDEC_SendStream", [=](const MediaState &media) { return media.decoders.refuse_send(channel); },
        [=](MediaState &) {}, channel, stream, timeout_ms);
}

int32_t MI_VDEC_SetOutputPortAttr(uint32_t channel, const MI_VDEC_OutputPortAttr *attr)
{
    return record_refusable_call(
        "MI_VDEC_SetOutputPortAttr",
        [=](const MediaState &media) { return media.decoders.refuse_use(channel); },
        [=](MediaState &media) {
            if (attr) media.decoder_outputs[channel] = *attr;
        },
        channel, attr);
}

int32_t MI_VDEC_GetOutputPortAttr(uint32_t channel, MI_VDEC_OutputPortAttr *attr)
{
    return record_refusable_call(
        "MI_VDEC_GetOutputPortAttr",
        [=](const MediaState &media) { return media.decoders.refuse_use(channel); },
        [=](MediaState &media) {
            if (attr) *attr = media.decoder_outputs[channel];
        },
        channel, attr);
}

} // extern "C"
