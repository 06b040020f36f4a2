/*
 * controls.c - see controls.h.
 *
 *   remote control --> hi_remotekey_proc --> key_que --> ext_keyboard_value --+
 *   front panel    --> this file's reader ------------------------------------+--> UI thread
 *   mouse          --> this file's reader --> g_s32KeyValue --> ext_mouse_get_status
 *
 * The library opens the receiver of the remote control, and the panel for its lamp. The panel's keys
 * and the mouse are the application's to read. The two readers have a thread each.
 */
#include "controls.h"

#include <pthread.h>
#include <stdatomic.h>
#include <stdio.h>
#include <string.h>

#include "camera.h"
#include "nodes.h"

#define PANEL_PERIOD_US 20000
#define PANEL_KEYS      16 /* that may wait for the UI thread */

static atomic_bool stopped;
static bool remote_runs, panel_runs, mouse_runs;
static pthread_t remote_thread, panel_thread, mouse_thread;

static pthread_mutex_t panel_lock = PTHREAD_MUTEX_INITIALIZER; /* guards the two that follow */
static uint32_t panel_keys[PANEL_KEYS];
static unsigned panel_count;

/* Never returns unless there is no receiver; it is ended by being cancelled. */
static void *read_remote(void *ignored)
{
    (void)ignored;
    hi_remotekey_proc();
    return NULL;
}

static void *read_panel(void *ignored)
{
    (void)ignored;
    const int panel = node_open(NVRHAL_PANEL_NODE);
    while (panel >= 0 && !atomic_load(&stopped)) {
        PanelKey event;
        const int length = node_read(panel, &event, sizeof event);
        if (length < 0) break;
        if (length == (int)sizeof event) {
            pthread_mutex_lock(&panel_lock);
            if (panel_count < PANEL_KEYS) panel_keys[panel_count++] = event.code;
            pthread_mutex_unlock(&panel_lock);
        } else {
            sleep_until_us(now_us() + PANEL_PERIOD_US);
        }
    }
    node_close(panel);
    return NULL;
}

/* [mouse] */
/* The library has room for one event: a move may replace a move, anything else waits for its turn. */
static bool hand_over(const MouseRecord *event)
{
    pthread_mutex_lock(&g_mouse_lock);
    const bool free = g_bMouseEvent == 0 || (event->type == MOUSE_MOVED && g_s32KeyValue[0] == MOUSE_MOVED);
    if (free) {
        memcpy(g_s32KeyValue, event, sizeof *event);
        __atomic_store_n(&g_bMouseEvent, 1, __ATOMIC_RELAXED); /* the UI thread looks without the lock */
    }
    pthread_mutex_unlock(&g_mouse_lock);
    return free;
}
/* [/mouse] */

static void *read_mouse(void *ignored)
{
    (void)ignored;
    const int mouse = node_open(NVRHAL_MOUSE_NODE);
    while (mouse >= 0 && !atomic_load(&stopped)) {
        MouseRecord event;
        const int length = node_read(mouse, &event, sizeof event);
        if (length < 0) break;
        while (length == (int)sizeof event && !hand_over(&event) && !atomic_load(&stopped))
            sleep_until_us(now_us() + 1000);
    }
    node_close(mouse);
    return NULL;
}

void controls_start(void)
{
    ext_keyboard_initial();
    remote_runs = pthread_create(&remote_thread, NULL, read_remote, NULL) == 0;
    panel_runs = pthread_create(&panel_thread, NULL, read_panel, NULL) == 0;
    mouse_runs = pthread_create(&mouse_thread, NULL, read_mouse, NULL) == 0;
    if (!remote_runs || !panel_runs || !mouse_runs)
        fputs("recorder: not every control has a thread\n", stderr);
}

void controls_stop(void)
{
    atomic_store(&stopped, true);
    if (panel_runs) pthread_join(panel_thread, NULL);
    if (mouse_runs) pthread_join(mouse_thread, NULL);
    if (remote_runs) {
        pthread_cancel(remote_thread);
        pthread_join(remote_thread, NULL);
    }
    ext_keyboard_close(); /* only now: the reader would go on with a closed receiver */
}

static uint32_t next_panel_key(void)
{
    uint32_t taken = NO_KEY;
    pthread_mutex_lock(&panel_lock);
    if (panel_count > 0) {
        taken = panel_keys[0];
        memmove(panel_keys, panel_keys + 1, --panel_count * sizeof panel_keys[0]);
    }
    pthread_mutex_unlock(&panel_lock);
    return taken;
}

/* [keys] */
uint32_t controls_next_key(void)
{
    /* Every call of ext_keyboard_value writes a line into the log and tells the panel: look first. */
    uint32_t event[5] = {0};
    while (__atomic_load_n(&key_que.read_index, __ATOMIC_RELAXED) !=
           __atomic_load_n(&key_que.write_index, __ATOMIC_RELAXED)) {
        if (ext_keyboard_value(event) != 0) break;
        if (event[2] != NO_KEY) return event[2]; /* slots that nobody writes hold 0 */
    }
    return next_panel_key();
}
/* [/keys] */

bool controls_next_mouse_event(MouseRecord *event)
{
    if (__atomic_load_n(&g_bMouseEvent, __ATOMIC_RELAXED) == 0) return false;
    uint32_t words[5];
    if (ext_mouse_get_status(words) != 0) return false;
    memcpy(event, words, sizeof *event);
    return true;
}
