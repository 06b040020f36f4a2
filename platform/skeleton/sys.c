/*
 * sys.c - the media system: start, version, clock, bindings. The contracts are those of mi_sys.h.
 */
#include "mi_sys.h"

#include "unsupported.h"

/**
 * Start the media system.
 *
 * @return 0, or a code
 * Order: before every other media call that creates, binds or reads a clock. Starting it again is
 *   accepted and changes nothing.
 * Thread: any.
 * Time: may take seconds; the application's start-up waits.
 * Errors: NO_MEMORY, FAULT.
 * Failure: as the heading of this file says: tried twice, start-up ends.
 */
int32_t MI_SYS_Init(void)
{
    return unsupported(MI_MODULE_SYS, __func__);
}

/**
 * Write the media system's version text.
 *
 * @param version  filled; a text of 127 bytes at most with its NUL
 * @return 0, or a code
 * Order: after MI_SYS_Init.
 * Thread: any.
 * Memory: `version` is the caller's.
 * Time: at once.
 * Errors: NOT_READY before MI_SYS_Init.
 * Failure: tried twice, start-up ends.
 */
int32_t MI_SYS_GetVersion(MI_SYS_Version *version)
{
    (void)version;
    return unsupported(MI_MODULE_SYS, __func__);
}

/**
 * Read the media clock.
 *
 * @param pts  filled: microseconds, which grow with real time and never go back by themselves
 * @return 0, or a code
 * Order: after MI_SYS_Init.
 * Thread: any.
 * Memory: `pts` is the caller's.
 * Time: at once.
 * Errors: NOT_READY before MI_SYS_Init.
 * Failure: tried twice, start-up ends.
 */
int32_t MI_SYS_GetCurPts(uint64_t *pts)
{
    (void)pts;
    return unsupported(MI_MODULE_SYS, __func__);
}

/**
 * Set the media clock: it reads `base` now and goes on from there.
 *
 * @param base  microseconds, any value; the library gives 0xF1237890F1237890
 * @return 0, or a code
 * Order: after MI_SYS_Init; may be repeated.
 * Thread: any.
 * Time: at once.
 * Errors: NOT_READY before MI_SYS_Init.
 * Failure: tried twice, start-up ends.
 */
int32_t MI_SYS_InitPtsBase(uint64_t base)
{
    (void)base;
    return unsupported(MI_MODULE_SYS, __func__);
}

/**
 * Correct the media clock, forwards only: it reads `pts` now when that lies ahead of it. A time that
 * lies behind is accepted and changes nothing.
 *
 * @param pts  microseconds; the library gives 0xE1237890E1237890, which lies behind the base it set
 * @return 0 in both cases, or a code
 * Order: after MI_SYS_Init; may be repeated.
 * Thread: any.
 * Time: at once.
 * Errors: NOT_READY before MI_SYS_Init.
 * Failure: tried twice, start-up ends.
 */
int32_t MI_SYS_SyncPts(uint64_t pts)
{
    (void)pts;
    return unsupported(MI_MODULE_SYS, __func__);
}

/**
 * Connect an output port to an input port: from now on the source's pictures go to the sink. A source
 * may feed several sinks, a sink takes one source. What can be connected: decoder to display port,
 * decoder to scaler, scaler to encoder. A binding stays when its decoder channel is destroyed, and
 * works again when that channel is created again: the library does that at every change of codec.
 *
 * @param source       decoder channel or scaler channel, port 0; a decoder's device word is ignored
 * @param sink         display device and input port, scaler channel, or encoder channel with the
 *                     device that MI_VENC_GetChnDevid told
 * @param source_rate  pictures per second; equal rates let every picture pass
 * @param sink_rate    pictures per second; below source_rate pictures are left out evenly
 * @return 0, or a code
 * Order: both ends exist: decoder, scaler and encoder channels are created, a display's ports are
 *   always there. The ends may be started before or after.
 * Thread: any, also while the source is decoding.
 * Memory: both records are the caller's.
 * Time: at once.
 * Errors: NOT_READY before MI_SYS_Init; ABSENT: an end does not exist; EXISTS: the sink has a source;
 *   UNSUPPORTED: a pair of modules that cannot be connected.
 * Failure: printed. A layout goes on, and the pane stays dark; the start of a playback ends with -1 and
 *   a snapshot fails.
 */
int32_t MI_SYS_BindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink, uint32_t source_rate,
                           uint32_t sink_rate)
{
    (void)source;
    (void)sink;
    (void)source_rate;
    (void)sink_rate;
    return unsupported(MI_MODULE_SYS, __func__);
}

/**
 * Undo MI_SYS_BindChnPort. What the sink shows stays on the screen; pictures that were still to come
 * do not.
 *
 * @param source  as it was given to MI_SYS_BindChnPort
 * @param sink    as it was given to MI_SYS_BindChnPort
 * @return 0, or a code
 * Order: none. The library unbinds before every binding, so that ABSENT between two ends that exist is
 *   an everyday answer and no reason to print anything.
 * Thread: any, also while the source is decoding.
 * Memory: both records are the caller's.
 * Time: at once; it may wait for the picture that is just being handed over.
 * Errors: ABSENT: these two are not bound, or an end does not exist; a source of zeros is no end.
 * Failure: printed, and ignored.
 */
int32_t MI_SYS_UnBindChnPort(const MI_SYS_ChnPort *source, const MI_SYS_ChnPort *sink)
{
    (void)source;
    (void)sink;
    return unsupported(MI_MODULE_SYS, __func__);
}

/**
 * Set how many pictures an output port may lend to the user, and how many it may queue.
 *
 * @param port         output port of a decoder or a scaler channel
 * @param user_depth   pictures, 0 or more; the library gives 0: it borrows none
 * @param queue_depth  pictures, 0 to 64; 0 = the platform's own choice; the library gives 3
 * @return 0, or a code
 * Order: the channel is created; before or after it is bound and started.
 * Thread: any.
 * Memory: `port` is the caller's.
 * Time: at once.
 * Errors: ABSENT or BAD_CHANNEL: no such channel or port; UNSUPPORTED: a module without output ports;
 *   BAD_VALUE: a scaler's queue of more than 64 pictures.
 * Failure: printed; the snapshot fails and its pipeline is taken down.
 */
int32_t MI_SYS_SetChnOutputPortDepth(const MI_SYS_ChnPort *port, uint32_t user_depth, uint32_t queue_depth)
{
    (void)port;
    (void)user_depth;
    (void)queue_depth;
    return unsupported(MI_MODULE_SYS, __func__);
}
