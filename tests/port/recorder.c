/*
 * recorder.c - a recorder's first steps over whatever platform the library stands on: start, a layout of four
 * cameras, frames, sound, a snapshot, keys, the buzzer and the clock. It looks at no picture.
 */
#include <stdio.h>
#include <string.h>
#include <time.h>

#include "nvrhal.h"

enum { kCameras = 4, kFrameBytes = 20000, kFrames = 10, kCodecH265 = 1 };

static int failures;

#define EXPECT(condition)                                                                                    \
    do {                                                                                                     \
        if (condition) break;                                                                                \
        fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition);                                      \
        ++failures;                                                                                          \
    } while (0)

/* As much of a key frame as a chip looks at that decodes nothing: start code, header, first slice. */
static unsigned char key_frame[kFrameBytes] = {0, 0, 0, 1, 0x26, 0x01, 0xAF};

static void pause_ms(long milliseconds)
{
    const struct timespec rest = {milliseconds / 1000, milliseconds % 1000 * 1000000};
    nanosleep(&rest, NULL);
}

static volatile int ends;

static void *feed(void *argument)
{
    (void)argument;
    while (!ends) {
        for (uint32_t channel = 0; channel < kCameras; ++channel) {
            FrameInfo frame = {0};
            frame.channel = channel;
            frame.media = FRAME_MEDIA_VIDEO;
            frame.width = 640;
            frame.height = 360;
            frame.length = sizeof key_frame;
            frame.data = key_frame;
            EXPECT(ext_send_stream(&frame, kCodecH265, 0, 0) == 0);
        }
        pause_ms(40);
    }
    return NULL;
}

static void lay_out(void)
{
    DispAttrib panes[kCameras] = {{0}};
    for (int i = 0; i < kCameras; ++i) {
        panes[i].bind_status = 1;
        panes[i].channel = (uint16_t)i;
        panes[i].x = (uint16_t)(i % 2 * 960);
        panes[i].y = (uint16_t)(i / 2 * 540);
        panes[i].w = 960;
        panes[i].h = 540;
    }
    EXPECT(ext_change_display_format(panes, kCameras) == 0);
}

static void take_snapshot(void)
{
    FrameInfo picture = {0};
    picture.channel = 2;
    ext_set_snap_channel_enable();
    EXPECT(ext_get_jpeg_stream(&picture) == 0);
    const unsigned char *bytes = picture.data;
    EXPECT(bytes != NULL && picture.length > 500 && bytes[0] == 0xFF && bytes[1] == 0xD8);
    EXPECT(picture.width == 352 && picture.height == 288);
    if (bytes != NULL) ext_release_jpeg_buf(&picture);
}

static void play_sound(void)
{
    static unsigned char block[4 + 320];
    FrameInfo frame = {0};
    memset(block, 0xD5, sizeof block); /* silence */
    frame.media = FRAME_MEDIA_AUDIO;
    frame.length = sizeof block;
    frame.data = block;
    struct timespec before, after;
    clock_gettime(CLOCK_MONOTONIC, &before);
    for (int i = 0; i < 20; ++i) /* 800 ms of sound */
        EXPECT(ext_send_stream(&frame, 0, 0, 0) == 0);
    clock_gettime(CLOCK_MONOTONIC, &after);
    EXPECT((after.tv_sec - before.tv_sec) * 1000 + (after.tv_nsec - before.tv_nsec) / 1000000 >= 250);
    EXPECT(ext_set_audio_output_volume(50) == 0);
}

static void touch_peripherals(void)
{
    int32_t set[9] = {30, 20, 10, 24, 12, 2026, 0, 0, 0}, read[9] = {0};
    EXPECT(ext_rtc_time_system(set, 1) == 0);
    EXPECT(ext_rtc_time_system(read, 0) == 0);
    EXPECT(read[5] == 2026 && read[4] == 12 && read[3] == 24 && read[2] == 10 && read[1] == 20);
    EXPECT(ext_buzzer_set(1) == 0);
    EXPECT(ext_buzzer_set(0) == 0);
    uint32_t lost[2] = {1, 1};
    EXPECT(ext_get_video_loss_status(lost) == 0 && lost[0] == 0);
    uint32_t info[6] = {0};
    ext_get_fb_info(0, info);
    EXPECT(info[0] == 1920 && info[1] == 1080 && info[2] >= 1920 * 2 && info[4] != 0);
    EXPECT(ext_tde_begin_job() == 0 && ext_tde_end_job() == 0);
}

int main(void)
{
    static DeviceParams params;
    params.vi_chn_num = kCameras;
    params.gui_width = 1920;
    params.gui_height = 1080;
    EXPECT(ext_device_init(&params) == 0);
    if (failures != 0) return 1;
    lay_out();
    pthread_t feeder;
    if (pthread_create(&feeder, NULL, feed, NULL) != 0) return 1;
    take_snapshot();
    play_sound();
    touch_peripherals();
    ends = 1;
    pthread_join(feeder, NULL);
    ext_device_quit();
    fprintf(stderr, "%d failures\n", failures);
    return failures != 0;
}
