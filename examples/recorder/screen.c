/* screen.c - see screen.h. */
#include "screen.h"

#include "nvrhal.h"

static struct pane shown[NVRHAL_DISPLAY_PORTS];
static int shown_count;

/* [layout] */
static bool apply(void)
{
    DispAttrib panes[NVRHAL_DISPLAY_PORTS];
    for (int i = 0; i < shown_count; ++i) {
        const struct pane *pane = &shown[i];
        panes[i] = (DispAttrib){.bind_status = 1,
                                .channel = (uint16_t)pane->channel,
                                .x = (uint16_t)pane->x,
                                .y = (uint16_t)pane->y,
                                .w = (uint16_t)pane->w,
                                .h = (uint16_t)pane->h};
    }
    return ext_change_display_format(panes, shown_count) == 0;
}
/* [/layout] */

bool screen_show_grid(int cameras)
{
    int side = 1;
    while (side * side < cameras)
        ++side;
    const int width = SCREEN_WIDTH / side & ~1,
              height = SCREEN_HEIGHT / side & ~1; /* even, as the library rounds */
    for (shown_count = 0; shown_count < cameras; ++shown_count)
        shown[shown_count] = (struct pane){.channel = shown_count,
                                           .x = shown_count % side * width,
                                           .y = shown_count / side * height,
                                           .w = width,
                                           .h = height};
    return apply();
}

bool screen_show_single(int channel)
{
    shown[0] = (struct pane){.channel = channel, .w = SCREEN_WIDTH, .h = SCREEN_HEIGHT};
    shown_count = 1;
    return apply();
}

int screen_panes(const struct pane **panes)
{
    *panes = shown;
    return shown_count;
}

int screen_channel_at(int x, int y)
{
    for (int i = 0; i < shown_count; ++i) {
        const struct pane *pane = &shown[i];
        if (x >= pane->x && x < pane->x + pane->w && y >= pane->y && y < pane->y + pane->h)
            return pane->channel;
    }
    return -1;
}
