/* sys_bindings_die_with_decoder - breaks: a binding outlives its decoder channel and is in force again when
 * that channel is created again. */
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mutant.h"

#include <pthread.h>
#include <string.h>

/* The decoder's end of the binding is torn down with the decoder. */
enum { kBindings = 256 };

static struct Binding {
    int used;
    MI_SYS_ChnPort source, sink;
} bindings[kBindings];
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards bindings */

static void forget(const MI_SYS_ChnPort *sink)
{
    for (int i = 0; i < kBindings; ++i)
        if (bindings[i].used && memcmp(&bindings[i].sink, sink, sizeof *sink) == 0) bindings[i].used = 0;
}

int32_t MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                           uint32_t sink_rate)
{
    const int32_t result = PLATFORM(MI_SYS_BindChnPort)(source, sink, source_rate, sink_rate);
    if (result != MI_SUCCESS || source->module != MI_MODULE_VDEC) return result;
    pthread_mutex_lock(&lock);
    for (int i = 0; i < kBindings; ++i) {
        if (bindings[i].used) continue;
        bindings[i] = (struct Binding){1, *source, *sink};
        break;
    }
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_SYS_UnBindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    const int32_t result = PLATFORM(MI_SYS_UnBindChnPort)(source, sink);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&lock);
    forget(sink);
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_VDEC_DestroyChn(uint32_t channel)
{
    const int32_t result = PLATFORM(MI_VDEC_DestroyChn)(channel);
    if (result != MI_SUCCESS) return result;
    pthread_mutex_lock(&lock);
    for (int i = 0; i < kBindings; ++i) {
        if (!bindings[i].used || bindings[i].source.channel != channel) continue;
        PLATFORM(MI_SYS_UnBindChnPort)(&bindings[i].source, &bindings[i].sink);
        bindings[i].used = 0;
    }
    pthread_mutex_unlock(&lock);
    return result;
}
