/*
 * mi_vdec.h - video decoder channels. One encoded stream in, one output port of pictures.
 *
 * Headings of the comments: see mi_common.h. With N cameras (N is at most 16) the library creates
 * channels 0 to N, the last one for snapshots while a recording plays.
 *
 *     absent -> Create -> stopped <-> Start, Stop -> Destroy -> absent
 *
 * Only a started channel takes bytes. A channel shows nothing from its start to its stream's next key
 * frame.
 */
#ifndef MI_VDEC_H
#define MI_VDEC_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What a channel decodes. */
enum MI_VDEC_Codec {
    MI_VDEC_CODEC_H264 = 0,
    MI_VDEC_CODEC_H265 = 1,
    MI_VDEC_CODEC_JPEG = 2,
};

/** How a channel is sent its bytes. */
enum MI_VDEC_VideoMode {
    MI_VDEC_MODE_STREAM = 0, /* a send carries any cut of the byte stream */
    MI_VDEC_MODE_FRAME = 1,  /* a send carries one whole frame            */
};

/** Attributes of a channel, fixed at creation. 32 bytes. */
typedef struct MI_VDEC_ChnAttr {
    uint32_t codec;               /*  0  enum MI_VDEC_Codec                              */
    uint32_t stream_buffer_bytes; /*  4  bit-stream buffer                               */
    uint32_t priority;            /*  8  0                                               */
    uint32_t max_width;           /* 12  largest picture, pixels                         */
    uint32_t max_height;          /* 16  pixels                                          */
    uint32_t video_mode;          /* 20  enum MI_VDEC_VideoMode                          */
    uint32_t reference_frames;    /* 24  reference pictures kept beside the current one  */
    uint32_t decode_buffers;      /* 28  further pictures for decoding ahead             */
} MI_VDEC_ChnAttr;

/** State of a channel's queues. 12 bytes. */
typedef struct MI_VDEC_ChnStat {
    uint32_t left_stream_bytes;  /*  0  sent, not yet consumed by the decoder; those in work count  */
    uint32_t left_stream_frames; /*  4  sends not yet consumed, the one in work counts              */
    uint32_t left_pictures;      /*  8  decoded, not yet taken by the sink                          */
} MI_VDEC_ChnStat;

/** One send. 24 bytes on the 32-bit target. The library leaves both `end` words 0. */
typedef struct MI_VDEC_Stream {
    const uint8_t *address; /*  0  encoded bytes, start codes before every unit     */
    uint32_t length_bytes;  /*  4  how many                                         */
    MI_U64 pts;             /*  8  presentation time stamp, as given                */
    uint32_t end_of_frame;  /* 16  1 = this send ends a frame; ignored in frame mode */
    uint32_t end_of_stream; /* 20  1 = nothing follows: give the last pictures out  */
} MI_VDEC_Stream;

/**
 * Size of the pictures that leave a channel. 4 bytes. 0 = the stream's own; a size larger than the
 * stream's counts as the stream's own: an output port makes pictures smaller, never larger.
 */
typedef struct MI_VDEC_OutputPortAttr {
    uint16_t width;  /*  0  pixels */
    uint16_t height; /*  2  pixels */
} MI_VDEC_OutputPortAttr;

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
int32_t MI_VDEC_CreateChn(uint32_t channel, const MI_VDEC_ChnAttr *attr);

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
int32_t MI_VDEC_DestroyChn(uint32_t channel);

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
int32_t MI_VDEC_StartChn(uint32_t channel);

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
int32_t MI_VDEC_StopChn(uint32_t channel);

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
int32_t MI_VDEC_GetChnAttr(uint32_t channel, MI_VDEC_ChnAttr *attr);

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
int32_t MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat);

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
int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms);

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
int32_t MI_VDEC_SetOutputPortAttr(uint32_t channel, const MI_VDEC_OutputPortAttr *attr);

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
int32_t MI_VDEC_GetOutputPortAttr(uint32_t channel, MI_VDEC_OutputPortAttr *attr);

#ifdef __cplusplus
}
#endif

#endif
