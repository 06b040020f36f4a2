/* points_hdmi.c - the HDMI transmitter: order, attributes, signal, and what is told of the plug. */
#include <pthread.h>
#include <string.h>

#include "hooks.h"
#include "points.h"
#include "record.h"
#include "scene.h"

enum { DEVICE = 0, NO_DEVICE = 5, EVENTS = 32, EVENT_MS = 1500 };

static const MI_HDMI_Attr usual_attr = {1, 1, HDMI_TIMING, 0, 0, 0, 1, 0, 3, 16, 0, 1, 1, 1};

/* ------------------------------------------------------------------------------------ listening --- */

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

static Listener listener = {.lock = PTHREAD_MUTEX_INITIALIZER};
static Listener other_listener = {.lock = PTHREAD_MUTEX_INITIALIZER};

static int32_t on_event(uint32_t device, uint32_t event, void *event_param, void *user_param)
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

static uint32_t heard(Listener *from)
{
    pthread_mutex_lock(&from->lock);
    const uint32_t count = from->count;
    pthread_mutex_unlock(&from->lock);
    return count;
}

static bool wait_heard(Listener *from, uint32_t count)
{
    const int64_t until_us = now_us() + (int64_t)patient_ms(EVENT_MS) * 1000;
    while (heard(from) < count) {
        if (now_us() > until_us && !settings.ask) return false;
        if (settings.ask && now_us() > until_us + 30000000) return false;
        pause_ms(2);
    }
    return true;
}

static void move_plug(int plugged)
{
    if (conformance_hooks.plug == NULL) {
        ask_to_do(plugged ? "plug the HDMI monitor in" : "pull the HDMI monitor's plug");
        return;
    }
    if (conformance_hooks.plug(plugged) != 0) not_tried("the plug hook failed");
    note(plugged ? "the monitor is plugged in" : "the monitor's plug is pulled");
}

static void need_listening(void)
{
    MI_HDMI_InitParam param = {on_event, &listener};
    const pthread_mutex_t lock = listener.lock;
    memset(&listener, 0, sizeof listener);
    listener.lock = lock;
    NEED(MI_HDMI_Init(&param));
    memset(&param, 0, sizeof param); /* it was copied */
}

static void need_open(void)
{
    const MI_HDMI_InitParam param = {NULL, NULL};
    NEED(MI_SYS_Init());
    NEED(MI_HDMI_Init(&param));
    NEED(MI_HDMI_Open(DEVICE));
}

static void need_sending(void)
{
    need_open();
    NEED(MI_HDMI_SetAttr(DEVICE, &usual_attr));
    NEED(MI_HDMI_Start(DEVICE));
}

/* --------------------------------------------------------------------------------------- order --- */

POINT(life, "hdmi.life",
      "MI_HDMI_Init MI_HDMI_Open MI_HDMI_SetAttr MI_HDMI_SetAvMute MI_HDMI_Start MI_HDMI_Stop "
      "MI_HDMI_Close MI_HDMI_DeInit",
      "the transmitter is brought up and down in the library's order, again and again")
{
    const MI_HDMI_InitParam param = {on_event, &listener};
    NEED(MI_SYS_Init());
    for (int i = 0; i < 40; ++i) {
        OK(MI_HDMI_Init(&param));
        OK(MI_HDMI_Open(DEVICE));
        OK(MI_HDMI_SetAttr(DEVICE, &usual_attr));
        OK(MI_HDMI_SetAvMute(DEVICE, 1));
        OK(MI_HDMI_Start(DEVICE));
        OK(MI_HDMI_SetAvMute(DEVICE, 0));
        OK(MI_HDMI_Stop(DEVICE));
        OK(MI_HDMI_Close(DEVICE));
        OK(MI_HDMI_DeInit());
    }
}

POINT(init_twice, "hdmi.init.twice-exists", "MI_HDMI_Init",
      "initialising again gives EXISTS: the GUI's start expects it")
{
    const MI_HDMI_InitParam param = {NULL, NULL};
    need_open();
    REFUSED(MI_HDMI_Init(&param), MI_MODULE_HDMI, MI_REASON_EXISTS);
}

