/*
 * framebuffer_state.h - what the GUI's sources share about the framebuffer.
 *
 * g_osd_info (nvrhal.h) is written by fb_init on the start-up thread, its yoffset by
 * ext_tde_end_job on the GUI thread, and read by the painters on the GUI thread. There is no lock:
 * the application starts before it draws.
 */
#pragma once

#include "core/abi.h"
#include "nvrhal.h"

namespace nvrhal
{

constexpr char kFbSource[] = "fb.c";

/** "Not open" after a failure; before the first fb_init the word reads 0, which counts as open. */
constexpr int32_t kNoDescriptor = -1;

ABI32_AT(OsdInfo, mapped_address, 24);
ABI32_AT(OsdInfo, mapped_length, 36);
ABI32_AT(OsdInfo, descriptor, 40);
ABI32_AT(OsdInfo, path, 44);
ABI32_AT(OsdInfo, fixed, 68);
ABI32_AT(OsdInfo, variable, 136);
ABI32_SIZE(OsdInfo, 296);

} // namespace nvrhal
