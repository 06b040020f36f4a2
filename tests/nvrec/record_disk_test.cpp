/*
 * The disk writer over disks that are full, hang, refuse, or lose their directory; files whose end was
 * torn. A stand-in for the system's calls counts bytes, or lets a call wait.
 */
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "archive/intake.h"
#include "camera/input.h"
#include "nvrec_run.h"
#include "record/container_file.h"
#include "record/disk_writer.h"
#include "record/parameter_sets.h"
#include "vboard.h"

namespace
{

using namespace nvrec;

std::string clip(const std::string &name)
{
    return std::string(NVREC_CLIPS) + "/" + name;
}

/* A disk of so many bytes; and one whose calls wait while it hangs. */
class StandInDisk : public FileSystem
{
public:
    explicit StandInDisk(int64_t free_bytes = INT64_MAX) : free_bytes_(free_bytes) {}
    ~StandInDisk() override { let_go(); }

    int write(int descriptor, std::span<const uint8_t> bytes, int64_t at) override
    {
        wait_while_it_hangs();
        struct stat before = {};
        fstat(descriptor, &before);
        const int64_t room_until = before.st_size + std::min<int64_t>(free_bytes_, 1 << 30);
        const auto fits = static_cast<size_t>(std::clamp<int64_t>(room_until - at, 0, std::ssize(bytes)));
        free_bytes_ -= std::max<int64_t>(0, at + static_cast<int64_t>(fits) - before.st_size);
        const int error = FileSystem::write(descriptor, bytes.subspan(0, fits), at);
        if (error != 0) return error;
        return fits < bytes.size() ? ENOSPC : 0;
    }

    int truncate(int descriptor, int64_t size) override
    {
        struct stat before = {};
        fstat(descriptor, &before);
        free_bytes_ += before.st_size - size;
        return FileSystem::truncate(descriptor, size);
    }

    int sync(int descriptor) override
    {
        ++syncs;
        syncs.notify_all();
        return FileSystem::sync(descriptor);
    }

    void hang()
    {
        const std::scoped_lock guard(lock_);
        hangs_ = true;
    }
    void let_go()
    {
        const std::scoped_lock guard(lock_);
        hangs_ = false;
        changed_.notify_all();
    }
    void wait_until_it_is_called()
    {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [this] { return waiting_; });
    }
    void add_room(int64_t bytes) { free_bytes_ += bytes; }
    std::atomic<int> syncs = 0;

private:
    void wait_while_it_hangs()
    {
        std::unique_lock guard(lock_);
        waiting_ = hangs_;
        changed_.notify_all();
        changed_.wait(guard, [this] { return !hangs_; });
        waiting_ = false;
    }

    std::mutex lock_; /* guards what follows */
    std::condition_variable changed_;
    bool hangs_ = false, waiting_ = false;
    std::atomic<int64_t> free_bytes_;
};

class NvrecDisk : public testing::Test
{
protected:
    void open(const std::shared_ptr<StandInDisk> &disk, std::function<bool(uint64_t, bool)> free_space = {})
    {
        DiskWriterOptions options;
        options.directory = scratch_.file("files");
        options.files = disk_ = disk;
        options.free_space = std::move(free_space);
        options.most_queued_bytes = 1 << 20;
        writer_ = std::make_unique<DiskWriter>(std::move(options));
    }

    std::shared_ptr<OutputFile> new_file(const std::string &name, Container container)
    {
        auto file = std::make_shared<OutputFile>();
        file->stream = "main";
        file->name = name;
        file->ending = file_ending(container);
        file->tally = tally_;
        return file;
    }

    /* A clip's pictures through a container into a file, as a recording does it. */
    std::shared_ptr<OutputFile> write_clip(const std::string &source, Container container,
                                           const std::string &name)
    {
        Input input(clip(source));
        AccessUnit unit;
        EXPECT_TRUE(input.open(std::chrono::seconds(10))) << input.error();
        ContainerFile muxer;
        const auto file = new_file(name, container);
        while (input.read(&unit) == Input::Read::kUnit) {
            if (!muxer.is_open()) {
                TrackFacts facts = {input.facts(), parameter_sets_of(unit.bytes, input.facts().codec),
                                    nullptr};
                EXPECT_TRUE(muxer.open(container, facts, unit.due_us)) << muxer.error();
            }
            EXPECT_TRUE(muxer.write_video(unit.bytes, unit.pts_us, unit.due_us, unit.key));
            pass(file, muxer.take_output());
        }
        EXPECT_TRUE(muxer.close());
        pass(file, muxer.take_output());
        writer_->end(file);
        return file;
    }

