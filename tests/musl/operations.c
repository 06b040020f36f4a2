/* operations.c - see operations.h. Results stand among the calls, behind the calls that led to them. */
#include "operations.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "nvrhal.h"

enum { FRAME_BYTES = 1000, SOUND_BYTES = 4 + 2 * 320, TEXT_BYTES = 256 };

static const char *const media[] = {"MI_SYS_", "MI_HDMI_", "MI_VDEC_", "MI_DISP_", NULL};

static void note_number(const struct recording_below *below, const char *what, long long number)
{
    char text[32];
    snprintf(text, sizeof text, "%lld", number);
    below->note(what, text);
}

static void note_bytes(const struct recording_below *below, const char *what, const uint8_t *bytes,
                       size_t count)
{
    char text[2 * TEXT_BYTES + 1] = "";
    for (size_t i = 0; i < count && i < TEXT_BYTES; ++i)
        snprintf(text + 2 * i, 3, "%02x", bytes[i]);
    below->note(what, text);
}

static int start(int cameras)
{
    DeviceParams params;
    memset(&params, 0xA5, sizeof params);
    params.vi_chn_num = cameras;
    params.vo_dev_type = 0;
    params.gui_width = 1920;
    params.gui_height = 1080;
    return ext_device_init(&params);
}

static void started(const struct recording_below *below, int cameras)
{
    if (start(cameras) != 0) abort();
    below->forget();
}

static DispAttrib pane(uint16_t channel, uint16_t x, uint16_t y, uint16_t w, uint16_t h)
{
    DispAttrib attrib = {.bind_status = 1, .channel = channel, .x = x, .y = y, .w = w, .h = h};
    return attrib;
}

static void start_eight_cameras(const struct recording_below *below)
{
    below->node_is_absent("/dev/fb0");
    if (start(8) != 0) abort();
}

static void lay_four_of_eight_out(const struct recording_below *below)
{
    uint16_t width = 1920, height = 1080;
    g_vi_chn_num = 8;
    for (uint32_t channel = 0; channel <= 8; ++channel)
        vdec_open_chn(channel, &width, &height, 1, 1);
    below->forget();
    const DispAttrib panes[] = {pane(0, 0, 0, 960, 540), pane(1, 960, 0, 960, 540), pane(2, 0, 540, 960, 540),
                                pane(3, 960, 540, 960, 540)};
    if (ext_change_display_format(panes, 4) != 0) abort();
}

static void start_whole(const struct recording_below *below)
{
    note_number(below, "ext_device_init", start(2));
    note_number(below, "ext_gui_init", ext_gui_init());
}

static void start_without_a_decoder(const struct recording_below *below)
{
    below->fail("MI_VDEC_CreateChn", 2, -17);
    note_number(below, "ext_device_init", start(2));
}

static void show_live(const struct recording_below *below)
{
    uint8_t bytes[FRAME_BYTES] = {0, 0, 0, 1, 0x65};
    FrameInfo frame = {.frame_type = 1,
                       .media = FRAME_MEDIA_VIDEO,
                       .length = FRAME_BYTES,
                       .width = 1920,
                       .height = 1080,
                       .data = bytes,
                       .channel = 1,
                       .pts = 77};
    const DispAttrib panes[] = {pane(0, 0, 0, 960, 1080), pane(1, 960, 0, 960, 1080)};
    started(below, 2);
    note_number(below, "ext_change_display_format", ext_change_display_format(panes, 2));
    note_number(below, "ext_send_stream h265", ext_send_stream(&frame, 1, 0, 0));
    note_number(below, "ext_send_stream h264", ext_send_stream(&frame, 0, 0, 0));
    below->fail("MI_VDEC_SendStream", 1, -1);
    note_number(below, "ext_send_stream refused", ext_send_stream(&frame, 0, 0, 0));
    frame.length = 0;
    note_number(below, "ext_send_stream empty", ext_send_stream(&frame, 0, 0, 0));
    frame.media = FRAME_MEDIA_AUDIO;
    frame.length = SOUND_BYTES;
    note_number(below, "ext_set_audio_live_channel", ext_set_audio_live_channel(1, 1));
    note_number(below, "ext_send_stream sound", ext_send_stream(&frame, 0, 0, 0));
    note_number(below, "ext_vidoe_image_zoom", ext_vidoe_image_zoom(0, 480, 270, 960, 540));
    note_number(below, "ext_device_quit", ext_device_quit());
}

static void snap(const struct recording_below *below)
{
    FrameInfo frame = {.channel = 1};
    started(below, 2);
    note_number(below, "ext_set_snap_channel_enable", ext_set_snap_channel_enable());
    note_number(below, "ext_get_jpeg_stream", ext_get_jpeg_stream(&frame));
    if (frame.data) note_bytes(below, "JPEG", frame.data, frame.length);
    note_number(below, "ext_release_jpeg_buf", ext_release_jpeg_buf(&frame));
}

