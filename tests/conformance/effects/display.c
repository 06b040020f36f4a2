/* display.c - display devices, layers and ports. */
#include <string.h>

#include "effect.h"
#include "mi_disp.h"

/* Decoder 0 on port 0 in a window of 640 x 360, with a white picture. */
static void show_white(void)
{
    start_display();
    open_window(0, 0, 0, 0, 640, 360);
    start_decoder(0);
    NEED(bind(0, 0, 0) == MI_SUCCESS);
    send_and_settle(0, picture(kWhite, kWhite));
    NEED(shows(100, 100, kWhite));
}

static int window_lies_where_it_was_set(void)
{
    start_display();
    const MI_DISP_InputPortAttr set = {.window = {104, 106, 202, 150}};
    MI_DISP_InputPortAttr got = {0};
    NEED(MI_DISP_SetInputPortAttr(0, 0, &set) == MI_SUCCESS);
    NEED(MI_DISP_GetInputPortAttr(0, 0, &got) == MI_SUCCESS);
    return memcmp(&got.window, &set.window, sizeof got.window) == 0;
}

static int window_outside_is_refused(void)
{
    start_display();
    const MI_DISP_InputPortAttr outside = {.window = {1900, 0, 100, 100}};
    return MI_DISP_SetInputPortAttr(0, 0, &outside) == MI_ERROR(MI_MODULE_DISP, MI_REASON_BAD_VALUE);
}

static int hidden_port_takes_pictures(void)
{
    show_white();
    NEED(MI_DISP_HideInputPort(0, 0) == MI_SUCCESS);
    send_and_settle(0, picture(kGrey, kGrey));
    NEED(MI_DISP_ShowInputPort(0, 0) == MI_SUCCESS);
    return shows(100, 100, kGrey);
}

static int clear_takes_picture_off(void)
{
    show_white();
    NEED(MI_DISP_ClearInputPortBuffer(0, 0, 1) == MI_SUCCESS);
    return shows(100, 100, 0);
}

static int layer_1_lies_over_layer_0(void)
{
    show_white();
    const MI_DISP_VideoLayerAttr over = {{0, 0, 320, 180}, 320, 180, MI_PIXEL_YUV420_LAYER, 0};
    NEED(MI_DISP_BindVideoLayer(1, 0) == MI_SUCCESS);
    NEED(MI_DISP_SetVideoLayerAttr(1, &over) == MI_SUCCESS);
    NEED(MI_DISP_EnableVideoLayer(1) == MI_SUCCESS);
    open_window(1, 0, 0, 0, 320, 180);
    start_decoder(1);
    NEED(bind(1, 1, 0) == MI_SUCCESS);
    send_and_settle(1, picture(kGrey, kGrey));
    return shows(100, 100, kGrey);
}

static int zoom_speaks_source_coordinates(void)
{
    start_display();
    open_window(0, 0, 0, 0, 640, 360);
    start_decoder(0);
    NEED(bind(0, 0, 0) == MI_SUCCESS);
    send_and_settle(0, picture(kWhite, kGrey));
    const MI_DISP_InputPortAttr attr = {
        .window = {0, 0, 640, 360}, .source_width = 10 * kSide, .source_height = 10 * kSide};
    const MI_Rect in_left_half = {2 * kSide, 0, 3 * kSide, 10 * kSide};
    NEED(MI_DISP_SetInputPortAttr(0, 0, &attr) == MI_SUCCESS);
    NEED(shows(100, 100, kWhite) && shows(500, 100, kGrey));
    NEED(MI_DISP_SetZoomInWindow(0, 0, &in_left_half) == MI_SUCCESS);
    return shows(100, 100, kWhite) && shows(500, 100, kWhite);
}

static int last_port_is_there(void)
{
    start_display();
    return MI_DISP_EnableInputPort(0, MI_DISP_INPUT_PORTS - 1) == MI_SUCCESS;
}

static int running_device_takes_rate(void)
{
    start_display();
    MI_DISP_PubAttr attr;
    NEED(MI_DISP_GetPubAttr(0, &attr) == MI_SUCCESS);
    attr.frame_rate = 30;
    return MI_DISP_SetPubAttr(0, &attr) == MI_SUCCESS;
}

const Effect display_effects[] = {
    {"disp_window_rounded_16", window_lies_where_it_was_set},
    {"disp_window_outside_accepted", window_outside_is_refused},
    {"disp_hide_stops_taking", hidden_port_takes_pictures},
    {"disp_clear_keeps_screen", clear_takes_picture_off},
    {"disp_layer_1_below", layer_1_lies_over_layer_0},
    {"disp_zoom_in_picture_pixels", zoom_speaks_source_coordinates},
    {"disp_last_port_missing", last_port_is_there},
    {"disp_rate_needs_stop", running_device_takes_rate},
    {NULL, NULL},
};
