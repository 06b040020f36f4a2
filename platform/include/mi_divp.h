/* mi_divp.h - the picture scaler between a decoder and an encoder. */
#ifndef MI_DIVP_H
#define MI_DIVP_H

#include "mi_common.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Attributes of a scaler channel. 32 bytes. */
typedef struct MI_DIVP_ChnAttr {
    uint32_t max_width;       /*  0  largest input picture, pixels               */
    uint32_t max_height;      /*  4                                              */
    uint32_t noise_reduction; /*  8  0 = off                                     */
    uint32_t deinterlace;     /* 12  0 = off                                     */
    uint32_t rotation;        /* 16  0 = none                                    */
    MI_Rect crop;             /* 20  part of the input; 0 x 0 = the whole        */
    uint8_t mirror, flip;     /* 28  0 = off                                     */
    uint8_t reserved[2];      /* 30  0                                           */
} MI_DIVP_ChnAttr;

/** Attributes of a scaler's output port. 16 bytes. */
typedef struct MI_DIVP_OutputPortAttr {
    uint32_t width;        /*  0  pixels             */
    uint32_t height;       /*  4  pixels             */
    uint32_t pixel_format; /*  8  enum MI_PixelFormat */
    uint32_t compression;  /* 12  0 = none           */
} MI_DIVP_OutputPortAttr;

int32_t MI_DIVP_CreateChn(uint32_t channel, const MI_DIVP_ChnAttr *attr);
int32_t MI_DIVP_DestroyChn(uint32_t channel);
int32_t MI_DIVP_GetOutputPortAttr(uint32_t channel, uint32_t port, MI_DIVP_OutputPortAttr *attr);
int32_t MI_DIVP_SetOutputPortAttr(uint32_t channel, uint32_t port, const MI_DIVP_OutputPortAttr *attr);
int32_t MI_DIVP_StartChn(uint32_t channel);
int32_t MI_DIVP_StopChn(uint32_t channel);

#ifdef __cplusplus
}
#endif

#endif
