/* minimal.c - a recorder in twenty lines: one camera, one frame, one pane. usage: minimal FILE.h265 */
#include <stdio.h>
#include <stdlib.h>

#include "nvrhal.h"
#include "vboard.h" /* the PC's board */

int main(int argc, char **argv)
{
    static unsigned char bytes[NVRHAL_MAX_SEND_BYTES]; /* the largest frame that ext_send_stream takes */
    FILE *file = argc > 1 ? fopen(argv[1], "rb") : NULL;
    if (!file) return 2;

    DeviceParams params = {.vi_chn_num = 1, .gui_width = 1920, .gui_height = 1080};
    if (ext_device_init(&params) != 0) return 1;

    DispAttrib pane = {.bind_status = 1, .channel = 0, .w = 1920, .h = 1080};
    if (ext_change_display_format(&pane, 1) != 0) return 1;

    FrameInfo frame = {
        .frame_type = 1, .media = FRAME_MEDIA_VIDEO, .data = bytes, .width = 640, .height = 360};
    frame.length = (unsigned)fread(bytes, 1, sizeof bytes, file);
    fclose(file);
    int32_t sent = ext_send_stream(&frame, NVRHAL_CODEC_H265, 0, 0); /* the link was not measured */
    vboard_monitor_save_settled("screen.png", 5000);                 /* the PC's board */

    ext_device_quit();
    return sent == 0 ? 0 : 1;
}
