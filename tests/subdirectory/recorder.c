/* A recorder of another project, in C: start, one empty pane, stop. */
#include "nvrhal.h"

int main(void)
{
    DeviceParams params = {.vi_chn_num = 1, .gui_width = 1920, .gui_height = 1080};
    if (ext_device_init(&params) != 0) return 1;

    DispAttrib pane = {.bind_status = 1, .channel = 0, .w = 1920, .h = 1080};
    int32_t laid_out = ext_change_display_format(&pane, 1);
    ext_device_quit();
    return laid_out == 0 ? 0 : 2;
}
