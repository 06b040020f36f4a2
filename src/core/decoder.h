/* decoder.h - decoder state beside the exported calls. */
#pragma once

#include <cstdint>

namespace nvrhal
{

/** How many decoder channels start-up asked for: N + 1. */
extern int32_t vdec_chnn;

} // namespace nvrhal
