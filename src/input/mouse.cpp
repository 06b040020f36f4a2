/*
 * The mouse event: one slot between the application's mouse reader, which fills it and sets the
 * flag, and its user interface, which takes it here. Both hold g_mouse_lock meanwhile.
 */
#include "core/abi.h"
#include "core/log.h"
#include "mouse_driver.h"
#include "nvrhal.h"

#include <cstring>

// The public record and name of the mouse are those of its driver.
ABI_SIZE(MouseRecord, sizeof(MouseEvent));
ABI_AT(MouseRecord, type, offsetof(MouseEvent, type));
ABI_AT(MouseRecord, buttons, offsetof(MouseEvent, buttons));
ABI_AT(MouseRecord, x, offsetof(MouseEvent, x));
ABI_AT(MouseRecord, y, offsetof(MouseEvent, y));
ABI_AT(MouseRecord, wheel, offsetof(MouseEvent, wheel));
ABI_SIZE(MouseRecord, sizeof g_s32KeyValue);
static_assert(MOUSE_MOVED + 0 == MOUSE_EVENT_MOVE + 0 && MOUSE_BUTTONS_CHANGED + 0 == MOUSE_EVENT_BUTTON + 0);
static_assert(MOUSE_WHEEL_TURNED + 0 == MOUSE_EVENT_WHEEL + 0);
static_assert(MOUSE_LEFT_DOWN + 0 == MOUSE_BUTTON_LEFT + 0 && MOUSE_RIGHT_DOWN + 0 == MOUSE_BUTTON_RIGHT + 0);
static_assert(MOUSE_MIDDLE_DOWN + 0 == MOUSE_BUTTON_MIDDLE + 0);
static_assert(__builtin_strcmp(NVRHAL_MOUSE_NODE, MOUSE_NODE) == 0);

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
