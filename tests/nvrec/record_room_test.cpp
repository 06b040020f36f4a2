/* The disk writer on a full disk that can be recycled: what it asks for, and how often. */
#include <cerrno>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "nvrec_run.h"
#include "record_chunks.h"

namespace
{

using namespace nvrec;
using nvrec_test::file_named;
using nvrec_test::picture_at;

/* Refuses so many calls as full. */
class RefusingDisk : public FileSystem
{
public:
    int create(const std::string &path, int *descriptor) override
    {
        if (creations_refused > 0) return --creations_refused, ENOSPC;
        return FileSystem::create(path, descriptor);
    }
    int write(int descriptor, std::span<const uint8_t> bytes, int64_t at) override
    {
        if (writes_refused > 0) return --writes_refused, EDQUOT;
        return FileSystem::write(descriptor, bytes, at);
    }
    int creations_refused = 0, writes_refused = 0; /* set before anything is written */
};

class NvrecRoom : public testing::Test
{
protected:
    void write_a_picture()
    {
        DiskWriterOptions options;
        options.directory = scratch_.file("files");
        options.files = disk_;
        options.free_space = [this](uint64_t bytes, bool in_vain) {
            asked_.emplace_back(bytes, in_vain);
            return room_made_ ? room_made_(bytes) : true;
        };
        DiskWriter writer(std::move(options));
        writer.append(file_, picture_at(0, 1000), 0);
        writer.wait_until_idle();
        state_ = writer.status().state;
    }

    ScratchDirectory scratch_;
    std::shared_ptr<RefusingDisk> disk_ = std::make_shared<RefusingDisk>();
    std::shared_ptr<OutputFile> file_ = file_named("new");
    std::vector<std::pair<uint64_t, bool>> asked_;
    std::function<bool(uint64_t)> room_made_; /* what the asked answer; empty = yes */
    DiskState state_ = DiskState::kFailing;
};

TEST_F(NvrecRoom, IsMadeForANewFileAsForOneThatGrows)
{
    disk_->creations_refused = 1;
    write_a_picture();
    ASSERT_EQ(asked_.size(), 1u);
    EXPECT_GE(asked_[0].first, 1'000'000u) << "no bytes at all are free on any disk";
    EXPECT_FALSE(asked_[0].second);
    EXPECT_EQ(file_->trouble().kind, OutputTrouble::kNone) << file_->trouble().reason;
    EXPECT_EQ(file_->tally->pictures, 1u);
    EXPECT_EQ(state_, DiskState::kGood);
}

TEST_F(NvrecRoom, IsAskedForWithMoreForceWhereTheDiskStaysFull)
{
    disk_->creations_refused = 2;
    disk_->writes_refused = 3;
    write_a_picture();
    std::vector<bool> in_vain;
    for (const auto &[bytes, forced] : asked_) {
        EXPECT_GE(bytes, 1'000'000u);
        in_vain.push_back(forced);
    }
    EXPECT_EQ(in_vain, (std::vector<bool>{false, true, false, true, true}));
    EXPECT_EQ(file_->tally->pictures, 1u);
}

TEST_F(NvrecRoom, IsNotAskedForForEver)
{
    disk_->writes_refused = 1'000;
    write_a_picture();
    EXPECT_LE(asked_.size(), 10u) << "each time a recording may go";
    EXPECT_EQ(file_->trouble().kind, OutputTrouble::kFull);
    EXPECT_EQ(state_, DiskState::kFull);
}

/* Of which half a megabyte may go: less than is asked for first, and more than the piece needs. */
TEST_F(NvrecRoom, OfASmallDiskIsAskedForAsMuchAsIsNeeded)
{
    disk_->writes_refused = 1'000;
    room_made_ = [this](uint64_t bytes) {
        if (bytes > 500'000) return false;
        disk_->writes_refused = 0;
        return true;
    };
    write_a_picture();
    ASSERT_GE(asked_.size(), 2u);
    EXPECT_GE(asked_.back().first, 1000u);
    EXPECT_EQ(file_->trouble().kind, OutputTrouble::kNone) << file_->trouble().reason;
    EXPECT_EQ(file_->tally->pictures, 1u);
    EXPECT_EQ(state_, DiskState::kGood);
}

TEST_F(NvrecRoom, ThatIsLessThanWasAskedForIsTriedAllTheSame)
{
    disk_->writes_refused = 1'000;
    room_made_ = [this](uint64_t) {
        disk_->writes_refused = 0;
        return false;
    };
    write_a_picture();
    EXPECT_EQ(file_->trouble().kind, OutputTrouble::kNone) << file_->trouble().reason;
    EXPECT_EQ(file_->tally->pictures, 1u);
}

} // namespace
