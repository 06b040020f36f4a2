/* venc_state.h - what venc.c and grab.c share: the encoder channels and their pictures. */
#ifndef VENC_STATE_H
#define VENC_STATE_H

#include "adapter.h"
#include "mi_venc.h"

enum { kEncoders = 32 };

typedef struct Image {
    struct Image *next;
    uintptr_t handle;
    uint32_t sequence;
    uint64_t pts;
    size_t length;
    uint8_t bytes[];
} Image;

typedef struct Encoder {
    int exists, receiving;
    MI_VENC_ChnAttr attr;
    MI_VENC_JpegParam jpeg;
    Image *images, *lent; /* encoded and not got, oldest first; got and not released */
    size_t held_bytes;    /* of both */
    uint32_t sequence;

    /* The grab that there is; guarded by topology_lock, but for what is owed. */
    TernDecoder *source; /* null = none */
    TernGrab grab;
    WayToEncoder way;
    uint32_t owed[2]; /* by each binding, in its source's rate */
} Encoder;

extern pthread_mutex_t encoders_lock;   /* guards the channels; taken after topology_lock */
extern pthread_cond_t encoders_changed; /* a picture, or a state */
extern Encoder encoders[kEncoders];

/* Make the chip's grab what the channel wants now. topology_lock is held, encoders_lock is not. */
void grab_apply(uint32_t encoder);

/* Likewise: `grabbed` does not come any more, until grab_apply. */
void grab_take_back(Encoder *encoder);

#endif
