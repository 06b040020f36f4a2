/*
 * picture.c - an application outside the tree, in C: one H.265 frame, red on the left and blue on the right,
 * in one pane. usage: picture FILE.h265
 *
 * Exit status: 0 = the screen shows it, 2 = the file cannot be read, 3 = a call failed, 4 = the screen shows
 * something else.
 */
#include <stdio.h>

#include <nvrhal.h>
#include <vboard.h>

enum { WIDTH = 1920, HEIGHT = 1080 };

/* 'r', 'b', 'k' (black) or '?', at this place of the screen. */
static char colour_at(const vboard_image *image, unsigned x, unsigned y)
{
    const unsigned char *rgb = image->bytes + 3 * ((size_t)y * image->width + x);
    if (rgb[0] > 180 && rgb[1] < 80 && rgb[2] < 80) return 'r';
    if (rgb[2] > 180 && rgb[0] < 80 && rgb[1] < 80) return 'b';
    return rgb[0] < 32 && rgb[1] < 32 && rgb[2] < 32 ? 'k' : '?';
}

static int screen_is(char left, char right)
{
    vboard_image image;
    if (vboard_monitor_capture(VBOARD_FORMAT_RGB24, &image) != 0) return 0;
    char at_left = colour_at(&image, image.width / 4, image.height / 2);
    char at_right = colour_at(&image, image.width * 3 / 4, image.height / 2);
    vboard_image_free(&image);
    printf("picture: %c on the left, %c on the right\n", at_left, at_right);
    return at_left == left && at_right == right;
}

int main(int argc, char **argv)
{
    static unsigned char bytes[NVRHAL_MAX_SEND_BYTES];
    FILE *file = argc > 1 ? fopen(argv[1], "rb") : NULL;
    if (!file) return 2;
    FrameInfo frame = {
        .frame_type = 1, .media = FRAME_MEDIA_VIDEO, .data = bytes, .width = 640, .height = 360};
    frame.length = (unsigned)fread(bytes, 1, sizeof bytes, file);
    fclose(file);

    DeviceParams params = {.vi_chn_num = 1, .gui_width = WIDTH, .gui_height = HEIGHT};
    if (ext_device_init(&params) != 0) return 3;
    DispAttrib pane = {.bind_status = 1, .channel = 0, .w = WIDTH, .h = HEIGHT};
    if (ext_change_display_format(&pane, 1) != 0) return 3;
    if (!screen_is('k', 'k')) return 4;
    if (ext_send_stream(&frame, 1, 0, 0) != 0) return 3;
    if (vboard_display_wait_taken(0, 1, 1, 10000) != 0) return 3;
    int shown = screen_is('r', 'b');
    ext_device_quit();
    return shown ? 0 : 4;
}
