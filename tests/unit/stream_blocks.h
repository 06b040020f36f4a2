/* stream_blocks.h - a reader that gathers blocks of a pool, and frames whose bytes are their time. */
#pragma once

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "stream_support.h"

namespace stream_test
{

constexpr uint32_t kManyBytes = 0x10000000;

inline int32_t put_at(uint32_t timestamp, uint32_t length, uint32_t type = 0, int32_t pool = 0)
{
    const std::vector<uint8_t> bytes(length, static_cast<uint8_t>(timestamp));
    const StreamProducerFrame frame = one_piece(0, type, bytes.data(), length, timestamp);
    return kx_stream_sendFrameToPool(&frame, pool);
}

class StreamBlock : public testing::Test
{
protected:
    void SetUp() override
    {
        channel_ = &make_pool(0, {100, 1000, 60});
        ASSERT_EQ(kx_stream_getStartPos(0, &reader_, 0), 0);
    }

    int32_t block(uint32_t byte_target) { return kx_stream_getBlock(0, byte_target, &reader_, 0); }

    void expect_block(uint32_t start, uint32_t end, uint32_t last_index)
    {
        EXPECT_EQ(reader_.data_start, start);
        EXPECT_EQ(reader_.data_end, end);
        EXPECT_EQ(reader_.last_index, last_index);
    }

    StreamChannel *channel_ = nullptr;
    StreamReader reader_{};
};

} // namespace stream_test
