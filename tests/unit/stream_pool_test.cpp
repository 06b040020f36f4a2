/* Allocation of the pools, and the writer's side. */
#include "recording_expect.h"
#include "stream_support.h"

#include <cstdlib>

using namespace stream_test;
using nvrhal::g_pstream_ch;

namespace
{

constexpr int kNever = -1;
int allocations_until_failure = kNever; // of malloc and calloc together, while the pool allocates

bool fails_now()
{
    if (allocations_until_failure == kNever) return false;
    return allocations_until_failure-- == 0;
}

} // namespace

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);

void *__wrap_malloc(size_t size)
{
    return fails_now() ? nullptr : __real_malloc(size);
}

void *__wrap_calloc(size_t count, size_t size)
{
    return fails_now() ? nullptr : __real_calloc(count, size);
}
}

namespace
{

int32_t init_with_failure(const StreamPoolConfig &config, int nth_allocation)
{
    allocations_until_failure = nth_allocation;
    const int32_t result = kx_stream_init_avstream(&config, STREAM_POOL_MAIN);
    allocations_until_failure = kNever;
    return result;
}

TEST(StreamInit, PreparesAnEmptyChannel)
{
    const StreamChannel &channel = make_pool(
        STREAM_POOL_MAIN, {NVRHAL_MAIN_FRAME_BYTES, NVRHAL_MAIN_RING_BYTES, NVRHAL_MAIN_RING_FRAMES}, 2);
    for (const StreamChannel *c = &channel; c != &channel + 2; ++c) {
        EXPECT_EQ(c->cur_index, -1);
        EXPECT_EQ(c->next_index, 0u);
        EXPECT_EQ(c->index_circle, 0u);
        EXPECT_EQ(c->data_pos, 0u);
        EXPECT_EQ(c->data_circle, 0u);
        EXPECT_EQ(c->max_frame_len, NVRHAL_MAIN_FRAME_BYTES);
        EXPECT_EQ(c->wrap_data_end, 0u);
        EXPECT_EQ(c->wrap_index, 0u);
        EXPECT_EQ(c->safe_diff, NVRHAL_MAIN_FRAME_BYTES);
        EXPECT_EQ(c->data_size, NVRHAL_MAIN_RING_BYTES);
        EXPECT_EQ(c->resync_step, 12);
        EXPECT_EQ(c->block_max_frames, 256);
        EXPECT_EQ(c->index_num, NVRHAL_MAIN_RING_FRAMES);
        for (int i = 0; i < NVRHAL_MAIN_RING_FRAMES; ++i) {
            EXPECT_EQ(c->p_stream_index[i].data_circle, static_cast<uint32_t>(-3));
            EXPECT_EQ(c->p_stream_index[i].frame_type, 0);
            EXPECT_EQ(c->p_stream_index[i].data_end, 0u);
        }
    }
}

TEST(StreamInit, RaisesSmallSizesAndFillsMissingOnesIn)
{
    const StreamChannel &channel = make_pool(STREAM_POOL_MAIN, {79, 0, 0});
    EXPECT_EQ(channel.max_frame_len, 80);
    EXPECT_EQ(channel.safe_diff, 80);
    EXPECT_EQ(channel.data_size, 0x370000);
    EXPECT_EQ(channel.index_num, 45056);
    EXPECT_EQ(channel.block_max_frames, 15018);

    const StreamChannel &negative = make_pool(STREAM_POOL_SUB, {-1, -1, -1});
    EXPECT_EQ(negative.max_frame_len, 80);
    EXPECT_EQ(negative.data_size, 0x370000);
    EXPECT_EQ(negative.index_num, 45056);

    const StreamChannel &smallest = make_pool(STREAM_POOL_AUDIO, {80, 1, 1});
    EXPECT_EQ(smallest.max_frame_len, 80);
    EXPECT_EQ(smallest.data_size, 1);
    EXPECT_EQ(smallest.index_num, 1);
    EXPECT_EQ(smallest.block_max_frames, 0);
}

TEST(StreamInit, GivesEachChannelItsOwnSizes)
{
    StreamPoolConfig config{};
    config.channel_count = 2;
    config.channels[0] = {100, 1000, 20};
    config.channels[1] = {200, 2000, 30};
    ASSERT_EQ(kx_stream_init_avstream(&config, STREAM_POOL_MAIN), 0);
    EXPECT_EQ(g_pstream_ch[0].data_size, 1000);
    EXPECT_EQ(g_pstream_ch[1].max_frame_len, 200);
    EXPECT_EQ(g_pstream_ch[1].data_size, 2000);
    EXPECT_EQ(g_pstream_ch[1].index_num, 30);
    EXPECT_EQ(g_pstream_ch[2].p_buf_data, nullptr);
}

TEST(StreamInit, RefusesAChannelCountOutsideTheBlock)
{
    for (int32_t count : {0, -1, 44, INT32_MAX}) {
        recording::forget_printed();
        StreamPoolConfig config = same_sizes(1, {100, 1000, 20});
        config.channel_count = count;
        EXPECT_EQ(kx_stream_init_avstream(&config, STREAM_POOL_MAIN), -1);
        EXPECT_PRINTED_WITHOUT_PREFIX(" chu num " + std::to_string(count) + " err");
    }
    make_pool(STREAM_POOL_MAIN, {100, 1000, 20}, 43);
}

TEST(StreamInit, ReportsEachAllocationThatFails)
{
    const StreamPoolConfig config = same_sizes(2, {100, 1000, 20});

    EXPECT_EQ(init_with_failure(config, 0), -1);
    EXPECT_PRINTED_WITHOUT_PREFIX("g_pstream_ch malloc err!");
    EXPECT_EQ(g_pstream_ch, nullptr);
    EXPECT_EQ(kx_stream_destroy_avstream(), 0);

    EXPECT_EQ(init_with_failure(config, 3), -1); // array, ring and index of channel 0, ring of channel 1
    EXPECT_PRINTED_WITHOUT_PREFIX("p_buf_data malloc err!");
    EXPECT_EQ(g_pstream_ch[0].p_buf_data, nullptr) << "the rings allocated so far are freed";
    EXPECT_EQ(kx_stream_destroy_avstream(), 0);

    EXPECT_EQ(init_with_failure(config, 4), -1);
    EXPECT_PRINTED_WITHOUT_PREFIX("p_stream_index malloc err!");
    EXPECT_NE(g_pstream_ch[0].p_buf_data, nullptr) << "nothing is freed";
    EXPECT_NE(g_pstream_ch[1].p_buf_data, nullptr);
    EXPECT_EQ(put(1, 10), -1) << "a pool that failed is no pool";
    EXPECT_EQ(kx_stream_destroy_avstream(), 0);

    EXPECT_EQ(init_with_failure(config, 5), 0);
    EXPECT_EQ(put(1, 10), 0);
}

TEST(StreamInit, AnUnknownPoolAllocatesAndStoresNothing)
{
    const StreamPoolConfig config = same_sizes(1, {100, 1000, 20});
    for (int32_t pool : {3, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(kx_stream_init_avstream(&config, pool), 0);
        EXPECT_NE(g_pstream_ch, nullptr);
        for (int32_t known = 0; known < 3; ++known)
            EXPECT_EQ(put(1, 10, 1, known), -1);
        EXPECT_EQ(kx_stream_destroy_avstream(), 0);
    }
}

TEST(StreamSecondInit, KeepsTheEarlierRingsForThoseWhoStillReadThem)
{
    make_pool(STREAM_POOL_MAIN, {100, 1000, 20});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, STREAM_POOL_MAIN), 0);
    ASSERT_EQ(put(1, 30), 0);
    ASSERT_EQ(next_frame(reader), 1);
    const StreamReader held = reader;