POINT(hdmi_null, "hdmi.refusals.null", "MI_HDMI_Init MI_HDMI_SetAttr MI_HDMI_GetAttr MI_HDMI_GetSinkInfo",
      "a missing record gives NULL_POINTER")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_HDMI_Init(NULL), MI_MODULE_HDMI, MI_REASON_NULL_POINTER);
    need_open();
    REFUSED(MI_HDMI_SetAttr(DEVICE, NULL), MI_MODULE_HDMI, MI_REASON_NULL_POINTER);
    REFUSED(MI_HDMI_GetAttr(DEVICE, NULL), MI_MODULE_HDMI, MI_REASON_NULL_POINTER);
    REFUSED(MI_HDMI_GetSinkInfo(DEVICE, NULL), MI_MODULE_HDMI, MI_REASON_NULL_POINTER);
}

POINT(deinit_first, "hdmi.deinit.not-initialised", "MI_HDMI_DeInit",
      "undoing what was not initialised gives NOT_READY")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_HDMI_DeInit(), MI_MODULE_HDMI, MI_REASON_NOT_READY);
}

POINT(deinit_open, "hdmi.deinit.open", "MI_HDMI_DeInit",
      "undoing it while the transmitter is open gives NOT_PERMITTED")
{
    need_open();
    REFUSED(MI_HDMI_DeInit(), MI_MODULE_HDMI, MI_REASON_NOT_PERMITTED);
    NEED(MI_HDMI_Close(DEVICE));
    OK(MI_HDMI_DeInit());
}

POINT(open_first, "hdmi.open.not-initialised", "MI_HDMI_Open",
      "opening before it is initialised gives NOT_READY")
{
    NEED(MI_SYS_Init());
    REFUSED(MI_HDMI_Open(DEVICE), MI_MODULE_HDMI, MI_REASON_NOT_READY);
}

POINT(open_twice, "hdmi.open.twice-exists", "MI_HDMI_Open", "opening again gives EXISTS")
{
    need_open();
    REFUSED(MI_HDMI_Open(DEVICE), MI_MODULE_HDMI, MI_REASON_EXISTS);
}

POINT(close_started, "hdmi.close.started", "MI_HDMI_Close",
      "closing a started transmitter gives NOT_PERMITTED")
{
    need_sending();
    REFUSED(MI_HDMI_Close(DEVICE), MI_MODULE_HDMI, MI_REASON_NOT_PERMITTED);
    NEED(MI_HDMI_Stop(DEVICE));
    OK(MI_HDMI_Close(DEVICE));
}

#define OPEN_CALLS                                                                                           \
    "MI_HDMI_Close MI_HDMI_SetAvMute MI_HDMI_SetAttr MI_HDMI_GetAttr MI_HDMI_GetSinkInfo MI_HDMI_Start "     \
    "MI_HDMI_Stop"

static void each_refused(uint32_t device, uint32_t reason)
{
    MI_HDMI_Attr attr = usual_attr;
    MI_HDMI_SinkInfo info;
    REFUSED(MI_HDMI_Close(device), MI_MODULE_HDMI, reason);
    REFUSED(MI_HDMI_SetAvMute(device, 0), MI_MODULE_HDMI, reason);
    REFUSED(MI_HDMI_SetAttr(device, &attr), MI_MODULE_HDMI, reason);
    REFUSED(MI_HDMI_GetAttr(device, &attr), MI_MODULE_HDMI, reason);
    REFUSED(MI_HDMI_GetSinkInfo(device, &info), MI_MODULE_HDMI, reason);
    REFUSED(MI_HDMI_Start(device), MI_MODULE_HDMI, reason);
    REFUSED(MI_HDMI_Stop(device), MI_MODULE_HDMI, reason);
}

POINT(not_open, "hdmi.refusals.not-open", OPEN_CALLS,
      "each call to a transmitter that is not open gives NOT_READY")
{
    const MI_HDMI_InitParam param = {NULL, NULL};
    NEED(MI_SYS_Init());
    NEED(MI_HDMI_Init(&param));
    each_refused(DEVICE, MI_REASON_NOT_READY);
}

