/*
 * tern_board.h - what is on the Tern evaluation board beside the chip, as its maker's support package has
 * it: calls, where other boards have device nodes. Every call may be made from any thread.
 */
#ifndef TERN_BOARD_H
#define TERN_BOARD_H

#include <stddef.h>
#include <stdint.h>

/* --- graphics plane over screen 0 --- */

enum TernInk { TERN_INK_1555, TERN_INK_565, TERN_INK_4444, TERN_INK_8888 };

typedef struct TernOsd {
    unsigned width, height;             /* of the memory that is shown, pixels                 */
    unsigned x, y, on_width, on_height; /* on the screen                                       */
    unsigned top;                       /* first row that is shown                             */
    enum TernInk ink;
    int visible, keyed;            /* keyed: pixels of key_rgb are not drawn              */
    uint32_t key_rgb;              /* 0x00RRGGBB                                          */
    int blended;                   /* by the pixels' alpha                                */
    uint8_t alpha_one, alpha_zero; /* what one-bit alphas stand for                       */
} TernOsd;

/* How much memory the plane has, and where the chip sees it. */
void tern_osd_memory(size_t *bytes, uint32_t *physical);

/* All of it, mapped once more; null = it cannot be mapped. */
void *tern_osd_map(void);
void tern_osd_unmap(void *address);

/* 0, or -1 when the memory is too small for it. */
int tern_osd_set(const TernOsd *settings);

/* --- lines, 0 to 127 --- */

int tern_line_out(unsigned line, int level); /* makes it an output; 0, or -1 for no such line */
int tern_line_level(unsigned line);          /* 0 or 1; -1 when it is no output                */

/* --- watchdog: resets the board when it is armed and not fed --- */

void tern_dog_arm(unsigned milliseconds);
void tern_dog_disarm(void);
void tern_dog_feed(void);

/* --- clock chip: seconds since 1970, UTC; -1 = its battery was empty --- */

int64_t tern_clock_get(void);
void tern_clock_set(int64_t seconds);

/* --- front panel: lamps and keys; remote control; mouse --- */

void tern_lamp(int lit);

enum TernInput { TERN_INPUT_PANEL, TERN_INPUT_REMOTE, TERN_INPUT_MOUSE };

typedef struct TernEvent {
    enum TernInput from;
    uint32_t code;    /* key of the panel, code of the remote control's button */
    int down;         /* 1 = pressed, 0 = let go                               */
    int dx, dy, roll; /* mouse: moved by, wheel turned by                      */
    uint32_t buttons; /* mouse: those that are down                            */
} TernEvent;

typedef struct TernInputs TernInputs;

/* A queue of the events of one kind, from now on. */
TernInputs *tern_inputs_open(enum TernInput from);
void tern_inputs_close(TernInputs *inputs);

/* 1 and the next event, or 0 when none came within the milliseconds. */
int tern_inputs_next(TernInputs *inputs, TernEvent *event, unsigned milliseconds);

/* --- analog inputs: 4 chips of 4 --- */

int tern_analog_has_signal(unsigned input); /* -1 = no such input */
unsigned tern_analog_motion(unsigned input);

#endif
