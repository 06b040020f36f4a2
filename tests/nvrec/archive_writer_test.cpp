/*
 * The index's writer: what is told to it is there, also where the disk did not take it at first; one
 * recorder a directory, room on a full disk.
 */
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "archive/index_writer.h"
#include "archive_days.h"
#include "no_file_grows.h"

namespace
{

using namespace nvrec;
using namespace archive_days;
using std::chrono::seconds;

class WritingTheIndex : public testing::Test
{
protected:
    void SetUp() override { live_in_berlin(); }

    IndexWriter::Teller teller()
    {
        return [this](bool, const std::string &line) {
            const std::scoped_lock guard(lock_);
            said_ += line + "\n";
        };
    }

    std::string said()
    {
        const std::scoped_lock guard(lock_);
        return said_;
    }

    bool says(const std::string &text)
    {
        for (int tenths = 0; tenths < 100; ++tenths) {
            if (said().find(text) != std::string::npos) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        return false;
    }

    ScratchDirectory scratch_;
    std::mutex lock_;
    std::string said_;
};

TEST_F(WritingTheIndex, WritesWhatItWasTold)
{
    IndexWriter writer(teller());
    writer.start(scratch_.path());
    ASSERT_EQ(writer.wait_open(seconds(10)), "");
    const std::string path = scratch_.file("ch02-main-20261121-140000.mp4");
    writer.segment_begun({2, "yard", "main", path, 100, 100, 0, false});
    writer.segment_grown(path, 200, 5000);
    writer.gap({2, "yard", "main", 120, 130, "lost"});
    writer.event({2, "yard", 150, "alarm", "door"});
    writer.segment_begun({3, "gate", "main", scratch_.file("gone"), 100, 100, 0, false});
    writer.segment_removed(scratch_.file("gone"));
    writer.segment_ended(path, 300, 9000);
    ASSERT_TRUE(writer.stop(seconds(10)));
    EXPECT_EQ(writer.dropped(), 0u);
    EXPECT_EQ(said(), "");

    Index index;
    ASSERT_EQ(index.open(scratch_.path()), "");
    const auto rows = index.segments({});
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].camera, "yard");
    EXPECT_EQ(rows[0].to_us, 300);
    EXPECT_EQ(rows[0].bytes, 9000);
    EXPECT_TRUE(rows[0].finished);
    EXPECT_EQ(index.gaps({}).size(), 1u);
    EXPECT_EQ(index.events({}).size(), 1u);
}

TEST_F(WritingTheIndex, KeepsWhatTheDiskDoesNotTakeUntilItDoes)
{
    IndexWriter writer(teller());
    writer.start(scratch_.path());
    ASSERT_EQ(writer.wait_open(seconds(10)), "");
    const std::string path = scratch_.file("ch02-main-20261121-140000.mp4");
    {
        const NoFileGrows full;
        writer.segment_begun({2, "yard", "main", path, 100, 100, 0, false});
        writer.event({2, "yard", 150, "alarm", "door"});
        for (int64_t grown = 1; grown < 3000; ++grown)
            writer.segment_grown(path, 100 + grown, grown);
        ASSERT_TRUE(says("the index cannot be written"));
        EXPECT_EQ(said().find("rollback"), std::string::npos) << said();
        std::this_thread::sleep_for(std::chrono::milliseconds(2500)); /* it is tried again, in vain */
        for (int64_t grown = 3000; grown < 6000; ++grown)
            writer.segment_grown(path, 100 + grown, grown);
        writer.segment_ended(path, 9000, 9000);
        writer.event({2, "yard", 160, "alarm", "gate"});
        EXPECT_EQ(writer.dropped(), 0u) << "outdated lengths made room";
    }
    ASSERT_TRUE(writer.stop(seconds(10)));

    Index index;
    ASSERT_EQ(index.open(scratch_.path()), "");
    const auto rows = index.segments({});
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].to_us, 9000);
    EXPECT_TRUE(rows[0].finished);
    EXPECT_EQ(index.events({}).size(), 2u) << "each once";
}

TEST_F(WritingTheIndex, EndsAlthoughTheDiskTakesNothingAndCountsWhatIsLost)
{
    IndexWriter writer(teller());
    writer.start(scratch_.path());
    ASSERT_EQ(writer.wait_open(seconds(10)), "");
    const NoFileGrows full;
    writer.event({2, "yard", 150, "alarm", "door"});
    EXPECT_TRUE(writer.stop(seconds(10)));
    EXPECT_EQ(writer.dropped(), 1u);
}

TEST_F(WritingTheIndex, LeavesOutWhatTheIndexNeverTakes)
{
    IndexWriter writer(teller());
    writer.start(scratch_.path());
    ASSERT_EQ(writer.wait_open(seconds(10)), "");
    Database other;
    ASSERT_TRUE(other.open(scratch_.file(kIndexName)));
    ASSERT_TRUE(other.run("DROP TABLE events")) << other.error();
    other.close();
    writer.event({2, "yard", 150, "alarm", "door"});
    writer.gap({2, "yard", "main", 120, 130, "lost"});
    ASSERT_TRUE(writer.stop(seconds(10)));
    EXPECT_EQ(writer.dropped(), 1u);
    Index index;
    ASSERT_EQ(index.open(scratch_.path()), "");
    EXPECT_EQ(index.gaps({}).size(), 1u);
}

