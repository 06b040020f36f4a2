/*
 * pool.cpp - the frame pools: allocation and the writer's side.
 *
 * A frame never crosses the end of the data ring: one that does not fit in the rest starts at 0 and
 * the rest stays unused for this lap. The entry is complete before cur_index names it.
 *
 * Ownership. One writer thread per channel and pool; any number of readers; no lock.
 *
 *   field                          written by          read by          order
 *   StreamChannel
 *     cur_index                    writer              all              P1 release, acquired by A1
 *     next_index, index_circle,    writer              writer           plain: private to the writer
 *     data_pos, data_circle
 *     wrap_data_end, wrap_index    writer              block reader     relaxed, carried by P1
 *     all others                   initialisation      all              plain, carried by P2
 *   StreamIndexEntry, each field   writer              all              relaxed, carried by P1
 *   bytes of the data ring         writer              readers          plain, carried by P1
 *   StreamReader                   its own thread      its own thread   plain
 *   g_pools[]                      initialisation      all              P2 release, acquired by A2
 *   g_pstream_ch, g_config         initialisation      the same thread  plain
 *
 * Labels
 *   P1  publish: the release store of cur_index. Pairs with A1.
 *   A1  load_published: the acquire load of cur_index, once a call (load_newest) and again while a
 *       block waits for a key frame. The entry it names, its bytes, and all that came before are
 *       then visible.
 *   F1  begin_overwriting: a store barrier ahead of the first store of a frame. Pairs with A1 as
 *       well: bytes of frame k + 1 become visible only after cur_index = k did, so a reader that
 *       looks and sees k knows that at most one frame, k + 1, is being written at that moment.
 *       Without it a CPU with weak store order could show bytes of later frames first, and the
 *       distance that the reader computes from k would be worth nothing.
 *   P2  a pool is stored when it is complete. Pairs with A2, find_stream_channel.
 *
 * Readers do not check again after they have read, so the distance alone protects them: what a
 * reader was given stays whole as long as, since A1, the writer has advanced by no more than safe_diff
 * bytes of ring (the unused rest of a lap counts) and has begun fewer than resync_step frames.
 * Entries are relaxed words, so that a reader that stays away longer meets values that do not
 * belong together, never half a word.
 */
#include "stream/pool.h"

#include "core/abi.h"
#include "core/log.h"
#include "stream/shared_memory.h"

#include <cstdlib>

ABI_SIZE(StreamRingSizes, 12);
ABI_AT(StreamRingSizes, data_size, 4);
ABI_AT(StreamRingSizes, index_num, 8);

ABI_SIZE(StreamPoolConfig, 520);
ABI_AT(StreamPoolConfig, channels, 4);

ABI_SIZE(StreamIndexEntry, 28);
ABI_AT(StreamIndexEntry, timestamp, 4);
ABI_AT(StreamIndexEntry, reserved, 8);
ABI_AT(StreamIndexEntry, data_start, 12);
ABI_AT(StreamIndexEntry, data_end, 16);
ABI_AT(StreamIndexEntry, data_circle, 20);
ABI_AT(StreamIndexEntry, index_circle, 24);

ABI32_SIZE(StreamChannel, 60);
ABI_AT(StreamChannel, next_index, 4);
ABI_AT(StreamChannel, index_circle, 8);
ABI_AT(StreamChannel, data_pos, 12);
ABI_AT(StreamChannel, data_circle, 16);
ABI_AT(StreamChannel, max_frame_len, 20);
ABI_AT(StreamChannel, wrap_data_end, 24);
ABI_AT(StreamChannel, wrap_index, 28);
ABI_AT(StreamChannel, safe_diff, 32);
ABI_AT(StreamChannel, data_size, 36);
ABI_AT(StreamChannel, p_buf_data, 40);
ABI32_AT(StreamChannel, resync_step, 44);
ABI32_AT(StreamChannel, block_max_frames, 48);
ABI32_AT(StreamChannel, index_num, 52);
ABI32_AT(StreamChannel, p_stream_index, 56);

