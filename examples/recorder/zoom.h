/* zoom.h - a part of one camera's picture on the whole screen. UI thread. */
#ifndef ZOOM_H
#define ZOOM_H

#include <stdbool.h>

/* Begin with the middle half of a camera's picture. */
bool zoom_begin(int channel);

bool zoom_is_on(void);

/* Move by eighths of the picture. */
void zoom_move(int right, int down);

/* The whole picture again. The caller lays out next. */
void zoom_end(void);

#endif
