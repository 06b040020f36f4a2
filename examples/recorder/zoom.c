/*
 * zoom.c - see zoom.h.
 *
 * The units of ext_vidoe_image_zoom are the pixels of the largest picture that decoder channel 0 was
 * made for, which is the output's size: 1920 x 1080 here, whatever the camera sends. The library puts
 * the part in proportion onto the picture that is there.
 */
#include "zoom.h"

#include "nvrhal.h"
#include "screen.h"

#define PART_WIDTH  (NVRHAL_ZOOM_WIDTH / 2)
#define PART_HEIGHT (NVRHAL_ZOOM_HEIGHT / 2)

static int part_x, part_y;
static bool on;

/* The cameras' threads read the word while they send: a whole word, no order with anything else. */
static void set_zoomed(uint32_t zoomed)
{
    __atomic_store_n(&vo_for_ezoom, zoomed, __ATOMIC_RELAXED);
}

static int within(int value, int most)
{
    return value < 0 ? 0 : value > most ? most : value;
}

static bool apply(void)
{
    return ext_vidoe_image_zoom(0, part_x, part_y, PART_WIDTH, PART_HEIGHT) == 0;
}

/* [zoom] */
bool zoom_begin(int channel)
{
    part_x = (NVRHAL_ZOOM_WIDTH - PART_WIDTH) / 2;
    part_y = (NVRHAL_ZOOM_HEIGHT - PART_HEIGHT) / 2;
    on = screen_show_single(channel); /* tells the library which channel is zoomed */
    if (!on) return false;
    set_zoomed(1); /* from now on the other cameras' frames are refused */
    if (apply()) return true;
    zoom_end();
    return false;
}

void zoom_end(void)
{
    if (!on) return;
    ext_vidoe_image_zoom(0, 0, 0, 0, 0); /* the port keeps its part over layouts: the whole again */
    set_zoomed(0);
    on = false;
}
/* [/zoom] */

bool zoom_is_on(void)
{
    return on;
}

void zoom_move(int right, int down)
{
    if (!on) return;
    part_x = within(part_x + right * NVRHAL_ZOOM_WIDTH / 8, NVRHAL_ZOOM_WIDTH - PART_WIDTH);
    part_y = within(part_y + down * NVRHAL_ZOOM_HEIGHT / 8, NVRHAL_ZOOM_HEIGHT - PART_HEIGHT);
    apply();
}
