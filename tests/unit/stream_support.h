/*
 * stream_support.h - pools of chosen sizes and frames whose bytes tell what they are.
 *
 * Byte i of frame number n is payload_byte(n, i), so that a delivered frame can be told from every
 * other and from a mixture of two.
 */
#pragma once

#include "nvrhal.h"
#include "stream/pool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace stream_test
{

inline uint8_t payload_byte(uint64_t number, uint32_t i)
{
    return static_cast<uint8_t>((number * 0x9E3779B97F4A7C15ull >> 32) + i * 29);
}

inline std::vector<uint8_t> payload(uint64_t number, uint32_t length)
{
    std::vector<uint8_t> bytes(length);
    for (uint32_t i = 0; i < length; ++i)
        bytes[i] = payload_byte(number, i);
    return bytes;
}

inline StreamPoolConfig same_sizes(int32_t channels, StreamRingSizes sizes)
{
    StreamPoolConfig config{};
    config.channel_count = channels;
    for (int32_t i = 0; i < channels && i < STREAM_POOL_MAX_CHANNELS; ++i)
        config.channels[i] = sizes;
    return config;
}

inline StreamProducerFrame one_piece(int32_t channel, uint32_t type, const void *bytes, uint32_t length,
                                     uint32_t timestamp)
{
    StreamProducerFrame frame{};
    frame.channel = channel;
    frame.frame_type = type;
    frame.piece_count = 1;
    frame.piece_lengths[0] = length;
    frame.pieces[0] = bytes;
    frame.timestamp = timestamp;
    return frame;
}

/** Pools that are replaced stay reachable, as they do in a program whose threads still use them. */
inline void keep_reachable(const StreamChannel *channels)
{
    static auto &kept = *new std::vector<const StreamChannel *>;
    kept.push_back(channels);
}

inline StreamChannel &make_pool(int32_t pool, StreamRingSizes sizes, int32_t channels = 1)
{
    const StreamPoolConfig config = same_sizes(channels, sizes);
    EXPECT_EQ(kx_stream_init_avstream(&config, pool), 0);
    keep_reachable(nvrhal::g_pstream_ch);
    return nvrhal::g_pstream_ch[0];
}

/** Store frame `number` of a channel; its time stamp is its number. */
inline int32_t put(uint64_t number, uint32_t length, uint32_t type = 1, int32_t pool = 0, int32_t channel = 0)
{
    const std::vector<uint8_t> bytes = payload(number, length);
    const StreamProducerFrame frame =
        one_piece(channel, type, bytes.data(), length, static_cast<uint32_t>(number));
    return kx_stream_sendFrameToPool(&frame, pool);
}

/** The frame number that a read delivered, or -1; the bytes are compared whole. */
inline int64_t delivered(const StreamReader &reader, int32_t length)
{
    if (length <= 0) return -1;
    const uint32_t number = reader.p_stream_index[reader.last_index].timestamp;
    EXPECT_EQ(reader.data_end - reader.data_start, static_cast<uint32_t>(length));
    const uint8_t *at = reader.p_buf_data + reader.data_start;
    EXPECT_EQ(std::vector<uint8_t>(at, at + length), payload(number, static_cast<uint32_t>(length)));
    return number;
}

/** Read one frame; its number, or -1 when there is none. */
inline int64_t next_frame(StreamReader &reader, int32_t skip_limit = 0, int32_t pool = 0, int32_t channel = 0)
{
    return delivered(reader, kx_stream_getOneFrame(channel, skip_limit, &reader, pool));
}

inline std::vector<uint8_t> image(const void *record, size_t size)
{
    const auto *at = static_cast<const uint8_t *>(record);
    return {at, at + size};
}

} // namespace stream_test