    make_pool(STREAM_POOL_MAIN, {100, 1000, 20});
    ASSERT_EQ(put(2, 30), 0);
    EXPECT_EQ(next_frame(reader), -1) << "a reader of the earlier pool is no reader of this one";
    EXPECT_EQ(image(&reader, sizeof reader), image(&held, sizeof held));
    EXPECT_EQ(delivered(held, 30), 1) << "what it was given is still there";

    ASSERT_EQ(kx_stream_getStartPos(0, &reader, STREAM_POOL_MAIN), 0);
    EXPECT_EQ(next_frame(reader), 2);
}

TEST(StreamSecondInit, ThatFailsLeavesTheEarlierPoolInService)
{
    make_pool(STREAM_POOL_MAIN, {100, 1000, 20});
    StreamReader reader;
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, STREAM_POOL_MAIN), 0);
    ASSERT_EQ(put(1, 30), 0);
    EXPECT_EQ(init_with_failure(same_sizes(1, {100, 1000, 20}), 1), -1);
    EXPECT_EQ(kx_stream_destroy_avstream(), 0) << "of what the failed one had allocated";
    ASSERT_EQ(put(2, 30), 0);
    EXPECT_EQ(next_frame(reader), 1);
    EXPECT_EQ(next_frame(reader), 2);
}