POINT(bad_device, "hdmi.refusals.bad-device", "MI_HDMI_Open " OPEN_CALLS,
      "each call to no device gives BAD_DEVICE")
{
    need_open();
    REFUSED(MI_HDMI_Open(NO_DEVICE), MI_MODULE_HDMI, MI_REASON_BAD_DEVICE);
    each_refused(NO_DEVICE, MI_REASON_BAD_DEVICE);
}

POINT(repeated, "hdmi.start.repeated", "MI_HDMI_Start MI_HDMI_Stop MI_HDMI_SetAvMute",
      "starting, stopping and muting are accepted twice")
{
    need_open();
    OK(MI_HDMI_Stop(DEVICE));
    NEED(MI_HDMI_SetAttr(DEVICE, &usual_attr));
    for (int i = 0; i < 2; ++i)
        OK(MI_HDMI_Start(DEVICE));
    for (int i = 0; i < 2; ++i)
        OK(MI_HDMI_SetAvMute(DEVICE, 1));
    for (int i = 0; i < 2; ++i)
        OK(MI_HDMI_SetAvMute(DEVICE, 0));
    for (int i = 0; i < 2; ++i)
        OK(MI_HDMI_Stop(DEVICE));
}

/* ---------------------------------------------------------------------------------- attributes --- */

POINT(attr_kept, "hdmi.attr.as-set", "MI_HDMI_SetAttr MI_HDMI_GetAttr",
      "the attributes are read as they were set, word for word, stopped and running")
{
    MI_HDMI_Attr set = usual_attr, read;
    need_open();
    for (int i = 0; i < 2; ++i) {
        set.video_timing = i == 0 ? 5 : 9;
        set.audio_bit_depth = 16 + 8 * (uint32_t)i;
        set.spd_infoframe = (uint32_t)i;
        OK(MI_HDMI_SetAttr(DEVICE, &set));
        memset(&read, 0xEE, sizeof read);
        OK(MI_HDMI_GetAttr(DEVICE, &read));
        HOLDS(memcmp(&read, &set, sizeof read) == 0, "%s is not what was set", last_call_text());
        NEED(MI_HDMI_Start(DEVICE));
    }
    NEED(MI_HDMI_Stop(DEVICE));
    OK(MI_HDMI_GetAttr(DEVICE, &read));
    HOLDS(memcmp(&read, &set, sizeof read) == 0, "after the stop %s is not what was set", last_call_text());
}

POINT(attr_timings, "hdmi.attr.timings", "MI_HDMI_SetAttr",
      "every HDMI timing that the library starts with can be had")
{
    static const uint32_t timings[] = {4, 5, 7, 9, 13, 36, 37, 38, 39, 40, 41, 42};
    need_open();
    for (size_t i = 0; i < sizeof timings / sizeof *timings; ++i) {
        MI_HDMI_Attr attr = usual_attr;
        attr.video_timing = timings[i];
        OK(MI_HDMI_SetAttr(DEVICE, &attr));
        OK(MI_HDMI_Start(DEVICE));
        OK(MI_HDMI_Stop(DEVICE));
    }
}

POINT(attr_bad_timing, "hdmi.attr.bad-timing", "MI_HDMI_SetAttr MI_HDMI_GetAttr",
      "a timing that cannot be had gives UNSUPPORTED, and the attributes stay")
{
    MI_HDMI_Attr attr = usual_attr;
    need_open();
    NEED(MI_HDMI_SetAttr(DEVICE, &usual_attr));
    attr.video_timing = 0xFFFF;
    REFUSED(MI_HDMI_SetAttr(DEVICE, &attr), MI_MODULE_HDMI, MI_REASON_UNSUPPORTED);
    NEED(MI_HDMI_GetAttr(DEVICE, &attr));
    HOLDS(attr.video_timing == HDMI_TIMING, "the refused timing is in force: %s", last_call_text());
}

POINT(attr_unset, "hdmi.attr.unset", "MI_HDMI_GetAttr MI_HDMI_Start",
      "without attributes reading them and starting give NOT_READY")
{
    MI_HDMI_Attr attr;
    need_open();
    REFUSED(MI_HDMI_GetAttr(DEVICE, &attr), MI_MODULE_HDMI, MI_REASON_NOT_READY);
    REFUSED(MI_HDMI_Start(DEVICE), MI_MODULE_HDMI, MI_REASON_NOT_READY);
}

