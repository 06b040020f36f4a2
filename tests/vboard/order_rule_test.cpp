/*
 * order_rule_test.cpp - the rule of display_order.h by itself: order counts go in, a stand-in for
 * libavcodec keeps back as many pictures as it is told, and what comes out is looked at.
 */
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "host/display_order.h"
#include "host/h264_headers.h"

using vboard::DisplayOrder;
using vboard::H264Sequence;

namespace
{

/* Chooses as libavcodec does: the lowest count of the oldest sequence, once more are held than kept. */
class StandInDecoder
{
public:
    explicit StandInDecoder(const H264Sequence &sequence = {}) { order_.set_sequence(sequence); }

    void decode(int order_count, bool is_idr = false)
    {
        if (is_idr && order_.drains_before_idr()) drain();
        if (is_idr) ++sequence_;
        const unsigned keep = order_.goes_in(++id_, order_count, is_idr, DisplayOrder::Coded::frame);
        held_.push_back({id_, sequence_, order_count});
        if (held_.size() > keep) give_one();
        order_.done(keep, false);
        late += order_.take_late();
    }

    // A sequence that begins with an IDR picture of count 0.
    void decode_all(const std::vector<int> &order_counts)
    {
        for (const int order_count : order_counts)
            decode(order_count, order_count == 0);
    }

    void drain()
    {
        while (!held_.empty())
            give_one();
        order_.forget();
        has_shown_ = false;
    }

    size_t held() const { return held_.size(); }

    std::vector<int> shown;
    unsigned late = 0;

private:
    struct Picture {
        uint64_t id;
        unsigned sequence;
        int order_count;
    };

    void give_one()
    {
        const auto next =
            std::min_element(held_.begin(), held_.end(), [](const Picture &a, const Picture &b) {
                return a.sequence != b.sequence ? a.sequence < b.sequence : a.order_count < b.order_count;
            });
        const Picture picture = *next;
        held_.erase(next);
        if (has_shown_ && picture.sequence == last_.sequence && picture.order_count < last_.order_count)
            return;
        has_shown_ = true;
        last_ = picture;
        shown.push_back(picture.order_count);
        order_.came_out(picture.id);
    }

