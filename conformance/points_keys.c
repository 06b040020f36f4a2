/* points_keys.c - device nodes that hear a person: front panel, infrared receiver, mouse. */
#include <fcntl.h>
#include <pthread.h>
#include <string.h>

#include "hooks.h"
#include "ir_driver.h"
#include "keyboard_driver.h"
#include "mouse_driver.h"
#include "node_requests.h"
#include "points.h"
#include "record.h"

/* ----------------------------------------------------------------------------------- front panel --- */

enum { KEY_MENU = 109, KEY_UP = 107, KEY_ENTER = 106 };

static void press_panel(uint32_t code, const char *name)
{
    if (conformance_hooks.panel_press == NULL) {
        ask_to_do("press the panel's key \"%s\"", name);
        return;
    }
    if (conformance_hooks.panel_press(code) != 0) not_tried("the panel hook failed");
    note("the panel's key \"%s\", code %u, is pressed", name, code);
}

static void drain(int descriptor, size_t size)
{
    uint8_t record[64];
    while (board_read(descriptor, record, size) > 0) {
    }
}

POINT(panel_none, "panel.read.none", "board_read",
      "without a key a read gives 0 bytes at once, and writes nothing")
{
    uint32_t code = 0xEEEEEEEE;
    const int panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    drain(panel, sizeof code);
    code = 0xEEEEEEEE;
    for (int i = 1;; ++i) {
        const int got = board_read(panel, &code, sizeof code);
        HOLDS(got == 0, "%s, expected 0", last_call_text());
        if (i == 3 || took_within(0, 10)) break;
    }
    expect_took(0, 10);
    HOLDS(code == 0xEEEEEEEE, "a read of nothing has written 0x%08x", code);
}

static void panel_reads(int panel, uint32_t wanted)
{
    uint32_t code = 0;
    const int64_t until_us = now_us() + (int64_t)patient_ms(1000) * 1000;
    int got;
    while ((got = board_read(panel, &code, sizeof code)) == 0 && now_us() < until_us)
        pause_ms(2);
    HOLDS(got == (int)sizeof code, "%s, expected %zu bytes of a key", last_call_text(), sizeof code);
    HOLDS(code == wanted, "the key of code %u was pressed, %u was read", wanted, code);
}

POINT(panel_keys, "panel.read.keys", "board_read",
      "each key is read once, with its code, in the order of pressing")
{
    uint32_t code;
    const int panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    drain(panel, sizeof code);
    press_panel(KEY_MENU, "menu");
    press_panel(KEY_UP, "up");
    press_panel(KEY_ENTER, "enter");
    panel_reads(panel, KEY_MENU);
    panel_reads(panel, KEY_UP);
    panel_reads(panel, KEY_ENTER);
    HOLDS(board_read(panel, &code, sizeof code) == 0, "%s: a key that was not pressed", last_call_text());
}

POINT(panel_openings, "panel.read.each-opening", "board_read board_open", "each opening is given every key")
{
    const int first = need_opened(KEYBOARD_NODE, O_RDONLY), second = need_opened(KEYBOARD_NODE, O_RDONLY);
    press_panel(KEY_MENU, "menu");
    panel_reads(first, KEY_MENU);
    panel_reads(second, KEY_MENU);
}

POINT(panel_lamp, "panel.lamp", "board_ioctl", "the record lamp is lit and darkened")
{
    const int panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    for (uint32_t value = 1; value < 5; ++value) {
        uint32_t lit = value % 2;
        expect_request(panel, KEYBOARD_RECORD_LAMP, &lit);
        if (conformance_hooks.record_lamp == NULL)
            ask_person("is the record lamp %s?", lit ? "lit" : "dark");
        else
            HOLDS(conformance_hooks.record_lamp() == (int)lit, "told %u, the lamp is %d", lit,
                  conformance_hooks.record_lamp());
    }
}

POINT(panel_polled, "panel.polled", "board_ioctl", "the panel is told of polls of the key queue")
{
    uint32_t taken = 0, empty = 1;
    const int panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    expect_request(panel, KEYBOARD_KEY_POLLED, &taken);
    expect_request(panel, KEYBOARD_KEY_POLLED, &empty);
}

