/*
 * points_screen.c - what is seen: windows, their order, layers, zoom, hiding and clearing, bindings. All
 * need a capture hook or a person.
 */
#include <string.h>

#include "points.h"
#include "record.h"
#include "scene.h"

enum { DEV = 0, CH = 1, PORT = 2, IN = 3 /* pixels that count as well inside a window, or well outside */ };

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

static void window_is_seen(int x, int y, int width, int height, Colour inside, Colour outside,
                           const char *question)
{
    Spot spots[10];
    screen_shows(DEV, spots, frame_spots(spots, x, y, width, height, inside, outside), question);
}

static void need_one_playing(int x, int y, int width, int height, const TestStream *stream)
{
    need_display(DEV);
    need_port(DEV, PORT, x, y, width, height);
    need_playing(DEV, PORT, CH, stream);
}

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

/* ------------------------------------------------------------------------- port on, off, hidden --- */

POINT(port_off, "disp.disable-port.drops", "MI_DISP_DisableInputPort MI_DISP_EnableInputPort",
      "a disabled port is black, and after it is enabled shows nothing before a new picture comes")
{
    const Spot dark[] = {{300, 200, BLACK}}, red[] = {{300, 200, RED}}, green[] = {{300, 200, GREEN}};
    need_one_playing(100, 100, 400, 200, &red_h264);
    screen_shows(DEV, red, 1, "a red field at 100,100");
    wait_consumed(CH, 1000); /* a picture that is still decoded would be a new one */
    pause_ms(patient_ms(60));
    OK(MI_DISP_DisableInputPort(DEV, PORT));
    screen_shows(DEV, dark, 1, "the field is gone");
    OK(MI_DISP_EnableInputPort(DEV, PORT));
    screen_keeps(DEV, dark, 1, "the field stays away");
    need_played(CH, &green_h264, 0, 10);
    screen_shows(DEV, green, 1, "a green field at 100,100");
}

POINT(port_off_takes_none, "disp.disable-port.takes-none", "MI_DISP_DisableInputPort",
      "pictures that come while a port is disabled are dropped")
{
    const Spot dark[] = {{300, 200, BLACK}};
    need_one_playing(100, 100, 400, 200, &red_h264);
    NEED(MI_DISP_DisableInputPort(DEV, PORT));
    need_played(CH, &green_h264, 0, 10);
    wait_consumed(CH, 1000);
    pause_ms(patient_ms(60));
    NEED(MI_DISP_EnableInputPort(DEV, PORT));
    screen_keeps(DEV, dark, 1, "no field is seen");
}

POINT(port_hidden, "disp.hide-port.hides", "MI_DISP_HideInputPort", "a hidden port's window is not seen")
{
    const Spot dark[] = {{300, 200, BLACK}}, red[] = {{300, 200, RED}};
    need_one_playing(100, 100, 400, 200, &red_h264);
    screen_shows(DEV, red, 1, "a red field at 100,100");
    OK(MI_DISP_HideInputPort(DEV, PORT));
    screen_shows(DEV, dark, 1, "the field is hidden");
    need_played(CH, &green_h264, 0, 10);
    screen_keeps(DEV, dark, 1, "the field stays hidden");
}

POINT(port_shown, "disp.show-port.newest", "MI_DISP_ShowInputPort MI_DISP_HideInputPort",
      "a hidden port goes on taking pictures: shown again its newest one is seen at once")
{
    const Spot green[] = {{300, 200, GREEN}};
    need_one_playing(100, 100, 400, 200, &red_h264);
    wait_consumed(CH, 1000);
    NEED(MI_DISP_HideInputPort(DEV, PORT));
    need_played(CH, &green_h264, 0, 10);
    wait_consumed(CH, 1000);
    pause_ms(patient_ms(60));
    OK(MI_DISP_ShowInputPort(DEV, PORT));
    screen_shows(DEV, green, 1, "a green field at 100,100");
}

POINT(port_enable_hidden, "disp.enable-port.keeps-hidden", "MI_DISP_EnableInputPort MI_DISP_HideInputPort",
      "a hidden port that is enabled stays hidden")
{
    const Spot dark[] = {{300, 200, BLACK}};
    need_display(DEV);
    NEED(MI_DISP_HideInputPort(DEV, PORT));
    need_port(DEV, PORT, 100, 100, 400, 200);
    need_playing(DEV, PORT, CH, &red_h264);
    wait_consumed(CH, 1000);
    screen_keeps(DEV, dark, 1, "no field is seen");
}

