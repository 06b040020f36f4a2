/* held_frames.cpp - see held_frames.h. */
#include "record/held_frames.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace nvrec
{

void HeldFrames::add(PoolFrame frame, int64_t before_us)
{
    if (frame.after_gap) clear(); /* a file must not begin with a group that has a hole */
    if (frames_.empty() && !frame.key) return;
    const int64_t needed_from_us = frame.dts_us - before_us;
    bytes_ += frame.bytes.size();
    frames_.push_back(std::move(frame));
    while (!frames_.empty()) {
        const auto second = std::find_if(std::next(frames_.begin()), frames_.end(),
                                         [](const PoolFrame &other) { return other.key; });
        const bool is_outdated = second != frames_.end() && second->dts_us <= needed_from_us;
        if (bytes_ <= most_bytes_ && !is_outdated) return;
        drop_first_group();
    }
}

void HeldFrames::drop_first_group()
{
    do {
        bytes_ -= frames_.front().bytes.size();
        frames_.pop_front();
    } while (!frames_.empty() && !frames_.front().key);
}

std::deque<PoolFrame> HeldFrames::take()
{
    bytes_ = 0;
    return std::exchange(frames_, {});
}

void HeldFrames::clear()
{
    take();
}

} // namespace nvrec
