/* controls.h - keys of the remote control and of the front panel, and the mouse. */
#ifndef CONTROLS_H
#define CONTROLS_H

#include <stdbool.h>
#include <stdint.h>

/* Key codes of the remote control; the panel sends the same. */
enum key {
    KEY_NONE = 0,
    KEY_STOP = 85,
    KEY_LEFT = 98,
    KEY_PAUSE = 102,
    KEY_PLAY = 105,
    KEY_ENTER = 106,
    KEY_UP = 107,
    KEY_SNAPSHOT = 112,
    KEY_DOWN = 120,
    KEY_RIGHT = 121,
    KEY_ZOOM = 96,
};

/* One event of the mouse, as its driver gives it. */
struct mouse_event {
    uint32_t type;    /* 1 = moved, 2 = a button, 3 = the wheel                   */
    uint32_t buttons; /* down after the event: 1 = left, 2 = right, 4 = middle    */
    int32_t x, y;     /* output pixels                                            */
    int32_t wheel;    /* notches turned, away from the user is positive           */
};

/* Open the devices and start their readers; what is missing is only reported. UI thread. */
void controls_start(void);
void controls_stop(void);

/* The next key, or KEY_NONE. UI thread. */
enum key controls_next_key(void);

/* The next mouse event, if there is one. UI thread. */
bool controls_next_mouse_event(struct mouse_event *event);

#endif