POINT(panel_bad, "panel.refusals.bad-value", "board_ioctl", "other values than 0 and 1 give EINVAL")
{
    uint32_t bad = 77;
    const int panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    expect_refused(panel, KEYBOARD_RECORD_LAMP, &bad);
    expect_refused(panel, KEYBOARD_KEY_POLLED, &bad);
}

/* -------------------------------------------------------------------------------------- receiver --- */

static const uint32_t code_menu = 0x659AFF00u, code_up = 0x6699FF00u;

static void press_ir(uint32_t code, const char *name)
{
    if (conformance_hooks.ir_press == NULL) {
        ask_to_do("press the remote control's button \"%s\" shortly", name);
        return;
    }
    if (conformance_hooks.ir_press(code) != 0) not_tried("the remote control hook failed");
    note("the button \"%s\" is pressed", name);
}

POINT(ir_waits, "ir.read.waits", "board_read",
      "without a frame a read waits 50 ms or more, and then gives 0 bytes")
{
    IrFrame frame;
    const int receiver = need_opened(IR_NODE, O_RDWR);
    const int got = board_read(receiver, &frame, sizeof frame);
    HOLDS(got == 0, "%s, expected 0", last_call_text());
    HOLDS(last_call_ms() >= 48,
          "%s came back after %.1f ms: the key reader would turn in a loop without a pause", last_call_text(),
          last_call_ms());
    IN_TIME(last_call_ms() <= patient_ms(400), "%s came back after %.1f ms", last_call_text(),
            last_call_ms());
}

/* The next frame of a pressed button. */
static void ir_reads(int receiver, uint32_t wanted)
{
    IrFrame frame = {0, 0, 0};
    for (int i = 0; i < 20; ++i) {
        const int got = board_read(receiver, &frame, sizeof frame);
        HOLDS(got == 0 || got == (int)sizeof frame, "%s, expected 0 or %zu", last_call_text(), sizeof frame);
        if (got == 0 || frame.state != 0) continue;
        HOLDS(frame.code == wanted, "a button sent 0x%08x, 0x%08x was read", wanted, frame.code);
        return;
    }
    broken("the frame of a pressed button, code 0x%08x, did not come", wanted);
}

POINT(ir_frames, "ir.read.frames", "board_read",
      "a pressed button gives a frame with its code and state 0, and letting go one of another state")
{
    IrFrame frame = {0, 0, 0};
    const int receiver = need_opened(IR_NODE, O_RDWR);
    press_ir(code_menu, "menu");
    ir_reads(receiver, code_menu);
    const int got = board_read(receiver, &frame, sizeof frame);
    HOLDS(got == 0 || frame.state != 0 || frame.code == code_menu, "behind the button came 0x%08x",
          frame.code);
    press_ir(code_up, "up");
    for (int i = 0; i < 20; ++i) {
        if (board_read(receiver, &frame, sizeof frame) != (int)sizeof frame || frame.state != 0) continue;
        if (frame.code == code_up) return;
    }
    broken("the frame of the second button did not come");
}

POINT(ir_at_once, "ir.read.at-once", "board_read", "a frame that comes ends the wait of a read")
{
    IrFrame frame;
    if (conformance_hooks.ir_press == NULL) not_tried("needs the remote control hook");
    const int receiver = need_opened(IR_NODE, O_RDWR);
    press_ir(code_menu, "menu");
    const int got = board_read(receiver, &frame, sizeof frame);
    HOLDS(got == (int)sizeof frame, "%s, expected %zu", last_call_text(), sizeof frame);
    IN_TIME(last_call_ms() < patient_ms(40), "a frame was there, and the read took %.1f ms", last_call_ms());
}

POINT(ir_openings, "ir.read.each-opening", "board_read board_open", "each opening is given every frame")
{
    const int first = need_opened(IR_NODE, O_RDWR), second = need_opened(IR_NODE, O_RDWR);
    press_ir(code_menu, "menu");
    ir_reads(first, code_menu);
    ir_reads(second, code_menu);
}

static void *read_once(void *argument)
{
    IrFrame frame;
    board_read(*(const int *)argument, &frame, sizeof frame);
    return NULL;
}

