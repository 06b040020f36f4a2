/* The disk writer over a disk that does not keep what it took: what failed to be synced or closed. */
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvrec_run.h"
#include "record_chunks.h"
#include "vboard.h"

namespace
{

using namespace nvrec;
using nvrec_test::file_named;
using nvrec_test::picture_at;

/* Takes all bytes, and keeps them only as long as it is told so. */
class ForgetfulDisk : public FileSystem
{
public:
    int sync(int descriptor) override
    {
        const int error = sync_error;
        ++syncs;
        syncs.notify_all();
        note("data");
        return error != 0 ? error : FileSystem::sync(descriptor);
    }
    int sync_directory(const std::string &path) override
    {
        note(path);
        const int error = names_error;
        return error != 0 ? error : FileSystem::sync_directory(path);
    }
    int close(int descriptor) override
    {
        const int error = FileSystem::close(descriptor);
        return close_error != 0 ? close_error.load() : error;
    }

    std::vector<std::string> synced() const
    {
        const std::scoped_lock guard(lock_);
        return synced_;
    }

    std::atomic<int> sync_error = 0, names_error = 0, close_error = 0, syncs = 0;

private:
    void note(const std::string &what)
    {
        const std::scoped_lock guard(lock_);
        synced_.push_back(what);
    }

    mutable std::mutex lock_; /* guards what follows */
    std::vector<std::string> synced_;
};

/* On the board's stepped clock. */
class NvrecSyncing : public testing::Test
{
protected:
    void SetUp() override
    {
        vboard_clock_take();
        std::filesystem::create_directories(directory_);
        DiskWriterOptions options;
        options.directory = directory_;
        options.files = disk_;
        writer_ = std::make_unique<DiskWriter>(std::move(options));
    }

    void TearDown() override
    {
        writer_.reset();
        vboard_clock_release();
    }

    void append(const std::shared_ptr<OutputFile> &file, int64_t at)
    {
        writer_->append(file, picture_at(at, 1000), 0);
        writer_->wait_until_idle();
    }

    static void step_a_second() { ASSERT_EQ(vboard_clock_step_us(1'000'000), 0); }

    void finish()
    {
        DiskWriter::Leftover none;
        ASSERT_TRUE(writer_->finish(&none));
    }

    std::string path(const std::string &name) const { return directory_ + "/" + name; }

    ScratchDirectory scratch_;
    const std::string directory_ = scratch_.file("files");
    std::shared_ptr<ForgetfulDisk> disk_ = std::make_shared<ForgetfulDisk>();
    std::unique_ptr<DiskWriter> writer_;
};

TEST_F(NvrecSyncing, AFileWhoseSyncFailsIsGivenUpWithWhatWasSyncedBefore)
{
    const auto lost = file_named("lost"), next = file_named("next");
    append(lost, 0);
    step_a_second();
    disk_->syncs.wait(0);
    disk_->sync_error = EIO;
    append(lost, 1000);
    EXPECT_EQ(lost->tally->pictures, 2u);
    step_a_second();
    disk_->syncs.wait(1);
    disk_->sync_error = 0;
    append(next, 0); /* and what is before it has been dealt with */
    EXPECT_EQ(writer_->status().state, DiskState::kFailing) << "that it takes bytes says nothing";
    EXPECT_EQ(lost->trouble().kind, OutputTrouble::kRefused);
    EXPECT_EQ(lost->trouble().path, path("lost.mkv"));
    EXPECT_NE(lost->trouble().reason.find("may not be on the disk: Input/output error"), std::string::npos)
        << lost->trouble().reason;

    step_a_second();
    finish();
    EXPECT_EQ(writer_->status().state, DiskState::kGood);
    EXPECT_EQ(lost->tally->pictures, 1u);
    EXPECT_EQ(lost->tally->bytes, 1000u);
    EXPECT_EQ(std::filesystem::file_size(path("lost.mkv")), 1000u);
    EXPECT_EQ(next->trouble().kind, OutputTrouble::kNone);
    EXPECT_EQ(next->tally->pictures, 1u);
}

TEST_F(NvrecSyncing, TheLastSyncOfAFileCountsLikeTheOthers)
{
    const auto file = file_named("short");
    disk_->sync_error = EIO;
    append(file, 0);
    writer_->end(file);
    writer_->wait_until_idle();
    finish();
    EXPECT_TRUE(file->closed);
    EXPECT_EQ(file->trouble().kind, OutputTrouble::kRefused);
    EXPECT_EQ(file->tally->pictures, 0u);
    EXPECT_EQ(file->tally->bytes, 0u);
    EXPECT_TRUE(file->tally->files().empty());
    EXPECT_FALSE(std::filesystem::exists(path("short.mkv"))) << "nothing of it is for certain on the disk";
}

TEST_F(NvrecSyncing, AFileThatCannotBeClosedIsInTrouble)
{
    const auto file = file_named("closed");
    append(file, 0);
    disk_->close_error = EIO;
    writer_->end(file);
    finish();
    EXPECT_TRUE(file->closed);
    EXPECT_EQ(file->trouble().kind, OutputTrouble::kRefused);
    EXPECT_EQ(file->tally->pictures, 1u) << "it was synced";
}

TEST_F(NvrecSyncing, NamesAreSyncedOnceForAllNewFiles)
{
    const auto first = file_named("first"), second = file_named("second"), third = file_named("third");
    append(first, 0);
    append(second, 0);
    writer_->end(first);
    writer_->end(second);
    writer_->wait_until_idle();
    EXPECT_EQ(disk_->synced(), (std::vector<std::string>{"data", directory_, "data"}));
    append(third, 0);
    finish();
    EXPECT_EQ(disk_->synced(), (std::vector<std::string>{"data", directory_, "data", "data", directory_}));
}

TEST_F(NvrecSyncing, AFileWhoseNameMayBeMissingIsGivenUp)
{
    const auto file = file_named("nameless");
    disk_->names_error = EIO;
    append(file, 0);
    finish();
    EXPECT_EQ(file->trouble().kind, OutputTrouble::kRefused);
    EXPECT_EQ(file->tally->pictures, 0u);
}

TEST(FileSystems, SyncTheDirectoriesAboveThoseThatTheyMake)
{
    const ScratchDirectory scratch;
    ForgetfulDisk disk;
    EXPECT_EQ(disk.make_directories(scratch.file("a/b/c")), 0);
    EXPECT_TRUE(std::filesystem::is_directory(scratch.file("a/b/c")));
    EXPECT_EQ(disk.synced(),
              (std::vector<std::string>{scratch.path(), scratch.file("a"), scratch.file("a/b")}));
    EXPECT_EQ(disk.make_directories(scratch.file("a/b/c")), 0);
    EXPECT_EQ(disk.synced().size(), 3u) << "they are there already";
    disk.names_error = EIO;
    EXPECT_EQ(disk.make_directories(scratch.file("d")), EIO);
}

} // namespace
