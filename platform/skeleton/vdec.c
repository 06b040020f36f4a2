/*
 * vdec.c - decoder channels. The contracts are those of mi_vdec.h.
 */
#include "mi_vdec.h"

#include "unsupported.h"

/**
 * Create a channel, stopped, its queues empty, its output size 0 x 0. Bindings that the channel had
 * before it was destroyed are in force again.
 *
 * @param channel  0 to 16, or more
 * @param attr     what is to be decoded. The library gives a bit-stream buffer of 512 KiB, 1 MiB or
 *                 2 MiB, the output's size as the largest picture, frame mode at start-up and stream
 *                 mode after a change of codec
 * @return 0, or a code
 * Order: after MI_SYS_Init; the channel does not exist.
 * Thread: any; one channel's creation does not wait for another's decoding.
 * Memory: `attr` is the caller's, and copied.
 * Time: 100 ms at most: a layout creates every shown channel anew.
 * Errors: NOT_READY before MI_SYS_Init; EXISTS; BAD_CHANNEL; BAD_VALUE: codec, mode or a buffer of 0
 *   bytes; NO_MEMORY.
 * Failure: printed. Start-up ends with -1; a layout or a change of codec leaves the channel absent: its
 *   frames are refused until the next layout.
 */
int32_t MI_VDEC_CreateChn(uint32_t channel, const MI_VDEC_ChnAttr *attr)
{
    (void)channel;
    (void)attr;
    return unsupported(MI_MODULE_VDEC, __func__);
}

/**
 * Destroy a stopped channel. Its bindings stay, and wait for a new channel of that number; what a
 * display port shows of it stays on the screen.
 *
 * @param channel  the channel
 * @return 0, or a code
 * Order: created, and stopped.
 * Thread: any.
 * Time: 100 ms at most.
 * Errors: BAD_CHANNEL; ABSENT: not created; NOT_PERMITTED: it is started.
 * Failure: printed. What was to follow (a change of codec, a layout's flush) does not happen and the
 *   channel stays stopped; before a snapshot during playback it is ignored.
 */
int32_t MI_VDEC_DestroyChn(uint32_t channel)
{
    (void)channel;
    return unsupported(MI_MODULE_VDEC, __func__);
}

/**
 * Start decoding: from now on the channel takes bytes. Nothing is shown before the stream's next key
 * frame.
 *
 * @param channel  the channel
 * @return 0, or a code
 * Order: created. Starting a started channel is accepted and changes nothing.
 * Thread: any.
 * Time: at once.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: printed. Start-up ends with -1; else the channel stays stopped and its frames are refused until
 *   it is reset or laid out again.
 */
int32_t MI_VDEC_StartChn(uint32_t channel)
{
    (void)channel;
    return unsupported(MI_MODULE_VDEC, __func__);
}

/**
 * Stop decoding and discard what is queued: afterwards all three numbers of MI_VDEC_GetChnStat are 0. A
 * send that waits for room fails without waiting for its time-out. No picture of this channel reaches a
 * sink after the call has returned.
 *
 * @param channel  the channel
 * @return 0, or a code
 * Order: created. Stopping a stopped channel is accepted and changes nothing.
 * Thread: any, also while other threads send to the channel.
 * Time: 100 ms at most: a picture that is being decoded may be waited for.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: printed. A reset goes on to start the channel; a change of codec ends there.
 */
int32_t MI_VDEC_StopChn(uint32_t channel)
{
    (void)channel;
    return unsupported(MI_MODULE_VDEC, __func__);
}

/**
 * Read the attributes of creation.
 *
 * @param channel  the channel
 * @param attr     filled: what MI_VDEC_CreateChn was given, every field
 * @return 0, or a code
 * Order: created, started or not.
 * Thread: any.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: printed. A layout's flush ends there; a snapshot and a zoom fail.
 */
int32_t MI_VDEC_GetChnAttr(uint32_t channel, MI_VDEC_ChnAttr *attr)
{
    (void)channel;
    (void)attr;
    return unsupported(MI_MODULE_VDEC, __func__);
}

/**
 * Read the state of the queues: a send counts from the return of MI_VDEC_SendStream until its bytes
 * are decoded or discarded. The library resets a channel whose left_stream_bytes exceed what the
 * quality of its link allows, 48 KiB to 2 MiB.
 *
 * @param channel  the channel
 * @param stat     filled
 * @return 0, or a code
 * Order: created, started or not.
 * Thread: any; called before every live frame on its camera's thread.
 * Memory: `stat` is the caller's.
 * Time: at once, also while the channel decodes.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: printed; the frame is sent all the same. Waiting for a channel to be drained ends, or tries
 *   again up to ten times.
 */
int32_t MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat)
{
    (void)channel;
    (void)stat;
    return unsupported(MI_MODULE_VDEC, __func__);
}

/**
 * Queue encoded bytes for decoding, in the order of the calls. The buffer has room while the bytes not
 * yet consumed and this send together are no more than stream_buffer_bytes. Damaged bytes are queued
 * like others: the decoder resumes at the next key frame, and the last good picture stays.
 *
 * @param channel     the channel
 * @param stream      1 byte to the size of the bit-stream buffer
 * @param timeout_ms  milliseconds to wait for room; 0 = not at all, negative = for ever. The library
 *                    gives 20
 * @return 0, or a code: then nothing of it was queued
 * Order: created and started.
 * Thread: any, one a camera. A send that waits for room keeps neither other channels' calls nor
 *   Stop and GetChnStat of its own channel waiting.
 * Memory: record and bytes are the caller's and are copied before the call returns.
 * Time: at once when there is room; otherwise up to timeout_ms, and not less when it fails for want of
 *   room.
 * Errors: BAD_CHANNEL; ABSENT: not created; NOT_PERMITTED: stopped, also while it waited; BAD_VALUE: no
 *   bytes, or more than the whole buffer; BUFFER_FULL: no room in time.
 * Failure: printed. The channel is stopped and started, so that its queue is lost, and ext_send_stream
 *   returns -1.
 */
int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    (void)channel;
    (void)stream;
    (void)timeout_ms;
    return unsupported(MI_MODULE_VDEC, __func__);
}

/**
 * Set the size of the output pictures; takes effect with the next picture.
 *
 * @param channel  the channel
 * @param attr     pixels, each dimension for itself; 0 = the stream's own
 * @return 0, or a code
 * Order: created, started or not; may be repeated.
 * Thread: any.
 * Memory: `attr` is the caller's, and copied.
 * Time: at once.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: printed. Start-up ends with -1; a layout goes on with the size that was in force.
 */
int32_t MI_VDEC_SetOutputPortAttr(uint32_t channel, const MI_VDEC_OutputPortAttr *attr)
{
    (void)channel;
    (void)attr;
    return unsupported(MI_MODULE_VDEC, __func__);
}

/**
 * Read the size set last; 0 x 0 after creation.
 *
 * @param channel  the channel
 * @param attr     filled as it was set, not as pictures come out
 * @return 0, or a code
 * Order: created, started or not.
 * Thread: any.
 * Memory: `attr` is the caller's.
 * Time: at once.
 * Errors: BAD_CHANNEL; ABSENT: not created.
 * Failure: not printed at start-up, printed in a layout; 0 x 0 is used instead.
 */
int32_t MI_VDEC_GetOutputPortAttr(uint32_t channel, MI_VDEC_OutputPortAttr *attr)
{
    (void)channel;
    (void)attr;
    return unsupported(MI_MODULE_VDEC, __func__);
}
