/* vboard_hooks.c - the board in software, looked at and touched through its control face. */
#include "hooks.h"

#include <stddef.h>

#include "vboard.h"
#include "vboard_audio.h"
#include "vboard_devices.h"

/* Refusals are what most points provoke: their lines would bury the table. */
static void begin(void)
{
    vboard_set_loud(0);
}

static int capture(int32_t device, HookImage *image)
{
    vboard_image captured;
    if (vboard_display_capture(device, VBOARD_FORMAT_RGB24, &captured) != 0) return -1;
    *image =
        (HookImage){captured.width, captured.height, captured.bytes}; /* from malloc, like the suite's own */
    return 0;
}

static int plug(int plugged)
{
    return plugged ? vboard_monitor_plug() : vboard_monitor_unplug();
}

static int audio_level(uint32_t device, uint32_t window_ms, double *rms_db)
{
    vboard_audio_level level;
    if (vboard_audio_get_level(device, window_ms, &level) != 0) return -1;
    *rms_db = level.rms_dbfs;
    return 0;
}

static int panel_press(uint32_t code)
{
    vboard_panel_press(code);
    return 0;
}

static int ir_press(uint32_t code)
{
    vboard_ir_press(code);
    return 0;
}

static int mouse_move(int32_t x, int32_t y)
{
    vboard_mouse_move(x, y);
    return 0;
}

static int mouse_buttons(uint32_t buttons)
{
    vboard_mouse_buttons(buttons);
    return 0;
}

static int mouse_wheel(int32_t notches)
{
    vboard_mouse_wheel(notches);
    return 0;
}

static int record_lamp(void)
{
    vboard_panel_stat stat;
    return vboard_panel_get_stat(&stat) == 0 ? (int)stat.record_lamp : -1;
}

static int watchdog_expired(void)
{
    vboard_watchdog_stat stat;
    return vboard_watchdog_get_stat(&stat) == 0 ? (int)stat.expired : -1;
}

const ConformanceHooks conformance_hooks = {
    .name = "vboard",
    .begin = begin,
    .capture = capture,
    .plug = plug,
    .monitor_has_signal = vboard_monitor_has_signal,
    .audio_level = audio_level,
    .panel_press = panel_press,
    .ir_press = ir_press,
    .mouse_move = mouse_move,
    .mouse_buttons = mouse_buttons,
    .mouse_wheel = mouse_wheel,
    .gpio_level = vboard_gpio_level,
    .record_lamp = record_lamp,
    .analog_loss = vboard_ad_set_loss,
    .analog_motion = vboard_ad_set_motion,
    .watchdog_expired = watchdog_expired,
};