POINT(ir_holds_nobody, "ir.read.holds-nobody", "board_read board_ioctl",
      "while a read waits other calls come back at once")
{
    pthread_t thread;
    uint32_t dark = 0;
    double slowest = 0;
    const int receiver = need_opened(IR_NODE, O_RDWR), panel = need_opened(KEYBOARD_NODE, O_RDONLY);
    if (pthread_create(&thread, NULL, read_once, (void *)&receiver) != 0) blocked("no thread");
    pause_ms(10);
    for (int i = 0; i < 3; ++i) {
        board_ioctl(panel, KEYBOARD_RECORD_LAMP, &dark);
        if (i == 0 || last_call_ms() < slowest) slowest = last_call_ms();
    }
    pthread_join(thread, NULL);
    IN_TIME(slowest < patient_ms(20),
            "a request to the panel took %.0f ms while a read of the receiver waited", slowest);
}

/* ----------------------------------------------------------------------------------------- mouse --- */

static int need_mouse(void)
{
    const int mouse = board_open(MOUSE_NODE, O_RDONLY);
    if (mouse < 0) not_tried("this board has no mouse: %s", last_call_text());
    if (conformance_hooks.mouse_move == NULL || conformance_hooks.mouse_buttons == NULL ||
        conformance_hooks.mouse_wheel == NULL)
        not_tried("needs the mouse hooks");
    return mouse;
}

static MouseEvent next_mouse(int mouse)
{
    MouseEvent event;
    memset(&event, 0xEE, sizeof event);
    for (int i = 0; i < 10; ++i) {
        const int got = board_read(mouse, &event, sizeof event);
        if (got == (int)sizeof event) return event;
        HOLDS(got == 0, "%s, expected 0 or %zu", last_call_text(), sizeof event);
    }
    broken("the mouse was moved, and no event came");
}

POINT(mouse_events, "mouse.read.events", "board_read",
      "moves, buttons and the wheel give an event each, with the state after it")
{
    const int mouse = need_mouse();
    conformance_hooks.mouse_move(640, 360);
    conformance_hooks.mouse_buttons(MOUSE_BUTTON_LEFT);
    conformance_hooks.mouse_wheel(-2);
    conformance_hooks.mouse_buttons(0);
    MouseEvent event = next_mouse(mouse);
    HOLDS(event.type == MOUSE_EVENT_MOVE && event.x == 640 && event.y == 360,
          "a move to 640,360 gave type %u at %d,%d", event.type, (int)event.x, (int)event.y);
    event = next_mouse(mouse);
    HOLDS(event.type == MOUSE_EVENT_BUTTON && event.buttons == MOUSE_BUTTON_LEFT && event.x == 640,
          "the left button gave type %u, buttons %u at %d,%d", event.type, event.buttons, (int)event.x,
          (int)event.y);
    event = next_mouse(mouse);
    HOLDS(event.type == MOUSE_EVENT_WHEEL && event.wheel == -2, "two notches gave type %u, wheel %d",
          event.type, (int)event.wheel);
    event = next_mouse(mouse);
    HOLDS(event.type == MOUSE_EVENT_BUTTON && event.buttons == 0, "letting go gave type %u, buttons %u",
          event.type, event.buttons);
}

POINT(mouse_waits, "mouse.read.waits", "board_read",
      "without an event a read waits a while, 200 ms at most, and gives 0 bytes")
{
    MouseEvent event;
    const int mouse = board_open(MOUSE_NODE, O_RDONLY);
    if (mouse < 0) not_tried("this board has no mouse: %s", last_call_text());
    const int got = board_read(mouse, &event, sizeof event);
    HOLDS(got == 0, "%s, expected 0", last_call_text());
    HOLDS(last_call_ms() >= 20, "it waited %.1f ms", last_call_ms());
    IN_TIME(last_call_ms() <= patient_ms(250), "it waited %.1f ms", last_call_ms());
}

const Point *const key_points[] = {
    &point_panel_none,      &point_panel_keys,
    &point_panel_openings,  &point_panel_lamp,
    &point_panel_polled,    &point_panel_bad,
    &point_ir_waits,        &point_ir_frames,
    &point_ir_at_once,      &point_ir_openings,
    &point_ir_holds_nobody, &point_mouse_events,
    &point_mouse_waits,     NULL,
};
