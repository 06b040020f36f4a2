/*
 * trace_program.cpp - one calling thread, a stepped clock and a trace: start-up, a layout, frames,
 * sound, the plug, keys and the mouse. usage: trace_program TRACE
 */
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "playback_session.h"
#include "vboard_devices.h"
#include "wall_session.h"

namespace
{

void must(bool held, const char *what)
{
    if (held) return;
    fprintf(stderr, "trace_program: %s\n", what);
    exit(1);
}

void send_sound()
{
    unsigned char block[324] = {0, 1, 160, 0};
    for (size_t i = 4; i < sizeof block; ++i)
        block[i] = static_cast<unsigned char>(i);
    FrameInfo frame = {};
    frame.frame_type = 1;
    frame.media = FRAME_MEDIA_AUDIO;
    frame.data = block;
    frame.length = sizeof block;
    must(ext_send_stream(&frame, 1, 0, 0) == 0, "sound");
}

void touch_everything()
{
    const int mouse = g_mouse_fd;
    vboard_mouse_move(100 + mouse, 200);
    vboard_mouse_buttons(1);
    vboard_mouse_wheel(-1);
    vboard_panel_press_named("menu");
    vboard_ir_press_named("enter");
    vboard_monitor_unplug();
    must(vboard_monitor_wait_events(rig::kPatience_ms) == 0, "unplugged");
    vboard_monitor_plug();
    must(vboard_monitor_wait_events(rig::kPatience_ms) == 0, "plugged in");
}

} // namespace

int main(int argc, char **argv)
{
    must(argc == 2, "usage: trace_program TRACE");
    must(vboard_clock_take_at(1000000, 1700000000000000) == 0, "clock");
    must(vboard_trace_start(argv[1]) == 0, "trace");
    {
        const session::HurriedClock steps;
        DeviceParams params = {};
        params.vi_chn_num = 2;
        params.gui_width = session::kWallWidth;
        params.gui_height = session::kWallHeight;
        must(ext_device_init(&params) == 0, "start");
        const DispAttrib panes[] = {wall::pane(0, wall::grid_place(2, 0)),
                                    wall::pane(1, wall::grid_place(2, 1))};
        must(ext_change_display_format(panes, 2) == 0, "layout");
        const rig::Stream stream = rig::load_stream("wall_1_h265");
        for (const rig::Bytes &frame : stream.frames) {
            must(session::send_live(1, frame, session::kH265) == 0, "frame");
            session::settle(1);
        }
        send_sound();
        touch_everything();
        ext_device_quit();
    }
    vboard_trace_stop();
    return 0;
}
