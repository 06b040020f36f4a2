/* media_state.c - see media_state.h. A source is its module, channel and port: the library names the
 * display's device there, and a decoder has none. */
#include "media_state.h"

#include "mi_disp.h"

enum { MOST_BINDINGS = 64 };

struct channels decoders = {.module = MI_MODULE_VDEC};
struct channels scalers = {.module = MI_MODULE_DIVP};
struct channels encoders = {.module = MI_MODULE_VENC};

static struct binding {
    bool used;
    MI_SYS_ChnPort source, sink;
} bindings[MOST_BINDINGS];

static bool exists(const struct channels *channels, uint32_t channel)
{
    return channel < MOST_CHANNELS && channels->exists[channel];
}

static int32_t error(const struct channels *channels, uint32_t reason)
{
    return MI_ERROR(channels->module, reason);
}

int32_t refuse_create(const struct channels *channels, uint32_t channel)
{
    return exists(channels, channel) ? error(channels, MI_REASON_EXISTS) : MI_SUCCESS;
}

int32_t refuse_use(const struct channels *channels, uint32_t channel)
{
    return exists(channels, channel) ? MI_SUCCESS : error(channels, MI_REASON_ABSENT);
}

int32_t refuse_destroy(const struct channels *channels, uint32_t channel)
{
    if (!exists(channels, channel)) return error(channels, MI_REASON_ABSENT);
    return channels->started[channel] ? error(channels, MI_REASON_NOT_PERMITTED) : MI_SUCCESS;
}

int32_t refuse_send(const struct channels *channels, uint32_t channel)
{
    if (!exists(channels, channel)) return error(channels, MI_REASON_ABSENT);
    return channels->started[channel] ? MI_SUCCESS : error(channels, MI_REASON_NOT_PERMITTED);
}

static bool same_source(const MI_SYS_ChnPort *a, const MI_SYS_ChnPort *b)
{
    return a->module == b->module && a->channel == b->channel && a->port == b->port;
}

static bool same_sink(const MI_SYS_ChnPort *a, const MI_SYS_ChnPort *b)
{
    return same_source(a, b) && a->device == b->device;
}

static bool can_feed(uint32_t source, uint32_t sink)
{
    if (source == MI_MODULE_VDEC) return sink == MI_MODULE_DISP || sink == MI_MODULE_DIVP;
    return source == MI_MODULE_DIVP && (sink == MI_MODULE_DISP || sink == MI_MODULE_VENC);
}

static bool end_exists(const MI_SYS_ChnPort *end)
{
    switch (end->module) {
    case MI_MODULE_VDEC: return exists(&decoders, end->channel);
    case MI_MODULE_DIVP: return exists(&scalers, end->channel);
    case MI_MODULE_VENC: return exists(&encoders, end->channel);
    default: return end->channel < MI_DISP_INPUT_PORTS; /* the display's ports are always there */
    }
}

static int32_t bind_error(uint32_t reason)
{
    return MI_ERROR(MI_MODULE_SYS, reason);
}

int32_t refuse_bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    if (!source || !sink) return bind_error(MI_REASON_NULL_POINTER);
    if (!can_feed(source->module, sink->module)) return bind_error(MI_REASON_UNSUPPORTED);
    if (!end_exists(source) || !end_exists(sink)) return bind_error(MI_REASON_ABSENT);
    for (int i = 0; i < MOST_BINDINGS; ++i)
        if (bindings[i].used && same_sink(&bindings[i].sink, sink)) return bind_error(MI_REASON_EXISTS);
    return MI_SUCCESS;
}

static struct binding *find(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    for (int i = 0; i < MOST_BINDINGS; ++i)
        if (bindings[i].used && same_source(&bindings[i].source, source) &&
            same_sink(&bindings[i].sink, sink))
            return &bindings[i];
    return 0;
}

int32_t refuse_unbind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    if (!source || !sink) return bind_error(MI_REASON_NULL_POINTER);
    return find(source, sink) ? MI_SUCCESS : bind_error(MI_REASON_ABSENT);
}

void bind_ports(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    for (int i = 0; i < MOST_BINDINGS; ++i) {
        if (bindings[i].used) continue;
        bindings[i] = (struct binding){true, *source, *sink};
        return;
    }
}

void unbind_ports(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    struct binding *binding = find(source, sink);
    if (binding) binding->used = false;
}
