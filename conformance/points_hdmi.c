/* points_hdmi.c - the HDMI transmitter: order, attributes, signal. */
#include <string.h>

#include "hdmi_listener.h"
#include "hooks.h"
#include "points.h"
#include "record.h"

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

const Point *const hdmi_points[] = {
    &point_life,         &point_init_twice,  &point_hdmi_null,     &point_deinit_first,    &point_deinit_open,
    &point_open_first,   &point_open_twice,  &point_close_started, &point_not_open,        &point_bad_device,
    &point_repeated,     &point_attr_kept,   &point_attr_timings,  &point_attr_bad_timing, &point_attr_unset,
    &point_signal_start, &point_signal_mute, &point_signal_video,  &point_sink_info,       NULL,
};
