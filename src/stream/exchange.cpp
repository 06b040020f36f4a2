/*
 * exchange.cpp - frames in and out of the pools by channel number, one FrameInfo a call.
 *
 * Threads: one producer and one consumer per stream of a channel; nothing is locked.
 */
#include "board_io.h"
#include "core/device_state.h"
#include "core/log.h"
#include "stream/pool.h"
#include "stream/shared_memory.h"

namespace nvrhal
{
namespace
{

constexpr const char *kSource = "stream.c";

struct Consumer {
    StreamReader reader;
    bool is_started; // set by the first positioning that succeeds, never cleared
};

// Each element is written and read by the one consumer of its stream. Video: the sub stream at the
// channel's number, the main stream at channel + N.
Consumer g_video_consumers[2 * STREAM_POOL_MAX_CHANNELS];
Consumer g_audio_consumers[STREAM_POOL_MAX_CHANNELS];

int32_t put_frame(uint32_t channel, uint32_t frame_type, const FrameInfo &info, int32_t pool)
{
    StreamProducerFrame frame; // only what is read is set: the piece lists are large
    frame.channel = static_cast<int32_t>(channel);
    frame.frame_type = frame_type;
    frame.piece_count = 1;
    frame.reserved = 0;
    frame.piece_lengths[0] = info.length;
    frame.pieces[0] = info.data;
    frame.timestamp = static_cast<uint32_t>(info.pts);
    return kx_stream_sendFrameToPool(&frame, pool);
}

/** Every frame tells the channel's size, also one that the pool refused. */
template <uint32_t count>
void note_size(StreamAttr (&attributes)[count], uint32_t channel, const FrameInfo &info)
{
    if (channel >= count) return;
    store_word(attributes[channel].width, info.width);
    store_word(attributes[channel].height, info.height);
}

template <uint32_t count>
void tell_size(const StreamAttr (&attributes)[count], uint32_t channel, FrameInfo *info)
{
    info->width = channel < count ? load_word(attributes[channel].width) : 0;
    info->height = channel < count ? load_word(attributes[channel].height) : 0;
}

/** Start at the oldest safe frame; again when start-up has run again and the pool is another one. */
bool start_consumer(uint32_t channel, int32_t pool, Consumer *consumer)
{
    const StreamChannel *record = find_stream_channel(static_cast<int32_t>(channel), pool);
    if (consumer->is_started && record && consumer->reader.p_stream_index == record->p_stream_index)
        return true;
    if (kx_stream_getStartPos(static_cast<int32_t>(channel), &consumer->reader, pool) != 0) {
        log_error_line(kSource, "kx_stream_getStartPos failed!");
        return false;
    }
    consumer->is_started = true;
    return true;
}

bool take_frame(uint32_t channel, int32_t pool, Consumer *consumer)
{
    return start_consumer(channel, pool, consumer) &&
           kx_stream_getOneFrame(static_cast<int32_t>(channel), 0, &consumer->reader, pool) >= 1;
}

void describe_bytes(uint32_t channel, const StreamReader &reader, FrameInfo *info)
{
    info->length = reader.data_end - reader.data_start;
    info->data = const_cast<uint8_t *>(reader.p_buf_data) + reader.data_start;
    info->channel = channel;
}

bool get_video(uint32_t channel, uint32_t slot, int32_t pool, FrameInfo *info)
{
    Consumer &consumer = g_video_consumers[slot];
    if (!take_frame(channel, pool, &consumer)) return false;
    const StreamIndexEntry &entry = consumer.reader.p_stream_index[consumer.reader.last_index];
    describe_bytes(channel, consumer.reader, info);
    info->frame_type = load_shared(entry.frame_type);
    info->media = FRAME_MEDIA_VIDEO;
    info->local_time = static_cast<uint64_t>(local_get_curtime());
    info->pts =
        static_cast<uint64_t>(static_cast<int64_t>(static_cast<int32_t>(load_shared(entry.timestamp))));
    return true;
}

bool is_camera(uint32_t channel)
{
    return static_cast<int64_t>(channel) < camera_count() && channel < STREAM_POOL_MAX_CHANNELS;
}

} // namespace
} // namespace nvrhal

using namespace nvrhal;

int64_t local_get_curtime(void)
{
    return board_time_us();
}

int32_t ext_set_primary_video_stream(uint32_t channel, const FrameInfo *frame)
{
    if (!frame) return -1;
    (void)put_frame(channel, frame->frame_type, *frame, STREAM_POOL_MAIN); // 0 even when it was refused
    note_size(major_stream, channel, *frame);
    return 0;
}

int32_t ext_set_network_video_stream(uint32_t channel, const FrameInfo *frame)
{
    if (!frame) return -1;
    const int32_t result = put_frame(channel, frame->frame_type, *frame, STREAM_POOL_SUB);
    note_size(minor_stream, channel, *frame);
    return result;
}

int32_t ext_set_audio_stream(uint32_t channel, const FrameInfo *frame)
{
    if (!frame) return -1;
    return put_frame(channel, kKeyFrame, *frame, STREAM_POOL_AUDIO); // a reader may go on at any block
}

int32_t ext_get_primary_video_stream(uint32_t channel, FrameInfo *frame)
{
    if (!frame || !is_camera(channel)) return -1;
    const uint32_t slot = channel + static_cast<uint32_t>(camera_count());
    if (slot >= 2 * STREAM_POOL_MAX_CHANNELS || !get_video(channel, slot, STREAM_POOL_MAIN, frame)) return -1;
    tell_size(major_stream, channel, frame);
    return 0;
}

int32_t ext_get_network_video_stream(uint32_t channel, FrameInfo *frame)
{
    if (!frame || !is_camera(channel) || !get_video(channel, channel, STREAM_POOL_SUB, frame)) return -1;
    tell_size(minor_stream, channel, frame);
    return 0;
}

int32_t ext_get_audio_stream(uint32_t channel, FrameInfo *frame)
{
    if (!is_camera(channel)) {
        log_error(kSource, "ext_get_audio_stream failed channel:%d!\n", static_cast<int>(channel));
        return -1;
    }
    if (!frame) return -1;
    Consumer &consumer = g_audio_consumers[channel];
    if (!take_frame(channel, STREAM_POOL_AUDIO, &consumer)) return -1;
    describe_bytes(channel, consumer.reader, frame);
    frame->frame_type = 0;
    frame->media = FRAME_MEDIA_AUDIO;
    frame->width = 0;
    frame->height = 0;
    frame->stream_id = channel + 2 * static_cast<uint32_t>(camera_count());
    frame->display_rate = 0;
    frame->local_time = static_cast<uint64_t>(local_get_curtime());
    frame->local_time = static_cast<uint64_t>(local_get_curtime()); // the second reading is the one kept
    frame->pts = 1;                                                 // whatever the producer said
    return 0;
}

int32_t ext_get_audio_speek_stream(void)
{
    log_entry(kSource);
    return -1;
}
