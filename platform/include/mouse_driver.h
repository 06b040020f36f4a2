/*
 * mouse_driver.h - the mouse, "/dev/mouse", for the application: the library never opens it.
 *
 * A read takes one event of five words, the shape that g_s32KeyValue carries to the application's
 * user interface, or waits up to 100 ms and gives nothing.
 *
 * Thread: any. There are no requests.
 */
#ifndef MOUSE_DRIVER_H
#define MOUSE_DRIVER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define MOUSE_NODE "/dev/mouse" /* path of the node */

/** What happened. */
enum MouseEventType {
    MOUSE_EVENT_MOVE = 1,
    MOUSE_EVENT_BUTTON = 2,
    MOUSE_EVENT_WHEEL = 3,
};

/** Buttons, a bit each. */
enum MouseButton {
    MOUSE_BUTTON_LEFT = 1,
    MOUSE_BUTTON_RIGHT = 2,
    MOUSE_BUTTON_MIDDLE = 4,
};

/** An event, with the state after it. 20 bytes. */
typedef struct MouseEvent {
    uint32_t type;    /*  0  enum MouseEventType                             */
    uint32_t buttons; /*  4  buttons that are down, enum MouseButton or-ed   */
    int32_t x, y;     /*  8  position, output pixels                         */
    int32_t wheel;    /* 16  notches turned, away from the user is positive  */
} MouseEvent;

#ifdef __cplusplus
}
#endif

#endif
