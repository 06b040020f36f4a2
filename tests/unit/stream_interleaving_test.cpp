/*
 * Every interleaving of a small pool's writer with readers: never a damaged frame, never out of
 * order, never twice, after an overrun first a key frame.
 *
 * The bound. From the moment when a reader's call looks at cur_index and finds frame c the newest,
 * to the moment when the reader is done with the bytes, the writer may
 *   - advance by at most safe_diff bytes of ring from the end of frame c, bytes left unused at the
 *     ring's end included, a frame that is being written counted whole; and
 *   - have begun at most 11 frames after c (12 = resync_step would reach the reader's entry).
 * Between its calls a reader may stay away for ever. A frame being written may cost more than
 * safe_diff by itself, when it leaves the rest of the ring unused: then, at the distance safe_diff,
 * the reader must be done before that frame is begun. A ring needs at least 13 entries.
 */
#include "stream_interleaving_probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace stream_probe;

namespace
{

enum class Start { kOldest, kNewest };

struct ReaderKind {
    Start start;
    int32_t skip_limit;
};

// The two readers.
constexpr ReaderKind kReaders[] = {{Start::kOldest, 0}, {Start::kNewest, 2}};

struct Totals {
    int64_t calls = 0;
    int64_t deliveries = 0;
    int64_t resynchronisations = 0; // deliveries of another frame than the next
    int64_t damaged = 0;
};

/** A reader between two calls. */
struct Place {
    StreamReader reader;
    int newest;   // newest frame when its last call ended
    int last;     // frame delivered last, -1 = none
    int expected; // frame that comes next unless the reader is overrun
};

/** One reader of one run: every call that it can make, in every interleaving. */
class Explorer
{
public:
    /** @param beyond  frames that the writer may go on beyond the bound; then damage is only counted */
    Explorer(WriterRun &run, ReaderKind kind, int beyond, Totals &totals)
        : run_(run), kind_(kind), beyond_(beyond), totals_(totals)
    {
    }

    void explore()
    {
        for (int newest = -1; newest < run_.frame_count(); ++newest)
            position(newest);
        while (!open_.empty()) {
            const Place place = open_.back();
            open_.pop_back();
            read(place);
        }
    }

private:
    int last_frame_within_bound(int look) const
    {
        int last = look;
        while (last + 1 < run_.frame_count() && last + 1 - look <= 11 &&
               run_.advance_bytes(look, last + 1) <= run_.channel().safe_diff)
            ++last;
        return last;
    }

    int limit(int look) const
    {
        return run_.published(std::min(last_frame_within_bound(look) + beyond_, run_.frame_count() - 1));
    }

    int newest_at(int version) const
    {
        int newest = -1;
        while (newest + 1 < run_.frame_count() && run_.published(newest + 1) <= version)
            ++newest;
        return newest;
    }

    void position(int newest)
    {
        run_.every_call(
            newest, {}, [this](int look) { return limit(look); },
            [this](StreamReader *reader) {
                return kind_.start == Start::kOldest ? kx_stream_getStartPos(0, reader, 0)
                                                     : kx_stream_getLastPos(0, reader, 0);
            },
            [this](int32_t result, const StreamReader &reader, int look, int version) {
                ++totals_.calls;
                if (result == 0) visit({reader, newest_at(version), -1, look < 0 ? 0 : frame_at(reader)});
            });
    }

    void read(const Place &place)
    {
        run_.every_call(
            place.newest, place.reader, [this](int look) { return limit(look); },
            [this](StreamReader *reader) { return kx_stream_getOneFrame(0, kind_.skip_limit, reader, 0); },
            [this, &place](int32_t result, const StreamReader &reader, int look, int version) {
                ++totals_.calls;
                if (result == 0) {
                    // Nothing to be had: this call's later looks are tried as well, so nothing is left to do.
                    EXPECT_EQ(memcmp(&reader, &place.reader, sizeof reader), 0);
                    return;
                }
                check_delivery(place, reader, result, look);
                if (::testing::Test::HasFailure() || beyond_ > 0) return;
                visit({reader, newest_at(version), number_of(reader), number_of(reader) + 1});
            });
    }

