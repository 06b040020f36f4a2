/*
 * adapter.h - what the sources of this platform share: nvrhal's seams over the calls of the Tern chip.
 *
 * Where the two interfaces differ, and who translates:
 *
 *     seam                                  Tern                                  where
 *     numbers of channels, ports            handles of decoders, planes, tiles    vdec.c, disp.c
 *     a send waits                          a push never does                     vdec.c, ao.c
 *     stop loses what is queued             halt keeps it                         vdec.c
 *     bindings outlive a channel            closing a decoder cuts its tiles      bind.c
 *     settings hold at once                 they hold when they are committed     disp.c
 *     windows and sizes in pixels           crops in 65536ths                     disp.c
 *     timing values                         width, height, rate                   timing.c
 *     a callback tells of the plug          the plug and its moves are looked at  hdmi.c
 *     A-law at 8 kHz, decibels              samples at the ring's rate, a factor  ao.c
 *     scaler and encoder, bound             one call that grabs pictures          grab.c
 *     device nodes                          calls of the board's support package  board.c, node_*.c
 *     microseconds                          ticks of 90 kHz                       sys.c
 *     rates of a binding                    every picture passes                  grab.c
 *
 * Locks: topology_lock guards bindings, display, scalers, grabs and the life of decoders. It is taken before
 * a decoder channel's own lock and before that of the encoders; these two are all that the functions take
 * which the chip calls, so that one may wait for those with topology_lock held.
 */
#ifndef ADAPTER_H
#define ADAPTER_H

#include <pthread.h>
#include <stdint.h>

#include "mi_disp.h"
#include "mi_sys.h"
#include "tern.h"

enum {
    kFirstDevice = -1, /* of the display */
    kDevices = 4,
    kNoChannel = -1,
};

extern pthread_mutex_t topology_lock;

/* sys.c */
int system_is_up(void);
int32_t code_of(enum MI_ModuleId module, TernStatus status);
int64_t monotonic_us(void);
int64_t deadline_us(int32_t timeout_ms); /* INT64_MAX = for ever */
void condition_init(pthread_cond_t *condition);
void condition_wait(pthread_cond_t *condition, pthread_mutex_t *lock, int64_t until_us);

/* bind.c: the decoder channel that feeds a display's port, or kNoChannel. topology_lock is held. */
int32_t source_of_port(int32_t device, uint32_t port);

/* How pictures reach an encoder. topology_lock is held. 0 = they do not. */
typedef struct WayToEncoder {
    int32_t decoder; /* channel */
    uint32_t scaler;
    uint32_t rates[2][2]; /* of both bindings: source, sink */
} WayToEncoder;
int way_to_encoder(uint32_t encoder, WayToEncoder *way);

/* timing.c: the chip's mode of a timing value, or null. */
const TernMode *mode_of_output(uint32_t timing);
const TernMode *mode_of_hdmi(uint32_t timing);

/* vdec.c */
TernDecoder *decoder_of(int32_t channel); /* topology_lock is held; null = none */
void decoder_picture_size(int32_t channel, unsigned *width, unsigned *height);
int decoder_exists(uint32_t channel); /* likewise */

/* disp.c */
void display_apply(void); /* topology_lock is held */

/* divp.c */
int scaler_exists(uint32_t channel); /* topology_lock is held */

/* What a started scaler makes of pictures of a size: crop and size of a grab. Likewise; 0 = it is stopped. */
int scaler_describe(uint32_t channel, unsigned width, unsigned height, TernGrab *grab);

/* venc.c, grab.c */
int encoder_exists(uint32_t device, uint32_t channel);
void encoders_apply(void); /* bindings, scalers or decoders have changed; topology_lock is held */

#endif
