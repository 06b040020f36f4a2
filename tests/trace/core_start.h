/* core_start.h - start-up blocks and a running library for the trace tests of device and view. */
#pragma once

#include <cstring>

#include "nvrhal.h"
#include "recording_expect.h"

namespace core_test
{

/** Words that the library does not read are filled with a pattern. */
inline DeviceParams device_params(int32_t cameras, int32_t gui_width = 1920, int32_t gui_height = 1080)
{
    DeviceParams params;
    std::memset(&params, 0xA5, sizeof params);
    params.vi_chn_num = cameras;
    params.vo_dev_type = 0;
    params.gui_width = gui_width;
    params.gui_height = gui_height;
    return params;
}

/** Start the library and forget how it went. */
inline int32_t start_library(int32_t cameras, int32_t gui_width = 1920, int32_t gui_height = 1080)
{
    DeviceParams params = device_params(cameras, gui_width, gui_height);
    int32_t result = ext_device_init(&params);
    recording::platform.forget();
    return result;
}

/** The calls of bring-up and decoding, without those of the stages around them. */
inline std::string media_calls()
{
    return recording::platform.calls({"MI_SYS_", "MI_HDMI_", "MI_VDEC_", "MI_DISP_"});
}

} // namespace core_test