    void pass(const std::shared_ptr<OutputFile> &file, FileChunk chunk)
    {
        if (!chunk.empty()) writer_->append(file, std::move(chunk), 0);
    }

    FileChunk bytes(size_t count)
    {
        FileChunk chunk;
        chunk.extents.push_back({at_, std::vector<uint8_t>(count, 'x')});
        chunk.pictures = 1;
        at_ += static_cast<int64_t>(count);
        return chunk;
    }

    /* Pictures of a file that a reader gets out; -1 = it cannot be opened. */
    static int pictures_in(const std::string &path)
    {
        Input input(path);
        if (!input.open(std::chrono::seconds(10))) return -1;
        AccessUnit unit;
        int count = 0;
        while (input.read(&unit) == Input::Read::kUnit)
            ++count;
        return count;
    }

    /* What the next recorder does with the directory. */
    IntakeResult start_again() const
    {
        Index index;
        EXPECT_EQ(index.open_in_memory(scratch_.file("files")), "");
        return take_in(index, list_recordings(scratch_.file("files")), {.repair = true});
    }

    std::vector<std::string> left_files() const
    {
        std::vector<std::string> paths;
        for (const auto &entry : std::filesystem::directory_iterator(scratch_.file("files")))
            paths.push_back(entry.path());
        return paths;
    }

    ScratchDirectory scratch_;
    std::shared_ptr<StandInDisk> disk_;
    std::shared_ptr<OutputTally> tally_ = std::make_shared<OutputTally>();
    std::unique_ptr<DiskWriter> writer_;
    int64_t at_ = 0;
};

class NvrecFullDisk : public NvrecDisk, public testing::WithParamInterface<Container>
{
};

TEST_P(NvrecFullDisk, EveryFileOnItCanBePlayedAndHoldsWhatWasCounted)
{
    constexpr int kDisks = 40;
    open(std::make_shared<StandInDisk>());
    const auto whole = write_clip("camera1.mkv", GetParam(), "whole");
    DiskWriter::Leftover none;
    ASSERT_TRUE(writer_->finish(&none));
    const auto size = static_cast<int64_t>(tally_->bytes);
    ASSERT_EQ(tally_->pictures, 240u);
    int left = 0;
    for (int disk = 0; disk < kDisks; ++disk) {
        std::filesystem::remove_all(scratch_.file("files"));
        tally_ = std::make_shared<OutputTally>();
        open(std::make_shared<StandInDisk>(size * disk / kDisks));
        const auto file = write_clip("camera1.mkv", GetParam(), "ch00-main-20261121-140000");
        ASSERT_TRUE(writer_->finish(&none));
        EXPECT_EQ(file->trouble().kind, OutputTrouble::kFull) << disk;
        const std::vector<std::string> paths = left_files();
        EXPECT_EQ(paths, tally_->files());
        if (paths.empty()) {
            EXPECT_EQ(tally_->pictures, 0u) << disk;
            EXPECT_EQ(tally_->bytes, 0u) << disk;
            continue;
        }
        ++left;
        EXPECT_EQ(pictures_in(paths[0]), static_cast<int>(tally_->pictures)) << disk;
        EXPECT_EQ(std::filesystem::file_size(paths[0]), tally_->bytes) << disk;
        EXPECT_EQ(start_again().cut, 0u) << disk;
    }
    EXPECT_GE(left, kDisks / 2) << "most of these disks have room for a fragment";
}

INSTANTIATE_TEST_SUITE_P(Kinds, NvrecFullDisk, testing::Values(Container::kMp4, Container::kMkv),
                         [](const auto &named) { return file_ending(named.param) + 1; });

