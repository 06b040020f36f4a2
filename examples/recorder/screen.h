/* screen.h - which camera is seen where: a grid of all, or one on the whole screen. UI thread. */
#ifndef SCREEN_H
#define SCREEN_H

#include <stdbool.h>

#define SCREEN_WIDTH  1920 /* output pixels; DeviceParams::gui_width of 1920 chooses this output */
#define SCREEN_HEIGHT 1080

struct pane {
    int channel, x, y, w, h;
};

/* Lay all cameras out in the smallest square grid. About 100 ms a camera. */
bool screen_show_grid(int cameras);

/* Show one channel alone. */
bool screen_show_single(int channel);

/* The panes of the last layout, and how many there are. */
int screen_panes(const struct pane **panes);

/* The channel whose pane lies there, or -1. */
int screen_channel_at(int x, int y);

#endif
