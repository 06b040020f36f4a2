/*
 * The mouse event: one slot between the application's mouse reader, which fills it and sets the
 * flag, and its user interface, which takes it here. Both hold g_mouse_lock meanwhile.
 */
#include "core/log.h"
#include "nvrhal.h"

#include <cstring>

// Written by the application's mouse reader; the event is taken and the flag cleared here.
int32_t g_mouse_fd = -1;
uint32_t g_s32KeyValue[5];
uint32_t g_bMouseEvent;
pthread_mutex_t g_mouse_lock = PTHREAD_MUTEX_INITIALIZER;

int32_t ext_mouse_get_status(uint32_t event[5])
{
    log_entry("mouse.c");
    if (event == nullptr) return -1;
    pthread_mutex_lock(&g_mouse_lock);
    const bool waiting = g_bMouseEvent != 0;
    if (waiting) {
        std::memcpy(event, g_s32KeyValue, sizeof g_s32KeyValue);
        g_bMouseEvent = 0;
    }
    pthread_mutex_unlock(&g_mouse_lock);
    return waiting ? 0 : -1;
}