TEST_F(NvrecDisk, AFullDiskIsRecycledAndTheFileGoesOn)
{
    const auto disk = std::make_shared<StandInDisk>(20'000);
    std::vector<uint64_t> asked;
    open(disk, [&](uint64_t bytes, bool) {
        asked.push_back(bytes);
        disk->add_room(15'000);
        return true;
    });
    const auto file = write_clip("camera1.mkv", Container::kMp4, "recycled");
    DiskWriter::Leftover none;
    ASSERT_TRUE(writer_->finish(&none));
    EXPECT_EQ(file->trouble().kind, OutputTrouble::kNone);
    EXPECT_FALSE(asked.empty());
    EXPECT_EQ(tally_->pictures, 240u);
    EXPECT_EQ(pictures_in(tally_->files().at(0)), 240);
    EXPECT_EQ(writer_->status().state, DiskState::kGood);
}

TEST_F(NvrecDisk, WhatLiesInADeletedDirectoryDoesNotCountAsWritten)
{
    open(std::make_shared<StandInDisk>());
    const auto file = new_file("gone", Container::kMkv);
    writer_->append(file, bytes(1000), 0);
    writer_->wait_until_idle();
    EXPECT_EQ(tally_->pictures, 1u);
    std::filesystem::remove_all(scratch_.file("files"));
    writer_->append(file, bytes(1000), 0);
    writer_->wait_until_idle();
    EXPECT_EQ(file->trouble().kind, OutputTrouble::kGone);
    EXPECT_EQ(file->trouble().path, scratch_.file("files") + "/gone.mkv");
    EXPECT_EQ(tally_->pictures, 0u);
    EXPECT_EQ(tally_->bytes, 0u);
    EXPECT_TRUE(tally_->files().empty());
    EXPECT_EQ(writer_->status().state, DiskState::kFailing);
}

TEST_F(NvrecDisk, FilesAreForOwnerAndGroupAndHaveNamesOfTheirOwn)
{
    open(std::make_shared<StandInDisk>());
    const auto first = new_file("same", Container::kMkv), second = new_file("same", Container::kMkv);
    writer_->append(first, bytes(10), 0);
    writer_->append(second, bytes(10), 0);
    DiskWriter::Leftover none;
    ASSERT_TRUE(writer_->finish(&none));
    ASSERT_EQ(tally_->files(), (std::vector<std::string>{scratch_.file("files") + "/same.mkv",
                                                         scratch_.file("files") + "/same-2.mkv"}));
    struct stat facts = {};
    ASSERT_EQ(stat(tally_->files()[0].c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777 & ~0640, 0) << "readable for others";
}

TEST_F(NvrecDisk, TwoRecordersDoNotRecordIntoOneDirectory)
{
    open(std::make_shared<StandInDisk>());
    writer_->append(new_file("mine", Container::kMkv), bytes(10), 0);
    writer_->wait_until_idle();
    DiskWriterOptions options;
    options.directory = scratch_.file("files");
    DiskWriter other(std::move(options));
    const auto file = new_file("theirs", Container::kMkv);
    other.append(file, bytes(10), 0);
    other.wait_until_idle();
    EXPECT_EQ(other.directory_trouble(), "another recorder records into it");
    EXPECT_EQ(file->trouble().kind, OutputTrouble::kRefused);
    ASSERT_EQ(other.take_lines(), std::vector<std::string>{"nothing is recorded: " + scratch_.file("files") +
                                                           ": another recorder records into it"});
}

/* On the board's stepped clock: seconds of a hanging disk take none. */
class NvrecHangingDisk : public NvrecDisk
{
protected:
    void SetUp() override { vboard_clock_take(); }
    void TearDown() override
    {
        if (disk_) disk_->let_go();
        writer_.reset();
        vboard_clock_release();
    }
};

TEST_F(NvrecHangingDisk, IsSeenAfterTwoSecondsAndRiddenOut)
{
    open(std::make_shared<StandInDisk>());
    writer_->wait_until_idle();
    disk_->hang();
    const auto file = new_file("late", Container::kMkv);
    writer_->append(file, bytes(1000), 0);
    disk_->wait_until_it_is_called();
    EXPECT_EQ(writer_->status().state, DiskState::kGood);
    ASSERT_EQ(vboard_clock_step_us(2'000'000), 0);
    EXPECT_EQ(writer_->status().state, DiskState::kHangs);
    EXPECT_EQ(writer_->status().trouble, "the disk does not answer");
    EXPECT_DOUBLE_EQ(writer_->lag_s(*file), 2.0);
    EXPECT_NE(writer_->heartbeat_deadline(), Clock::time_point::max());
    for (int i = 0; i < 8; ++i) {
        ASSERT_EQ(vboard_clock_step_us(1'000'000), 0);
        writer_->append(file, bytes(100'000), 0);
    }
    EXPECT_EQ(writer_->status().queued_bytes, 801'000u);
    disk_->let_go();
    writer_->wait_until_idle();
    EXPECT_EQ(writer_->status().state, DiskState::kGood);
    EXPECT_EQ(writer_->take_lines(), std::vector<std::string>{"the disk answers again, after 10.0 s"});
    EXPECT_EQ(tally_->pictures, 9u) << "nothing is lost";
    EXPECT_EQ(writer_->lag_s(*file), 0);
    EXPECT_EQ(writer_->heartbeat_deadline(), Clock::time_point::max());
}

TEST_F(NvrecHangingDisk, FillsAQueueThatIsBounded)
{
    open(std::make_shared<StandInDisk>());
    disk_->hang();
    const auto file = new_file("much", Container::kMkv);
    writer_->append(file, bytes(1 << 20), 0);
    EXPECT_FALSE(writer_->wait_for_room([] { return true; })) << "full, and the producer gives up";
    disk_->let_go();
    EXPECT_TRUE(writer_->wait_for_room([] { return false; }));
}

TEST_F(NvrecHangingDisk, IsSyncedAfterASecond)
{
    open(std::make_shared<StandInDisk>());
    writer_->append(new_file("synced", Container::kMkv), bytes(1000), 0);
    writer_->wait_until_idle();
    EXPECT_EQ(disk_->syncs, 0);
    ASSERT_EQ(vboard_clock_step_us(1'000'000), 0);
    DiskWriter::Leftover none;
    disk_->syncs.wait(0);
    EXPECT_EQ(disk_->syncs, 1);
    ASSERT_TRUE(writer_->finish(&none));
    EXPECT_EQ(disk_->syncs, 1) << "nothing was written since";
}

/* In real time: what is waited for is the end of the process. */
TEST_F(NvrecDisk, ThatNeverAnswersDoesNotHoldTheEndUp)
{
    const auto disk = std::make_shared<StandInDisk>();
    open(disk);
    disk->hang();
    const auto file = new_file("lost", Container::kMkv);
    writer_->append(file, bytes(1000), 0);
    writer_->append(file, bytes(500), 0);
    disk->wait_until_it_is_called();
    const auto began = std::chrono::steady_clock::now();
    DiskWriter::Leftover left;
    EXPECT_FALSE(writer_->finish(&left));
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(1500));
    EXPECT_EQ(left.pictures, 2u);
    EXPECT_EQ(left.bytes, 1500u);
    EXPECT_EQ(left.paths, std::vector<std::string>{"lost.mkv"});
    writer_.reset();
    disk->let_go(); /* what the thread still does, it does to what it shares */
}

class NvrecTornEnd : public NvrecDisk, public testing::WithParamInterface<Container>
{
};

TEST_P(NvrecTornEnd, IsCutBackToTheLastWholeFragment)
{
    open(std::make_shared<StandInDisk>());
    write_clip("camera1.mkv", GetParam(), "ch00-main-20261121-140000");
    DiskWriter::Leftover none;
    ASSERT_TRUE(writer_->finish(&none));
    const std::string path = tally_->files().at(0);
    EXPECT_EQ(start_again().cut, 0u) << "an end that is whole stays";
    const std::string bytes = file_text(path);
    int last = 0;
    for (size_t size = 0; size < bytes.size(); size += bytes.size() / 60) {
        std::ofstream(path, std::ios::binary) << bytes.substr(0, size);
        const size_t cut = start_again().cut;
        EXPECT_EQ(std::filesystem::file_size(path) < size, cut > 0);
        const int pictures = pictures_in(path);
        if (pictures < 10) { /* no fragment is whole: what there is stays */
            EXPECT_EQ(last, 0) << size;
            EXPECT_EQ(cut, 0u) << size;
            continue;
        }
        EXPECT_GE(pictures, std::max(last, 10)) << size;
        EXPECT_EQ(pictures % 10, 0) << size << ": fragments of ten";
        EXPECT_EQ(start_again().cut, 0u) << "mended once";
        last = pictures;
    }
    EXPECT_GE(last, 220);
}

INSTANTIATE_TEST_SUITE_P(Kinds, NvrecTornEnd, testing::Values(Container::kMp4, Container::kMkv),
                         [](const auto &named) { return file_ending(named.param) + 1; });

/* Not in fragments: one index for all of it. */
TEST_F(NvrecDisk, AFileOfAnotherKindIsNotCut)
{
    std::filesystem::create_directories(scratch_.file("files"));
    const std::string other = scratch_.file("files/ch00-main-20261121-140000.mp4");
    const std::string bytes = file_text(clip("network1.mp4"));
    for (const size_t size : {bytes.size(), bytes.size() * 2 / 3, size_t{5000}}) {
        std::ofstream(other, std::ios::binary) << bytes.substr(0, size);
        EXPECT_EQ(start_again().cut, 0u) << size;
        EXPECT_EQ(std::filesystem::file_size(other), size);
    }
}

} // namespace