TEST(StreamDestroy, TearsDownOnlyThePoolInitialisedLast)
{
    make_pool(STREAM_POOL_MAIN, {100, 1000, 20});
    make_pool(STREAM_POOL_SUB, {100, 1000, 20});
    EXPECT_EQ(kx_stream_destroy_avstream(), 0);
    EXPECT_EQ(g_pstream_ch, nullptr);
    EXPECT_EQ(put(1, 10, 1, STREAM_POOL_SUB), -1);
    EXPECT_EQ(put(1, 10, 1, STREAM_POOL_MAIN), 0);
    EXPECT_EQ(kx_stream_destroy_avstream(), 0) << "the pointer is forgotten";
    EXPECT_EQ(put(2, 10, 1, STREAM_POOL_MAIN), 0);
}

TEST(StreamWrite, JoinsThePiecesAndFillsTheEntry)
{
    StreamChannel &channel = make_pool(STREAM_POOL_MAIN, {100, 1000, 20});
    StreamProducerFrame frame{};
    frame.frame_type = 0x102; // the entry keeps 8 bits
    frame.piece_count = 4;
    frame.timestamp = 0xFEDCBA98;
    frame.reserved = 77;
    const char *parts[] = {"ab", "", "cde", "f"};
    for (int i = 0; i < 4; ++i) {
        frame.piece_lengths[i] = static_cast<uint32_t>(std::string(parts[i]).size());
        frame.pieces[i] = i == 1 ? nullptr : parts[i]; // a piece without bytes is not looked at
    }
    ASSERT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), 0);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(channel.p_buf_data), 6), "abcdef");
    const StreamIndexEntry &entry = channel.p_stream_index[0];
    EXPECT_EQ(entry.frame_type, 2);
    EXPECT_EQ(entry.zero[0] | entry.zero[1] | entry.zero[2], 0);
    EXPECT_EQ(entry.timestamp, 0xFEDCBA98);
    EXPECT_EQ(entry.reserved, 0u);
    EXPECT_EQ(entry.data_start, 0u);
    EXPECT_EQ(entry.data_end, 6u);
    EXPECT_EQ(entry.data_circle, 0u);
    EXPECT_EQ(entry.index_circle, 0u);
    EXPECT_EQ(channel.cur_index, 0);
    EXPECT_EQ(channel.next_index, 1u);
    EXPECT_EQ(channel.data_pos, 6u);
}

