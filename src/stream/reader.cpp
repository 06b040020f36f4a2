/*
 * reader.cpp - positioning a reader and taking one frame at a time.
 *
 * A reader whose data_start equals its data_end was positioned and has taken nothing: the entry at
 * `index` itself is the next to deliver. Otherwise the one behind it is.
 */
#include "core/abi.h"
#include "core/log.h"
#include "stream/distance.h"
#include "stream/shared_memory.h"

ABI32_SIZE(StreamReader, 44);
ABI_AT(StreamReader, last_index, 4);
ABI_AT(StreamReader, index_circle, 8);
ABI_AT(StreamReader, index_num, 12);
ABI_AT(StreamReader, block_index, 16);
ABI_AT(StreamReader, block_count, 20);
ABI_AT(StreamReader, p_stream_index, 24);
ABI32_AT(StreamReader, data_start, 28);
ABI32_AT(StreamReader, data_end, 32);
ABI32_AT(StreamReader, data_circle, 36);
ABI32_AT(StreamReader, p_buf_data, 40);

namespace nvrhal
{
namespace
{

void place_reader(const StreamChannel &channel, uint32_t index, StreamReader *reader)
{
    const StreamIndexEntry entry = load_entry(channel.p_stream_index[index]);
    reader->index = reader->last_index = reader->block_index = index;
    reader->block_count = 0;
    reader->index_num = static_cast<uint32_t>(channel.index_num);
    reader->index_circle = entry.index_circle;
    reader->p_stream_index = channel.p_stream_index;
    reader->data_start = reader->data_end = entry.data_start;
    reader->data_circle = entry.data_circle;
    reader->p_buf_data = channel.p_buf_data;
}

/** Nothing written yet, or still in the first lap with room for a largest frame before its end. */
bool whole_history_is_safe(const StreamChannel &channel, const NewestEntry &newest)
{
    return newest.entry.data_circle == 0 && static_cast<int32_t>(static_cast<uint32_t>(channel.data_size) -
                                                                 newest.entry.data_end) >= channel.safe_diff;
}

/** The next key frame before the newest entry; false when the reader must go on frame by frame. */
bool find_key_frame_behind(const StreamChannel &channel, const NewestEntry &newest,
                           const StreamReader &reader, uint32_t *found)
{
    uint32_t index = (reader.last_index + 1) % static_cast<uint32_t>(channel.index_num);
    for (; index != newest.index; index = next_entry(channel, index)) {
        if (load_shared(channel.p_stream_index[index].frame_type) == kKeyFrame) {
            *found = index;
            return true;
        }
    }
    return false;
}

uint32_t entry_in_step(const StreamChannel &channel, const NewestEntry &newest, const StreamReader &reader,
                       int32_t skip_limit)
{
    uint32_t key_frame = 0;
    const auto backlog = static_cast<int32_t>(backlog_frames(channel, newest, reader));
    // A negative limit is exceeded even without a backlog. There is nothing to search then: the search
    // would come round to frames older than the reader's.
    if (skip_limit != 0 && backlog > skip_limit && backlog > 0 &&
        find_key_frame_behind(channel, newest, reader, &key_frame))
        return key_frame;
    if (reader.data_start == reader.data_end) return reader.index;
    return next_entry(channel, reader.index);
}

int32_t deliver(const StreamChannel &channel, uint32_t index, StreamReader *reader)
{
    const StreamIndexEntry entry = load_entry(channel.p_stream_index[index]);
    // Only a reader that the writer passed during this very call can meet such an entry.
    if (entry.data_end <= entry.data_start || entry.data_end > static_cast<uint32_t>(channel.data_size))
        return 0;
    reader->index = reader->last_index = index;
    reader->index_circle = entry.index_circle;
    reader->data_start = entry.data_start;
    reader->data_end = entry.data_end;
    reader->data_circle = entry.data_circle;
    reader->p_buf_data = channel.p_buf_data;
    return static_cast<int32_t>(entry.data_end - entry.data_start);
}

} // namespace
} // namespace nvrhal

using namespace nvrhal;

int32_t kx_stream_getLastPos(int32_t channel_number, StreamReader *reader, int32_t pool)
{
    const StreamChannel *channel = find_stream_channel(channel_number, pool);
    if (!channel || !reader) return -1;
    NewestEntry newest;
    place_reader(*channel, load_newest(*channel, &newest) ? newest.index : 0, reader);
    log_text("data start %d index start %d data_circle %d index circle %d\n",
             static_cast<int>(reader->data_start), static_cast<int>(reader->index),
             static_cast<int>(reader->data_circle), static_cast<int>(reader->index_circle));
    return 0;
}

int32_t kx_stream_getStartPos(int32_t channel_number, StreamReader *reader, int32_t pool)
{
    const StreamChannel *channel = find_stream_channel(channel_number, pool);
    if (!channel || !reader) return -1;
    reader->p_buf_data = channel->p_buf_data;
    reader->index_num = static_cast<uint32_t>(channel->index_num);
    reader->p_stream_index = channel->p_stream_index;

    NewestEntry newest;
    if (!load_newest(*channel, &newest) || whole_history_is_safe(*channel, newest)) {
        place_reader(*channel, 0, reader);
        return 0;
    }
    uint32_t index = search_start(*channel, newest);
    int32_t distance_bytes = 0;
    do {
        const StreamIndexEntry entry = load_entry(channel->p_stream_index[index]);
        if (is_safe_entry(*channel, newest, entry)) {
            place_reader(*channel, index, reader);
            return 0;
        }
        distance_bytes = free_bytes(*channel, newest, entry.data_start, entry.data_circle);
        index = next_entry(*channel, index);
    } while (index != newest.index);
    log_text("t_index = %d cat not change to safe diff %d safe diff %d\n", static_cast<int>(index),
             distance_bytes, channel->safe_diff);
    return -1;
}

int32_t kx_stream_getOneFrame(int32_t channel_number, int32_t skip_limit, StreamReader *reader, int32_t pool)
{
    const StreamChannel *channel = find_stream_channel(channel_number, pool);
    if (!channel || !reads_channel(reader, *channel)) return 0;
    NewestEntry newest;
    if (!load_newest(*channel, &newest) || is_up_to_date(*reader, newest)) return 0;
    uint32_t index = 0;
    if (is_in_step(*channel, newest, *reader))
        index = entry_in_step(*channel, newest, *reader, skip_limit);
    else if (!find_safe_key_frame(*channel, newest, *reader, &index))
        return 0;
    return deliver(*channel, index, reader);
}
