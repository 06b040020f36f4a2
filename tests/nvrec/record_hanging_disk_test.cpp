/* The disk writer over a disk that hangs: it is seen, ridden out, and never waited for at the end. */
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "recording_disk.h"
#include "vboard.h"

namespace
{

using namespace nvrec;
using nvrec_test::NvrecDisk;
using nvrec_test::StandInDisk;

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

} // namespace
