/*
 * divp.c - the scaler. The contracts are those of mi_divp.h.
 */
#include "mi_divp.h"

#include "unsupported.h"

/**
 * Create a channel, stopped, its output size 0 x 0.
 *
 * @param channel  0 or more; the library uses 0
 * @param attr     largest input picture, 1 x 1 to 4096 x 4096 pixels; larger ones are dropped
 * @return 0, or a code
 * Order: after MI_SYS_Init; the channel does not exist.
 * Thread: any; snapshots come one at a time.
 * Memory: `attr` is the caller's, and copied.
 * Time: 100 ms at most.
 * Errors: NOT_READY before MI_SYS_Init; BAD_CHANNEL; EXISTS; BAD_VALUE: sizes; UNSUPPORTED: another work
 *   than scaling and cutting out; NO_MEMORY.
 * Failure: printed; the snapshot fails.
 */
int32_t MI_DIVP_CreateChn(uint32_t channel, const MI_DIVP_ChnAttr *attr)
{
    (void)channel;
    (void)attr;
    return unsupported(MI_MODULE_DIVP, __func__);
}

/**
 * Destroy a stopped channel.
 *
 * @param channel  the channel
 * @return 0, or a code
 * Order: created, and stopped; unbound by then.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_CHANNEL; ABSENT: not created; NOT_PERMITTED: it is started.
 * Failure: printed, and ignored; the next snapshot then fails with EXISTS.
 */
int32_t MI_DIVP_DestroyChn(uint32_t channel)
{
    (void)channel;
    return unsupported(MI_MODULE_DIVP, __func__);
}

/**
 * Read the attributes of the output port.
 *
 * @param channel  the channel
 * @param port     0
 * @param attr     filled as it was set; zeros when nothing was set yet
 * @return 0, or a code
 * Order: created, started or not.
 * Thread: any.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such channel or port; ABSENT: not created.
 * Failure: printed; the snapshot fails.
 */
int32_t MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr)
{
    (void)channel;
    (void)port;
    (void)attr;
    return unsupported(MI_MODULE_DIVP, __func__);
}

/**
 * Set the size and the format of the pictures that leave. They are scaled to this size, up or down.
 *
 * @param channel  the channel
 * @param port     0
 * @param attr     even sizes of 2 x 2 to 4096 x 4096 pixels, MI_PIXEL_YUV420_SEMIPLANAR
 * @return 0, or a code
 * Order: created; before MI_DIVP_StartChn.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_CHANNEL: no such channel or port; ABSENT: not created; BAD_VALUE: the size; UNSUPPORTED: the
 *   pixel format or a compression.
 * Failure: printed; the snapshot fails.
 */
int32_t MI_DIVP_SetOutputPortAttr(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr)
{
    (void)channel;
    (void)port;
    (void)attr;
    return unsupported(MI_MODULE_DIVP, __func__);
}

/**
 * Start taking pictures from the bound source. Of pictures that come faster than the sink takes them the
 * oldest are dropped: the source never waits.
 *
 * @param channel  the channel
 * @return 0, or a code
 * Order: after MI_DIVP_SetOutputPortAttr; before or after it is bound. Starting a started one is
 *   accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_CHANNEL; ABSENT: not created; NOT_READY: no output size.
 * Failure: printed; the snapshot fails.
 */
int32_t MI_DIVP_StartChn(uint32_t channel)
{
    (void)channel;
    return unsupported(MI_MODULE_DIVP, __func__);
}

/**
 * Stop, and discard what is queued: no picture leaves after the call has returned.
 *
 * @param channel  the channel
 * @return 0, or a code
 * Order: created. Stopping a stopped one is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: printed, and ignored.
 */
int32_t MI_DIVP_StopChn(uint32_t channel)
{
    (void)channel;
    return unsupported(MI_MODULE_DIVP, __func__);
}