/* -------------------------------------------------------------------------------------- signal --- */

static void signal_is(int wanted, const char *question)
{
    if (conformance_hooks.monitor_has_signal == NULL) {
        ask_person("%s?", question);
        return;
    }
    const int64_t until_us = now_us() + (int64_t)patient_ms(1000) * 1000;
    while (conformance_hooks.monitor_has_signal() != wanted) {
        if (now_us() > until_us) broken("the monitor sees %s picture: %s", wanted ? "no" : "a", question);
        pause_ms(10);
    }
    note("seen: %s", question);
}

POINT(signal_start, "hdmi.start.signal", "MI_HDMI_Start MI_HDMI_Stop",
      "a started transmitter sends a picture, a stopped one none")
{
    need_display(0);
    need_open();
    NEED(MI_HDMI_SetAttr(DEVICE, &usual_attr));
    signal_is(0, "the monitor finds no signal");
    OK(MI_HDMI_Start(DEVICE));
    signal_is(1, "the monitor finds a signal");
    OK(MI_HDMI_Stop(DEVICE));
    signal_is(0, "the monitor finds no signal any more");
}

POINT(signal_mute, "hdmi.mute.blanks", "MI_HDMI_SetAvMute MI_HDMI_Start",
      "a muted transmitter shows nothing, also one that is started while it is muted")
{
    need_display(0);
    need_sending();
    signal_is(1, "the monitor finds a signal");
    OK(MI_HDMI_SetAvMute(DEVICE, 1));
    signal_is(0, "the monitor is dark");
    NEED(MI_HDMI_Stop(DEVICE));
    NEED(MI_HDMI_Start(DEVICE));
    signal_is(0, "the monitor stays dark");
    OK(MI_HDMI_SetAvMute(DEVICE, 0));
    signal_is(1, "the monitor shows a picture again");
}

POINT(signal_video, "hdmi.attr.video-enabled", "MI_HDMI_SetAttr",
      "with video switched off in the attributes no picture is sent, running or not")
{
    MI_HDMI_Attr attr = usual_attr;
    need_display(0);
    need_sending();
    signal_is(1, "the monitor finds a signal");
    attr.video_enabled = 0;
    OK(MI_HDMI_SetAttr(DEVICE, &attr));
    signal_is(0, "the monitor shows no picture");
    attr.video_enabled = 1;
    OK(MI_HDMI_SetAttr(DEVICE, &attr));
    signal_is(1, "the monitor shows a picture again");
}

POINT(sink_info, "hdmi.sink.plausible", "MI_HDMI_GetSinkInfo",
      "a monitor that is there says so, and which size it likes best")
{
    MI_HDMI_SinkInfo info;
    memset(&info, 0xEE, sizeof info);
    need_open();
    if (MI_HDMI_GetSinkInfo(DEVICE, &info) == MI_ERROR(MI_MODULE_HDMI, MI_REASON_ABSENT)) move_plug(1);
    OK(MI_HDMI_GetSinkInfo(DEVICE, &info));
    HOLDS(info.connected == 1, "connected is %u with a monitor there", info.connected);
    HOLDS(info.hdmi <= 1, "hdmi is %u, neither 0 nor 1", info.hdmi);
    HOLDS(info.preferred_width >= 320 && info.preferred_width <= 8192 && info.preferred_height >= 200 &&
              info.preferred_height <= 8192,
          "%s: no monitor likes that", last_call_text());
}

/* ---------------------------------------------------------------------------------------- plug --- */

POINT(plug_events, "hdmi.callback.plug", "MI_HDMI_Init",
      "pulling the plug and plugging in raise an event each, in this order")
{
    need_listening();
    move_plug(0);
    HOLDS(wait_heard(&listener, 1), "the plug was pulled, and no event came");
    move_plug(1);
    HOLDS(wait_heard(&listener, 2), "the monitor was plugged in, and no event came");
    HOLDS(listener.event[0] == MI_HDMI_EVENT_UNPLUGGED, "pulling raised event %u, expected %d",
          listener.event[0], MI_HDMI_EVENT_UNPLUGGED);
    HOLDS(listener.event[1] == MI_HDMI_EVENT_PLUGGED, "plugging in raised event %u, expected %d",
          listener.event[1], MI_HDMI_EVENT_PLUGGED);
    pause_ms(patient_ms(40));
    HOLDS(heard(&listener) == 2, "two moves of the plug raised %u events", heard(&listener));
}