    DisplayOrder order_;
    std::vector<Picture> held_;
    Picture last_ = {};
    bool has_shown_ = false;
    uint64_t id_ = 0;
    unsigned sequence_ = 0;
};

TEST(DisplayOrderRule, CountsThatFollowOneAnotherLeaveAtOnce)
{
    StandInDecoder decoder;
    for (const int count : {0, 2, 4, 6, 0, 2, 4}) {
        decoder.decode(count, count == 0);
        EXPECT_EQ(decoder.held(), 0u) << count;
    }
    EXPECT_EQ(decoder.late, 0u);
}

TEST(DisplayOrderRule, NineOfAHierarchyComeOutWhicheverWayItIsWalked)
{
    const std::vector<int> sorted = {0, 2, 4, 6, 8, 10, 12, 14, 16};
    for (const std::vector<int> &walk :
         {std::vector<int>{0, 16, 8, 4, 2, 6, 12, 10, 14}, std::vector<int>{0, 16, 8, 4, 12, 2, 6, 10, 14}}) {
        StandInDecoder decoder;
        decoder.decode_all(walk);
        EXPECT_LE(decoder.held(), 4u);
        decoder.drain();
        EXPECT_EQ(decoder.shown, sorted);
        EXPECT_EQ(decoder.late, 0u);
    }
}

TEST(DisplayOrderRule, TwoAnchorsBeforeTheirFillingAreWaitedFor)
{
    StandInDecoder decoder;
    decoder.decode_all({0, 4, 8, 2, 6, 12, 16, 10, 14});
    decoder.drain();
    EXPECT_EQ(decoder.shown, (std::vector<int>{0, 2, 4, 6, 8, 10, 12, 14, 16}));
    EXPECT_EQ(decoder.late, 0u);
}

TEST(DisplayOrderRule, AHoleIsWaitedForOnceAndTheDelayEndsAtTheNextIdrPicture)
{
    StandInDecoder decoder;
    decoder.decode_all({0, 2, 4, 8, 10});
    EXPECT_EQ(decoder.held(), 2u); // 6 might still come
    decoder.decode_all({12, 14, 16, 20, 22, 26, 28});
    EXPECT_EQ(decoder.held(), 2u); // the next holes cost nothing more
    decoder.decode_all({0});
    EXPECT_EQ(decoder.held(), 0u);
    EXPECT_EQ(decoder.shown.size(), 13u);
    EXPECT_EQ(decoder.late, 0u);
}

TEST(DisplayOrderRule, ALongerStepIsLearned)
{
    StandInDecoder decoder;
    decoder.decode_all({0, 6, 12, 18, 24, 30, 36, 42});
    EXPECT_LE(decoder.held(), 2u);
    decoder.decode(0, true);
    EXPECT_EQ(decoder.held(), 0u);
    for (const int count : {6, 12, 18}) {
        decoder.decode(count);
        EXPECT_EQ(decoder.held(), 0u) << count;
    }
}

TEST(DisplayOrderRule, AShorterStepCostsOnePictureWhichIsCounted)
{
    StandInDecoder decoder;
    decoder.decode_all({0, 2, 1, 4, 3, 6, 5, 8, 7});
    decoder.drain();
    EXPECT_EQ(decoder.late, 1u);
    EXPECT_EQ(decoder.shown, (std::vector<int>{0, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(DisplayOrderRule, NoMoreIsHeldThanTheDecodedPictureBufferHolds)
{
    H264Sequence small;
    small.decoded_picture_buffer = 2;
    StandInDecoder decoder(small);
    decoder.decode_all({0, 32, 30, 28, 26});
    EXPECT_EQ(decoder.held(), 2u);
    EXPECT_EQ(decoder.shown, (std::vector<int>{0, 28}));
    EXPECT_EQ(decoder.late, 1u); // 26 came after 28 was shown
}

TEST(DisplayOrderRule, ThePatienceGrowsWithWhatWasLate)
{
    StandInDecoder decoder;
    decoder.decode_all({0, 8, 16, 24, 2});
    EXPECT_EQ(decoder.late, 1u);
    decoder.decode_all({0, 8, 16, 24, 2});
    EXPECT_EQ(decoder.late, 1u);
}

TEST(DisplayOrderRule, AStatedReorderingIsWhatIsKeptBack)
{
    H264Sequence stated;
    stated.reorder = 2;
    StandInDecoder decoder(stated);
    for (const size_t held : {1u, 2u, 2u, 2u}) {
        decoder.decode(static_cast<int>(2 * held), decoder.held() == 0);
        EXPECT_EQ(decoder.held(), held);
    }
}

TEST(DisplayOrderRule, OrderCountType2IsNeverReordered)
{
    H264Sequence sequence;
    sequence.order_count_type = 2;
    StandInDecoder decoder(sequence);
    for (const int count : {0, 2, 10, 12}) {
        decoder.decode(count, count == 0);
        EXPECT_EQ(decoder.held(), 0u) << count;
    }
}

TEST(DisplayOrderRule, TwoFieldsAreOnePicture)
{
    DisplayOrder order;
    EXPECT_EQ(order.goes_in(1, 0, true, DisplayOrder::Coded::top_field), 0u);
    order.done(0, false);
    EXPECT_EQ(order.goes_in(2, 1, false, DisplayOrder::Coded::bottom_field), 0u);
    order.came_out(1);
    order.done(0, false);
    EXPECT_FALSE(order.drains_before_idr()); // nothing is held
    EXPECT_EQ(order.take_late(), 0u);
}

TEST(DisplayOrderRule, APictureThatTheDecoderGaveUpDelaysNothing)
{
    DisplayOrder order;
    order.goes_in(1, 0, true, DisplayOrder::Coded::frame);
    order.came_out(1);
    order.done(0, false);
    EXPECT_EQ(order.goes_in(2, 2, false, DisplayOrder::Coded::frame), 0u);
    order.done(0, true); // it never comes out
    EXPECT_EQ(order.goes_in(3, 4, false, DisplayOrder::Coded::frame), 0u);
    EXPECT_EQ(order.take_late(), 0u);
}

// What x264 writes for a 320 x 180 pyramid: High profile, level 1.2, two pictures of reordering.
const std::vector<uint8_t> kPyramidSet = {0,    0,    0,    1,    0x67, 0x64, 0x00, 0x0c, 0xac, 0xd9,
                                          0x41, 0x41, 0x9f, 0x9e, 0x10, 0x00, 0x00, 0x03, 0x00, 0x10,
                                          0x00, 0x00, 0x03, 0x03, 0x20, 0xf1, 0x42, 0x99, 0x60};

TEST(H264Headers, TellReorderingBufferAndIdrPicture)
{
    std::vector<uint8_t> bytes = kPyramidSet;
    vboard::H264UnitHeaders headers = vboard::read_h264_headers(bytes.data(), bytes.size());
    EXPECT_FALSE(headers.has_slice);
    ASSERT_TRUE(headers.sequence);
    EXPECT_EQ(headers.sequence->order_count_type, 0u);
    EXPECT_EQ(headers.sequence->reorder, 2u);
    EXPECT_EQ(headers.sequence->decoded_picture_buffer, 2376u / (20 * 12));
    bytes.insert(bytes.end(), {0, 0, 1, 0x65, 0x88});
    headers = vboard::read_h264_headers(bytes.data(), bytes.size());
    EXPECT_TRUE(headers.is_idr);
    bytes[bytes.size() - 2] = 0x41;
    headers = vboard::read_h264_headers(bytes.data(), bytes.size());
    EXPECT_TRUE(headers.has_slice);
    EXPECT_FALSE(headers.is_idr);
}

// A set that ends in the middle of its fields, and a scaling list whose first step is the largest.
TEST(H264Headers, ASetIsReadNoFurtherThanTheNextUnit)
{
    std::vector<uint8_t> bytes(kPyramidSet.begin(), kPyramidSet.begin() + 10);
    bytes.insert(bytes.end(), {0, 0, 1, 0x68});
    bytes.resize(bytes.size() + 30, 0xFF);
    EXPECT_FALSE(vboard::read_h264_headers(bytes.data(), bytes.size()).sequence);
    // High profile, 4:2:0, a scaling matrix; the first step of its first list is 2^31 - 1.
    bytes = {0, 0, 1, 0x67, 100, 0, 40, 0xAD, 0x80, 0, 0, 3, 0, 0xFF, 0xFF, 0xFF, 0xFE};
    bytes.resize(bytes.size() + 100, 0xFF);
    EXPECT_TRUE(vboard::read_h264_headers(bytes.data(), bytes.size()).sequence);
}

TEST(H264Headers, ASetCutOrChangedAnywhereIsReadWithoutHarm)
{
    for (size_t changed = 4; changed < kPyramidSet.size(); ++changed)
        for (unsigned value = 0; value < 256; ++value) {
            std::vector<uint8_t> bytes = kPyramidSet;
            bytes[changed] = static_cast<uint8_t>(value);
            bytes.resize(changed + 4);
            const vboard::H264UnitHeaders headers = vboard::read_h264_headers(bytes.data(), bytes.size());
            if (!headers.sequence) continue;
            EXPECT_GE(headers.sequence->decoded_picture_buffer, 1u);
            EXPECT_LE(headers.sequence->decoded_picture_buffer, 16u);
        }
}

} // namespace
