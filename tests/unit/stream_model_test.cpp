/*
 * Millions of random writes and reads, each checked against the list of all frames ever written.
 *
 * One thread: the pool's rules by themselves, on every path and far from every bound. Each read is
 * checked for its result, every word of the reader, the frame's bytes, and the promises made to
 * readers: in order, never twice, after a gap first a key frame.
 */
#include "recording_expect.h"
#include "stream_model.h"
#include "stream_support.h"

#include <cstring>
#include <random>

using namespace stream_test;

namespace
{

constexpr int kReaders = 5;
constexpr int64_t kOperations = 600'000; // a case

struct Case {
    const char *name;
    StreamRingSizes sizes;
    uint32_t longest_bytes;
    uint32_t key_every;
    uint32_t first_lap;
    uint32_t writes_in_8; // of 8 operations

    friend void PrintTo(const Case &rule, std::ostream *out) { *out << rule.name; }
};

constexpr Case kCases[] = {
    {"data_ring_is_the_limit", {80, 400, 64}, 80, 4, 0, 3},
    {"index_ring_is_the_limit", {80, 4000, 20}, 30, 3, 0, 4},
    {"both_rings_are_the_limit", {80, 900, 30}, 60, 5, 0, 4},
    {"smallest_index_ring", {80, 500, 13}, 80, 2, 0, 3},
    {"slow_readers", {80, 1200, 40}, 80, 6, 0, 7},
    {"quick_readers", {80, 1000, 50}, 80, 8, 0, 1},
    {"rare_key_frames", {80, 700, 50}, 80, 40, 0, 4},
    {"only_key_frames", {80, 340, 40}, 80, 1, 0, 3},
    {"laps_wrap_around", {80, 400, 17}, 80, 3, 0xFFFFFFF0u, 3},
    {"laps_wrap_around_late", {80, 640, 24}, 80, 3, 0xFFFFFF00u, 4},
};

class StreamModel : public testing::TestWithParam<Case>
{
};

std::string case_name(const testing::TestParamInfo<Case> &info)
{
    return info.param.name;
}

struct Follower {
    StreamReader words{};
    ModelReader model{};
    int64_t last = -1; // frame delivered last since it was positioned
    bool is_positioned = false;
    int32_t skip_limit = 0;
};

void expect_words(const StreamReader &words, StreamReader expected, const StreamChannel &channel)
{
    expected.p_stream_index = channel.p_stream_index;
    expected.p_buf_data = channel.p_buf_data;
    expected.block_index = words.block_index; // of the block reader alone
    expected.block_count = words.block_count;
    EXPECT_EQ(words.index, expected.index);
    EXPECT_EQ(words.last_index, expected.last_index);
    EXPECT_EQ(words.index_circle, expected.index_circle);
    EXPECT_EQ(words.index_num, expected.index_num);
    EXPECT_EQ(words.data_start, expected.data_start);
    EXPECT_EQ(words.data_end, expected.data_end);
    EXPECT_EQ(words.data_circle, expected.data_circle);
    EXPECT_EQ(words.p_stream_index, expected.p_stream_index);
    EXPECT_EQ(words.p_buf_data, expected.p_buf_data);
}

TEST_P(StreamModel, EveryResultEveryWordEveryByte)
{
    const Case &rule = GetParam();
    StreamChannel &channel = make_pool(0, rule.sizes);
    channel.data_circle = channel.index_circle = rule.first_lap;
    Model model(static_cast<uint32_t>(channel.data_size), static_cast<uint32_t>(channel.index_num),
                static_cast<uint32_t>(channel.safe_diff), rule.first_lap);
    std::mt19937 random(20240607);
    Follower followers[kReaders];
    int64_t deliveries = 0, gaps = 0, refused_positions = 0;

    for (int64_t operation = 0; operation < kOperations && !HasFailure(); ++operation) {
        // Readers of preset laps begin at the first frame: an empty place always stands for lap 0.
        if (random() % 8 < rule.writes_in_8 || (rule.first_lap != 0 && model.frames().empty())) {
            const uint32_t length = 1 + static_cast<uint32_t>(random()) % rule.longest_bytes;
            const uint32_t type = random() % rule.key_every == 0 ? 1 : 0;
            const uint64_t number = model.frames().size();
            ASSERT_EQ(put(number, length, type), 0);
            model.write(length, type, static_cast<uint32_t>(number));
            continue;
        }
        Follower &follower = followers[random() % kReaders];
        if (!follower.is_positioned || random() % 500 == 0) {
            follower = {};
            follower.skip_limit = static_cast<int32_t>(random() % 3 == 0 ? random() % 10 : 0);
            if (random() % 2) {
                ASSERT_EQ(kx_stream_getLastPos(0, &follower.words, 0), 0);
                follower.model = model.newest_position();
                follower.is_positioned = true;
            } else {
                const std::optional<ModelReader> place = model.oldest_position();
                ASSERT_EQ(kx_stream_getStartPos(0, &follower.words, 0), place ? 0 : -1);
                follower.is_positioned = place.has_value();
                refused_positions += !place;
                if (!place) continue;
                follower.model = *place;
            }
            expect_words(follower.words, model.words(follower.model), channel);
            recording::forget_printed();
            continue;
        }
        const StreamReader before = follower.words;
        const ModelFrame *expected = model.read(follower.model, follower.skip_limit);
        const int32_t result = kx_stream_getOneFrame(0, follower.skip_limit, &follower.words, 0);
        if (!expected) {
            EXPECT_EQ(result, 0);
            EXPECT_EQ(memcmp(&before, &follower.words, sizeof before), 0);
            continue;
        }
        ASSERT_EQ(result, static_cast<int32_t>(expected->end - expected->start));
        expect_words(follower.words, model.words(follower.model), channel);
        const int64_t number = delivered(follower.words, result); // compares the bytes
        EXPECT_EQ(number, expected->timestamp);
        EXPECT_GT(number, follower.last);
        if (follower.last >= 0 && number != follower.last + 1) {
            EXPECT_EQ(expected->type, 1u);
            ++gaps;
        }
        follower.last = number;
        ++deliveries;
    }
    EXPECT_GT(deliveries, kOperations / 50);
    if (rule.writes_in_8 > 1) {
        EXPECT_GT(gaps, 100);
    }
    RecordProperty("deliveries", static_cast<int>(deliveries));
    RecordProperty("gaps", static_cast<int>(gaps));
    RecordProperty("refused_positions", static_cast<int>(refused_positions));
}

INSTANTIATE_TEST_SUITE_P(Rings, StreamModel, testing::ValuesIn(kCases), case_name);

} // namespace
