/* one_window.h - one window on the screen, and whether it is seen where it is set. */
#ifndef CONFORMANCE_ONE_WINDOW_H
#define CONFORMANCE_ONE_WINDOW_H

#include "scene.h"

enum { DEV = 0, CH = 1, PORT = 2 };

/* Just inside and just outside its four sides, by a capture or by the person. */
void window_is_seen(int x, int y, int width, int height, Colour inside, Colour outside, const char *question);

/* A display with that window, in which the stream plays. */
void need_one_playing(int x, int y, int width, int height, const TestStream *stream);

#endif
