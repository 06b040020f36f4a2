/* See stores.h. */
#include "stores.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace bench_pool
{

PoolStore::PoolStore(int readers) : readers_(static_cast<size_t>(std::max(1, readers)))
{
    StreamPoolConfig config{};
    config.channel_count = 1;
    config.channels[0] = kRing;
    static const bool is_ready = kx_stream_init_avstream(&config, STREAM_POOL_MAIN) == 0;
    if (!is_ready) std::abort();
    for (StreamReader &reader : readers_)
        if (kx_stream_getLastPos(0, &reader, STREAM_POOL_MAIN) != 0) std::abort();
    frame_.frame_type = 1;
    frame_.piece_count = 1;
}

void PoolStore::write(const uint8_t *bytes, uint32_t length)
{
    frame_.piece_lengths[0] = length;
    frame_.pieces[0] = bytes;
    if (kx_stream_sendFrameToPool(&frame_, STREAM_POOL_MAIN) != 0) std::abort();
}

uint32_t PoolStore::take(int reader)
{
    return static_cast<uint32_t>(
        kx_stream_getOneFrame(0, 0, &readers_[static_cast<size_t>(reader)], STREAM_POOL_MAIN));
}

void PlainCopy::write(const uint8_t *bytes, uint32_t length)
{
    if (static_cast<uint32_t>(kRing.data_size) - position_ < length) position_ = 0;
    std::memcpy(ring_ + position_, bytes, length);
    position_ += length;
}

QueueStore::QueueStore(int readers)
{
    for (int i = 0; i < std::max(1, readers); ++i)
        queues_.push_back(std::make_unique<Queue>());
}

void QueueStore::write(const uint8_t *bytes, uint32_t length)
{
    for (const std::unique_ptr<Queue> &queue : queues_) {
        std::vector<uint8_t> frame(bytes, bytes + length); // copied outside the lock
        std::lock_guard lock(queue->mutex);
        queue->frames.push_back(std::move(frame));
        for (queue->bytes += length; queue->bytes > static_cast<size_t>(kRing.data_size);
             queue->frames.pop_front())
            queue->bytes -= queue->frames.front().size();
    }
}

uint32_t QueueStore::take(int reader)
{
    Queue &queue = *queues_[static_cast<size_t>(reader)];
    std::vector<uint8_t> frame;
    std::lock_guard lock(queue.mutex);
    if (queue.frames.empty()) return 0;
    frame = std::move(queue.frames.front());
    queue.frames.pop_front();
    queue.bytes -= frame.size();
    return static_cast<uint32_t>(frame.size());
}

} // namespace bench_pool
