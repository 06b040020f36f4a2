/*
 * Picture and stream settings that applications make and that have no effect on this hardware. They
 * take anything and answer 0.
 */
#include "nvrhal.h"

#define NOOP(name)                                                                                           \
    int name(...)                                                                                            \
    {                                                                                                        \
        return 0;                                                                                            \
    }

NOOP(ext_vo_buffer_clear1)
NOOP(ext_get_video_md_alarm)
NOOP(ext_change_local_frame_quality)
NOOP(ext_change_net_frame_rate)
NOOP(ext_change_default_rate)
NOOP(ext_change_net_frame_quality)
NOOP(ext_change_local_frame_rate)
NOOP(ext_exchang_vga_hd_color)
NOOP(ext_change_qcif_channel)
NOOP(ext_change_local_video_size)
NOOP(ext_set_video_brightness)
NOOP(ext_set_video_hue)
NOOP(ext_set_video_contrast)
NOOP(ext_set_video_saturation)
NOOP(ext_change_spot_display)
