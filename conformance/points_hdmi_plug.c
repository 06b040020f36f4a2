/* points_hdmi_plug.c - the HDMI transmitter: what is told of the plug, and what works without one. */
#include <pthread.h>
#include <string.h>

#include "hdmi_listener.h"
#include "hooks.h"
#include "points.h"
#include "record.h"

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

const Point *const hdmi_plug_points[] = {
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
