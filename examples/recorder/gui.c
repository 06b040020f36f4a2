/*
 * gui.c - see gui.h.
 *
 * The framebuffer lies over the video: 16 bits a pixel, 1-5-5-5, the highest bit alpha. A pixel of 0
 * shows the video. Black is the colour key, and so shows the video too: what is to look black is drawn
 * one step above it. Solid areas are drawn with drawRect, everything else by writing pixels. What is
 * drawn appears between ext_tde_begin_job and ext_tde_end_job.
 */
#include "gui.h"

#include <string.h>

#include "nvrhal.h"
#include "screen.h"

#define SEE_THROUGH       0x00000000u /* of drawRect: 0xAARRGGBB */
#define WHITE             0xFFF8F8F8u
#define YELLOW            0xFFF8F800u
#define ALMOST_BLACK      0xFF080808u
#define BORDER            4  /* pixels */
#define FORMAT_1555       6  /* of getFBColorFmt */
#define CURSOR_SIDE       32 /* MOUSE_IMAGE_WIDTH and MOUSE_IMAGE_HEIGHT */
#define CURSOR_BACKGROUND 0x001F
#define OPAQUE_BIT        0x8000

#define DIGIT_WIDTH  20
#define DIGIT_HEIGHT 36
#define STROKE       4
#define DIGIT_STEP   28
#define CLOCK_X      (SCREEN_WIDTH - 8 * DIGIT_STEP - 16)
#define CLOCK_Y      16

static bool there;
static int clock_numbers[3] = {-1}; /* hours, minutes, seconds as drawn last */
static int cursor_x, cursor_y;
static bool cursor_drawn;
static uint16_t under_cursor[CURSOR_SIDE][CURSOR_SIDE];

/* [pixel] */
static uint16_t *pixel_at(int x, int y)
{
    uint8_t *memory = g_osd_info.mapped_address;
    const size_t row = (size_t)y + g_osd_info.variable.yoffset;
    return (uint16_t *)(void *)(memory + row * g_osd_info.fixed.line_length) + x +
           g_osd_info.variable.xoffset;
}
/* [/pixel] */

/* The pixels under the cursor, or the cursor over them, as far as they lie on the screen. */
static void each_cursor_pixel(void (*apply)(uint16_t *pixel, int column, int row))
{
    for (int row = 0; row < CURSOR_SIDE && cursor_y + row < SCREEN_HEIGHT; ++row)
        for (int column = 0; column < CURSOR_SIDE && cursor_x + column < SCREEN_WIDTH; ++column)
            apply(pixel_at(cursor_x + column, cursor_y + row), column, row);
}

static void save_pixel(uint16_t *pixel, int column, int row)
{
    under_cursor[row][column] = *pixel;
}

static void restore_pixel(uint16_t *pixel, int column, int row)
{
    *pixel = under_cursor[row][column];
}

static void draw_cursor_pixel(uint16_t *pixel, int column, int row)
{
    const uint16_t colour = CurseValue[row * CURSOR_SIDE + column];
    if (colour != CURSOR_BACKGROUND) *pixel = colour | OPAQUE_BIT;
}

/* Every job lifts the cursor first and puts it back last, so that nothing is drawn over it. */
static bool begin(void)
{
    if (!there || ext_tde_begin_job() != 0) return false;
    if (cursor_drawn) each_cursor_pixel(restore_pixel);
    return true;
}

static void end(void)
{
    if (cursor_drawn) {
        each_cursor_pixel(save_pixel);
        each_cursor_pixel(draw_cursor_pixel);
    }
    ext_tde_end_job();
}

bool gui_start(void)
{
    there = g_osd_info.mapped_address && getFBColorFmt(&g_osd_info.variable) == FORMAT_1555;
    return there;
}

/* Seven strokes: top, upper left, upper right, middle, lower left, lower right, bottom. */
static void draw_digit(int x, int y, int digit)
{
    static const uint8_t strokes[10] = {0x77, 0x24, 0x5D, 0x6D, 0x2E, 0x6B, 0x7B, 0x25, 0x7F, 0x6F};
    static const struct {
        int x, y, w, h;
    } places[7] = {{0, 0, DIGIT_WIDTH, STROKE},
                   {0, 0, STROKE, DIGIT_HEIGHT / 2},
                   {DIGIT_WIDTH - STROKE, 0, STROKE, DIGIT_HEIGHT / 2},
                   {0, DIGIT_HEIGHT / 2 - STROKE / 2, DIGIT_WIDTH, STROKE},
                   {0, DIGIT_HEIGHT / 2, STROKE, DIGIT_HEIGHT / 2},
                   {DIGIT_WIDTH - STROKE, DIGIT_HEIGHT / 2, STROKE, DIGIT_HEIGHT / 2},
                   {0, DIGIT_HEIGHT - STROKE, DIGIT_WIDTH, STROKE}};
    for (int i = 0; i < 7; ++i)
        if (strokes[digit] >> i & 1)
            drawRect(x + places[i].x, y + places[i].y, places[i].w, places[i].h, WHITE);
}

static void draw_clock(void)
{
    if (clock_numbers[0] < 0) return; /* nobody has told the time yet */
    drawRect(CLOCK_X - 8, CLOCK_Y - 8, 8 * DIGIT_STEP + 8, DIGIT_HEIGHT + 16, ALMOST_BLACK);
    for (int i = 0; i < 3; ++i) {
        const int x = CLOCK_X + i * 3 * DIGIT_STEP;
        draw_digit(x, CLOCK_Y, clock_numbers[i] / 10 % 10);
        draw_digit(x + DIGIT_STEP, CLOCK_Y, clock_numbers[i] % 10);
        if (i == 2) break;
        drawRect(x + 2 * DIGIT_STEP + 8, CLOCK_Y + 10, STROKE, STROKE, WHITE);
        drawRect(x + 2 * DIGIT_STEP + 8, CLOCK_Y + 22, STROKE, STROKE, WHITE);
    }
}

void gui_draw_clock(int hours, int minutes, int seconds)
{
    clock_numbers[0] = hours;
    clock_numbers[1] = minutes;
    clock_numbers[2] = seconds;
    if (!begin()) return;
    draw_clock();
    end();
}

/* [panes] */
void gui_draw_panes(int selected_channel)
{
    const struct pane *panes;
    const int count = screen_panes(&panes);
    if (!begin()) return;
    drawRect(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT, SEE_THROUGH);
    for (int i = 0; i < count; ++i) {
        const struct pane *pane = &panes[i];
        const uint32_t colour = pane->channel == selected_channel ? YELLOW : WHITE;
        drawRect(pane->x, pane->y, pane->w, BORDER, colour);
        drawRect(pane->x, pane->y + pane->h - BORDER, pane->w, BORDER, colour);
        drawRect(pane->x, pane->y, BORDER, pane->h, colour);
        drawRect(pane->x + pane->w - BORDER, pane->y, BORDER, pane->h, colour);
    }
    draw_clock();
    end();
}
/* [/panes] */

void gui_move_cursor(int x, int y)
{
    if (x < 0 || y < 0 || x >= SCREEN_WIDTH || y >= SCREEN_HEIGHT || !begin()) return;
    cursor_x = x;
    cursor_y = y;
    cursor_drawn = true;
    end();
}
