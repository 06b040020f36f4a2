/* The disk writer over disks that are full, refuse, or lose their directory; files whose end was torn. */
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "recording_disk.h"

namespace
{

using namespace nvrec;
using nvrec_test::clip;
using nvrec_test::NvrecDisk;
using nvrec_test::StandInDisk;

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
