/* snap_pipeline.h - what the pieces of a snapshot share. */
#pragma once

#include <cstdint>

#include "nvrhal.h"

namespace nvrhal
{

constexpr char kSnapSource[] = "snap.c";

constexpr uint32_t kSnapWidth = NVRHAL_SNAPSHOT_WIDTH;
constexpr uint32_t kSnapHeight = NVRHAL_SNAPSHOT_HEIGHT;
constexpr uint32_t kMacroblock = 16;

/** Scaler and encoder work on whole macroblocks. */
constexpr uint32_t whole_macroblocks(uint32_t pixels)
{
    return pixels & ~(kMacroblock - 1);
}
static_assert(whole_macroblocks(kSnapWidth) == kSnapWidth && whole_macroblocks(kSnapHeight) == kSnapHeight);

/** The snapshot's clock: microseconds since 1970-01-01 00:00 UTC. */
int64_t local_get_snapCurtime();

} // namespace nvrhal
