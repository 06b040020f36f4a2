/* hdmi_listener.h - what a transmitter's callback was told, and the plug that it is told of. */
#ifndef CONFORMANCE_HDMI_LISTENER_H
#define CONFORMANCE_HDMI_LISTENER_H

#include <pthread.h>

#include "scene.h"

enum { DEVICE = 0, NO_DEVICE = 5, EVENTS = 32, EVENT_MS = 1500 };

static const MI_HDMI_Attr usual_attr = {1, 1, HDMI_TIMING, 0, 0, 0, 1, 0, 3, 16, 0, 1, 1, 1};

typedef struct Listener {
    pthread_mutex_t lock;
    uint32_t count, event[EVENTS], device[EVENTS], told_device[EVENTS];
    void *user[EVENTS];
    pthread_t thread[EVENTS];
    bool told[EVENTS];
    bool running, overlapped;
    unsigned dwell_ms;  /* how long the callback takes                  */
    bool restarts;      /* it calls the transmitter, as the library's does */
    int32_t results[5]; /* of those calls                               */
} Listener;

extern Listener listener, other_listener;

/* The callback of both: the user parameter says which of them it is. */
int32_t on_event(uint32_t device, uint32_t event, void *event_param, void *user_param);

/* How often it was called; until it was called so often. False: it was not in time. */
uint32_t heard(Listener *from);
bool wait_heard(Listener *from, uint32_t count);

/* By the hook or by the person. */
void move_plug(int plugged);

/* The transmitter with the listener; the transmitter without one, and opened. */
void need_listening(void);
void need_open(void);

#endif
