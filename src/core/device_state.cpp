/* The settings that start-up derives from the parameter block. */
#include "core/device_state.h"
#include "core/abi.h"

ABI_SIZE(DeviceParams, 1068);
ABI_AT(DeviceParams, net_video_size, 516);
ABI_AT(DeviceParams, vi_chn_num, 1028);
ABI_AT(DeviceParams, vo_dev_type, 1040);
ABI_AT(DeviceParams, gui_width, 1052);
ABI_AT(DeviceParams, gui_height, 1056);

ABI_SIZE(StreamAttr, 52);
ABI_AT(StreamAttr, size_class, 16);
ABI_AT(StreamAttr, width, 20);
ABI_AT(StreamAttr, height, 24);
ABI_AT(StreamAttr, frame_rate, 28);
ABI_AT(StreamAttr, quality_1, 32);
ABI_AT(StreamAttr, encode_mode, 36);
ABI_AT(StreamAttr, format, 48);

ABI32_SIZE(FrameInfo, 60);
ABI_AT(FrameInfo, media, 4);
ABI_AT(FrameInfo, length, 8);
ABI_AT(FrameInfo, width, 12);
ABI_AT(FrameInfo, height, 16);
ABI32_AT(FrameInfo, data, 20);
ABI32_AT(FrameInfo, channel, 24);
ABI32_AT(FrameInfo, stream_id, 28);
ABI32_AT(FrameInfo, display_rate, 32);
ABI32_AT(FrameInfo, local_time, 44);
ABI32_AT(FrameInfo, pts, 52);

// Written by start-up and the output-device switch; read everywhere.
DeviceParams DdvrInputParam;
int32_t g_vi_chn_num = 8;
int32_t globalVoDev;
uint32_t enNorm_vga = 4; // 1920 x 1080 at 60 Hz

// Written by start-up, by every video frame (size) and by the quality setters; read by the analog
// front end, motion areas and format reports.
StreamAttr major_stream[NVRHAL_MAX_DECODERS];
StreamAttr minor_stream[NVRHAL_MAX_CAMERAS];

// Written by start-up only.
uint32_t nvrhal::global_format_e;
uint32_t nvrhal::globalFrmRate;
uint32_t nvrhal::global_videofomat;
