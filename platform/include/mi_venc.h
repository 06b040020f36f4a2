/*
 * mi_venc.h - encoder channels, of which the library uses the JPEG kind.
 *
 * Headings of the comments: see mi_common.h. A snapshot uses the encoder channel of its camera's number:
 *
 *     Create, SetJpegParam | bound to the scaler | StartRecvPic | GetStream, ReleaseStream | ResetChn,
 *     StopRecvPic | unbound | Destroy
 *
 * Failures while it is built are printed and end the snapshot; what was built is taken down, and
 * failures of that are printed and ignored.
 */
#ifndef MI_VENC_H
#define MI_VENC_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What a channel encodes. */
enum MI_VENC_Codec {
    MI_VENC_CODEC_JPEG = 4,
};

/** Attributes of a JPEG channel. 32 bytes. The library's picture is 352 x 288, its buffer 101376 bytes. */
typedef struct MI_VENC_ChnAttr {
    uint32_t codec;               /*  0  enum MI_VENC_Codec                          */
    uint32_t max_width;           /*  4  pixels                                      */
    uint32_t max_height;          /*  8  pixels                                      */
    uint32_t stream_buffer_bytes; /* 12  room for encoded bytes                      */
    uint32_t width;               /* 16  picture, pixels                             */
    uint32_t height;              /* 20  pixels                                      */
    uint32_t by_frame;            /* 24  1 = a stream holds one whole picture        */
    uint32_t restart_rows;        /* 28  macroblock rows between restart markers     */
} MI_VENC_ChnAttr;

/** JPEG coding parameters. 8 bytes. */
typedef struct MI_VENC_JpegParam {
    uint32_t quality;  /*  0  1 (coarsest) to 99 */
    uint32_t reserved; /*  4  carried            */
} MI_VENC_JpegParam;

/**
 * One piece of an encoded picture. 136 bytes on the 32-bit target. The library takes length_bytes from
 * `address` on and does not apply offset_bytes: a platform whose pictures begin behind an offset moves
 * the address there, and gives an offset of 0.
 */
typedef struct MI_VENC_Pack {
    uint8_t *address;      /*   0  first byte                           */
    uint32_t length_bytes; /*   4  bytes at address, the offset included */
    MI_U64 pts;            /*   8  the source picture's time stamp      */
    uint32_t offset_bytes; /*  16  where the payload begins, bytes      */
    uint32_t frame_end;    /*  20  1 = last pack of the picture         */
    uint32_t reserved[28]; /*  24  0                                    */
} MI_VENC_Pack;

/**
 * A list of packs. 16 bytes on the 32-bit target. The caller supplies the array and its size; the call
 * fills both. The library has room for one pack: a whole picture must lie in it.
 */
typedef struct MI_VENC_Stream {
    MI_VENC_Pack *packs; /*  0  caller's array                               */
    uint32_t pack_count; /*  4  in: room, out: packs filled                  */
    uint32_t sequence;   /*  8  number of the picture, from 0                */
    uintptr_t handle;    /* 12  the platform's own; carried to ReleaseStream */
} MI_VENC_Stream;

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
int32_t MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr);

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
int32_t MI_VENC_DestroyChn(uint32_t channel);

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
int32_t MI_VENC_ResetChn(uint32_t channel);

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
int32_t MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param);

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
int32_t MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param);

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
int32_t MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device);

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
int32_t MI_VENC_StartRecvPic(uint32_t channel);

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
int32_t MI_VENC_StopRecvPic(uint32_t channel);

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
int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms);

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
int32_t MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream);

#ifdef __cplusplus
}
#endif

#endif
