/* frame_pools.h - the library's frame pools as its start-up makes them, without the rest of it. For tests. */
#pragma once

#include <algorithm>

#include <gtest/gtest.h>

#include "nvrhal.h"

/** Make a pool for so many cameras. @param pool  one of STREAM_POOL_... */
inline void begin_frame_pool(int32_t pool, int cameras)
{
    constexpr StreamRingSizes kMain = {NVRHAL_MAIN_FRAME_BYTES, NVRHAL_MAIN_RING_BYTES,
                                       NVRHAL_MAIN_RING_FRAMES};
    constexpr StreamRingSizes kSub = {NVRHAL_SUB_FRAME_BYTES, NVRHAL_SUB_RING_BYTES, NVRHAL_SUB_RING_FRAMES};
    constexpr StreamRingSizes kAudio = {NVRHAL_AUDIO_FRAME_BYTES, NVRHAL_AUDIO_RING_BYTES,
                                        NVRHAL_AUDIO_RING_FRAMES};
    g_vi_chn_num = cameras;
    StreamPoolConfig config = {};
    config.channel_count = std::min(cameras, NVRHAL_STORED_CHANNELS);
    for (StreamRingSizes &sizes : config.channels)
        sizes = pool == STREAM_POOL_MAIN ? kMain : pool == STREAM_POOL_SUB ? kSub : kAudio;
    ASSERT_EQ(kx_stream_init_avstream(&config, pool), 0);
}
