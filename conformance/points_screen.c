/*
 * points_screen.c - what is seen: windows, their order, layers. All need a capture hook or a person.
 */
#include "one_window.h"
#include "points.h"

/* ------------------------------------------------------------------------------- the background --- */

POINT(background, "disp.enable.background-black", "MI_DISP_Enable",
      "where no window lies the screen is black")
{
    const Spot spots[] = {{4, 4, BLACK}, {640, 360, BLACK}, {1275, 715, BLACK}};
    need_display(DEV);
    screen_shows(DEV, spots, 3, "the whole screen is black");
}

POINT(background_colour, "disp.set-pub-attr.background", "MI_DISP_SetPubAttr",
      "a background of 0x00VVYYUU is seen where no window lies")
{
    /* V 240, Y 81, U 90 is red. */
    const MI_DISP_PubAttr attr = {0x00F0515Au, MI_DISP_INTERFACE_VGA_HDMI, SCREEN_TIMING, 0};
    const Spot spots[] = {{4, 4, RED}, {640, 360, RED}};
    need_display(DEV);
    NEED(MI_DISP_SetPubAttr(DEV, &attr));
    screen_shows(DEV, spots, 2, "the whole screen is red");
}

POINT(disable_dark, "disp.disable.dark", "MI_DISP_Disable MI_DISP_Enable",
      "a disabled device shows nothing; enabled again it shows its pictures")
{
    const Spot dark[] = {{640, 360, BLACK}}, light[] = {{640, 360, CYAN}};
    need_one_playing(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT, &cyan_h264);
    screen_shows(DEV, light, 1, "the screen is cyan");
    OK(MI_DISP_Disable(DEV));
    screen_shows(DEV, dark, 1, "the screen is dark");
    OK(MI_DISP_Enable(DEV));
    screen_shows(DEV, light, 1, "the screen is cyan again");
}

POINT(other_device, "disp.enable.own-picture", "MI_SYS_BindChnPort MI_DISP_BindVideoLayer",
      "what is bound to one device is not seen on another one")
{
    const Spot none[] = {{640, 360, BLACK}}, some[] = {{640, 360, RED}};
    const MI_DISP_PubAttr pub = {0, MI_DISP_INTERFACE_VGA_HDMI, SCREEN_TIMING, 0};
    const MI_DISP_VideoLayerAttr layer = {
        {0, 0, SCREEN_WIDTH, SCREEN_HEIGHT}, SCREEN_WIDTH, SCREEN_HEIGHT, MI_PIXEL_YUV420_LAYER, 0};
    need_one_playing(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT, &red_h264);
    NEED(MI_DISP_SetPubAttr(2, &pub));
    NEED(MI_DISP_Enable(2));
    NEED(MI_DISP_BindVideoLayer(3, 2));
    NEED(MI_DISP_SetVideoLayerAttr(3, &layer));
    NEED(MI_DISP_EnableVideoLayer(3));
    need_port(2, PORT, 0, 0, SCREEN_WIDTH, SCREEN_HEIGHT);
    screen_shows(DEV, some, 1, "the main output is red");
    screen_keeps(2, none, 1, "the further output stays black");
    const MI_SYS_ChnPort source = decoder_end(CH + 1), sink = display_end(2, PORT);
    const Spot green[] = {{640, 360, GREEN}};
    need_decoder(CH + 1, &green_h264);
    need_bound(&source, &sink);
    need_played(CH + 1, &green_h264, 0, 10);
    screen_shows(2, green, 1, "the further output is green");
    screen_shows(DEV, some, 1, "the main output is red still");
}

/* ------------------------------------------------------------------------------------- windows --- */

POINT(window_place, "disp.window.place",
      "MI_DISP_SetInputPortAttr MI_DISP_EnableInputPort MI_SYS_BindChnPort",
      "a picture fills its window, neither less nor more")
{
    need_one_playing(200, 100, 400, 300, &red_h264);
    window_is_seen(200, 100, 400, 300, RED, BLACK, "a red field of 400 x 300 at 200,100 on black");
}

POINT(window_whole, "disp.window.whole-picture", "MI_DISP_SetInputPortAttr",
      "the whole picture is seen in a window of another shape, upright and not mirrored")
{
    Spot spots[4];
    need_one_playing(100, 80, 1000, 200, &quad_h264);
    quad_spots(spots, 100, 80, 1000, 200);
    screen_shows(DEV, spots, 4, "four fields: red, green above blue, yellow");
    const Spot edges[] = {{100 + 500 - 10, 90, RED}, {100 + 500 + 10, 90, GREEN}, {110, 80 + 100 + 8, BLUE}};
    screen_shows(DEV, edges, 3, "the four fields meet in the middle of their window");
}

