/*
 * block.cpp - gathering consecutive frames of one lap into one range of bytes.
 *
 * A batch may need several calls: `index` is its first entry, `block_index` where the scan stopped
 * and `block_count` the steps taken; data_start = data_end marks it as unfinished. The module's
 * own words below belong to whichever channel is being read, so one block reader runs at a time.
 */
#include "board_io.h"
#include "core/log.h"
#include "stream/distance.h"
#include "stream/shared_memory.h"

namespace nvrhal
{
namespace
{

constexpr uint32_t kTimeTolerance = 59; // largest step of the time stamps that is no jump
constexpr uint32_t kKeyFrameWait_us = 1000;

enum BlockResult : int32_t { kNoBlock = 0, kBlock = 2, kBlockToNewest = 3, kBlockToJump = 4 };

// Written and read by the one block reader.
uint32_t g_block_skip;       // frames to skip before the next batch
uint32_t g_block_time_valid; // 1 = g_block_last_time is that of the previous frame of this batch
uint32_t g_block_last_time;

// The position in the audio pool is judged by the audio ring, but the frames are gathered from the
// sub stream's: kept so on purpose.
constexpr int32_t kGatherPool[kPoolCount] = {STREAM_POOL_MAIN, STREAM_POOL_SUB, STREAM_POOL_SUB};

/** Where the reader goes on: with its batch, a new one, or a key frame. False when nowhere. */
bool choose_first_frame(const StreamChannel &channel, const NewestEntry &newest, StreamReader *reader)
{
    if (is_in_step(channel, newest, *reader)) {
        if (reader->data_end != reader->data_start) {
            reader->data_start = reader->data_end;
            reader->block_count = 0;
            reader->index = reader->block_index =
                (reader->last_index + 1) % static_cast<uint32_t>(channel.index_num);
        }
        return true;
    }
    uint32_t found = 0;
    if (!find_safe_key_frame(channel, newest, *reader, &found)) return false;
    const StreamIndexEntry entry = load_entry(channel.p_stream_index[found]);
    reader->index = reader->last_index = reader->block_index = found;
    reader->block_count = 0;
    reader->data_start = reader->data_end = entry.data_start;
    reader->data_circle = entry.data_circle;
    reader->index_circle = entry.index_circle;
    return true;
}

/** Hand the range from the first frame to the last over. Refused when it is no range of the ring. */
int32_t end_block(const StreamChannel &channel, const StreamIndexEntry &first, uint32_t last_index,
                  const StreamIndexEntry &last, StreamReader *reader, BlockResult result)
{
    g_block_time_valid = 0;
    if (last.data_end <= first.data_start || last.data_end > static_cast<uint32_t>(channel.data_size))
        return kNoBlock;
    reader->data_start = first.data_start;
    reader->data_end = last.data_end;
    reader->data_circle = first.data_circle;
    reader->index_circle = last.index_circle;
    reader->last_index = last_index;
    reader->p_buf_data = channel.p_buf_data;
    return result;
}

int32_t take_rest_of_lap(const StreamChannel &channel, const NewestEntry &newest,
                         const StreamIndexEntry &first, StreamReader *reader)
{
    g_block_time_valid = 0;
    g_block_last_time = 0;
    if (newest.entry.data_circle == first.data_circle)
        return end_block(channel, first, newest.index, newest.entry, reader, kBlockToNewest);
    const uint32_t wrap_index = load_shared(channel.wrap_index);
    if (wrap_index >= static_cast<uint32_t>(channel.index_num)) return kNoBlock;
    const StreamIndexEntry last = load_entry(channel.p_stream_index[wrap_index]);
    return end_block(channel, first, wrap_index, last, reader, kBlock);
}

bool is_time_jump(uint32_t timestamp)
{
    return g_block_time_valid == 1 &&
           timestamp - g_block_last_time + kTimeTolerance >= 2 * kTimeTolerance + 1;
}

bool scan_reached_newest(const StreamChannel &channel, uint32_t index)
{
    const int32_t newest = load_published(channel.cur_index); // A1
    return newest == static_cast<int32_t>(index);
}

/** Entries from `index` to the next key frame; waits for it when it was not written yet. */
uint32_t count_to_key_frame(const StreamChannel &channel, uint32_t index)
{
    uint32_t stepped_over = 0;
    while (load_shared(channel.p_stream_index[index].frame_type) != kKeyFrame) {
        while (scan_reached_newest(channel, index))
            board_sleep_us(kKeyFrameWait_us);
        index = next_entry(channel, index);
        ++stepped_over;
    }
    return stepped_over;
}

int32_t gather(const StreamChannel &channel, const NewestEntry &newest, const StreamIndexEntry &first,
               uint32_t byte_target, StreamReader *reader)
{
    const uint32_t lap_end = load_shared(channel.wrap_data_end);
    const uint32_t first_index = reader->index;
    uint32_t index = reader->block_index % static_cast<uint32_t>(channel.index_num);
    uint32_t previous_index = index != 0 ? index - 1 : static_cast<uint32_t>(channel.index_num) - 1;

    for (;; previous_index = index, index = next_entry(channel, index)) {
        const StreamIndexEntry entry = load_entry(channel.p_stream_index[index]);
        // A jump ends the batch with the frame before it; the first frame has none before it.
        if (index != first_index && is_time_jump(entry.timestamp)) {
            const StreamIndexEntry previous = load_entry(channel.p_stream_index[previous_index]);
            const int32_t result = end_block(channel, first, previous_index, previous, reader, kBlockToJump);
            g_block_skip = result == kBlockToJump ? count_to_key_frame(channel, index) : 0;
            return result;
        }
        g_block_time_valid = 1;
        g_block_last_time = entry.timestamp;

        const bool reached_target = entry.data_end - first.data_start >= byte_target;
        const bool is_full = reader->block_count >= static_cast<uint32_t>(channel.block_max_frames);
        if (reached_target || is_full || entry.data_end == lap_end)
            return end_block(channel, first, index, entry, reader, kBlock);
        if (index == newest.index) {
            reader->block_index = index;
            return kNoBlock;
        }
        reader->block_count += 1;
    }
}

} // namespace
} // namespace nvrhal

using namespace nvrhal;

int32_t kx_stream_getBlock(int32_t channel_number, uint32_t byte_target, StreamReader *reader, int32_t pool)
{
    const StreamChannel *channel = find_stream_channel(channel_number, pool);
    if (!channel || !reads_channel(reader, *channel)) return kNoBlock;
    const StreamChannel *source = find_stream_channel(channel_number, kGatherPool[pool]);
    if (!source) return kNoBlock;

    if (g_block_skip > 0) {
        reader->last_index += g_block_skip;
        g_block_skip = 0;
    }
    NewestEntry newest;
    if (!load_newest(*channel, &newest) || is_up_to_date(*reader, newest)) return kNoBlock;
    if (!choose_first_frame(*channel, newest, reader)) {
        log_text("ch %d can not change to safe diff i frame 2\n", channel_number);
        return kNoBlock;
    }
    if (source != channel && !load_newest(*source, &newest)) return kNoBlock;
    if (reader->index >= static_cast<uint32_t>(source->index_num)) return kNoBlock;
    const StreamIndexEntry first = load_entry(source->p_stream_index[reader->index]);
    if (byte_target == STREAM_BLOCK_WHOLE_LAP) return take_rest_of_lap(*source, newest, first, reader);
    return gather(*source, newest, first, byte_target, reader);
}
