/* gui.h - what is drawn over the video: a border a pane, the clock, the mouse cursor. UI thread. */
#ifndef GUI_H
#define GUI_H

#include <stdbool.h>

/* False: no framebuffer, or one of another format; the recorder runs without a GUI then. */
bool gui_start(void);

/* Draw the borders of the panes on the screen anew, the selected channel's in another colour. */
void gui_draw_panes(int selected_channel);

/* Draw the clock, hh:mm:ss, in the upper right corner. */
void gui_draw_clock(int hours, int minutes, int seconds);

void gui_move_cursor(int x, int y);

#endif
