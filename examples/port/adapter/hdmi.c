/*
 * hdmi.c - the HDMI transmitter. The chip tells nobody of its plug: a thread of this adapter looks at it,
 * and calls the library's function.
 */
#include "mi_hdmi.h"

#include <stddef.h>
#include <time.h>

#include "adapter.h"

enum { kLookEvery_ms = 40 };

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards what follows */
static int is_initialised, is_open, has_attr, is_started, is_watched;
static unsigned seen_moves; /* of the plug */
static int was_plugged;     /* after them  */
static MI_HDMI_InitParam told;
static MI_HDMI_Attr current;

static int32_t refuse(enum MI_Reason reason)
{
    return MI_ERROR(MI_MODULE_HDMI, reason);
}

/* One move of the plug that nobody was told of yet. 0 = there is none. */
static int next_move(MI_HDMI_InitParam *param, int *plugged)
{
    pthread_mutex_lock(&lock);
    const int has_moved = is_initialised && tern_hdmi_moves() != seen_moves;
    if (has_moved) {
        ++seen_moves;
        was_plugged = !was_plugged;
    }
    *param = told;
    *plugged = was_plugged;
    pthread_mutex_unlock(&lock);
    return has_moved;
}

/* Look at the plug for ever. The callback is called without the lock: it calls back into here. */
static void *watch_plug(void *argument)
{
    (void)argument;
    for (;;) {
        const struct timespec rest = {0, kLookEvery_ms * 1000000L};
        nanosleep(&rest, NULL);
        MI_HDMI_InitParam param;
        int plugged;
        while (next_move(&param, &plugged)) {
            uint32_t device = 0;
            if (param.callback == NULL) continue;
            param.callback(device, plugged ? MI_HDMI_EVENT_PLUGGED : MI_HDMI_EVENT_UNPLUGGED, &device,
                           param.user_param);
        }
    }
    return NULL;
}

int32_t MI_HDMI_Init(const MI_HDMI_InitParam *param)
{
    if (param == NULL) return refuse(MI_REASON_NULL_POINTER);
    pthread_mutex_lock(&lock);
    int32_t result = is_initialised ? refuse(MI_REASON_EXISTS) : MI_SUCCESS;
    if (result == MI_SUCCESS) {
        told = *param;
        seen_moves = tern_hdmi_moves();
        was_plugged = tern_hdmi_sense();
        is_initialised = 1;
    }
    pthread_t watcher;
    if (result == MI_SUCCESS && !is_watched) {
        is_watched = pthread_create(&watcher, NULL, watch_plug, NULL) == 0;
        if (is_watched) pthread_detach(watcher);
    }
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_DeInit(void)
{
    pthread_mutex_lock(&lock);
    int32_t result = is_initialised ? MI_SUCCESS : refuse(MI_REASON_NOT_READY);
    if (result == MI_SUCCESS && is_open) result = refuse(MI_REASON_NOT_PERMITTED);
    if (result == MI_SUCCESS) is_initialised = has_attr = 0;
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_Open(uint32_t device)
{
    if (device != 0) return refuse(MI_REASON_BAD_DEVICE);
    pthread_mutex_lock(&lock);
    int32_t result = is_initialised ? MI_SUCCESS : refuse(MI_REASON_NOT_READY);
    if (result == MI_SUCCESS && is_open) result = refuse(MI_REASON_EXISTS);
    tern_wake(); /* the transmitter does not wait for MI_SYS_Init */
    if (result == MI_SUCCESS) result = code_of(MI_MODULE_HDMI, tern_hdmi_power(1));
    if (result == MI_SUCCESS) is_open = 1;
    pthread_mutex_unlock(&lock);
    return result;
}

/* The lock is held when this gives MI_SUCCESS. */
static int32_t lock_open(uint32_t device)
{
    if (device != 0) return refuse(MI_REASON_BAD_DEVICE);
    pthread_mutex_lock(&lock);
    if (is_open) return MI_SUCCESS;
    pthread_mutex_unlock(&lock);
    return refuse(MI_REASON_NOT_READY);
}

int32_t MI_HDMI_Close(uint32_t device)
{
    int32_t result = lock_open(device);
    if (result != MI_SUCCESS) return result;
    if (is_started) result = refuse(MI_REASON_NOT_PERMITTED);
    if (result == MI_SUCCESS) result = code_of(MI_MODULE_HDMI, tern_hdmi_power(0));
    if (result == MI_SUCCESS) is_open = 0;
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_SetAvMute(uint32_t device, int32_t mute)
{
    int32_t result = lock_open(device);
    if (result != MI_SUCCESS) return result;
    result = code_of(MI_MODULE_HDMI, tern_hdmi_blank(mute != 0));
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_SetAttr(uint32_t device, const MI_HDMI_Attr *attr)
{
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t result = lock_open(device);
    if (result != MI_SUCCESS) return result;
    const TernMode *mode = mode_of_hdmi(attr->video_timing);
    if (mode != NULL)
        result =
            code_of(MI_MODULE_HDMI, tern_hdmi_mode(mode, attr->video_enabled != 0, attr->audio_enabled != 0));
    else if (attr->video_enabled != 0)
        result = refuse(MI_REASON_UNSUPPORTED);
    if (result == MI_SUCCESS) {
        current = *attr;
        has_attr = 1;
    }
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_GetAttr(uint32_t device, MI_HDMI_Attr *attr)
{
    if (attr == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t result = lock_open(device);
    if (result != MI_SUCCESS) return result;
    if (has_attr)
        *attr = current;
    else
        result = refuse(MI_REASON_NOT_READY);
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_GetSinkInfo(uint32_t device, MI_HDMI_SinkInfo *info)
{
    if (info == NULL) return refuse(MI_REASON_NULL_POINTER);
    int32_t result = lock_open(device);
    if (result != MI_SUCCESS) return result;
    uint8_t edid[TERN_EDID_BYTES];
    result = code_of(MI_MODULE_HDMI, tern_hdmi_edid(edid));
    pthread_mutex_unlock(&lock);
    if (result != MI_SUCCESS) return result;
    const uint8_t *timing = edid + 54; /* the first one is what the monitor likes best */
    info->connected = 1;
    info->hdmi = edid[126] != 0; /* HDMI monitors have an extension that says so */
    info->preferred_width = timing[2] | (uint32_t)(timing[4] & 0xF0) << 4;
    info->preferred_height = timing[5] | (uint32_t)(timing[7] & 0xF0) << 4;
    return MI_SUCCESS;
}

static int32_t send(uint32_t device, int on)
{
    int32_t result = lock_open(device);
    if (result != MI_SUCCESS) return result;
    if (on && !has_attr) result = refuse(MI_REASON_NOT_READY);
    if (result == MI_SUCCESS) result = code_of(MI_MODULE_HDMI, tern_hdmi_send(on));
    if (result == MI_SUCCESS) is_started = on;
    pthread_mutex_unlock(&lock);
    return result;
}

int32_t MI_HDMI_Start(uint32_t device)
{
    return send(device, 1);
}

int32_t MI_HDMI_Stop(uint32_t device)
{
    return send(device, 0);
}
