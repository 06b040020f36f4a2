/*
 * packet_queue.h - a stream of one channel in memory, for what has no place in the frame pools: the
 * channels from 8 on, frames that are too large for a pool, and sound as the camera sends it.
 *
 *   camera: put()  ----->  [ frames, bounded in bytes ]  ----->  recorder: take()
 *
 * It behaves as the pools do. It never makes a camera wait: when it is full, its oldest frames are
 * overwritten and count as lost, and pictures are then skipped up to the next key frame. A frame that would
 * fill half of it is refused and counted.
 *
 * Threads: put() on one thread, take() on one other.
 */
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>

#include "record/pool_reader.h"

namespace nvrec
{

class PacketQueue
{
public:
    PacketQueue(uint64_t most_bytes, PoolEvent &event) : most_bytes_(most_bytes), event_(event) {}

    /** @return 0 = stored, -1 = refused */
    int32_t put(PoolFrame frame);

    /** Take the next frame out. @return false when there is none now. */
    bool take(PoolFrame *frame);
    bool empty() const;

    /** As PoolReader has them. */
    void wait_for_reader();
    void give_up();
    PoolCounters counters() const;

    uint64_t largest_frame_bytes() const { return most_bytes_ / 2; }

private:
    void lose_oldest();

    const uint64_t most_bytes_;
    PoolEvent &event_;

    mutable std::mutex lock_; /* guards what follows */
    Condition reader_came_;
    std::deque<PoolFrame> frames_;
    uint64_t waiting_bytes_ = 0;
    bool gap_ = false;                 /* the next frame taken comes after missing ones */
    bool missing_before_next_ = false; /* the frame before the next one was refused     */
    bool gave_up_ = false;
    PoolCounters counters_;
};

} // namespace nvrec
