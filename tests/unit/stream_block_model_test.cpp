/*
 * Random writes and blocks of several sizes, each block checked against all frames ever written: a
 * run of whole frames, in order and never twice, after a gap first a key frame, ended by what the
 * request and the rings demand. Frame numbers are the time stamps, which never jump.
 */
#include "recording_expect.h"
#include "stream_support.h"

#include <random>

using namespace stream_test;

namespace
{

constexpr int kBlockOperations = 300'000; // a case

struct BlockCase {
    const char *name;
    StreamRingSizes sizes;
    uint32_t longest_bytes;
    uint32_t writes_in_8; // of 8 operations

    friend void PrintTo(const BlockCase &rule, std::ostream *out) { *out << rule.name; }
};

constexpr BlockCase kBlockCases[] = {
    {"data_ring_is_the_limit", {80, 700, 64}, 80, 5},
    {"index_ring_is_the_limit", {80, 4000, 31}, 30, 5},
    {"quick_reader", {80, 1500, 60}, 80, 3},
    {"slow_reader", {80, 1500, 60}, 80, 7},
};

struct Frame {
    uint32_t length;
    bool is_key;
    uint32_t lap;
};

class StreamBlockModel : public testing::TestWithParam<BlockCase>
{
protected:
    void SetUp() override
    {
        channel_ = &make_pool(0, GetParam().sizes);
        ASSERT_EQ(kx_stream_getStartPos(0, &reader_, 0), 0);
    }

    void write()
    {
        const uint32_t length = 1 + static_cast<uint32_t>(random_()) % GetParam().longest_bytes;
        const bool is_key = random_() % 5 == 0;
        ASSERT_EQ(put(frames_.size(), length, is_key), 0);
        frames_.push_back({length, is_key, channel_->data_circle});
    }

    void take_block()
    {
        constexpr uint32_t kTargets[] = {1, 60, 200, 500, 0x10000000, STREAM_BLOCK_WHOLE_LAP};
        const uint32_t target = target_;
        const int32_t result = kx_stream_getBlock(0, target, &reader_, 0);
        recording::forget_printed();
        if (result == 0) return; // and goes on with this target: what was scanned was judged by it
        target_ = kTargets[random_() % std::size(kTargets)];
        const int64_t first = reader_.p_stream_index[reader_.index].timestamp;
        const int64_t last = reader_.p_stream_index[reader_.last_index].timestamp;
        ASSERT_GT(first, last_) << "in order and never twice";
        ASSERT_GE(last, first);
        if (first != last_ + 1) {
            ++gaps_;
            ASSERT_TRUE(last_ < 0 || frames_.at(first).is_key) << first;
        }
        last_ = last;
        expect_bytes(first, last);
        expect_end(result, target, first, last);
        ++blocks_;
        several_ += last > first;
    }

    void expect_bytes(int64_t first, int64_t last)
    {
        std::vector<uint8_t> expected;
        for (int64_t number = first; number <= last; ++number) {
            ASSERT_EQ(frames_.at(number).lap, frames_.at(first).lap) << "one lap";
            const auto bytes = payload(static_cast<uint64_t>(number), frames_.at(number).length);
            expected.insert(expected.end(), bytes.begin(), bytes.end());
        }
        const uint8_t *at = reader_.p_buf_data;
        ASSERT_EQ(std::vector<uint8_t>(at + reader_.data_start, at + reader_.data_end), expected);
        ASSERT_EQ(reader_.data_circle, frames_.at(first).lap);
        ASSERT_EQ(reader_.index_circle, static_cast<uint32_t>(last / channel_->index_num));
    }

    /** The block ended where it had to and no earlier. */
    void expect_end(int32_t result, uint32_t target, int64_t first, int64_t last)
    {
        const auto newest = static_cast<int64_t>(frames_.size()) - 1;
        const bool ends_lap = last < newest && frames_.at(last + 1).lap != frames_.at(last).lap;
        if (target == STREAM_BLOCK_WHOLE_LAP) {
            ASSERT_EQ(result, last == newest ? 3 : 2);
            ASSERT_TRUE(last == newest || ends_lap);
            return;
        }
        ASSERT_EQ(result, 2);
        const uint32_t bytes = reader_.data_end - reader_.data_start;
        const int64_t count = last - first + 1;
        ASSERT_LE(count, channel_->block_max_frames + 1);
        // An entry that ends where the previous lap ended counts as the last of its lap as well.
        ASSERT_TRUE(bytes >= target || count == channel_->block_max_frames + 1 || ends_lap ||
                    reader_.data_end == channel_->wrap_data_end);
        ASSERT_LT(bytes - frames_.at(last).length, target) << "ends with the frame that reaches it";
    }

    std::mt19937 random_{20251121};
    StreamChannel *channel_ = nullptr;
    StreamReader reader_{};
    std::vector<Frame> frames_;
    uint32_t target_ = 200;
    int64_t last_ = -1; // frame delivered last
    int64_t blocks_ = 0, several_ = 0, gaps_ = 0;
};

TEST_P(StreamBlockModel, EveryBlockIsARunOfFramesThatEndsWhereItMust)
{
    for (int operation = 0; operation < kBlockOperations && !HasFatalFailure(); ++operation) {
        if (random_() % 8 < GetParam().writes_in_8)
            write();
        else
            take_block();
    }
    EXPECT_GT(blocks_, kBlockOperations / 100);
    EXPECT_GT(several_, kBlockOperations / 200);
    if (GetParam().writes_in_8 > 3) {
        EXPECT_GT(gaps_, 100);
    }
}

INSTANTIATE_TEST_SUITE_P(Rings, StreamBlockModel, testing::ValuesIn(kBlockCases),
                         [](const auto &tested) { return tested.param.name; });

} // namespace