POINT(window_full, "disp.window.full-screen", "MI_DISP_SetInputPortAttr",
      "a window as large as the layer fills the screen")
{
    const Spot spots[] = {{2, 2, GREEN}, {1277, 2, GREEN}, {2, 717, GREEN}, {1277, 717, GREEN}};
    need_one_playing(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT, &green_h264);
    screen_shows(DEV, spots, 4, "the whole screen is green, into its corners");
}

POINT(window_moves, "disp.window.moves", "MI_DISP_SetInputPortAttr",
      "a window that is set anew takes its picture along, without a new one coming")
{
    const MI_DISP_InputPortAttr there = {{700, 400, 300, 200}, 0, 0};
    need_one_playing(100, 100, 300, 200, &yellow_h264);
    window_is_seen(100, 100, 300, 200, YELLOW, BLACK, "a yellow field at 100,100");
    OK(MI_DISP_SetInputPortAttr(DEV, PORT, &there));
    window_is_seen(700, 400, 300, 200, YELLOW, BLACK, "the yellow field has moved to 700,400");
    const Spot old[] = {{250, 200, BLACK}};
    screen_shows(DEV, old, 1, "where the field was before is black");
}

POINT(window_empty, "disp.window.empty", "MI_DISP_SetInputPortAttr", "a window of 0 x 0 is seen nowhere")
{
    const MI_DISP_InputPortAttr nowhere = {{0, 0, 0, 0}, 0, 0};
    const Spot dark[] = {{250, 200, BLACK}, {4, 4, BLACK}};
    need_one_playing(100, 100, 300, 200, &yellow_h264);
    window_is_seen(100, 100, 300, 200, YELLOW, BLACK, "a yellow field at 100,100");
    OK(MI_DISP_SetInputPortAttr(DEV, PORT, &nowhere));
    screen_shows(DEV, dark, 2, "the yellow field is gone");
}

POINT(window_sixteen, "disp.window.sixteen",
      "MI_DISP_SetInputPortAttr MI_DISP_EnableInputPort MI_SYS_BindChnPort",
      "each of the sixteen ports shows its channel in its own window")
{
    const TestStream *streams[] = {&red_h264,    &green_h264, &blue_h264,
                                   &yellow_h264, &cyan_h264,  &magenta_h264};
    static const Colour colours[] = {RED, GREEN, BLUE, YELLOW, CYAN, MAGENTA};
    Spot spots[MI_DISP_INPUT_PORTS];
    need_display(DEV);
    for (uint32_t port = 0; port < MI_DISP_INPUT_PORTS; ++port) {
        const int x = (int)(port % 4) * 320, y = (int)(port / 4) * 180;
        const uint32_t which = (port * 5 + port / 4) % 6;
        need_port(DEV, port, x, y, 320, 180);
        need_playing(DEV, port, port, streams[which]);
        spots[port] = (Spot){x + 160, y + 90, colours[which]};
    }
    screen_shows(DEV, spots, MI_DISP_INPUT_PORTS, "sixteen fields of six colours, none black");
}

POINT(window_order, "disp.window.later-port-above", "MI_DISP_EnableInputPort",
      "where windows overlap the port with the higher number is above, whichever came last")
{
    need_display(DEV);
    need_port(DEV, 5, 200, 100, 400, 300);
    need_port(DEV, 4, 100, 50, 400, 300);
    need_playing(DEV, 5, 1, &red_h264);
    need_playing(DEV, 4, 2, &blue_h264);
    const Spot spots[] = {{300, 200, RED}, {150, 75, BLUE}, {550, 380, RED}};
    screen_shows(DEV, spots, 3, "a red field covers the corner of a blue one");
    need_played(2, &blue_h264, 0, 10);
    screen_keeps(DEV, spots, 3, "the red field stays above");
}

POINT(window_layer_scale, "disp.layer-attr.scales", "MI_DISP_SetVideoLayerAttr",
      "the ports of a layer that is smaller than its window are scaled with it")
{
    const MI_DISP_VideoLayerAttr attr = {
        {0, 0, SCREEN_WIDTH, SCREEN_HEIGHT}, SCREEN_WIDTH / 2, SCREEN_HEIGHT / 2, MI_PIXEL_YUV420_LAYER, 0};
    need_display(DEV);
    NEED(MI_DISP_SetVideoLayerAttr(0, &attr));
    need_port(DEV, PORT, 100, 50, 200, 100);
    need_playing(DEV, PORT, CH, &red_h264);
    window_is_seen(200, 100, 400, 200, RED, BLACK, "a red field of 400 x 200 at 200,100");
}

