/*
 * Recording while the index cannot be opened: nothing is deleted, because nobody knows what is pinned,
 * readers look at the files themselves, and the index learns of it all when it can be opened again.
 */
#include <filesystem>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "archive/archive_reader.h"
#include "archive/index_in_memory.h"
#include "archive/index_writer.h"
#include "archive/intake.h"
#include "archive_days.h"
#include "no_file_grows.h"
#include "vboard.h"

namespace
{

using namespace nvrec;
using namespace archive_days;
using std::chrono::seconds;

const IndexQuery kAll = {{}, "", {INT64_MIN, INT64_MAX}};

class IndexInMemory : public testing::Test
{
protected:
    void SetUp() override { live_in_berlin(); }

    /* Where the index belongs stands what cannot be opened as one. */
    void stop_opening() { std::filesystem::create_directory(scratch_.file(kIndexName)); }
    void let_open() { std::filesystem::remove(scratch_.file(kIndexName)); }

    /* The index of a recorder that ended: it knows a file of the yard, and that is pinned. */
    std::string put_pinned(int64_t from_us)
    {
        const std::string path = put(scratch_.path(), 0, from_us);
        Index index;
        EXPECT_EQ(index.open(scratch_.path()), "");
        EXPECT_EQ(take_in(index, list_recordings(scratch_.path()), {.repair = true}).added, 1u);
        EXPECT_NE(index.put_pin(index.camera_number(0, "yard"), {from_us, from_us + kHour_us}), 0);
        return path;
    }

    void hide_index() { std::filesystem::rename(scratch_.file(kIndexName), scratch_.file("hidden")); }
    void show_index() { std::filesystem::rename(scratch_.file("hidden"), scratch_.file(kIndexName)); }

    IndexWriter::Teller teller()
    {
        return [this](bool, const std::string &line) {
            const std::scoped_lock guard(lock_);
            said_ += line + "\n";
        };
    }

    bool has_said(const std::string &text)
    {
        const std::scoped_lock guard(lock_);
        return said_.find(text) != std::string::npos;
    }

