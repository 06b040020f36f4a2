/*
 * ir_codes.h - infrared codes to key codes.
 *
 * Two readers, two tables in one: the remote-key reader and the local IR reader know partly
 * different buttons and partly different keys for the same button. Key codes are letters and signs
 * of ASCII, 84 'T' to 121 'y'.
 */
#pragma once

#include <cstdint>

#include "nvrhal.h"

namespace nvrhal
{

constexpr uint32_t kNoKey = 0;               // the reader does not know the code
constexpr uint32_t kZoomKey = KEY_CODE_ZOOM; // the key that the zoom gate treats on its own
constexpr uint32_t kUnknownKey =
    KEY_CODE_UNKNOWN; // what the local reader reports for a code it does not know

/** The remote-key reader's key for a code, or kNoKey. */
uint32_t remote_key(uint32_t ir_code);

/** The local IR reader's key for a code, or kNoKey. */
uint32_t local_key(uint32_t ir_code);

} // namespace nvrhal
