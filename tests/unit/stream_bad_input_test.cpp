/* What the pools refuse: a defined failure, and nothing stored anywhere. */
#include "recording_expect.h"
#include "stream_support.h"

using namespace stream_test;
using nvrhal::g_pstream_ch;

namespace
{

constexpr int32_t kBadPools[] = {-1, 3, 4, INT32_MAX, INT32_MIN};
constexpr int32_t kBadChannels[] = {-1, 2, 7, 8, 42, 43, 255, INT32_MAX, INT32_MIN};

class StreamBadInput : public testing::Test
{
protected:
    void SetUp() override
    {
        channel_ = &make_pool(STREAM_POOL_MAIN, {100, 1000, 20}, 2);
        ASSERT_EQ(put(1, 30), 0);
        before_ = everything();
    }

    std::vector<uint8_t> everything() const
    {
        std::vector<uint8_t> all = image(channel_, sizeof *channel_ * STREAM_POOL_MAX_CHANNELS);
        for (int i = 0; i < 2; ++i) {
            const auto index = image(channel_[i].p_stream_index, 20 * sizeof(StreamIndexEntry));
            all.insert(all.end(), index.begin(), index.end());
        }
        const auto data = image(channel_->p_buf_data, 30); // the rest of the ring was never written
        all.insert(all.end(), data.begin(), data.end());
        return all;
    }

    void expect_nothing_stored() { EXPECT_EQ(everything(), before_); }

    StreamChannel *channel_ = nullptr;
    std::vector<uint8_t> before_;
};

TEST_F(StreamBadInput, ANullFrame)
{
    EXPECT_EQ(kx_stream_sendFrameToPool(nullptr, STREAM_POOL_MAIN), -1);
    EXPECT_PRINTED_WITHOUT_PREFIX("kx_stream_sendFrameToPool-error frame ch:-1");
    expect_nothing_stored();
}

TEST_F(StreamBadInput, ChannelsThatDoNotExistOrAreNotConfigured)
{
    const char byte = 'x';
    for (int32_t number : kBadChannels) {
        const StreamProducerFrame frame = one_piece(number, 1, &byte, 1, 0);
        EXPECT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), -1) << number;
        EXPECT_PRINTED_WITHOUT_PREFIX("kx_stream_sendFrameToPool-error frame ch:" + std::to_string(number));
    }
    expect_nothing_stored();
}

TEST_F(StreamBadInput, AProducerStopsAtChannel7EvenWhenMoreAreConfigured)
{
    make_pool(STREAM_POOL_SUB, {100, 1000, 20}, 16);
    EXPECT_EQ(put(1, 10, 1, STREAM_POOL_SUB, 7), 0);
    EXPECT_EQ(put(1, 10, 1, STREAM_POOL_SUB, 8), -1);
    EXPECT_PRINTED_WITHOUT_PREFIX("kx_stream_sendFrameToPool-error frame ch:8");
}

TEST_F(StreamBadInput, PieceCounts)
{
    const char byte = 'x';
    StreamProducerFrame frame = one_piece(0, 1, &byte, 1, 0);
    for (int32_t count : {101, -1, INT32_MAX, INT32_MIN}) {
        recording::forget_printed();
        frame.piece_count = count;
        EXPECT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), -1) << count;
        EXPECT_PRINTED_WITHOUT_PREFIX("kx_stream_sendFrameToPool-error frame ch:0");
    }
    expect_nothing_stored();
}

TEST_F(StreamBadInput, EmptyFramesWhichNoReaderCouldStepOver)
{
    recording::forget_printed();
    StreamProducerFrame frame = one_piece(0, 1, "x", 0, 0);
    EXPECT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), -1);
    frame.piece_count = 0;
    EXPECT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), -1);
    EXPECT_EQ(recording::printed_text(), "");
    expect_nothing_stored();
}

TEST_F(StreamBadInput, FramesAboveTheLargestAreDroppedSilently)
{
    recording::forget_printed();
    EXPECT_EQ(put(2, 101), -1);
    EXPECT_EQ(recording::printed_text(), "");
    expect_nothing_stored();
    EXPECT_EQ(put(2, 100), 0);
}

TEST_F(StreamBadInput, SumsThatOverflow)
{
    StreamProducerFrame frame = one_piece(0, 1, "x", 0x80000000u, 0);
    EXPECT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), -1);
    frame.piece_count = 2; // 2^32 + 10 bytes
    frame.piece_lengths[1] = 0x8000000Au;
    frame.pieces[1] = "x";
    EXPECT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), -1);
    frame.piece_lengths[0] = 0xFFFFFFFFu;
    frame.piece_lengths[1] = 11;
    EXPECT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), -1);
    frame.piece_count = 100;
    for (int i = 0; i < 100; ++i) {
        frame.piece_lengths[i] = 0xFFFFFFFFu;
        frame.pieces[i] = "x";
    }
    EXPECT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), -1);
    expect_nothing_stored();
}

TEST_F(StreamBadInput, APieceWithoutMemory)
{
    const StreamProducerFrame frame = one_piece(0, 1, nullptr, 5, 0);
    EXPECT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), -1);
    expect_nothing_stored();
}

TEST_F(StreamBadInput, FramesLargerThanTheRing)
{
    StreamChannel &small = make_pool(STREAM_POOL_SUB, {200, 150, 20});
    EXPECT_EQ(put(1, 151, 1, STREAM_POOL_SUB), -1);
    EXPECT_EQ(small.cur_index, -1);
    EXPECT_EQ(small.data_pos, 0u);
    EXPECT_EQ(put(1, 150, 1, STREAM_POOL_SUB), 0);
    EXPECT_EQ(put(2, 150, 1, STREAM_POOL_SUB), 0) << "the whole ring, lap by lap";
    EXPECT_EQ(small.data_circle, 1u);
}