POINT(port_clear, "disp.clear-port.all", "MI_DISP_ClearInputPortBuffer",
      "clearing all drops the picture on screen; the next one is seen again")
{
    const Spot dark[] = {{300, 200, BLACK}}, red[] = {{300, 200, RED}}, green[] = {{300, 200, GREEN}};
    need_one_playing(100, 100, 400, 200, &red_h264);
    screen_shows(DEV, red, 1, "a red field at 100,100");
    wait_consumed(CH, 1000);
    pause_ms(patient_ms(60));
    OK(MI_DISP_ClearInputPortBuffer(DEV, PORT, 1));
    screen_shows(DEV, dark, 1, "the field is gone");
    need_played(CH, &green_h264, 0, 10);
    screen_shows(DEV, green, 1, "a green field at 100,100");
}

POINT(port_clear_some, "disp.clear-port.waiting", "MI_DISP_ClearInputPortBuffer",
      "clearing what waits leaves the picture on screen")
{
    const Spot red[] = {{300, 200, RED}};
    need_one_playing(100, 100, 400, 200, &red_h264);
    screen_shows(DEV, red, 1, "a red field at 100,100");
    OK(MI_DISP_ClearInputPortBuffer(DEV, PORT, 0));
    screen_keeps(DEV, red, 1, "the red field stays");
}

POINT(port_clear_other, "disp.clear-port.only-this",
      "MI_DISP_ClearInputPortBuffer MI_DISP_DisableInputPort "
      "MI_DISP_HideInputPort",
      "clearing, hiding and disabling a port leave the others as they are")
{
    const Spot spots[] = {{150, 150, BLACK}, {450, 150, GREEN}, {750, 150, BLUE}};
    const TestStream *streams[] = {&red_h264, &green_h264, &blue_h264};
    need_display(DEV);
    for (uint32_t port = 0; port < 3; ++port) {
        need_port(DEV, port, 300 * (int)port, 0, 300, 300);
        need_playing(DEV, port, port, streams[port]);
    }
    const Spot all[] = {{150, 150, RED}, {450, 150, GREEN}, {750, 150, BLUE}};
    screen_shows(DEV, all, 3, "three fields: red, green, blue");
    OK(MI_DISP_ClearInputPortBuffer(DEV, 0, 1));
    screen_shows(DEV, spots, 3, "the red field is gone, green and blue are there");
    need_played(0, &red_h264, 0, 10);
    screen_shows(DEV, all, 3, "three fields again");
    OK(MI_DISP_HideInputPort(DEV, 0));
    screen_shows(DEV, spots, 3, "the red field is gone again");
    OK(MI_DISP_ShowInputPort(DEV, 0));
    OK(MI_DISP_DisableInputPort(DEV, 0));
    screen_shows(DEV, spots, 3, "the red field stays away");
}

POINT(old_picture, "vdec.stop.last-picture-stays", "MI_VDEC_StopChn MI_VDEC_DestroyChn",
      "the last picture stays on screen when its decoder is stopped and destroyed")
{
    const Spot red[] = {{300, 200, RED}};
    need_one_playing(100, 100, 400, 200, &red_h264);
    screen_shows(DEV, red, 1, "a red field at 100,100");
    NEED(MI_VDEC_StopChn(CH));
    screen_keeps(DEV, red, 1, "the red field stays");
    NEED(MI_VDEC_DestroyChn(CH));
    screen_keeps(DEV, red, 1, "the red field stays");
}

POINT(damage_stays, "vdec.decode.damage-keeps-picture", "MI_VDEC_SendStream",
      "the last good picture stays while damaged bytes come")
{
    static uint8_t noise[3000];
    const Spot red[] = {{300, 200, RED}, {120, 120, RED}, {480, 280, RED}};
    need_one_playing(100, 100, 400, 200, &red_h264);
    screen_shows(DEV, red, 3, "a red field at 100,100");
    for (size_t i = 0; i < sizeof noise; ++i)
        noise[i] = (uint8_t)(i * i / 5 + i * 29);
    const MI_VDEC_Stream send = {noise, sizeof noise, 0, 1, 0};
    OK(MI_VDEC_SendStream(CH, &send, SEND_MS));
    screen_keeps(DEV, red, 3, "the red field stays whole");
}

