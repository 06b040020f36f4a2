/* hdmi_listener.c - a callback that keeps what it is told. See hdmi_listener.h. */
#include "hdmi_listener.h"

#include <string.h>

#include "hooks.h"
#include "record.h"

Listener listener = {.lock = PTHREAD_MUTEX_INITIALIZER};
Listener other_listener = {.lock = PTHREAD_MUTEX_INITIALIZER};

int32_t on_event(uint32_t device, uint32_t event, void *event_param, void *user_param)
{
    Listener *to = user_param == &other_listener ? &other_listener : &listener;
    pthread_mutex_lock(&to->lock);
    if (to->running) to->overlapped = true;
    to->running = true;
    if (to->count < EVENTS) {
        const uint32_t at = to->count;
        to->event[at] = event;
        to->device[at] = device;
        to->told[at] = event_param != NULL;
        if (event_param != NULL) memcpy(&to->told_device[at], event_param, sizeof to->told_device[at]);
        to->user[at] = user_param;
        to->thread[at] = pthread_self();
    }
    const unsigned dwell_ms = to->dwell_ms;
    const bool restarts = to->restarts && event == MI_HDMI_EVENT_PLUGGED;
    pthread_mutex_unlock(&to->lock);
    if (restarts) {
        MI_HDMI_SinkInfo info;
        MI_HDMI_Attr attr;
        to->results[0] = MI_HDMI_GetSinkInfo(DEVICE, &info);
        to->results[1] = MI_HDMI_GetAttr(DEVICE, &attr);
        to->results[2] = MI_HDMI_SetAttr(DEVICE, &attr);
        to->results[3] = MI_HDMI_Start(DEVICE);
        to->results[4] = MI_HDMI_Stop(DEVICE);
    }
    if (dwell_ms > 0) pause_ms(dwell_ms);
    pthread_mutex_lock(&to->lock);
    to->running = false;
    ++to->count;
    pthread_mutex_unlock(&to->lock);
    return 0;
}

uint32_t heard(Listener *from)
{
    pthread_mutex_lock(&from->lock);
    const uint32_t count = from->count;
    pthread_mutex_unlock(&from->lock);
    return count;
}

bool wait_heard(Listener *from, uint32_t count)
{
    const int64_t until_us = now_us() + (int64_t)patient_ms(EVENT_MS) * 1000;
    while (heard(from) < count) {
        if (now_us() > until_us && !settings.ask) return false;
        if (settings.ask && now_us() > until_us + 30000000) return false;
        pause_ms(2);
    }
    return true;
}

void move_plug(int plugged)
{
    if (conformance_hooks.plug == NULL) {
        ask_to_do(plugged ? "plug the HDMI monitor in" : "pull the HDMI monitor's plug");
        return;
    }
    if (conformance_hooks.plug(plugged) != 0) not_tried("the plug hook failed");
    note(plugged ? "the monitor is plugged in" : "the monitor's plug is pulled");
}

void need_listening(void)
{
    MI_HDMI_InitParam param = {on_event, &listener};
    const pthread_mutex_t lock = listener.lock;
    memset(&listener, 0, sizeof listener);
    listener.lock = lock;
    NEED(MI_HDMI_Init(&param));
    memset(&param, 0, sizeof param); /* it was copied */
}

void need_open(void)
{
    const MI_HDMI_InitParam param = {NULL, NULL};
    NEED(MI_SYS_Init());
    NEED(MI_HDMI_Init(&param));
    NEED(MI_HDMI_Open(DEVICE));
}
