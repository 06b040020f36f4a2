/* one_window.c - see one_window.h. */
#include "one_window.h"

#include <string.h>

enum { IN = 3 /* pixels that count as well inside a window, or well outside */ };

/* Just inside and just outside the four sides of a window with one colour on black. */
static int frame_spots(Spot *spots, int x, int y, int width, int height, Colour inside, Colour outside)
{
    const int right = x + width - 1, bottom = y + height - 1, cx = x + width / 2, cy = y + height / 2;
    const Spot wanted[] = {
        {x + IN, cy, inside},     {right - IN, cy, inside},
        {cx, y + IN, inside},     {cx, bottom - IN, inside},
        {x - IN, cy, outside},    {right + IN, cy, outside},
        {cx, y - IN, outside},    {cx, bottom + IN, outside},
        {x + IN, y + IN, inside}, {right - IN, bottom - IN, inside},
    };
    memcpy(spots, wanted, sizeof wanted);
    return (int)(sizeof wanted / sizeof *wanted);
}

void window_is_seen(int x, int y, int width, int height, Colour inside, Colour outside, const char *question)
{
    Spot spots[10];
    screen_shows(DEV, spots, frame_spots(spots, x, y, width, height, inside, outside), question);
}

void need_one_playing(int x, int y, int width, int height, const TestStream *stream)
{
    need_display(DEV);
    need_port(DEV, PORT, x, y, width, height);
    need_playing(DEV, PORT, CH, stream);
}