TEST(StreamWrite, TakesAHundredPieces)
{
    StreamChannel &channel = make_pool(STREAM_POOL_MAIN, {100, 1000, 20});
    StreamProducerFrame frame{};
    frame.piece_count = 100;
    const char byte = 'x';
    for (int i = 0; i < 100; ++i) {
        frame.piece_lengths[i] = 1;
        frame.pieces[i] = &byte;
    }
    EXPECT_EQ(kx_stream_sendFrameToPool(&frame, STREAM_POOL_MAIN), 0);
    EXPECT_EQ(channel.data_pos, 100u);
}

TEST(StreamWrite, AFrameThatJustFitsStaysInItsLap)
{
    StreamChannel &channel = make_pool(STREAM_POOL_MAIN, {100, 250, 20});
    ASSERT_EQ(put(0, 100), 0);
    ASSERT_EQ(put(1, 100), 0);
    ASSERT_EQ(put(2, 50), 0);
    EXPECT_EQ(channel.p_stream_index[2].data_start, 200u);
    EXPECT_EQ(channel.p_stream_index[2].data_end, 250u);
    EXPECT_EQ(channel.data_circle, 0u);
    ASSERT_EQ(put(3, 1), 0);
    EXPECT_EQ(channel.p_stream_index[3].data_start, 0u);
    EXPECT_EQ(channel.p_stream_index[3].data_circle, 1u);
    EXPECT_EQ(channel.wrap_data_end, 250u);
    EXPECT_EQ(channel.wrap_index, 2u);
}

TEST(StreamWrite, OneByteMoreBeginsANewLap)
{
    StreamChannel &channel = make_pool(STREAM_POOL_MAIN, {100, 250, 20});
    ASSERT_EQ(put(0, 100), 0);
    ASSERT_EQ(put(1, 100), 0);
    ASSERT_EQ(put(2, 51), 0);
    EXPECT_EQ(channel.p_stream_index[2].data_start, 0u);
    EXPECT_EQ(channel.p_stream_index[2].data_end, 51u);
    EXPECT_EQ(channel.p_stream_index[2].data_circle, 1u);
    EXPECT_EQ(channel.data_circle, 1u);
    EXPECT_EQ(channel.data_pos, 51u);
    EXPECT_EQ(channel.wrap_data_end, 200u);
    EXPECT_EQ(channel.wrap_index, 1u);
}

TEST(StreamWrite, TheIndexRingWraps)
{
    StreamChannel &channel = make_pool(STREAM_POOL_MAIN, {100, 1000, 4});
    for (uint32_t i = 0; i < 3; ++i)
        ASSERT_EQ(put(i, 5), 0);
    EXPECT_EQ(channel.next_index, 3u);
    EXPECT_EQ(channel.index_circle, 0u);
    ASSERT_EQ(put(3, 5), 0);
    EXPECT_EQ(channel.cur_index, 3);
    EXPECT_EQ(channel.next_index, 0u);
    EXPECT_EQ(channel.index_circle, 1u);
    EXPECT_EQ(channel.p_stream_index[3].index_circle, 0u) << "the lap it was written in";
    ASSERT_EQ(put(4, 5), 0);
    EXPECT_EQ(channel.cur_index, 0);
    EXPECT_EQ(channel.p_stream_index[0].index_circle, 1u);
    EXPECT_EQ(channel.p_stream_index[0].timestamp, 4u);
}

TEST(StreamWrite, ChannelsAndPoolsAreApart)
{
    make_pool(STREAM_POOL_MAIN, {100, 1000, 20}, 8);
    StreamChannel *main_pool = g_pstream_ch;
    make_pool(STREAM_POOL_SUB, {100, 1000, 20}, 8);
    StreamChannel *sub_pool = g_pstream_ch;
    ASSERT_EQ(put(1, 10, 1, STREAM_POOL_MAIN, 7), 0);
    EXPECT_EQ(main_pool[7].cur_index, 0);
    EXPECT_EQ(main_pool[6].cur_index, -1);
    EXPECT_EQ(sub_pool[7].cur_index, -1);
}

} // namespace
