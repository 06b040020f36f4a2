/*
 * bind.c - bindings. The chip knows of none: its tiles are fed by a decoder's handle, and its grabs ask one
 * for pictures. The table below is what the library has said; display and encoders are made to follow it.
 */
#include <stddef.h>

#include "adapter.h"

enum { kMostBindings = 128, kMostDepth = 64 };

typedef struct Binding {
    int used;
    MI_SYS_ChnPort source, sink;
    uint32_t source_rate, sink_rate;
} Binding;

static Binding bindings[kMostBindings]; /* guarded by topology_lock */

static int can_feed(uint32_t source, uint32_t sink)
{
    return (source == MI_MODULE_VDEC && (sink == MI_MODULE_DISP || sink == MI_MODULE_DIVP)) ||
           (source == MI_MODULE_DIVP && sink == MI_MODULE_VENC);
}

static int source_exists(const MI_SYS_ChnPort *end)
{
    if (end->port != 0) return 0;
    if (end->module == MI_MODULE_VDEC) return decoder_exists(end->channel);
    return end->module == MI_MODULE_DIVP && scaler_exists(end->channel);
}

static int sink_exists(const MI_SYS_ChnPort *end)
{
    if (end->port != 0) return 0;
    const int64_t device = (int64_t)(int32_t)end->device - kFirstDevice;
    switch (end->module) {
    case MI_MODULE_DISP: return device >= 0 && device < kDevices && end->channel < MI_DISP_INPUT_PORTS;
    case MI_MODULE_DIVP: return end->device == 0 && scaler_exists(end->channel);
    case MI_MODULE_VENC: return encoder_exists(end->device, end->channel);
    default: return 0;
    }
}

/* A decoder and a scaler have one device: the word is not looked at. */
static int is_source(const MI_SYS_ChnPort *a, const MI_SYS_ChnPort *b)
{
    return a->module == b->module && a->channel == b->channel && a->port == b->port;
}

static int is_sink(const MI_SYS_ChnPort *a, const MI_SYS_ChnPort *b)
{
    return is_source(a, b) && a->device == b->device;
}

static Binding *find_sink(const MI_SYS_ChnPort *sink)
{
    for (int i = 0; i < kMostBindings; ++i)
        if (bindings[i].used && is_sink(&bindings[i].sink, sink)) return &bindings[i];
    return NULL;
}

static int32_t bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                    uint32_t sink_rate)
{
    if (!source_exists(source) || !sink_exists(sink)) return MI_ERROR(MI_MODULE_SYS, MI_REASON_ABSENT);
    if (find_sink(sink) != NULL) return MI_ERROR(MI_MODULE_SYS, MI_REASON_EXISTS);
    for (int i = 0; i < kMostBindings; ++i) {
        if (bindings[i].used) continue;
        bindings[i] = (Binding){1, *source, *sink, source_rate, sink_rate};
        display_apply();
        encoders_apply();
        return MI_SUCCESS;
    }
    return MI_ERROR(MI_MODULE_SYS, MI_REASON_NO_MEMORY);
}

int32_t MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                           uint32_t sink_rate)
{
    if (source == NULL || sink == NULL) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    if (!system_is_up()) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NOT_READY);
    if (!can_feed(source->module, sink->module)) return MI_ERROR(MI_MODULE_SYS, MI_REASON_UNSUPPORTED);
    pthread_mutex_lock(&topology_lock);
    const int32_t result = bind(source, sink, source_rate, sink_rate);
    pthread_mutex_unlock(&topology_lock);
    return result;
}

int32_t MI_SYS_UnBindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    if (source == NULL || sink == NULL) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    pthread_mutex_lock(&topology_lock);
    Binding *binding = find_sink(sink);
    const int found = binding != NULL && is_source(&binding->source, source);
    if (found) {
        binding->used = 0;
        display_apply();
        encoders_apply();
    }
    pthread_mutex_unlock(&topology_lock);
    return found ? MI_SUCCESS : MI_ERROR(MI_MODULE_SYS, MI_REASON_ABSENT);
}

int32_t source_of_port(int32_t device, uint32_t port)
{
    const MI_SYS_ChnPort end = {MI_MODULE_DISP, (uint32_t)device, port, 0};
    const Binding *binding = find_sink(&end);
    return binding != NULL ? (int32_t)binding->source.channel : kNoChannel;
}

int way_to_encoder(uint32_t encoder, WayToEncoder *way)
{
    const MI_SYS_ChnPort end = {MI_MODULE_VENC, 0, encoder, 0};
    const Binding *last = find_sink(&end);
    if (last == NULL) return 0;
    const MI_SYS_ChnPort middle = {MI_MODULE_DIVP, 0, last->source.channel, 0};
    const Binding *first = find_sink(&middle);
    if (first == NULL) return 0;
    *way = (WayToEncoder){(int32_t)first->source.channel,
                          last->source.channel,
                          {{first->source_rate, first->sink_rate}, {last->source_rate, last->sink_rate}}};
    return 1;
}

int32_t MI_SYS_SetChnOutputPortDepth(const MI_SYS_ChnPort *port, uint32_t user_depth, uint32_t queue_depth)
{
    (void)user_depth;
    if (port == NULL) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    if (port->module != MI_MODULE_VDEC && port->module != MI_MODULE_DIVP)
        return MI_ERROR(MI_MODULE_SYS, MI_REASON_UNSUPPORTED);
    pthread_mutex_lock(&topology_lock);
    const int there = source_exists(port);
    pthread_mutex_unlock(&topology_lock);
    if (!there) return MI_ERROR(MI_MODULE_SYS, MI_REASON_ABSENT);
    /* The chip keeps one picture and takes the next one: there is no queue to size. */
    return queue_depth <= kMostDepth ? MI_SUCCESS : MI_ERROR(MI_MODULE_SYS, MI_REASON_BAD_VALUE);
}