POINT(plug_arguments, "hdmi.callback.arguments", "MI_HDMI_Init",
      "the callback gets device 0, a pointer to its number, and the user parameter of the initialisation")
{
    need_listening();
    move_plug(0);
    move_plug(1);
    HOLDS(wait_heard(&listener, 2), "the plug was moved twice, and %u events came", heard(&listener));
    for (int i = 0; i < 2; ++i) {
        HOLDS(listener.device[i] == DEVICE, "event %d is of device %u", i, listener.device[i]);
        HOLDS(listener.user[i] == &listener, "event %d has another user parameter than that of MI_HDMI_Init",
              i);
        HOLDS(listener.told[i], "event %d has no event parameter", i);
        HOLDS(listener.told_device[i] == DEVICE, "the event parameter points at %u", listener.told_device[i]);
    }
}

POINT(plug_thread, "hdmi.callback.own-thread", "MI_HDMI_Init",
      "the callback comes on a thread of the platform's, always the same")
{
    need_listening();
    move_plug(0);
    move_plug(1);
    HOLDS(wait_heard(&listener, 2), "the plug was moved twice, and %u events came", heard(&listener));
    HOLDS(!pthread_equal(listener.thread[0], pthread_self()),
          "the callback came on the thread that moved the plug");
    HOLDS(pthread_equal(listener.thread[0], listener.thread[1]), "two events came on two threads");
}

POINT(plug_many, "hdmi.callback.none-lost", "MI_HDMI_Init",
      "of many moves of the plug none is lost, none doubled, none out of order")
{
    enum { MOVES = 16 };
    if (conformance_hooks.plug == NULL) not_tried("needs the plug hook");
    need_listening();
    for (int i = 0; i < MOVES; ++i)
        move_plug(i % 2);
    HOLDS(wait_heard(&listener, MOVES), "%d moves of the plug raised %u events", MOVES, heard(&listener));
    pause_ms(patient_ms(40));
    HOLDS(heard(&listener) == MOVES, "%d moves of the plug raised %u events", MOVES, heard(&listener));
    for (int i = 0; i < MOVES; ++i)
        HOLDS(listener.event[i] == (i % 2 ? MI_HDMI_EVENT_PLUGGED : MI_HDMI_EVENT_UNPLUGGED),
              "event %d of alternating ones is %u", i, listener.event[i]);
}

POINT(plug_one_at_a_time, "hdmi.callback.one-at-a-time", "MI_HDMI_Init",
      "a callback that takes its time is not entered again; what happens meanwhile comes afterwards")
{
    if (conformance_hooks.plug == NULL) not_tried("needs the plug hook");
    need_listening();
    listener.dwell_ms = 60;
    for (int i = 0; i < 4; ++i)
        move_plug(i % 2);
    HOLDS(wait_heard(&listener, 4), "four moves of the plug raised %u events", heard(&listener));
    HOLDS(!listener.overlapped, "an event came while the callback was at the one before");
}

POINT(plug_calls, "hdmi.callback.may-call",
      "MI_HDMI_GetSinkInfo MI_HDMI_GetAttr MI_HDMI_SetAttr MI_HDMI_Start MI_HDMI_Stop",
      "the callback may ask the monitor, and set, start and stop the transmitter")
{
    static const char *const names[] = {"MI_HDMI_GetSinkInfo", "MI_HDMI_GetAttr", "MI_HDMI_SetAttr",
                                        "MI_HDMI_Start", "MI_HDMI_Stop"};
    need_listening();
    listener.restarts = true;
    NEED(MI_HDMI_Open(DEVICE));
    NEED(MI_HDMI_SetAttr(DEVICE, &usual_attr));
    move_plug(0);
    HOLDS(wait_heard(&listener, 1), "the plug was pulled, and no event came");
    move_plug(1);
    HOLDS(wait_heard(&listener, 2), "the callback did not come back from its calls of the transmitter");
    for (int i = 0; i < 5; ++i)
        HOLDS(listener.results[i] == 0, "%s on the callback's thread gave 0x%08x", names[i],
              (unsigned)listener.results[i]);
}

