/*
 * tern_hand.h - what a hand does to the simulated board, and an eye sees of it. A real one has a person for
 * this.
 */
#ifndef TERN_HAND_H
#define TERN_HAND_H

#include <stdint.h>

void tern_hand_plug(int plugged);
int tern_eye_signal(void); /* 1 = the monitor is sent a picture */

void tern_hand_panel(uint32_t code);  /* pressed and let go */
void tern_hand_remote(uint32_t code); /* likewise           */
void tern_hand_mouse(int dx, int dy, uint32_t buttons, int roll);

int tern_eye_lamp(void);
int tern_eye_dog_barked(void); /* 1 = it would have reset the board */

void tern_hand_analog(unsigned input, int has_signal, unsigned moving_blocks);

/* Loudness of the last milliseconds, as a square of the samples' mean, 0 = silence. */
double tern_ear(unsigned milliseconds);

/* How many pictures a tile has been given, and whether it shows one. */
uint64_t tern_eye_tile(int plane, int tile, int *shows);

#endif
