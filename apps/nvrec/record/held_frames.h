/*
 * held_frames.h - the last seconds of a stream, kept in memory for an event that may come: whole
 * groups of pictures, bounded in time and in bytes. If a single group is larger than the bound, nothing is
 * held until the next key frame, since the rest of the group cannot be decoded without its beginning.
 *
 * Threads: one.
 */
#pragma once

#include <cstdint>
#include <deque>

#include "record/pool_reader.h"

namespace nvrec
{

class HeldFrames
{
public:
    explicit HeldFrames(uint64_t most_bytes) : most_bytes_(most_bytes) {}

    /**
     * Keep a frame, and drop groups at the front that the time does not need. The first frame is always a key
     * frame.
     */
    void add(PoolFrame frame, int64_t before_us);

    /** All of them, oldest first. */
    std::deque<PoolFrame> take();
    void clear();

    bool empty() const { return frames_.empty(); }
    uint64_t bytes() const { return bytes_; }

    /** Decoding time of the oldest one; only when it is not empty. */
    int64_t from_us() const { return frames_.front().dts_us; }
    int64_t until_wall_us() const { return frames_.back().taken_at_us; } /* likewise */
    int64_t span_us() const { return frames_.empty() ? 0 : frames_.back().dts_us - from_us(); }

private:
    void drop_first_group();

    const uint64_t most_bytes_;
    std::deque<PoolFrame> frames_;
    uint64_t bytes_ = 0;
};

} // namespace nvrec
