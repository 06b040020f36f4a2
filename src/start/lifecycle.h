/* lifecycle.h - the internal stages of start-up. UI thread. */
#pragma once

#include <cstdint>

#include "nvrhal.h"

namespace nvrhal
{

/** Run the whole start-up sequence on a parameter block. 0 or -1; nothing is rolled back. */
int32_t sdk_init(const DeviceParams *params);

/** Display, HDMI and framebuffer for the GUI. 0 or -1. */
int32_t vo_start_init();

/** Probe the framebuffer devices for a boot logo's layers. 0. */
uint32_t close_logo();

/** Start the media system and its clock. The argument is unused. 0, or 1 on any failure. */
uint32_t ST_Sys_Init(const void *arg);

} // namespace nvrhal
