/* See stream_model.h. */
#include "stream_model.h"

namespace stream_test
{

void Model::write(uint32_t length, uint32_t type, uint32_t timestamp)
{
    uint64_t start = next_byte_;
    // A lap may be filled to its last byte: then the next frame begins the next one.
    const bool is_full_lap = !frames_.empty() && start % data_size_ == 0;
    const uint64_t offset = is_full_lap ? data_size_ : start % data_size_;
    if (data_size_ - offset < length) start += data_size_ - offset;
    frames_.push_back({next_entry_, start, start + length, type, timestamp});
    next_byte_ = start + length;
    ++next_entry_;
}

const ModelFrame *Model::frame(uint64_t entry) const
{
    if (frames_.empty() || entry < frames_.front().entry || entry > frames_.back().entry) return nullptr;
    return &frames_[entry - frames_.front().entry];
}

/** The newest frame that stands in an entry of the index ring. */
const ModelFrame *Model::in_slot(uint64_t slot) const
{
    const uint64_t newest = frames_.back().entry;
    const uint64_t behind = (newest % index_num_ + index_num_ - slot) % index_num_;
    return behind <= newest ? frame(newest - behind) : nullptr;
}

/** At least the safe distance lies between the writer's coming bytes and the position, a lap on. */
bool Model::is_safe(uint64_t position) const
{
    return position + data_size_ >= frames_.back().end + safe_bytes_;
}

bool Model::is_in_step(const ModelReader &reader) const
{
    const ModelFrame &newest = frames_.back();
    const uint64_t backlog = newest.entry - reader.entry;
    return is_safe(reader.position) && backlog + 12 <= index_num_;
}

const ModelFrame *Model::oldest_safe_key_frame() const
{
    const uint64_t newest_slot = frames_.back().entry % index_num_;
    uint64_t slot = (newest_slot + 12) % index_num_;
    do {
        const ModelFrame *candidate = in_slot(slot);
        if (candidate && candidate->type == 1 && is_safe(candidate->start)) return candidate;
        slot = (slot + 1) % index_num_;
    } while (slot != newest_slot);
    return nullptr;
}

ModelReader Model::newest_position() const
{
    if (frames_.empty()) return {.was_empty = true};
    return {.entry = frames_.back().entry, .position = frames_.back().start};
}

std::optional<ModelReader> Model::oldest_position() const
{
    if (frames_.empty()) return ModelReader{.was_empty = true};
    const ModelFrame &newest = frames_.back();
    const uint64_t lap_end = (lap_of(newest.start) + 1) * data_size_;
    if (static_cast<uint32_t>(lap_of(newest.start)) == 0 && lap_end - newest.end >= safe_bytes_) {
        const ModelFrame *first = in_slot(0);
        return ModelReader{.entry = first->entry, .position = first->start};
    }
    const uint64_t newest_slot = newest.entry % index_num_;
    uint64_t slot = (newest_slot + 12) % index_num_;
    do {
        const ModelFrame *candidate = in_slot(slot);
        if (candidate && is_safe(candidate->start))
            return ModelReader{.entry = candidate->entry, .position = candidate->start};
        slot = (slot + 1) % index_num_;
    } while (slot != newest_slot);
    return std::nullopt;
}

const ModelFrame *Model::read(ModelReader &reader, int32_t skip_limit) const
{
    if (frames_.empty()) return nullptr;
    const ModelFrame &newest = frames_.back();
    if (!reader.is_fresh && reader.entry == newest.entry) return nullptr;

    const ModelFrame *next = nullptr;
    if (!is_in_step(reader)) {
        next = oldest_safe_key_frame();
        if (!next) return nullptr;
    } else {
        if (skip_limit > 0 && newest.entry - reader.entry > static_cast<uint64_t>(skip_limit))
            for (uint64_t entry = reader.entry + 1; entry < newest.entry && !next; ++entry)
                if (frame(entry)->type == 1) next = frame(entry);
        if (!next) next = frame(reader.entry + (reader.is_fresh ? 0 : 1));
    }
    reader = {.is_fresh = false, .entry = next->entry, .position = next->end};
    return next;
}

StreamReader Model::words(const ModelReader &reader) const
{
    StreamReader words{};
    words.index_num = static_cast<uint32_t>(index_num_);
    if (reader.was_empty) {
        words.data_circle = static_cast<uint32_t>(-3);
        return words;
    }
    const ModelFrame *at = frame(reader.entry);
    words.index = words.last_index = static_cast<uint32_t>(at->entry % index_num_);
    words.index_circle = static_cast<uint32_t>(at->entry / index_num_);
    const uint64_t lap = lap_of(at->start);
    words.data_circle = static_cast<uint32_t>(lap);
    words.data_start = static_cast<uint32_t>(at->start - lap * data_size_);
    words.data_end = reader.is_fresh ? words.data_start : static_cast<uint32_t>(at->end - lap * data_size_);
    return words;
}

} // namespace stream_test
