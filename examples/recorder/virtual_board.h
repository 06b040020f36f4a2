/*
 * virtual_board.h - optional, for a PC: what a hand and an eye would do to a board. Everything else
 * in this directory compiles and runs on a board without it.
 */
#ifndef VIRTUAL_BOARD_H
#define VIRTUAL_BOARD_H

#include <stdbool.h>

/*
 * One thing to do: SECONDS:WHAT, the seconds counting from the first turn.
 *   press=NAME      a key of the remote control: up, enter, play, zoom, snapshot and so on
 *   panel=NAME      the same key of the front panel
 *   click=X,Y       move the mouse there and click its left button
 *   picture=FILE    a PNG of what the screen shows
 *   state=FILE      watchdog, lamp and buzzer, a line each
 *   wav=FILE        from now on, what the loudspeaker plays
 *   quit            end
 * Items are in the order of their seconds; one that comes late moves those behind it. False: not understood.
 */
bool virtual_board_order(const char *text);

/* Do what is due. False: it is time to quit. UI thread. */
bool virtual_board_turn(void);

#endif