    /* Step the taken clock second by second until a line was said. @return seconds; -1 = it was not */
    int seconds_until(const std::string &text)
    {
        for (int passed = 0; passed < 200; ++passed) {
            if (vboard_clock_wait_sleepers(1, 10'000) != 0) return -1;
            if (has_said(text)) return passed;
            vboard_clock_step_us(kSecond_us);
        }
        return -1;
    }

    ScratchDirectory scratch_;
    std::mutex lock_;
    std::string said_;
};

TEST_F(IndexInMemory, KeepsRetentionFromDeletingAndSaysSo)
{
    const std::string path = put(scratch_.path(), 0, local(2020, 1, 1, 14));
    Index index;
    ASSERT_EQ(index.open_in_memory(scratch_.path()), "");
    ASSERT_EQ(take_in(index, list_recordings(scratch_.path()), {.repair = true}).added, 1u);
    stop_opening();
    Recycler retention(index);
    retention.set({.most_bytes = 1, .most_age_s = 1});
    retention.apply(local(2026, 1, 1, 14));
    EXPECT_NE(retention.state().trouble.find("nothing is deleted"), std::string::npos);
    EXPECT_FALSE(retention.make_room(INT64_MAX));
    EXPECT_NE(retention.state().trouble.find("nothing is deleted"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_GT(retention.state().total_bytes, 0) << "the rest of what it sees stands";
}

/* Otherwise a disk that is full when the recorder starts would stay full. */
TEST_F(IndexInMemory, LetsUnpinnedFilesGoWhereTheDirectorysCanBeReadAlthoughTheDiskIsFull)
{
    const std::string pinned = put_pinned(local(2020, 1, 1, 14));
    const std::string free = put(scratch_.path(), 0, local(2020, 1, 2, 14));
    {
        const NoFileGrows full;
        Index index;
        ASSERT_NE(index.open(scratch_.path(), OpenedBy::kRecorder), "");
        ASSERT_EQ(index.open_in_memory(scratch_.path()), "");
        ASSERT_EQ(take_in(index, list_recordings(scratch_.path()), {.repair = true}).added, 2u);
        Recycler retention(index);
        retention.set({.most_age_s = 1});
        retention.apply(local(2020, 1, 2, 15));
        EXPECT_FALSE(std::filesystem::exists(free));
        EXPECT_TRUE(std::filesystem::exists(pinned));
        EXPECT_NE(retention.state().trouble.find("the index cannot be opened"), std::string::npos);
        EXPECT_FALSE(retention.make_room(INT64_MAX));
        EXPECT_TRUE(std::filesystem::exists(pinned));
    }
    Index index;
    ASSERT_EQ(index.open(scratch_.path()), "");
    EXPECT_EQ(index.pins().size(), 1u);
}

TEST_F(IndexInMemory, DeletesWithoutQuestionsWhereThereIsNoOtherOne)
{
    const std::string path = put(scratch_.path(), 0, local(2020, 1, 1, 14));
    Index index;
    ASSERT_EQ(index.open_in_memory(scratch_.path()), "");
    ASSERT_EQ(take_in(index, list_recordings(scratch_.path()), {.repair = true}).added, 1u);
    Recycler retention(index);
    EXPECT_FALSE(retention.make_room(INT64_MAX));
    EXPECT_FALSE(std::filesystem::exists(path)) << "nobody can have pinned anything";
}

TEST_F(IndexInMemory, IsWrittenIntoTheOneOfTheDirectory)
{
    const int64_t at = local(2026, 11, 21, 14);
    const std::string pinned = put_pinned(at);
    {
        Index index;
        ASSERT_EQ(index.open(scratch_.path()), "");
        ASSERT_TRUE(index.put_segment({0, "yard", "main", "gone.mp4", 1, 2, 3, true}));
        ASSERT_TRUE(index.put_event({0, "yard", at, "alarm", "before"}));
    }
    Index memory;
    ASSERT_EQ(memory.open_in_memory(scratch_.path()), "");
    take_in(memory, list_recordings(scratch_.path()), {.repair = true});
    const std::string begun = put(scratch_.path(), 0, at + kHour_us);
    ASSERT_TRUE(memory.put_segment({0, "gate", "main", begun, at + kHour_us, at + kHour_us + 5, 7, false}));
    ASSERT_TRUE(memory.put_gap({0, "gate", "main", at + 10, at + 20, "lost"}));
    ASSERT_TRUE(memory.put_event({0, "gate", at + kHour_us, "alarm", "meanwhile"}));
    ASSERT_EQ(return_to_file(&memory), "");

    EXPECT_FALSE(memory.in_memory());
    const auto rows = memory.segments(kAll);
    ASSERT_EQ(rows.size(), 2u) << "one has gone";
    EXPECT_EQ(rows[0].path, pinned);
    EXPECT_EQ(rows[0].camera, "yard") << "as it was known there";
    EXPECT_EQ(rows[1].camera, "gate");
    EXPECT_FALSE(rows[1].finished);
    EXPECT_EQ(memory.events(kAll).size(), 2u);
    EXPECT_EQ(memory.gaps(kAll).size(), 1u);
    ASSERT_EQ(memory.pins().size(), 1u);
    Recycler retention(memory);
    EXPECT_FALSE(retention.make_room(INT64_MAX));
    EXPECT_TRUE(std::filesystem::exists(pinned));
    EXPECT_TRUE(std::filesystem::exists(begun)) << "it is being written";
}

TEST_F(IndexInMemory, StaysWhileTheOneOfTheDirectoryCannotBeOpened)
{
    Index memory;
    ASSERT_EQ(memory.open_in_memory(scratch_.path()), "");
    ASSERT_TRUE(memory.put_event({0, "gate", 5, "alarm", ""}));
    stop_opening();
    EXPECT_NE(return_to_file(&memory), "");
    EXPECT_TRUE(memory.in_memory());
    EXPECT_EQ(memory.events(kAll).size(), 1u);
}

TEST_F(IndexInMemory, OfARecorderIsGivenUpWithinAboutAMinuteOfTheOtherOnesReturn)
{
    const std::string pinned = put_pinned(local(2020, 1, 1, 14));
    const std::string free = put(scratch_.path(), 0, local(2020, 1, 2, 14));
    hide_index();
    stop_opening();
    vboard_clock_take();
    IndexWriter writer(teller());
    writer.start(scratch_.path(), {.most_bytes = 1});
    EXPECT_GE(seconds_until("nothing is deleted to make room"), 0) << said_;
    EXPECT_EQ(writer.wait_open(seconds(0)), "");
    writer.event({0, "yard", local(2026, 1, 1, 1), "alarm", "meanwhile"});
    EXPECT_TRUE(std::filesystem::exists(pinned) && std::filesystem::exists(free));
    EXPECT_FALSE(is_index_kept_up(scratch_.path()));
    EXPECT_TRUE(is_recorded_into(scratch_.path()));
    let_open();
    show_index();
    const int passed = seconds_until("the index is open again");
    EXPECT_GT(passed, 30);
    EXPECT_LE(passed, 65);
    EXPECT_GE(seconds_until("deleted to make room: " + free), 0) << "as retention is told";
    EXPECT_TRUE(is_index_kept_up(scratch_.path()));
    vboard_clock_release();
    ASSERT_TRUE(writer.stop(seconds(10)));
    EXPECT_FALSE(std::filesystem::exists(free));
    EXPECT_TRUE(std::filesystem::exists(pinned));
    Index index;
    ASSERT_EQ(index.open(scratch_.path()), "");
    EXPECT_EQ(index.events(kAll).size(), 1u);
    EXPECT_EQ(index.pins().size(), 1u);
}

TEST_F(IndexInMemory, OfARecorderIsWrittenAtItsEndOrCountedAsLost)
{
    for (const bool opens : {true, false}) {
        IndexWriter writer(teller());
        stop_opening();
        writer.start(scratch_.path());
        ASSERT_EQ(writer.wait_open(seconds(10)), "");
        writer.event({0, "yard", 5, "alarm", "door"});
        if (opens) let_open();
        ASSERT_TRUE(writer.stop(seconds(10)));
        EXPECT_EQ(writer.dropped(), opens ? 0u : 1u);
        if (!opens) continue;
        Index index;
        ASSERT_EQ(index.open(scratch_.path()), "");
        EXPECT_EQ(index.events(kAll).size(), 1u);
        index.close();
        let_open();
    }
}

/* The recorder cannot open the index, a reader can: as where root looked into the directory first. */
TEST_F(IndexInMemory, OfARecorderMakesReadersLookAtTheFiles)
{
    put_pinned(local(2026, 11, 21, 14));
    hide_index();
    stop_opening();
    IndexWriter writer(teller());
    writer.start(scratch_.path());
    ASSERT_EQ(writer.wait_open(seconds(10)), "");
    while (is_index_kept_up(scratch_.path()))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    let_open();
    show_index();
    put(scratch_.path(), 0, local(2026, 11, 21, 15));
    Archive archive;
    ASSERT_EQ(open_archive(scratch_.path(), &archive), "");
    EXPECT_TRUE(archive.recorded_into);
    EXPECT_EQ(archive.index.segments({}).size(), 2u);
    ASSERT_TRUE(writer.stop(seconds(10)));
}

TEST_F(IndexInMemory, IsNotNeededBecauseRootLookedIntoADirectoryFirst)
{
    if (::geteuid() != 0) GTEST_SKIP() << "only root makes files of others";
    constexpr uid_t kRecorder = 65534;
    ASSERT_EQ(::chown(scratch_.path().c_str(), kRecorder, kRecorder), 0);
    Index index;
    ASSERT_EQ(index.open(scratch_.path()), "");
    ASSERT_TRUE(index.put_event({0, "yard", 5, "alarm", "door"}));
    for (const char *ending : {"", "-wal", "-shm"}) {
        struct stat facts = {};
        ASSERT_EQ(::stat((scratch_.file(kIndexName) + ending).c_str(), &facts), 0) << ending;
        EXPECT_EQ(facts.st_uid, kRecorder) << ending;
    }
}

} // namespace