ABI32_SIZE(StreamProducerFrame, 820);
ABI_AT(StreamProducerFrame, frame_type, 4);
ABI_AT(StreamProducerFrame, piece_count, 8);
ABI_AT(StreamProducerFrame, piece_lengths, 16);
ABI_AT(StreamProducerFrame, pieces, 416);
ABI32_AT(StreamProducerFrame, timestamp, 816);

namespace nvrhal
{

StreamChannel *g_pstream_ch;

namespace
{

constexpr int32_t kSmallestMaxFrame_bytes = 80;
constexpr int32_t kDefaultDataSize_bytes = 0x370000;
constexpr int32_t kDefaultIndexNum = 45056;
constexpr int32_t kResyncStep = 12;
constexpr int32_t kHighestChannel = NVRHAL_STORED_CHANNELS - 1; // that a producer may write to

StreamPoolConfig g_config; // of the latest initialisation
StreamChannel *g_pools[kPoolCount];

void free_rings(StreamChannel &channel)
{
    std::free(channel.p_buf_data);
    std::free(channel.p_stream_index);
    channel.p_buf_data = nullptr;
    channel.p_stream_index = nullptr;
}

bool allocate_rings(StreamChannel *channels, int32_t number, const StreamRingSizes &sizes)
{
    StreamChannel &channel = channels[number];
    channel.cur_index = -1;
    channel.max_frame_len =
        sizes.max_frame_len < kSmallestMaxFrame_bytes ? kSmallestMaxFrame_bytes : sizes.max_frame_len;
    channel.data_size = sizes.data_size < 1 ? kDefaultDataSize_bytes : sizes.data_size;
    channel.index_num = sizes.index_num < 1 ? kDefaultIndexNum : sizes.index_num;

    channel.p_buf_data = static_cast<uint8_t *>(std::malloc(static_cast<size_t>(channel.data_size)));
    if (!channel.p_buf_data) {
        log_line("p_buf_data malloc err!");
        for (int32_t earlier = 0; earlier < number; ++earlier)
            free_rings(channels[earlier]);
        return false;
    }
    channel.safe_diff = channel.max_frame_len;
    channel.block_max_frames = channel.index_num / 3;
    channel.resync_step = kResyncStep;

    channel.p_stream_index = static_cast<StreamIndexEntry *>(
        std::calloc(static_cast<size_t>(channel.index_num), sizeof(StreamIndexEntry)));
    if (!channel.p_stream_index) {
        log_line("p_stream_index malloc err!"); // what was allocated stays: destroy frees it
        return false;
    }
    for (int32_t i = 0; i < channel.index_num; ++i)
        channel.p_stream_index[i].data_circle = kNeverWrittenLap;
    return true;
}

/** The channel a frame goes to, or null when the frame's head is bad. */
StreamChannel *accepting_channel(const StreamProducerFrame *frame, int32_t pool)
{
    if (!frame || frame->piece_count < 0 || frame->piece_count > STREAM_FRAME_MAX_PIECES) return nullptr;
    if (frame->channel < 0 || frame->channel > kHighestChannel) return nullptr;
    return find_stream_channel(frame->channel, pool);
}

/** Bytes of all pieces: 100 lengths of 32 bits cannot overflow it. A missing piece makes it too long. */
uint64_t total_length(const StreamProducerFrame &frame)
{
    uint64_t total_bytes = 0;
    for (int32_t i = 0; i < frame.piece_count; ++i) {
        if (frame.piece_lengths[i] != 0 && !frame.pieces[i]) return UINT64_MAX;
        total_bytes += frame.piece_lengths[i];
    }
    return total_bytes;
}

/** Where a frame of that many bytes starts; begins a new lap when the rest of the ring is too short. */
uint32_t claim_bytes(StreamChannel &channel, uint32_t total_bytes)
{
    uint32_t start = channel.data_pos;
    if (static_cast<uint32_t>(channel.data_size) - channel.data_pos < total_bytes) {
        store_shared(channel.wrap_data_end, channel.data_pos);
        channel.data_circle += 1;
        store_shared(channel.wrap_index, channel.cur_index);
        start = 0;
    }
    channel.data_pos = start + total_bytes;
    return start;
}

void copy_pieces(uint8_t *to, const StreamProducerFrame &frame)
{
    for (int32_t i = 0; i < frame.piece_count; ++i) {
        if (frame.piece_lengths[i] == 0) continue;
        copy_shared(to, frame.pieces[i], frame.piece_lengths[i]);
        to += frame.piece_lengths[i];
    }
}

void publish_entry(StreamChannel &channel)
{
    const uint32_t written = channel.next_index;
    publish(channel.cur_index, written); // P1
    channel.next_index = next_entry(channel, written);
    if (channel.next_index == 0) channel.index_circle += 1;
}

} // namespace

StreamChannel *find_stream_channel(int32_t channel, int32_t pool)
{
    if (pool < 0 || pool >= kPoolCount || channel < 0 || channel >= STREAM_POOL_MAX_CHANNELS) return nullptr;
    StreamChannel *channels = __atomic_load_n(&g_pools[pool], __ATOMIC_ACQUIRE); // A2, pairs with P2
    return channels && channels[channel].p_stream_index ? &channels[channel] : nullptr;
}

} // namespace nvrhal

