/*
 * main.c - a small network video recorder: live view, recording, playback, zoom, snapshots, sound,
 * keys, mouse and GUI, on nvrhal.h alone.
 *
 *   recorder DIRECTORY CAMERA... [SECONDS:WHAT...]
 *
 * DIRECTORY takes recordings, snapshots and the log. CAMERA is the file of a stand-in: see camera.h.
 * SECONDS:WHAT, on a PC only, is what happens to the board meanwhile: see virtual_board.h.
 *
 * Threads: this one does all that concerns the screen (layouts, zoom, snapshots, GUI, entering and
 * leaving playback) and takes keys and mouse; every camera, every recording, the sound, a running
 * playback and the readers of panel, mouse and remote control have one each.
 */
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

#include "camera.h"
#include "controls.h"
#include "gui.h"
#include "log.h"
#include "nvrhal.h"
#include "peripherals.h"
#include "playback.h"
#include "recording.h"
#include "screen.h"
#include "snapshot.h"
#include "sound.h"
#include "virtual_board.h"
#include "zoom.h"

#define TURN_PERIOD_US 20000

static struct camera cameras[NVRHAL_STORED_CHANNELS];
static struct recording recordings[NVRHAL_STORED_CHANNELS];
static int camera_count;
static int selected, enlarged = -1; /* channels; -1 = the grid */
static const char *directory;
static int snapshots;
static volatile sig_atomic_t asked_to_end;

static void on_signal(int number)
{
    (void)number;
    asked_to_end = 1;
}

static void lay_out(void)
{
    const bool done = enlarged >= 0 ? screen_show_single(enlarged) : screen_show_grid(camera_count);
    if (!done) fputs("recorder: the layout was refused; the log says why\n", stderr);
    gui_draw_panes(selected);
}

/* [start] */
static bool start(void)
{
    DeviceParams params = {
        .vi_chn_num = camera_count, .gui_width = SCREEN_WIDTH, .gui_height = SCREEN_HEIGHT};
    if (ext_device_init(&params) != 0) return false;
    snapshot_allow();
    gui_start();
    /* Every decoder gets its camera's codec with the first frame. Only then the layout, which binds the
       decoders as they are by then and sets the size they deliver. */
    for (int i = 0; i < camera_count; ++i)
        if (!camera_prime(&cameras[i]))
            fprintf(stderr, "recorder: camera %d: its first frame was refused\n", i);
    lay_out();
    controls_start();
    peripherals_start();
    sound_set_volume(67); /* 0 dB */
    sound_start(selected);
    for (int i = 0; i < camera_count; ++i) {
        if (!camera_start(&cameras[i]) || !recording_start(&recordings[i], &cameras[i], directory))
            fprintf(stderr, "recorder: camera %d is not recorded\n", i);
    }
    return true;
}
/* [/start] */

/* [stop] */
static void stop(void)
{
    playback_end();
    zoom_end();
    sound_stop();
    for (int i = 0; i < camera_count; ++i)
        camera_stop(&cameras[i]);
    for (int i = 0; i < camera_count; ++i)
        recording_stop(&recordings[i]);
    peripherals_stop(); /* the lamp needs the panel, which the next line closes */
    controls_stop();
    ext_device_quit();
}
/* [/stop] */

static void select_channel(int channel)
{
    if (channel < 0 || channel >= camera_count || channel == selected) return;
    selected = channel;
    sound_listen_to(channel);
    gui_draw_panes(selected);
}

static void back_to_cameras(void)
{
    playback_end();
    lay_out();
    sound_pause(false);
}

static void play_selected(void)
{
    const struct recording *recording = &recordings[selected];
    if (zoom_is_on()) zoom_end();
    sound_pause(true);
    if (playback_begin(recording->video_path, recording->sound_path, &cameras[0]))
        gui_draw_panes(-1);
    else
        back_to_cameras();
}

static void take_snapshot(void)
{
    char path[512];
    snprintf(path, sizeof path, "%s/snapshot%d.jpg", directory, snapshots++);
    if (!snapshot_take(selected, cameras[selected].video.codec, camera_count, path))
        fprintf(stderr, "recorder: no snapshot of camera %d\n", selected);
}