/* ---------------------------------------------------------------------------------------- zoom --- */

POINT(zoom_part, "disp.zoom.part", "MI_DISP_SetZoomInWindow",
      "the part of the source that the zoom window names fills the port's window; 0 x 0 is the whole")
{
    const MI_DISP_InputPortAttr attr = {{100, 100, 400, 300}, STREAM_WIDTH, STREAM_HEIGHT};
    const MI_Rect right_top = {STREAM_WIDTH / 2, 0, STREAM_WIDTH / 2, STREAM_HEIGHT / 2},
                  whole = {0, 0, 0, 0};
    Spot spots[4];
    need_one_playing(100, 100, 400, 300, &quad_h264);
    quad_spots(spots, 100, 100, 400, 300);
    NEED(MI_DISP_SetInputPortAttr(DEV, PORT, &attr));
    screen_shows(DEV, spots, 4, "four fields in a window at 100,100");
    OK(MI_DISP_SetZoomInWindow(DEV, PORT, &right_top));
    window_is_seen(100, 100, 400, 300, GREEN, BLACK, "the window is all green");
    OK(MI_DISP_SetZoomInWindow(DEV, PORT, &whole));
    screen_shows(DEV, spots, 4, "four fields again");
}

POINT(zoom_scaled, "disp.zoom.source-coordinates", "MI_DISP_SetZoomInWindow MI_DISP_SetInputPortAttr",
      "zoom coordinates are those of the source size that was set, whatever size the pictures have")
{
    const MI_DISP_InputPortAttr attr = {{100, 100, 400, 300}, 1920, 1080};
    const MI_Rect left_low = {0, 540, 960, 540};
    need_one_playing(100, 100, 400, 300, &quad_h264);
    NEED(MI_DISP_SetInputPortAttr(DEV, PORT, &attr));
    OK(MI_DISP_SetZoomInWindow(DEV, PORT, &left_low));
    window_is_seen(100, 100, 400, 300, BLUE, BLACK, "the window is all blue");
}

POINT(zoom_delivered, "disp.zoom.delivered-size", "MI_DISP_SetZoomInWindow",
      "with a source size of 0 x 0 zoom coordinates are those of the pictures as delivered")
{
    const MI_Rect right_low = {STREAM_WIDTH / 2, STREAM_HEIGHT / 2, STREAM_WIDTH / 2, STREAM_HEIGHT / 2};
    need_one_playing(100, 100, 400, 300, &quad_h264);
    OK(MI_DISP_SetZoomInWindow(DEV, PORT, &right_low));
    window_is_seen(100, 100, 400, 300, YELLOW, BLACK, "the window is all yellow");
}

POINT(zoom_stays, "disp.zoom.stays", "MI_DISP_SetZoomInWindow MI_DISP_SetInputPortAttr",
      "a zoom stays for the pictures that follow, and when the window is set anew")
{
    const MI_DISP_InputPortAttr before = {{100, 100, 400, 300}, STREAM_WIDTH, STREAM_HEIGHT};
    const MI_DISP_InputPortAttr after = {{500, 200, 300, 200}, STREAM_WIDTH, STREAM_HEIGHT};
    const MI_Rect left_top = {0, 0, STREAM_WIDTH / 2, STREAM_HEIGHT / 2};
    need_one_playing(100, 100, 400, 300, &quad_h264);
    NEED(MI_DISP_SetInputPortAttr(DEV, PORT, &before));
    OK(MI_DISP_SetZoomInWindow(DEV, PORT, &left_top));
    need_played(CH, &quad_h264, 0, 10);
    window_is_seen(100, 100, 400, 300, RED, BLACK, "the window is all red");
    OK(MI_DISP_SetInputPortAttr(DEV, PORT, &after));
    window_is_seen(500, 200, 300, 200, RED, BLACK, "the window has moved and is all red");
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
    &point_port_off,
    &point_port_off_takes_none,
    &point_port_hidden,
    &point_port_shown,
    &point_port_enable_hidden,
    &point_port_clear,
    &point_port_clear_some,
    &point_port_clear_other,
    &point_old_picture,
    &point_damage_stays,
    &point_zoom_part,
    &point_zoom_scaled,
    &point_zoom_delivered,
    &point_zoom_stays,
    NULL,
};
