/* packet_queue.cpp - see packet_queue.h. */
#include "record/packet_queue.h"

#include <utility>

namespace nvrec
{
namespace
{

constexpr size_t kFramesLeft = 4; /* that may wait when a producer may too */
constexpr auto kLongestWait = std::chrono::seconds(1);

} // namespace

int32_t PacketQueue::put(PoolFrame frame)
{
    {
        const std::scoped_lock guard(lock_);
        const uint64_t bytes = frame.bytes.size();
        if (bytes == 0 || bytes > largest_frame_bytes()) {
            ++counters_.refused;
            /* Note that a frame is missing behind those that wait. */
            missing_before_next_ = true;
            return -1;
        }
        while (waiting_bytes_ + bytes > most_bytes_)
            lose_oldest();
        frame.after_gap = std::exchange(missing_before_next_, false);
        waiting_bytes_ += bytes;
        frames_.push_back(std::move(frame));
        ++counters_.stored;
    }
    event_.set();
    return 0;
}

bool PacketQueue::take(PoolFrame *frame)
{
    const std::scoped_lock guard(lock_);
    while (!frames_.empty()) {
        gap_ = gap_ || frames_.front().after_gap;
        if (gap_ && !frames_.front().key) {
            lose_oldest(); /* nothing of it can be shown without the frames before it */
            continue;
        }
        *frame = std::move(frames_.front());
        frames_.pop_front();
        waiting_bytes_ -= frame->bytes.size();
        ++counters_.read;
        counters_.resynchronised += gap_;
        frame->after_gap = std::exchange(gap_, false);
        reader_came_.notify();
        return true;
    }
    return false;
}

bool PacketQueue::empty() const
{
    const std::scoped_lock guard(lock_);
    return frames_.empty();
}

void PacketQueue::lose_oldest()
{
    waiting_bytes_ -= frames_.front().bytes.size();
    frames_.pop_front();
    ++counters_.lost;
    gap_ = true;
}

void PacketQueue::wait_for_reader()
{
    std::unique_lock guard(lock_);
    reader_came_.wait_for(guard, kLongestWait, [this] { return gave_up_ || frames_.size() < kFramesLeft; });
}

void PacketQueue::give_up()
{
    const std::scoped_lock guard(lock_);
    gave_up_ = true;
    while (!frames_.empty())
        lose_oldest();
    reader_came_.notify();
}

PoolCounters PacketQueue::counters() const
{
    const std::scoped_lock guard(lock_);
    return counters_;
}

} // namespace nvrec