static void toggle_zoom(void)
{
    if (!zoom_is_on()) {
        enlarged = selected;
        if (zoom_begin(selected)) gui_draw_panes(-1);
        return;
    }
    zoom_end();
    enlarged = -1;
    lay_out();
}

static void on_key(uint32_t pressed)
{
    const int right = (pressed == KEY_CODE_RIGHT) - (pressed == KEY_CODE_LEFT),
              down = (pressed == KEY_CODE_DOWN) - (pressed == KEY_CODE_UP);
    if (pressed == KEY_CODE_SNAPSHOT) {
        take_snapshot();
    } else if (playback_is_on()) { /* the recording has the keys */
        if (pressed == KEY_CODE_PAUSE || pressed == KEY_CODE_PLAY)
            playback_pause(pressed == KEY_CODE_PAUSE && !playback_is_paused());
        if (pressed == KEY_CODE_STOP) back_to_cameras();
    } else if (pressed == KEY_CODE_PLAY) {
        play_selected();
    } else if (pressed == KEY_CODE_ZOOM) {
        toggle_zoom();
    } else if (zoom_is_on()) { /* and so has the zoom */
        zoom_move(right, down);
    } else if (pressed == KEY_CODE_ENTER) {
        enlarged = enlarged < 0 ? selected : -1;
        lay_out();
    } else if (right != 0 || down != 0) {
        const int side = camera_count > 4 ? 3 : camera_count > 1 ? 2 : 1;
        select_channel(selected + right + down * side);
    }
}

static void on_mouse(const MouseRecord *event)
{
    static uint32_t down_before;
    const uint32_t pressed = event->buttons & ~down_before;
    down_before = event->buttons;
    gui_move_cursor(event->x, event->y);
    if ((pressed & MOUSE_LEFT_DOWN) != 0 && !playback_is_on() && !zoom_is_on())
        select_channel(screen_channel_at(event->x, event->y));
}

static void draw_clock(void)
{
    static int shown = -1;
    const time_t now = time(NULL);
    struct tm local;
    localtime_r(&now, &local);
    if (local.tm_sec == shown) return;
    shown = local.tm_sec;
    gui_draw_clock(local.tm_hour, local.tm_min, local.tm_sec);
}

/* [turns] */
static void run(void)
{
    MouseRecord event;
    while (!asked_to_end) {
        for (uint32_t pressed; (pressed = controls_next_key()) != NO_KEY;)
            on_key(pressed);
        while (controls_next_mouse_event(&event))
            on_mouse(&event);
        if (playback_has_ended()) back_to_cameras();
        draw_clock();
        peripherals_turn(cameras, camera_count);
        if (!virtual_board_turn()) break; /* on a board: nothing */
        sleep_until_us(now_us() + TURN_PERIOD_US);
    }
}
/* [/turns] */

static bool read_arguments(int argc, char **argv)
{
    if (argc < 3) return false;
    directory = argv[1];
    for (int i = 2; i < argc; ++i) {
        if (argv[i][0] >= '0' && argv[i][0] <= '9' && strchr(argv[i], ':')) {
            if (!virtual_board_order(argv[i])) return false;
        } else if (camera_count == NVRHAL_STORED_CHANNELS ||
                   !camera_open(&cameras[camera_count], camera_count, argv[i])) {
            fprintf(stderr, "recorder: cannot open \"%s\"\n", argv[i]);
            return false;
        } else {
            ++camera_count;
        }
    }
    return camera_count > 0;
}

int main(int argc, char **argv)
{
    char log_path[512];
    if (!read_arguments(argc, argv)) {
        fputs("usage: recorder DIRECTORY CAMERA... [SECONDS:WHAT...]\n", stderr);
        return 2;
    }
    snprintf(log_path, sizeof log_path, "%s/library.log", directory);
    if (!log_to_file(log_path)) return 2;
    struct sigaction action = {.sa_handler = on_signal};
    sigaction(SIGINT, &action, NULL);
    sigaction(SIGTERM, &action, NULL);
    if (!start()) {
        fprintf(stderr, "recorder: the library did not start; %s says why\n", log_path);
        return 1;
    }
    run();
    stop();
    return 0;
}
