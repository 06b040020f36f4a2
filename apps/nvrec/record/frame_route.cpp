/* frame_route.cpp - see frame_route.h. */
#include "record/frame_route.h"

#include "archive/time_of_day.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

/* Four seconds of a camera of 16 Mbit/s with key frames of up to 4 MB; two of one of 4 Mbit/s. */
constexpr uint64_t kMainQueue_bytes = 8u << 20;
constexpr uint64_t kNetworkQueue_bytes = 1u << 20;

} // namespace

FrameRoute::FrameRoute(int channel, PoolStream stream, PoolEvent &event)
    : pool_limit_bytes_(stream == PoolStream::kMain ? NVRHAL_MAIN_FRAME_BYTES : NVRHAL_SUB_FRAME_BYTES),
      queue_(stream == PoolStream::kMain ? kMainQueue_bytes : kNetworkQueue_bytes, event),
      beside_(channel >= NVRHAL_STORED_CHANNELS)
{
    if (!beside_) pool_.emplace(channel, stream, event);
}

int32_t FrameRoute::put(const AccessUnit &unit, const StreamFacts &facts, int64_t wall_us)
{
    if (!beside_ && unit.bytes.size() > pool_limit_bytes_) {
        too_large_bytes_ = unit.bytes.size();
        beside_ = true;
    }
    if (!beside_) return pool_->put(unit, facts, wall_us);
    PoolFrame frame;
    frame.bytes = unit.bytes;
    frame.key = unit.key;
    frame.pts_us = unit.pts_us;
    frame.dts_us = unit.due_us;
    frame.taken_at_us = wall_us != 0 ? wall_us : wall_now_us();
    frame.facts = facts;
    frame.arrived_us = Clock::now().time_since_epoch().count();
    frame.clock_ahead_us = wall_ahead_us();
    return queue_.put(std::move(frame));
}

/* All frames in the pool are older than those in the queue. */
bool FrameRoute::take(PoolFrame *frame)
{
    if (pool_ && pool_->take(frame)) return true;
    if (queue_.empty()) return false;
    return (pool_ && pool_->take(frame)) || queue_.take(frame);
}

void FrameRoute::wait_for_reader()
{
    if (beside_)
        queue_.wait_for_reader();
    else
        pool_->wait_for_reader();
}

void FrameRoute::give_up()
{
    if (pool_) pool_->give_up();
    queue_.give_up();
}

PoolCounters FrameRoute::counters() const
{
    PoolCounters sum = queue_.counters();
    if (!pool_) return sum;
    const PoolCounters pool = pool_->counters();
    sum.stored += pool.stored;
    sum.refused += pool.refused;
    sum.read += pool.read;
    sum.lost += pool.lost;
    sum.resynchronised += pool.resynchronised;
    return sum;
}

} // namespace nvrec