POINT(layer_window, "disp.layer-attr.window", "MI_DISP_SetVideoLayerAttr",
      "a layer lies where its window says, and its ports with it")
{
    const MI_DISP_VideoLayerAttr attr = {{320, 180, 640, 360}, 640, 360, MI_PIXEL_YUV420_LAYER, 0};
    need_display(DEV);
    NEED(MI_DISP_SetVideoLayerAttr(0, &attr));
    need_port(DEV, PORT, 100, 50, 200, 100);
    need_playing(DEV, PORT, CH, &red_h264);
    window_is_seen(420, 230, 200, 100, RED, BLACK, "a red field of 200 x 100 at 420,230");
}

POINT(layer_off, "disp.disable-layer.dark", "MI_DISP_DisableVideoLayer MI_DISP_EnableVideoLayer",
      "a disabled layer is not seen; enabled again it shows the newest picture")
{
    const Spot dark[] = {{640, 360, BLACK}}, red[] = {{640, 360, RED}}, green[] = {{640, 360, GREEN}};
    need_one_playing(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT, &red_h264);
    screen_shows(DEV, red, 1, "the screen is red");
    OK(MI_DISP_DisableVideoLayer(0));
    screen_shows(DEV, dark, 1, "the screen is black");
    need_played(CH, &green_h264, 0, 10);
    screen_keeps(DEV, dark, 1, "the screen stays black");
    OK(MI_DISP_EnableVideoLayer(0));
    screen_shows(DEV, green, 1, "the screen is green");
}

/* Layer 1 with a port of device 1, over a red screen. */
static void need_pip(int x, int y, int width, int height, const TestStream *stream)
{
    const MI_DISP_VideoLayerAttr attr = {{(uint16_t)x, (uint16_t)y, (uint16_t)width, (uint16_t)height},
                                         (uint32_t)width,
                                         (uint32_t)height,
                                         MI_PIXEL_YUV420_LAYER,
                                         0};
    NEED(MI_DISP_BindVideoLayer(1, DEV));
    NEED(MI_DISP_SetVideoLayerAttr(1, &attr));
    NEED(MI_DISP_EnableVideoLayer(1));
    need_port(1, 0, 0, 0, width, height);
    need_playing(1, 0, CH + 1, stream);
}

POINT(layer_order, "disp.layer.one-above-zero", "MI_DISP_BindVideoLayer MI_DISP_EnableVideoLayer",
      "layer 1, the picture in picture, lies over layer 0 with the ports of device 1")
{
    need_one_playing(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT, &red_h264);
    need_pip(800, 400, 320, 200, &blue_h264);
    window_is_seen(800, 400, 320, 200, BLUE, RED, "a small blue field at 800,400 over the red screen");
    need_played(CH, &red_h264, 0, 10);
    window_is_seen(800, 400, 320, 200, BLUE, RED, "the small field stays above");
}

POINT(layer_pip_off, "disp.layer.one-off", "MI_DISP_DisableVideoLayer MI_DISP_UnBindVideoLayer",
      "the picture in picture goes when its layer is disabled, and comes back when it is put on again")
{
    const Spot red[] = {{960, 500, RED}}, blue[] = {{960, 500, BLUE}};
    need_one_playing(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT, &red_h264);
    need_pip(800, 400, 320, 200, &blue_h264);
    screen_shows(DEV, blue, 1, "a small blue field at 800,400");
    OK(MI_DISP_DisableVideoLayer(1));
    screen_shows(DEV, red, 1, "the small field is gone");
    OK(MI_DISP_UnBindVideoLayer(1, DEV));
    OK(MI_DISP_BindVideoLayer(1, DEV));
    OK(MI_DISP_EnableVideoLayer(1));
    screen_shows(DEV, blue, 1, "the small blue field is back");
}

const Point *const screen_points[] = {
    &point_background,
    &point_background_colour,
    &point_disable_dark,
    &point_other_device,
    &point_window_place,
    &point_window_whole,
    &point_window_full,
    &point_window_moves,
    &point_window_empty,
    &point_window_sixteen,
    &point_window_order,
    &point_window_layer_scale,
    &point_layer_window,
    &point_layer_off,
    &point_layer_order,
    &point_layer_pip_off,
    NULL,
};
