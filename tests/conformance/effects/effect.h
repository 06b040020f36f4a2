/*
 * effect.h - observations of the board in software through its two seams, one for each mutant: does the
 * contract that the mutant breaks hold? Each is made in a process of its own.
 */
#ifndef EFFECT_H
#define EFFECT_H

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include "mi_common.h"
#include "mi_vdec.h"

/* What an observation answers. A process that could not make one exits with kNotTried. */
enum { kKept = 0, kBroken = 1, kNotTried = 2 };

/* One observation; the table of an area ends with a row without a name. */
typedef struct Effect {
    const char *name;   /* of the mutant                  */
    int (*holds)(void); /* 1 = the contract held, 0 = not */
} Effect;

extern const Effect system_effects[];  /* media system and bindings                 */
extern const Effect decoder_effects[]; /* decoder                                   */
extern const Effect display_effects[]; /* display                                   */
extern const Effect output_effects[];  /* HDMI and audio output                     */
extern const Effect snap_effects[];    /* scaler and encoder                        */
extern const Effect node_effects[];    /* board_io and the device nodes             */

/* A step that an observation rests on. */
#define NEED(condition)                                                                                      \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition);                                  \
            exit(kNotTried);                                                                                 \
        }                                                                                                    \
    } while (0)

/* ---- time, which the board's clock does not touch ---- */

int64_t now_ms(void);
void wait_ms(int milliseconds);

/* ---- pictures: JPEGs of two halves, left and right, each of one luma ---- */

enum { kWhite = 220, kGrey = 120, kDark = 30, kSide = 64 /* pixels of a picture */ };

typedef struct Bytes {
    uint8_t *data;
    uint32_t size;
} Bytes;

Bytes picture(int left_luma, int right_luma);

/* ---- bring-up; every step must succeed ---- */

void start_display(void); /* device 0 and layer 0, 1920 x 1080 */
void open_window(int32_t device, uint32_t port, int x, int y, int width, int height);
void create_decoder(uint32_t channel, uint32_t mode, uint32_t buffer_bytes); /* JPEG, stopped */
void start_decoder(uint32_t channel);                                        /* in frame mode, with 1 MiB */
int32_t bind(uint32_t channel, int32_t device, uint32_t port);
int32_t send(uint32_t channel, Bytes bytes, int32_t timeout_ms);

/* Send and wait until the picture is with its sinks. */
void send_and_settle(uint32_t channel, Bytes bytes);

/* A decoder on port 0 that is held back after the second picture, so that sends stay queued. */
void start_held_decoder(uint32_t channel, uint32_t buffer_bytes);

/* Does device 0 show this luma there, within what coding and scaling cost? */
int shows(int x, int y, int luma);

#endif
