/* early_sender.c - stands in front of a board and never lets a send wait for room longer than 50 ms. */
#define _GNU_SOURCE
#include <dlfcn.h>

#include "mi_vdec.h"

int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    int32_t (*next)(uint32_t, const MI_VDEC_Stream *, int32_t);
    *(void **)&next = dlsym(RTLD_NEXT, "MI_VDEC_SendStream");
    return next(channel, stream, timeout_ms > 50 && timeout_ms < 1000 ? 50 : timeout_ms);
}
