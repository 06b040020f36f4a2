/* kept_out.h - tells whether the library refuses a camera's frames because something else has the screen. */
#pragma once

#include <atomic>
#include <cstdint>

#include "nvrhal.h"

namespace nvrec
{

inline uint32_t shared_word(uint32_t &word)
{
    return std::atomic_ref<uint32_t>(word).load(std::memory_order_relaxed);
}

inline bool is_kept_out_by_zoom(int channel)
{
    return shared_word(vo_for_ezoom) == 1 && shared_word(zoom_channel) != static_cast<uint32_t>(channel);
}

/** Whether recordings or the zoom of another camera have the screen: then refusals are no fault. */
inline bool is_kept_out(int channel)
{
    return shared_word(playback_status) == 1 || is_kept_out_by_zoom(channel);
}

} // namespace nvrec