POINT(plug_no_monitor, "hdmi.sink.absent", "MI_HDMI_GetSinkInfo",
      "without a monitor its description gives ABSENT, with one again it comes")
{
    MI_HDMI_SinkInfo info;
    need_open();
    move_plug(0);
    pause_ms(patient_ms(60));
    REFUSED(MI_HDMI_GetSinkInfo(DEVICE, &info), MI_MODULE_HDMI, MI_REASON_ABSENT);
    move_plug(1);
    pause_ms(patient_ms(60));
    OK(MI_HDMI_GetSinkInfo(DEVICE, &info));
}

POINT(plug_without_monitor, "hdmi.start.no-monitor", "MI_HDMI_SetAttr MI_HDMI_GetAttr MI_HDMI_Start",
      "attributes and start need no monitor, and stay when one is changed")
{
    MI_HDMI_Attr read;
    need_open();
    move_plug(0);
    OK(MI_HDMI_SetAttr(DEVICE, &usual_attr));
    OK(MI_HDMI_Start(DEVICE));
    move_plug(1);
    OK(MI_HDMI_GetAttr(DEVICE, &read));
    HOLDS(memcmp(&read, &usual_attr, sizeof read) == 0, "%s is not what was set", last_call_text());
}

POINT(plug_after_deinit, "hdmi.deinit.no-more-events", "MI_HDMI_DeInit",
      "after it was undone no event is raised")
{
    need_listening();
    move_plug(0);
    HOLDS(wait_heard(&listener, 1), "the plug was pulled, and no event came");
    OK(MI_HDMI_DeInit());
    move_plug(1);
    pause_ms(patient_ms(120));
    HOLDS(heard(&listener) == 1, "an event came after MI_HDMI_DeInit");
}

POINT(plug_before_init, "hdmi.init.no-old-events", "MI_HDMI_Init",
      "moves of the plug before the initialisation, and a monitor that is there, raise no event")
{
    move_plug(0);
    move_plug(1);
    need_listening();
    pause_ms(patient_ms(100));
    HOLDS(heard(&listener) == 0, "%u events of before MI_HDMI_Init came", heard(&listener));
}

POINT(plug_new_callback, "hdmi.init.new-callback", "MI_HDMI_Init MI_HDMI_DeInit",
      "after the next initialisation the events go to the callback that it named")
{
    const MI_HDMI_InitParam other = {on_event, &other_listener};
    need_listening();
    other_listener.count = 0;
    NEED(MI_HDMI_DeInit());
    NEED(MI_HDMI_Init(&other));
    move_plug(0);
    HOLDS(wait_heard(&other_listener, 1), "the new callback heard nothing");
    HOLDS(heard(&listener) == 0, "the old callback was called");
    move_plug(1);
    wait_heard(&other_listener, 2);
}

POINT(plug_null_callback, "hdmi.init.no-callback", "MI_HDMI_Init",
      "an initialisation without a callback is accepted")
{
    const MI_HDMI_InitParam none = {NULL, NULL};
    OK(MI_HDMI_Init(&none));
    move_plug(0);
    move_plug(1);
    pause_ms(patient_ms(30));
    OK(MI_HDMI_DeInit());
}

const Point *const hdmi_points[] = {
    &point_life,
    &point_init_twice,
    &point_hdmi_null,
    &point_deinit_first,
    &point_deinit_open,
    &point_open_first,
    &point_open_twice,
    &point_close_started,
    &point_not_open,
    &point_bad_device,
    &point_repeated,
    &point_attr_kept,
    &point_attr_timings,
    &point_attr_bad_timing,
    &point_attr_unset,
    &point_signal_start,
    &point_signal_mute,
    &point_signal_video,
    &point_sink_info,
    &point_plug_events,
    &point_plug_arguments,
    &point_plug_thread,
    &point_plug_many,
    &point_plug_one_at_a_time,
    &point_plug_calls,
    &point_plug_no_monitor,
    &point_plug_without_monitor,
    &point_plug_after_deinit,
    &point_plug_before_init,
    &point_plug_new_callback,
    &point_plug_null_callback,
    NULL,
};
