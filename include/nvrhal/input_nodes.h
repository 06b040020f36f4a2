/*
 * input_nodes.h - the device nodes that keys and mouse come from, and what a read of each gives.
 *
 *   node           opened by                                      read by
 *   "/dev/Hi_IR"   hi_remotekey_proc; for the local IR reader     the library
 *                  the application, into g_S32Irfd
 *   "/dev/KeyBoard" ext_keyboard_initial and others, to talk to   the application, which opens it
 *                  the panel                                      once more, read-only
 *   "/dev/mouse"   the application, into g_mouse_fd               the application
 *
 * On a board they are opened and read with the system's own calls; a node may be open more than once.
 * Words are in the machine's byte order. How long a read waits is the driver's choice: what is said of it
 * here is true of the board in software, elsewhere poll the descriptor.
 */
#ifndef NVRHAL_INPUT_NODES_H
#define NVRHAL_INPUT_NODES_H

#include <stdint.h>

#define NVRHAL_REMOTE_NODE "/dev/Hi_IR"    /* the remote control's receiver: RemoteFrame */
#define NVRHAL_PANEL_NODE  "/dev/KeyBoard" /* the front panel: PanelKey                  */
#define NVRHAL_MOUSE_NODE  "/dev/mouse"    /* the mouse: MouseRecord                     */

/**
 * What a read of the receiver gives: 12 bytes; or nothing after about 108 ms, the repeat period of a
 * remote control, in which no button was pressed or released.
 */
typedef struct RemoteFrame {
    uint32_t unused; /* 0                                                                        */
    uint32_t code;   /* 4  address in the low half, command and its complement in the high half  */
    uint32_t state;  /* 8  0 = a whole frame of a pressed button; anything else is not a key     */
} RemoteFrame;

/**
 * What a read of the panel gives: 4 bytes a key press, or nothing, at once. The library does not read
 * the panel: its keys do not come out of ext_keyboard_value.
 */
typedef struct PanelKey {
    uint32_t code; /* 0  enum KeyCode */
} PanelKey;

/** MouseRecord::type. */
enum MouseChange {
    MOUSE_MOVED = 1,
    MOUSE_BUTTONS_CHANGED = 2,
    MOUSE_WHEEL_TURNED = 3,
};

/** Bits of MouseRecord::buttons. */
enum MouseButtons {
    MOUSE_LEFT_DOWN = 1,
    MOUSE_RIGHT_DOWN = 2,
    MOUSE_MIDDLE_DOWN = 4,
};

/**
 * What a read of the mouse gives: 20 bytes, the state after a change; or nothing after about 100 ms
 * without one. The five words of g_s32KeyValue and of ext_mouse_get_status have this shape.
 */
typedef struct MouseRecord {
    uint32_t type;    /*  0  enum MouseChange                                */
    uint32_t buttons; /*  4  buttons that are down, enum MouseButtons or-ed  */
    int32_t x, y;     /*  8  position, output pixels                         */
    int32_t wheel;    /* 16  notches turned, away from the user is positive  */
} MouseRecord;

#endif
