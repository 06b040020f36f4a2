/* mi_vdec.h - video decoder channels. One encoded stream in, one output port of pictures. */
#ifndef MI_VDEC_H
#define MI_VDEC_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

enum MI_VDEC_Codec {
    MI_VDEC_CODEC_H264 = 0,
    MI_VDEC_CODEC_H265 = 1,
    MI_VDEC_CODEC_JPEG = 2,
};

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
    uint32_t max_height;          /* 16                                                  */
    uint32_t video_mode;          /* 20  enum MI_VDEC_VideoMode                          */
    uint32_t reference_frames;    /* 24  reference pictures kept beside the current one  */
    uint32_t decode_buffers;      /* 28  further pictures for decoding ahead             */
} MI_VDEC_ChnAttr;

/** State of a channel's queues. 12 bytes. */
typedef struct MI_VDEC_ChnStat {
    uint32_t left_stream_bytes;  /*  0  sent, not yet consumed by the decoder */
    uint32_t left_stream_frames; /*  4  sends not yet consumed                */
    uint32_t left_pictures;      /*  8  decoded, not yet taken by the sink    */
} MI_VDEC_ChnStat;

/** One send. The bytes are copied before the call returns. */
typedef struct MI_VDEC_Stream {
    const uint8_t *address; /* encoded bytes                       */
    uint32_t length_bytes;  /* how many                            */
    MI_U64 pts;             /* presentation time stamp, as given   */
    uint32_t end_of_frame;  /* 1 = this send ends a frame          */
    uint32_t end_of_stream; /* 1 = nothing follows                 */
} MI_VDEC_Stream;

/** Size of the pictures that leave a channel; 0 x 0 = the stream's own size. 4 bytes. */
typedef struct MI_VDEC_OutputPortAttr {
    uint16_t width;  /*  0  pixels */
    uint16_t height; /*  2  pixels */
} MI_VDEC_OutputPortAttr;

/** Create a channel, stopped. Refused: EXISTS, BAD_CHANNEL, BAD_VALUE. */
int32_t MI_VDEC_CreateChn(uint32_t channel, const MI_VDEC_ChnAttr *attr);

/** Destroy a channel; it must be stopped (NOT_PERMITTED otherwise). */
int32_t MI_VDEC_DestroyChn(uint32_t channel);

/** Start decoding. Starting a started channel is accepted. */
int32_t MI_VDEC_StartChn(uint32_t channel);

/** Stop decoding and discard what is queued. Stopping a stopped channel is accepted. */
int32_t MI_VDEC_StopChn(uint32_t channel);

/** Read the attributes of creation. */
int32_t MI_VDEC_GetChnAttr(uint32_t channel, MI_VDEC_ChnAttr *attr);

/** Read the state of the queues. */
int32_t MI_VDEC_GetChnStat(uint32_t channel, MI_VDEC_ChnStat *stat);

/**
 * Queue encoded bytes. Waits up to timeout_ms (-1 = for ever, 0 = not at all) for room.
 * Refused: stopped (NOT_PERMITTED), no room in time (BUFFER_FULL), larger than the buffer or empty
 * (BAD_VALUE).
 */
int32_t MI_VDEC_SendStream(uint32_t channel, const MI_VDEC_Stream *stream, int32_t timeout_ms);

/** Set the size of the output pictures; takes effect with the next picture. */
int32_t MI_VDEC_SetOutputPortAttr(uint32_t channel, const MI_VDEC_OutputPortAttr *attr);

/** Read the size set last; 0 x 0 after creation. */
int32_t MI_VDEC_GetOutputPortAttr(uint32_t channel, MI_VDEC_OutputPortAttr *attr);

#ifdef __cplusplus
}
#endif

#endif