    /** The frame that a reader was positioned on, by the laps it holds. */
    int frame_at(const StreamReader &reader) const
    {
        const uint32_t laps = reader.index_circle - run_.first_lap();
        return static_cast<int>(laps * static_cast<uint32_t>(run_.channel().index_num) + reader.index);
    }

    int number_of(const StreamReader &reader) const
    {
        return static_cast<int>(reader.p_stream_index[reader.last_index].timestamp);
    }

    void check_delivery(const Place &place, const StreamReader &reader, int32_t result, int look)
    {
        ++totals_.deliveries;
        // Holds without any bound: the range lies in the ring.
        ASSERT_LT(reader.data_start, reader.data_end);
        ASSERT_LE(reader.data_end, static_cast<uint32_t>(run_.channel().data_size));
        ASSERT_EQ(result, static_cast<int32_t>(reader.data_end - reader.data_start));

        // As late as the reader may still use the bytes. Bytes of a frame are never those of another,
        // so what was overwritten once stays different.
        run_.show(limit(look));
        const int number = number_of(reader);
        const bool whole = is_whole(reader, number, result);
        if (!whole) ++totals_.damaged;
        if (beyond_ > 0) return;
        ASSERT_TRUE(whole) << "frame " << number << " is damaged, look at " << look;
        ASSERT_LE(number, look) << "delivered before it was published";
        ASSERT_GT(number, place.last) << "out of order or twice";
        if (number == place.expected) return;
        ++totals_.resynchronisations;
        ASSERT_EQ(run_.frame(number).type, 1u) << "frame " << number << " instead of " << place.expected;
    }

    bool is_whole(const StreamReader &reader, int number, int32_t length) const
    {
        if (number < 0 || number >= run_.frame_count()) return false;
        if (run_.frame(number).length != static_cast<uint32_t>(length)) return false;
        for (int32_t i = 0; i < length; ++i)
            if (reader.p_buf_data[reader.data_start + static_cast<uint32_t>(i)] !=
                WriterRun::byte_of(static_cast<uint32_t>(number), static_cast<uint32_t>(i)))
                return false;
        return true;
    }

    void visit(const Place &place)
    {
        std::string key(reinterpret_cast<const char *>(&place.reader), sizeof place.reader);
        key += static_cast<char>(place.newest);
        key += static_cast<char>(place.last);
        key += static_cast<char>(place.expected);
        if (seen_.insert(std::move(key)).second) open_.push_back(place);
    }