static void play_back(const struct recording_below *below)
{
    FrameInfo buffer = {.channel = 0};
    started(below, 2);
    note_number(below, "ext_playback_start", ext_playback_start(3, 0));
    note_number(below, "ext_playback_get_buf", ext_playback_get_buf(&buffer));
    buffer.frame_type = 1;
    buffer.media = FRAME_MEDIA_VIDEO;
    buffer.length = FRAME_BYTES;
    buffer.width = 1280;
    buffer.height = 720;
    if (buffer.data) memset(buffer.data, 0x5A, FRAME_BYTES);
    note_number(below, "ext_playback_set_buf", ext_playback_set_buf(&buffer));
    note_number(below, "ext_playback_stop", ext_playback_stop());
    note_number(below, "ext_playback_exit", ext_playback_exit());
}

static void store_and_fetch(const struct recording_below *below)
{
    uint8_t bytes[16] = "a stored frame";
    FrameInfo frame = {.frame_type = 1,
                       .media = FRAME_MEDIA_VIDEO,
                       .length = sizeof bytes,
                       .width = 640,
                       .height = 360,
                       .data = bytes,
                       .channel = 1,
                       .pts = 5};
    FrameInfo fetched = {0};
    started(below, 2);
    note_number(below, "ext_get_primary_video_stream", ext_get_primary_video_stream(1, &fetched));
    for (int i = 0; i < 16; ++i) /* a reader keeps its distance from the writer */
        note_number(below, "ext_set_primary_video_stream", ext_set_primary_video_stream(1, &frame));
    note_number(below, "ext_get_primary_video_stream", ext_get_primary_video_stream(1, &fetched));
    if (fetched.data) note_bytes(below, "frame", fetched.data, fetched.length);
}

static void drive_the_board(const struct recording_below *below)
{
    int32_t clock[9] = {0};
    uint32_t event[5] = {0};
    started(below, 2);
    note_number(below, "ext_buzzer_set", ext_buzzer_set(0));
    note_number(below, "ext_rtc_time_system", ext_rtc_time_system(clock, 0));
    note_number(below, "year", clock[5]);
    note_number(below, "ext_wdg_set", ext_wdg_set(1));
    note_number(below, "ext_wdg_set", ext_wdg_set(0));
    note_number(below, "ext_keyboard_initial", ext_keyboard_initial());
    note_number(below, "ext_keyboard_value", ext_keyboard_value(event));
    note_number(below, "ext_keyboard_close", ext_keyboard_close());
    note_number(below, "ext_set_audio_output_volume", ext_set_audio_output_volume(5));
    note_number(below, "ext_tde_begin_job", ext_tde_begin_job());
    drawRect(10, 20, 30, 40, 0x801F);
    note_number(below, "ext_tde_end_job", ext_tde_end_job());
}

static void convert_text(const struct recording_below *below)
{
    uint8_t out[TEXT_BYTES] = {0}, utf8[TEXT_BYTES] = {0};
    const uint8_t gb2312[] = {'A', 0xB0, 0xA1, 0xB0, 0xAE, 0};
    note_number(below, "FromGb2312ToUnicode", FromGb2312ToUnicode(gb2312, 5, out, sizeof out));
    note_bytes(below, "Unicode", out, 8);
    note_number(below, "UnicodeToUTF8", UnicodeToUTF8(out, utf8, sizeof utf8));
    note_bytes(below, "UTF-8", utf8, 7);
    memset(out, 0, sizeof out);
    note_number(below, "SimplifiedToTraditionalUTF8", SimplifiedToTraditionalUTF8("爱ABC座", (char *)out));
    note_bytes(below, "traditional", out, strlen((char *)out));
    note_number(below, "FromGb2312ToUnicode", FromGb2312ToUnicode(gb2312 + 1, 1, out, sizeof out));
}

static void write_code(const struct recording_below *below)
{
    char path[] = "/tmp/code-XXXXXX";
    const int descriptor = mkstemp(path);
    if (descriptor < 0) abort();
    close(descriptor);
    qrencode("0123456789abcdef", path);
    FILE *file = fopen(path, "rb");
    unsigned long long sum = 0xcbf29ce484222325u, size = 0;
    for (int byte; file && (byte = fgetc(file)) != EOF; ++size)
        sum = (sum ^ (unsigned)byte) * 0x100000001b3u;
    if (file) fclose(file);
    unlink(path);
    char text[48];
    snprintf(text, sizeof text, "%llu bytes, sum %llx", size, sum);
    below->note("code", text);
}

const struct operation operations[] = {
    {"start_up_8_cameras", media, 0, start_eight_cameras},
    {"layout_4_of_8", NULL, 0, lay_four_of_eight_out},
    {"operation_start", NULL, 1, start_whole},
    {"operation_start_fails", NULL, 1, start_without_a_decoder},
    {"operation_live", NULL, 1, show_live},
    {"operation_snapshot", NULL, 1, snap},
    {"operation_playback", NULL, 1, play_back},
    {"operation_streams", NULL, 1, store_and_fetch},
    {"operation_board", NULL, 1, drive_the_board},
    {"operation_text", NULL, 1, convert_text},
    {"operation_code", NULL, 1, write_code},
};
const size_t operation_count = sizeof operations / sizeof operations[0];

void hide_numbers(char *text)
{
    char *to = text;
    for (const char *from = text; *from; ++from) {
        const int is_digit = *from >= '0' && *from <= '9';
        if (!is_digit)
            *to++ = *from;
        else if (to == text || to[-1] != '#')
            *to++ = '#';
    }
    *to = '\0';
}
