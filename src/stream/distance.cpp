/* distance.cpp - see distance.h. Orders and labels: see the table in pool.cpp. */
#include "stream/distance.h"
#include "stream/shared_memory.h"

namespace nvrhal
{
namespace
{

/**
 * The lap of a reader. One that was placed on an empty channel carries the mark of an entry never
 * written, which stands for lap 0. A reader that truly is in the lap of that number has taken bytes
 * (its data_end is not 0) or stands in a later index lap.
 */
uint32_t reader_lap(const StreamReader &reader)
{
    const bool was_placed_on_empty_channel =
        reader.data_circle == kNeverWrittenLap && reader.data_end == 0 && reader.index_circle == 0;
    return was_placed_on_empty_channel ? 0 : reader.data_circle;
}

/**
 * True when the reader has not been given the entry yet. A search that begins 12 entries ahead of the
 * writer meets no other; in a ring of fewer entries it comes round to entries that were delivered.
 */
bool is_ahead_of(const StreamReader &reader, const StreamChannel &channel, const NewestEntry &newest,
                 uint32_t index)
{
    const auto entries = static_cast<uint32_t>(channel.index_num);
    const uint32_t behind_newest = (newest.index + entries - index) % entries;
    const uint32_t backlog = backlog_frames(channel, newest, reader);
    const bool has_taken_last = reader.data_start != reader.data_end;
    return has_taken_last ? behind_newest < backlog : behind_newest <= backlog;
}

bool is_safe_position(const StreamChannel &channel, const NewestEntry &newest, uint32_t offset, uint32_t lap)
{
    return newest.entry.data_circle - lap <= 1 &&
           free_bytes(channel, newest, offset, lap) >= channel.safe_diff;
}

} // namespace

StreamIndexEntry load_entry(const StreamIndexEntry &entry)
{
    return {.frame_type = load_shared(entry.frame_type),
            .zero = {},
            .timestamp = load_shared(entry.timestamp),
            .reserved = 0,
            .data_start = load_shared(entry.data_start),
            .data_end = load_shared(entry.data_end),
            .data_circle = load_shared(entry.data_circle),
            .index_circle = load_shared(entry.index_circle)};
}

bool load_newest(const StreamChannel &channel, NewestEntry *newest)
{
    const int32_t index = load_published(channel.cur_index); // A1
    if (index < 0) return false;
    newest->index = static_cast<uint32_t>(index);
    newest->entry = load_entry(channel.p_stream_index[index]);
    return true;
}

bool reads_channel(const StreamReader *reader, const StreamChannel &channel)
{
    return reader && reader->p_stream_index == channel.p_stream_index &&
           reader->index < static_cast<uint32_t>(channel.index_num);
}

bool is_up_to_date(const StreamReader &reader, const NewestEntry &newest)
{
    return newest.entry.data_circle == reader.data_circle && newest.entry.data_end == reader.data_end;
}

int32_t free_bytes(const StreamChannel &channel, const NewestEntry &newest, uint32_t offset, uint32_t lap)
{
    const uint32_t laps_behind = newest.entry.data_circle - lap;
    return static_cast<int32_t>(offset - newest.entry.data_end +
                                static_cast<uint32_t>(channel.data_size) * (1 - laps_behind));
}

bool is_safe_entry(const StreamChannel &channel, const NewestEntry &newest, const StreamIndexEntry &entry)
{
    return entry.data_start < entry.data_end && // never so in an entry never written
           is_safe_position(channel, newest, entry.data_start, entry.data_circle);
}

uint32_t backlog_frames(const StreamChannel &channel, const NewestEntry &newest, const StreamReader &reader)
{
    return (newest.entry.index_circle - reader.index_circle) * static_cast<uint32_t>(channel.index_num) +
           newest.index - reader.last_index;
}

bool is_in_step(const StreamChannel &channel, const NewestEntry &newest, const StreamReader &reader)
{
    if (newest.entry.index_circle - reader.index_circle > 1) return false;
    if (!is_safe_position(channel, newest, reader.data_end, reader_lap(reader))) return false;
    const uint32_t entries_left =
        static_cast<uint32_t>(channel.index_num) - backlog_frames(channel, newest, reader);
    return static_cast<int32_t>(entries_left) >= channel.resync_step;
}

uint32_t search_start(const StreamChannel &channel, const NewestEntry &newest)
{
    return (newest.index + static_cast<uint32_t>(channel.resync_step)) %
           static_cast<uint32_t>(channel.index_num);
}

bool find_safe_key_frame(const StreamChannel &channel, const NewestEntry &newest, const StreamReader &reader,
                         uint32_t *found)
{
    uint32_t index = search_start(channel, newest);
    do {
        const StreamIndexEntry &entry = channel.p_stream_index[index];
        if (load_shared(entry.frame_type) == kKeyFrame && is_safe_entry(channel, newest, load_entry(entry)) &&
            is_ahead_of(reader, channel, newest, index)) {
            *found = index;
            return true;
        }
        index = next_entry(channel, index);
    } while (index != newest.index);
    return false;
}

} // namespace nvrhal
