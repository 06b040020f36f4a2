/*
 * venc.c - the JPEG encoder. The contracts are those of mi_venc.h.
 */
#include "mi_venc.h"

#include "unsupported.h"

/**
 * Create a channel that takes no pictures yet.
 *
 * @param channel  0 to 15, or more: the camera's number
 * @param attr     one whole JPEG picture of width x height a stream
 * @return 0, or a code
 * Order: after MI_SYS_Init; the channel does not exist.
 * Thread: any; snapshots come one at a time.
 * Memory: `attr` is the caller's, and copied.
 * Time: 100 ms at most.
 * Errors: NOT_READY before MI_SYS_Init; BAD_CHANNEL; EXISTS; UNSUPPORTED: codec, or by_frame other than
 *   1; BAD_VALUE: sizes or buffer; NO_MEMORY.
 * Failure: printed; the snapshot fails.
 */
int32_t MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr)
{
    (void)channel;
    (void)attr;
    return unsupported(MI_MODULE_VENC, __func__);
}

/**
 * Destroy a channel.
 *
 * @param channel  the channel
 * @return 0, or a code
 * Order: created, and not receiving; streams that were not released are gone.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_CHANNEL; ABSENT: not created; NOT_PERMITTED: it is receiving pictures.
 * Failure: printed, and ignored; the channel's next snapshot then fails with EXISTS.
 */
int32_t MI_VENC_DestroyChn(uint32_t channel)
{
    (void)channel;
    return unsupported(MI_MODULE_VENC, __func__);
}

/**
 * Discard what is encoded and queued, the streams that are not released included. The channel goes on
 * receiving when it did.
 *
 * @param channel  the channel
 * @return 0, or a code
 * Order: created, receiving or not.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: ignored.
 */
int32_t MI_VENC_ResetChn(uint32_t channel)
{
    (void)channel;
    return unsupported(MI_MODULE_VENC, __func__);
}

/**
 * Read the coding parameters.
 *
 * @param channel  the channel
 * @param param    filled as it was set; the platform's own quality after creation
 * @return 0, or a code
 * Order: created.
 * Thread: any.
 * Memory: `param` is the caller's.
 * Time: at once.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: printed; the snapshot fails.
 */
int32_t MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param)
{
    (void)channel;
    (void)param;
    return unsupported(MI_MODULE_VENC, __func__);
}

/**
 * Set the coding parameters; they hold from the next picture on.
 *
 * @param channel  the channel
 * @param param    quality 1 to 99; the library gives 50
 * @return 0, or a code
 * Order: created, receiving or not.
 * Thread: any.
 * Memory: `param` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_CHANNEL; ABSENT: not created; BAD_VALUE: another quality.
 * Failure: printed; the snapshot fails.
 */
int32_t MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param)
{
    (void)channel;
    (void)param;
    return unsupported(MI_MODULE_VENC, __func__);
}

/**
 * Tell which device number a binding must name for this channel.
 *
 * @param channel  the channel
 * @param device   filled
 * @return 0, or a code
 * Order: created.
 * Thread: any.
 * Memory: `device` is the caller's.
 * Time: at once.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: printed; the snapshot fails. While it is taken down, 0 is used instead.
 */
int32_t MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device)
{
    (void)channel;
    (void)device;
    return unsupported(MI_MODULE_VENC, __func__);
}

/**
 * Begin taking pictures from the bound source and encoding them. A picture of another size than the
 * channel's is dropped.
 *
 * @param channel  the channel
 * @return 0, or a code
 * Order: created; before or after it is bound. Beginning twice is accepted.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: printed; the snapshot fails.
 */
int32_t MI_VENC_StartRecvPic(uint32_t channel)
{
    (void)channel;
    return unsupported(MI_MODULE_VENC, __func__);
}

/**
 * Take no pictures any more. Those that are encoded can still be got.
 *
 * @param channel  the channel
 * @return 0, or a code
 * Order: created. Ending twice is accepted.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: printed, and ignored.
 */
int32_t MI_VENC_StopRecvPic(uint32_t channel)
{
    (void)channel;
    return unsupported(MI_MODULE_VENC, __func__);
}

/**
 * Wait for an encoded picture, and lend it: the oldest one that was not got yet.
 *
 * @param channel     the channel
 * @param stream      in: packs and the room for them, 1 or more; out: packs, count, sequence, handle
 * @param timeout_ms  milliseconds; 0 = not at all, negative = for ever. The library gives 40
 * @return 0, or a code
 * Order: after MI_VENC_StartRecvPic.
 * Thread: any; a wait keeps the channel's other calls not waiting.
 * Memory: the array is the caller's. The bytes at the packs' addresses are the platform's, and stay as
 *   they are until MI_VENC_ReleaseStream, MI_VENC_ResetChn or MI_VENC_DestroyChn.
 * Time: at once when a picture is there; otherwise up to timeout_ms, and not less when none came.
 * Errors: BAD_CHANNEL; ABSENT: not created; NOT_READY: it receives no pictures and has none left;
 *   BAD_VALUE: room for no pack; TIMEOUT: no picture in time, an everyday answer and no reason to print.
 * Failure: tried up to 50 times, 10 ms apart, some 2.5 s in all; then printed, and the snapshot fails.
 */
int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    (void)channel;
    (void)stream;
    (void)timeout_ms;
    return unsupported(MI_MODULE_VENC, __func__);
}

/**
 * Give a stream back: its bytes are the platform's again.
 *
 * @param channel  the channel
 * @param stream   as MI_VENC_GetStream filled it; its handle counts
 * @return 0, or a code
 * Order: once for every stream that was got.
 * Thread: any.
 * Memory: the record stays the caller's.
 * Time: at once.
 * Errors: BAD_CHANNEL; ABSENT: not created; BAD_VALUE: no stream of this handle is lent.
 * Failure: printed; the snapshot fails, although its bytes are there.
 */
int32_t MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream)
{
    (void)channel;
    (void)stream;
    return unsupported(MI_MODULE_VENC, __func__);
}
