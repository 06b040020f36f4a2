/*
 * frame_route.h - one stream of one channel from the camera's thread to its recording: through the library's
 * frame pool if that has a place for it, else through a packet queue.
 *
 *   channels 0 to 7, frames that fit   put -> pool  ----+
 *                                                       +--> take
 *   channels from 8 on; and a stream from its first     |
 *   frame on that is too large for the pool  -> queue --+
 *
 * A stream that has gone over to the queue stays there. Its key frames are too large for the pool, and
 * without key frames the reader of a pool could not go on after it was overrun.
 *
 * Threads: put() on one thread, take() on one other, the rest on any.
 */
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

#include "record/packet_queue.h"
#include "record/pool_reader.h"

namespace nvrec
{

class FrameRoute
{
public:
    /** @param stream  kMain or kNetwork */
    FrameRoute(int channel, PoolStream stream, PoolEvent &event);

    /**
     * @param wall_us  time of day of the picture; 0 = now
     * @return 0 = stored, -1 = refused
     */
    int32_t put(const AccessUnit &unit, const StreamFacts &facts, int64_t wall_us = 0);

    bool take(PoolFrame *frame);
    void wait_for_reader();
    void give_up();

    /** Of both ways together. */
    PoolCounters counters() const;

    bool beside_the_pool() const { return beside_; }

    /** Size of the frame that was too large for the pool, once; 0 = none was, or it was told. */
    uint64_t take_too_large_bytes() { return too_large_bytes_.exchange(0); }
    uint32_t pool_limit_bytes() const { return pool_limit_bytes_; }

private:
    const uint32_t pool_limit_bytes_;
    std::optional<PoolReader> pool_;
    PacketQueue queue_;
    std::atomic<bool> beside_;
    std::atomic<uint64_t> too_large_bytes_ = 0;
};

} // namespace nvrec
