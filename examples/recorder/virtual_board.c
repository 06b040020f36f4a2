/*
 * virtual_board.c - see virtual_board.h and nodes.h. The only file here that knows of the board in
 * software: leave it out for a board, and put nodes.c in its place.
 */
#include "virtual_board.h"

#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "board_io.h"
#include "camera.h"
#include "nodes.h"
#include "nvrhal.h"
#include "vboard.h"
#include "vboard_audio.h"
#include "vboard_devices.h"

#define MOST_ORDERS 64
#define LOUDSPEAKER 3 /* the audio output that the library plays on */

static struct order {
    double at_s;
    char what[16];
    char argument[256];
} orders[MOST_ORDERS];
static int order_count, next_order;
static int64_t began_at_us;

int node_open(const char *path)
{
    return board_open(path, O_RDONLY);
}

int node_read(int node, void *record, size_t size)
{
    return board_read(node, record, size);
}

void node_close(int node)
{
    if (node >= 0) board_close(node);
}

bool virtual_board_order(const char *text)
{
    if (order_count == MOST_ORDERS) return false;
    struct order *order = &orders[order_count++];
    order->argument[0] = 0;
    return sscanf(text, "%lf:%15[^=]=%255s", &order->at_s, order->what, order->argument) >= 2;
}

static bool write_state(const char *path)
{
    vboard_watchdog_stat watchdog;
    vboard_panel_stat panel;
    FILE *file = fopen(path, "w");
    if (!file) return false;
    vboard_watchdog_get_stat(&watchdog);
    vboard_panel_get_stat(&panel);
    fprintf(file, "watchdog %s\nfeeds %llu\nlamp changes %llu\nbuzzer %d\n", watchdog.enabled ? "on" : "off",
            (unsigned long long)watchdog.feeds, (unsigned long long)panel.lamp_changes,
            vboard_gpio_level(BOARD_LINE_BUZZER));
    return fclose(file) == 0;
}

static bool carry_out(const struct order *order)
{
    int x, y;
    if (strcmp(order->what, "press") == 0) return vboard_ir_press_named(order->argument) == 0;
    if (strcmp(order->what, "panel") == 0) return vboard_panel_press_named(order->argument) == 0;
    if (strcmp(order->what, "click") == 0 && sscanf(order->argument, "%d,%d", &x, &y) == 2) {
        vboard_mouse_move(x, y);
        vboard_mouse_buttons(1);
        vboard_mouse_buttons(0);
    } else if (strcmp(order->what, "picture") == 0) {
        return vboard_display_save_png(0, order->argument) == 0;
    } else if (strcmp(order->what, "state") == 0) {
        return write_state(order->argument);
    } else if (strcmp(order->what, "wav") == 0) {
        return vboard_audio_open_wav(LOUDSPEAKER, order->argument) == 0;
    } else {
        return false;
    }
    return true;
}

bool virtual_board_turn(void)
{
    if (began_at_us == 0) began_at_us = now_us();
    while (next_order < order_count) {
        const struct order *order = &orders[next_order];
        const int64_t due_us = began_at_us + (int64_t)(order->at_s * 1e6);
        if (now_us() < due_us) return true;
        if (strcmp(order->what, "quit") == 0) {
            vboard_audio_close(LOUDSPEAKER);
            return false;
        }
        if (!carry_out(order))
            fprintf(stderr, "recorder: cannot do \"%s=%s\"\n", order->what, order->argument);
        ++next_order;
        began_at_us += now_us() - due_us; /* a picture that took long does not hurry what follows */
    }
    return true;
}
