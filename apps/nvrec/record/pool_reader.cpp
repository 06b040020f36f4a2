/* pool_reader.cpp - see pool_reader.h. */
#include "record/pool_reader.h"

#include <utility>

#include "archive/time_of_day.h"

namespace nvrec
{
namespace
{

/* The rings as start-up makes them. */
struct RingRow {
    uint32_t largest_frame_bytes;
    uint32_t ring_bytes;
};
constexpr RingRow kRings[] = {
    {NVRHAL_MAIN_FRAME_BYTES, NVRHAL_MAIN_RING_BYTES},   /* kMain    */
    {NVRHAL_SUB_FRAME_BYTES, NVRHAL_SUB_RING_BYTES},     /* kNetwork */
    {NVRHAL_AUDIO_FRAME_BYTES, NVRHAL_AUDIO_RING_BYTES}, /* kSound   */
};

constexpr size_t kMostMetadata = 1024; /* more than the longest index ring holds        */
static_assert(kMostMetadata > NVRHAL_MAIN_RING_FRAMES);
constexpr size_t kNearlyCaughtUp = 4; /* frames that may wait when a producer may too */
constexpr auto kPatience = std::chrono::seconds(1);

const RingRow &ring_of(PoolStream stream)
{
    return kRings[static_cast<size_t>(stream)];
}

} // namespace

void PoolEvent::set()
{
    const std::scoped_lock guard(lock_);
    pending_ = true;
    changed_.notify();
}

void PoolEvent::close()
{
    const std::scoped_lock guard(lock_);
    closed_ = true;
    changed_.notify();
}

bool PoolEvent::wait()
{
    std::unique_lock guard(lock_);
    changed_.wait(guard, [this] { return pending_ || closed_; });
    pending_ = false;
    return !closed_;
}

PoolReader::PoolReader(int channel, PoolStream stream, PoolEvent &event)
    : channel_(static_cast<uint32_t>(channel)), stream_(stream), event_(event)
{
}

int32_t PoolReader::put(const AccessUnit &unit, const StreamFacts &facts, int64_t wall_us)
{
    FrameInfo frame = {};
    frame.frame_type = unit.key ? 1 : 0;
    frame.length = static_cast<uint32_t>(unit.bytes.size());
    frame.width = facts.width_px;
    frame.height = facts.height_px;
    frame.data = const_cast<uint8_t *>(unit.bytes.data()); /* only read by the library */
    return store({.pts_us = unit.pts_us, .dts_us = unit.due_us, .wall_us = wall_us, .facts = facts}, &frame);
}

int32_t PoolReader::put(const SoundBlock &block)
{
    FrameInfo frame = {};
    frame.length = static_cast<uint32_t>(block.samples.size());
    frame.data = const_cast<uint8_t *>(block.samples.data());
    return store({.pts_us = block.pts_us, .dts_us = block.pts_us, .facts = {}}, &frame);
}

int32_t PoolReader::store(const FrameMetadata &metadata, FrameInfo *frame)
{
    frame->pts = static_cast<uint64_t>(metadata.pts_us);
    const int64_t arrived_us = Clock::now().time_since_epoch().count(), clock_ahead_us = wall_ahead_us();
    {
        /* Before the pool has it: the reader may be faster than the rest of this function. */
        const std::scoped_lock guard(lock_);
        if (metadata_.size() >= kMostMetadata) lose_oldest();
        metadata_.push_back(metadata);
        metadata_.back().after_refused = std::exchange(refused_last_, false);
        metadata_.back().length_bytes = frame->length;
        metadata_.back().stamp = static_cast<uint32_t>(metadata.pts_us);
        metadata_.back().arrived_us = arrived_us;
        metadata_.back().clock_ahead_us = clock_ahead_us;
        waiting_bytes_ += frame->length;
    }
    int32_t result = 0;
    switch (stream_) {
    case PoolStream::kMain:
        result = ext_set_primary_video_stream(channel_, frame);
        /* It answers 0 even when the pool refused the frame. */
        if (frame->length == 0 || frame->length > ring_of(stream_).largest_frame_bytes) result = -1;
        break;
    case PoolStream::kNetwork: result = ext_set_network_video_stream(channel_, frame); break;
    case PoolStream::kSound: result = ext_set_audio_stream(channel_, frame); break;
    }
    {
        const std::scoped_lock guard(lock_);
        ++(result == 0 ? counters_.stored : counters_.refused);
        if (result != 0 && !metadata_.empty()) {
            waiting_bytes_ -= metadata_.back().length_bytes;
            metadata_.pop_back();
            refused_last_ = true;
        }
    }
    event_.set();
    return result;
}

bool PoolReader::fetch(Fetched *fetched)
{
    if (stream_ == PoolStream::kSound) return fetch_sound(fetched);
    FrameInfo frame = {};
    const int32_t result = stream_ == PoolStream::kMain ? ext_get_primary_video_stream(channel_, &frame)
                                                        : ext_get_network_video_stream(channel_, &frame);
    if (result != 0) return false;
    *fetched = {.bytes = static_cast<const uint8_t *>(frame.data),
                .length_bytes = frame.length,
                .stamp = static_cast<uint32_t>(frame.pts),
                .key = frame.frame_type == 1,
                .taken_at_us = static_cast<int64_t>(frame.local_time)};
    return true;
}

bool PoolReader::fetch_sound(Fetched *fetched)
{
    const auto channel = static_cast<int32_t>(channel_);
    if (!sound_positioned_ && kx_stream_getStartPos(channel, &sound_position_, STREAM_POOL_AUDIO) != 0)
        return false;
    sound_positioned_ = true;
    const int32_t length = kx_stream_getOneFrame(channel, 0, &sound_position_, STREAM_POOL_AUDIO);
    if (length <= 0) return false;
    const StreamIndexEntry &entry = sound_position_.p_stream_index[sound_position_.last_index];
    *fetched = {.bytes = sound_position_.p_buf_data + sound_position_.data_start,
                .length_bytes = static_cast<uint32_t>(length),
                .stamp = __atomic_load_n(&entry.timestamp, __ATOMIC_RELAXED), /* the writer may be there */
                .key = true,
                .taken_at_us = 0};
    return true;
}

bool PoolReader::take(PoolFrame *frame)
{
    Fetched fetched = {};
    while (fetch(&fetched)) {
        frame->bytes.assign(fetched.bytes, fetched.bytes + fetched.length_bytes);

        const std::scoped_lock guard(lock_);
        FrameMetadata metadata;
        if (!find_metadata(fetched, &metadata)) {
            gap_ = true; /* the entry was rewritten while it was read */
            continue;
        }
        reader_came_.notify();
        /*
         * All frames begun after it, and the bytes that a wrap leaves unused, must fit into the ring beside
         * it.
         */
        const RingRow &ring = ring_of(stream_);
        if (waiting_bytes_ + metadata.length_bytes + ring.largest_frame_bytes > ring.ring_bytes) {
            ++counters_.lost;
            gap_ = true;
            continue;
        }
        ++counters_.read;
        counters_.resynchronised += gap_;
        frame->after_gap = std::exchange(gap_, false);
        frame->key = fetched.key;
        frame->pts_us = metadata.pts_us;
        frame->dts_us = metadata.dts_us;
        frame->taken_at_us = metadata.wall_us != 0 ? metadata.wall_us : fetched.taken_at_us;
        frame->facts = metadata.facts;
        frame->arrived_us = metadata.arrived_us;
        frame->clock_ahead_us = metadata.clock_ahead_us;
        return true;
    }
    return false;
}

/* Take the metadata of a frame off the list, and those before it, whose frames are lost. */
bool PoolReader::find_metadata(const Fetched &fetched, FrameMetadata *metadata)
{
    auto is_of_it = [&](const FrameMetadata &candidate) {
        return candidate.stamp == fetched.stamp && candidate.length_bytes == fetched.length_bytes;
    };
    size_t before = 0;
    while (before < metadata_.size() && !is_of_it(metadata_[before]))
        ++before;
    if (before == metadata_.size()) return false;
    for (; before > 0; --before)
        lose_oldest();
    *metadata = pop_metadata();
    if (metadata->after_refused) gap_ = true;
    return true;
}

void PoolReader::lose_oldest()
{
    pop_metadata();
    ++counters_.lost;
    gap_ = true;
}

PoolReader::FrameMetadata PoolReader::pop_metadata()
{
    const FrameMetadata metadata = metadata_.front();
    metadata_.pop_front();
    waiting_bytes_ -= metadata.length_bytes;
    return metadata;
}

void PoolReader::wait_for_reader()
{
    std::unique_lock guard(lock_);
    /* Not for ever: a few very large frames overrun the reader, which then needs a key frame to come. */
    reader_came_.wait_for(guard, kPatience,
                          [this] { return gave_up_ || metadata_.size() < kNearlyCaughtUp; });
}

void PoolReader::give_up()
{
    const std::scoped_lock guard(lock_);
    gave_up_ = true;
    while (!metadata_.empty())
        lose_oldest();
    reader_came_.notify();
}

PoolCounters PoolReader::counters() const
{
    const std::scoped_lock guard(lock_);
    return counters_;
}

} // namespace nvrec