    WriterRun &run_;
    ReaderKind kind_;
    int beyond_;
    Totals &totals_;
    std::vector<Place> open_;
    std::set<std::string> seen_;
};

void explore(const Sizes &sizes, const std::vector<Frame> &frames, int beyond, Totals &totals)
{
    WriterRun run(sizes, frames);
    for (const ReaderKind &kind : kReaders) {
        Explorer(run, kind, beyond, totals).explore();
        if (!::testing::Test::HasFailure()) continue;
        std::string sequence;
        for (const Frame &frame : frames)
            sequence += std::to_string(frame.length) + (frame.type == 1 ? "K " : "  ");
        ADD_FAILURE() << "frames " << sequence;
    }
}

void expect_searched(const Totals &totals)
{
    std::fprintf(stderr, "%lld calls, %lld deliveries, %lld of them after an overrun\n",
                 static_cast<long long>(totals.calls), static_cast<long long>(totals.deliveries),
                 static_cast<long long>(totals.resynchronisations));
    EXPECT_GT(totals.deliveries, 1000);
    EXPECT_GT(totals.resynchronisations, 100);
    EXPECT_EQ(totals.damaged, 0);
}

/** The pool tells of every position that it gives; only a failure is worth showing it. */
class StreamInterleaving : public testing::Test
{
protected:
    void SetUp() override { testing::internal::CaptureStdout(); }
    void TearDown() override
    {
        std::istringstream printed(testing::internal::GetCapturedStdout());
        for (std::string line; HasFailure() && std::getline(printed, line);)
            if (line.rfind("data start", 0) != 0 && line.rfind("t_index", 0) != 0)
                std::fprintf(stderr, "%s\n", line.c_str());
    }
};

/* The data ring is the limit: three to twelve frames fill it, 16 entries are plenty. */

constexpr Frame kChoices[] = {{1, 0}, {3, 0}, {4, 0}, {1, 1}, {3, 1}, {4, 1}};

/** Every choice of four frames between frames that fill the ring before and after. */
void for_every_sequence(const std::function<void(const std::vector<Frame> &)> &use)
{
    for (int n = 0; n < 6 * 6 * 6 * 6 && !::testing::Test::HasFailure(); ++n) {
        std::vector<Frame> frames = {{4, 1}, {3, 0}};
        for (int i = 0, rest = n; i < 4; ++i, rest /= 6)
            frames.push_back(kChoices[rest % 6]);
        for (const Frame &frame : {Frame{3, 1}, Frame{4, 0}, Frame{2, 0}})
            frames.push_back(frame);
        use(frames);
    }
}

TEST_F(StreamInterleaving, NoDamageNoDisorderWhereTheDataRingIsTheLimit)
{
    Totals totals;
    for_every_sequence([&](const std::vector<Frame> &frames) { explore({4, 12, 16, 0}, frames, 0, totals); });
    expect_searched(totals);
}

TEST_F(StreamInterleaving, TheSameWithLapsThatWrapAround)
{
    Totals totals;
    for (uint32_t first_lap : {0xFFFFFFFDu, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        int n = 0;
        for_every_sequence([&](const std::vector<Frame> &frames) {
            if (n++ % 8 == 0) explore({4, 14, 13, first_lap}, frames, 0, totals);
        });
    }
    expect_searched(totals);
}

TEST_F(StreamInterleaving, NoDamageNoDisorderWhereTheIndexRingIsTheLimit)
{
    Totals totals;
    for (int32_t index_num : {13, 14, 16}) {
        for (uint32_t keys = 0; keys < 32 && !::testing::Test::HasFailure(); keys += 7) {
            std::vector<Frame> frames;
            for (uint32_t i = 0; i < 34; ++i)
                frames.push_back({1, keys >> (i % 5) & 1});
            explore({12, 200, index_num, 0}, frames, 0, totals);
        }
    }
    expect_searched(totals);
}

TEST_F(StreamInterleaving, OneFrameBeyondTheBoundDoesDamage)
{
    Totals totals;
    int n = 0;
    for_every_sequence([&](const std::vector<Frame> &frames) {
        if (n++ % 16 == 0) explore({4, 12, 16, 0}, frames, 1, totals);
    });
    EXPECT_GT(totals.damaged, 0) << "or the checks above could not see any";
}

TEST_F(StreamInterleaving, OverrunDuringACallNeverLeavesTheRing)
{
    Totals totals;
    std::vector<Frame> frames;
    for (uint32_t i = 0; i < 20; ++i)
        frames.push_back({1 + i * 3 % 4, i % 2});
    explore({4, 12, 13, 0}, frames, 2, totals); // the range is checked at each delivery
    EXPECT_GT(totals.deliveries, 100);
}

TEST_F(StreamInterleaving, AFrameThatLeavesTheRestUnusedTakesMoreThanTheSafeDistance)
{
    // Frames 0 to 2 end at byte 9 of 12. Frame 3 needs 4 bytes: it leaves 3 unused and overwrites
    // bytes 0 to 3, which advances 7 bytes. A reader behind byte 1 is safe by the stated distance,
    // 1 - 9 + 12 = 4, and loses bytes 1 to 3 nevertheless once frame 3 is begun.
    WriterRun run({4, 12, 16, 0}, {{1, 1}, {4, 1}, {4, 1}, {4, 1}});
    EXPECT_EQ(run.advance_bytes(2, 3), 7);
    StreamReader reader{};
    run.show(run.published(0));
    ASSERT_EQ(kx_stream_getStartPos(0, &reader, 0), 0);
    ASSERT_EQ(kx_stream_getOneFrame(0, 0, &reader, 0), 1);
    run.show(run.published(2));
    ASSERT_EQ(kx_stream_getOneFrame(0, 0, &reader, 0), 4) << "in step: the distance is safe_diff";
    EXPECT_EQ(reader.p_buf_data[1], WriterRun::byte_of(1, 0));
    run.show(run.published(3));
    EXPECT_NE(reader.p_buf_data[1], WriterRun::byte_of(1, 0));
}

} // namespace