TEST_F(StreamBadInput, PoolsThatDoNotExistOrAreNotInitialised)
{
    StreamReader reader{};
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, STREAM_POOL_MAIN), 0);
    const std::vector<uint8_t> as_positioned = image(&reader, sizeof reader);
    auto expect_refused = [&](int32_t pool) {
        EXPECT_EQ(put(2, 10, 1, pool), -1) << pool;
        EXPECT_EQ(kx_stream_getLastPos(0, &reader, pool), -1) << pool;
        EXPECT_EQ(kx_stream_getStartPos(0, &reader, pool), -1) << pool;
        EXPECT_EQ(kx_stream_getOneFrame(0, 0, &reader, pool), 0) << pool;
        EXPECT_EQ(kx_stream_getBlock(0, 100, &reader, pool), 0) << pool;
        EXPECT_EQ(image(&reader, sizeof reader), as_positioned) << pool;
    };
    for (int32_t pool : kBadPools)
        expect_refused(pool);
    expect_refused(STREAM_POOL_AUDIO); // not initialised
    expect_nothing_stored();
}

TEST_F(StreamBadInput, ReadersOnChannelsThatDoNotExist)
{
    StreamReader reader{};
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, STREAM_POOL_MAIN), 0);
    const std::vector<uint8_t> as_positioned = image(&reader, sizeof reader);
    for (int32_t number : kBadChannels) {
        EXPECT_EQ(kx_stream_getLastPos(number, &reader, STREAM_POOL_MAIN), -1) << number;
        EXPECT_EQ(kx_stream_getStartPos(number, &reader, STREAM_POOL_MAIN), -1) << number;
        EXPECT_EQ(kx_stream_getOneFrame(number, 0, &reader, STREAM_POOL_MAIN), 0) << number;
        EXPECT_EQ(kx_stream_getBlock(number, 100, &reader, STREAM_POOL_MAIN), 0) << number;
        EXPECT_EQ(image(&reader, sizeof reader), as_positioned) << number;
    }
}

TEST_F(StreamBadInput, NullReaders)
{
    EXPECT_EQ(kx_stream_getLastPos(0, nullptr, STREAM_POOL_MAIN), -1);
    EXPECT_EQ(kx_stream_getStartPos(0, nullptr, STREAM_POOL_MAIN), -1);
    EXPECT_EQ(kx_stream_getOneFrame(0, 0, nullptr, STREAM_POOL_MAIN), 0);
    EXPECT_EQ(kx_stream_getBlock(0, 100, nullptr, STREAM_POOL_MAIN), 0);
    EXPECT_EQ(kx_stream_init_avstream(nullptr, STREAM_POOL_MAIN), -1);
}

TEST_F(StreamBadInput, ReadersOfAnotherChannelOrOfNone)
{
    StreamReader other{};
    ASSERT_EQ(kx_stream_getStartPos(1, &other, STREAM_POOL_MAIN), 0);
    StreamReader blank{};
    for (StreamReader *reader : {&other, &blank}) {
        const std::vector<uint8_t> as_it_was = image(reader, sizeof *reader);
        EXPECT_EQ(kx_stream_getOneFrame(0, 0, reader, STREAM_POOL_MAIN), 0);
        EXPECT_EQ(kx_stream_getBlock(0, 1, reader, STREAM_POOL_MAIN), 0);
        EXPECT_EQ(image(reader, sizeof *reader), as_it_was);
    }
}

TEST_F(StreamBadInput, DamagedReadersNeverLeaveTheRings)
{
    for (uint32_t i = 2; i < 200; ++i)
        ASSERT_EQ(put(i, 1 + i % 90), 0);
    const uint32_t values[] = {0, 1, 19, 20, 21, 1000, 0x7FFFFFFF, 0x80000000u, 0xFFFFFFFDu, 0xFFFFFFFFu};
    constexpr int kWords = 8;
    for (int word = 0; word < kWords; ++word) {
        for (uint32_t value : values) {
            for (uint32_t target : {1u, 300u, STREAM_BLOCK_WHOLE_LAP}) {
                StreamReader reader{};
                ASSERT_EQ(kx_stream_getLastPos(0, &reader, STREAM_POOL_MAIN), 0);
                ASSERT_GT(kx_stream_getOneFrame(0, 0, &reader, STREAM_POOL_MAIN), 0);
                ASSERT_EQ(put(1000, 20), 0);
                uint32_t *words[kWords] = {&reader.index,       &reader.last_index,  &reader.index_circle,
                                           &reader.block_index, &reader.block_count, &reader.data_start,
                                           &reader.data_end,    &reader.data_circle};
                *words[word] = value;
                StreamReader block_reader = reader;
                const int32_t length = kx_stream_getOneFrame(0, 0, &reader, STREAM_POOL_MAIN);
                if (length > 0) {
                    EXPECT_LE(reader.data_end, 1000u);
                    EXPECT_LT(reader.data_start, reader.data_end);
                }
                if (kx_stream_getBlock(0, target, &block_reader, STREAM_POOL_MAIN) > 0) {
                    EXPECT_LE(block_reader.data_end, 1000u);
                    EXPECT_LT(block_reader.data_start, block_reader.data_end);
                }
            }
        }
    }
}

} // namespace
