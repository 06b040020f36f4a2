/* mi_sys.h - the media system: start, version, clock, and the binding graph between modules. */
#ifndef MI_SYS_H
#define MI_SYS_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Version text, NUL-terminated. 128 bytes. */
typedef struct MI_SYS_Version {
    char text[128];
} MI_SYS_Version;

/** One end of a binding. 16 bytes. */
typedef struct MI_SYS_ChnPort {
    uint32_t module;  /*  0  enum MI_ModuleId */
    uint32_t device;  /*  4  module's device  */
    uint32_t channel; /*  8  channel; for the display its input port */
    uint32_t port;    /* 12  output or input port of the channel     */
} MI_SYS_ChnPort;

/** Start the media system. Starting it again is accepted. */
int32_t MI_SYS_Init(void);

/** Write the media system's version text to *version. */
int32_t MI_SYS_GetVersion(MI_SYS_Version *version);

/** Write the media clock, in microseconds, to *pts. */
int32_t MI_SYS_GetCurPts(uint64_t *pts);

/** Set the base of the media clock. */
int32_t MI_SYS_InitPtsBase(uint64_t base);

/** Correct the media clock without a jump backwards. */
int32_t MI_SYS_SyncPts(uint64_t pts);

/**
 * Connect an output port to an input port: from now on the source's pictures go to the sink.
 * A sink takes one source. Rates are in frames per second; equal rates pass every picture.
 * Refused: either end absent (ABSENT), sink bound already (EXISTS), a pair of modules that cannot
 * be connected (UNSUPPORTED).
 */
int32_t MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                           uint32_t sink_rate);

/** Undo MI_SYS_BindChnPort. Refused: not bound this way (ABSENT). */
int32_t MI_SYS_UnBindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink);

/** Set how many pictures an output port may lend to the user, and how many it may queue. */
int32_t MI_SYS_SetChnOutputPortDepth(const MI_SYS_ChnPort *port, uint32_t user_depth, uint32_t queue_depth);

#ifdef __cplusplus
}
#endif

#endif