TEST_F(WritingTheIndex, RefusesASecondRecorderInADirectory)
{
    IndexWriter first(teller()), second(teller());
    first.start(scratch_.path());
    ASSERT_EQ(first.wait_open(seconds(10)), "");
    EXPECT_TRUE(is_recorded_into(scratch_.path()));
    second.start(scratch_.path());
    EXPECT_NE(second.wait_open(seconds(10)).find("another recorder"), std::string::npos);
    ASSERT_TRUE(first.stop(seconds(10)));
    EXPECT_FALSE(is_recorded_into(scratch_.path()));
    IndexWriter third(teller());
    third.start(scratch_.path());
    EXPECT_EQ(third.wait_open(seconds(10)), "") << "the first one has ended";
}

TEST_F(WritingTheIndex, TakesInAndRepairsWhatWasThereButNotWhatIsBegunMeanwhile)
{
    const std::string torn = put(scratch_.path(), 0, local(2026, 11, 21, 14));
    std::filesystem::resize_file(torn, std::filesystem::file_size(torn) / 2);
    IndexWriter writer(teller());
    writer.start(scratch_.path());
    ASSERT_EQ(writer.wait_open(seconds(10)), "");
    const std::string begun = put(scratch_.path(), 1, local(2026, 11, 21, 15));
    const auto half = std::filesystem::file_size(begun) / 2;
    std::filesystem::resize_file(begun, half);
    ASSERT_TRUE(writer.stop(seconds(10)));
    EXPECT_NE(said().find("torn"), std::string::npos);
    EXPECT_EQ(std::filesystem::file_size(begun), half);
    Index index;
    ASSERT_EQ(index.open(scratch_.path()), "");
    EXPECT_EQ(index.segments({}).size(), 1u);
}

TEST_F(WritingTheIndex, DeletesOldRecordingsForRoom)
{
    const std::string path = put(scratch_.path(), 0, local(2020, 1, 1, 14));
    IndexWriter writer(teller());
    writer.start(scratch_.path());
    ASSERT_EQ(writer.wait_open(seconds(10)), "");
    EXPECT_TRUE(writer.free_space(1, seconds(10))) << "there is that much";
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_FALSE(writer.free_space(INT64_MAX, seconds(10))) << "no disk is so large";
    EXPECT_TRUE(std::filesystem::exists(path)) << "what goes would not help";
    EXPECT_TRUE(writer.free_space(1, seconds(10), true));
    EXPECT_FALSE(std::filesystem::exists(path));
    ASSERT_TRUE(writer.stop(seconds(10)));
    EXPECT_EQ(writer.retention_state().deleted, 1u);
    EXPECT_NE(said().find("deleted to make room: " + path), std::string::npos);
}

/* A quota, or blocks that a file system keeps back: free bytes that nobody gets. */
TEST_F(WritingTheIndex, DeletesOneForRoomThatTheDiskOnlyCallsFree)
{
    const std::string older = put(scratch_.path(), 0, local(2020, 1, 1, 14));
    const std::string newer = put(scratch_.path(), 0, local(2020, 1, 1, 15));
    IndexWriter writer(teller());
    writer.start(scratch_.path());
    ASSERT_EQ(writer.wait_open(seconds(10)), "");
    EXPECT_TRUE(writer.free_space(1, seconds(10), true));
    EXPECT_FALSE(std::filesystem::exists(older));
    EXPECT_TRUE(std::filesystem::exists(newer)) << "one of them";
    EXPECT_TRUE(writer.free_space(1, seconds(10))) << "asked anew";
    EXPECT_TRUE(std::filesystem::exists(newer));
    EXPECT_TRUE(writer.free_space(1, seconds(10), true));
    EXPECT_FALSE(std::filesystem::exists(newer));
    EXPECT_FALSE(writer.free_space(1, seconds(10), true)) << "there is none left";
    ASSERT_TRUE(writer.stop(seconds(10)));
}

TEST_F(WritingTheIndex, AnswersWhoAsksForNoRoomAtAll)
{
    IndexWriter writer(teller());
    writer.start(scratch_.path());
    ASSERT_EQ(writer.wait_open(seconds(10)), "");
    EXPECT_TRUE(writer.free_space(0, seconds(10)));
    ASSERT_TRUE(writer.stop(seconds(10)));
}

TEST_F(WritingTheIndex, SaysThatTheDirectoryIsMissing)
{
    IndexWriter writer(teller());
    writer.start(scratch_.file("missing"));
    EXPECT_NE(writer.wait_open(seconds(10)).find("missing"), std::string::npos);
}

} // namespace
