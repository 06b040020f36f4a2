/*
 * hooks.h - what the suite cannot do through the seams: look at the screen, pull a plug, press a key,
 * listen to the sound.
 *
 * The program is linked with one file that defines `conformance_hooks`. no_hooks.c leaves all of them
 * null: points that need one ask the person in front of the board (--ask), or are not tried. A board
 * that can look at its own output (a capture card, a frame grabber of the chip's) copies no_hooks.c and
 * fills in what it has. vboard_hooks.c is that of the board in software.
 *
 * Hooks give 0 for success and -1 when they cannot do it. They are called from one thread at a time, and
 * do not call the seams.
 */
#ifndef CONFORMANCE_HOOKS_H
#define CONFORMANCE_HOOKS_H

#include <stdint.h>

/* A picture of the output: R, G, B bytes, rows without gaps. */
typedef struct HookImage {
    uint32_t width, height; /* pixels                                     */
    uint8_t *rgb;           /* from malloc; the suite frees it            */
} HookImage;

typedef struct ConformanceHooks {
    const char *name; /* of the board, for the report */

    /* Before the first point, in the process that the point runs in. */
    void (*begin)(void);

    /* What display device `device` (-1, 0, 1, 2) shows now. */
    int (*capture)(int32_t device, HookImage *image);

    /* Plug the HDMI monitor in (1) or pull it (0), and whether it sees a picture (1) or none (0). */
    int (*plug)(int plugged);
    int (*monitor_has_signal)(void);

    /* Loudness of what the audio output has played in the last `window_ms`: RMS, 0 = full scale, in dB. */
    int (*audio_level)(uint32_t device, uint32_t window_ms, double *rms_db);

    /* Press and let go: a panel key by its code, a button of the remote control by its code. */
    int (*panel_press)(uint32_t code);
    int (*ir_press)(uint32_t code);

    /* Move the mouse, press its buttons, turn its wheel. */
    int (*mouse_move)(int32_t x, int32_t y);
    int (*mouse_buttons)(uint32_t buttons);
    int (*mouse_wheel)(int32_t notches);

    /* Level of an output line: 1, 0, or -1 when it is no output. Whether the record lamp is lit. */
    int (*gpio_level)(uint32_t line);
    int (*record_lamp)(void);

    /* Pull an analog input's cable (1) or put it back (0); let so many blocks of its picture move. */
    int (*analog_loss)(uint32_t channel, uint32_t lost);
    int (*analog_motion)(uint32_t channel, uint32_t blocks);

    /*
     * 1 when the watchdog has run out without resetting the board, 0 when it has not. Null on a board
     * that it resets: there the suite never lets it run out.
     */
    int (*watchdog_expired)(void);

    /*
     * 1 for a simulated chip that decodes nothing: its snapshots are pictures, but not of what was sent.
     * Points that tell pictures by their colours are then not tried.
     */
    int decodes_nothing;
} ConformanceHooks;

extern const ConformanceHooks conformance_hooks;

#endif
