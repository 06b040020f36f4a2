/* shown_channels.cpp - see shown_channels.h. */
#include "camera/shown_channels.h"

#include <atomic>

#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr uint8_t kAllShown = 255; /* of cur_display_chnn */
constexpr uint32_t kWithoutBit = ~((1u << NVRHAL_MASK_CHANNELS) - 1);

std::atomic<uint32_t> shown = UINT32_MAX; /* bit n = channel n; all until the first layout */

template <typename Word> Word read_shared(Word &word)
{
    return std::atomic_ref<Word>(word).load(std::memory_order_relaxed);
}

} // namespace

void note_shown_channels(uint32_t channels)
{
    shown.store(channels, std::memory_order_relaxed);
}

void open_library_mask()
{
    if ((shown.load(std::memory_order_relaxed) & kWithoutBit) == 0) return;
    std::atomic_ref<uint8_t>(cur_display_chnn).store(kAllShown, std::memory_order_relaxed);
}

/* A snapshot needs the decoder of a hidden camera, and during playback the library refuses frames itself. */
bool is_held_back(int channel)
{
    if (read_shared(cur_display_chnn) != kAllShown || read_shared(playback_status) == 1) return false;
    if ((shown.load(std::memory_order_relaxed) >> channel & 1) != 0) return false;
    return read_shared(cur_snap_chnn) != channel;
}

bool is_decoded(int channel)
{
    const uint8_t mask = read_shared(cur_display_chnn);
    if (mask == kAllShown) return (shown.load(std::memory_order_relaxed) >> channel & 1) != 0;
    return channel < NVRHAL_MASK_CHANNELS && (mask >> channel & 1) != 0;
}

} // namespace nvrec