using namespace nvrhal;

int32_t kx_stream_init_avstream(const StreamPoolConfig *config, int32_t pool)
{
    if (!config) return -1;
    g_config = *config;
    if (g_config.channel_count < 1 || g_config.channel_count > STREAM_POOL_MAX_CHANNELS) {
        log_text(" chu num %d err\n", g_config.channel_count);
        return -1;
    }
    // Records of all channels that there can be: those not configured have no rings and refuse.
    g_pstream_ch = static_cast<StreamChannel *>(std::calloc(STREAM_POOL_MAX_CHANNELS, sizeof(StreamChannel)));
    if (!g_pstream_ch) {
        log_line("g_pstream_ch malloc err!");
        return -1;
    }
    for (int32_t channel = 0; channel < g_config.channel_count; ++channel)
        if (!allocate_rings(g_pstream_ch, channel, g_config.channels[channel])) return -1;
    if (pool >= 0 && pool < kPoolCount)
        __atomic_store_n(&g_pools[pool], g_pstream_ch, __ATOMIC_RELEASE); // P2, pairs with A2
    return 0;
}

int32_t kx_stream_destroy_avstream(void)
{
    if (!g_pstream_ch) return 0;
    for (StreamChannel *&channels : g_pools)
        if (channels == g_pstream_ch) __atomic_store_n(&channels, nullptr, __ATOMIC_RELEASE);
    for (int32_t channel = 0; channel < STREAM_POOL_MAX_CHANNELS;
         ++channel) // not configured: nothing to free
        free_rings(g_pstream_ch[channel]);
    std::free(g_pstream_ch);
    g_pstream_ch = nullptr;
    return 0;
}

int32_t kx_stream_sendFrameToPool(const StreamProducerFrame *frame, int32_t pool)
{
    StreamChannel *channel = accepting_channel(frame, pool);
    if (!channel) {
        log_text("kx_stream_sendFrameToPool-error frame ch:%d\n", frame ? frame->channel : -1);
        return -1;
    }
    const uint64_t total_bytes = total_length(*frame);
    if (total_bytes == 0) // a reader could never step over an empty frame
        return -1;
    if (total_bytes > static_cast<uint64_t>(channel->max_frame_len) ||
        total_bytes > static_cast<uint64_t>(channel->data_size))
        return -1;

    begin_overwriting();
    const uint32_t start = claim_bytes(*channel, static_cast<uint32_t>(total_bytes));
    copy_pieces(channel->p_buf_data + start, *frame);

    StreamIndexEntry &entry = channel->p_stream_index[channel->next_index];
    store_shared(entry.frame_type, frame->frame_type);
    store_shared(entry.timestamp, frame->timestamp);
    store_shared(entry.reserved, 0);
    store_shared(entry.data_start, start);
    store_shared(entry.data_end, channel->data_pos);
    store_shared(entry.data_circle, channel->data_circle);
    store_shared(entry.index_circle, channel->index_circle);
    publish_entry(*channel);
    return 0;
}
