/*
 * A recording whose file cannot be written, on the board's stepped clock: said once, tried again at
 * the first key frame ten seconds later. A limit on the size of files stands for a full disk.
 */
#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "frame_pools.h"
#include "nvrec_run.h"
#include "nvrhal.h"
#include "record/recording.h"
#include "record_files.h"
#include "vboard.h"

namespace
{

using namespace nvrec;

constexpr int kChannel = 1;
constexpr int kFramesPerKey = 10; /* of the clip */
constexpr auto kPatience = std::chrono::seconds(60);
constexpr int64_t kRetry_us = 10'000'000;
constexpr rlim_t kFullDisk_bytes = 20'000;

/* Makes no directory: it comes late. */
class GivenDirectory : public FileSystem
{
    int make_directories(const std::string &) override { return 0; }
};

/* The network stream of a camera, which has a small picture and no sound, group after group. */
class NvrecRecordRetry : public testing::Test
{
protected:
    void SetUp() override
    {
        begin_frame_pool(STREAM_POOL_SUB, kChannel + 1);
        ASSERT_TRUE(camera_.open(std::chrono::seconds(10))) << camera_.error();
        vboard_clock_take();
        signal(SIGXFSZ, SIG_IGN);
    }

    void TearDown() override { vboard_clock_release(); }

    static void limit_files(rlim_t bytes)
    {
        rlimit limit = {};
        ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
        limit.rlim_cur = std::min(bytes, limit.rlim_max);
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }

    void begin()
    {
        RecordOptions options;
        options.directory = directory_;
        options.container = Container::kMkv;
        options.segment_s = 86400;
        DiskWriterOptions disk;
        disk.directory = directory_;
        disk.files = std::make_shared<GivenDirectory>();
        writer_ = std::make_unique<DiskWriter>(std::move(disk));
        recording_ = std::make_unique<Recording>(kChannel, PoolStream::kNetwork, options, *writer_,
                                                 [this](const std::string &line) {
                                                     const std::scoped_lock guard(lock_);
                                                     complaints_.push_back(line);
                                                     complained_.notify_one();
                                                 });
        recording_->start();
    }

    /* A key frame and those up to the next one, one after the other. */
    void put_group()
    {
        AccessUnit unit;
        for (int i = 0; i < kFramesPerKey; ++i) {
            ASSERT_EQ(camera_.read(&unit), Input::Read::kUnit) << "the clip is too short";
            ASSERT_EQ(unit.key, i == 0);
            ASSERT_EQ(recording_->video().put(unit, camera_.facts()), 0);
            recording_->video().wait_for_reader();
        }
        writer_->wait_until_idle();
    }

    void wait_for_complaint()
    {
        std::unique_lock guard(lock_);
        ASSERT_TRUE(complained_.wait_for(guard, kPatience, [this] { return !complaints_.empty(); }));
    }

    RecordingReport finish()
    {
        recording_->finish();
        DiskWriter::Leftover none;
        EXPECT_TRUE(writer_->finish(&none));
        recording_->settle();
        return recording_->reports().front();
    }

    ScratchDirectory scratch_;
    std::string directory_ = scratch_.file("files");
    Input camera_{std::string(NVREC_CLIPS) + "/network1.mp4"};
    std::unique_ptr<DiskWriter> writer_;
    std::unique_ptr<Recording> recording_;

    std::mutex lock_; /* guards what follows */
    std::condition_variable complained_;
    std::vector<std::string> complaints_;
};

TEST_F(NvrecRecordRetry, ADirectoryThatComesBackIsWrittenToTenSecondsLater)
{
    begin();
    put_group();
    wait_for_complaint();
    std::filesystem::create_directories(directory_);
    ASSERT_EQ(vboard_clock_step_us(kRetry_us - 1), 0);
    put_group();
    ASSERT_EQ(vboard_clock_step_us(1), 0);
    put_group();
    put_group();
    const RecordingReport report = finish();
    EXPECT_EQ(complaints_.size(), 1u);
    EXPECT_NE(complaints_[0].find(directory_ + "/ch01-network-"), std::string::npos) << complaints_[0];
    EXPECT_NE(complaints_[0].find("No such file or directory"), std::string::npos) << complaints_[0];
    EXPECT_TRUE(recording_->failed());
    EXPECT_EQ(report.written, 2u * kFramesPerKey);
    EXPECT_EQ(report.skipped, 2u * kFramesPerKey);
    const std::vector<std::string> files = files_of(directory_, "ch01-network-");
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(report.files, files);
    EXPECT_TRUE(begins_with_key_frame(files[0]));
    EXPECT_EQ(picture_checksums(files[0]).size(), 2u * kFramesPerKey);
}

TEST_F(NvrecRecordRetry, NothingIsLeftOfAFileThatCouldNotBeBegun)
{
    std::filesystem::create_directories(directory_);
    limit_files(0);
    begin();
    put_group();
    wait_for_complaint();
    EXPECT_TRUE(finish().files.empty());
    EXPECT_TRUE(std::filesystem::is_empty(directory_));
}

TEST_F(NvrecRecordRetry, AFullDiskIsSaidOnceAndTriedAgain)
{
    std::filesystem::create_directories(directory_);
    limit_files(kFullDisk_bytes);
    begin();
    int groups = 0;
    const auto fill = [&] {
        for (int i = 0; i < 6; ++i, ++groups)
            put_group();
    };
    fill();
    wait_for_complaint();
    ASSERT_EQ(vboard_clock_step_us(kRetry_us), 0);
    fill(); /* and is full again */
    const int groups_of_full_disk = groups;
    ASSERT_EQ(vboard_clock_step_us(kRetry_us), 0);
    limit_files(RLIM_INFINITY);
    fill();
    const RecordingReport report = finish();
    EXPECT_EQ(complaints_.size(), 1u) << complaints_.back();
    EXPECT_NE(complaints_[0].find("File too large"), std::string::npos) << complaints_[0];
    EXPECT_TRUE(recording_->failed());
    EXPECT_EQ(report.written + report.skipped, static_cast<uint64_t>(groups * kFramesPerKey));
    ASSERT_EQ(report.files.size(), 3u);
    EXPECT_EQ(picture_checksums(report.files[2]).size(),
              static_cast<size_t>((groups - groups_of_full_disk) * kFramesPerKey))
        << "whole from its key frame on";
    EXPECT_GE(picture_checksums(report.files[0]).size(), static_cast<size_t>(kFramesPerKey))
        << "what was written before can be played";
}

} // namespace
