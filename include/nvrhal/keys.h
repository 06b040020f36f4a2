/*
 * keys.h - keys of the remote control, and the mouse.
 */
#ifndef NVRHAL_KEYS_H
#define NVRHAL_KEYS_H

#include <pthread.h>
#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/input_nodes.h"
#include "nvrhal/key_codes.h"
#include "nvrhal/limits.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Where keys and mouse events come from and who brings them here:
 *
 *   remote control  hi_remotekey_proc, on a thread of the application, reads the receiver and fills the
 *                   key queue; ext_keyboard_value takes a key out.
 *   panel           the application opens and reads the panel's node itself (input_nodes.h). The library
 *                   opens it too, but only to tell the panel of polls and to drive the record lamp: the
 *                   panel's keys do not come out of ext_keyboard_value.
 *   mouse           the application opens and reads the mouse's node itself, writes each event into
 *                   g_s32KeyValue and sets g_bMouseEvent; ext_mouse_get_status takes it out.
 *
 * Every call of ext_keyboard_value and ext_mouse_get_status prints a line of about 65 bytes, also one
 * that finds nothing: asking both fifty times a second is 6.5 kB a second and 560 MB a day. Compare
 * key_que.read_index with key_que.write_index, and look at g_bMouseEvent, before asking.
 */

/** One key press. 20 bytes. */
typedef struct KeyEvent {
    uint32_t source;    /*  0  2 = IR remote                          */
    uint32_t unread_1;  /*  4  left as it is                          */
    uint32_t code;      /*  8  enum KeyCode                           */
    uint32_t unread[2]; /* 12  left as they are; 0 in what is handed out */
} KeyEvent;

/**
 * Key presses that wait for ext_keyboard_value, guarded by g_key_lock. The writer goes round the
 * first NVRHAL_KEY_WRITER_SLOTS slots and does not look whether they are free: when it laps the reader,
 * the queue reads as empty and the waiting keys are lost. The reader goes round all of them, and finds
 * those behind the writer's unwritten. Empty when both indexes are equal.
 */
typedef struct KeyQueue {
    KeyEvent slots[NVRHAL_KEY_SLOTS]; /* key presses, each at its index        */
    uint32_t read_index;              /* 0 to NVRHAL_KEY_SLOTS - 1             */
    uint32_t write_index;             /* 0 to NVRHAL_KEY_WRITER_SLOTS - 1      */
} KeyQueue;

/** The key queue. */
extern NVRHAL_API KeyQueue key_que;

/** Guards key_que. */
extern NVRHAL_API pthread_mutex_t g_key_lock;

/** What the local IR reader saw last. 8 bytes. */
typedef struct LocalKey {
    uint32_t valid; /* 0  1 = the code was known                            */
    uint32_t code;  /* 4  enum KeyCode                                      */
} LocalKey;

/** The last known key of the local IR reader; unlocked, its two words may be of two frames. */
extern NVRHAL_API LocalKey key;

/**
 * Which keys of the remote reach the queue: 1 (at load) = all; 0 = all, but KEY_CODE_ZOOM is held back
 * until another key has passed and once more after it; from then on it passes, too, until a key comes
 * while the value is 1. Any other value = none.
 */
extern NVRHAL_API int32_t keyboard_zoom_flag_m;

/** Descriptor that the local IR reader reads; the application opens it and stores it here. 0 at load. */
extern NVRHAL_API int32_t g_S32Irfd;

/** For the application's mouse reader: its descriptor of the mouse's node, -1 at load. */
extern NVRHAL_API int32_t g_mouse_fd;

/** The mouse event, a MouseRecord. The application's mouse reader writes it, under g_mouse_lock. */
extern NVRHAL_API uint32_t g_s32KeyValue[5];

/** 1 = the mouse event is new. The application's mouse reader sets it, under g_mouse_lock. */
extern NVRHAL_API uint32_t g_bMouseEvent;

/** Guards g_s32KeyValue and g_bMouseEvent; the application's mouse reader takes it too. */
extern NVRHAL_API pthread_mutex_t g_mouse_lock;

/**
 * Open the front panel and empty the key queue.
 * @return 0, or -1
 * Errors: -1 when a thread attribute could not be had. A panel that cannot be opened is only printed.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_keyboard_initial(void);

/**
 * Close the front panel and the remote's receiver. The panel's descriptor is not forgotten: a later
 * ext_keyboard_value goes on using its number. End the thread of hi_remotekey_proc before.
 * @return the result of closing the receiver, or -1
 * Errors: -1 when the receiver was not open.
 * Thread: UI thread.
 */
NVRHAL_API int32_t ext_keyboard_close(void);

/**
 * Take one key of the remote control. Tells the panel whether there was one, and opens it for that when
 * it is not open.
 * @param event  out: source, word 1 unchanged, key code (enum KeyCode), 0, 0
 * @return 0, or -1
 * Errors: -1 when there is no key, for null, and without a panel: then no key is ever taken.
 * Thread: any.
 * Ownership: event is the caller's.
 */
NVRHAL_API int32_t ext_keyboard_value(uint32_t event[5]);

/**
 * Store keyboard_zoom_flag_m.
 * @param mode  0, 1, or any other: see keyboard_zoom_flag_m
 * @return the characters printed
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int32_t ext_keyboard_zoom_flag(int32_t mode);

/**
 * Take the mouse event.
 * @param event  out: a MouseRecord
 * @return 0, or -1
 * Errors: -1 when none is waiting, or for null.
 * Thread: any.
 * Ownership: event is the caller's.
 */
NVRHAL_API int32_t ext_mouse_get_status(uint32_t event[5]);

/**
 * The remote-key reader: put what the receiver "/dev/Hi_IR" decodes into the key queue, for ever. The
 * last key repeats while reads give nothing. The application runs it on a thread of its own and ends
 * it, if ever, by cancelling that thread.
 * @return -1; otherwise never
 * Errors: -1 when the receiver cannot be opened.
 * Thread: one of its own.
 */
NVRHAL_API int32_t hi_remotekey_proc(void);

/**
 * Start the local IR reader on a thread of its own, which runs until the process ends. Set g_S32Irfd
 * before.
 * @return 1 = started, or -1
 * Errors: -1 when there is no thread to be had.
 * Thread: any, once.
 */
NVRHAL_API int32_t localKey_init(void);

/**
 * The local IR reader: every millisecond, keep the last known key in `key`. Never returns.
 * Errors: a read that gives nothing leaves `key` as it is.
 * Thread: one of its own.
 */
NVRHAL_API void local_ir_key_thread_body(void);

/**
 * Read one frame from g_S32Irfd and translate it.
 * @param status  out: the key; a short or undecoded frame leaves it as it is
 * @return 0, or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: status is the caller's.
 */
NVRHAL_API int32_t local_irkey_status_get(LocalKey *status);

/**
 * A part of ext_keyboard_initial.
 * @return 0, or -1
 * Errors: -1 when a thread attribute could not be had.
 * Thread: any.
 */
NVRHAL_API int32_t hi_start_key_proc(void);

/**
 * A part of ext_keyboard_close.
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API void hi_stop_key_proc(void);

#ifdef __cplusplus
}
#endif

#endif
