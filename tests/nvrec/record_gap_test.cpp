/*
 * The times of which a recording keeps nothing, and what it says of them, on the board's stepped clock: a
 * camera that is away, a disk that is full, a recorder's clock that is set, and what the plan did not want.
 */
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "archive/archive_reader.h"
#include "archive/index.h"
#include "archive/time_of_day.h"
#include "archive_days.h"
#include "camera/input.h"
#include "frame_pools.h"
#include "nvrec_run.h"
#include "nvrhal.h"
#include "record/recording.h"
#include "record_files.h"
#include "vboard.h"

namespace
{

using namespace nvrec;
using archive_days::kSecond_us;

constexpr int kChannel = 1;
constexpr int kFramesPerKey = 10; /* of the clip */
constexpr int64_t kFrame_us = 40'000, kGroup_us = kFramesPerKey * kFrame_us;
constexpr int64_t kNoon_us = int64_t{1'795'262'400} * kSecond_us; /* 2026-11-21 12:00 UTC */

/* Takes no bytes while it is full, and new files all the same. */
class FillingDisk : public FileSystem
{
public:
    int write(int descriptor, std::span<const uint8_t> bytes, int64_t at) override
    {
        return is_full ? ENOSPC : FileSystem::write(descriptor, bytes, at);
    }
    std::atomic<bool> is_full = false;
};

/* The network stream of a camera, which has no sound, into hourly files and an index. */
class NvrecGaps : public testing::Test
{
protected:
    void SetUp() override
    {
        setenv("TZ", "UTC", 1);
        tzset();
        begin_frame_pool(STREAM_POOL_SUB, kChannel + 1);
        ASSERT_TRUE(camera_.open(std::chrono::seconds(10))) << camera_.error();
    }

    void TearDown() override
    {
        recording_.reset();
        writer_.reset();
        vboard_clock_release();
    }

    void begin_at(int64_t wall_us, const RecordingPlan &plan = {})
    {
        ASSERT_EQ(vboard_clock_take_at(kSecond_us, wall_us), 0);
        ASSERT_EQ(index_.open_in_memory(scratch_.file("files")), "");
        DiskWriterOptions disk;
        disk.directory = scratch_.file("files");
        disk.files = disk_;
        const auto write_down = [this](const std::string &path, int64_t until_us, uint64_t bytes) {
            const std::scoped_lock guard(lock_);
            index_.grow_segment(path, until_us, static_cast<int64_t>(bytes), true);
        };
        disk.events.begun = [this](const std::string &path, const OutputFile &file) {
            const std::scoped_lock guard(lock_);
            index_.put_segment({kChannel, "", "network", path, file.from_us, file.from_us, 0, true});
        };
        disk.events.grown = disk.events.ended = write_down;
        disk.events.removed = [this](const std::string &path) {
            const std::scoped_lock guard(lock_);
            index_.remove_segment(path);
        };
        RecordOptions options;
        options.directory = disk.directory;
        options.plan = plan;
        writer_ = std::make_unique<DiskWriter>(std::move(disk));
        recording_ = std::make_unique<Recording>(
            kChannel, PoolStream::kNetwork, options, *writer_,
            [this](const std::string &line) {
                const std::scoped_lock guard(lock_);
                complaints_.push_back(line);
            },
            [this](int64_t from_us, int64_t to_us, const std::string &why) {
                const std::scoped_lock guard(lock_);
                index_.put_gap({kChannel, "", "network", from_us, to_us, why});
            });
        recording_->start();
    }

    /* Groups of pictures, each picture at its time. */
    void put_groups(int count, int64_t clock_wrong_us = 0)
    {
        AccessUnit unit;
        for (int i = 0; i < count * kFramesPerKey; ++i) {
            if (camera_.read(&unit) != Input::Read::kUnit) { /* from the clip's beginning again */
                ASSERT_TRUE(camera_.rewind());
                ASSERT_EQ(camera_.read(&unit), Input::Read::kUnit);
            }
            unit.pts_us = unit.due_us = at_us_;
            ASSERT_EQ(recording_->video().put(unit, camera_.facts(), wall_now_us() + clock_wrong_us), 0);
            recording_->video().wait_for_reader();
            pass(kFrame_us);
            if ((i + 1) % kFramesPerKey == 0) catch_up();
        }
    }

    /* The clock does not run away from the threads. */
    void catch_up()
    {
        const auto all_read = [this] {
            const PoolCounters frames = recording_->video().counters();
            return frames.read == frames.stored;
        };
        while (!all_read())
            std::this_thread::yield();
        writer_->wait_until_idle();
    }

    /* Time passes, in the camera's pictures, too. */
    void pass(int64_t us)
    {
        at_us_ += us;
        ASSERT_EQ(vboard_clock_step_us(us), 0);
    }

    void finish()
    {
        recording_->finish();
        DiskWriter::Leftover none;
        EXPECT_TRUE(writer_->finish(&none));
        recording_->settle();
    }

    std::vector<GapRow> gaps() { return index_.gaps(kNetwork); }

    const IndexQuery kNetwork = {{}, "network"};
    ScratchDirectory scratch_;
    Input camera_{std::string(NVREC_CLIPS) + "/network1.mp4"};
    std::shared_ptr<FillingDisk> disk_ = std::make_shared<FillingDisk>();
    int64_t at_us_ = 0;

    std::mutex lock_; /* guards what follows, until finish() */
    Index index_;
    std::vector<std::string> complaints_;

    std::unique_ptr<DiskWriter> writer_;
    std::unique_ptr<Recording> recording_;
};

TEST_F(NvrecGaps, AnOutageIsInOneFileAHoleThatIsNotRecorded)
{
    begin_at(kNoon_us);
    put_groups(3);
    pass(30 * kSecond_us);
    put_groups(3);
    finish();
    ASSERT_EQ(index_.segments(kNetwork).size(), 1u);
    ASSERT_EQ(gaps().size(), 1u);
    EXPECT_EQ(gaps()[0].why, "no video");
    EXPECT_EQ(gaps()[0].from_us, kNoon_us + 3 * kGroup_us - kFrame_us);
    EXPECT_EQ(gaps()[0].to_us, kNoon_us + 3 * kGroup_us + 30 * kSecond_us);
    EXPECT_EQ(index_.recorded(kNetwork, kSecond_us).size(), 2u);
    const Place place = find_place(index_, kNetwork, kNoon_us + 20 * kSecond_us);
    EXPECT_FALSE(place.segment);
    ASSERT_TRUE(place.gap && place.before && place.after);
    EXPECT_EQ(place.before->to_us, gaps()[0].from_us);
    EXPECT_EQ(place.after->from_us, gaps()[0].to_us);
}

TEST_F(NvrecGaps, AnOutageOverTheEndOfAFileIsOneToo)
{
    begin_at(kNoon_us - kGroup_us * 3);
    put_groups(2);
    pass(7 * kSecond_us);
    put_groups(3);
    finish();
    ASSERT_EQ(index_.segments(kNetwork).size(), 2u);
    ASSERT_EQ(gaps().size(), 1u);
    EXPECT_EQ(gaps()[0].why, "no video");
    EXPECT_EQ(gaps()[0].from_us, kNoon_us - kGroup_us - kFrame_us);
    EXPECT_EQ(gaps()[0].to_us, kNoon_us - kGroup_us + 7 * kSecond_us);
    const Place place = find_place(index_, kNetwork, kNoon_us + kSecond_us);
    EXPECT_FALSE(place.segment);
    ASSERT_TRUE(place.gap);
    EXPECT_EQ(place.gap->why, "no video");
}

TEST_F(NvrecGaps, FilesThatFollowOneAnotherHaveNoneBetweenThem)
{
    begin_at(kNoon_us - kGroup_us * 3);
    put_groups(6);
    finish();
    EXPECT_EQ(index_.segments(kNetwork).size(), 2u);
    EXPECT_TRUE(gaps().empty());
}

/* The clock is an hour wrong for some seconds. */
class NvrecClockSet : public NvrecGaps, public testing::WithParamInterface<int64_t>
{
};

TEST_P(NvrecClockSet, IsNoOutageAndHidesNothing)
{
    const int64_t wrong_us = GetParam() * kSecond_us, from_us = kNoon_us + 1800 * kSecond_us;
    begin_at(from_us);
    put_groups(10);
    put_groups(10, wrong_us);
    put_groups(10);
    finish();
    EXPECT_TRUE(gaps().empty());
    for (int group = 0; group < 30; ++group) {
        const bool wrong = group >= 10 && group < 20;
        const int64_t at_us = from_us + group * kGroup_us + kFrame_us + (wrong ? wrong_us : 0);
        EXPECT_TRUE(find_place(index_, kNetwork, at_us).segment) << "group " << group;
    }
    const auto spans = index_.recorded(kNetwork, 2 * kSecond_us);
    int64_t recorded_us = 0;
    for (const TimeSpan &span : spans)
        recorded_us += span.to_us - span.from_us;
    EXPECT_EQ(spans.size(), 3u);
    EXPECT_NEAR(static_cast<double>(recorded_us), 30.0 * kGroup_us, 2.0 * kFrame_us);
}

INSTANTIATE_TEST_SUITE_P(By, NvrecClockSet, testing::Values(3600, -3600),
                         [](const auto &named) { return named.param > 0 ? "AnHourForward" : "AnHourBack"; });

TEST_F(NvrecGaps, WhatTheRecordKeyStoppedIsNone)
{
    begin_at(kNoon_us);
    put_groups(3);
    recording_->set_order(RecordOrder::kStop);
    put_groups(20);
    recording_->set_order(RecordOrder::kAsPlanned);
    put_groups(3);
    finish();
    EXPECT_EQ(index_.segments(kNetwork).size(), 2u);
    EXPECT_TRUE(gaps().empty());
}

/* By day, and the camera falls silent before the evening until after the morning. */
TEST_F(NvrecGaps, ItsPartOutsideOfThePlansHoursIsNone)
{
    RecordingPlan plan;
    plan.mode = RecordingMode::kHours;
    plan.hours.push_back({.from_min = 8 * 60, .to_min = 18 * 60});
    const int64_t evening_us = kNoon_us + 6 * 3600 * kSecond_us,
                  morning_us = kNoon_us + 20 * 3600 * kSecond_us;
    begin_at(evening_us - 60 * kSecond_us, plan);
    put_groups(1);
    pass(morning_us + 60 * kSecond_us - wall_now_us());
    put_groups(1);
    finish();
    ASSERT_EQ(gaps().size(), 2u);
    EXPECT_EQ(gaps()[0].to_us, evening_us);
    EXPECT_EQ(gaps()[1].from_us, morning_us);
    EXPECT_EQ(gaps()[1].to_us, morning_us + 60 * kSecond_us);
}

TEST_F(NvrecGaps, BetweenTwoEventsThereIsNone)
{
    RecordingPlan plan;
    plan.mode = RecordingMode::kEvent;
    plan.before_s = 0;
    plan.after_s = 2;
    begin_at(kNoon_us, plan);
    recording_->begin_event();
    put_groups(15);
    recording_->begin_event();
    put_groups(3);
    finish();
    EXPECT_EQ(index_.segments(kNetwork).size(), 2u);
    EXPECT_TRUE(gaps().empty());
}

TEST_F(NvrecGaps, AFullDiskIsOneFromWhenItWasFull)
{
    begin_at(kNoon_us);
    put_groups(10);
    disk_->is_full = true;
    put_groups(60);
    EXPECT_EQ(writer_->status().state, DiskState::kFull);
    EXPECT_GT(writer_->status().since_s, 20) << "over two tries that were made meanwhile";
    EXPECT_TRUE(writer_->take_lines().empty());
    disk_->is_full = false;
    put_groups(60);
    EXPECT_EQ(writer_->status().state, DiskState::kGood);
    const std::vector<std::string> lines = writer_->take_lines();
    ASSERT_EQ(lines.size(), 1u) << lines.back();
    EXPECT_TRUE(lines[0].starts_with("the disk takes recordings again, after 3")) << lines[0];
    {
        const std::scoped_lock guard(lock_);
        ASSERT_EQ(complaints_.size(), 1u) << complaints_.back();
        EXPECT_NE(complaints_[0].find("No space left on device"), std::string::npos) << complaints_[0];
    }
    disk_->is_full = true;
    put_groups(10);
    finish();
    EXPECT_EQ(complaints_.size(), 2u) << "a later failure is said as well";
    const auto files = index_.segments(kNetwork);
    ASSERT_EQ(files.size(), 2u);
    ASSERT_EQ(gaps().size(), 1u);
    EXPECT_EQ(gaps()[0].why, "the disk is full");
    EXPECT_NEAR(static_cast<double>(gaps()[0].from_us), static_cast<double>(files[0].to_us), kFrame_us);
    EXPECT_EQ(gaps()[0].to_us, files[1].from_us);
}

} // namespace
