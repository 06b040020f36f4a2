/*
 * pool.h - the control records of the frame pools, shared by the pool's own sources.
 *
 * Absolute positions: byte = data_circle * data_size + offset, entry = index_circle * index_num +
 * index. Both counts are 32-bit and wrap around; only differences of them are ever judged.
 */
#pragma once

#include "nvrhal.h"

/** One channel of one pool. Who writes and reads each field: see pool.cpp. */
struct StreamChannel {
    int32_t cur_index;                //  0  newest entry; -1 until the first frame
    uint32_t next_index;              //  4  entry that the next frame takes
    uint32_t index_circle;            //  8  laps of next_index
    uint32_t data_pos;                // 12  where the next frame starts, if it fits
    uint32_t data_circle;             // 16  laps of the data ring
    int32_t max_frame_len;            // 20  bytes
    uint32_t wrap_data_end;           // 24  data_pos at the last wrap: end of the previous lap
    uint32_t wrap_index;              // 28  cur_index at the last wrap: last entry of that lap
    int32_t safe_diff;                // 32  bytes that must lie between the writer and a reader
    int32_t data_size;                // 36  bytes
    uint8_t *p_buf_data;              // 40  the data ring
    int32_t resync_step;              // 44  entries ahead of the writer where a search starts
    int32_t block_max_frames;         // 48  most steps of one block
    int32_t index_num;                // 52  entries
    StreamIndexEntry *p_stream_index; // 56  the index ring
};

namespace nvrhal
{

constexpr int32_t kPoolCount = 3;
constexpr uint32_t kKeyFrame = 1;
constexpr uint32_t kNeverWrittenLap = static_cast<uint32_t>(-3);

/** The array that was allocated last: STREAM_POOL_MAX_CHANNELS records, or null. */
extern StreamChannel *g_pstream_ch;

/** The record of a configured channel, or null. */
StreamChannel *find_stream_channel(int32_t channel, int32_t pool);

/** The entry behind `index`, around the ring. */
inline uint32_t next_entry(const StreamChannel &channel, uint32_t index)
{
    return index + 1 < static_cast<uint32_t>(channel.index_num) ? index + 1 : 0;
}

} // namespace nvrhal
