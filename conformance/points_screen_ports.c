/*
 * points_screen_ports.c - what is seen of ports that are off, hidden, cleared or zoomed. All need a capture
 * hook or a person.
 */
#include "one_window.h"
#include "points.h"

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

const Point *const screen_port_points[] = {
    &point_port_off,        &point_port_off_takes_none, &point_port_hidden,
    &point_port_shown,      &point_port_enable_hidden,  &point_port_clear,
    &point_port_clear_some, &point_port_clear_other,    &point_old_picture,
    &point_damage_stays,    &point_zoom_part,           &point_zoom_scaled,
    &point_zoom_delivered,  &point_zoom_stays,          NULL,
};
