/* sys.c - the media system, its clock in microseconds over the chip's ticks, and the bindings. */
#include "mi_sys.h"

#include <stdio.h>
#include <string.h>
#include <time.h>

#include "adapter.h"

/* Asserts, with this compiler, that the seams' records lie in memory as the library has them. */
#include "seam_layouts.h"

enum { kMostBindings = 128, kMostDepth = 64 };

typedef struct Binding {
    int used;
    MI_SYS_ChnPort source, sink;
} Binding;

pthread_mutex_t topology_lock = PTHREAD_MUTEX_INITIALIZER;
static Binding bindings[kMostBindings]; /* guarded by topology_lock */

static pthread_mutex_t clock_lock = PTHREAD_MUTEX_INITIALIZER;
static int is_up;          /* guarded by clock_lock, like the offset */
static uint64_t offset_us; /* media clock less the chip's, modulo 2^64 */

/* --------------------------------------------------------------------- what the sources share --- */

int system_is_up(void)
{
    pthread_mutex_lock(&clock_lock);
    const int up = is_up;
    pthread_mutex_unlock(&clock_lock);
    return up;
}

int32_t code_of(enum MI_ModuleId module, TernStatus status)
{
    switch (status) {
    case TERN_OK: return MI_SUCCESS;
    case TERN_NO_POWER: return MI_ERROR(module, MI_REASON_NOT_READY);
    case TERN_BAD_ARGUMENT: return MI_ERROR(module, MI_REASON_BAD_VALUE);
    case TERN_NO_UNIT:
    case TERN_NO_MEMORY: return MI_ERROR(module, MI_REASON_NO_MEMORY);
    case TERN_FULL: return MI_ERROR(module, MI_REASON_BUFFER_FULL);
    case TERN_NO_SIGNAL: return MI_ERROR(module, MI_REASON_ABSENT);
    }
    return MI_ERROR(module, MI_REASON_FAULT);
}

int64_t monotonic_us(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000000 + now.tv_nsec / 1000;
}

int64_t deadline_us(int32_t timeout_ms)
{
    return timeout_ms < 0 ? INT64_MAX : monotonic_us() + (int64_t)timeout_ms * 1000;
}

void condition_init(pthread_cond_t *condition)
{
    pthread_condattr_t attr;
    pthread_condattr_init(&attr);
    pthread_condattr_setclock(&attr, CLOCK_MONOTONIC);
    pthread_cond_init(condition, &attr);
    pthread_condattr_destroy(&attr);
}

void condition_wait(pthread_cond_t *condition, pthread_mutex_t *lock, int64_t until_us)
{
    if (until_us == INT64_MAX) {
        pthread_cond_wait(condition, lock);
        return;
    }
    const struct timespec until = {(time_t)(until_us / 1000000), (long)(until_us % 1000000) * 1000};
    pthread_cond_timedwait(condition, lock, &until);
}

/* ------------------------------------------------------------------------------ start and clock --- */

static uint64_t chip_us(void)
{
    const uint64_t ticks = tern_ticks();
    const uint64_t per_ms = TERN_TICKS_PER_SECOND / 1000;
    return ticks / per_ms * 1000 + ticks % per_ms * 1000 / per_ms;
}

int32_t MI_SYS_Init(void)
{
    const TernStatus status = tern_wake();
    pthread_mutex_lock(&clock_lock);
    if (status == TERN_OK) is_up = 1;
    pthread_mutex_unlock(&clock_lock);
    return code_of(MI_MODULE_SYS, status);
}

int32_t MI_SYS_GetVersion(MI_SYS_Version *version)
{
    if (version == NULL) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    if (!system_is_up()) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NOT_READY);
    snprintf(version->text, sizeof version->text, "%s", tern_firmware());
    return MI_SUCCESS;
}

/* Give the media clock a new time, but none that lies behind `least_us`. */
static int32_t set_clock(uint64_t time_us, int forwards_only)
{
    pthread_mutex_lock(&clock_lock);
    const int up = is_up;
    const uint64_t now_us = chip_us();
    if (up && (!forwards_only || time_us > now_us + offset_us)) offset_us = time_us - now_us;
    pthread_mutex_unlock(&clock_lock);
    return up ? MI_SUCCESS : MI_ERROR(MI_MODULE_SYS, MI_REASON_NOT_READY);
}

int32_t MI_SYS_GetCurPts(uint64_t *pts)
{
    if (pts == NULL) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    pthread_mutex_lock(&clock_lock);
    const int up = is_up;
    if (up) *pts = chip_us() + offset_us;
    pthread_mutex_unlock(&clock_lock);
    return up ? MI_SUCCESS : MI_ERROR(MI_MODULE_SYS, MI_REASON_NOT_READY);
}

int32_t MI_SYS_InitPtsBase(uint64_t base)
{
    return set_clock(base, 0);
}

int32_t MI_SYS_SyncPts(uint64_t pts)
{
    return set_clock(pts, 1);
}

/* ------------------------------------------------------------------------------------ bindings --- */

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

static int32_t bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    if (!source_exists(source) || !sink_exists(sink)) return MI_ERROR(MI_MODULE_SYS, MI_REASON_ABSENT);
    if (find_sink(sink) != NULL) return MI_ERROR(MI_MODULE_SYS, MI_REASON_EXISTS);
    for (int i = 0; i < kMostBindings; ++i) {
        if (bindings[i].used) continue;
        bindings[i] = (Binding){1, *source, *sink};
        display_apply();
        return MI_SUCCESS;
    }
    return MI_ERROR(MI_MODULE_SYS, MI_REASON_NO_MEMORY);
}

int32_t MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                           uint32_t sink_rate)
{
    (void)source_rate; /* the chip leaves no pictures out: it shows the newest one at each refresh */
    (void)sink_rate;
    if (source == NULL || sink == NULL) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NULL_POINTER);
    if (!system_is_up()) return MI_ERROR(MI_MODULE_SYS, MI_REASON_NOT_READY);
    if (!can_feed(source->module, sink->module)) return MI_ERROR(MI_MODULE_SYS, MI_REASON_UNSUPPORTED);
    pthread_mutex_lock(&topology_lock);
    const int32_t result = bind(source, sink);
    pthread_mutex_unlock(&topology_lock);
    encoders_look_again();
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
    }
    pthread_mutex_unlock(&topology_lock);
    encoders_look_again();
    return found ? MI_SUCCESS : MI_ERROR(MI_MODULE_SYS, MI_REASON_ABSENT);
}

int32_t source_of_port(int32_t device, uint32_t port)
{
    const MI_SYS_ChnPort end = {MI_MODULE_DISP, (uint32_t)device, port, 0};
    const Binding *binding = find_sink(&end);
    return binding != NULL ? (int32_t)binding->source.channel : kNoChannel;
}

int scaler_of_encoder(uint32_t encoder, uint32_t *scaler)
{
    const MI_SYS_ChnPort end = {MI_MODULE_VENC, 0, encoder, 0};
    const Binding *binding = find_sink(&end);
    if (binding == NULL) return 0;
    *scaler = binding->source.channel;
    return 1;
}

int32_t source_of_encoder(uint32_t encoder)
{
    uint32_t scaler = 0;
    if (!scaler_of_encoder(encoder, &scaler)) return kNoChannel;
    const MI_SYS_ChnPort end = {MI_MODULE_DIVP, 0, scaler, 0};
    const Binding *binding = find_sink(&end);
    return binding != NULL ? (int32_t)binding->source.channel : kNoChannel;
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
