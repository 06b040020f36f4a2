/*
 * tern_hooks.c - what the conformance suite can do to this board and see of it. The chip is
 * simulated and decodes nothing: points about what a picture shows are not tried.
 */
#include <math.h>
#include <stddef.h>

#include "hooks.h"
#include "tern_board.h"
#include "tern_hand.h"

static int plug(int plugged)
{
    tern_hand_plug(plugged);
    return 0;
}

static int audio_level(uint32_t device, uint32_t window_ms, double *rms_db)
{
    if (device != 3) return -1;
    const double square = tern_ear(window_ms);
    *rms_db = square > 0 ? 10 * log10(square) : -200;
    return 0;
}

static int panel_press(uint32_t code)
{
    tern_hand_panel(code);
    return 0;
}

static int ir_press(uint32_t code)
{
    tern_hand_remote(code);
    return 0;
}

/* The mouse as it stands: the hand moves it by a distance, the hooks to a place. */
static int32_t mouse_x, mouse_y;
static uint32_t buttons_down;

static int mouse_move(int32_t x, int32_t y)
{
    tern_hand_mouse(x - mouse_x, y - mouse_y, buttons_down, 0);
    mouse_x = x;
    mouse_y = y;
    return 0;
}

static int mouse_buttons(uint32_t buttons)
{
    buttons_down = buttons;
    tern_hand_mouse(0, 0, buttons_down, 0);
    return 0;
}

static int mouse_wheel(int32_t notches)
{
    tern_hand_mouse(0, 0, buttons_down, notches);
    return 0;
}

static int analog_loss(uint32_t channel, uint32_t lost)
{
    tern_hand_analog(channel, lost == 0, tern_analog_motion(channel));
    return 0;
}

static int analog_motion(uint32_t channel, uint32_t blocks)
{
    tern_hand_analog(channel, tern_analog_has_signal(channel) == 1, blocks);
    return 0;
}

const ConformanceHooks conformance_hooks = {
    .name = "Tern",
    .plug = plug,
    .monitor_has_signal = tern_eye_signal,
    .audio_level = audio_level,
    .panel_press = panel_press,
    .ir_press = ir_press,
    .mouse_move = mouse_move,
    .mouse_buttons = mouse_buttons,
    .mouse_wheel = mouse_wheel,
    .gpio_level = tern_line_level,
    .record_lamp = tern_eye_lamp,
    .analog_loss = analog_loss,
    .analog_motion = analog_motion,
    .watchdog_expired = tern_eye_dog_barked,
    .decodes_nothing = 1,
};
