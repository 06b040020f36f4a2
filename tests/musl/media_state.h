/* media_state.h - which channels exist and run and what is bound, and what is refused for it. */
#ifndef MEDIA_STATE_H
#define MEDIA_STATE_H

#include <stdbool.h>

#include "mi_sys.h"

enum { MOST_CHANNELS = 64 };

/** The channels of one module. */
struct channels {
    uint32_t module;
    bool exists[MOST_CHANNELS], started[MOST_CHANNELS];
};

extern struct channels decoders, scalers, encoders;

/* 0, or the code with which the call is refused. */
int32_t refuse_create(const struct channels *channels, uint32_t channel);
int32_t refuse_use(const struct channels *channels, uint32_t channel);
int32_t refuse_destroy(const struct channels *channels, uint32_t channel); /* absent, or not stopped */
int32_t refuse_send(const struct channels *channels, uint32_t channel);    /* absent, or not started */
int32_t refuse_bind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink);
int32_t refuse_unbind(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink);

void bind_ports(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink);
void unbind_ports(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink);

#endif
