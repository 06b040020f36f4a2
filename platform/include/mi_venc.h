/* mi_venc.h - encoder channels, of which the library uses the JPEG kind. */
#ifndef MI_VENC_H
#define MI_VENC_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

enum MI_VENC_Codec {
    MI_VENC_CODEC_JPEG = 4,
};

/** Attributes of a JPEG channel. 32 bytes. */
typedef struct MI_VENC_ChnAttr {
    uint32_t codec;               /*  0  enum MI_VENC_Codec                          */
    uint32_t max_width;           /*  4  pixels                                      */
    uint32_t max_height;          /*  8                                              */
    uint32_t stream_buffer_bytes; /* 12  room for encoded bytes                      */
    uint32_t width;               /* 16  picture, pixels                             */
    uint32_t height;              /* 20                                              */
    uint32_t by_frame;            /* 24  1 = a stream holds one whole picture        */
    uint32_t restart_rows;        /* 28  macroblock rows between restart markers     */
} MI_VENC_ChnAttr;

/** JPEG coding parameters. 8 bytes. */
typedef struct MI_VENC_JpegParam {
    uint32_t quality;  /*  0  1 (coarsest) to 99 */
    uint32_t reserved; /*  4  carried            */
} MI_VENC_JpegParam;

/** One piece of an encoded picture. 136 bytes on the 32-bit target. */
typedef struct MI_VENC_Pack {
    uint8_t *address;      /*   0  first byte                           */
    uint32_t length_bytes; /*   4  bytes at address, the offset included */
    MI_U64 pts;            /*   8  the source picture's time stamp      */
    uint32_t offset_bytes; /*  16  where the payload begins             */
    uint32_t frame_end;    /*  20  1 = last pack of the picture         */
    uint32_t reserved[28]; /*  24  0                                    */
} MI_VENC_Pack;

/** A list of packs. The caller supplies the array and its size; the call fills both. */
typedef struct MI_VENC_Stream {
    MI_VENC_Pack *packs; /* caller's array                               */
    uint32_t pack_count; /* in: room, out: packs filled                  */
    uint32_t sequence;   /* number of the picture                        */
    uintptr_t handle;    /* the platform's own; carried to ReleaseStream */
} MI_VENC_Stream;

int32_t MI_VENC_CreateChn(uint32_t channel, const MI_VENC_ChnAttr *attr);
int32_t MI_VENC_DestroyChn(uint32_t channel);

/** Discard what is encoded and queued. */
int32_t MI_VENC_ResetChn(uint32_t channel);

int32_t MI_VENC_GetJpegParam(uint32_t channel, MI_VENC_JpegParam *param);
int32_t MI_VENC_SetJpegParam(uint32_t channel, const MI_VENC_JpegParam *param);

/** Which device number a binding must name for this channel. */
int32_t MI_VENC_GetChnDevid(uint32_t channel, uint32_t *device);

/** Begin, or stop, taking pictures from the bound source. */
int32_t MI_VENC_StartRecvPic(uint32_t channel);
int32_t MI_VENC_StopRecvPic(uint32_t channel);

/** Wait up to timeout_ms for an encoded picture; its bytes stay until it is released. */
int32_t MI_VENC_GetStream(uint32_t channel, MI_VENC_Stream *stream, int32_t timeout_ms);
int32_t MI_VENC_ReleaseStream(uint32_t channel, MI_VENC_Stream *stream);

#ifdef __cplusplus
}
#endif

#endif
