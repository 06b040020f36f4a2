/* decoder.h - decoder state and bindings beside the exported calls. */
#pragma once

#include <cstdint>

namespace nvrhal
{

/** How many decoder channels start-up asked for: N + 1. */
extern int32_t vdec_chnn;

/** Bind decoder `channel` to port `channel` of the main output. 0, or -1 after a message. */
int32_t bind_decoder(uint32_t channel);

} // namespace nvrhal
