/*
 * keys.h - keys of the remote control and the panel, and the mouse.
 */
#ifndef NVRHAL_KEYS_H
#define NVRHAL_KEYS_H

#include <pthread.h>
#include <stdint.h>

#include "nvrhal/api.h"
#include "nvrhal/input_nodes.h"
#include "nvrhal/key_codes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** One key press. 20 bytes. */
typedef struct KeyEvent {
    uint32_t source;    /*  0  2 = IR remote                          */
    uint32_t unread_1;  /*  4  left as it is                          */
    uint32_t code;      /*  8  key code, 84 'T' to 122 'z'            */
    uint32_t unread[2]; /* 12  left as they are; 0 in what is handed out */
} KeyEvent;

/**
 * Key presses that wait for ext_keyboard_value, guarded by g_key_lock. The writer goes round the
 * first 128 slots and does not look whether they are free: when it laps the reader, the queue reads
 * as empty and the waiting keys are lost. The reader goes round all 256, and finds slots 128 to 255
 * unwritten. Empty when both indexes are equal.
 */
typedef struct KeyQueue {
    KeyEvent slots[256];
    uint32_t read_index;  /* 0 to 255 */
    uint32_t write_index; /* 0 to 127 */
} KeyQueue;

extern NVRHAL_API KeyQueue key_que;
extern NVRHAL_API pthread_mutex_t g_key_lock;

/** What the local IR reader saw last. 8 bytes. */
typedef struct LocalKey {
    uint32_t valid; /* 0  1 = the code was known                            */
    uint32_t code;  /* 4  key code, 122 'z' for a code that is not known    */
} LocalKey;

/** The last known key of the local IR reader; unlocked, its two words may be of two frames. */
extern NVRHAL_API LocalKey key;

/**
 * Which keys of the remote reach the queue: 1 (at load) = all; 0 = all, but the first zoom key (96)
 * after other keys only arms the following ones; any other value = none.
 */
extern NVRHAL_API int32_t keyboard_zoom_flag_m;

/** Descriptor that the local IR reader reads; the application opens it and stores it here. 0 at load. */
extern NVRHAL_API int32_t g_S32Irfd;

/** For the application's mouse reader: its descriptor (-1 at load), an event, and 1 = it is new. */
extern NVRHAL_API int32_t g_mouse_fd;
extern NVRHAL_API uint32_t g_s32KeyValue[5];
extern NVRHAL_API uint32_t g_bMouseEvent;

/** Guards g_s32KeyValue and g_bMouseEvent; the application's mouse reader takes it too. */
extern NVRHAL_API pthread_mutex_t g_mouse_lock;

/**
 * Open the front panel and empty the key queue. A panel that cannot be opened is only reported.
 * @return 0, or -1 when a thread attribute could not be had. Thread: UI thread.
 */
NVRHAL_API int32_t ext_keyboard_initial(void);

/**
 * Close the front panel and the remote's receiver. The panel's descriptor is not forgotten: a later
 * ext_keyboard_value goes on using its number.
 * @return the result of closing the receiver; -1 when it was not open. Thread: UI thread.
 */
NVRHAL_API int32_t ext_keyboard_close(void);

/**
 * Take one key. Tells the panel whether there was one.
 * @param event  out: source, unchanged, key code, 0, 0
 * @return 0; -1 = no key, null, or no panel (it is opened when it is not open). Thread: any.
 */
NVRHAL_API int32_t ext_keyboard_value(uint32_t event[5]);

/** Store keyboard_zoom_flag_m. @return the characters printed. Thread: any. */
NVRHAL_API int32_t ext_keyboard_zoom_flag(int32_t mode);

/** Take the mouse event. @return 0; -1 = none is waiting, or null. Thread: any. */
NVRHAL_API int32_t ext_mouse_get_status(uint32_t event[5]);

/**
 * The remote-key reader: put what the receiver "/dev/Hi_IR" decodes into the key queue, for ever.
 * The last key repeats while reads give nothing. The application runs it on a thread of its own and
 * ends it, if ever, by cancelling that thread.
 * @return -1 when the receiver cannot be opened; otherwise never.
 */
NVRHAL_API int32_t hi_remotekey_proc(void);

/**
 * Start the local IR reader on a thread of its own, which runs until the process ends.
 * @return 1 = started, -1 = no thread to be had.
 */
NVRHAL_API int32_t localKey_init(void);

/** The local IR reader: every millisecond, keep the last known key in `key`. Never returns. */
NVRHAL_API void local_ir_key_thread_body(void);

/**
 * Read one frame from g_S32Irfd. A short or undecoded frame leaves *status as it is.
 * @return 0; -1 = null.
 */
NVRHAL_API int32_t local_irkey_status_get(LocalKey *status);

/** Parts of ext_keyboard_initial and ext_keyboard_close. @return 0 or -1. Thread: any. */
NVRHAL_API int32_t hi_start_key_proc(void);
NVRHAL_API void hi_stop_key_proc(void);

#ifdef __cplusplus
}
#endif

#endif
